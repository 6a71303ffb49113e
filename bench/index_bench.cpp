// velmora-index's builder over a world of airports, beside a memchr line count of the same
// files.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "bench/bench_support.h"
#include "data/arpt_index.h"

namespace velmora::bench {
namespace {

constexpr int kWorldFiles = 30;
constexpr int kAirportsPerFile = kWorldAirports / kWorldFiles;

// One airport of about 5 kB: its own lines, runways with their ends, frequencies, two
// approaches with legs, as decompiled files give them.
std::string WorldAirport(int n) {
  const std::string id = "W" + std::to_string(100000 + n).substr(1);
  std::string t = "<Airport ident=\"" + id +
                  "\"\r\n    region=\"Veldmark\"\r\n"
                  "    country=\"Veldmark\"\r\n    state=\"West\"\r\n    city=\"Town " +
                  id + "\"\r\n    name=\"Field " + id +
                  "\"\r\n    lat=\"N47 26.39\"\r\n"
                  "    lon=\"W122 18.55\"\r\n    alt=\"130.2M\"\r\n    magvar=\"-18.00\">\r\n";
  t += "    <Tower\r\n        lat=\"N47 26.50\"\r\n        lon=\"W122 18.20\"\r\n        "
       "alt=\"130.2M\"/>\r\n";
  for (int c = 0; c < 4; ++c) {
    t += "    <Com type=\"TOWER\"\r\n        frequency=\"119.900\"\r\n        name=\"TOWER\"/>\r\n";
  }
  for (int r = 0; r < 3; ++r) {
    t += "    <Runway number=\"16\" designator=\"LEFT\"\r\n        lat=\"N47 27.00\"\r\n"
         "        lon=\"W122 18.40\"\r\n        length=\"3627.1M\"\r\n        width=\"45.7M\"\r\n"
         "        heading=\"180.0\"\r\n        surface=\"ASPHALT\">\r\n"
         "        <Markings edges=\"TRUE\"/>\r\n        <Lights center=\"HIGH\"/>\r\n"
         "    </Runway>\r\n\r\n";
  }
  for (int a = 0; a < 2; ++a) {
    t += "    <Approach type=\"ILS\"\r\n        runway=\"16\"\r\n        designator=\"LEFT\"\r\n"
         "        fixType=\"TERMINAL_WAYPOINT\"\r\n        fixIdent=\"CF16L\">\r\n"
         "        <Approach_Legs>\r\n";
    for (int l = 0; l < 8; ++l) {
      t += "            <Leg type=\"CF\"\r\n                fixType=\"TERMINAL_WAYPOINT\"\r\n"
           "                fixIdent=\"FIX" +
           std::to_string(l) +
           "\"\r\n"
           "                magneticCourse=\"161.0\"\r\n                altitude1=\"3000.0\"\r\n"
           "                />\r\n";
    }
    t += "        </Approach_Legs>\r\n    </Approach>\r\n";
  }
  return t + "</Airport>\r\n";
}

struct World {
  std::filesystem::path folder;
  std::uintmax_t bytes = 0;
};

const World& TheWorld() {
  static const World world = [] {
    World w{Shared().dir / "world" / "FSXFiles"};
    std::filesystem::create_directories(w.folder);
    for (int f = 0; f < kWorldFiles; ++f) {
      std::string text;
      for (int a = 0; a < kAirportsPerFile; ++a) text += WorldAirport(f * kAirportsPerFile + a);
      OutFile(w.folder / ("part" + std::to_string(100 + f) + ".txt")) << text;
      w.bytes += text.size();
    }
    return w;
  }();
  return world;
}

void BM_WorldLineCount(benchmark::State& state) {
  const World& w = TheWorld();
  for (auto _ : state) {
    std::size_t lines = 0;
    for (const auto& e : std::filesystem::directory_iterator(w.folder))
      lines += CountLines(e.path());
    benchmark::DoNotOptimize(lines);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * w.bytes));
}
BENCHMARK(BM_WorldLineCount)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_BuildIndex(benchmark::State& state) {
  const World& w = TheWorld();
  for (auto _ : state) {
    const IndexBuild b = BuildIndex(w.folder);
    if (b.entries.size() != static_cast<std::size_t>(kWorldAirports)) {
      state.SkipWithError("not every airport of the world was indexed");
      break;
    }
    benchmark::DoNotOptimize(b);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * w.bytes));
  state.counters["airports/s"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * kWorldAirports, benchmark::Counter::kIsRate);
  Record("world_mb", static_cast<double>(w.bytes) / 1e6);
}
BENCHMARK(BM_BuildIndex)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
