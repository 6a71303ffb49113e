#pragma once
// What the benchmark files share: the generated data folder, the store loaded from it, the
// canvases, and the numbers collected for the closing summary.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/store.h"
#include "geometry/canvas.h"

namespace velmora::bench {

inline constexpr std::string_view kWantedIdent = "XVLM";
inline constexpr std::string_view kWantedLat = "N47 26.39";
inline constexpr std::string_view kWantedLon = "W122 18.55";
inline constexpr int kIndexLines = 70000;
inline constexpr int kVorLines = 8001;
inline constexpr std::uintmax_t kBigFileBytes = 100'000'000;
inline constexpr int kApproachLegs = 30;
inline constexpr std::string_view kBigFileName = "big.txt";
inline constexpr int kWorldAirports = 30000;  // in velmora-index's world
inline constexpr int kImportAirports = 2000;  // in velmora-import's source
// The generated scenery library: 30 areas of 10 files of 80 airports.
inline constexpr int kLibraryAirports = 30 * 10 * 80;

struct Data {
  // Laid out like the program's own folder: index, VOR list, FSXFiles.
  std::filesystem::path dir;
  std::filesystem::path index, vor, bigFile;
  std::uintmax_t indexBytes = 0, vorBytes = 0, bigBytes = 0;
  int airportsInBigFile = 0;
  int vorsInRange = 0;              // pass the plan's range test at Zoom 16
  std::unique_ptr<Store> store;     // VOR list and the wanted airport
  Canvas* raster = nullptr;         // set once Qt is up
  Canvas* profileRaster = nullptr;  // the profile pane's size, likewise
};

Data& Shared();

// Writes every file under data.dir and loads data.store from them.
void Generate(Data& data);

// printf into a string, however long the result.
std::string Format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

// A file to write as it is made, which throws when it cannot. Large files are written a piece
// at a time, never whole in memory.
std::ofstream OutFile(const std::filesystem::path& path);

// The reader baseline: fread in 1 MiB chunks, memchr for '\n'.
std::size_t CountLines(const std::filesystem::path& file);

// Allocations through operator new in this process so far.
std::size_t AllocationCount();

// Numbers for the summary, keyed by benchmark function name or a free name.
void Record(const std::string& name, double value);
std::optional<double> Recorded(const std::string& name);

struct RedrawCounts {
  long lines = 0, circles = 0, texts = 0, termRows = 0;
};
// What one redraw of the loaded airport at Zoom 16 hands to the canvas.
RedrawCounts CountRedraw(bool overlay);

// Fifty zoom steps through the window logic over the generated folder, after load and pick;
// the time of each step in ms. Empty if the load failed.
std::vector<double> ZoomSweep(Canvas& canvas);

// Counts what a redraw hands to the canvas.
class CountingCanvas final : public Canvas {
 public:
  void drawCls() override {}
  void drawLine(const Pen&, std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {
    ++lines;
  }
  void drawCircle(const Pen&, std::int32_t, std::int32_t, std::int32_t) override { ++circles; }
  void drawText(const Pen&, std::string_view) override { ++texts; }
  long lines = 0, circles = 0, texts = 0;
};

}  // namespace velmora::bench
