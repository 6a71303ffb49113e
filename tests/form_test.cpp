#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <tuple>

#include "data/text.h"
#include "geometry/svg_canvas.h"
#include "shell/chart_run.h"
#include "test_support.h"

namespace velmora::test {
namespace {

// XTST at N10 00.00 E10 00.00, behind another airport; at Zoom 16 a minute is 225 twips.
// GPS 9: WPA (6100,4100) to RW09 (6550,5000), transitions VOR VOA and INT WPA. VOR 27: VOA.
constexpr std::string_view kAirport = R"(<Airport ident="XOTHER"
lat="N50 00.00"
</Airport>
<Airport ident="XTST"
lat="N10 00.00"
lon="E10 00.00">
<Start type="RUNWAY"
number="9" designator="NONE"
lat="N10 00.00"
lon="E9 58.00"
heading="90.0"/>
<Waypoint
waypointIdent="WPA"
lat="N10 04.00"
lon="E9 56.00"/>
<Approach type="GPS"
runway="9"
designator="NONE">
<Leg type="IF"
fixIdent="WPA"
/>
<Leg type="TF"
fixIdent="RW09"
/>
<Transition
fixType="VOR"
fixIdent="VOA">
</Transition>
<Transition
fixType="INT"
fixIdent="WPA">
</Transition>
</Approach>
<Approach type="VOR"
runway="27"
designator="NONE">
<Leg type="IF"
fixIdent="VOA"
recommendedIdent="VOA"
/>
</Approach>
</Airport>
<Airport ident="XNOA"
lat="N10 00.00"
lon="E10 00.00">
</Airport>)";
const std::string kFound = "XTST-InfoOne-InfoTwo-x.txt";

void WriteWorld(const TempDir& d, bool index = true, bool vor = true) {
  if (index)
    d.write("Arpt index.txt", CrLf({"XTST;Info One;Info Two;x.txt", "XNOF;a;b;x.txt",
                                    "XMIS;a;b;no.txt", "XNOA;a;b;x.txt"}));
  if (vor) d.write("vor.nav", CrLf({"VOR A;10;2.00;9;59.00;H;VOA;113.40"}));  // at (7450, 5225)
  Lines lines;
  for (std::string_view line : Split(kAirport, '\n')) lines.emplace_back(line);
  d.write("FSXFiles/x.txt", CrLf(lines));
}

// What was drawn: the trace without its captions.
Lines Drawn(Lines t) {
  std::erase_if(t, [](auto& l) { return l.starts_with("caption"); });
  return t;
}

// Each control of `got` against `want`, field by field, so a failure names the control.
void ExpectControls(const Controls& got, const Controls& want) {
  EXPECT_EQ(got.caption, want.caption);
  const struct {
    const char* name;
    const Control& got;
    const Control& want;
  } controls[] = {
      {"txtSearch", got.txtSearch, want.txtSearch}, {"cmdSearch", got.cmdSearch, want.cmdSearch},
      {"cmdExit", got.cmdExit, want.cmdExit},       {"cmdArpt", got.cmdArpt, want.cmdArpt},
      {"cmdPlus", got.cmdPlus, want.cmdPlus},       {"cmdMinus", got.cmdMinus, want.cmdMinus},
      {"cmdZoom", got.cmdZoom, want.cmdZoom}};
  for (const auto& c : controls) {
    EXPECT_EQ(c.got.text, c.want.text) << c.name;
    EXPECT_EQ(c.got.enabled, c.want.enabled) << c.name;
  }
  const struct {
    const char* name;
    const ComboBox& got;
    const ComboBox& want;
  } boxes[] = {{"cmbAPP", got.cmbAPP, want.cmbAPP}, {"cmbTerm", got.cmbTerm, want.cmbTerm}};
  for (const auto& b : boxes) {
    EXPECT_EQ(b.got.text, b.want.text) << b.name;
    EXPECT_EQ(b.got.enabled, b.want.enabled) << b.name;
    EXPECT_EQ(b.got.rows, b.want.rows) << b.name;
  }
}

// Each step says what changed since the one before.
TEST(Form, ControlStatesAlongTheRoad) {
  TempDir d;
  WriteWorld(d);
  Harness h(d.path(), "xtst");
  ArptForm& f = h.form();
  Controls want;  // at the start only the search box, Search and EXIT take input
  want.txtSearch.text = "xtst";
  ExpectControls(f.controls(), want);
  f.picArpt_MouseDown(1, 0, 3000, 3000);  // before any load: nothing to move
  EXPECT_TRUE(Drawn(h.takeTrace()).empty());
  EXPECT_NE(f.controls().caption, "Velmora");

  f.cmdSearch_Click();
  want.caption = kFound;
  want.txtSearch.text = "";
  want.cmdArpt = {"Show XTST Chart", true};
  ExpectControls(f.controls(), want);
  EXPECT_EQ(Drawn(h.takeTrace()), Lines{"cls"});

  f.cmdArpt_Click();
  want.cmdPlus.enabled = true;
  want.cmdMinus.enabled = true;
  want.cmdZoom = {"Reset Position\rZoom Level= 16", true};
  want.cmbAPP = {"XTST APP", true, {"GPS 9", "VOR 27"}};
  want.cmbTerm.text = "XTST Term";
  ExpectControls(f.controls(), want);
  EXPECT_EQ(Count(h.takeTrace(), "print 100 100 0,0,0 14 1 XTST"), 1);

  f.cmbAPP_Click(0);
  want.cmbAPP.text = "GPS 9";
  want.cmbTerm = {"XTST Term", true, {"VOR VOA"}};
  ExpectControls(f.controls(), want);
  EXPECT_EQ(Count(h.takeTrace(), "line 6100 4100 6550 5000 0,128,0 2 0"), 1);

  f.showView(16, 0, 0);  // no zoom step: the caption keeps its blank
  h.takeTrace();
  // A failed search leaves the chart button and both lists as they were, and no view to show.
  f.setSearchText("zzzz");
  f.cmdSearch_Click();
  f.showView(8, 0, 0);
  want.caption = "Sorry, ZZZZ is not in the Index!";
  want.cmdPlus.enabled = false;
  want.cmdMinus.enabled = false;
  want.cmdZoom.enabled = false;
  ExpectControls(f.controls(), want);
  EXPECT_EQ(Drawn(h.takeTrace()), Lines{"cls"});

  // The chart button still offers XTST but looks for the code searched last in XTST's file;
  // the lists take the code of the last index line looked at.
  f.cmdArpt_Click();
  want.caption = "Sorry, ZZZZ is not in FSXFiles/x.txt - no chart";
  want.cmbAPP = {"XNOA APP", false, {}};
  want.cmbTerm.rows.clear();
  want.cmbTerm.text = "XNOA Term";
  ExpectControls(f.controls(), want);

  f.setSearchText("xtst");
  f.cmdSearch_Click();
  want.caption = kFound;
  ExpectControls(f.controls(), want);
  // An index without lines keeps the code found last.
  d.write("Arpt index.txt", "");
  f.cmdSearch_Click();
  f.cmdArpt_Click();
  EXPECT_EQ(f.controls().cmbAPP.text, "XTST APP");
}

// The caption shows the search's dots (how often: IndexSearch's test) before the code.
TEST(Form, SearchProgressInTheCaption) {
  TempDir d;
  WriteWorld(d);
  Lines index(6001, "F;a;b;x.txt");
  index.push_back("XTST;Info One;Info Two;x.txt");
  d.write("Arpt index.txt", CrLf(index));
  Harness h(d.path(), "xtst");
  h.form().cmdSearch_Click();
  const Lines want = {"caption searching for XTST", "caption searching for . XTST",
                      "caption searching for .. XTST", "caption " + kFound};
  EXPECT_EQ(Filter(h.takeTrace(), "caption "), want);
}

TEST(Form, RedrawsOfAPickedChartClickZoomAndReset) {
  TempDir d;
  WriteWorld(d);
  Harness h(d.path());
  ArptForm& f = h.form();
  h.load("xtst");
  h.takeTrace();
  f.cmbAPP_Click(0);
  Lines t = h.takeTrace();
  EXPECT_EQ(Count(t, "ARP"), 2);                                          // the plan again, on top
  EXPECT_EQ(t.back(), "print 7950 5425 0,0,255 10 1 113.40");             // its last VOR label
  for (int i = 0; i < 2; ++i) f.picArpt_MouseDown(2, 1, 7101.5, 4998.5);  // 7102, 4998
  f.picArpt_MouseDown(1, 0, 7000.5, 4999.5);  // ties to even: 7000, 5000 moves nothing
  EXPECT_EQ(f.view().PanX, -204);
  EXPECT_EQ(f.view().PanY, 4);
  t = h.takeTrace();
  EXPECT_EQ(Count(t, "cls"), 3);
  EXPECT_EQ(Count(t, "ARP"), 3);
  EXPECT_EQ(Count(t, "circle 6796 5004 3000 192,192,0"), 2);
  EXPECT_EQ(Count(t, "line 6800 5000 7200 5000 192,192,0"), 3);  // the cross stays
  EXPECT_TRUE(t.back().starts_with("line ") && t.back().ends_with(" 0,128,0 2 0")) << t.back();
  // Zoom and reset keep the terminal list; what each zoom draws is the casebook road's.
  f.cmdPlus_Click();
  f.cmdZoom_Click();
  EXPECT_EQ(f.controls().cmbTerm.rows, Lines{"VOR VOA"});
  // A row the list doesn't have picks nothing.
  for (int row : {-1, 2}) f.cmbAPP_Click(row);
  EXPECT_EQ(f.controls().cmbAPP.text, "GPS 9");
  // Zoom stops at its ends however often it is pressed, a click far off at the pan's limit.
  for (int i = 0; i < 8; ++i) f.cmdPlus_Click();
  EXPECT_EQ(f.view().Zoom, kZoomMin);
  for (int i = 0; i < 25; ++i) f.cmdMinus_Click();
  EXPECT_EQ(f.view().Zoom, kZoomMax);
  f.picArpt_MouseDown(1, 0, -1e12, 1e12);
  EXPECT_EQ(f.view().PanX, kPanLimit);
  EXPECT_EQ(f.view().PanY, -kPanLimit);
  f.showView(1, INT32_MIN, INT32_MAX);
  EXPECT_EQ(f.view().Zoom, kZoomMin);
  EXPECT_EQ(f.view().PanX, -kPanLimit);
  EXPECT_EQ(f.view().PanY, kPanLimit);
}

TEST(Form, BadFilesAreToldInTheCaptionAndDrawNothing) {
  TempDir d;
  WriteWorld(d, false, false);
  Harness h(d.path());
  EXPECT_EQ(h.form().controls().caption, "vor.nav could not be read: the chart shows no VORs");
  h.form().setSearchText("xtst");
  h.form().cmdSearch_Click();
  EXPECT_EQ(h.form().controls().caption, "Arpt index.txt could not be read - no search for XTST");
  EXPECT_FALSE(h.form().controls().cmdArpt.enabled);
  WriteWorld(d, true, false);  // the VOR list stays missing
  const std::string noFile =
                        "The airport file FSXFiles/no.txt could not be read - no chart for XMIS",
                    noChart =
                        "No chart to move yet - search for an airport and show its chart first";
  Lines full = {"<Airport ident=\"XFUL\"", "lat=\"N10 00.00\"", "lon=\"E10 00.00\">"};
  for (int i = 0; i < 102; ++i) full.insert(full.end(), {"<Com type=\"TOWER\"", "name=\"T\"/>"});
  d.write("FSXFiles/full.txt", CrLf(full));
  d.write("Arpt index.txt", CrLf({"XFUL;a;b;full.txt"}) + Slurp(d.path() / "Arpt index.txt"));
  for (const auto& [code, told] : {std::pair{"xtst", kFound},
                                   {"xnof", "Sorry, XNOF is not in FSXFiles/x.txt - no chart"},
                                   {"xmis", noFile},
                                   {"xtst", kFound}}) {
    h.load(code);
    EXPECT_EQ(h.form().controls().caption, told) << code;
    h.form().picArpt_MouseDown(1, 0, 5000, 5000);
    const Lines t = Drawn(h.takeTrace());
    EXPECT_EQ(Count(t, "cls") == std::ssize(t), told != kFound) << code;
    EXPECT_EQ(Count(t, "print 100 100 0,0,0 14 1 XTST"), told == kFound ? 2 : 0) << code;
    EXPECT_EQ(Count(t, "0,0,255"), 0) << code;  // no VOR list, no VORs
    EXPECT_EQ(h.form().controls().caption, told == kFound ? kFound : noChart);
  }
  h.load("xful");  // tables too small for the airport are told after the index line
  EXPECT_EQ(h.form().controls().caption, "XFUL-a-b-full.txt - tables full, dropped: 1 frequency");
  // After an import the caption tells what came in; a VOR list still missing was told at start.
  for (const char* told : {"1 airport", "2 airports"}) {
    h.form().importFinished(told);
    EXPECT_EQ(h.form().controls().caption, told);
    WriteWorld(d);
  }
}

// A sound VOR list loads silently; lines it can't use are counted in the caption.
TEST(Form, VorListProblemsInTheCaption) {
  const std::string vor = "VOR A;10;2.00;9;59.00;H;VOA;113.40";
  const struct {
    Lines lines;
    std::string caption;
  } cases[] = {
      {{vor}, "Velmora"},
      {{vor, "x;1", "y;a;b;c;d;e;f;g"}, "Velmora - vor.nav: 2 unreadable lines skipped"},
      {Lines(8003, vor), "Velmora - vor.nav: 2 VORs beyond the first 8001 dropped"},
      {{vor, std::string(17 << 20, 'x'), std::string(17 << 20, 'y')},
       "Velmora - vor.nav: 2 lines longer than 16 MB passed over"},
  };
  for (const auto& c : cases) {
    TempDir d;
    d.write("vor.nav", CrLf(c.lines));
    EXPECT_EQ(Harness(d.path()).form().controls().caption, c.caption);
  }
}

TEST(ChartRun, StepsStatusAndState) {
  TempDir d;
  WriteWorld(d);
  // clang-format off
  const struct { Lines args; int status; std::string err; Lines out; } cases[] = {
      {{"dance"}, 2, "unknown step 'dance'", {R"("step": 0)"}},
      {{"type:xtst", "search", "load", "pick:2"}, 2, "pick:2", {R"("step": 3)"}},
      {{"--airport", "xnoa"}, 0, "", {R"("XNOA APP", "enabled": true, "rows": []})"}},
      {{"load", "type:xtst", "search", "load"}, 0, "cmdArpt is disabled",
       {R"("step": 4)", R"("rows": ["GPS 9", "VOR 27"])"}},
      {{"--airport", "xtst", "--approach", "VOR 27"}, 0, "",
       {R"("text": "Reset Position\rZoom Level= 16")", R"("SelApp": 1, "AppSelected": true)"}}};
  // clang-format on
  for (const auto& k : cases) {
    Lines args = {"--state", "-"};
    args.insert(args.end(), k.args.begin(), k.args.end());
    const auto [status, out, err] = RunChartTool(d.path(), args);
    EXPECT_EQ(status, k.status) << k.args.back();
    for (const auto& part : k.out) EXPECT_NE(out.find(part), std::string::npos) << part;
    EXPECT_EQ(out.find('\r'), std::string::npos);
    EXPECT_EQ(err.empty(), k.err.empty()) << err;
    EXPECT_NE(err.find(k.err), std::string::npos) << err;
  }
}

// Each --out is written: SVG by the core, the other formats handed on with the whole picture.
TEST(ChartRun, EveryOutputGetsThePicture) {
  TempDir d;
  WriteWorld(d);
  std::ostringstream handed;
  TraceCanvas tracer(handed);
  Lines formats, args = {"--airport", "xtst", "--approach", "GPS 9"};
  for (const char* name : {"c.png", "c.svg", "c.pdf"})
    args.insert(args.end(), {"--out", (d.path() / name).string()});
  const auto writer = [&](const RecordingCanvas& picture, const std::filesystem::path& path, double,
                          std::ostream&) {
    formats.push_back(path.extension().string());
    picture.replay(tracer);
    return static_cast<bool>(std::ofstream(path) << "picture");
  };
  const auto run = RunChartTool(d.path(), args, writer);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(formats, (Lines{".png", ".pdf"}));
  const Lines drawn = TakeLines(handed);
  EXPECT_EQ(Count(drawn, "cls"), 2);
  EXPECT_EQ(Count(drawn, "line 6100 4100 6550 5000 0,128,0 2 0"), 2);
  const std::string text = Slurp(d.path() / "c.svg");
  EXPECT_TRUE(text.starts_with("<svg ") && text.ends_with("</svg>\n")) << text.substr(0, 100);
  // Print puts the top of the text at CurrentY, SVG its baseline: 0.9 em lower.
  for (
      const char* part :
      {R"x(<line x1="6100" y1="4100" x2="6550" y2="5000" stroke="rgb(0,128,0)")x",
       R"x(<text x="100" y="352" font-size="280" font-weight="bold" fill="rgb(0,0,0)">XTST</text>)x"})
    EXPECT_NE(text.find(part), std::string::npos) << part;
  SvgCanvas markup;
  markup.Cls();
  markup.Print("a<b&c>\xB0");
  EXPECT_NE(markup.document().find(">a&lt;b&amp;c&gt;\u00B0</text>"), std::string::npos);
  // Dots show on the thinnest pen only, as on screen.
  markup.pen.DrawStyle = kDotted;
  for (int width : {1, 2}) markup.pen.DrawWidth = width, markup.Line(0, 0, 9, 9);
  const std::string doc = markup.document();
  EXPECT_NE(doc.find("stroke-width=\"15\" stroke-dasharray"), std::string::npos);
  EXPECT_EQ(doc.find("stroke-dasharray"), doc.rfind("stroke-dasharray"));
}

}  // namespace
}  // namespace velmora::test
