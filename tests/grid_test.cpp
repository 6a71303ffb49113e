#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "data/numbers.h"
#include "geometry/coords.h"
#include "geometry/mapping.h"

namespace velmora {
namespace {

constexpr std::int32_t kDeg = 216000;
constexpr std::int32_t kX0 = 38880000;
constexpr std::int32_t kY0 = 19440000;

// Besides the worked examples: zero from the negative side, a neighbour across the meridian,
// minutes too small for a grid unit, leading zeros, 60 minutes or more, words behind the
// second, a letter other than W and S, a minus on the minutes of the west, and parts that are
// not plain decimals: a blank first, or decimal degrees without one.
TEST(CoordGrid, CoordinateTextToGrid) {
  const struct {
    std::optional<std::int32_t> (*fn)(std::string_view);
    const char* text;
    std::optional<std::int32_t> grid;
  } cases[] = {
      {LonToGrid, "W122 18.55", 12461220},    {LonToGrid, "E8 41.20", 40756320},
      {LatToGrid, "N47 26.39", 29687004},     {LatToGrid, "S33 56.50", 12108600},
      {LonToGrid, "E0 -10.5", 38842200},      {LatToGrid, "S0 0.00", kY0},
      {LonToGrid, "W0 0.01", kX0 - 36},       {LonToGrid, "W1 0.0001", kX0 - kDeg},
      {LonToGrid, "W005 00.00", 37800000},    {LonToGrid, "E10 75.00", kX0 + 10 * kDeg + 270000},
      {LatToGrid, "W47 26.39", 29687004},     {LonToGrid, "E8 41.20 behind", 40756320},
      {LatToGrid, "", std::nullopt},          {LatToGrid, "N47", std::nullopt},
      {LonToGrid, "E 26.39", std::nullopt},   {LonToGrid, "E8 x.5", std::nullopt},
      {LonToGrid, "E8 41.2.0", std::nullopt}, {LatToGrid, "N1e1 0.00", std::nullopt},
      {LonToGrid, "W0 -10.5", kX0 - 37800},   {LonToGrid, " 26.39", std::nullopt},
      {LatToGrid, "47.5", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(c.fn(c.text), c.grid) << '"' << c.text << '"';
}

// A sign in front or behind; two do not cancel. Nothing but digits and one point.
TEST(Numbers, ParseAndRound) {
  const std::pair<const char*, std::optional<double>> parsed[] = {
      {"18.55-", -18.55},    {"-3", -3.0},
      {"-1-", -1.0},         {"1.", 1.0},
      {".5", 0.5},           {"0.125", 0.125},
      {"", std::nullopt},    {".", std::nullopt},
      {"-", std::nullopt},   {"1-2", std::nullopt},
      {"1e5", std::nullopt}, {"1.2.3", std::nullopt},
      {"+1", std::nullopt},  {"12345678901234567", 12345678901234567.0}};
  for (const auto& [text, value] : parsed) EXPECT_EQ(ParseNumber(text), value) << text;
  for (auto [value, even, away] :
       {std::tuple{2.5, 2, 3}, {3.5, 4, 4}, {-2.5, -2, -3}, {0.49, 0, 0}, {-7.6, -8, -8}}) {
    EXPECT_EQ(std::pair(RoundEven(value), RoundAway(value)), std::pair(even, std::int64_t{away}))
        << value;
  }
  EXPECT_EQ(RoundEven(1e12), INT32_MAX);
  EXPECT_EQ(RoundEven(-1e12), INT32_MIN);
}

TEST(CoordGrid, MetersToFeet) {
  // -10M is -32.8 ft; 6.25M is exactly 20.5 ft, and ties go to the even number.
  for (auto [metres, feet] : {std::pair{"130.2M", "427"},
                              {"", "0"},
                              {"M", "0"},
                              {"x1M", ""},
                              {"-10M", "-33"},
                              {"6.25M", "20"}}) {
    EXPECT_EQ(MetersToFeet(metres), feet) << metres;
  }
}

// The airport point itself is placed by the plan; here, the halves between twips.
TEST(ScreenMapping, QuotientTiesRoundToEven) {
  const std::int32_t arpX = 12461220, arpY = 29687004;
  View v;
  SetOrigin(v, arpX, arpY);  // zoom 2: odd offsets fall on halves
  for (auto [offset, twips] : {std::pair{5, 2}, {7, 4}, {-5, -2}, {-7, -4}}) {
    EXPECT_EQ(GridToScreenX(v, arpX + offset), 7000 + twips) << offset;  // east is right
    EXPECT_EQ(GridToScreenY(v, arpY + offset), 5000 - twips) << offset;  // north is up
  }
}

}  // namespace
}  // namespace velmora
