#pragma once
// velmora-index: builds "Arpt index.txt" from FSXFiles, or checks that it is up to date.

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

struct IndexOptions {
  std::filesystem::path dataDir;
  std::filesystem::path outPath;  // "-" is standard output; empty: "Arpt index.txt" in dataDir
  bool check = false;
};

// Empty result and a message on `err` for a command line that can't be run.
std::optional<IndexOptions> ParseIndexArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& defaultDir,
                                           std::ostream& err);

// Exit status: 0 written (or up to date), 1 nothing could be indexed, the index could not be
// written, or --check found a difference. `progress` asks for a progress line on `err`.
int RunIndex(const IndexOptions& options, std::ostream& out, std::ostream& err, bool progress);

std::string IndexUsage();

}  // namespace velmora
