#pragma once
// The airport index, "Arpt index.txt": one airport a line, "ICAO;info;info;file", blanks of
// no meaning. Read from the top on every search; nothing of it is kept between searches.

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "data/file_status.h"
#include "data/line_reader.h"

namespace velmora {

struct IndexSearchResult : FileStatus {
  bool found = false;
  int rejected = 0;  // lines looked at before the match, or all of them
  // Fields 1 to 4 of the found line without blanks. When nothing is found, ident holds
  // field 1 of the last line looked at, if any, and the rest stays empty.
  std::string ident, info1, info2, file;
};

// `progress` is told the number of dots (0 to 7) at the eight moments the caption changes:
// when the lines rejected so far reach 0, 3000, ... 21000.
IndexSearchResult SearchIndex(const std::filesystem::path& index, std::string_view searchIdent,
                              const std::function<void(int dots)>& progress);
// The same from a reader already open, on a file or on bytes in memory.
IndexSearchResult SearchIndex(LineReader& reader, std::string_view searchIdent,
                              const std::function<void(int dots)>& progress);

}  // namespace velmora
