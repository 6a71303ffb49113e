#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <tuple>
#include <vector>

#include "data/index_search.h"
#include "data/vor.h"
#include "geometry/coords.h"
#include "geometry/fix.h"
#include "geometry/polar.h"
#include "test_support.h"

namespace velmora::test {
namespace {

constexpr std::int32_t kDeg = 216000;
constexpr std::int32_t kX0 = 38880000;
constexpr std::int32_t kY0 = 19440000;

TEST(VorList, BuildsCoordinateTextFromTheFields) {
  TempDir dir;
  Store store;
  const std::string file = CrLf(
      {"1;-122;-18.55;47;26.390;0;SEA;116.80", "2;8;34.12;-33;-56.50;0;ZRH;114.85", "short;1;2", "",
       "3;0;-10.5;0;-0.5;x;GRN;110.00;9;10", "4;8;34,12;-12;-18,55;0;CMA;112.00"});
  const VorReport report = LoadVor(store, dir.write("vor.nav", file));
  EXPECT_EQ(std::tie(report.opened, report.skipped, report.dropped), std::tuple(true, 2, 0));
  ASSERT_EQ(store.VorLast, 3);
  const struct {
    const char *ident, *lon, *lat, *frequency;
  } want[] = {{"SEA", "W122 18.55", "N47 26.390", "116.80"},  // trailing zeros stay north
              {"ZRH", "E8 34.12", "S33 56.5", "114.85"},      // and go south
              {"GRN", "E0 -10.5", "N0 -0.5", "110.00"}};
  for (int i = 0; i < 3; ++i) {
    const VorRow& v = store.Vor[i];
    EXPECT_EQ(std::tie(v.ident, v.lon, v.lat, v.frequency),
              std::tuple(want[i].ident, want[i].lon, want[i].lat, want[i].frequency));
  }
  // "," as decimal mark: 34.12' is 122832 grid units, 18.55' is 66780.
  EXPECT_EQ(store.Vor[3].ident, "CMA");
  EXPECT_EQ(LonToGrid(store.Vor[3].lon), kX0 + 8 * kDeg + 122832);
  EXPECT_EQ(LatToGrid(store.Vor[3].lat), kY0 - 12 * kDeg - 66780);
}

TEST(VorList, VorLastIsTheHighestSlotInUse) {
  TempDir dir;
  const struct {
    int lines, vorLast, dropped;
  } cases[] = {{0, -1, 0}, {1, 0, 0}, {5, 4, 0}, {8001, 8000, 0}, {8003, 8000, 2}};
  for (const auto& c : cases) {
    std::string text;
    for (int i = 0; i < c.lines; ++i) {
      text += std::to_string(i) + ";1;0.0;1;0.0;0;V" + std::to_string(i) + ";110.00\r\n";
    }
    Store store;
    const VorReport report = LoadVor(store, dir.write("vor.nav", text));
    EXPECT_EQ(std::tie(report.opened, store.VorLast, report.dropped),
              std::tuple(true, c.vorLast, c.dropped))
        << c.lines;
    if (c.vorLast >= 0) {
      EXPECT_EQ(store.Vor[c.vorLast].ident, "V" + std::to_string(c.vorLast)) << c.lines;
    }
  }
  Store store;
  EXPECT_FALSE(LoadVor(store, dir.path() / "missing.nav").opened);
  EXPECT_EQ(store.VorLast, -1);
}

std::string IndexLines(int count) {
  std::string text;
  char line[80];
  for (int i = 1; i <= count; ++i) {
    std::snprintf(line, sizeof line, "C%05d;Info %05d;Second info;file %05d.xml\r\n", i, i, i);
    text += line;
  }
  return text;
}

TEST(IndexSearch, ProgressGainsADotEvery3000RejectedLines) {
  TempDir dir;
  const auto index = dir.write("Arpt index.txt", IndexLines(24001));
  const std::vector<int> all = {0, 1, 2, 3, 4, 5, 6, 7};
  const struct {
    const char* code;
    std::vector<int> dots;
  } cases[] = {
      {"C00001", {}},  {"C03001", {0}}, {"C03002", {0, 1}}, {"C21001", {0, 1, 2, 3, 4, 5, 6}},
      {"C21002", all}, {"C24001", all}, {"NOWHERE", all},
  };
  for (const auto& c : cases) {
    std::vector<int> dots;
    const auto result = SearchIndex(index, c.code, [&](int d) { dots.push_back(d); });
    EXPECT_EQ(dots, c.dots) << c.code;
    const std::string n = std::string(c.code).substr(1);
    if (c.code[0] == 'C') {
      EXPECT_EQ(std::tie(result.found, result.ident, result.info1, result.info2, result.file),
                std::tuple(true, c.code, "Info" + n, "Secondinfo", "file" + n + ".xml"));
    } else {  // ident: field 1 of the last line looked at
      EXPECT_EQ(std::tie(result.found, result.ident), std::tuple(false, "C24001"));
    }
  }
}

// Index lines are written with "|" between them.
TEST(IndexSearch, MatchesField1WithoutItsBlanks) {
  const struct {
    const char *index, *search;
    bool found;
    const char *ident, *info1, *file;
    int calls;  // progress calls
  } cases[] = {
      {"KSEA;a;b;s.xml| K L A X ;Los Angeles;Intl;dir/k lax.xml", "KLAX", true, "KLAX",
       "LosAngeles", "dir/klax.xml", 1},
      {"klax;a;b;c.xml", "KLAX", false, "klax", "", "", 1},  // the index isn't upper-cased
      {"KLAX;a;b;c.xml", "KL AX", false, "KLAX", "", "", 1},
      {"KLAX;first;x;a.xml|KLAX;second;y;b.xml", "KLAX", true, "KLAX", "first", "a.xml", 0},
      {"KLAX;a;b;c.xml;extra;more", "KLAX", true, "KLAX", "a", "c.xml", 0},
      {"KSEA;a;b;s.xml|;x;y;z.xml", "", true, "", "x", "z.xml", 1},
      {"", "KLAX", false, "", "", "", 0}};
  TempDir dir;
  for (const auto& c : cases) {
    int calls = 0;
    std::string text;
    for (char ch : std::string_view(c.index))
      text += ch == '|' ? std::string("\r\n") : std::string(1, ch);
    if (!text.empty()) text += "\r\n";
    const auto result =
        SearchIndex(dir.write("Arpt index.txt", text), c.search, [&](int) { ++calls; });
    EXPECT_EQ(std::tie(result.opened, result.found, result.ident, result.info1, result.file, calls),
              std::tuple(true, c.found, c.ident, c.info1, c.file, c.calls))
        << c.index;
  }
  const auto missing = SearchIndex(dir.path() / "none.txt", "KLAX", nullptr);
  EXPECT_FALSE(missing.opened || missing.found);
}

TEST(FixLookup, FirstTableAndLowestSlotWin) {
  const auto Lat = [](int degrees) { return "N" + std::to_string(degrees) + " 0.00"; };
  const auto Lon = [](int degrees) { return "E" + std::to_string(degrees) + " 0.00"; };
  Store s;
  s.Waypoint[0] = {"ALPHA", Lat(10), Lon(10)};
  s.Waypoint[1] = {"DUP", Lat(11), Lon(11)};
  s.Waypoint[2] = {"DUP", Lat(12), Lon(12)};
  s.Waypoint[3] = {"HIDDEN", Lat(13), Lon(13)};  // beyond WaypointLast
  s.WaypointLast = 2;
  s.Ndb[1] = {Lat(20), Lon(20), "350", "BETA"};
  s.NdbLast = 1;
  s.Vor[0] = {"ALPHA", Lat(30), Lon(30), "113.00"};
  s.Vor[1] = {"BETA", Lat(31), Lon(31), "113.00"};
  s.Vor[2] = {"GAMMA", Lat(32), Lon(32), "113.00"};
  s.Vor[3] = {"gamma", Lat(33), Lon(33), "113.00"};
  s.VorLast = 3;
  // A helipad has no fix name, and an empty ident must not find it.
  std::tie(s.RwyEnd[0].type, s.RwyEnd[0].lat, s.RwyEnd[0].lon) =
      std::tuple("HELIPAD", Lat(40), Lon(40));
  std::tie(s.RwyEnd[1].fixName, s.RwyEnd[1].lat, s.RwyEnd[1].lon) =
      std::tuple("RW25L", Lat(41), Lon(41));
  s.RwyLast = 1;
  const struct {
    const char* ident;
    int degrees;  // 0: not found
  } cases[] = {{"ALPHA", 10}, {"DUP", 11},   {"BETA", 20},  {"GAMMA", 32}, {"gamma", 33},
               {"Gamma", 0},  {"RW25L", 41}, {"HIDDEN", 0}, {"", 0},       {"NOPE", 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(
        std::tuple(FixGridX(s, c.ident), FixGridY(s, c.ident)),
        c.degrees ? std::tuple(kX0 + c.degrees * kDeg, kY0 + c.degrees * kDeg) : std::tuple(0, 0))
        << c.ident;
  }
}

TEST(PolarOffsetTest, QuadrantsAndRounding) {
  const struct {
    int bearing;
    double distance;
    int dx, dy;
  } cases[] = {
      {0, 1.0, 0, -360},     {360, 1.0, 0, -360},    {90, 1.0, 360, 0},    {180, 1.0, 0, 360},
      {270, 1.0, -360, 0},   {45, 1.0, 255, -255},   {45, 0.6, 153, -153}, {135, 1.0, 255, 255},
      {225, 1.0, -255, 255}, {315, 1.0, -255, -255}, {30, 1.0, 180, -312}, {120, 1.0, 312, 180},
      {210, 1.0, -180, 312}, {300, 1.0, -312, -180},
  };
  for (const auto& c : cases) {
    std::int32_t x = 0, y = 0;
    PolarOffset(1000, 2000, c.bearing, c.distance, x, y);
    EXPECT_EQ(std::tie(x, y), std::tuple(1000 + c.dx, 2000 + c.dy))
        << c.bearing << " at " << c.distance;
  }
  for (int bearing : {361, -1}) {
    std::int32_t x = -7, y = -9;
    PolarOffset(1000, 2000, bearing, 1.0, x, y);
    EXPECT_EQ(std::tie(x, y), std::tuple(-7, -9)) << bearing;
  }
}

}  // namespace
}  // namespace velmora::test
