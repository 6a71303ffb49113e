#pragma once
// Builds "Arpt index.txt" from the files of FSXFiles: one line per airport that the search
// and the airport file reader together can load, "IDENT;NAME;COUNTRY;FILE".

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace velmora {

struct IndexEntry {
  std::string ident, name, country, file;  // Windows-1252, as the file gives them
};

struct IndexBuild {
  bool folderOpened = false;
  std::vector<IndexEntry> entries;    // in file order, then record order
  std::vector<std::string> warnings;  // one line each, for stderr
  int filesWithAirports = 0;
  int filesSkipped = 0;  // entries of the folder that gave no airport to the index
};

// `progress` hears after each file how many of `files` are done.
IndexBuild BuildIndex(const std::filesystem::path& airportFolder,
                      const std::function<void(int done, int files, int airports)>& progress = {});

// The index line of one entry, with its CR LF.
std::string IndexLine(const IndexEntry& entry);

// "33,986 airports in 118 files, 2 files skipped".
std::string IndexSummary(const IndexBuild& build);

// Thousands grouped with ",": 33986 gives "33,986".
std::string Grouped(std::uintmax_t n);

}  // namespace velmora
