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

TEST(Sheet, TitleBlockTexts) {
  Chart chart;
  Store& s = chart.s;
  std::tie(s.ArptIdent, s.ArptCity, s.ArptName, s.ArptState, s.ArptCountry) =
      std::tuple("XTST", "Town", "Field", "ST", "Land");
  std::tie(s.ArptAlt, s.ArptMagvar) = std::tuple("130.2M", "341");
  const Lines t = chart.sheet();
  EXPECT_EQ(Lines(t.begin(), t.begin() + 8),
            (Lines{"cls", "print 100 100 0,0,0 14 1 XTST", "print 2100 100 0,0,0 14 0 Town  Field",
                   "print 10100 100 0,0,0 14 0 ST  Land", "line 0 500 14415 500 0,0,0 1 0",
                   "print 100 550 0,0,0 12 1 Elev: 427",
                   "print 5100 550 0,0,0 10 0 N10 00.00   E10 00.00" + std::string(31, ' ') +
                       "Magnetic Variation: 19.00\u00b0 E",
                   "line 0 900 14415 900 0,0,0 1 0"}));
}

TEST(Sheet, ScaleTicksAndWarningAtEveryZoom) {
  for (const auto& [zoom, tick] :
       {std::pair{2, 2400}, {4, 1200}, {6, 800}, {14, 343}, {16, 300}, {50, 96}}) {
    Chart chart(zoom, false);
    Lines want = {
        "print 200 9900 192,0,0 8 0 DO NOT USE FOR REAL NAVIGATION! FSX ONLY     NM SCALE ->"};
    for (int i = 0; i <= 10; ++i)
      want.push_back(F("print %d 9900 192,0,0 8 0 %d", 6000 + i * tick, i));
    EXPECT_EQ(chart.sheet(" 9900 192,0,0 8 0 "), want) << zoom;
    EXPECT_EQ(chart.sheet("line 6000 9920 ").back(),
              F("line 6000 9920 %d 9920 0,0,0 1 0", 6000 + 10 * tick));
  }
}

TEST(Sheet, ListRowsWithoutGaps) {
  Chart chart(16, false);
  int slot = 0;
  for (const char* type :
       {"ATIS", "CENTER", "CLEARANCE", "Tower", "GROUND", "atis x", "APPROACH/X"}) {
    chart.s.Com[slot] = {type, F("12%d", slot), F("N%d", slot)};
    chart.s.ComLast = slot++;
  }
  const auto end = [&](int slot, const char* type, const char* number, const char* designator) {
    RwyEndRow& r = chart.s.RwyEnd[slot];
    r.type = type;
    r.number = number;
    r.designator = designator;
    r.length = F("%dM", 100 * slot);
    r.width = "45M";
    r.surface = "ASPHALT";
  };
  end(0, "RUNWAY", "9", "NONE");  // odd slots give no row
  end(1, "RUNWAY", "27", "NONE");
  end(2, "HELIPAD", "1", "NONE");
  end(4, "RUNWAY", "36", "LEFT");
  end(6, "RUNWAY", "4", "RIGHT");
  end(8, "RUNWAY", "12", "north");
  chart.s.RwyLast = 9;
  // Rows 250 twips apart from 1050 down.
  const auto rows = [](int x, Lines texts) {
    for (int i = 0; i < 4; ++i)
      texts[i] = F("print %d %d 0,0,0 8 0 ", x, 1050 + 250 * i) + texts[i];
    return texts;
  };
  EXPECT_EQ(chart.sheet("print 10500 "),
            rows(10500, {"N0 ATIS  120", "N3 Tower  123", "N5 atis x  125", "N6 APPROACH/X  126"}));
  EXPECT_EQ(chart.sheet("print 200 1"),
            rows(200, {"RWY- 09-0M x 45M - ASPHALT", "RWY- 36L-400M x 45M - ASPHALT",
                       "RWY- 04R-600M x 45M - ASPHALT", "RWY- 12n-800M x 45M - ASPHALT"}));
  chart.s.RwyLast = 7;
  EXPECT_EQ(chart.sheet("print 200 1").size(), 3u);
}

TEST(Plan, ReferencePointRingAndPan) {
  for (const auto& [zoom, ring, panX, panY] :
       {std::array{16, 3000, 0, 0}, {2, 24000, 0, 0}, {50, 960, 0, 0}, {14, 3429, 1000, -500}}) {
    Chart chart(zoom);
    chart.v.PanX = panX;
    chart.v.PanY = panY;
    const Lines t = chart.sheet();
    const int x = 7000 + panX, y = 5000 + panY;
    // The yellow cross stays put; ring, centre, black cross and label move with the pan.
    EXPECT_EQ(
        Lines(t.end() - 7, t.end()),
        (Lines{"line 6800 5000 7200 5000 192,192,0 1 0", "line 7000 4800 7000 5200 192,192,0 1 0",
               F("circle %d %d %d 192,192,0 1 0", x, y, ring),
               F("circle %d %d 30 192,192,0 1 0", x, y),
               F("line %d %d %d %d 0,0,0 1 0", x - 100, y, x + 100, y),
               F("line %d %d %d %d 0,0,0 1 0", x, y - 100, x, y + 100),
               F("print %d %d 0,0,0 8 0 ARP", x + 40, y)}))
        << zoom;
  }
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
    EXPECT_TRUE(!chart.c.pen.FontBold && chart.c.pen.ForeColor == kBlack) << x0;
  }
}

TEST(Plan, RunwayWidthCarriesOverToTheFirstVorWithoutNdb) {
  for (const bool ndb : {false, true}) {
    Chart chart;
    chart.s.RwyEnd[0].lat = chart.s.RwyEnd[1].lat = LatAt(5000);
    chart.s.RwyLast = 1;
    chart.s.RwyEnd[0].lon = LonAt(6000);
    chart.s.RwyEnd[1].lon = LonAt(8000);
    if (ndb) {
      chart.s.Ndb[1] = {LatAt(2000), LonAt(7000), "338.0", "NB"};
      chart.s.NdbLast = 1;
    }
    chart.vor(3000, 3000, "VOA");
    chart.vor(11000, 7000, "VOB");
    EXPECT_EQ(chart.sheet(" 0,0,0 5 0"), Lines{"line 6000 5000 8000 5000 0,0,0 5 0"});
    EXPECT_EQ(chart.sheet("circle 3000 3000 90 0,0,255 "),
              Lines{F("circle 3000 3000 90 0,0,255 %d 0", ndb ? 1 : 5)});
    EXPECT_EQ(chart.sheet("circle 11000 7000 90 "), Lines{"circle 11000 7000 90 0,0,255 1 0"});
    const Lines red = {"circle 7000 2000 30 192,0,0 1 0", "circle 7000 2000 60 192,0,0 1 0",
                       "print 7000 1200 192,0,0 10 0 NB", "print 7000 1400 192,0,0 10 0 338.0"};
    EXPECT_EQ(chart.sheet(" 192,0,0 1"), ndb ? red : Lines{});
  }
}

}  // namespace
}  // namespace velmora::test
