#pragma once
// velmora-import: airport sources (XML, compiled BGL files, or a simulator's whole scenery
// library) into FSXFiles in the reader's layout, their VORs into vor.nav, then the index rebuilt
// as velmora-index builds it. The window's import and drop use it too.

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// How far the import has come: `step` is "Reading" or "Writing", `done` of `total` files.
struct ImportProgress {
  std::string_view step;
  int done = 0, total = 0;
};
// Called before each file; false stops the import, which then changes nothing.
using ImportProgressFn = std::function<bool(const ImportProgress&)>;

struct ImportOptions {
  std::filesystem::path dataDir;
  std::vector<std::filesystem::path> sources;  // files, or folders searched for sources
  // The simulator folder whose scenery library is imported (instead of `sources`), and its
  // scenery.cfg; empty: where the simulator keeps it.
  std::filesystem::path simDir, sceneryFile;
  ImportProgressFn progress;
};

// An import of the files and folders named.
ImportOptions SourcesImport(std::filesystem::path dataDir,
                            std::vector<std::filesystem::path> sources);

// Empty result and a message on `err` for a command line that can't be run.
std::optional<ImportOptions> ParseImportArgs(const std::vector<std::string>& args,
                                             const std::filesystem::path& defaultDir,
                                             std::ostream& err);

struct ImportResult {
  int status = 0;  // 0 every source imported, 1 one failed or no airport was found
  int airports = 0, approaches = 0, files = 0, skipped = 0;
  std::string summary;     // the last line: "2 airports, 9 approaches in 2 files, 1 file skipped"
  bool unchanged = false;  // a library found as the last import left it: nothing was read
  bool cancelled = false;
};

// Messages, one a line, go to `err`, the summary last.
ImportResult RunImport(const ImportOptions& options, std::ostream& err);

std::string ImportUsage();

// "vor.nav" may hold this many lines; the reader's table has no more slots.
inline constexpr int kVorLines = 8001;

}  // namespace velmora
