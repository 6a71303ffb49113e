#pragma once
// What the tests share: a temporary data folder laid out like the one beside the executable,
// and a form driven headless with its drawing written as trace lines.

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "data/store.h"
#include "geometry/trace_canvas.h"
#include "shell/chart_run.h"
#include "shell/form.h"

namespace velmora::test {

// A fresh folder under the system's temp folder, removed again at the end of the test.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  const std::filesystem::path& path() const { return path_; }
  // Writes `bytes` exactly (Windows-1252, line ends as given) to a file under the folder.
  std::filesystem::path write(const std::filesystem::path& name, std::string_view bytes) const;

 private:
  std::filesystem::path path_;
};

// Joins lines with CR LF, as the data files are written.
std::string CrLf(const std::vector<std::string>& lines);

// The bundled sample data (index, vor.nav, FSXFiles).
std::filesystem::path SampleDir();

// An ArptForm over its own store, drawing onto a trace; trace() gives the lines since the
// last takeTrace().
class Harness {
 public:
  explicit Harness(const std::filesystem::path& dataDir, std::string_view commandLine = "");
  ArptForm& form() { return *form_; }
  Store& store() { return *store_; }
  // Trace lines written since the last call, and forgets them.
  std::vector<std::string> takeTrace();
  // Runs type:CODE, search and load.
  void load(std::string_view code);

 private:
  std::ostringstream out_;
  std::unique_ptr<Store> store_;
  TraceCanvas canvas_;
  std::unique_ptr<ArptForm> form_;
};

// The lines written to `out` so far, which is then emptied.
std::vector<std::string> TakeLines(std::ostringstream& out);

// Coordinate texts of canvas (x, y) before pan at Zoom 16, for an airport at N10 00.00
// E10 00.00, which lands at (7000, 5000). A millionth of a minute rounds back exactly.
std::string LatAt(int y);
std::string LonAt(int x);

// An approach of a generated airport: its fixes as canvas positions at Zoom 16, without pan.
struct GenApproach {
  std::string type, runway;
  std::vector<std::pair<int, int>> fixes;
  bool lostFirst = false;  // the first leg names a fix no table holds
};
struct GenAirport {
  std::string code;
  std::vector<GenApproach> approaches;
};
// Writes the index, an empty VOR list and FSXFiles/gen.txt with the airports, each at
// N10 00.00 E10 00.00 as LatAt and LonAt take it.
void WriteAirports(const TempDir& dir, const std::vector<GenAirport>& airports);

// Lines of `trace` that start with `prefix`.
std::vector<std::string> Filter(const std::vector<std::string>& trace, std::string_view prefix);

using Lines = std::vector<std::string>;

// Lines of `trace` that hold `part` anywhere.
long Count(const Lines& trace, std::string_view part);

// A whole file's bytes.
std::string Slurp(const std::filesystem::path& path);

// velmora-chart with "--data DIR" before `args`: its exit status (2 when the arguments don't
// parse) and what it wrote. The default writer writes no picture and fails.
struct ChartResult {
  int status;
  std::string out, err;
};
ChartResult RunChartTool(const std::filesystem::path& data, const Lines& args,
                         const PictureWriter& writer = {});

}  // namespace velmora::test
