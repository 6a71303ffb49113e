#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "geometry/coords.h"
#include "geometry/mapping.h"

namespace velmora {
namespace {

constexpr std::int32_t kDeg = 216000;
constexpr std::int32_t kX0 = 38880000;
constexpr std::int32_t kY0 = 19440000;
using ToGrid = std::optional<std::int32_t> (*)(std::string_view);

// Besides the worked examples: zero from both sides, neighbours across the meridian and the
// equator, minutes too small for a grid unit, leading zeros, 60 minutes or more, words behind
// the second, and letters other than W and S.
TEST(CoordGrid, CoordinateTextToGrid) {
  const struct {
    ToGrid fn;
    const char* text;
    std::int32_t grid;
  } cases[] = {{LonToGrid, "W122 18.55", 12461220},
               {LonToGrid, "E8 41.20", 40756320},
               {LonToGrid, "E8 0.00", 40608000},
               {LonToGrid, "E0 -10.5", 38842200},
               {LatToGrid, "N47 26.39", 29687004},
               {LatToGrid, "S33 56.50", 12108600},
               {LatToGrid, "S33 0.00", 12312000},
               {LonToGrid, "W0 0.00", kX0},
               {LatToGrid, "N0 0.00", kY0},
               {LonToGrid, "W0 0.01", kX0 - 36},
               {LatToGrid, "N0 -0.5", kY0 - 1800},
               {LonToGrid, "W1 0.0001", kX0 - kDeg},
               {LonToGrid, "W005 00.00", kX0 - 5 * kDeg},
               {LonToGrid, "E10 75.00", kX0 + 10 * kDeg + 75 * 3600},
               {LonToGrid, "E8 41.20 behind", 40756320},
               {LatToGrid, "W47 26.39", 29687004}};
  for (const auto& c : cases) EXPECT_EQ(c.fn(c.text), c.grid) << c.text;
}

TEST(CoordGrid, TextWithoutNumbersGivesNoValue) {
  for (const char* text : {"", "N47", "N47 ", "N 26.39", "Nab 26.39", "N47 x.5"}) {
    EXPECT_FALSE(LatToGrid(text).has_value()) << '"' << text << '"';
    EXPECT_FALSE(LonToGrid(text).has_value()) << '"' << text << '"';
  }
}

TEST(CoordGrid, PartFunctionsPutTheMinusBehindTheWord) {
  EXPECT_EQ(LonDegrees("W122 18.55") + LonMinutes("W122 18.55"), "122-18.55-");
  EXPECT_EQ(LatDegrees("W122 18.55") + LatMinutes("S33 -0.5") + LatDegrees(""), "122-0.5-");
}

TEST(CoordGrid, MetersToFeet) {
  // -10M is -32.8 ft; 6.25M is exactly 20.5 ft, and ties go to the even number.
  const struct {
    const char *metres, *feet;
  } cases[] = {{"130.2M", "427"}, {"", "0"}, {"-10M", "-33"}, {"6.25M", "20"}, {"0.0M", "0"}};
  for (const auto& c : cases) EXPECT_EQ(MetersToFeet(c.metres), c.feet) << c.metres;
}

TEST(ScreenMapping, AirportPointLandsAt7000By5000AtEveryZoom) {
  const std::int32_t arpX = 12461220, arpY = 29687004;
  for (std::int32_t zoom : {2, 16, 50}) {
    SCOPED_TRACE(zoom);
    View v;
    v.Zoom = zoom;
    v.PanX = 300;  // pan is the painters' business, not the mapping's
    v.PanY = -200;
    SetOrigin(v, arpX, arpY);
    EXPECT_EQ(GridToScreenX(v, arpX), 7000);
    EXPECT_EQ(GridToScreenY(v, arpY), 5000);
    EXPECT_EQ(GridToScreenX(v, arpX + zoom), 7001);  // east is right
    EXPECT_EQ(GridToScreenY(v, arpY + zoom), 4999);  // north is up
  }
}

TEST(ScreenMapping, QuotientTiesRoundToEven) {
  View v;
  v.Zoom = 2;
  v.OriginX = 1000;
  v.OriginY = 5000;
  const struct {
    std::int32_t offset, x, y;  // grid units from the origin; twips
  } cases[] = {{5, 2, 9998}, {7, 4, 9996}, {-5, -2, 10002}, {3, 2, 9998}, {-7, -4, 10004}};
  for (const auto& c : cases) {
    EXPECT_EQ(GridToScreenX(v, v.OriginX + c.offset), c.x) << c.offset;
    EXPECT_EQ(GridToScreenY(v, v.OriginY + c.offset), c.y) << c.offset;
  }
}

}  // namespace
}  // namespace velmora
