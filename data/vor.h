#pragma once
// The world VOR list, "vor.nav": read once at start into the store's Vor table.

#include <filesystem>

#include "data/file_status.h"
#include "data/line_reader.h"
#include "data/store.h"

namespace velmora {

struct VorReport : FileStatus {
  int skipped = 0;  // lines with fewer than eight fields or no numbers in the position
  int dropped = 0;  // lines beyond the table's last slot
};

// Fields: 2, 3 longitude degrees and minutes; 4, 5 latitude; 7 ident; 8 frequency.
VorReport LoadVor(Store& store, const std::filesystem::path& file);
// The same from a reader already open, on a file or on bytes in memory.
VorReport LoadVor(Store& store, LineReader& reader);

}  // namespace velmora
