// velmora-import: decompiled FSX airport files into the data folder. Needs no fonts and no Qt.

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "shell/data_dir.h"
#include "shell/import_run.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    std::cout << velmora::ImportUsage();
    return 0;
  }
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::filesystem::path dataDir = velmora::ChooseDataDir(
      exe.parent_path(), velmora::UserDataDir(std::getenv("XDG_DATA_HOME"), std::getenv("HOME")));
  const auto options = velmora::ParseImportArgs(args, dataDir, std::cerr);
  if (!options) return 2;
  return velmora::RunImport(*options, std::cerr).status;
}
