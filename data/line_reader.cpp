#include "data/line_reader.h"

#include <cstring>

namespace velmora {

LineReader::LineReader(std::size_t chunkBytes)
    : buf_(chunkBytes < 16 ? 16 : chunkBytes), chunk_(buf_.size()) {}

LineReader::~LineReader() { close(); }

bool LineReader::open(const std::filesystem::path& path) {
  close();
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) return false;
  file_ = std::fopen(path.c_str(), "rb");
  pos_ = end_ = 0;
  lfKnown_ = eof_ = failed_ = false;
  return file_ != nullptr;
}

void LineReader::close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}

bool LineReader::fill() {
  if (eof_ || file_ == nullptr) {
    eof_ = true;
    return false;
  }
  if (pos_ > 0) {
    std::memmove(buf_.data(), buf_.data() + pos_, end_ - pos_);
    end_ -= pos_;
    pos_ = 0;
  }
  // A line longer than the buffer makes the buffer grow.
  if (buf_.size() < end_ + chunk_) buf_.resize(end_ + chunk_);
  const std::size_t got = std::fread(buf_.data() + end_, 1, chunk_, file_);
  if (got == 0) {
    failed_ = std::ferror(file_) != 0;
    eof_ = true;
  }
  end_ += got;
  lfKnown_ = false;
  return got > 0;
}

bool LineReader::next(std::string_view& line) {
  for (;;) {
    const char* base = buf_.data();
    if (!lfKnown_ || nextLf_ < pos_) {
      const void* lf = std::memchr(base + pos_, '\n', end_ - pos_);
      nextLf_ = lf != nullptr ? static_cast<const char*>(lf) - base : end_;
      lfKnown_ = true;
    }
    const void* cr = std::memchr(base + pos_, '\r', nextLf_ - pos_);
    const std::size_t stop = cr != nullptr ? static_cast<const char*>(cr) - base : nextLf_;
    if (stop < end_) {
      // A CR at the very end of the buffer may be the first half of CR LF.
      if (base[stop] == '\r' && stop + 1 == end_ && !eof_) {
        fill();
        continue;
      }
      line = std::string_view(base + pos_, stop - pos_);
      pos_ = stop + 1;
      if (base[stop] == '\r' && pos_ < end_ && base[pos_] == '\n') ++pos_;
      return true;
    }
    if (eof_) {
      if (pos_ == end_) return false;
      line = std::string_view(base + pos_, end_ - pos_);
      pos_ = end_;
      return true;
    }
    fill();
  }
}

bool LineReader::nextContaining(std::string_view needle, std::string_view& line) {
  for (;;) {
    const char* base = buf_.data();
    const char* from = base + pos_;
    const void* hit = memmem(from, end_ - pos_, needle.data(), needle.size());
    if (hit != nullptr) {
      const char* start = static_cast<const char*>(hit);
      while (start > from && start[-1] != '\n' && start[-1] != '\r') --start;
      pos_ = start - base;
      return next(line);
    }
    if (eof_) {
      pos_ = end_;
      return false;
    }
    // Keep only the unfinished last line: a match may still begin in it.
    const char* tail = base + end_;
    while (tail > from && tail[-1] != '\n' && tail[-1] != '\r') --tail;
    pos_ = tail - base;
    fill();
  }
}

}  // namespace velmora
