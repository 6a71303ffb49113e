#pragma once
// Reads a text file line by line through one buffer. A line ends at CR LF, a lone CR or a
// lone LF; the end mark is not part of the line. Lines are views into the buffer and stay
// valid until the next call.

#include <cstdio>
#include <filesystem>
#include <string_view>
#include <vector>

namespace velmora {

class LineReader {
 public:
  explicit LineReader(std::size_t chunkBytes = 1 << 20);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // False when the file can't be opened for reading.
  bool open(const std::filesystem::path& path);
  void close();

  // False at the end of the file or after a read error (see failed()).
  bool next(std::string_view& line);
  // Skips every line that doesn't hold `needle`; gives the first that does. Lets the airport
  // reader jump over other airports without looking at each of their lines.
  bool nextContaining(std::string_view needle, std::string_view& line);

  bool failed() const { return failed_; }

 private:
  bool fill();

  std::FILE* file_ = nullptr;
  std::vector<char> buf_;
  std::size_t chunk_;
  std::size_t pos_ = 0;
  std::size_t end_ = 0;
  bool eof_ = false;
  bool failed_ = false;
};

}  // namespace velmora
