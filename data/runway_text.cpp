#include "data/runway_text.h"

namespace velmora {

std::string RunwayNumberText(std::string_view number) {
  return std::string(number.size() == 1 ? "0" : "") + std::string(number);
}

std::string DesignatorLetter(std::string_view designator) {
  if (designator == "NONE" || designator.empty()) return {};
  return std::string(designator.substr(0, 1));
}

}  // namespace velmora
