#pragma once
// Coordinate text ("N47 26.39", "W122 18.55") to grid units, and elevation text to feet.
// Grid unit: 1/216000 degree. Grid X is 38880000 on the Greenwich meridian, growing east;
// grid Y is 19440000 on the equator, growing north. No projection, no wrap.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

inline constexpr std::int32_t kGridPerDegree = 216000;
inline constexpr std::int32_t kGridPerMinute = 3600;
inline constexpr std::int32_t kGridXGreenwich = 38880000;
inline constexpr std::int32_t kGridYEquator = 19440000;

// A position in grid units.
struct GridPoint {
  std::int32_t x = 0, y = 0;
};

// Nautical miles along the great circle between two positions, on a sphere of this radius.
inline constexpr double kEarthRadiusNm = 3440.065;
double GreatCircleNm(GridPoint a, GridPoint b);

// No value for a text without a second word or without numbers in its places: no chart
// position can be made from it. Allocates nothing.
std::optional<std::int32_t> LonToGrid(std::string_view coord);
std::optional<std::int32_t> LatToGrid(std::string_view coord);

// The coordinate text of a signed position in degrees: letter, degrees (2 digits of latitude,
// 3 of longitude), blank, minutes with 2 to 4 decimals (a 4th decimal is 0.2 m). South and west
// are negative.
std::string LatText(double degrees);
std::string LonText(double degrees);

// "130.2M" gives "427": metres times 3.28, rounded. Empty or unit-only text gives "0";
// text that holds no number gives empty text, so no made-up elevation is shown.
std::string MetersToFeet(std::string_view length);

}  // namespace velmora
