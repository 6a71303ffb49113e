#pragma once
// velmora-chart's command line: the options, the steps and the usage, all read off one table
// of options and one of steps.

#include <charconv>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

enum class StepKind {
  kType,
  kSearch,
  kLoad,
  kPick,
  kApproach,
  kPlus,
  kMinus,
  kReset,
  kClick,
  kFit,
  kUnknown
};

// One step as given. A step that can't be run is told when its turn comes, so the trace and
// the states show how far the run came.
struct ChartStep {
  StepKind kind = StepKind::kUnknown;
  std::string text;   // as given (UTF-8), for the trace and the messages
  std::string value;  // behind the colon: the text to type, the row, the approach, X,Y
};

ChartStep ParseStep(std::string_view text);

struct ChartOptions {
  std::filesystem::path dataDir;
  // Paths from the command line's UTF-8, never through the system's narrow code page.
  std::filesystem::path tracePath;  // "-" is standard output
  std::filesystem::path statePath;
  std::vector<std::filesystem::path> outPaths;
  double scale = 1.0;  // PNG pixels per canvas pixel
  bool help = false;
  bool version = false;
  // --airport: each code is typed, searched and loaded before the steps.
  std::vector<std::string> airports;
  std::string approach;  // --approach: the row picked after the load, by its text
  std::vector<ChartStep> steps;
  bool allApproaches = false;  // the trip kit: every airport's sheet and approaches
  bool fit = false;
  std::string page;            // "a4", "letter", "a5"; empty for the locale's paper
  std::string format = "png";  // pictures written into a folder: "png" or "svg"
  bool progress = false;       // a progress line on stderr for long kits
  // The approach profile: its picture, its JSON ("-" standard output), and in a kit a strip
  // under the plan of every approach page.
  std::filesystem::path profilePath;
  std::filesystem::path profileJsonPath;
  bool profileStrips = false;
};

// Empty result and a message on `err` for a command line that can't be run.
std::optional<ChartOptions> ParseChartArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& exeDir, std::ostream& err);

// The whole of `text` as a number, as the command line writes numbers: "." whatever the locale.
template <class Number>
bool ParseArgNumber(std::string_view text, Number& value) {
  const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && ptr == text.data() + text.size();
}

std::string ChartUsage();
std::string ChartVersion();

}  // namespace velmora
