#include "data/line_reader.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {
namespace {

// The first CR or LF in [p, end), or end: one pass over the bytes for both marks.
const char* FindLineEnd(const char* p, const char* end) {
#if defined(__SSE2__)
  const __m128i cr = _mm_set1_epi8('\r');
  const __m128i lf = _mm_set1_epi8('\n');
  for (; end - p >= 16; p += 16) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const int hits =
        _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(chunk, cr), _mm_cmpeq_epi8(chunk, lf)));
    if (hits != 0) return p + __builtin_ctz(static_cast<unsigned>(hits));
  }
#endif
  while (p < end && *p != '\r' && *p != '\n') ++p;
  return p;
}

// The first place of `needle` in [p, end), or null; memmem is a GNU extension. memchr finds
// the candidates at the speed of a line count, memcmp confirms them.
const char* FindBytes(const char* p, const char* end, std::string_view needle) {
  if (needle.empty()) return p;
  if (static_cast<std::size_t>(end - p) < needle.size()) return nullptr;
  const char* const stop = end - needle.size() + 1;  // one past the last place a match fits
  for (; p < stop; ++p) {
    p = static_cast<const char*>(std::memchr(p, needle[0], stop - p));
    if (p == nullptr) return nullptr;
    if (std::memcmp(p + 1, needle.data() + 1, needle.size() - 1) == 0) return p;
  }
  return nullptr;
}

}  // namespace

LineReader::LineReader(std::size_t chunkBytes, std::size_t maxLine)
    : chunk_(chunkBytes < 16 ? 16 : chunkBytes), maxLine_(maxLine) {}

LineReader::~LineReader() {
  close();
}

void LineReader::start() {
  pos_ = end_ = scan_ = hunt_ = 0;
  eof_ = failed_ = skipping_ = false;
  longLines_ = 0;
}

OpenStatus LineReader::open(const std::filesystem::path& path) {
  close();
  start();
  return OpenRegularFile(path, file_);
}

void LineReader::openMemory(std::string_view bytes) {
  close();
  start();
  memory_ = bytes;
}

void LineReader::close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
  memory_ = {};
}

bool LineReader::fill() {
  if (eof_) return false;
  if (pos_ > 0) {
    std::memmove(buf_.data(), buf_.data() + pos_, end_ - pos_);
    end_ -= pos_;
    scan_ -= pos_;
    hunt_ -= pos_;
    pos_ = 0;
  }
  // Bytes in memory need no more room than they take.
  const std::size_t want = file_ != nullptr ? chunk_ : std::min(chunk_, memory_.size());
  if (buf_.size() < end_ + want) {
    // Grows for a long line, but never far past the limit.
    buf_.reserve(std::max(end_ + want, std::min(2 * buf_.capacity(), maxLine_ + chunk_)));
    buf_.resize(end_ + want);
  }
  std::size_t got = 0;
  if (file_ != nullptr) {
    got = std::fread(buf_.data() + end_, 1, want, file_);
    if (got == 0) failed_ = std::ferror(file_) != 0;
  } else if (want > 0) {
    std::memcpy(buf_.data() + end_, memory_.data(), want);
    memory_.remove_prefix(want);
    got = want;
  }
  if (got == 0) eof_ = true;
  end_ += got;
  return got > 0;
}

bool LineReader::passOverLongLine() {
  if (!skipping_ && end_ - pos_ <= maxLine_) return false;
  if (!skipping_) ++longLines_;
  skipping_ = true;
  pos_ = scan_ = hunt_ = end_;
  return true;
}

bool LineReader::next(std::string_view& line) {
  for (;;) {
    const char* base = buf_.data();
    // Bytes already looked at are not looked at again: a long line costs linear time.
    const std::size_t stop = FindLineEnd(base + scan_, base + end_) - base;
    if (stop < end_) {
      // A CR at the very end of the buffer may be the first half of CR LF.
      if (base[stop] == '\r' && stop + 1 == end_ && !eof_) {
        scan_ = stop;
        fill();
        continue;
      }
      const std::size_t begin = pos_;
      pos_ = stop + 1;
      if (base[stop] == '\r' && pos_ < end_ && base[pos_] == '\n') ++pos_;
      scan_ = hunt_ = pos_;
      if (skipping_ || stop - begin > maxLine_) {
        if (!skipping_) ++longLines_;
        skipping_ = false;
        continue;
      }
      line = std::string_view(base + begin, stop - begin);
      return true;
    }
    scan_ = end_;
    if (eof_) {
      const std::size_t begin = pos_;
      pos_ = hunt_ = end_;
      skipping_ = false;
      if (begin == end_) return false;
      if (end_ - begin > maxLine_) {
        ++longLines_;
        return false;
      }
      line = std::string_view(base + begin, end_ - begin);
      return true;
    }
    passOverLongLine();
    fill();
  }
}

bool LineReader::nextContaining(std::string_view needle, std::string_view& line) {
  for (;;) {
    const char* base = buf_.data();
    // pos_ is at a line start; bytes before hunt_ were searched already.
    const std::size_t from = std::max(pos_, hunt_);
    const char* hit = end_ > from ? FindBytes(base + from, base + end_, needle) : nullptr;
    bool viaNext = hit != nullptr;
    // The line at pos_ is dropped unread when it ends before the match; still, it counts
    // among the long lines if it is one.
    const char* firstEnd = FindLineEnd(base + from, base + end_);
    const bool dropsFirst = firstEnd < base + end_ && (hit == nullptr || hit > firstEnd);
    if (dropsFirst && static_cast<std::size_t>(firstEnd - (base + pos_)) > maxLine_) ++longLines_;
    if (hit != nullptr) {
      const char* start = hit;
      while (start > base + pos_ && start[-1] != '\n' && start[-1] != '\r') --start;
      pos_ = scan_ = hunt_ = start - base;
    } else {
      if (eof_) {
        pos_ = scan_ = hunt_ = end_;
        return false;
      }
      // A match may still begin in the last needle-length bytes.
      hunt_ = std::max(from, end_ + 1 > needle.size() ? end_ + 1 - needle.size() : 0);
      // Keep only the unfinished last line; a line end can only be among the new bytes.
      const char* tail = base + end_;
      while (tail > base + from && tail[-1] != '\n' && tail[-1] != '\r') --tail;
      if (tail > base + from) pos_ = scan_ = tail - base;
      hunt_ = std::max(hunt_, pos_);
      viaNext = passOverLongLine();
    }
    if (viaNext) {
      // The line at a match, or the one behind a line passed over for its length.
      if (!next(line)) return false;
      if (line.find(needle) != std::string_view::npos) return true;
      continue;
    }
    fill();
  }
}

}  // namespace velmora
