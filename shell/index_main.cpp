// velmora-index: the index of the airports in FSXFiles. Needs no fonts and no Qt.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "shell/data_dir.h"
#include "shell/index_run.h"

int main(int argc, char** argv) {
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::filesystem::path dataDir = velmora::ChooseDataDir(
      exe.parent_path(), velmora::UserDataDir(std::getenv("XDG_DATA_HOME"), std::getenv("HOME")));
  const std::vector<std::string> args(argv + 1, argv + argc);
  const auto options = velmora::ParseIndexArgs(args, dataDir, std::cerr);
  if (!options) return 2;
  return velmora::RunIndex(*options, std::cout, std::cerr, isatty(STDERR_FILENO) != 0);
}
