#include "import/index_run.h"

#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>

#include "data/arpt_index.h"
#include "data/atomic_write.h"
#include "data/files.h"
#include "data/platform.h"

namespace velmora {
namespace {

constexpr int kDifferencesShown = 5;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

// Tells the first differences between the index on disk and the one built; true when equal.
bool Compare(const std::filesystem::path& path, const std::string& built, std::ostream& err) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    err << PathToUtf8(path) << " could not be read\n";
    return false;
  }
  const std::string existing{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (existing == built) return true;
  const std::vector<std::string> have = Lines(existing), want = Lines(built);
  int shown = 0;
  for (std::size_t i = 0; i < std::max(have.size(), want.size()) && shown < kDifferencesShown;
       ++i) {
    const std::string* a = i < have.size() ? &have[i] : nullptr;
    const std::string* b = i < want.size() ? &want[i] : nullptr;
    if (a != nullptr && b != nullptr && *a == *b) continue;
    ++shown;
    err << "line " << i + 1 << ": has " << (a ? "\"" + *a + "\"" : "nothing") << ", would be "
        << (b ? "\"" + *b + "\"" : "nothing") << '\n';
  }
  if (shown == 0) err << "the line ends differ (the index is written with CR LF)\n";
  err << PathToUtf8(path) << " differs from what velmora-index would write\n";
  return false;
}

}  // namespace

std::string IndexUsage() {
  return "usage: velmora-index [--data DIR] [--out FILE] [--check]\n"
         "  reads every file in DIR/FSXFiles and writes DIR/Arpt index.txt (FILE \"-\": standard "
         "output);\n  --check writes nothing and exits 1 when the index is not up to date\n";
}

std::optional<IndexOptions> ParseIndexArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& defaultDir,
                                           std::ostream& err) {
  IndexOptions options;
  options.dataDir = defaultDir;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--check") {
      options.check = true;
    } else if ((a == "--data" || a == "--out") && i + 1 < args.size() && !args[i + 1].empty()) {
      if (a == "--data") {
        options.dataDir = PathFromUtf8(args[++i]);
      } else {
        options.outPath = PathFromUtf8(args[++i]);
      }
    } else {
      err << (a == "--data" || a == "--out" ? a + " needs a value" : "unknown option " + a) << '\n'
          << IndexUsage();
      return std::nullopt;
    }
  }
  return options;
}

int RunIndex(const IndexOptions& options, std::ostream& out, std::ostream& err, bool progress) {
  const std::filesystem::path folder = options.dataDir / kAirportFolder;
  const auto tell = [&](int done, int files, int airports) {
    err << "\rindexing: " << done << " of " << files << " files, "
        << Grouped(static_cast<std::uintmax_t>(airports)) << " airports"
        << (done == files ? "\r\033[K" : "") << std::flush;
  };
  const IndexBuild build =
      BuildIndex(folder, progress ? std::function<void(int, int, int)>(tell) : nullptr);
  for (const std::string& w : build.warnings) err << w << '\n';
  if (!build.folderOpened) {
    err << PathToUtf8(folder) << " is not a folder that can be read - nothing indexed\n";
    return 1;
  }
  err << IndexSummary(build) << '\n';
  if (build.entries.empty()) {
    err << "no airport found - nothing written\n";
    return 1;
  }
  std::string text;
  for (const IndexEntry& e : build.entries) text += IndexLine(e);

  const std::filesystem::path target =
      options.outPath.empty() ? options.dataDir / kIndexFileName : options.outPath;
  if (options.check) return Compare(target, text, err) ? 0 : 1;
  if (options.outPath == "-") {
    out << text << std::flush;
    return out ? 0 : 1;
  }
  std::string reason;
  if (!WriteWhole(target, text, reason)) {
    err << "can't write " << PathToUtf8(target) << " (" << reason << ")\n";
    return 1;
  }
  return 0;
}

}  // namespace velmora
