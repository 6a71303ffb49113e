#include "geometry/polar.h"

#include <cmath>

#include "data/numbers.h"
#include "geometry/screen.h"

namespace velmora {
namespace {

double SinDeg(std::int32_t degrees) {
  return std::sin(degrees * 0.0174532925199433);
}

}  // namespace

void PolarOffset(std::int32_t x, std::int32_t y, std::int32_t bearing, double distance,
                 std::int32_t& outX, std::int32_t& outY) {
  const double d = distance * 360.0;
  // Each product is rounded by itself; the quadrant alone gives the signs.
  const auto r = [d](std::int32_t angle) { return RoundEven(d * SinDeg(angle)); };
  if (bearing >= 0 && bearing <= 90) {
    outX = ScreenAdd(x, r(bearing));
    outY = ScreenAdd(y, -r(90 - bearing));
  } else if (bearing >= 91 && bearing <= 180) {
    outX = ScreenAdd(x, r(180 - bearing));
    outY = ScreenAdd(y, r(bearing - 90));
  } else if (bearing >= 181 && bearing <= 270) {
    outX = ScreenAdd(x, -r(bearing - 180));
    outY = ScreenAdd(y, r(270 - bearing));
  } else if (bearing >= 271 && bearing <= 360) {
    outX = ScreenAdd(x, -r(360 - bearing));
    outY = ScreenAdd(y, -r(bearing - 270));
  }
}

}  // namespace velmora
