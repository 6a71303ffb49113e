#include "geometry/numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace velmora {

std::int32_t RoundEven(double value) {
  const double r = std::nearbyint(value);  // default mode: ties to even
  if (!(r >= std::numeric_limits<std::int32_t>::min())) return std::numeric_limits<std::int32_t>::min();
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
  for (char c : text) {
    if (!((c >= '0' && c <= '9') || c == '.')) return std::nullopt;
  }
  double value = 0;
  const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value,
                                         std::chars_format::fixed);
  if (ec != std::errc() || ptr != text.data() + text.size()) return std::nullopt;
  return negative ? -value : value;
}

}  // namespace velmora
