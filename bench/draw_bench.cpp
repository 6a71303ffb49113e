// Full redraws of the generated airport with its world VOR list, on the raster canvas and
// on the canvas that draws nothing, so the painting and the chart code can be told apart.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

#include "bench/bench_support.h"
#include "charts/charts.h"
#include "charts/profile.h"
#include "shell/form.h"

namespace velmora::bench {
namespace {

// The loaded airport at the load's Zoom 16, with its first approach over it or not.
View Prepare(Store& s, bool overlay) {
  s.SelApp = 0;
  s.AppSelected = overlay;
  View v;
  v.Zoom = 16;
  return v;
}

// One redraw: the sheet, and the overlay where one is selected.
void Draw(Store& s, View& view, Canvas& canvas, std::vector<std::string>& termRows) {
  DisplayArpt(s, view, canvas);
  if (!s.AppSelected) return;
  termRows.clear();
  DrawApp(s, view, canvas, termRows);
}

void Redraw(benchmark::State& state, Canvas* canvas, bool overlay) {
  if (canvas == nullptr) {
    state.SkipWithError("no canvas");
    return;
  }
  Store& s = *Shared().store;
  View view = Prepare(s, overlay);
  std::vector<std::string> termRows;
  for (auto _ : state) Draw(s, view, *canvas, termRows);
  s.AppSelected = false;
}

NullCanvas gNull;

void BM_RedrawNull(benchmark::State& state) {
  Redraw(state, &gNull, false);
}
void BM_RedrawRaster(benchmark::State& state) {
  Redraw(state, Shared().raster, false);
}
void BM_OverlayNull(benchmark::State& state) {
  Redraw(state, &gNull, true);
}
void BM_OverlayRaster(benchmark::State& state) {
  Redraw(state, Shared().raster, true);
}

BENCHMARK(BM_RedrawNull)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RedrawRaster)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_OverlayNull)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_OverlayRaster)->Unit(benchmark::kMillisecond)->UseRealTime();

// What a pick adds for the profile pane: the profile of the 30-leg approach, worked out from
// the store (its fixes looked up as the overlay looks them up) and drawn at the pane's size.
void BM_ProfileRaster(benchmark::State& state) {
  Canvas* canvas = Shared().profileRaster;
  if (canvas == nullptr) {
    state.SkipWithError("no canvas");
    return;
  }
  const Store& s = *Shared().store;
  for (auto _ : state) DrawProfile(MakeProfile(s, 0, "ILS 16L"), *canvas);
}

void BM_ProfileWorkedOut(benchmark::State& state) {
  const Store& s = *Shared().store;
  for (auto _ : state) benchmark::DoNotOptimize(MakeProfile(s, 0, "ILS 16L"));
}

BENCHMARK(BM_ProfileRaster)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ProfileWorkedOut)->Unit(benchmark::kMillisecond)->UseRealTime();

// Passes on one kind of shape only, to tell where the raster's time goes.
class OnlyCanvas final : public Canvas {
 public:
  enum class Kind { kCircles, kTexts };
  OnlyCanvas(Canvas& target, Kind kind) : target_(target), kind_(kind) {}
  void drawCls() override { target_.drawCls(); }
  void drawLine(const Pen&, std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
  void drawCircle(const Pen& p, std::int32_t x, std::int32_t y, std::int32_t r) override {
    if (kind_ == Kind::kCircles) target_.drawCircle(p, x, y, r);
  }
  void drawText(const Pen& p, std::string_view text) override {
    if (kind_ == Kind::kTexts) target_.drawText(p, text);
  }

 private:
  Canvas& target_;
  Kind kind_;
};

void ReplayOnly(benchmark::State& state, OnlyCanvas::Kind kind) {
  Canvas* raster = Shared().raster;
  if (raster == nullptr) {
    state.SkipWithError("no canvas");
    return;
  }
  Store& s = *Shared().store;
  View view = Prepare(s, false);
  RecordingCanvas picture;
  DisplayArpt(s, view, picture);
  OnlyCanvas only(*raster, kind);
  for (auto _ : state) picture.replay(only);
}

void BM_RasterCirclesOnly(benchmark::State& state) {
  ReplayOnly(state, OnlyCanvas::Kind::kCircles);
}
void BM_RasterTextsOnly(benchmark::State& state) {
  ReplayOnly(state, OnlyCanvas::Kind::kTexts);
}

BENCHMARK(BM_RasterCirclesOnly)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RasterTextsOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

RedrawCounts CountRedraw(bool overlay) {
  Store& s = *Shared().store;
  View view = Prepare(s, overlay);
  CountingCanvas counting;
  std::vector<std::string> termRows;
  Draw(s, view, counting, termRows);
  s.AppSelected = false;
  return {counting.lines, counting.circles, counting.texts, static_cast<long>(termRows.size())};
}

std::vector<double> ZoomSweep(Canvas& canvas) {
  Store store;
  ArptForm form(store, canvas, Shared().dir);
  form.Form_Load("");
  form.setSearchText(std::string(kWantedIdent));
  form.cmdSearch_Click();
  form.cmdArpt_Click();
  if (form.controls().cmbAPP.rows.empty()) return {};
  form.cmbAPP_Click(0);

  // From the load's 16 out to 50, in to 2, and part of the way back.
  std::vector<bool> zoomOut;
  zoomOut.insert(zoomOut.end(), 17, true);
  zoomOut.insert(zoomOut.end(), 24, false);
  zoomOut.insert(zoomOut.end(), 9, true);

  std::vector<double> ms;
  for (bool out : zoomOut) {
    const auto t0 = std::chrono::steady_clock::now();
    if (out) {
      form.cmdMinus_Click();
    } else {
      form.cmdPlus_Click();
    }
    const auto t1 = std::chrono::steady_clock::now();
    ms.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
  }
  return ms;
}

}  // namespace velmora::bench
