// A 200 MB line without a line end: the airport reader against a plain line count over the
// same bytes, and the memory the reader's buffer takes for it.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <fstream>
#include <memory>
#include <string>

#include "bench/bench_support.h"
#include "data/extract.h"

namespace velmora::bench {
namespace {

constexpr std::uintmax_t kLongLineBytes = 200'000'000;

const std::filesystem::path& LongLineFile() {
  static const std::filesystem::path file = [] {
    const std::filesystem::path path = Shared().dir / "FSXFiles" / "long-line.txt";
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out = OutFile(path);
    const std::string block(1 << 20, 'x');
    for (std::uintmax_t written = 0; written < kLongLineBytes; written += block.size())
      out.write(block.data(), static_cast<std::streamsize>(block.size()));
    return path;
  }();
  return file;
}

void BM_LongLineCount(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(CountLines(LongLineFile()));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLongLineBytes));
}
BENCHMARK(BM_LongLineCount)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void BM_LongLineExtract(benchmark::State& state) {
  auto store = std::make_unique<Store>();
  for (auto _ : state) {
    LineReader reader;
    const auto heapBefore = mallinfo2();
    reader.open(LongLineFile());
    const ExtractReport r = ExtractArpt(*store, reader, kWantedIdent);
    // The buffer never shrinks while the reader lives: what it holds now is its peak.
    const auto heapAfter = mallinfo2();
    Record("long_line_buffer_bytes",
           static_cast<double>(heapAfter.uordblks + heapAfter.hblkhd) -
               static_cast<double>(heapBefore.uordblks + heapBefore.hblkhd));
    if (r.found || r.longLines != 1) {
      state.SkipWithError("the long line was not passed over");
      break;
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLongLineBytes));
}
BENCHMARK(BM_LongLineExtract)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

}  // namespace
}  // namespace velmora::bench
