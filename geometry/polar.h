#pragma once

#include <cstdint>

namespace velmora {

// The point `distance` x 360 twips from (x, y) on `bearing` (whole degrees clockwise from the
// top of the canvas, Y downward). A bearing outside 0 to 360 leaves outX, outY untouched.
void PolarOffset(std::int32_t x, std::int32_t y, std::int32_t bearing, double distance,
                 std::int32_t& outX, std::int32_t& outY);

}  // namespace velmora
