// The approach profile worked by hand. The field lies on the equator with its threshold at
// N00 00.00 E000 00.00 and the fixes south of it, where a minute of arc is easy to count: on a
// sphere of 3440.065 NM a minute is 3440.065 x pi / 10800 = 1.000674 NM, along a meridian as
// along the equator, so 5' is 5.0034 NM and 10' 10.0067 NM.

#include "charts/profile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <tuple>

#include "data/extract.h"
#include "data/numbers.h"
#include "test_support.h"

namespace velmora::test {
namespace {

struct LegText {
  std::string type, fix, descriptor, altitude1, altitude2;
};

// Fixes of the field, lat and lon. I10, F7, F5 and F2 stand on the meridian 10', 7', 5' and 2'
// south of the threshold; D4 4' west of F5 (a dog-leg), C3 3' west of I10; X and M off the
// approach (M is the missed approach's); GHOST stands nowhere.
const std::pair<const char*, std::pair<const char*, const char*>> kWaypoints[] = {
    {"I10", {"S00 10.00", "E000 00.00"}}, {"F7", {"S00 07.00", "E000 00.00"}},
    {"F5", {"S00 05.00", "E000 00.00"}},  {"F2", {"S00 02.00", "E000 00.00"}},
    {"D4", {"S00 05.00", "W000 04.00"}},  {"C3", {"S00 10.00", "W000 03.00"}},
    {"X", {"S00 07.00", "E000 02.00"}},   {"M", {"N00 10.00", "E000 00.00"}},
};

std::vector<std::string> LegLines(const LegText& leg) {
  std::vector<std::string> lines = {"            <Leg type=\"" + leg.type + "\""};
  const std::pair<const char*, const std::string*> attrs[] = {
      {"fixIdent", &leg.fix},
      {"altitudeDescriptor", &leg.descriptor},
      {"altitude1", &leg.altitude1},
      {"altitude2", &leg.altitude2}};
  for (const auto& [key, value] : attrs) {
    if (!value->empty())
      lines.push_back("                " + std::string(key) + "=\"" + *value + "\"");
  }
  lines.push_back("                />");
  return lines;
}

// The field XPRF, elevation 30.5 m, runway 36 from N00 00.00 at 29.0 m (95 ft), with one approach
// of `type` to runway 36 over `legs`, its missed approach to M, and a transition from X. The ILS of
// runway 18 has a glide slope of 3.50 degrees; that of runway 36 has `pitch36`, if any.
std::string ProfileField(const std::string& type, const std::vector<LegText>& legs,
                         const std::string& pitch36 = "") {
  std::vector<std::string> l = {"<Airport ident=\"XPRF\"",
                                "    name=\"Profile Field\"",
                                "    lat=\"N00 00.00\"",
                                "    lon=\"E000 00.00\"",
                                "    alt=\"30.5M\"",
                                "    magvar=\"0.000\">",
                                "    <Runway number=\"36\" designator=\"NONE\"",
                                "        lat=\"N00 00.30\"",
                                "        lon=\"E000 00.00\"",
                                "        length=\"1000.0M\"",
                                "    </Runway>",
                                "",
                                "    <Start type=\"RUNWAY\"",
                                "        number=\"36\" designator=\"NONE\"",
                                "        lat=\"N00 00.00\"",
                                "        lon=\"E000 00.00\"",
                                "        alt=\"29.0M\"",
                                "        heading=\"0.0\"/>",
                                "    <Start type=\"RUNWAY\"",
                                "        number=\"18\" designator=\"NONE\"",
                                "        lat=\"N00 00.60\"",
                                "        lon=\"E000 00.00\"",
                                "        heading=\"180.0\"/>",
                                "    <Ils end=\"PRIMARY\" ident=\"IPRN\"",
                                "        name=\"ILS RWY 18\">",
                                "        <GlideSlope",
                                "            pitch=\"3.50\"/>",
                                "    </Ils>",
                                "    <Ils end=\"PRIMARY\" ident=\"IPRF\"",
                                "        name=\"ILS RWY 36\">"};
  if (!pitch36.empty()) {
    l.insert(l.end(), {"        <GlideSlope", "            pitch=\"" + pitch36 + "\"/>"});
  }
  l.push_back("    </Ils>");
  for (const auto& [ident, at] : kWaypoints) {
    l.insert(l.end(), {"    <Waypoint", "        waypointIdent=\"" + std::string(ident) + "\"",
                       "        lat=\"" + std::string(at.first) + "\"",
                       "        lon=\"" + std::string(at.second) + "\"/>"});
  }
  l.insert(l.end(), {"    <Approach type=\"" + type + "\"", "        runway=\"36\"",
                     "        designator=\"NONE\">", "        <ApproachLegs>"});
  for (const LegText& leg : legs) {
    for (std::string& line : LegLines(leg)) l.push_back(std::move(line));
  }
  l.insert(l.end(), {"        </ApproachLegs>", "        <MissedApproachLegs>"});
  for (const LegText& leg :
       {LegText{"CA", "", "+", "600.00F", ""}, LegText{"DF", "M", "+", "3000.00F", ""}}) {
    for (std::string& line : LegLines(leg)) l.push_back(std::move(line));
  }
  l.insert(l.end(), {"        </MissedApproachLegs>", "        <Transition transitionType=\"FULL\"",
                     "            fixType=\"WAYPOINT\"", "            fixIdent=\"X\">"});
  for (std::string& line : LegLines({"IF", "X", "", "4000.00F", ""})) l.push_back(std::move(line));
  l.insert(l.end(), {"        </Transition>", "    </Approach>", "</Airport>"});
  return CrLf(l);
}

// The profile of XPRF's one approach, read from its file as the chart reads it.
Profile ProfileOf(const std::string& fieldText, const std::string& rowText) {
  TempDir dir;
  Store store;
  const ExtractReport report = ExtractArpt(store, dir.write("xprf.txt", fieldText), "XPRF");
  EXPECT_TRUE(report.found);
  return MakeProfile(store, 0, rowText);
}

struct WorkedFix {
  std::string ident;
  std::string distanceNm;  // two decimals, as the machine-readable profile gives it
  std::optional<double> altitudeFt, altitude2Ft;
  std::string constraint;
  double standsAtFt;
};

struct Worked {
  std::string name, type;
  std::vector<LegText> legs;
  std::vector<WorkedFix> fixes;
  std::vector<std::string> notPlaced{};
  std::optional<double> glidePathDeg{};
  std::string pitch36{};  // the glide slope the data holds for runway 36
};

const Worked kWorked[] = {
    {"straight-in ILS, no glide slope in the data: 3.00 degrees",
     "ILS",
     {{"IF", "I10", "+", "3000.00F", ""},
      {"CF", "F5", "A", "1700.00F", ""},
      {"CF", "RW36", "", "150.00F", ""}},
     // 10' = 10.0067 and 5' = 5.0034 NM; the threshold is the runway fix itself.
     {{"I10", "10.01", 3000, {}, "atOrAbove", 3000},
      {"F5", "5.00", 1700, {}, "at", 1700},
      {"RW36", "0.00", 150, {}, "none", 150}},
     {},
     3.0},
    {"straight-in ILS whose glide slope the data gives as 2.75 degrees",
     "ILS",
     {{"IF", "F5", "+", "1700.00F", ""}, {"CF", "RW36", "", "150.00F", ""}},
     {{"F5", "5.00", 1700, {}, "atOrAbove", 1700}, {"RW36", "0.00", 150, {}, "none", 150}},
     {},
     2.75,
     "2.75"},
    {"VOR approach with a dog-leg",
     "VOR",
     {{"IF", "D4", "+", "2500.00F", ""},
      {"CF", "F5", "+", "1600.00F", ""},
      {"CF", "RW36", "-", "600.00F", ""}},
     // D4 to F5 runs 4' along the parallel 5' south: 4.0027 NM, and 5.0034 on: 9.0061, where
     // the straight line from D4 to the threshold would give 6.40.
     {{"D4", "9.01", 2500, {}, "atOrAbove", 2500},
      {"F5", "5.00", 1600, {}, "atOrAbove", 1600},
      {"RW36", "0.00", 600, {}, "atOrBelow", 600}}},
    {"step-down fixes at or above, the first a window",
     "NDB",
     {{"IF", "I10", "B", "3500.00F", "3000.00F"},
      {"CF", "F7", "+", "2400.00F", ""},
      {"CF", "F5", "+", "1800.00F", ""},
      {"CF", "F2", "+", "900.00F", ""},
      {"CF", "RW36", "", "300.00F", ""}},
     // 7' = 7.0047 and 2' = 2.0013 NM; a window stands at its lower altitude.
     {{"I10", "10.01", 3500, 3000, "between", 3000},
      {"F7", "7.00", 2400, {}, "atOrAbove", 2400},
      {"F5", "5.00", 1800, {}, "atOrAbove", 1800},
      {"F2", "2.00", 900, {}, "atOrAbove", 900},
      {"RW36", "0.00", 300, {}, "none", 300}}},
    {"a fix without altitude stands on the line between its neighbours",
     "GPS",
     {{"IF", "I10", "+", "3000.00F", ""},
      {"CF", "F7", "", "", ""},
      {"CF", "RW36", "", "1000.00F", ""}},
     // F7 lies 7/10 of the way out: 1000 + (3000 - 1000) x 7.0047 / 10.0067 = 2400 ft.
     {{"I10", "10.01", 3000, {}, "atOrAbove", 3000},
      {"F7", "7.00", {}, {}, "none", 2400},
      {"RW36", "0.00", 1000, {}, "none", 1000}}},
    {"course and heading legs are passed over, a hold at a fix counts once",
     "GPS",
     {{"IF", "C3", "+", "3000.00F", ""},
      {"CD", "X", "+", "2500.00F", ""},
      {"VI", "", "", "2200.00F", ""},
      {"CF", "F5", "+", "1700.00F", ""},
      {"HM", "F5", "+", "1700.00F", ""},
      {"CF", "RW36", "", "150.00F", ""}},
     // C3 to F5: 5' south and 3' east, 5.8349 NM on the sphere; 5.8349 + 5.0034 = 10.8383.
     {{"C3", "10.84", 3000, {}, "atOrAbove", 3000},
      {"F5", "5.00", 1700, {}, "atOrAbove", 1700},
      {"RW36", "0.00", 150, {}, "none", 150}}},
    {"a fix no table holds is left out and named",
     "GPS",
     {{"IF", "I10", "+", "3000.00F", ""},
      {"CF", "GHOST", "+", "2500.00F", ""},
      {"CF", "F5", "+", "1700.00F", ""},
      {"CF", "RW36", "", "150.00F", ""}},
     {{"I10", "10.01", 3000, {}, "atOrAbove", 3000},
      {"F5", "5.00", 1700, {}, "atOrAbove", 1700},
      {"RW36", "0.00", 150, {}, "none", 150}},
     {"GHOST"}},
};

TEST(Profile, WorkedByHand) {
  for (const Worked& w : kWorked) {
    SCOPED_TRACE(w.name);
    const Profile p = ProfileOf(ProfileField(w.type, w.legs, w.pitch36), w.type + " 36");
    EXPECT_EQ(p.whyNot, "");
    EXPECT_TRUE(p.threshold);
    ASSERT_TRUE(p.thresholdElevationFt.has_value());
    EXPECT_NEAR(*p.thresholdElevationFt, 95.14, 0.01);  // 29.0 m, the runway's, not the airport's
    EXPECT_EQ(p.glidePathDeg, w.glidePathDeg);
    EXPECT_EQ(p.notPlaced, w.notPlaced);
    ASSERT_EQ(p.fixes.size(), w.fixes.size());
    for (std::size_t i = 0; i < w.fixes.size(); ++i) {
      const ProfileFix& got = p.fixes[i];
      const WorkedFix& want = w.fixes[i];
      SCOPED_TRACE(want.ident);
      EXPECT_EQ(got.ident, want.ident);
      EXPECT_EQ(DecimalText(got.distanceNm, 2), want.distanceNm);
      EXPECT_EQ(got.altitudeFt, want.altitudeFt);
      EXPECT_EQ(got.altitude2Ft, want.altitude2Ft);
      EXPECT_EQ(ConstraintWord(got.constraint), want.constraint);
      EXPECT_NEAR(got.standsAtFt, want.standsAtFt, 0.5);
    }
    // The last fix is the missed-approach point, the one before it the final approach fix.
    EXPECT_EQ(p.missedApproachPoint, static_cast<int>(w.fixes.size()) - 1);
    EXPECT_EQ(p.finalFix, static_cast<int>(w.fixes.size()) - 2);
  }
}

TEST(Profile, GlidePathThroughTheFinalApproachFix) {
  // 6076.12 ft to the NM: tan 3.00 gives 318.44 ft a mile, tan 2.75 291.86, from the height
  // at which the runway fix crosses the threshold (150 ft).
  const struct {
    std::string pitch;
    double atFafFt;
  } paths[] = {{"", 150 + 5.00337 * 318.436}, {"2.75", 150 + 5.00337 * 291.857}};
  for (const auto& path : paths) {
    const Profile p = ProfileOf(ProfileField("ILS",
                                             {{"IF", "I10", "+", "3000.00F", ""},
                                              {"CF", "F5", "A", "1700.00F", ""},
                                              {"CF", "RW36", "", "150.00F", ""}},
                                             path.pitch),
                                "ILS 36");
    EXPECT_NEAR(GlidePathFt(p, 0), 150, 0.01) << path.pitch;
    EXPECT_NEAR(GlidePathFt(p, p.fixes[1].distanceNm), path.atFafFt, 0.1) << path.pitch;
  }
}

TEST(Profile, DescriptorsAsPublishedWords) {
  const std::pair<std::string, std::string> words[] = {
      {"A", "at"},   {"+", "atOrAbove"}, {"-", "atOrBelow"}, {"B", "between"}, {"", "none"},
      {"a", "none"}, {"b", "none"},      {"C", "none"},      {"++", "none"}};
  for (const auto& [descriptor, word] : words) {
    EXPECT_EQ(ConstraintWord(ConstraintOf(descriptor)), word) << "'" << descriptor << "'";
  }
}

TEST(Profile, FewerThanTwoPlacedFixesSayWhy) {
  const struct {
    std::vector<LegText> legs;
    std::string why;
    std::vector<std::string> notPlaced;
  } cases[] = {
      {{{"IF", "GHOST", "+", "3000.00F", ""}, {"CF", "RW36", "", "150.00F", ""}},
       "No profile for XPRF LOC 36: 1 of its 2 fixes has a known position, and a profile "
       "needs two",
       {"GHOST"}},
      {{{"CA", "", "+", "3000.00F", ""}},
       "No profile for XPRF LOC 36: the approach has no fixes of its own",
       {}},
  };
  for (const auto& c : cases) {
    const Profile p = ProfileOf(ProfileField("LOC", c.legs), "LOC 36");
    EXPECT_EQ(p.whyNot, c.why);
    EXPECT_EQ(p.notPlaced, c.notPlaced);
    std::ostringstream out;
    TraceCanvas trace(out);
    DrawProfile(p, trace);
    const Lines drawn = TakeLines(out);
    EXPECT_EQ(Filter(drawn, "line ").size() + Filter(drawn, "circle ").size(), 0u);
    EXPECT_EQ(Count(drawn, c.why), 1);
  }
}

// The drawing as trace lines: "print X Y R,G,B SIZE BOLD TEXT", "line X1 Y1 X2 Y2 R,G,B W S".
struct Drawn {
  struct Text {
    int x, y, size, bold;
    std::string colour, text;
  };
  struct Line {
    int x1, y1, x2, y2;
    std::string colour;
    int width, style;
  };
  struct Point {
    int x, y;
  };
  std::vector<Text> texts;
  std::vector<Line> lines;
  std::vector<Point> fixes;  // the tops of the dotted lines each fix stands on

  explicit Drawn(const Profile& p) {
    std::ostringstream out;
    TraceCanvas trace(out);
    DrawProfile(p, trace);
    for (const std::string& l : TakeLines(out)) {
      std::istringstream in(l);
      std::string kind;
      in >> kind;
      if (kind == "print") {
        Text t;
        in >> t.x >> t.y >> t.colour >> t.size >> t.bold;
        std::getline(in >> std::ws, t.text);
        texts.push_back(t);
      } else if (kind == "line") {
        Line s;
        in >> s.x1 >> s.y1 >> s.x2 >> s.y2 >> s.colour >> s.width >> s.style;
        lines.push_back(s);
        if (s.style == kDotted && s.x1 == s.x2) fixes.push_back({s.x1, s.y1});
      }
    }
  }
  const Text* find(const std::string& text, int size) const {
    for (const Text& t : texts) {
      if (t.text == text && t.size == size) return &t;
    }
    return nullptr;
  }
  // Bars above and below the altitude `text`: level black lines of one pixel from its left
  // edge, within its row (a window's two rows stand one over the other), above or below its
  // middle.
  std::pair<int, int> bars(const std::string& text) const {
    const Text* t = find(text, 10);
    if (t == nullptr) return {-1, -1};
    int over = 0, under = 0;
    for (const Line& s : lines) {
      if (s.x1 != t->x || s.y1 != s.y2 || s.colour != "0,0,0" || s.width != 1) continue;
      if (s.y1 < t->y || s.y1 >= t->y + 230) continue;
      (s.y1 < t->y + 100 ? over : under) += 1;
    }
    return {over, under};
  }
};

TEST(Profile, ConstraintsBarredAsPublishedCharts) {
  const struct {
    std::string type;
    std::vector<LegText> legs;
    std::string altitude;
    int over, under;
  } bars[] = {
      {"ILS", kWorked[0].legs, "3000", 0, 1},  // at or above
      {"ILS", kWorked[0].legs, "1700", 1, 1},  // at
      {"ILS", kWorked[0].legs, "150", 0, 0},   // no constraint
      {"VOR", kWorked[2].legs, "600", 1, 0},   // at or below
      {"NDB", kWorked[3].legs, "3500", 1, 0},  // the window's top
      {"NDB", kWorked[3].legs, "3000", 0, 1},  // and its bottom
  };
  for (const auto& b : bars) {
    const Drawn d(ProfileOf(ProfileField(b.type, b.legs), b.type + " 36"));
    EXPECT_EQ(d.bars(b.altitude), std::pair(b.over, b.under)) << b.type << " " << b.altitude;
  }
}

TEST(Profile, DrawnFromTheFarthestFixDownToTheThreshold) {
  const Drawn ils(ProfileOf(ProfileField("ILS", kWorked[0].legs), "ILS 36"));
  ASSERT_EQ(ils.fixes.size(), 3u);
  // Distances grow to the left; the descent goes down to the right.
  EXPECT_LT(ils.fixes[0].x, ils.fixes[1].x);
  EXPECT_LT(ils.fixes[1].x, ils.fixes[2].x);
  EXPECT_LT(ils.fixes[0].y, ils.fixes[1].y);
  EXPECT_LT(ils.fixes[1].y, ils.fixes[2].y);
  for (const char* ident : {"I10", "F5", "RW36"}) EXPECT_NE(ils.find(ident, 8), nullptr) << ident;
  for (const char* distance : {"10.0", "5.0", "0.0"}) {
    EXPECT_NE(ils.find(distance, 8), nullptr) << distance;
  }
  // Neither the missed approach's fix nor a transition's.
  EXPECT_EQ(ils.find("M", 8), nullptr);
  EXPECT_EQ(ils.find("X", 8), nullptr);
  // "MAP" over the runway fix's ident; the final approach fix crossed out.
  const Drawn::Text* map = ils.find("MAP", 8);
  ASSERT_NE(map, nullptr);
  EXPECT_EQ(map->x, ils.find("RW36", 8)->x);
  EXPECT_LT(map->y, ils.find("RW36", 8)->y);
  int crossing = 0;
  for (const Drawn::Line& s : ils.lines) {
    crossing += s.x1 != s.x2 && s.y1 != s.y2 && (s.x1 + s.x2) / 2 == ils.fixes[1].x &&
                (s.y1 + s.y2) / 2 == ils.fixes[1].y;
  }
  EXPECT_EQ(crossing, 2);
  // The glide path: green, from the threshold out beyond the final approach fix.
  const auto green = std::find_if(ils.lines.begin(), ils.lines.end(),
                                  [](const Drawn::Line& s) { return s.colour == "0,128,0"; });
  ASSERT_NE(green, ils.lines.end());
  EXPECT_EQ(green->x1, ils.fixes[2].x);
  EXPECT_LT(green->x2, ils.fixes[1].x);
  EXPECT_LT(green->y2, ils.fixes[1].y);
  const Drawn vor(ProfileOf(ProfileField("VOR", kWorked[2].legs), "VOR 36"));
  EXPECT_TRUE(std::none_of(vor.lines.begin(), vor.lines.end(),
                           [](const Drawn::Line& s) { return s.colour == "0,128,0"; }));
}

TEST(Profile, AFixWithoutAltitudeStandsOnTheLineUnlabelled) {
  const Drawn d(ProfileOf(ProfileField("GPS", kWorked[4].legs), "GPS 36"));
  ASSERT_EQ(d.fixes.size(), 3u);
  const auto [a, b, c] = std::tuple(d.fixes[0], d.fixes[1], d.fixes[2]);
  // On the straight line from its neighbour before to its neighbour after.
  EXPECT_NEAR(b.y, a.y + (c.y - a.y) * double(b.x - a.x) / (c.x - a.x), 2);
  EXPECT_NE(d.find("F7", 8), nullptr);
  std::size_t altitudes = 0;
  for (const Drawn::Text& t : d.texts) altitudes += t.size == 10 && !t.bold;
  EXPECT_EQ(altitudes, 2u);  // 3000 and 1000
}

TEST(Profile, MachineReadable) {
  const Profile p = ProfileOf(ProfileField("GPS", {{"IF", "I10", "B", "3500.00F", "3000.00F"},
                                                   {"CF", "F5", "", "", ""},
                                                   {"CF", "RW36", "-", "1000.00F", ""}}),
                              "GPS 36");
  EXPECT_EQ(ProfileJson(p),
            "{\"airport\": \"XPRF\", \"approach\": \"GPS 36\", \"thresholdElevationFt\": 95, "
            "\"glidePathDeg\": null,\n \"fixes\": [\n"
            "  {\"ident\": \"I10\", \"distanceNm\": 10.01, \"altitudeFt\": 3500, "
            "\"altitude2Ft\": 3000, \"constraint\": \"between\"},\n"
            "  {\"ident\": \"F5\", \"distanceNm\": 5.00, \"altitudeFt\": null, "
            "\"altitude2Ft\": null, \"constraint\": \"none\"},\n"
            "  {\"ident\": \"RW36\", \"distanceNm\": 0.00, \"altitudeFt\": 1000, "
            "\"altitude2Ft\": null, \"constraint\": \"atOrBelow\"}]}\n");
}

// The sample's approaches, worked by hand from the coordinates of sample/FSXFiles and vor.nav
// (great circles on the 3440.065 NM sphere, summed leg by leg to the threshold), as
// velmora-chart --profile-json writes them.
TEST(ProfileChartTool, EverySampleApproachAsWorkedByHand) {
  struct Fix {
    std::string ident, distanceNm, altitudeFt, altitude2Ft, constraint;
  };
  const struct {
    std::string airport, approach, elevationFt, glidePathDeg;
    std::vector<Fix> fixes;
  } approaches[] = {
      // 351.7 m = 1153.9 ft; TOBRI-MIRSK 5.9974, MIRSK-WH 4.8061, WH-RW16L 5.1990 NM.
      {"XWHL",
       "ILS 16L",
       "1154",
       "3.00",
       {{"TOBRI", "16.00", "5000", "null", "atOrAbove"},
        {"MIRSK", "10.01", "4000", "null", "atOrAbove"},
        {"WH", "5.20", "2900", "null", "atOrAbove"},
        {"RW16L", "0.00", "1210", "null", "none"}}},
      {"XWHL",
       "ILS 34R",
       "1154",
       "3.00",
       {{"PELLO", "15.01", "5500", "4500", "between"},
        {"DRAKA", "10.01", "3800", "null", "atOrAbove"},
        {"ZIMRO", "5.50", "2900", "null", "atOrAbove"},
        {"RW34R", "0.00", "1180", "null", "none"}}},
      {"XWHL",
       "VORDME 9",
       "1154",
       "null",
       {{"GRN", "13.00", "4500", "null", "atOrAbove"},
        {"HOLUP", "6.01", "3100", "null", "atOrAbove"},
        {"ORTEN", "3.00", "2100", "null", "atOrAbove"},
        {"RW09", "0.00", "1250", "null", "none"}}},
      {"XWHL",
       "GPS 27",
       "1154",
       "null",
       {{"RUMBA", "12.01", "4000", "null", "atOrAbove"},
        {"SIPPA", "5.01", "2800", "null", "atOrAbove"},
        {"RW27", "0.00", "1240", "null", "none"}}},
      {"XRKD",
       "NDB 20",
       "785",
       "null",
       {{"HAMMS", "10.00", "3500", "null", "atOrAbove"},
        {"RK", "4.50", "2300", "null", "atOrAbove"},
        {"RW20", "0.00", "850", "null", "none"}}},
      {"ZTAM",
       "ILS 22",
       "4214",
       "3.00",
       {{"UKANI", "15.02", "8000", "null", "atOrAbove"},
        {"SEBRA", "10.01", "7200", "null", "atOrAbove"},
        {"TM", "5.81", "6100", "null", "atOrAbove"},
        {"RW22", "0.00", "4270", "null", "none"}}},
      {"ZTAM",
       "VOR 04",
       "4214",
       "null",
       {{"MPV", "14.00", "7500", "null", "atOrAbove"},
        {"NTABA", "6.00", "6200", "null", "atOrAbove"},
        {"RW04", "0.00", "4320", "null", "none"}}},
      {"XAMO",
       "ILS 7",
       "40",
       "3.00",
       {{"BOKAR", "14.01", "3000", "null", "atOrAbove"},
        {"ZANGO", "9.01", "2500", "null", "atOrAbove"},
        {"AM", "5.01", "1700", "null", "atOrAbove"},
        {"RW07", "0.00", "90", "null", "none"}}},
      // Circling: runway 0 has no end, so distances run to AMO, the missed-approach point.
      {"XAMO",
       "VOR 0",
       "40",
       "null",
       {{"KUV", "11.70", "2500", "null", "atOrAbove"},
        {"PELU", "5.00", "1400", "null", "atOrAbove"},
        {"AMO", "0.00", "700", "null", "none"}}},
  };
  for (const auto& a : approaches) {
    SCOPED_TRACE(a.airport + " " + a.approach);
    const auto [status, out, err] = RunChartTool(
        SampleDir(), {"--airport", a.airport, "--approach", a.approach, "--profile-json", "-"});
    EXPECT_EQ(status, 0) << err;
    EXPECT_EQ(err, "");
    std::string want = "{\"airport\": \"" + a.airport + "\", \"approach\": \"" + a.approach +
                       "\", \"thresholdElevationFt\": " + a.elevationFt +
                       ", \"glidePathDeg\": " + a.glidePathDeg + ",\n \"fixes\": [";
    for (std::size_t i = 0; i < a.fixes.size(); ++i) {
      const Fix& f = a.fixes[i];
      want += std::string(i == 0 ? "\n" : ",\n") + "  {\"ident\": \"" + f.ident +
              "\", \"distanceNm\": " + f.distanceNm + ", \"altitudeFt\": " + f.altitudeFt +
              ", \"altitude2Ft\": " + f.altitude2Ft + ", \"constraint\": \"" + f.constraint + "\"}";
    }
    EXPECT_EQ(out, want + "]}\n");
  }
}

TEST(ProfileChartTool, RunsThatCanNotGiveAProfile) {
  TempDir d;
  const std::string missing = (d.path() / "nofolder" / "p.json").string();
  const struct {
    Lines args;
    int status;
    std::string err;
  } cases[] = {
      {{"--airport", "XWHL", "--profile-json", "-"}, 2, "the profile needs an approach"},
      {{"--airport", "XWHL", "--approach", "ILS 16L", "--profile"}, 2, "--profile needs a FILE"},
      {{"--airport", "XWHL", "--approach", "ILS 16L", "--profile", "load"},
       2,
       "--profile needs a FILE"},
      {{"--airport", "XWHL", "--all-approaches", "--out", "k.pdf", "--profile", "p.png"},
       2,
       "takes no FILE in a kit"},
      {{"--airport", "XWHL", "--all-approaches", "--out", "k.pdf", "--profile-json", "p.json"},
       2,
       "give --approach, not a kit"},
      {{"--airport", "XWHL", "--approach", "ILS 16L", "--profile-json", missing},
       1,
       "does not exist"},
  };
  for (const auto& c : cases) {
    const auto [status, out, err] = RunChartTool(SampleDir(), c.args);
    EXPECT_EQ(status, c.status) << c.args.back() << "\n" << err;
    EXPECT_NE(err.find(c.err), std::string::npos) << c.args.back() << "\n" << err;
    EXPECT_EQ(out, "");
  }
}

}  // namespace
}  // namespace velmora::test
