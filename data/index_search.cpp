#include "data/index_search.h"

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

// Up to the first ';'. A byte loop: the field is a short code, where a library search costs
// more in its call than in its scan.
std::string_view Field1(std::string_view line) {
  std::size_t end = 0;
  while (end < line.size() && line[end] != ';') ++end;
  return line.substr(0, end);
}

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
  std::string lastField;
  std::string_view line;
  while (reader.next(line)) {
    // An empty line holds no airport; it is passed over and not counted.
    if (line.empty()) continue;
    const std::string_view field1 = Field1(line);
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
    lastField.assign(field1);
    if (rejected % kLinesPerDot == 0 && rejected / kLinesPerDot <= kMaxDots && progress) {
      progress(rejected / kLinesPerDot);
    }
    ++rejected;
  }
  result.take(reader);
  result.ident = RemoveBlanks(lastField);
  return result;
}

}  // namespace velmora
