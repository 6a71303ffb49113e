#include "shell/form.h"

#include <algorithm>
#include <array>

#include "charts/charts.h"
#include "data/extract.h"
#include "data/files.h"
#include "data/index_search.h"
#include "data/numbers.h"
#include "data/runway_text.h"
#include "data/text.h"
#include "data/vor.h"

namespace velmora {
namespace {

constexpr std::array<std::string_view, 8> kProgress = {
    "searching for ",        "searching for . ",      "searching for .. ",
    "searching for ... ",    "searching for .... ",   "searching for ..... ",
    "searching for ...... ", "searching for ....... "};

// "2 lines longer than 16 MB passed over"; empty for none.
std::string LongLinesText(int count) {
  if (count == 0) return {};
  return std::to_string(count) + (count == 1 ? " line" : " lines") + " longer than " +
         std::to_string(kMaxLineBytes >> 20) + " MB passed over";
}

std::string VorProblem(const VorReport& r) {
  const std::string file(kVorFileName);
  if (auto problem =
          FileProblem(r, file + " is not a VOR list Velmora can read: the chart shows no VORs",
                      file + " could not be read: the chart shows no VORs")) {
    return *problem;
  }
  std::string text;
  if (r.skipped > 0) text = std::to_string(r.skipped) + " unreadable lines skipped";
  if (r.dropped > 0) {
    if (!text.empty()) text += ", ";
    text += std::to_string(r.dropped) + " VORs beyond the first " +
            std::to_string(decltype(Store::Vor)::kHighest + 1) + " dropped";
  }
  if (r.longLines > 0) {
    if (!text.empty()) text += ", ";
    text += LongLinesText(r.longLines);
  }
  return text.empty() ? text : "Velmora - " + file + ": " + text;
}

// " - 1 line longer than 16 MB passed over", to follow a caption; empty for none.
std::string LongLinesNote(int count) {
  return count == 0 ? std::string{} : " - " + LongLinesText(count);
}

}  // namespace

std::string ApproachRowText(const ApproachRow& a) {
  return a.type + " " + a.runway + DesignatorLetter(a.designator);
}

ArptForm::ArptForm(Store& store, Canvas& canvas, std::filesystem::path dataDir,
                   Canvas* profileCanvas)
    : store_(store), canvas_(canvas), dataDir_(std::move(dataDir)), profileCanvas_(profileCanvas) {}

void ArptForm::showProfile(Profile profile) {
  profile_ = std::move(profile);
  if (profileCanvas_ != nullptr) DrawProfile(profile_, *profileCanvas_);
}

void ArptForm::setCaption(std::string text) {
  controls_.caption = std::move(text);
  if (onCaption) onCaption(controls_.caption);
}

void ArptForm::Form_Load(std::string_view commandLine) {
  if (!commandLine.empty()) controls_.txtSearch.text = commandLine;
  view_.Zoom = kZoomMin;
  for (Control* c :
       {&controls_.cmdArpt, &controls_.cmdPlus, &controls_.cmdMinus, &controls_.cmdZoom}) {
    c->enabled = false;
  }
  controls_.cmbAPP.enabled = false;
  controls_.cmbTerm.enabled = false;
  showProfile(NoApproachProfile());
  const VorReport vor = LoadVor(store_, dataDir_ / kVorFileName);
  if (std::string problem = VorProblem(vor); !problem.empty()) setCaption(std::move(problem));
}

void ArptForm::importFinished(std::string caption) {
  // A missing list was told at start; the import only ever adds one.
  std::error_code ec;
  if (!std::filesystem::exists(dataDir_ / kVorFileName, ec)) return setCaption(std::move(caption));
  const VorReport vor = LoadVor(store_, dataDir_ / kVorFileName);
  const std::string problem = VorProblem(vor);
  setCaption(problem.empty() ? std::move(caption) : caption + " - " + problem);
}

void ArptForm::cmdSearch_Click() {
  controls_.cmdZoom.enabled = false;
  SearchIdent = UpperCase(controls_.txtSearch.text);
  canvas_.Cls();
  showProfile(NoApproachProfile());
  controls_.cmdPlus.enabled = false;
  controls_.cmdMinus.enabled = false;

  const IndexSearchResult r = SearchIndex(dataDir_ / kIndexFileName, SearchIdent, [&](int dots) {
    setCaption(std::string(kProgress[static_cast<std::size_t>(dots)]) + SearchIdent);
  });
  controls_.txtSearch.text.clear();
  const std::string index(kIndexFileName);
  if (auto problem =
          FileProblem(r, index + " is not an index Velmora can read - no search for " + SearchIdent,
                      index + " could not be read - no search for " + SearchIdent)) {
    setCaption(std::move(*problem));
    return;
  }
  // An index without lines leaves the last code as it was.
  if (r.found || r.rejected > 0) IndexIdent = r.ident;
  if (!r.found) {
    setCaption("Sorry, " + SearchIdent + " is not in the Index!" + LongLinesNote(r.longLines));
    return;
  }
  IndexInfo1 = r.info1;
  IndexInfo2 = r.info2;
  IndexFile = r.file;
  setCaption(IndexIdent + "-" + IndexInfo1 + "-" + IndexInfo2 + "-" + IndexFile +
             LongLinesNote(r.longLines));
  controls_.cmdArpt.text = "Show " + IndexIdent + " Chart";
  controls_.cmdArpt.enabled = true;
  controls_.cmbAPP.enabled = false;
}

void ArptForm::setZoomCaption(std::string_view separator) {
  controls_.cmdZoom.text =
      "Reset Position\rZoom Level=" + std::string(separator) + std::to_string(view_.Zoom);
}

void ArptForm::cmdArpt_Click() {
  view_.Zoom = kZoomOnLoad;
  store_.AppSelected = false;
  showProfile(NoApproachProfile());
  controls_.cmdZoom.enabled = true;
  setZoomCaption(" ");
  view_.PanX = 0;
  view_.PanY = 0;
  controls_.cmbAPP.enabled = true;
  controls_.cmbAPP.rows.clear();
  controls_.cmbAPP.text = IndexIdent + " APP";
  controls_.cmbTerm.rows.clear();
  controls_.cmbTerm.text = IndexIdent + " Term";

  canvas_.Cls();
  const std::string shown = std::string(kAirportFolder) + "/" + IndexFile;
  // Only a file below the folder is read; any other name reads as not a file.
  const auto file = PathBelow(dataDir_ / kAirportFolder, IndexFile);
  ExtractReport report;
  if (file) {
    report = ExtractArpt(store_, *file, SearchIdent);
  } else {
    store_.ClearArpt();
    report.notRegular = true;
  }
  if (auto problem = FileProblem(
          report, shown + " is not an airport file Velmora can read - no chart for " + SearchIdent,
          "The airport file " + shown + " could not be read - no chart for " + SearchIdent)) {
    failLoad(std::move(*problem));
    return;
  }
  if (!report.found) {
    failLoad("Sorry, " + SearchIdent + " is not in " + shown + " - no chart" +
             LongLinesNote(report.longLines));
    return;
  }
  displayArpt();

  for (std::int32_t slot = 0; slot <= store_.AppLast && store_.Approach.has(slot); ++slot) {
    if (slot == 0 && store_.Approach[0].type.empty()) break;
    controls_.cmbAPP.rows.push_back(ApproachRowText(store_.Approach[slot]));
  }
  if (report.dropped.any()) {
    setCaption(controls_.caption + " - tables full, dropped: " + report.dropped.text());
  }
  if (report.longLines > 0) setCaption(controls_.caption + LongLinesNote(report.longLines));
}

void ArptForm::failLoad(std::string caption) {
  // Nothing is drawn from an empty store, and nothing offers to zoom or pick in it.
  for (Control* c : {&controls_.cmdZoom, &controls_.cmdPlus, &controls_.cmdMinus}) {
    c->enabled = false;
  }
  controls_.cmbAPP.enabled = false;
  setCaption(std::move(caption));
}

void ArptForm::cmbAPP_Click(int row) {
  if (row < 0 || row >= static_cast<int>(controls_.cmbAPP.rows.size())) return;
  store_.SelApp = row;
  store_.AppSelected = true;
  controls_.cmbAPP.text = controls_.cmbAPP.rows[static_cast<std::size_t>(row)];
  controls_.cmbTerm.rows.clear();
  controls_.cmbTerm.enabled = true;
  controls_.cmbTerm.text = IndexIdent + " Term";
  // The plan is drawn again last, over the overlay.
  displayArpt();
  DrawApp(store_, view_, canvas_, controls_.cmbTerm.rows);
  DrawArpt(store_, view_, canvas_);
  showProfile(MakeProfile(store_, row, controls_.cmbAPP.text));
}

void ArptForm::displayArpt() {
  controls_.cmdPlus.enabled = true;
  controls_.cmdMinus.enabled = true;
  controls_.cmdSearch.enabled = true;
  DisplayArpt(store_, view_, canvas_);
}

void ArptForm::redraw() {
  displayArpt();
  if (store_.AppSelected) {
    controls_.cmbTerm.rows.clear();
    DrawApp(store_, view_, canvas_, controls_.cmbTerm.rows);
  }
}

void ArptForm::cmdPlus_Click() {
  view_.Zoom -= kZoomStep;
  if (view_.Zoom < kZoomMin) view_.Zoom = kZoomMin;
  setZoomCaption("");
  redraw();
}

void ArptForm::cmdMinus_Click() {
  view_.Zoom += kZoomStep;
  if (view_.Zoom > kZoomMax) view_.Zoom -= kZoomStep;
  setZoomCaption("");
  redraw();
}

void ArptForm::cmdZoom_Click() {
  view_.PanX = 0;
  view_.PanY = 0;
  redraw();
}

void ArptForm::picArpt_MouseDown(int /*button*/, int /*shift*/, double x, double y) {
  if (!store_.hasAirport()) {
    setCaption("No chart to move yet - search for an airport and show its chart first");
    return;
  }
  const auto pan = [](std::int32_t pan, std::int32_t centre, double at) {
    return std::clamp(RoundEven(static_cast<double>(pan) + centre - RoundEven(at)), -kPanLimit,
                      kPanLimit);
  };
  view_.PanX = pan(view_.PanX, kArpScreenX, x);
  view_.PanY = pan(view_.PanY, kArpScreenY, y);
  redraw();
}

void ArptForm::showView(std::int32_t zoom, std::int32_t panX, std::int32_t panY) {
  if (!store_.hasAirport() || !controls_.cmdPlus.enabled) return;
  zoom = std::clamp(zoom - zoom % kZoomStep, kZoomMin, kZoomMax);
  // A zoom step rewrites the caption even when it changes nothing; no step leaves it.
  if (zoom != view_.Zoom) {
    view_.Zoom = zoom;
    setZoomCaption("");
  }
  view_.PanX = std::clamp(panX, -kPanLimit, kPanLimit);
  view_.PanY = std::clamp(panY, -kPanLimit, kPanLimit);
  redraw();
}

}  // namespace velmora
