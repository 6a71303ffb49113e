#pragma once
// How a runway is written in text, wherever the chart, the reader or the lists name one.

#include <array>
#include <string>
#include <string_view>

namespace velmora {

// The numbers of runways named by compass direction, clockwise from north.
inline constexpr std::array<std::string_view, 8> kRunwayCompassNames = {
    "NORTH", "NORTHEAST", "EAST", "SOUTHEAST", "SOUTH", "SOUTHWEST", "WEST", "NORTHWEST"};

// "9" gives "09": a one-character number gets a "0" in front; any other stays as it is.
std::string RunwayNumberText(std::string_view number);

// The letter a designator adds behind the number: its first character ("LEFT" gives "L");
// nothing for "NONE" or an empty designator.
std::string DesignatorLetter(std::string_view designator);

// The number of a runway's other end: 18 more (1 to 36, two digits: "27" gives "09"), or the
// opposite compass name; empty when `number` is neither.
std::string ReciprocalRunwayNumber(std::string_view number);

// The designator of a runway's other end: LEFT and RIGHT swap, the others stay.
std::string_view ReciprocalDesignator(std::string_view designator);

}  // namespace velmora
