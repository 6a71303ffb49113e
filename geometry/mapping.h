#pragma once
// Grid units to canvas twips, north up. The airport reference point lands at (7000, 5000).

#include <cstdint>

#include "geometry/screen.h"

namespace velmora {

struct View {
  std::int32_t Zoom = 2;     // grid units per twip, even, 2 to 50
  std::int32_t PanX = 0;     // twips the plan and overlay are shifted right
  std::int32_t PanY = 0;     // twips shifted down
  std::int32_t OriginX = 0;  // grid X at canvas X 0
  std::int32_t OriginY = 0;  // grid Y at canvas Y kOriginScreenY
};

inline constexpr std::int32_t kArpScreenX = 7000;
inline constexpr std::int32_t kArpScreenY = 5000;
// A constant of the chart, not the canvas height.
inline constexpr std::int32_t kOriginScreenY = 10000;
inline constexpr std::int32_t kZoomMin = 2;
inline constexpr std::int32_t kZoomMax = 50;
inline constexpr std::int32_t kZoomStep = 2;
inline constexpr std::int32_t kZoomOnLoad = 16;
// Clicks move the chart at most this far: the whole world at the closest Zoom.
inline constexpr std::int32_t kPanLimit = 40000000;

// Where a painter still draws a position, tested before pan: VORs by X alone, the later
// fixes of an approach by Y alone.
inline constexpr std::int32_t kChartAreaRight = 13999;
inline constexpr std::int32_t kChartAreaBottom = 9999;
constexpr bool WithinChartWidth(std::int32_t x) {
  return x >= 1 && x <= kChartAreaRight;
}
constexpr bool WithinChartHeight(std::int32_t y) {
  return y >= 1 && y <= kChartAreaBottom;
}

// Pan is not part of the mapping: the painters add it at each point.
constexpr ScreenPoint Panned(const View& view, ScreenPoint p) {
  return {ScreenAdd(p.x, view.PanX), ScreenAdd(p.y, view.PanY)};
}
std::int32_t GridToScreenX(const View& view, std::int32_t gridX);
std::int32_t GridToScreenY(const View& view, std::int32_t gridY);

// Places the airport reference point at (7000, 5000) for the present Zoom.
void SetOrigin(View& view, std::int32_t arptGridX, std::int32_t arptGridY);

}  // namespace velmora
