// velmora-index: the index of the airports in FSXFiles. Needs no fonts and no Qt.

#include <iostream>

#include "data/platform.h"
#include "import/index_run.h"
#include "shell/data_dir.h"

int main(int argc, char** argv) {
  velmora::SetStdoutBinary();
  const std::filesystem::path dataDir =
      velmora::ChooseDataDir(velmora::ExecutableDir(), velmora::UserDataDir());
  const auto options =
      velmora::ParseIndexArgs(velmora::CommandLineArgs(argc, argv), dataDir, std::cerr);
  if (!options) return 2;
  return velmora::RunIndex(*options, std::cout, std::cerr, velmora::StderrIsTerminal());
}
