// velmora-import --sim over a generated scenery library of the size of FSX's stock scenery:
// 24,000 airports with their approaches in 300 BGL files over 30 areas, with navaid and
// waypoint files beside them. Against a plain read of the same files; the unchanged second
// import; the importer's peak memory.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "import/library_state.h"
#include "import/run.h"
#include "tests/support/bgl_builder.h"

namespace velmora::bench {
namespace {

using test::BglAirportSpec;
using test::BglApproachSpec;
using test::BglFileSpec;
using test::BglLegSpec;

constexpr int kAreas = 30, kFilesPerArea = 10, kAirportsPerFile = 80;
static_assert(kAreas * kFilesPerArea * kAirportsPerFile == kLibraryAirports);
constexpr int kNavaidFiles = 10, kWaypointsPerFile = 5000;

std::string Ident(char first, int n) {
  std::string id(1, first);
  for (int i = 0; i < 4; ++i, n /= 36)
    id.insert(1, 1, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[n % 36]);
  return id;
}

BglLegSpec Leg(std::uint8_t type, const std::string& fix, float altitude) {
  BglLegSpec leg;
  leg.type = type;
  leg.fixType = 5;
  leg.fixIdent = fix;
  leg.fixRegion = "XX";
  leg.altitudeDescriptor = 2;
  leg.altitude1 = altitude;
  leg.course = 153;
  leg.rho = 9262;
  return leg;
}

// One airport: two runways, four COM, an ILS approach of five legs with a missed approach and
// a transition, and 2 KB of the taxiways and parking a reader steps over.
BglAirportSpec Airport(int n) {
  BglAirportSpec a;
  a.ident = Ident('A', n);
  a.region = "XX";
  a.name = "Field " + a.ident;
  a.lat = -60 + (n % 120) + 0.123456789;
  a.lon = -170 + (n / 120) % 340 + 0.98765432;
  a.altMm = 204216;
  a.magvar = 339;
  for (int r = 0; r < 2; ++r) {
    test::BglRunwaySpec rw;
    rw.number = static_cast<std::uint8_t>(15 + r);
    rw.secondaryNumber = static_cast<std::uint8_t>(33 + r);
    rw.lat = a.lat;
    rw.lon = a.lon;
    rw.length = 1193.9f;
    rw.width = 45.7f;
    rw.heading = 153;
    a.runways.push_back(rw);
  }
  for (int c = 0; c < 4; ++c) a.coms.push_back({6, 118300000, "BENCH"});
  BglApproachSpec app;
  app.runway = 15;
  app.fixIdent = "RW15";
  app.fixRegion = "XX";
  for (int l = 0; l < 5; ++l) app.legs.push_back(Leg(l == 0 ? 15 : 18, Ident('W', n * 5 + l), 900));
  app.missed = {Leg(4, Ident('W', n * 5), 1500)};
  test::BglTransitionSpec t;
  t.fixIdent = Ident('W', n * 5);
  t.fixRegion = "XX";
  t.legs = {Leg(15, t.fixIdent, 1500), Leg(18, Ident('W', n * 5 + 1), 1200)};
  app.transitions.push_back(t);
  a.approaches.push_back(app);
  a.extra.push_back({0x1C, std::string(2048, '\x11')});
  return a;
}

struct LibraryData {
  std::filesystem::path sim;
  std::vector<std::filesystem::path> files;
  std::uintmax_t bytes = 0, largest = 0;
};

void WriteFile(const std::filesystem::path& path, const std::string& bytes, LibraryData& lib) {
  std::filesystem::create_directories(path.parent_path());
  OutFile(path) << bytes;
  lib.files.push_back(path);
  lib.bytes += bytes.size();
  lib.largest = std::max<std::uintmax_t>(lib.largest, bytes.size());
}

void WriteNavaids(LibraryData& lib) {
  for (int f = 0; f < kNavaidFiles; ++f) {
    BglFileSpec contents;
    for (int w = 0; w < kWaypointsPerFile; ++w) {
      const int n = f * kWaypointsPerFile + w;
      contents.waypoints.push_back(
          {1, -60 + (n % 120) + 0.2, -170 + (n / 120) % 340 + 0.1, 0, Ident('W', n), "XX", ""});
    }
    contents.ndbs.push_back({1, 350000, 10, 10, 0, 50000, 0, Ident('N', f), "XX", "", "NDB"});
    WriteFile(lib.sim / "Scenery/World/scenery" / Format("NVX%02d.bgl", f),
              test::BuildBgl(contents).bytes, lib);
  }
}

const LibraryData& TheLibrary() {
  static const LibraryData library = [] {
    LibraryData lib;
    lib.sim = Shared().dir / "simulator";
    std::string cfg = "[Area.001]\r\nTitle=World\r\nLocal=Scenery\\World\r\nLayer=1\r\n";
    WriteNavaids(lib);
    for (int area = 0; area < kAreas; ++area) {
      const std::string folder = Format("Scenery/%04d", area + 101);
      cfg += Format("[Area.%03d]\r\nTitle=Region %d\r\nLocal=%s\r\nLayer=%d\r\nActive=TRUE\r\n",
                    area + 2, area, folder.c_str(), area + 2);
      for (int f = 0; f < kFilesPerArea; ++f) {
        BglFileSpec contents;
        const int first = (area * kFilesPerArea + f) * kAirportsPerFile;
        for (int a = 0; a < kAirportsPerFile; ++a) contents.airports.push_back(Airport(first + a));
        WriteFile(lib.sim / folder / "scenery" / Format("APX%02d%03d.bgl", area, f),
                  test::BuildBgl(contents).bytes, lib);
      }
    }
    OutFile(lib.sim / "scenery.cfg") << cfg;
    return lib;
  }();
  return library;
}

void BM_LibraryRead(benchmark::State& state) {
  const LibraryData& lib = TheLibrary();
  std::vector<char> buffer(1 << 20);
  for (auto _ : state) {
    std::uintmax_t total = 0;
    for (const auto& file : lib.files) {
      std::FILE* in = std::fopen(file.c_str(), "rb");
      for (std::size_t n;
           in != nullptr && (n = std::fread(buffer.data(), 1, buffer.size(), in)) > 0;) {
        total += n;
      }
      if (in != nullptr) std::fclose(in);
    }
    if (total != lib.bytes) state.SkipWithError("the library could not be read");
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * lib.bytes));
}
BENCHMARK(BM_LibraryRead)->Unit(benchmark::kMillisecond)->UseRealTime();

ImportOptions LibraryImport(const std::filesystem::path& data) {
  ImportOptions options = SourcesImport(data, {});
  options.simDir = TheLibrary().sim;
  return options;
}

// Each import into a fresh data folder, so that none finds the last one's state.
void BM_LibraryImport(benchmark::State& state) {
  const std::filesystem::path data = Shared().dir / "library-data";
  int airports = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove_all(data);
    state.ResumeTiming();
    std::ostringstream err;
    airports = RunImport(LibraryImport(data), err).airports;
  }
  Record("library_airports", airports);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * TheLibrary().bytes));
}
BENCHMARK(BM_LibraryImport)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);

// The second import of the same library, which finds it unchanged.
void BM_LibraryUnchanged(benchmark::State& state) {
  const std::filesystem::path data = Shared().dir / "library-data";
  for (auto _ : state) {
    std::ostringstream err;
    if (!RunImport(LibraryImport(data), err).unchanged) {
      state.SkipWithError("the library was read again");
      break;
    }
  }
}
BENCHMARK(BM_LibraryUnchanged)->Unit(benchmark::kMillisecond)->UseRealTime();

// velmora-import --sim as a child of GNU time, for its peak resident memory.
void BM_LibraryPeakMemory(benchmark::State& state) {
  const LibraryData& lib = TheLibrary();
  const std::filesystem::path data = Shared().dir / "library-child";
  const std::filesystem::path peak = Shared().dir / "library-peak-kb.txt";
  for (auto _ : state) {
    const std::string command = "/usr/bin/time -f %M -o '" + peak.string() + "' '" +
                                VELMORA_IMPORT_EXE + "' --data '" + data.string() + "' --sim '" +
                                lib.sim.string() + "' 2>/dev/null";
    if (std::system(command.c_str()) != 0) state.SkipWithError("velmora-import --sim failed");
  }
  double kb = 0;
  if (!(std::ifstream(peak) >> kb)) state.SkipWithError("no peak memory from /usr/bin/time");
  Record("library_peak_bytes", kb * 1024);
  Record("library_largest_file", static_cast<double>(lib.largest));
  Record("library_bytes", static_cast<double>(lib.bytes));
}
BENCHMARK(BM_LibraryPeakMemory)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

}  // namespace
}  // namespace velmora::bench
