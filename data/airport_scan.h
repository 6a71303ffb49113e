#pragma once
// How the airport file reader walks a file, shared by ExtractArpt and the index builder so
// that the index lists exactly the airports the reader can find.

#include <array>
#include <string>
#include <string_view>

#include "data/line_reader.h"

namespace velmora {

inline constexpr std::string_view kAirportKey = "<Airport ident";

// The reader's first look at a line, as read: its key (tabs and all) and, on an
// <Airport ident line, the airport's ident.
struct LineHead {
  std::string_view key;
  bool opensAirport = false;
  std::string_view ident;  // first quoted value of an <Airport ident line
};
LineHead ReadLineHead(std::string_view raw);

// The next line worth a look: inside an airport every line, outside only lines that could
// open one, so other airports are skipped wholesale.
bool NextAirportLine(LineReader& reader, bool inAirport, std::string_view& raw);

// What the reader does to each line of an airport it reads: tabs become blanks,
// `curElement` follows element lines, and the key is taken again.
class AirportLine {
 public:
  std::string_view take(std::string_view raw, std::string& curElement);
  // The line without tabs and leading blanks, valid until the next take() and, as it may
  // view the raw line, until the next read.
  std::string_view line() const { return line_; }

 private:
  std::string work_, scratch_;
  std::string_view line_;
};

// The keys of the <Airport element itself, in this order.
inline constexpr std::array<std::string_view, 8> kArptKeys = {"country", "state", "city", "name",
                                                              "lat",     "lon",   "alt",  "magvar"};
enum ArptKey { kArptCountry, kArptState, kArptCity, kArptName };
// Position of `key` in kArptKeys, or -1.
int ArptKeyIndex(std::string_view key);

}  // namespace velmora
