#pragma once
// velmora-import: decompiled airport sources into FSXFiles in the reader's layout, their VORs
// into vor.nav, then the index rebuilt as velmora-index builds it. The window's drop uses it too.

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

struct ImportOptions {
  std::filesystem::path dataDir;
  std::vector<std::filesystem::path> sources;  // files, or folders searched for .xml and .bgl files
};

// Empty result and a message on `err` for a command line that can't be run.
std::optional<ImportOptions> ParseImportArgs(const std::vector<std::string>& args,
                                             const std::filesystem::path& defaultDir,
                                             std::ostream& err);

struct ImportResult {
  int status = 0;  // 0 every source imported, 1 one failed or no airport was found
  int airports = 0, approaches = 0, files = 0, skipped = 0;
  std::string summary;  // the last line: "2 airports, 9 approaches in 2 files, 1 file skipped"
};

// Messages, one a line, go to `err`, the summary last.
ImportResult RunImport(const ImportOptions& options, std::ostream& err);

std::string ImportUsage();

// "vor.nav" may hold this many lines; the reader's table has no more slots.
inline constexpr int kVorLines = 8001;

}  // namespace velmora
