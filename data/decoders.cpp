#include "data/decoders.h"

#include <algorithm>

namespace velmora {
namespace {

// Piece `index` (from 0) of the line cut at every double quote.
std::string_view QuotePiece(std::string_view line, int index) {
  std::size_t start = 0;
  for (int i = 0; i < index; ++i) {
    const std::size_t quote = line.find('"', start);
    if (quote == std::string_view::npos) return {};
    start = quote + 1;
  }
  const std::size_t end = line.find('"', start);
  return line.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

}  // namespace

std::string_view StripLead(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view{} : text.substr(first);
}

void ScanElement(std::string& line, std::string& curElement) {
  std::replace(line.begin(), line.end(), '\t', ' ');
  line.erase(0, line.size() - StripLead(line).size());
  if (line.find('<') != std::string::npos) curElement = line.substr(0, line.find(' '));
}

std::string_view AttrKey(std::string_view& line) {
  line = StripLead(line);
  return line.substr(0, line.find('='));
}

std::string_view AttrValue(std::string_view line) {
  return QuotePiece(line, 1);
}

std::string_view AttrValue2(std::string_view line) {
  return QuotePiece(line, 3);
}

}  // namespace velmora
