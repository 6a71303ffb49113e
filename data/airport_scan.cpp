#include "data/airport_scan.h"

#include <algorithm>

#include "data/decoders.h"

namespace velmora {

LineHead ReadLineHead(std::string_view raw) {
  LineHead head;
  std::string_view asRead = raw;
  head.key = AttrKey(asRead);
  if (head.key == kAirportKey) {
    head.opensAirport = true;
    head.ident = AttrValue(asRead);
  }
  return head;
}

bool NextAirportLine(LineReader& reader, bool inAirport, std::string_view& raw) {
  return inAirport ? reader.next(raw) : reader.nextContaining(kAirportKey, raw);
}

std::string_view AirportLine::take(std::string_view raw, std::string& curElement) {
  // Most lines hold neither a tab nor "<": they need no copy and leave the element as it is.
  if (std::none_of(raw.begin(), raw.end(), [](char c) { return c == '\t' || c == '<'; })) {
    line_ = raw;
    return AttrKey(line_);
  }
  work_.assign(raw);
  std::replace(work_.begin(), work_.end(), '\t', ' ');
  scratch_ = work_;
  ScanElement(scratch_, curElement);
  line_ = work_;
  return AttrKey(line_);
}

int ArptKeyIndex(std::string_view key) {
  const auto it = std::find(kArptKeys.begin(), kArptKeys.end(), key);
  return it == kArptKeys.end() ? -1 : static_cast<int>(it - kArptKeys.begin());
}

}  // namespace velmora
