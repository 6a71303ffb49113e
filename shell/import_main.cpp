// velmora-import: decompiled FSX airport files into the data folder. Needs no fonts and no Qt.

#include <iostream>

#include "data/platform.h"
#include "import/run.h"
#include "shell/data_dir.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args = velmora::CommandLineArgs(argc, argv);
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    std::cout << velmora::ImportUsage();
    return 0;
  }
  const std::filesystem::path dataDir =
      velmora::ChooseDataDir(velmora::ExecutableDir(), velmora::UserDataDir());
  const auto options = velmora::ParseImportArgs(args, dataDir, std::cerr);
  if (!options) return 2;
  return velmora::RunImport(*options, std::cerr).status;
}
