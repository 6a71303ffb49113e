// Trip kits through velmora-chart's own path: one airport with ten approaches, each chart
// painted into a PDF, against a single-chart PDF of the same airport in the same run.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <sstream>

#include "bench/bench_support.h"
#include "shell/chart_run.h"
#include "shell/qt/pictures.h"

namespace velmora::bench {
namespace {

constexpr int kKitApproaches = 10;
constexpr int kKitLegs = 10;

// A folder with the benchmark's VOR list and one airport of ten approaches, each of ten
// waypoint legs spread around the airport.
const std::filesystem::path& KitFolder() {
  static const std::filesystem::path dir = [] {
    const Data& d = Shared();
    const auto folder = d.dir / "kit";
    std::filesystem::create_directories(folder / "FSXFiles");
    std::filesystem::copy_file(d.vor, folder / "vor.nav",
                               std::filesystem::copy_options::overwrite_existing);
    OutFile(folder / "Arpt index.txt") << "XKIT;Kit Bench;Benchland;kit.txt\r\n";
    std::ofstream f = OutFile(folder / "FSXFiles" / "kit.txt");
    f << "<Airport ident=\"XKIT\"\r\nlat=\"" << kWantedLat << "\"\r\nlon=\"" << kWantedLon
      << "\">\r\n";
    char lat[32], lon[32];
    for (int a = 0; a < kKitApproaches; ++a) {
      for (int i = 0; i < kKitLegs; ++i) {
        std::snprintf(lat, sizeof lat, "N47 %.2f", 10.0 + 2.5 * i + a * 0.3);
        std::snprintf(lon, sizeof lon, "W122 %.2f", 5.0 + 3.0 * a + i * 0.4);
        f << "<Waypoint\r\nwaypointIdent=\"K" << a << "W" << i << "\"\r\nlat=\"" << lat
          << "\"\r\nlon=\"" << lon << "\"/>\r\n";
      }
    }
    for (int a = 0; a < kKitApproaches; ++a) {
      f << "<Approach type=\"GPS\"\r\nrunway=\"" << a + 1 << "\"\r\ndesignator=\"NONE\">\r\n";
      for (int i = 0; i < kKitLegs; ++i) {
        f << "<Leg type=\"TF\"\r\nfixIdent=\"K" << a << "W" << i
          << "\"\r\nmagneticCourse=\"160.0\"\r\naltitude1=\"3000.00F\"\r\nrho=\"20530.0\"\r\n/"
             ">\r\n";
      }
      f << "</Approach>\r\n";
    }
    f << "</Airport>\r\n";
    return folder;
  }();
  return dir;
}

void RunOnce(benchmark::State& state, std::vector<std::string> args) {
  const auto dir = KitFolder();
  args.insert(args.begin(), {"--data", dir.string(), "--airport", "XKIT"});
  args.insert(args.end(), {"--out", (dir / "out.pdf").string()});
  std::ostringstream out, err;
  const auto options = ParseChartArgs(args, dir, err);
  for (auto _ : state) {
    if (!options || RunChart(*options, WritePicture, MakeKitPdf, out, err) != 0) {
      state.SkipWithError(err.str().c_str());
      return;
    }
  }
}

void BM_SingleChartPdf(benchmark::State& state) {
  RunOnce(state, {"--approach", "GPS 1"});
}
void BM_KitPdf(benchmark::State& state) {
  RunOnce(state, {"--all-approaches"});
}
void BM_KitPdfFit(benchmark::State& state) {
  RunOnce(state, {"--all-approaches", "--fit"});
}
BENCHMARK(BM_SingleChartPdf)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_KitPdf)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_KitPdfFit)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(1.0);

}  // namespace
}  // namespace velmora::bench
