#include "geometry/mapping.h"

#include <cstdint>

#include "data/numbers.h"

namespace velmora {

std::int32_t GridToScreenX(const View& view, std::int32_t gridX) {
  return RoundEven((static_cast<double>(gridX) - view.OriginX) / view.Zoom);
}

std::int32_t GridToScreenY(const View& view, std::int32_t gridY) {
  const std::int64_t up = RoundEven((static_cast<double>(gridY) - view.OriginY) / view.Zoom);
  return RoundEven(static_cast<double>(kOriginScreenY - up));  // saturates far off the chart
}

void SetOrigin(View& view, std::int32_t arptGridX, std::int32_t arptGridY) {
  view.OriginX = RoundEven(static_cast<double>(arptGridX) - double{kArpScreenX} * view.Zoom);
  view.OriginY =
      RoundEven(static_cast<double>(arptGridY) - double{kOriginScreenY - kArpScreenY} * view.Zoom);
}

}  // namespace velmora
