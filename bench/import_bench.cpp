// velmora-import over a generated decompiled file of 40 MB with 2,000 airports among scenery
// clutter, beside expat's plain parse of the same file; and the importer's peak memory.

#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "data/arpt_index.h"
#include "data/extract.h"
#include "import/run.h"

namespace velmora::bench {
namespace {

void Attrs(std::string& t, const std::string& pad, const std::vector<std::string>& lines) {
  for (const std::string& l : lines) t += "\n" + pad + l;
}

// One airport as a decompiler writes it: the element word alone, one attribute a line, decimal
// degrees and metres, and the taxiways and parking that make up most of a real file.
std::string DecompiledAirport(int n) {
  const std::string id = "B" + std::to_string(10000 + n).substr(1);
  const double lat = -60 + (n % 120), lon = -170 + (n / 120) * 20 + (n % 7) * 0.1;
  char pos[96];
  std::snprintf(pos, sizeof pos, "lat=\"%.13f\"\n%*slon=\"%.13f\"", lat + 0.123456789, 6, "",
                lon + 0.98765432);
  std::string t = "  <Airport";
  Attrs(t, "      ",
        {"region=\"XX\"", "country=\"Generated\"", "state=\"Bench\"", "city=\"Town " + id + "\"",
         "name=\"Field " + id + "\"", pos, "alt=\"204.216M\"", "magvar=\"-21\"",
         "trafficScalar=\"0.7\"", "ident=\"" + id + "\">"});
  for (int r = 0; r < 2; ++r) {
    t += "\n    <Runway";
    Attrs(
        t, "        ",
        {pos, "alt=\"204.216M\"", "surface=\"ASPHALT\"", "heading=\"153.0\"", "length=\"1193.9M\"",
         "width=\"45.7M\"", "number=\"" + std::to_string(15 + r) + "\"", "designator=\"NONE\">"});
    t += "\n      <Markings edges=\"TRUE\" threshold=\"TRUE\" touchdown=\"TRUE\"/>"
         "\n      <Lights center=\"NONE\" edge=\"MEDIUM\" centerRed=\"FALSE\"/>"
         "\n    </Runway>";
  }
  for (int s = 0; s < 4; ++s) {
    t += "\n    <Start type=\"RUNWAY\" " + std::string(pos) +
         " alt=\"204.216M\" heading=\"153.0\" number=\"" + std::to_string(15 + s / 2) +
         "\" designator=\"NONE\"/>";
  }
  for (int c = 0; c < 4; ++c)
    t += "\n    <Com frequency=\"118.300\" type=\"TOWER\" name=\"BENCH\"/>";
  for (int p = 0; p < 60; ++p) {
    t += "\n    <TaxiwayPoint index=\"" + std::to_string(p) +
         "\" type=\"NORMAL\" orientation=\"FORWARD\" lat=\"49.2018527537584\" "
         "lon=\"-123.16384524107\"/>";
  }
  for (int p = 0; p < 40; ++p) {
    t += "\n    <TaxiwayPath type=\"TAXI\" start=\"" + std::to_string(p) + "\" end=\"" +
         std::to_string(p + 1) +
         "\" width=\"22.86M\" weightLimit=\"0\" surface=\"ASPHALT\" drawSurface=\"TRUE\" "
         "drawDetail=\"TRUE\" centerLine=\"TRUE\" centerLineLighted=\"FALSE\" leftEdge=\"SOLID\" "
         "rightEdge=\"SOLID\" number=\"0\" designator=\"NONE\" name=\"1\"/>";
  }
  t += "\n    <Approach type=\"ILS\" runway=\"15\" designator=\"NONE\" suffix=\"0\" "
       "gpsOverlay=\"FALSE\" heading=\"153.0\" altitude=\"1694.688M\">\n      <ApproachLegs>";
  for (int l = 0; l < 6; ++l) {
    t += "\n        <Leg type=\"CF\" fixType=\"TERMINAL_WAYPOINT\" fixRegion=\"XX\" fixIdent=\"FX" +
         std::to_string(l) +
         "\" flyOver=\"FALSE\" turnDirection=\"L\" recommendedType=\"VOR\" "
         "recommendedIdent=\"BVR\" theta=\"153.0\" rho=\"14264.05M\" magneticCourse=\"153\" "
         "distance=\"9262.37M\" altitudeDescriptor=\"+\" altitude1=\"1694.688M\"/>";
  }
  t += "\n      </ApproachLegs>\n    </Approach>\n  </Airport>\n";
  return t;
}

struct ImportSource {
  std::filesystem::path file;
  std::uintmax_t bytes = 0;
};

const ImportSource& TheSource() {
  static const ImportSource source = [] {
    const std::filesystem::path file = Shared().dir / "decompiled" / "world.xml";
    std::filesystem::create_directories(file.parent_path());
    {
      std::ofstream out = OutFile(file);
      out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<FSData version=\"9.0\">\n";
      for (int a = 0; a < kImportAirports; ++a) out << DecompiledAirport(a);
      out << "</FSData>\n";
    }
    return ImportSource{file, std::filesystem::file_size(file)};
  }();
  return source;
}

void XMLCALL NoStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL NoEnd(void*, const XML_Char*) {}

// Expat over the file in 1 MB pieces. With element handlers, even empty ones, expat takes the
// attributes apart; without, it only checks the markup.
bool ExpatPass(const std::filesystem::path& file, bool handlers) {
  std::vector<char> buffer(1 << 20);
  XML_Parser parser = XML_ParserCreate(nullptr);
  if (handlers) XML_SetElementHandler(parser, NoStart, NoEnd);
  std::FILE* in = std::fopen(file.c_str(), "rb");
  bool ok = in != nullptr;
  for (std::size_t n = buffer.size(); ok && n == buffer.size();) {
    n = std::fread(buffer.data(), 1, buffer.size(), in);
    ok = XML_Parse(parser, buffer.data(), static_cast<int>(n), n < buffer.size()) !=
         XML_STATUS_ERROR;
  }
  if (in != nullptr) std::fclose(in);
  XML_ParserFree(parser);
  return ok;
}

void ExpatBench(benchmark::State& state, bool handlers) {
  const ImportSource& s = TheSource();
  for (auto _ : state) {
    if (!ExpatPass(s.file, handlers)) state.SkipWithError("expat could not parse the file");
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * s.bytes));
}
void BM_ExpatParse(benchmark::State& state) {
  ExpatBench(state, true);
}
void BM_ExpatMarkupOnly(benchmark::State& state) {
  ExpatBench(state, false);
}
BENCHMARK(BM_ExpatParse)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ExpatMarkupOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Import(benchmark::State& state) {
  const ImportSource& s = TheSource();
  const std::filesystem::path data = Shared().dir / "imported";
  for (auto _ : state) {
    std::ostringstream err;
    const ImportResult r = RunImport(SourcesImport(data, {s.file}), err);
    if (r.airports != kImportAirports) {
      state.SkipWithError("not every airport was imported");
      break;
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * s.bytes));
}
BENCHMARK(BM_Import)->Unit(benchmark::kMillisecond)->UseRealTime();

// velmora-import itself as a child process, for its peak resident memory; then every airport
// it wrote is looked up and loaded. The peak is read by GNU time, whose child it is: a child
// of this process would count this process's memory from before its exec as its own.
void BM_ImportPeakMemory(benchmark::State& state) {
  const ImportSource& s = TheSource();
  const std::filesystem::path data = Shared().dir / "imported-child";
  const std::filesystem::path peak = Shared().dir / "import-peak-kb.txt";
  for (auto _ : state) {
    const std::string command = "/usr/bin/time -f %M -o '" + peak.string() + "' '" +
                                VELMORA_IMPORT_EXE + "' --data '" + data.string() + "' '" +
                                s.file.string() + "' 2>/dev/null";
    if (std::system(command.c_str()) != 0) state.SkipWithError("velmora-import failed");
  }
  double kb = 0;
  if (!(std::ifstream(peak) >> kb)) state.SkipWithError("no peak memory from /usr/bin/time");
  Record("import_peak_bytes", kb * 1024);
  Record("import_source_bytes", static_cast<double>(s.bytes));
  const IndexBuild index = BuildIndex(data / "FSXFiles");
  int loaded = 0;
  auto store = std::make_unique<Store>();
  for (const IndexEntry& e : index.entries) {
    loaded += ExtractArpt(*store, data / "FSXFiles" / e.file, e.ident).found &&
              store->ArptLat.size() > 4 && store->Approach[0].type == "ILS";
  }
  Record("import_loaded", loaded);
  if (loaded != kImportAirports) state.SkipWithError("not every imported airport loads");
}
BENCHMARK(BM_ImportPeakMemory)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

}  // namespace
}  // namespace velmora::bench
