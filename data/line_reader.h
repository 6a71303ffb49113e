#pragma once
// Reads text line by line through one buffer, from a file or from bytes held in memory; both
// pass through the same buffer and the same code. A line ends at CR LF, a lone CR or a lone
// LF; the end mark is not part of the line. Lines are views into the buffer and stay valid
// until the next call. A line longer than the limit is passed over whole and counted.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <vector>

#include "data/files.h"

namespace velmora {

// No line of a sound file comes near this; past it a line is noise, and keeping it would
// let one file without line ends take all memory.
inline constexpr std::size_t kMaxLineBytes = std::size_t{16} << 20;

class LineReader {
 public:
  explicit LineReader(std::size_t chunkBytes = 1 << 20, std::size_t maxLine = kMaxLineBytes);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // Only a regular file is opened (see OpenRegularFile).
  OpenStatus open(const std::filesystem::path& path);
  // Reads `bytes`, which must outlive the reading.
  void openMemory(std::string_view bytes);
  void close();

  // False at the end of the input or after a read error (see failed()).
  bool next(std::string_view& line);
  // Skips every line that doesn't hold `needle`; gives the first that does. Lets the airport
  // reader jump over other airports without looking at each of their lines.
  bool nextContaining(std::string_view needle, std::string_view& line);

  bool failed() const { return failed_; }
  // Lines passed over for their length.
  int longLines() const { return longLines_; }

 private:
  bool fill();
  void start();
  // Drops the unfinished line once it is over the limit.
  bool passOverLongLine();
  // The line that the end of the input ends.
  bool lastLine(std::string_view& line);
  // The first CR or LF in [from, end_), or end_.
  std::size_t lineEnd(std::size_t from);
  // After the bytes move in the buffer.
  void forgetMask() { maskAt_ = kNoMask; }
  static constexpr std::size_t kNoMask = std::size_t(-1) / 2;

  std::FILE* file_ = nullptr;
  std::string_view memory_;
  std::vector<char> buf_;
  std::size_t chunk_;
  std::size_t maxLine_;
  std::size_t pos_ = 0;   // start of the next line
  std::size_t end_ = 0;   // end of the bytes read
  std::size_t scan_ = 0;  // [pos_, scan_) is known to hold no line end
  std::size_t hunt_ = 0;  // [pos_, hunt_) is known to hold no start of the needle
  // Line ends of the 64 bytes from maskAt_, one bit a byte.
  std::size_t maskAt_ = kNoMask;
  std::uint64_t mask_ = 0;
  bool eof_ = false;
  bool failed_ = false;
  bool skipping_ = false;  // inside a line that is over the limit
  int longLines_ = 0;
};

}  // namespace velmora
