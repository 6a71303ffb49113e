#pragma once
// Number reading and rounding shared by every reader and painter.

#include <cstdint>
#include <optional>
#include <string>
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

// `value` with `decimals` decimals and "." whatever the locale; never "-0.0".
std::string DecimalText(double value, int decimals);

inline constexpr double kFootMetres = 0.3048;

// Feet of a height as the files write one: a number and its unit letter, "F" feet or "M"
// metres; `plainUnit` ('F' or 'M') is the unit of a number without letter. None for any other
// letter and for text that holds no number.
std::optional<double> HeightFeet(std::string_view text, char plainUnit);

}  // namespace velmora
