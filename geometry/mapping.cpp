#include "geometry/mapping.h"

#include <cstdint>

#include "geometry/numbers.h"

namespace velmora {

std::int32_t GridToScreenX(const View& view, std::int32_t gridX) {
  return RoundEven((static_cast<double>(gridX) - view.OriginX) / view.Zoom);
}

std::int32_t GridToScreenY(const View& view, std::int32_t gridY) {
  // 10000 is a constant of the chart, not the canvas height.
  const std::int64_t up = RoundEven((static_cast<double>(gridY) - view.OriginY) / view.Zoom);
  return RoundEven(static_cast<double>(10000 - up));  // saturates far off the chart
}

void SetOrigin(View& view, std::int32_t arptGridX, std::int32_t arptGridY) {
  view.OriginX = RoundEven(static_cast<double>(arptGridX) - 7000.0 * view.Zoom);
  view.OriginY = RoundEven(static_cast<double>(arptGridY) - 5000.0 * view.Zoom);
}

}  // namespace velmora
