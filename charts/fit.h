#pragma once
// The closest view that holds a whole approach: for kneeboard pages, where the default zoom
// crowds a short approach into the middle and loses the first fixes of a long one.

#include <cstdint>
#include <optional>

#include "data/store.h"
#include "geometry/mapping.h"

namespace velmora {

// Where the fixes may stand on the sheet: below the title block, above the scale bar, with
// room for the name, altitude and DME labels the overlay prints beside each fix.
inline constexpr std::int32_t kFitLeft = 200;
inline constexpr std::int32_t kFitRight = 13400;
inline constexpr std::int32_t kFitTop = 1400;
inline constexpr std::int32_t kFitBottom = 9100;

struct FitView {
  std::int32_t Zoom = kZoomOnLoad;
  std::int32_t PanX = 0;
  std::int32_t PanY = 0;
};

// The smallest even Zoom from 2 to 50 at which every fix of approach SelApp that a table holds
// is drawn and fits between the bounds above, and the pan that centres them there. At 50 when
// nothing closer holds them; none when the airport or the approach has no known position.
std::optional<FitView> FitApproach(const Store& store);

}  // namespace velmora
