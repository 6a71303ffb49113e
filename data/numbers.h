#pragma once
// Number reading and rounding shared by every reader and painter.

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora {

// Calculations round to nearest, ties to even; results beyond 32 bits saturate.
std::int32_t RoundEven(double value);
// Labels round an exact half away from zero.
std::int64_t RoundAway(double value);

// A decimal number with "." as decimal mark, whatever the locale. A "-" in front of or
// behind the digits makes it negative ("18.55-" is -18.55); any other character makes the
// text no number. Allocates nothing.
std::optional<double> ParseNumber(std::string_view text);

}  // namespace velmora
