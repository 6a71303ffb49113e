// Writes the sample in one source style into a folder, for tests/import/road.sh.
//   velmora_layouts --list | STYLE DIR

#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/import/layouts.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  for (const velmora::test::SourceStyle& style : velmora::test::SourceStyles()) {
    if (args.size() == 1 && args[0] == "--list") {
      std::cout << style.name << '\n';
    } else if (args.size() == 2 && args[0] == style.name) {
      std::filesystem::create_directories(args[1]);
      for (const auto& file : velmora::test::SampleSources(style)) {
        std::ofstream(std::filesystem::path(args[1]) / file.name, std::ios::binary) << file.bytes;
        std::cout << (std::filesystem::path(args[1]) / file.name).string() << '\n';
      }
      return 0;
    }
  }
  return args.size() == 1 && args[0] == "--list" ? 0 : 2;
}
