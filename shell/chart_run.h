#pragma once
// velmora-chart without its pictures: parses the command line, drives ArptForm through the
// steps as a user would, and writes the trace and the control states. Picture formats that
// need a toolkit come in through `PictureWriter`.

#include <filesystem>
#include <functional>
#include <iosfwd>
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
};

// Empty result and a message on `err` for a command line that can't be run.
std::optional<ChartOptions> ParseChartArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& exeDir, std::ostream& err);

// Writes `picture` to `path` in the format its extension names; false with a message on
// failure or for an unknown format.
using PictureWriter =
    std::function<bool(const RecordingCanvas& picture, const std::filesystem::path& path,
                       double scale, std::ostream& err)>;

// Exit status: 0 done, 1 an output could not be written, 2 a step can't be run.
int RunChart(const ChartOptions& options, const PictureWriter& writePicture, std::ostream& out,
             std::ostream& err);

// ".png", ".svg", ".pdf": the extension in lower case, which names the picture's format.
std::string PictureExtension(const std::filesystem::path& path);

// SVG is written by the core itself.
bool WriteSvg(const RecordingCanvas& picture, const std::filesystem::path& path, std::ostream& err);

std::string ChartUsage();

}  // namespace velmora
