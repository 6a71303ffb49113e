#include "data/runway_text.h"

#include <charconv>
#include <cstdio>

namespace velmora {

std::string RunwayNumberText(std::string_view number) {
  return std::string(number.size() == 1 ? "0" : "") + std::string(number);
}

std::string DesignatorLetter(std::string_view designator) {
  if (designator == "NONE" || designator.empty()) return {};
  return std::string(designator.substr(0, 1));
}

std::string ReciprocalRunwayNumber(std::string_view number) {
  for (std::size_t i = 0; i < kRunwayCompassNames.size(); ++i) {
    if (number == kRunwayCompassNames[i]) {
      return std::string(kRunwayCompassNames[(i + 4) % kRunwayCompassNames.size()]);
    }
  }
  int n = 0;
  const auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), n);
  if (ec != std::errc() || end != number.data() + number.size() || n < 1 || n > 36) return {};
  char text[4];
  std::snprintf(text, sizeof text, "%02d", (n + 17) % 36 + 1);
  return text;
}

std::string_view ReciprocalDesignator(std::string_view designator) {
  if (designator == "LEFT") return "RIGHT";
  if (designator == "RIGHT") return "LEFT";
  return designator;
}

}  // namespace velmora
