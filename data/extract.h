#pragma once
// The airport file reader: one airport out of a file that may hold many.

#include <filesystem>
#include <string>
#include <string_view>

#include "data/file_status.h"
#include "data/line_reader.h"
#include "data/store.h"

namespace velmora {

// Records that found no free slot; nothing is written beyond a table's highest slot.
struct Dropped {
  int rwyEnd = 0, com = 0, ils = 0, ndb = 0, waypoint = 0, approach = 0, trans = 0, leg = 0;
  bool any() const { return rwyEnd + com + ils + ndb + waypoint + approach + trans + leg > 0; }
  // "12 legs, 1 approach" style summary for the window caption.
  std::string text() const;
};

struct ExtractReport : FileStatus {
  bool found = false;  // the file holds the airport
  Dropped dropped;
};

// Clears the airport from the store and fills it from `file` with the airport whose
// <Airport ident equals `searchIdent` exactly. The VOR list stays.
ExtractReport ExtractArpt(Store& store, const std::filesystem::path& file,
                          std::string_view searchIdent);
// The same from a reader already open, on a file or on bytes in memory.
ExtractReport ExtractArpt(Store& store, LineReader& reader, std::string_view searchIdent);

// "RW" and two digits and the designator's first letter: the name approach legs give a
// runway end. Empty for a helipad and for numbers of more than two characters.
std::string RunwayFixName(const RwyEndRow& row);

}  // namespace velmora
