// The benchmark program: writes its data into a temp folder, runs the benchmarks, times a
// zoom sweep through the window logic, and ends with a table of the targets. Missed
// targets are reported, never failed: the numbers are for people to read.

#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "charts/profile.h"
#include "data/line_reader.h"
#include "shell/qt/qt_canvas.h"

namespace velmora::bench {
namespace {

// Keeps each run's real time per iteration, in ns, for the summary. Colours only on a terminal,
// so that logs hold no escape codes (the library's --benchmark_color reaches only its own
// reporter).
class CapturingReporter final : public benchmark::ConsoleReporter {
 public:
  CapturingReporter() : ConsoleReporter(isatty(fileno(stdout)) ? OO_Defaults : OO_Tabular) {}
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const double ns =
          run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
      Record(run.run_name.function_name, ns);
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "velmora-bench-XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temp folder");
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// A figure as text; "not run" without one.
std::string Shown(const char* format, std::optional<double> value) {
  return value ? Format(format, *value) : "not run";
}

std::optional<double> Quotient(std::optional<double> a, std::optional<double> b) {
  if (!a || !b) return std::nullopt;
  return *a / *b;
}

std::string Time(std::optional<double> ns) {
  if (ns && *ns < 1e3) return Shown("%.1f ns", ns);
  if (ns && *ns < 1e6) return Shown("%.1f us", *ns / 1e3);
  return Shown("%.2f ms", Quotient(ns, 1e6));
}

// The goal column and whether it is met, which is known only where the figure is.
const char* Met(std::optional<double> figure, bool met) {
  return !figure ? "?" : met ? "yes" : "NO";
}
struct Goal {
  std::string text;
  const char* met;
};
Goal AtLeast(std::optional<double> figure, double bound) {
  return {Format(">=%.2f", bound), Met(figure, figure >= bound)};
}
Goal AtMost(std::optional<double> figure, double bound) {
  return {Format("<=%.2f", bound), Met(figure, figure <= bound)};
}
Goal Exactly(std::optional<double> figure, double wanted) {
  return {Format("==%.0f", wanted), Met(figure, figure == wanted)};
}
const Goal kInfo{"info", ""};

void Cells(const std::string& what, const std::string& measured, const std::string& baseline,
           const std::string& ratio, const std::string& goal, const std::string& met) {
  std::printf("%-42s %-14s %-16s %7s  %-7s %s\n", what.c_str(), measured.c_str(), baseline.c_str(),
              ratio.c_str(), goal.c_str(), met.c_str());
}
void Row(const std::string& what, const std::string& measured, const std::string& baseline,
         std::optional<double> ratio, const Goal& goal) {
  Cells(what, measured, baseline, ratio ? Format("%.2f", *ratio) : "-", goal.text, goal.met);
}

// Rate against a baseline over the same bytes: baseline time / measured time.
void RateRow(const std::string& what, const char* measured, const char* baseline, double atLeast) {
  const auto m = Recorded(measured), b = Recorded(baseline);
  const auto ratio = Quotient(b, m);
  Row(what, Time(m), Time(b), ratio, AtLeast(ratio, atLeast));
}

// Time against a baseline measured in the same run, or a fixed budget: measured / baseline.
void AtMostRow(const std::string& what, const char* measured, std::optional<double> baseNs,
               const std::string& baseText, double atMost) {
  const auto m = Recorded(measured);
  const auto ratio = Quotient(m, baseNs);
  Row(what, Time(m), baseText, ratio, AtMost(ratio, atMost));
}
void BudgetRow(const std::string& what, const char* measured, double ns, const char* text) {
  AtMostRow(what, measured, ns, text, 1.0);
}
void RatioRow(const std::string& what, const char* measured, const char* baseline, double atMost) {
  AtMostRow(what, measured, Recorded(baseline), Time(Recorded(baseline)), atMost);
}

// Time beside another, for information: measured / other.
void InfoRow(const std::string& what, const char* measured, const char* other,
             const std::string& otherName) {
  const auto m = Recorded(measured), o = Recorded(other);
  Row(what, Time(m), Time(o) + " " + otherName, Quotient(m, o), kInfo);
}

// A count against the one it must be, with no ratio.
void CountRow(const std::string& what, const char* name, const char* format, double wanted) {
  const auto count = Recorded(name);
  Row(what, Shown(format, count), Format("%.0f", wanted), std::nullopt, Exactly(count, wanted));
}

void Sweep(Canvas& canvas, const char* name) {
  std::vector<double> ms = ZoomSweep(canvas);
  if (ms.empty()) return;
  Record(std::string(name) + "_worst", *std::max_element(ms.begin(), ms.end()) * 1e6);
  std::nth_element(ms.begin(), ms.begin() + ms.size() / 2, ms.end());
  Record(std::string(name) + "_median", ms[ms.size() / 2] * 1e6);
}

void DataLines(const Data& d) {
  std::printf(
      "\nData: index %d lines (%.1f MB), airport file %.1f MB with %d airports before "
      "%s, vor.nav %d lines; %d VORs pass the range test at Zoom 16.\n",
      kIndexLines, d.indexBytes / 1e6, d.bigBytes / 1e6, d.airportsInBigFile,
      std::string(kWantedIdent).c_str(), kVorLines, d.vorsInRange);
  const RedrawCounts plain = CountRedraw(false);
  const RedrawCounts overlay = CountRedraw(true);
  std::printf(
      "One redraw hands the canvas %ld lines, %ld circles, %ld texts; with the overlay "
      "%ld, %ld, %ld (%ld terminal rows).\n\n",
      plain.lines, plain.circles, plain.texts, overlay.lines, overlay.circles, overlay.texts,
      overlay.termRows);
  Cells("target", "measured", "baseline/budget", "ratio", "goal", "met");
}

// How fast velmora-index goes through the world's airports.
void IndexedRow() {
  std::string what =
      Format("  airports indexed, of %d,%03d", kWorldAirports / 1000, kWorldAirports % 1000);
  if (const auto mb = Recorded("world_mb")) what += Format(" in %d MB", static_cast<int>(*mb));
  const auto seconds = Quotient(Recorded("BM_BuildIndex"), 1e9);
  Row(what, Shown("%.0f/s", Quotient(kWorldAirports, seconds)), "", std::nullopt, kInfo);
}

// The long line's buffer, bounded by the line limit and two reads' worth of buffer.
void BufferRow() {
  const auto bytes = Recorded("long_line_buffer_bytes");
  const double bound = static_cast<double>(kMaxLineBytes + (2u << 20));
  const auto ratio = Quotient(bytes, bound);
  Row("  reader's buffer for it", Shown("%.1f MB", Quotient(bytes, 1048576.0)),
      Format("%.1f MB", bound / 1048576.0), ratio, AtMost(ratio, 1.0));
}

// The reader rows hold the rates reached, not only the floor the program needs, so that a
// slip of the line reader shows.
void ReaderRows() {
  RateRow("index search rate vs memchr count", "BM_SearchIndex", "BM_IndexLineCount", 0.7);
  BudgetRow("LonToGrid + LatToGrid, one pair", "BM_CoordToGrid", 100, "100 ns");
  CountRow("  allocations per pair", "coord_allocs", "%.3f", 0);
  RateRow("ExtractArpt rate vs memchr count", "BM_ExtractArpt", "BM_AirportFileLineCount", 1.5);
  RateRow("velmora-index rate vs memchr count", "BM_BuildIndex", "BM_WorldLineCount", 0.5);
  IndexedRow();
  RateRow("ExtractArpt, one 200 MB line, vs count", "BM_LongLineExtract", "BM_LongLineCount", 0.4);
  BufferRow();
  BudgetRow(Format("LoadVor, %d lines", kVorLines), "BM_LoadVor", 5e6, "5 ms");
  InfoRow("  LoadVor vs memchr count of vor.nav", "BM_LoadVor", "BM_VorLineCount", "count");
}

void DrawingRows() {
  BudgetRow("full redraw, raster", "BM_RedrawRaster", 8e6, "8 ms");
  InfoRow("  raster vs null canvas", "BM_RedrawRaster", "BM_RedrawNull", "null");
  InfoRow("  its circles alone, replayed", "BM_RasterCirclesOnly", "BM_RedrawRaster", "all");
  InfoRow("  its texts alone, replayed", "BM_RasterTextsOnly", "BM_RedrawRaster", "all");
  BudgetRow(Format("redraw with %d-leg overlay, raster", kApproachLegs), "BM_OverlayRaster", 10e6,
            "10 ms");
  InfoRow("  raster vs null canvas", "BM_OverlayRaster", "BM_OverlayNull", "null");
  // A pick draws the approach twice: in the plan (the redraw above) and in the profile.
  RatioRow(Format("profile of the %d-leg approach vs its plan", kApproachLegs), "BM_ProfileRaster",
           "BM_OverlayRaster", 0.25);
  InfoRow("  its working out alone, vs drawn", "BM_ProfileWorkedOut", "BM_ProfileRaster", "drawn");
  // Each PDF page costs Qt's painting of it, so a kit costs about its pages: no goal to meet.
  InfoRow("kit PDF, 11 pages vs one-chart PDF", "BM_KitPdf", "BM_SingleChartPdf", "one chart");
  RatioRow("kit PDF with --fit vs without", "BM_KitPdfFit", "BM_KitPdf", 1.5);
  InfoRow("50 zoom steps, median step, raster", "zoom_raster_median", "zoom_null_median", "null");
  InfoRow("50 zoom steps, worst step, raster", "zoom_raster_worst", "zoom_null_worst", "null");
}

void ImportRows() {
  RateRow("velmora-import rate vs expat's plain parse", "BM_Import", "BM_ExpatParse", 0.5);
  InfoRow("  expat without handlers, vs import", "BM_ExpatMarkupOnly", "BM_Import", "import");
  const auto peak = Recorded("import_peak_bytes"), source = Recorded("import_source_bytes");
  const auto ratio = Quotient(peak, source);
  Row("  its peak memory vs the source", Shown("%.1f MB", Quotient(peak, 1e6)),
      Shown("%.1f MB source", Quotient(source, 1e6)), ratio, AtMost(ratio, 3.0));
  CountRow("  imported airports that load", "import_loaded", "%.0f", kImportAirports);
}

void LibraryRows() {
  RateRow("library import (--sim) vs a plain read", "BM_LibraryImport", "BM_LibraryRead", 0.2);
  const auto airports = Recorded("library_airports");
  const auto seconds = Quotient(Recorded("BM_LibraryImport"), 1e9);
  Row("  airports imported a second", Shown("%.0f/s", Quotient(airports, seconds)), "",
      std::nullopt, kInfo);
  CountRow("  airports imported", "library_airports", "%.0f", kLibraryAirports);
  RateRow("  unchanged second import vs the first", "BM_LibraryUnchanged", "BM_LibraryImport", 20);
  // Goal: twice the largest file plus 64 MB.
  const auto peak = Recorded("library_peak_bytes"), largest = Recorded("library_largest_file");
  const auto bound = largest ? std::optional(2 * *largest + 64e6) : std::nullopt;
  const auto ratio = Quotient(peak, bound);
  Row("  its peak memory vs 2 x largest file + 64 MB", Shown("%.1f MB", Quotient(peak, 1e6)),
      Shown("%.1f MB", Quotient(bound, 1e6)), ratio, AtMost(ratio, 1.0));
  Row("  the library's size", Shown("%.1f MB", Quotient(Recorded("library_bytes"), 1e6)), "",
      std::nullopt, kInfo);
}

void Summary(const Data& d) {
  DataLines(d);
  ReaderRows();
  DrawingRows();
  ImportRows();
  LibraryRows();
}

}  // namespace
}  // namespace velmora::bench

int main(int argc, char** argv) {
  using namespace velmora::bench;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  QGuiApplication app(argc, argv);

  try {
    TempFolder folder;
    Data& data = Shared();
    data.dir = folder.path();
    std::printf("Writing benchmark data under %s ...\n", data.dir.c_str());
    std::fflush(stdout);
    Generate(data);

    velmora::RasterCanvas raster;
    data.raster = &raster;
    velmora::RasterCanvas profileRaster(1.0, velmora::kProfileSize);
    data.profileRaster = &profileRaster;
    CapturingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    velmora::RasterCanvas sweepRaster;
    velmora::NullCanvas sweepNull;
    Sweep(sweepRaster, "zoom_raster");
    Sweep(sweepNull, "zoom_null");

    Summary(data);
    data.raster = nullptr;
    data.profileRaster = nullptr;
    data.store.reset();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "benchmark setup failed: %s\n", e.what());
    return 1;
  }
  benchmark::Shutdown();
  return 0;
}
