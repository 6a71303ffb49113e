#include "data/index_search.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "data/text.h"

namespace velmora {
namespace {

constexpr int kLinesPerDot = 3000;
constexpr int kMaxDots = 7;

// Field 1 with its blanks removed equals the code; allocates nothing.
bool SameIdent(std::string_view field, std::string_view ident) {
  std::size_t i = 0;
  for (char c : field) {
    if (c == ' ') continue;
    if (i == ident.size() || ident[i] != c) return false;
    ++i;
  }
  return i == ident.size();
}

constexpr std::size_t kWord = 8;
constexpr std::size_t kNotShort = std::size_t(-1);

// Where the ';' stands in the first eight bytes of `line`, found in one step; kNotShort when
// it is not there or the line is shorter. Most lines of an index start with a four-letter code.
std::size_t ShortField(std::string_view line) {
  if constexpr (std::endian::native != std::endian::little) return kNotShort;
  if (line.size() < kWord) return kNotShort;
  std::uint64_t word;
  std::memcpy(&word, line.data(), kWord);
  // A byte that equals ';' becomes 0; the lowest byte flagged as 0 is the first ';'.
  const std::uint64_t x = word ^ 0x3B3B3B3B3B3B3B3Bull;
  const std::uint64_t zero = (x - 0x0101010101010101ull) & ~x & 0x8080808080808080ull;
  return zero == 0 ? kNotShort : static_cast<std::size_t>(std::countr_zero(zero)) / 8;
}

// Field 1 of the line looked at last, for the caption of a search that finds nothing. It is
// copied while it is found, into a fixed buffer: assigning a string for each line of the index
// took a fifth of the search's time.
class LastField {
 public:
  // Field 1 of `line`, up to the first ';', kept as the last one seen.
  std::string_view take(std::string_view line) {
    if (const std::size_t end = ShortField(line); end != kNotShort) {
      std::memcpy(short_.data(), line.data(), kWord);
      size_ = end;
      return line.substr(0, end);
    }
    // A byte loop for the rest: a library search costs more in its call than in its scan.
    const std::size_t room = std::min(line.size(), short_.size());
    std::size_t end = 0;
    for (; end < room && line[end] != ';'; ++end) short_[end] = line[end];
    size_ = end;
    if (end < line.size() && line[end] != ';') {
      while (end < line.size() && line[end] != ';') ++end;
      long_.assign(line.substr(0, end));
      size_ = kLong;
    }
    return line.substr(0, end);
  }
  std::string_view text() const {
    return size_ == kLong ? std::string_view(long_) : std::string_view(short_.data(), size_);
  }

 private:
  static constexpr std::size_t kLong = std::size_t(-1);
  std::array<char, 32> short_;
  std::size_t size_ = 0;
  std::string long_;  // a field that short_ can't hold
};

}  // namespace

IndexSearchResult SearchIndex(const std::filesystem::path& index, std::string_view searchIdent,
                              const std::function<void(int dots)>& progress) {
  return ReadFileWith<IndexSearchResult>(
      index, [&](LineReader& reader) { return SearchIndex(reader, searchIdent, progress); });
}

IndexSearchResult SearchIndex(LineReader& reader, std::string_view searchIdent,
                              const std::function<void(int dots)>& progress) {
  IndexSearchResult result;
  int& rejected = result.rejected;
  LastField lastField;
  int untilDot = 1;  // a dot is due when the countdown ends
  std::string_view line;
  while (reader.next(line)) {
    // An empty line holds no airport; it is passed over and not counted.
    if (line.empty()) continue;
    const std::string_view field1 = lastField.take(line);
    if (SameIdent(field1, searchIdent)) {
      const auto fields = Split(line, ';');
      result.found = true;
      result.ident = RemoveBlanks(fields[0]);
      if (fields.size() > 1) result.info1 = RemoveBlanks(fields[1]);
      if (fields.size() > 2) result.info2 = RemoveBlanks(fields[2]);
      if (fields.size() > 3) result.file = RemoveBlanks(fields[3]);
      result.take(reader);
      return result;
    }
    // A countdown rather than a division for each line.
    if (--untilDot == 0) {
      untilDot = kLinesPerDot;
      const int dots = rejected / kLinesPerDot;
      if (dots <= kMaxDots && progress) progress(dots);
    }
    ++rejected;
  }
  result.take(reader);
  result.ident = RemoveBlanks(lastField.text());
  return result;
}

}  // namespace velmora
