#pragma once
// How a reader fared with its file. The reports of the airport reader, the VOR list and the
// index search begin with it, and the window's captions are chosen from it.

#include <filesystem>
#include <optional>
#include <string>

#include "data/files.h"
#include "data/line_reader.h"

namespace velmora {

struct FileStatus {
  bool opened = false;
  bool notRegular = false;  // a folder, device, FIFO or socket rather than a file
  bool readError = false;
  int longLines = 0;  // lines passed over for their length

  // What `reader` met, once it is done with the file.
  void take(const LineReader& reader) {
    opened = true;
    readError = reader.failed();
    longLines = reader.longLines();
  }
};

// Opens `file` and hands the reader to `read`, which gives the report; a file that won't open
// gives an empty report that says why.
template <class Report, class Read>
Report ReadFileWith(const std::filesystem::path& file, Read read) {
  LineReader reader;
  const OpenStatus status = reader.open(file);
  if (status == OpenStatus::kOpened) return read(reader);
  Report report;
  report.notRegular = status == OpenStatus::kNotRegular;
  return report;
}

// The caption for a file that was not read: `notAFile` when something else stands in its
// place, `unreadable` when it could not be opened or read through; none when it was read.
std::optional<std::string> FileProblem(const FileStatus& status, std::string notAFile,
                                       std::string unreadable);

}  // namespace velmora
