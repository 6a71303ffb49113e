#include "data/numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace velmora {

std::int32_t RoundEven(double value) {
  const double r = std::nearbyint(value);  // default mode: ties to even
  if (!(r >= std::numeric_limits<std::int32_t>::min()))
    return std::numeric_limits<std::int32_t>::min();
  if (r > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(r);
}

std::int64_t RoundAway(double value) {
  const double r = std::round(value);
  if (!(r >= -9.0e18)) return static_cast<std::int64_t>(-9.0e18);
  if (r > 9.0e18) return static_cast<std::int64_t>(9.0e18);
  return static_cast<std::int64_t>(r);
}

std::optional<double> ParseNumber(std::string_view text) {
  bool negative = false;
  if (!text.empty() && text.front() == '-') {
    negative = true;
    text.remove_prefix(1);
  }
  if (!text.empty() && text.back() == '-') {
    negative = true;
    text.remove_suffix(1);
  }
  // from_chars would take "inf", "nan" and exponents; the files hold plain decimals only.
  if (text.empty() || text == ".") return std::nullopt;
  std::uint64_t digits = 0;
  int count = 0, decimals = 0;
  bool point = false;
  for (char c : text) {
    if (c == '.' && !point) {
      point = true;
    } else if (c >= '0' && c <= '9') {
      digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
      ++count;
      if (point) ++decimals;
    } else {
      return std::nullopt;
    }
  }
  double value = 0;
  if (count <= 15) {
    // Both numbers are exact in a double, so the quotient is rounded once, as from_chars does.
    static constexpr double kPow10[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    value = static_cast<double>(digits) / kPow10[decimals];
  } else {
    std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  }
  return negative ? -value : value;
}

std::string DecimalText(double value, int decimals) {
  char text[400];  // the longest double written in full
  const auto r = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  std::string out(text, r.ptr);
  if (out.front() == '-' && out.find_first_not_of("-0.") == std::string::npos) out.erase(0, 1);
  return out;
}

std::optional<double> HeightFeet(std::string_view text, char plainUnit) {
  char unit = plainUnit;
  if (!text.empty() &&
      ((text.back() >= 'A' && text.back() <= 'Z') || (text.back() >= 'a' && text.back() <= 'z'))) {
    unit = static_cast<char>(text.back() & ~0x20);
    text.remove_suffix(1);
  }
  const auto value = ParseNumber(text);
  if (!value || (unit != 'F' && unit != 'M')) return std::nullopt;
  return unit == 'F' ? *value : *value / kFootMetres;
}

}  // namespace velmora
