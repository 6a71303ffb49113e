#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <ranges>
#include <sstream>

#include "charts/fit.h"
#include "data/platform.h"
#include "shell/chart_name.h"
#include "shell/chart_run.h"
#include "test_support.h"

namespace velmora::test {
namespace {

// A compact approach near the airport, and one that reaches beyond both sides of the sheet.
const GenApproach kCompact{"GPS", "9", {{6800, 4700}, {7200, 4900}, {7500, 5300}, {7000, 5000}}};
// Compact but far north: closer views would push its later fixes off the chart before pan,
// where the overlay drops them.
const GenApproach kNorth{"NDB", "36", {{7000, 1500}, {7400, 1700}, {7200, 1900}, {6900, 1600}}};
// A little taller than the sheet's room for fixes at the default zoom.
const GenApproach kTall{"LOC", "18", {{7000, 1200}, {7200, 5000}, {7000, 9000}}};
const GenApproach kWide{"VOR", "27", {{-6000, 3000}, {2000, 4000}, {16000, 6000}, {21000, 7000}}};
// Its first fix lies far north of the rest: the overlay draws a first fix wherever it lands,
// so only the later ones hold the zoom back.
const GenApproach kFirstFar{"RNAV", "9", {{7000, 600}, {7200, 3000}, {7000, 4000}, {6800, 3500}}};

// Positions of the fix symbols in a trace: black circles of radius 30 and width 2.
std::vector<std::pair<int, int>> FixSymbols(const Lines& trace) {
  std::vector<std::pair<int, int>> fixes;
  for (const std::string& line : Filter(trace, "circle ")) {
    std::istringstream in(line.substr(7));
    int x, y, r;
    std::string colour, width;
    in >> x >> y >> r >> colour >> width;
    if (r == 30 && colour == "0,0,0" && width == "2") fixes.emplace_back(x, y);
  }
  return fixes;
}

// Loads XGEN, picks `row` and forgets the trace so far.
void Pick(Harness& h, int row) {
  h.load("XGEN");
  h.form().cmbAPP_Click(row);
  h.takeTrace();
}

TEST(Fit, ClosestViewHoldsEveryFixAndIsOneAUserCanReach) {
  TempDir d;
  WriteAirports(d, {{"XGEN", {kCompact, kWide, kNorth, kTall, kFirstFar}}});
  for (const auto& [row, closer] :
       {std::pair{0, true}, {1, false}, {2, true}, {3, false}, {4, true}}) {
    Harness fit(d.path()), user(d.path());
    Pick(fit, row);
    const auto view = FitApproach(fit.store());
    ASSERT_TRUE(view.has_value()) << row;
    EXPECT_EQ(std::pair(view->Zoom<kZoomOnLoad, view->Zoom> kZoomOnLoad),
              std::pair(closer, !closer))
        << view->Zoom;
    fit.form().showView(view->Zoom, view->PanX, view->PanY);
    const Lines shown = fit.takeTrace();
    const auto fixes = FixSymbols(shown);
    EXPECT_EQ(fixes.size(), row == 3 ? 3u : 4u) << row;
    for (const auto& [x, y] : fixes)
      EXPECT_TRUE(x >= kFitLeft && x <= kFitRight && y >= kFitTop && y <= kFitBottom) << row;
    // The first closer zoom no longer holds them all.
    if (view->Zoom > kZoomMin) {
      Harness next(d.path());
      Pick(next, row);
      next.form().showView(view->Zoom - kZoomStep, view->PanX, view->PanY);
      const auto near = FixSymbols(next.takeTrace());
      const auto width = std::ranges::minmax(near | std::views::keys);
      const auto height = std::ranges::minmax(near | std::views::values);
      EXPECT_TRUE(near.size() < fixes.size() || width.max - width.min > kFitRight - kFitLeft ||
                  height.max - height.min > kFitBottom - kFitTop)
          << row;
    }
    // The same picture through the buttons and one click.
    Pick(user, row);
    for (int z = kZoomOnLoad; z != view->Zoom; z += z < view->Zoom ? kZoomStep : -kZoomStep)
      z < view->Zoom ? user.form().cmdMinus_Click() : user.form().cmdPlus_Click();
    user.form().cmdZoom_Click();
    user.takeTrace();
    user.form().picArpt_MouseDown(1, 0, 7000 - view->PanX, 5000 - view->PanY);
    EXPECT_EQ(user.takeTrace(), shown) << row;
    EXPECT_EQ(user.form().controls().cmdZoom.text, fit.form().controls().cmdZoom.text);
  }
}

struct FitCase {
  std::string name;
  std::vector<std::pair<int, int>> fixes;  // the approach's fixes at Zoom 16, in leg order
  std::optional<FitView> fit;
  bool picked = true;
};

// The room's edges met exactly, and what the fit leaves out whatever the case: a transition's
// leg to a far fix and a fix whose latitude can't be read, both ahead of the approach's legs.
TEST(Fit, TheRoomsEdgesAndWhatIsLeftOut) {
  const std::vector<FitCase> cases = {
      {"as wide as the room at Zoom 2", {{6175, 5000}, {7825, 5000}}, FitView{2, -200, 250}},
      {"as tall as the room at Zoom 16", {{7000, 1150}, {7000, 8850}}, FitView{16, -200, 250}},
      {"too far for any zoom", {{7000, 5000}, {1007000, 5000}}, FitView{50, -160200, 250}},
      {"no fix known", {}, std::nullopt},
      {"no approach picked", {{7000, 5000}}, std::nullopt, false},
  };
  for (const FitCase& c : cases) {
    Store s;
    s.ArptLat = LatAt(5000);
    s.ArptLon = LonAt(7000);
    s.AppSelected = c.picked;
    s.Approach[0] = {"GPS", "9", "NONE"};
    s.Waypoint[0] = {"FAR", LatAt(-900000), LonAt(7000)};
    s.Waypoint[1] = {"NOLAT", "", LonAt(900000)};
    s.Leg[0].fixIdent = "FAR";
    s.Leg[1].trans = kApproachLeg;
    s.Leg[1].fixIdent = "NOLAT";
    for (std::size_t i = 0; i < c.fixes.size(); ++i) {
      const std::string id = "F" + std::to_string(i);
      s.Waypoint[s.WaypointLast = 2 + i] = {id, LatAt(c.fixes[i].second), LonAt(c.fixes[i].first)};
      s.LegLast = 2 + i;
      s.Leg[s.LegLast].trans = kApproachLeg;
      s.Leg[s.LegLast].fixIdent = id;
    }
    const auto got = FitApproach(s);
    ASSERT_EQ(got.has_value(), c.fit.has_value()) << c.name;
    if (!got) continue;
    EXPECT_EQ(got->Zoom, c.fit->Zoom) << c.name;
    EXPECT_EQ(got->PanX, c.fit->PanX) << c.name;
    EXPECT_EQ(got->PanY, c.fit->PanY) << c.name;
  }
}

TEST(ChartTool, UsageExitStatusesAndAirportsWithoutAChart) {
  TempDir d;
  WriteAirports(d, {{"XGEN", {kCompact}}});
  d.write("Arpt index.txt", CrLf({"XGEN;G;T;gen.txt", "XMIS;G;T;gen.txt"}));
  const std::string kept = PathToUtf8(d.write("kept.png", "old picture"));
  const std::string missing = PathToUtf8(d.path() / "nofolder" / "x.png");
  // clang-format off
  const struct { Lines args; int status; std::string out, err; } cases[] = {
      {{"--help"}, 0, "exit status: 0 done", ""},
      {{"-h", "dance"}, 0, "--all-approaches", ""},
      {{"--version"}, 0, "velmora-chart 1.", ""},
      {{}, 2, "", "usage:"},
      {{"--fit"}, 2, "", "nothing to do"},
      {{"--airport", "XGEN", "--page", "b5"}, 2, "", "a4, letter or a5"},
      {{"--airport", "XGEN,XMIS"}, 2, "", "add --all-approaches"},
      {{"--airport", "XGEN,", "--all-approaches", "--out", "k.pdf"}, 2, "", "an empty code"},
      {{"--airport", "XGEN", "--all-approaches"}, 2, "", "needs one --out"},
      {{"--airport", "XGEN", "--all-approaches", "--out", "k.pdf", "plus"}, 2, "", "no steps"},
      {{"--airport", "nope", "--out", kept}, 1, "", "NOPE"},
      {{"--airport", "XMIS", "--out", kept}, 1, "", "Sorry, XMIS is not in"},
      {{"--airport", "XGEN", "--out", missing}, 1, "", "does not exist"},
      {{"--airport", "XGEN", "--out", kept}, 1, "", "was not written"}};
  // clang-format on
  // Fails halfway through its file.
  const auto failing = [](const auto&, const std::filesystem::path& path, double, std::ostream&) {
    std::ofstream(path) << "half";
    return false;
  };
  for (const auto& k : cases) {
    const auto [status, out, err] = RunChartTool(d.path(), k.args, failing);
    const std::string what = (k.args.empty() ? "(none)" : k.args.front() + " " + k.args.back());
    EXPECT_EQ(status, k.status) << what << "\n" << err;
    EXPECT_NE(out.find(k.out), std::string::npos) << what;
    EXPECT_NE(err.find(k.err), std::string::npos) << what << "\n" << err;
    EXPECT_EQ(err.empty(), k.err.empty()) << what << "\n" << err;
  }
  // The failed runs left the old picture and no temporary file behind.
  EXPECT_EQ(Slurp(kept), "old picture");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(d.path()), {}), 4);
}

// Arguments are UTF-8 on every system: files named outside ASCII are written under those names.
TEST(ChartTool, WritesFilesNamedOutsideAscii) {
  TempDir d;
  WriteAirports(d, {{"XGEN", {kCompact}}});
  d.write("Arpt index.txt", CrLf({"XGEN;G;T;gen.txt"}));
  const std::filesystem::path trace = d.path() / u8"Zürich.trace";
  // The extension's case doesn't matter.
  const std::filesystem::path picture = d.path() / u8"Köln.SVG";
  const auto run = RunChartTool(
      d.path(), {"--airport", "XGEN", "--trace", PathToUtf8(trace), "--out", PathToUtf8(picture)});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(Slurp(trace).find("cls"), std::string::npos);
  EXPECT_NE(Slurp(picture).find("<svg"), std::string::npos);
}

TEST(Kit, FolderOfPicturesNamedSafelyWithNotesForOddAirports) {
  TempDir d;
  GenApproach lost = kCompact;
  lost.type = "VOR/DME*";
  lost.lostFirst = true;
  WriteAirports(d, {{"XGEN", {kCompact, lost}}, {"XEMP", {}}});
  const auto out = d.path() / "kit";
  std::filesystem::create_directory(out);
  const auto run = RunChartTool(d.path(), {"--airport", "XGEN,XEMP", "--all-approaches", "--format",
                                           "svg", "--out", out.string() + "/"});
  EXPECT_EQ(run.status, 0) << run.err;
  Lines names;
  for (const auto& entry : std::filesystem::directory_iterator(out))
    names.push_back(entry.path().filename().string());
  std::ranges::sort(names);
  EXPECT_EQ(names, (Lines{"XEMP.svg", "XGEN-0-GPS_9.svg", "XGEN-1-VOR_DME__9.svg", "XGEN.svg"}));
  for (const char* note :
       {"XGEN VOR/DME* 9: first fix 'NOWHERE' not found", "XEMP has no approaches"})
    EXPECT_NE(run.err.find(note), std::string::npos) << run.err;
  EXPECT_NE(Slurp(out / "XGEN-1-VOR_DME__9.svg").find("ATTENTION"), std::string::npos);
}

}  // namespace
}  // namespace velmora::test
