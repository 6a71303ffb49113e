// Readers and coordinate conversion, each beside the plain line count that bounds it.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

#include "bench/bench_support.h"
#include "data/extract.h"
#include "data/index_search.h"
#include "data/vor.h"
#include "geometry/coords.h"

namespace velmora::bench {
namespace {

void LineCount(benchmark::State& state, const std::filesystem::path& file, std::uintmax_t bytes) {
  for (auto _ : state) benchmark::DoNotOptimize(CountLines(file));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void BM_IndexLineCount(benchmark::State& state) {
  LineCount(state, Shared().index, Shared().indexBytes);
}
BENCHMARK(BM_IndexLineCount)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SearchIndex(benchmark::State& state) {
  const Data& d = Shared();
  int dots = 0;
  const std::function<void(int)> progress = [&dots](int n) { dots = n; };
  for (auto _ : state) {
    IndexSearchResult r = SearchIndex(d.index, kWantedIdent, progress);
    if (!r.found) {
      state.SkipWithError("the last code of the index was not found");
      break;
    }
    benchmark::DoNotOptimize(r);
  }
  benchmark::DoNotOptimize(dots);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.indexBytes));
}
BENCHMARK(BM_SearchIndex)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CoordToGrid(benchmark::State& state) {
  std::string_view lon = kWantedLon;
  std::string_view lat = kWantedLat;
  const std::size_t before = AllocationCount();
  for (auto _ : state) {
    benchmark::DoNotOptimize(lon);
    benchmark::DoNotOptimize(lat);
    auto x = LonToGrid(lon);
    auto y = LatToGrid(lat);
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(y);
  }
  const double allocs =
      static_cast<double>(AllocationCount() - before) / static_cast<double>(state.iterations());
  state.counters["allocs/iter"] = allocs;
  Record("coord_allocs", allocs);
}
BENCHMARK(BM_CoordToGrid);

void BM_AirportFileLineCount(benchmark::State& state) {
  LineCount(state, Shared().bigFile, Shared().bigBytes);
}
BENCHMARK(BM_AirportFileLineCount)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ExtractArpt(benchmark::State& state) {
  const Data& d = Shared();
  auto store = std::make_unique<Store>();
  for (auto _ : state) {
    const ExtractReport r = ExtractArpt(*store, d.bigFile, kWantedIdent);
    if (!r.found || store->LegLast < kApproachLegs - 1) {
      state.SkipWithError("the last airport of the file was not read");
      break;
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bigBytes));
}
BENCHMARK(BM_ExtractArpt)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_VorLineCount(benchmark::State& state) {
  LineCount(state, Shared().vor, Shared().vorBytes);
}
BENCHMARK(BM_VorLineCount)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_LoadVor(benchmark::State& state) {
  auto store = std::make_unique<Store>();
  for (auto _ : state) {
    const VorReport r = LoadVor(*store, Shared().vor);
    if (store->VorLast != kVorLines - 1 || r.skipped > 0) {
      state.SkipWithError("the VOR list did not load whole");
      break;
    }
  }
}
BENCHMARK(BM_LoadVor)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
