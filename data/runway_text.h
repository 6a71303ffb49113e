#pragma once
// How a runway is written in text, wherever the chart, the reader or the lists name one.

#include <string>
#include <string_view>

namespace velmora {

// "9" gives "09": a one-character number gets a "0" in front; any other stays as it is.
std::string RunwayNumberText(std::string_view number);

// The letter a designator adds behind the number: its first character ("LEFT" gives "L");
// nothing for "NONE" or an empty designator.
std::string DesignatorLetter(std::string_view designator);

}  // namespace velmora
