#include "charts/fit.h"

#include <algorithm>
#include <vector>

#include "data/numbers.h"
#include "geometry/coords.h"
#include "geometry/fix.h"

namespace velmora {
namespace {

struct GridFix {
  std::int32_t x, y;
  bool first;  // the overlay draws the first fix wherever it lands
};

// One pass over the legs; each zoom is then a little arithmetic on these positions.
std::vector<GridFix> KnownFixes(const Store& s) {
  std::vector<GridFix> fixes;
  bool first = true;
  for (std::int32_t slot = 0; slot <= s.LegLast && s.Leg.has(slot); ++slot) {
    const LegRow& leg = s.Leg[slot];
    if (leg.app != s.SelApp || leg.trans != kApproachLeg) continue;
    const bool isFirst = first;
    first = false;
    if (leg.fixIdent.empty()) continue;
    const std::int32_t gx = FixGridX(s, leg.fixIdent);
    const std::int32_t gy = FixGridY(s, leg.fixIdent);
    if (gx != 0 && gy != 0) fixes.push_back({gx, gy, isFirst});
  }
  return fixes;
}

}  // namespace

std::optional<FitView> FitApproach(const Store& store) {
  if (!store.AppSelected || !store.Approach.has(store.SelApp)) return std::nullopt;
  const auto arpX = LonToGrid(store.ArptLon);
  const auto arpY = LatToGrid(store.ArptLat);
  if (!arpX || !arpY) return std::nullopt;
  const std::vector<GridFix> fixes = KnownFixes(store);
  if (fixes.empty()) return std::nullopt;
  for (std::int32_t zoom = kZoomMin; zoom <= kZoomMax; zoom += kZoomStep) {
    View v;
    v.Zoom = zoom;
    SetOrigin(v, *arpX, *arpY);
    std::int32_t left = INT32_MAX, right = INT32_MIN, top = INT32_MAX, bottom = INT32_MIN;
    bool drawn = true;
    for (const GridFix& f : fixes) {
      const std::int32_t x = GridToScreenX(v, f.x), y = GridToScreenY(v, f.y);
      // The overlay drops a later fix whose place before pan is off the chart's height.
      if (!f.first && !WithinChartHeight(y)) drawn = false;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
    const bool fits = static_cast<std::int64_t>(right) - left <= kFitRight - kFitLeft &&
                      static_cast<std::int64_t>(bottom) - top <= kFitBottom - kFitTop;
    if ((drawn && fits) || zoom == kZoomMax) {
      return FitView{zoom, RoundEven((kFitLeft + kFitRight) / 2.0 - (left / 2.0 + right / 2.0)),
                     RoundEven((kFitTop + kFitBottom) / 2.0 - (top / 2.0 + bottom / 2.0))};
    }
  }
  return std::nullopt;
}

}  // namespace velmora
