// The benchmark program: writes its data into a temp folder, runs the benchmarks, times a
// zoom sweep through the window logic, and ends with a table of the targets. Missed
// targets are reported, never failed: the numbers are for people to read.

#include <benchmark/benchmark.h>
#include <stdlib.h>

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
#include "data/line_reader.h"
#include "shell/qt/qt_canvas.h"

namespace velmora::bench {
namespace {

// Keeps each run's real time per iteration, in ns, for the summary.
class CapturingReporter final : public benchmark::ConsoleReporter {
 public:
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

std::string Time(std::optional<double> ns) {
  if (!ns) return "not run";
  char buf[32];
  if (*ns < 1e3) {
    std::snprintf(buf, sizeof buf, "%.1f ns", *ns);
  } else if (*ns < 1e6) {
    std::snprintf(buf, sizeof buf, "%.1f us", *ns / 1e3);
  } else {
    std::snprintf(buf, sizeof buf, "%.2f ms", *ns / 1e6);
  }
  return buf;
}

void Row(const std::string& what, const std::string& measured, const std::string& baseline,
         std::optional<double> ratio, const char* goal, const char* met) {
  char r[16] = "-";
  if (ratio) std::snprintf(r, sizeof r, "%.2f", *ratio);
  std::printf("%-42s %-14s %-16s %7s  %-7s %s\n", what.c_str(), measured.c_str(), baseline.c_str(),
              r, goal, met);
}

// Rate against a baseline over the same bytes: baseline time / measured time.
void RateRow(const std::string& what, const char* measured, const char* baseline, double atLeast,
             const char* goal) {
  const auto m = Recorded(measured);
  const auto b = Recorded(baseline);
  std::optional<double> ratio;
  if (m && b) ratio = *b / *m;
  Row(what, Time(m), Time(b), ratio, goal, !ratio ? "?" : *ratio >= atLeast ? "yes" : "NO");
}

// Time against a fixed budget: measured / budget.
void BudgetRow(const std::string& what, std::optional<double> ns, double budgetNs,
               const char* budgetText) {
  std::optional<double> ratio;
  if (ns) ratio = *ns / budgetNs;
  Row(what, Time(ns), budgetText, ratio, "<=1.00", !ratio ? "?" : *ratio <= 1.0 ? "yes" : "NO");
}

// Time against a baseline measured in the same run: measured / baseline, at most `atMost`.
void RatioRow(const std::string& what, const char* measured, const char* baseline, double atMost,
              const char* goal) {
  const auto m = Recorded(measured);
  const auto b = Recorded(baseline);
  std::optional<double> ratio;
  if (m && b) ratio = *m / *b;
  Row(what, Time(m), Time(b), ratio, goal, !ratio ? "?" : *ratio <= atMost ? "yes" : "NO");
}

void InfoRow(const std::string& what, std::optional<double> ns, std::optional<double> baseNs,
             const std::string& baseName) {
  std::optional<double> ratio;
  if (ns && baseNs) ratio = *ns / *baseNs;
  Row(what, Time(ns), Time(baseNs) + " " + baseName, ratio, "info", "");
}

void Sweep(Canvas& canvas, const char* name) {
  std::vector<double> ms = ZoomSweep(canvas);
  if (ms.empty()) return;
  Record(std::string(name) + "_worst", *std::max_element(ms.begin(), ms.end()) * 1e6);
  std::nth_element(ms.begin(), ms.begin() + ms.size() / 2, ms.end());
  Record(std::string(name) + "_median", ms[ms.size() / 2] * 1e6);
}

// A row of a count against its goal, with no ratio.
void CountRow(const std::string& what, std::optional<double> value, const char* format,
              const std::string& baseline, const char* goal, bool met) {
  char m[32] = "not run";
  if (value) std::snprintf(m, sizeof m, format, *value);
  Row(what, m, baseline, std::nullopt, goal, !value ? "?" : met ? "yes" : "NO");
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
  std::printf("%-42s %-14s %-16s %7s  %-7s %s\n", "target", "measured", "baseline/budget", "ratio",
              "goal", "met");
}

// The reader rows hold the rates reached, not only the floor the program needs, so that a
// slip of the line reader shows.
void ReaderRows() {
  RateRow("index search rate vs memchr count", "BM_SearchIndex", "BM_IndexLineCount", 0.7,
          ">=0.70");
  BudgetRow("LonToGrid + LatToGrid, one pair", Recorded("BM_CoordToGrid"), 100, "100 ns");
  const auto allocs = Recorded("coord_allocs");
  CountRow("  allocations per pair", allocs, "%.3f", "0", "==0", allocs && *allocs == 0);
  RateRow("ExtractArpt rate vs memchr count", "BM_ExtractArpt", "BM_AirportFileLineCount", 1.5,
          ">=1.50");
  RateRow("velmora-index rate vs memchr count", "BM_BuildIndex", "BM_WorldLineCount", 0.5,
          ">=0.50");
  if (const auto ns = Recorded("BM_BuildIndex"); ns && Recorded("world_mb")) {
    char m[32];
    std::snprintf(m, sizeof m, "%.0f/s", 30000 / (*ns / 1e9));
    Row("  airports indexed, of 30,000 in " +
            std::to_string(static_cast<int>(*Recorded("world_mb"))) + " MB",
        m, "", std::nullopt, "info", "");
  }
  RateRow("ExtractArpt, one 200 MB line, vs count", "BM_LongLineExtract", "BM_LongLineCount", 0.4,
          ">=0.40");
  // Bounded by the line limit and two reads' worth of buffer.
  const auto bytes = Recorded("long_line_buffer_bytes");
  const double bound = static_cast<double>(kMaxLineBytes + (2u << 20));
  char m[32] = "not run";
  if (bytes) std::snprintf(m, sizeof m, "%.1f MB", *bytes / 1048576.0);
  Row("  reader's buffer for it", m, "18.0 MB",
      bytes ? std::optional(*bytes / bound) : std::nullopt, "<=1.00",
      !bytes            ? "?"
      : *bytes <= bound ? "yes"
                        : "NO");
  BudgetRow("LoadVor, 8001 lines", Recorded("BM_LoadVor"), 5e6, "5 ms");
  InfoRow("  LoadVor vs memchr count of vor.nav", Recorded("BM_LoadVor"),
          Recorded("BM_VorLineCount"), "count");
}

void DrawingRows() {
  BudgetRow("full redraw, raster", Recorded("BM_RedrawRaster"), 8e6, "8 ms");
  InfoRow("  raster vs null canvas", Recorded("BM_RedrawRaster"), Recorded("BM_RedrawNull"),
          "null");
  InfoRow("  its circles alone, replayed", Recorded("BM_RasterCirclesOnly"),
          Recorded("BM_RedrawRaster"), "all");
  InfoRow("  its texts alone, replayed", Recorded("BM_RasterTextsOnly"),
          Recorded("BM_RedrawRaster"), "all");
  BudgetRow("redraw with 30-leg overlay, raster", Recorded("BM_OverlayRaster"), 10e6, "10 ms");
  InfoRow("  raster vs null canvas", Recorded("BM_OverlayRaster"), Recorded("BM_OverlayNull"),
          "null");
  RatioRow("kit PDF, 11 pages vs one-chart PDF", "BM_KitPdf", "BM_SingleChartPdf", 3.0, "<=3.00");
  RatioRow("kit PDF with --fit vs without", "BM_KitPdfFit", "BM_KitPdf", 1.5, "<=1.50");
  InfoRow("50 zoom steps, median step, raster", Recorded("zoom_raster_median"),
          Recorded("zoom_null_median"), "null");
  InfoRow("50 zoom steps, worst step, raster", Recorded("zoom_raster_worst"),
          Recorded("zoom_null_worst"), "null");
}

void ImportRows() {
  RateRow("velmora-import rate vs expat's plain parse", "BM_Import", "BM_ExpatParse", 0.5,
          ">=0.50");
  InfoRow("  expat without handlers, vs import", Recorded("BM_ExpatMarkupOnly"),
          Recorded("BM_Import"), "import");
  if (const auto peak = Recorded("import_peak_bytes"), source = Recorded("import_source_bytes");
      peak && source) {
    char m[32], b[32];
    std::snprintf(m, sizeof m, "%.1f MB", *peak / 1e6);
    std::snprintf(b, sizeof b, "%.1f MB source", *source / 1e6);
    Row("  its peak memory vs the source", m, b, *peak / *source, "<=3.00",
        *peak <= 3 * *source ? "yes" : "NO");
  }
  const auto loaded = Recorded("import_loaded");
  CountRow("  imported airports that load", loaded, "%.0f", "2000", "==2000",
           loaded && *loaded == 2000);
}

void Summary(const Data& d) {
  DataLines(d);
  ReaderRows();
  DrawingRows();
  ImportRows();
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
    CapturingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    velmora::RasterCanvas sweepRaster;
    velmora::NullCanvas sweepNull;
    Sweep(sweepRaster, "zoom_raster");
    Sweep(sweepNull, "zoom_null");

    Summary(data);
    data.raster = nullptr;
    data.store.reset();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "benchmark setup failed: %s\n", e.what());
    return 1;
  }
  benchmark::Shutdown();
  return 0;
}
