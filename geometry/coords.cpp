#include "geometry/coords.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "data/numbers.h"

namespace velmora {
namespace {

struct Words {
  std::string_view first;
  std::string_view second;
  bool hasSecond = false;
};

Words TwoWords(std::string_view text) {
  Words w;
  const std::size_t blank = text.find(' ');
  w.first = text.substr(0, blank);
  if (blank != std::string_view::npos) {
    const std::string_view rest = text.substr(blank + 1);
    w.second = rest.substr(0, rest.find(' '));
    w.hasSecond = true;
  }
  return w;
}

std::optional<std::int32_t> ToGrid(std::string_view coord, char negativeLetter, std::int64_t base) {
  if (coord.empty()) return std::nullopt;
  const Words w = TwoWords(coord);
  if (!w.hasSecond || w.first.empty()) return std::nullopt;
  const auto degrees = ParseNumber(w.first.substr(1));
  const auto minutes = ParseNumber(w.second);
  if (!degrees || !minutes) return std::nullopt;
  const bool negativeSide = coord.front() == negativeLetter;
  // Any minus sign, from the letter or on the minutes, puts the minutes on the negative side.
  const double m = (negativeSide && *minutes > 0) ? -*minutes : *minutes;
  const std::int64_t d = RoundEven(*degrees);
  const std::int64_t mGrid = RoundEven(m * kGridPerMinute);
  const std::int64_t v = std::llabs(mGrid) + std::llabs(d) * kGridPerDegree;
  const bool west = mGrid < 0 || (mGrid == 0 && negativeSide);
  return RoundEven(static_cast<double>(west ? base - v : base + v));
}

std::string CoordText(double degrees, char positive, char negative, int degreeDigits) {
  // Ten-thousandths of a minute, rounded once, so that 46.3066666666667 gives 18.40.
  const long long units = std::llround(std::fabs(degrees) * 600000);
  const long long minutes = units % 600000;
  char text[48];
  std::snprintf(text, sizeof text, "%c%0*lld %02lld.%04lld", degrees < 0 ? negative : positive,
                degreeDigits, units / 600000, minutes / 10000, minutes % 10000);
  std::string out = text;
  while (out[out.size() - 3] != '.' && out.back() == '0') out.pop_back();
  return out;
}

}  // namespace

std::string LatText(double degrees) {
  return CoordText(degrees, 'N', 'S', 2);
}

std::string LonText(double degrees) {
  return CoordText(degrees, 'E', 'W', 3);
}

std::optional<std::int32_t> LonToGrid(std::string_view coord) {
  return ToGrid(coord, 'W', kGridXGreenwich);
}

std::optional<std::int32_t> LatToGrid(std::string_view coord) {
  return ToGrid(coord, 'S', kGridYEquator);
}

double GreatCircleNm(GridPoint a, GridPoint b) {
  constexpr double kRadiansPerGrid = 3.14159265358979323846 / 180.0 / kGridPerDegree;
  const double lat1 = (static_cast<double>(a.y) - kGridYEquator) * kRadiansPerGrid;
  const double lat2 = (static_cast<double>(b.y) - kGridYEquator) * kRadiansPerGrid;
  const double dLat = lat2 - lat1;
  const double dLon = (static_cast<double>(b.x) - a.x) * kRadiansPerGrid;
  // The haversine form keeps its precision for fixes a few hundred metres apart.
  const double h = std::pow(std::sin(dLat / 2), 2) +
                   std::cos(lat1) * std::cos(lat2) * std::pow(std::sin(dLon / 2), 2);
  return 2 * kEarthRadiusNm * std::asin(std::sqrt(std::min(1.0, h)));
}

std::string MetersToFeet(std::string_view length) {
  if (length.size() <= 1) return "0";
  const auto metres = ParseNumber(length.substr(0, length.size() - 1));
  if (!metres) return {};
  return std::to_string(RoundEven(*metres * 3.28));
}

}  // namespace velmora
