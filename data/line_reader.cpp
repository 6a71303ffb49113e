#include "data/line_reader.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {
namespace {

constexpr std::size_t kMaskBytes = 64;

// Bit i set where p[i] is a CR or LF, for the 64 bytes from p: one pass finds every line end
// of a block, and short lines then cost a bit count each rather than a search.
std::uint64_t LineEndMask(const char* p) {
  std::uint64_t mask = 0;
#if defined(__SSE2__)
  const __m128i cr = _mm_set1_epi8('\r');
  const __m128i lf = _mm_set1_epi8('\n');
  for (std::size_t i = 0; i < kMaskBytes; i += 16) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const auto hits = static_cast<std::uint16_t>(
        _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(chunk, cr), _mm_cmpeq_epi8(chunk, lf))));
    mask |= std::uint64_t{hits} << i;
  }
#else
  for (std::size_t i = 0; i < kMaskBytes; ++i) {
    if (p[i] == '\r' || p[i] == '\n') mask |= std::uint64_t{1} << i;
  }
#endif
  return mask;
}

// The first place of `needle` in [p, end), or end. Where both its first and its last byte
// stand in place, sixteen starts at a time, the rest is compared: the airport key is found at
// about the speed of a byte search, where a general substring search is several times slower.
const char* FindNeedle(const char* p, const char* end, std::string_view needle) {
  const std::size_t n = needle.size();
  if (n == 0) return p;
  if (static_cast<std::size_t>(end - p) < n) return end;
  const char* const last = end - n;  // the last possible start
#if defined(__SSE2__)
  const __m128i first = _mm_set1_epi8(needle.front());
  const __m128i final = _mm_set1_epi8(needle.back());
  for (; last - p >= 15; p += 16) {
    const __m128i head = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i tail = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + n - 1));
    unsigned hits = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(head, first), _mm_cmpeq_epi8(tail, final))));
    for (; hits != 0; hits &= hits - 1) {
      const char* at = p + std::countr_zero(hits);
      if (std::memcmp(at, needle.data(), n) == 0) return at;
    }
  }
#endif
  for (; p <= last; ++p) {
    p = static_cast<const char*>(std::memchr(p, needle.front(), last - p + 1));
    if (p == nullptr) return end;
    if (std::memcmp(p, needle.data(), n) == 0) return p;
  }
  return end;
}

}  // namespace

inline std::size_t LineReader::lineEnd(std::size_t from) {
  const char* base = buf_.data();
  for (;;) {
    if (from >= maskAt_ && from < maskAt_ + kMaskBytes) {
      const std::uint64_t ahead = mask_ >> (from - maskAt_);
      if (ahead != 0) return from + std::countr_zero(ahead);
      from = maskAt_ + kMaskBytes;
    }
    if (from > end_ || end_ - from < kMaskBytes) break;
    maskAt_ = from;
    mask_ = LineEndMask(base + from);
  }
  while (from < end_ && base[from] != '\r' && base[from] != '\n') ++from;
  return std::min(from, end_);
}

LineReader::LineReader(std::size_t chunkBytes, std::size_t maxLine)
    : chunk_(chunkBytes < 16 ? 16 : chunkBytes), maxLine_(maxLine) {}

LineReader::~LineReader() {
  close();
}

void LineReader::start() {
  pos_ = end_ = scan_ = hunt_ = 0;
  forgetMask();
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
    forgetMask();
  }
  // Bytes in memory need no more room than they take.
  std::size_t want = file_ != nullptr ? chunk_ : std::min(chunk_, memory_.size());
  // A read fills the room behind the unfinished line. The buffer grows only when that line
  // leaves less than half a read, so a file of short lines keeps one chunk; never far past the
  // limit.
  if (buf_.size() - end_ < (want + 1) / 2) {
    const std::size_t grown = std::max(end_ + want, std::min(2 * buf_.size(), maxLine_ + chunk_));
    buf_.reserve(grown);  // exactly: resize alone would double the capacity
    buf_.resize(grown);
  }
  want = std::min(want, buf_.size() - end_);
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
    // Bytes already looked at are not looked at again: a long line costs linear time.
    const std::size_t stop = lineEnd(scan_);
    if (stop == end_) {
      if (eof_) return lastLine(line);
      passOverLongLine();
      fill();
      continue;
    }
    const char* base = buf_.data();
    const std::size_t begin = pos_;
    std::size_t after = stop + 1;
    if (base[stop] == '\r') {
      // A CR at the very end of the buffer may be the first half of CR LF.
      if (after == end_ && !eof_) {
        scan_ = stop;
        fill();
        continue;
      }
      if (after < end_ && base[after] == '\n') ++after;
    }
    pos_ = scan_ = hunt_ = after;
    if (skipping_ || stop - begin > maxLine_) {
      if (!skipping_) ++longLines_;
      skipping_ = false;
      continue;
    }
    line = std::string_view(base + begin, stop - begin);
    return true;
  }
}

bool LineReader::lastLine(std::string_view& line) {
  const std::size_t begin = pos_;
  pos_ = scan_ = hunt_ = end_;
  skipping_ = false;
  if (begin == end_) return false;
  if (end_ - begin > maxLine_) {
    ++longLines_;
    return false;
  }
  line = std::string_view(buf_.data() + begin, end_ - begin);
  return true;
}

bool LineReader::nextContaining(std::string_view needle, std::string_view& line) {
  for (;;) {
    const char* base = buf_.data();
    // pos_ is at a line start; bytes before hunt_ were searched already.
    const std::size_t from = std::max(pos_, hunt_);
    const char* found = FindNeedle(base + from, base + end_, needle);
    const char* hit = found < base + end_ ? found : nullptr;
    bool viaNext = hit != nullptr;
    // The line at pos_ is dropped unread when it ends before the match; still, it counts
    // among the long lines if it is one.
    const char* firstEnd = base + lineEnd(from);
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
