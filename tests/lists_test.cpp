#include <gtest/gtest.h>

#include <tuple>

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

TEST(VorList, CoordinateTextFromTheFieldsAndSlots) {
  TempDir dir;
  Store store;
  const std::string file =
      CrLf({"1;-122;-18.55;47;26.390;0;SEA;116.80", "2;8;34.12;-33;-56.50;0;ZRH;114.85",
            "short;1;2", "", "3;0;-10.5;0;-0.5;x;GRN;110.00;9;10",
            "4;8;34,12;-12;-18,55;0;CMA;112.00", "7;1;0.0;1;0.0;0;SEVEN"});
  const VorReport report = LoadVor(store, dir.write("vor.nav", file));
  EXPECT_TRUE(report.opened);
  EXPECT_EQ(report.skipped, 3);
  EXPECT_EQ(report.dropped, 0);
  EXPECT_EQ(store.VorLast, 3);
  // Trailing zeros stay, north and south.
  const struct {
    const char *ident, *lon, *lat, *frequency;
  } want[] = {
      {"SEA", "W122 18.55", "N47 26.390", "116.80"},
      {"ZRH", "E8 34.12", "S33 56.5", "114.85"},
      {"GRN", "E0 -10.5", "N0 -0.5", "110.00"},
  };
  for (int i = 0; i < 3; ++i) {
    const VorRow& v = store.Vor[i];
    EXPECT_EQ(v.ident, want[i].ident);
    EXPECT_EQ(v.lon, want[i].lon) << v.ident;
    EXPECT_EQ(v.lat, want[i].lat) << v.ident;
    EXPECT_EQ(v.frequency, want[i].frequency) << v.ident;
  }
  // "," as decimal mark: 34.12' is 122832 grid units, 18.55' is 66780.
  EXPECT_EQ(store.Vor[3].ident, "CMA");
  EXPECT_EQ(LonToGrid(store.Vor[3].lon), kX0 + 8 * kDeg + 122832);
  EXPECT_EQ(LatToGrid(store.Vor[3].lat), kY0 - 12 * kDeg - 66780);
}

// Loaded again into the same store: VorLast is the highest slot in use, lines beyond slot 8000
// are dropped, and nothing of the list before stays.
TEST(VorList, ReloadsClearAndStopAtTheLastSlot) {
  TempDir dir;
  Store store;
  const struct {
    int lines, vorLast, dropped;
  } cases[] = {{8001, 8000, 0}, {8003, 8000, 2}, {0, -1, 0}};
  for (const auto& c : cases) {
    std::vector<std::string> text;
    for (int i = 0; i < c.lines; ++i) {
      text.push_back("1;1;0.0;1;0.0;0;V" + std::to_string(i) + ";1");
    }
    const VorReport full = LoadVor(store, dir.write("vor.nav", CrLf(text)));
    EXPECT_TRUE(full.opened);
    EXPECT_EQ(store.VorLast, c.vorLast) << c.lines;
    EXPECT_EQ(full.dropped, c.dropped) << c.lines;
    EXPECT_EQ(store.Vor[0].ident, c.lines ? "V0" : "") << c.lines;
    EXPECT_EQ(store.Vor[8000].ident, c.lines ? "V8000" : "") << c.lines;
  }
  store = Store();
  EXPECT_FALSE(LoadVor(store, dir.path() / "missing.nav").opened);
  EXPECT_EQ(store.VorLast, -1);
}

TEST(IndexSearch, ProgressGainsADotEvery3000RejectedLines) {
  TempDir dir;
  std::string text;
  for (int i = 1; i <= 24001; ++i)
    text += "C" + std::to_string(100000 + i).substr(1) + ";a;b;c\r\n";
  const auto index = dir.write("Arpt index.txt", text);
  const std::vector<int> all = {0, 1, 2, 3, 4, 5, 6, 7};
  // clang-format off
  const struct { const char* code; std::vector<int> dots; } cases[] = {
      {"C00001", {}}, {"C03001", {0}}, {"C03002", {0, 1}}, {"C21002", all}, {"NOWHERE", all}};
  // clang-format on
  for (const auto& c : cases) {
    std::vector<int> dots;
    const auto result = SearchIndex(index, c.code, [&](int d) { dots.push_back(d); });
    EXPECT_EQ(dots, c.dots) << c.code;
    const bool found = c.code[0] == 'C';  // if not, ident is that of the last line looked at
    EXPECT_EQ(result.found, found) << c.code;
    EXPECT_EQ(result.ident, found ? c.code : "C24001");
  }
}

TEST(IndexSearch, MatchesField1WithoutItsBlanks) {
  TempDir dir;
  const auto search = [&](const Lines& index, const char* code) {
    return SearchIndex(dir.write("Arpt index.txt", CrLf(index)), code, nullptr);
  };
  // The fields of a match lose their blanks.
  const auto r = search({"KSEA;a;b;s.xml", " K L A X ;Los Angeles;In tl;dir/k lax.xml"}, "KLAX");
  EXPECT_TRUE(r.found);
  EXPECT_EQ(r.ident, "KLAX");
  EXPECT_EQ(r.info1, "LosAngeles");
  EXPECT_EQ(r.info2, "Intl");
  EXPECT_EQ(r.file, "dir/klax.xml");
  // The first of two wins; a fifth field changes nothing.
  const auto first = search({"KLAX;first;x;a.xml;extra", "KLAX;second;y;b.xml"}, "KLAX");
  EXPECT_EQ(first.info1, "first");
  EXPECT_EQ(first.file, "a.xml");
  // The index isn't upper-cased, and a blank searched for stays.
  EXPECT_FALSE(search({"klax;a;b;c.xml"}, "KLAX").found);
  EXPECT_FALSE(search({"KLAX;a;b;c.xml"}, "KL AX").found);
  EXPECT_FALSE(search({}, "KLAX").found);
  const auto missing = SearchIndex(dir.path() / "none.txt", "KLAX", nullptr);
  EXPECT_FALSE(missing.opened);
  EXPECT_FALSE(missing.found);
}

// A search that finds nothing leaves field 1 of the last line it looked at, however long.
TEST(IndexSearch, NotFoundLeavesField1OfTheLastLine) {
  const std::string q40(40, 'Q'), r32(32, 'R'), r33(33, 'R');
  const struct {
    Lines index;
    std::string ident;
  } cases[] = {{{"KSEA;a", "K L A X;x;y;z"}, "KLAX"},
               {{"KSEA;a", q40 + ";b"}, q40},
               {{q40 + ";b", "KSEA;a"}, "KSEA"},
               {{"KSEA;a", "NOFIELDS"}, "NOFIELDS"},
               {{"KSEA;a", r32}, r32},
               {{"KSEA;a", r33}, r33},
               {{"KSEA;a", ""}, "KSEA"},
               {{"KSEA;a", "AB;c"}, "AB"},
               {{"KSEA;a", ";a;b;c"}, ""},
               {{"KSEA;a", "ABCDEFG;b;c"}, "ABCDEFG"},
               {{"KSEA;a", "ABCDEFGH;b;c"}, "ABCDEFGH"},
               {{"KSEA;a", "A B C;D;b;c"}, "ABC"}};
  TempDir dir;
  for (const auto& c : cases) {
    const auto r = SearchIndex(dir.write("Arpt index.txt", CrLf(c.index)), "NONE", nullptr);
    EXPECT_FALSE(r.found) << c.ident;
    EXPECT_EQ(r.ident, c.ident);
  }
}

TEST(FixLookup, FirstTableAndLowestSlotWin) {
  const auto Lat = [](int degrees) { return "N" + std::to_string(degrees) + " 0.00"; };
  const auto Lon = [](int degrees) { return "E" + std::to_string(degrees) + " 0.00"; };
  Store s;
  const char* waypoints[] = {"", "DUP", "DUP", "HIDDEN"};  // HIDDEN: beyond WaypointLast
  const char* vors[] = {"ALPHA", "BETA", "GAMMA", "gamma"};
  for (int i = 0; i < 4; ++i) {
    s.Waypoint[i] = {waypoints[i], Lat(10 + i), Lon(10 + i)};
    s.Vor[i] = {vors[i], Lat(30 + i), Lon(30 + i), "113.00"};
  }
  std::tie(s.WaypointLast, s.NdbLast, s.VorLast, s.RwyLast) = std::tuple(2, 1, 3, 1);
  s.Ndb[1] = {Lat(20), Lon(20), "350", "BETA"};
  // A helipad has no fix name, nor the first waypoint an ident: an empty ident finds neither.
  s.RwyEnd[0] = {"HELIPAD", "", "", Lat(40), Lon(40), "", "", "", ""};
  s.RwyEnd[1] = {"", "", "", Lat(41), Lon(41), "", "", "", "RW25L"};
  // Ident and the degrees of the fix found, 0 for none.
  const std::pair<const char*, int> cases[] = {{"ALPHA", 30}, {"DUP", 11},   {"BETA", 20},
                                               {"GAMMA", 32}, {"gamma", 33}, {"Gamma", 0},
                                               {"RW25L", 41}, {"HIDDEN", 0}, {"", 0}};
  for (auto [ident, d] : cases) {
    const auto want = d ? std::tuple(kX0 + d * kDeg, kY0 + d * kDeg) : std::tuple(0, 0);
    EXPECT_EQ(std::tuple(FixGridX(s, ident), FixGridY(s, ident)), want) << ident;
  }
}

TEST(PolarOffsetTest, QuadrantsAndRounding) {
  // clang-format off
  const struct { int bearing; double distance; int dx, dy; } cases[] = {
      {0, 1.0, 0, -360},    {360, 1.0, 0, -360},  {90, 1.0, 360, 0},     {45, 0.6, 153, -153},
      {30, 1.0, 180, -312}, {120, 1.0, 312, 180}, {210, 1.0, -180, 312}, {300, 1.0, -312, -180},
      // The edges of each quadrant.
      {91, 1.0, 360, 6},    {180, 1.0, 0, 360},   {181, 1.0, -6, 360},   {270, 1.0, -360, 0},
      {271, 1.0, -360, -6}};
  // clang-format on
  for (const auto& c : cases) {
    std::int32_t x = 0, y = 0;
    PolarOffset(1000, 2000, c.bearing, c.distance, x, y);
    EXPECT_EQ(std::tie(x, y), std::tuple(1000 + c.dx, 2000 + c.dy)) << c.bearing;
  }
  for (int bearing : {361, -1}) {  // out of range: the outputs stay as they were
    std::int32_t x = -7, y = -9;
    PolarOffset(1000, 2000, bearing, 1.0, x, y);
    EXPECT_EQ(std::tie(x, y), std::tuple(-7, -9)) << bearing;
  }
}

}  // namespace
}  // namespace velmora::test
