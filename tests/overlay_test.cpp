#include <gtest/gtest.h>

#include <algorithm>

#include "charts/charts.h"
#include "test_support.h"

namespace velmora::test {
namespace {

// Approach 0 over the airport at Zoom 16, its fixes placed as waypoints by canvas position.
struct Overlay {
  explicit Overlay(const std::string& type, const std::string& runway = "27") {
    v.Zoom = 16;
    s.VorLast = -1;
    s.AppSelected = true;
    SetOrigin(v, 41040000, 21600000);
    s.Approach[0] = {type, runway, "NONE"};
  }
  void fix(const std::string& id, int x, int y) {
    s.Waypoint[s.WaypointLast = wps++] = {id, LatAt(y), LonAt(x)};
  }
  void leg(std::string id, std::string alt = "", std::string rho = "", std::string course = "",
           std::string navaid = "") {
    s.Leg[s.LegLast = legs++] = {0, kApproachLeg, id, rho, alt, course, navaid};
  }
  Lines draw() { return DrawApp(s, v, c, rows), take(); }
  Lines take() { return TakeLines(out); }
  Store s;
  View v;
  std::ostringstream out;
  TraceCanvas c{out};
  Lines rows;
  int wps = 0, legs = 0;
};

TEST(Overlay, WorkedLegLabelsAndTerminalRows) {
  Overlay o("GPS");
  o.fix("F", 6001, 4000);
  o.fix("ABC", 7000, 5000);
  o.fix("G", 7400, 5000);
  o.leg("F");
  o.leg("ABC", "2500.00F", "20530.0", "45.0");
  o.leg("G", "0.00F", "1026.5", "93.9");
  // A course without its decimals, or beyond any number, draws neither mark nor label.
  o.fix("H", 9000, 5000);
  o.fix("I", 9000, 6000);
  o.leg("H", "", "", "93");
  o.leg("I", "", "", "99999999999.0");
  // Transitions of approach 0 give terminal rows after those there, but not INT and WAYPOINT.
  o.s.Trans[0] = {0, "T0", "VOR"};
  o.s.Trans[1] = {0, "T1", "INT"};
  o.s.Trans[2] = {1, "T2", "NDB"};
  o.s.Trans[3] = {0, "T3", "WAYPOINT"};
  o.s.Trans[4] = {0, "T4", "waypoint"};  // 5 is empty
  o.s.TransLast = 5;
  o.rows = {"kept"};
  const Lines t = o.draw(),
              worked = {
                  "circle 6001 4000 30 0,0,0 2 0",        "print 5901 4000 0,0,0 8 0 F",
                  "circle 7000 5000 30 0,0,0 2 0",        "print 6900 5000 0,0,0 8 0 ABC",
                  "print 6900 5200 0,0,0 10 0 2500",      "print 6900 5400 0,0,0 10 0 10 DME",
                  "line 6001 4000 7000 5000 0,128,0 2 0", "line 6500 4500 6304 4591 0,0,0 2 0",
                  "line 6500 4500 6409 4696 0,0,0 2 0",   "line 6304 4591 6409 4696 0,0,0 2 0",
                  "print 6550 4100 0,0,0 10 1 045°"};
  ASSERT_GE(t.size(), worked.size());
  EXPECT_EQ(Lines(t.begin(), t.begin() + 11), worked);
  // Altitude 0 prints nothing, half a mile of DME rounds up, the course is cut and not rounded.
  EXPECT_EQ(Filter(t, "print 7"),
            (Lines{"print 7300 5000 0,0,0 8 0 G", "print 7300 5400 0,0,0 10 0 1 DME",
                   "print 7250 4600 0,0,0 10 1 093°"}));
  EXPECT_EQ(Filter(t, "print 8"),
            (Lines{"print 8900 5000 0,0,0 8 0 H", "print 8900 6000 0,0,0 8 0 I"}));
  EXPECT_EQ(Filter(t, "print 9"), Lines{});
  EXPECT_FALSE(o.c.pen.FontBold);
  EXPECT_EQ(o.rows, (Lines{"kept", "VOR T0", "waypoint T4"}));
  o.s.AppSelected = false;
  o.rows.clear();
  EXPECT_TRUE(o.draw().empty() && o.rows.empty());
}

TEST(Overlay, FixesNotFoundAndOutOfRange) {
  Overlay o("GPS");
  o.v.PanY = 20000;  // the range test looks at Y before pan: 1 to 9999 is in
  for (const auto& [ident, y] : {std::pair{"Y0", 0}, {"Y1", 1}, {"Y10K", 10000}, {"Y9999", 9999}})
    o.fix(ident, 900000, y);  // X is never tested
  for (const char* ident : {"NOPE", "Y0", "Y1", "GONE", "", "Y10K", "Y9999"}) o.leg(ident);
  const Lines t = o.draw();
  EXPECT_EQ(Filter(t, "print 200 8800 "),
            Lines{"print 200 8800 192,0,0 14 1 ATTENTION: Approach Data may be corrupt!"});
  // The first fix lies at grid 0,0: (0 - 40928000) / 16 and 10000 + 21520000 / 16, plus pan.
  EXPECT_EQ(std::ranges::count(t, "circle -2558000 1375000 30 0,0,0 2 0"), 1);
  EXPECT_EQ(Filter(t, "line "), (Lines{"line -2558000 1375000 900000 20001 0,128,0 2 0",
                                       "line 900000 20001 900000 29999 0,128,0 2 0"}));
}

TEST(Overlay, HeadingLines) {
  // Type, runway, designator, navaid of the first leg; heading lines; the row afterwards.
  // clang-format off
  const struct { const char *type, *runway, *designator, *navaid; Lines lines; const char* row; }
  cases[] = {
      {"ILS", "9", "NONE", "", {"ILS RWY 09L  110.30   A  95.0°", "ils rwy 09r  111.10   B  95.0°"},
       "09/NONE"},
      // The runway matches the ILS name whatever the case of its letter.
      {"ILS", "9", "RIGHT", "", {"ils rwy 09r  111.10   B  95.0°"}, "09/R"},
      {"VORDME", "0", "NONE", "VOA", {"VORDME  Visual APP  VOA  113.40"}, "00/NONE"},
      {"vor", "27", "RIGHT", "XXX", {"vor  27R  XXX  "}, "27/R"},
      // No runway reads as 0; no navaid finds no VOR, not even one without an ident; the last
      // VOR is found.
      {"VOR", "", "NONE", "", {"VOR  0    "}, "0/NONE"},
      {"VOR", "9", "NONE", "VOB", {"VOR  09  VOB  116.00"}, "09/NONE"}};
  // clang-format on
  for (const auto& k : cases) {
    Overlay o(k.type, k.runway);
    o.s.Approach[0].designator = k.designator;
    o.s.Ils[0] = {"ILS RWY 09L", "A", "110.30", "95.0"};
    o.s.Ils[1] = {"ILS RWY 27", "C", "1", "2"};
    o.s.Ils[2] = {"ils rwy 09r", "B", "111.10", "95.0"};
    o.s.IlsLast = 2;
    o.s.Vor[0] = {"VOA", "N1 0", "E1 0", "113.40"};
    o.s.Vor[1] = {"VOA", "N1 0", "E1 0", "999.00"};
    o.s.Vor[2] = {"", "N1 0", "E1 0", "118.00"};
    o.s.Vor[3] = {"VOB", "N1 0", "E1 0", "116.00"};
    o.s.VorLast = 3;
    o.fix("F", 7000, 4000);
    o.leg("F", "", "", "", k.navaid);
    Lines want;
    for (const auto& line : k.lines) want.push_back("print 200 3000 0,0,0 14 1 " + line);
    EXPECT_EQ(Filter(o.draw(), "print 200 3000 "), want) << k.type;
    EXPECT_EQ(o.s.Approach[0].runway + "/" + o.s.Approach[0].designator, k.row);
  }
}

TEST(Symbols, CornersFromPolarOffsets) {
  // Course mark at (1000, 1000), or arrow from there to (1000, 500); a bearing beyond 360 gives
  // no corner, and no line goes to it.
  // clang-format off
  const struct { bool mark; int course; Lines lines; } cases[] = {
      {true, 90, {"1000 1000 797 926 0,0,0 2", "1000 1000 797 1074 0,0,0 2",
                  "797 926 797 1074 0,0,0 2"}},
      {true, 530, {"1000 1000 892 813 0,0,0 2"}},  // bearings 370 and 330
      {true, 159, {"1000 1000 996 784 0,0,0 2", "1000 1000 858 837 0,0,0 2",
                   "996 784 858 837 0,0,0 2"}},  // bearings -1, taken as 359, and 319
      {false, 360, {"1000 1000 724 1231 0,128,0 1", "724 1231 1000 500 0,128,0 1",
                    "1000 1000 1276 1231 0,128,0 1", "1276 1231 1000 500 0,128,0 1"}},
      {false, 500, {"1000 1000 640 1000 0,128,0 1", "640 1000 1000 500 0,128,0 1"}}};  // 370, 270
  // clang-format on
  for (const auto& k : cases) {
    Overlay o("");
    TraceCanvas& c = o.c;
    c.pen.DrawWidth = 5;
    c.pen.ForeColor = kRed;
    k.mark ? DrawCourseMark(c, 1000, 1000, k.course)
           : DrawArrowHead(c, 1000, 1000, k.course, 1000, 500);
    Lines want;
    for (const auto& l : k.lines) want.push_back("line " + l + " 0");
    EXPECT_EQ(o.take(), want) << k.course;
    EXPECT_EQ(c.pen.DrawWidth, 1);
    EXPECT_TRUE(c.pen.ForeColor == kBlack);
  }
}

}  // namespace
}  // namespace velmora::test
