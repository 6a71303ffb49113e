// The sheet's and the plan's rules that the casebook's golden trace (tests/golden/casebook)
// can't reach: the variation's text for any value, the runway list's odd slots and the VOR range
// test at its edges.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <tuple>

#include "charts/charts.h"
#include "test_support.h"

namespace velmora::test {
namespace {

std::string F(const char* format, auto... args) {
  char text[200];
  std::snprintf(text, sizeof text, format, args...);
  return text;
}
struct Chart {
  explicit Chart(int zoom = 16, bool airport = true) {
    v.Zoom = zoom;
    s.VorLast = -1;
    if (airport) {
      s.ArptLat = "N10 00.00";
      s.ArptLon = "E10 00.00";
    }
  }
  // The lines of a fresh drawing of the sheet that hold `part`.
  Lines sheet(std::string_view part = "") {
    out.str({});
    DisplayArpt(s, v, c);
    Lines lines;
    for (const std::string& l : TakeLines(out))
      if (l.find(part) != l.npos) lines.push_back(l);
    return lines;
  }
  void vor(int x, int y, const char* id) {
    s.Vor[++s.VorLast] = {id, LatAt(y), LonAt(x), "113.40"};
  }
  Store s;
  View v;
  std::ostringstream out;
  TraceCanvas c{out};
};

TEST(Sheet, VariationTextSidesAndRounding) {
  // clang-format off
  const std::pair<const char*, const char*> cases[] = {
      {"0", "0.00\xB0 W"}, {"179.99", "179.99\xB0 W"}, {"180", "180.00\xB0 E"},
      {"359.5", "0.50\xB0 E"}, {"-5", "-5.00\xB0 W"}, {"341", "19.00\xB0 E"},
      {"0.125", "0.13\xB0 W"}, {"359.995", "0.01\xB0 E"}, {"", ""}};
  // clang-format on
  for (const auto& [magvar, text] : cases) EXPECT_EQ(VariationText(magvar), text) << magvar;
}

// Every second slot up to the last used one is a row, even where a lone start makes that the
// first end of a pair; a helipad gives none, nor does an airport without runways, and a
// designator beginning with "N" gives no letter.
TEST(Sheet, RunwayListRows) {
  Chart chart, bare;
  chart.s.RwyEnd[0] = {"RUNWAY", "9", "NORTH", "", "", "2000M", "45M", "ASPHALT"};
  chart.s.RwyEnd[2] = {"HELIPAD", "1", "NONE", "", "", "20M", "20M", "GRASS"};
  chart.s.RwyEnd[4] = {"RUNWAY", "27", "LEFT", "", "", "900M", "30M", "GRASS"};
  chart.s.RwyLast = 4;
  EXPECT_EQ(chart.sheet("RWY-"), (Lines{"print 200 1050 0,0,0 8 0 RWY- 09-2000M x 45M - ASPHALT",
                                        "print 200 1300 0,0,0 8 0 RWY- 27L-900M x 30M - GRASS"}));
  EXPECT_EQ(bare.sheet("RWY-"), Lines{});
}

TEST(Plan, VorRangeTestLooksAtXBeforePan) {
  // X before pan, PanX, drawn
  // clang-format off
  const int cases[][3] = {{0, 0, 0}, {1, 0, 1}, {13999, 0, 1}, {14000, 0, 0}, {15000, -3000, 0},
                          {1, 1000, 1}};
  // clang-format on
  for (const auto& [x0, panX, drawn] : cases) {
    Chart chart;
    chart.v.PanX = panX;
    chart.vor(x0, 20000, "VOA");  // far below the sheet: Y is not tested
    const int x = x0 + panX;
    const Lines want = {
        F("circle %d 20000 30 0,0,255 1 0", x), F("circle %d 20000 60 0,0,255 1 0", x),
        F("circle %d 20000 90 0,0,255 1 0", x), F("print %d 20000 0,0,255 10 1 VOA", x + 500),
        F("print %d 20200 0,0,255 10 1 113.40", x + 500)};
    EXPECT_EQ(chart.sheet("0,0,255"), drawn ? want : Lines{}) << x0;
    // The next layer finds the label font plain and the pen black.
    EXPECT_FALSE(chart.c.pen.FontBold) << x0;
    EXPECT_EQ(chart.c.pen.ForeColor, kBlack) << x0;
  }
}

}  // namespace
}  // namespace velmora::test
