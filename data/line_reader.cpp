#include "data/line_reader.h"

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

// The first `needle` in [p, end), or null. Candidates are the places where both the first
// and the last byte of the needle match, sixteen at a time; memmem's general search is
// several times slower on the short keys the readers skip to.
const char* FindNeedle(const char* p, const char* end, std::string_view needle) {
  const std::size_t n = needle.size();
  if (n == 0) return p;
  if (static_cast<std::size_t>(end - p) < n) return nullptr;
#if defined(__SSE2__)
  const __m128i first = _mm_set1_epi8(needle.front());
  const __m128i last = _mm_set1_epi8(needle.back());
  for (; end - p >= static_cast<std::ptrdiff_t>(n + 15); p += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + n - 1));
    auto hits = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
    while (hits != 0) {
      const int at = __builtin_ctz(hits);
      if (std::memcmp(p + at, needle.data(), n) == 0) return p + at;
      hits &= hits - 1;
    }
  }
#endif
  const void* hit = memmem(p, static_cast<std::size_t>(end - p), needle.data(), n);
  return static_cast<const char*>(hit);
}

}  // namespace

LineReader::LineReader(std::size_t chunkBytes)
    : buf_(chunkBytes < 16 ? 16 : chunkBytes), chunk_(buf_.size()) {}

LineReader::~LineReader() {
  close();
}

bool LineReader::open(const std::filesystem::path& path) {
  close();
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) return false;
  file_ = std::fopen(path.c_str(), "rb");
  pos_ = end_ = 0;
  eof_ = failed_ = false;
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
  return got > 0;
}

bool LineReader::next(std::string_view& line) {
  for (;;) {
    const char* base = buf_.data();
    const std::size_t stop = FindLineEnd(base + pos_, base + end_) - base;
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
  // A long unfinished line is kept across reads; what of it was searched, or walked for its
  // start, is not gone over again, so a huge line costs one pass, not one per read.
  std::size_t searched = 0;  // bytes from pos_ on without a match beginning in them
  std::size_t plain = 0;     // bytes from pos_ on without a line end
  for (;;) {
    const char* base = buf_.data();
    const char* from = base + pos_;
    const char* hit = FindNeedle(from + searched, base + end_, needle);
    if (hit != nullptr) {
      const char* start = hit;
      while (start > from + plain && start[-1] != '\n' && start[-1] != '\r') --start;
      if (start <= from + plain) start = from;
      pos_ = start - base;
      return next(line);
    }
    if (eof_) {
      pos_ = end_;
      return false;
    }
    // Keep only the unfinished last line: a match may still begin in it.
    const char* tail = base + end_;
    while (tail > from + plain && tail[-1] != '\n' && tail[-1] != '\r') --tail;
    if (tail <= from + plain) tail = from;
    pos_ = tail - base;
    plain = end_ - pos_;
    searched = plain >= needle.size() ? plain - (needle.size() - 1) : 0;
    fill();
  }
}

}  // namespace velmora
