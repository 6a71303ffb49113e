#pragma once
// velmora-chart without its pictures: parses the command line, drives ArptForm through the
// steps as a user would, and writes the trace, the control states and the pictures. Picture
// formats that need a toolkit come in through `PictureWriter` and `KitMaker`.

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "geometry/canvas.h"

namespace velmora {

struct ChartOptions {
  std::filesystem::path dataDir;
  std::string tracePath;  // "-" is standard output
  std::string statePath;
  std::vector<std::string> outPaths;
  double scale = 1.0;  // PNG pixels per canvas pixel
  std::vector<std::string> steps;
  bool help = false;
  bool version = false;
  std::vector<std::string> airports;  // --airport; their type, search and load lead `steps`
  bool allApproaches = false;         // the trip kit: every airport's sheet and approaches
  bool fit = false;
  std::string page;            // "a4", "letter", "a5"; empty for the locale's paper
  std::string format = "png";  // pictures written into a folder: "png" or "svg"
  bool progress = false;       // a progress line on stderr for long kits
};

// Empty result and a message on `err` for a command line that can't be run.
std::optional<ChartOptions> ParseChartArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& exeDir, std::ostream& err);

// Writes `picture` to `path` in the format its extension names; false with a message on
// failure or for an unknown format.
using PictureWriter =
    std::function<bool(const RecordingCanvas& picture, const std::filesystem::path& path,
                       double scale, std::ostream& err)>;

// One page of a trip kit: an airport's sheet (row -1) or the chart of one approach row.
struct KitPage {
  std::string code;      // as typed, UTF-8
  int row = -1;          // the row of cmbAPP, from 0
  std::string approach;  // the row's text, UTF-8
  std::string title;     // "KSEA ILS 16L"; the code alone for the sheet
  const RecordingCanvas* picture = nullptr;
};

// Collects the pages of a kit into one document; nothing reaches `path` unless finish()
// succeeds.
class KitDocument {
 public:
  virtual ~KitDocument() = default;
  virtual bool add(const KitPage& page, std::ostream& err) = 0;
  virtual bool finish(const std::filesystem::path& path, std::ostream& err) = 0;
};
// A document for `path` (by extension), or null with a message when the format has none.
using KitMaker = std::function<std::unique_ptr<KitDocument>(
    const std::filesystem::path& path, const ChartOptions& options, std::ostream& err)>;

// Exit status: 0 done, 1 the airport was not found or an output could not be written, 2 the
// command line or a step can't be run.
int RunChart(const ChartOptions& options, const PictureWriter& writePicture,
             const KitMaker& makeKit, std::ostream& out, std::ostream& err);
int RunChart(const ChartOptions& options, const PictureWriter& writePicture, std::ostream& out,
             std::ostream& err);

// ".png", ".svg", ".pdf": the extension in lower case, which names the picture's format.
std::string PictureExtension(const std::filesystem::path& path);

// SVG is written by the core itself.
bool WriteSvg(const RecordingCanvas& picture, const std::filesystem::path& path, std::ostream& err);

// Writes a whole file or none: `write` fills a temporary file beside `path` (same extension),
// which then replaces `path`. On failure `path` stays as it was and no temporary is left.
bool WriteWhole(const std::filesystem::path& path,
                const std::function<bool(const std::filesystem::path& temp)>& write,
                std::ostream& err);

// A hidden name beside `path` with the same extension, so that writers pick the same format.
std::filesystem::path TempPath(const std::filesystem::path& path);

// "XWHL-3-ILS_16L": letters, digits, "-", "_" and "." kept, anything else "_".
std::string KitFileStem(std::string_view code, int row, std::string_view approach);

std::string ChartUsage();
std::string ChartVersion();

}  // namespace velmora
