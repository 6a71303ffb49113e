#include "import/run.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>

#include "data/arpt_index.h"
#include "data/atomic_write.h"
#include "data/files.h"
#include "data/platform.h"
#include "data/text.h"
#include "data/vor.h"
#include "geometry/coords.h"
#include "import/index_run.h"
#include "import/source_file.h"
#include "import/units.h"
#include "import/vor_merge.h"
#include "import/writer.h"

namespace velmora {
namespace {

struct Source {
  std::filesystem::path path;
  std::string name;  // of the file written into FSXFiles
  ConvertedSource converted;
};

// The files one SOURCE stands for, in name order; false when it names nothing readable.
bool Expand(const std::filesystem::path& source, std::vector<std::filesystem::path>& files,
            std::ostream& err) {
  std::error_code ec;
  if (std::filesystem::is_regular_file(source, ec)) {
    files.push_back(source);
    return true;
  }
  if (!std::filesystem::is_directory(source, ec)) {
    err << PathToUtf8(source) << ": no such file or folder\n";
    return false;
  }
  std::vector<std::filesystem::path> found;
  const auto options = std::filesystem::directory_options::skip_permission_denied;
  for (std::filesystem::recursive_directory_iterator it(source, options, ec), end; !ec && it != end;
       it.increment(ec)) {
    if (it->is_regular_file(ec) && IsSourceFile(it->path())) found.push_back(it->path());
  }
  if (ec) {
    err << PathToUtf8(source) << ": the folder could not be read whole - nothing of it imported\n";
    return false;
  }
  std::sort(found.begin(), found.end());
  files.insert(files.end(), found.begin(), found.end());
  return true;
}

// The source's name as the index can give it back: the index holds Windows-1252, so on Windows
// a character it lacks comes back as "?", which no file name there holds.
std::string IndexableName(const std::filesystem::path& name) {
  return PathToUtf8(PathFromCp1252(PathToCp1252(name)));
}

// The name in FSXFiles (UTF-8): the source's, without the blanks the search would remove and
// the characters the index can't name, and unique within one import.
std::string TargetName(const std::filesystem::path& source, std::vector<std::string>& taken) {
  std::string stem = IndexableName(source.stem()), ext = IndexableName(source.extension());
  for (std::string* s : {&stem, &ext}) {
    for (const char c : {' ', ';', '?'}) std::replace(s->begin(), s->end(), c, '_');
  }
  std::string name = stem + ext;
  for (int n = 2; std::find(taken.begin(), taken.end(), name) != taken.end(); ++n) {
    name = stem + "-" + std::to_string(n) + ext;
  }
  taken.push_back(name);
  return name;
}

using NavaidIndex = std::multimap<std::string, const NavaidText*>;

// For each airport, the nearest navaid of each fix it wants, within reach.
std::vector<std::vector<const NavaidText*>> Copies(const ConvertedSource& s,
                                                   const NavaidIndex& navaids) {
  std::vector<std::vector<const NavaidText*>> copies(s.airports.size());
  for (std::size_t i = 0; i < s.airports.size(); ++i) {
    const AirportText& a = s.airports[i];
    if (!a.lat || !a.lon) continue;
    for (const WantedFix& w : a.wanted) {
      const NavaidText* best = nullptr;
      double bestNm = kFixReachNm;
      for (auto [it, end] = navaids.equal_range(w.ident); it != end; ++it) {
        const NavaidText* n = it->second;
        const double nm = DistanceNm(*a.lat, *a.lon, n->lat, n->lon);
        if (n->ndb == w.ndb && nm <= bestNm) {
          best = n;
          bestNm = nm;
        }
      }
      if (best != nullptr) copies[i].push_back(best);
    }
  }
  return copies;
}

std::string Counted(int n, std::string_view one, std::string_view many) {
  return Grouped(static_cast<std::uintmax_t>(n)) + ' ' + std::string(n == 1 ? one : many);
}

}  // namespace

std::string ImportUsage() {
  return "usage: velmora-import [--data DIR] SOURCE...\n"
         "  reads BglComp XML airport files (SOURCE: files, or folders searched for .xml "
         "files),\n  writes them into DIR/FSXFiles in the layout the chart reads, adds their "
         "VORs to\n  DIR/vor.nav and rebuilds DIR/Arpt index.txt\n";
}

std::optional<ImportOptions> ParseImportArgs(const std::vector<std::string>& args,
                                             const std::filesystem::path& defaultDir,
                                             std::ostream& err) {
  ImportOptions options;
  options.dataDir = defaultDir;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--data" && i + 1 < args.size() && !args[i + 1].empty()) {
      options.dataDir = PathFromUtf8(args[++i]);
    } else if (a.size() > 1 && a.front() == '-') {
      err << (a == "--data" ? "--data needs a value" : "unknown option " + a) << '\n'
          << ImportUsage();
      return std::nullopt;
    } else {
      options.sources.push_back(PathFromUtf8(a));
    }
  }
  if (options.sources.empty()) {
    err << "no SOURCE given\n" << ImportUsage();
    return std::nullopt;
  }
  return options;
}

namespace {

// Reads and converts each source; those that fail are told and counted.
std::vector<Source> ReadSources(const std::vector<std::filesystem::path>& files,
                                const std::filesystem::path& folder, ImportResult& result,
                                std::ostream& err) {
  std::vector<Source> sources;
  std::vector<std::string> taken;
  std::error_code ec;
  for (const std::filesystem::path& file : files) {
    if (std::filesystem::equivalent(file.parent_path(), folder, ec)) {
      err << PathToUtf8(file) << ": stands in FSXFiles already - import it from elsewhere\n";
      ++result.skipped;
      continue;
    }
    const SourceTree parsed = ReadSourceFile(file);
    if (!parsed.ok()) {
      err << SourceProblem(file, parsed) << " - nothing of it imported\n";
      ++result.skipped;
      continue;
    }
    Source s{file, "", ConvertSource(parsed, PathToUtf8(file))};
    for (const std::string& w : s.converted.warnings) err << w << '\n';
    if (!s.converted.airports.empty()) s.name = TargetName(file, taken);
    sources.push_back(std::move(s));
  }
  return sources;
}

void WriteAirportFiles(const std::vector<Source>& sources, const std::vector<VorRecord>& vors,
                       const std::filesystem::path& folder, ImportResult& result,
                       std::ostream& err) {
  NavaidIndex navaids;
  for (const Source& s : sources) {
    for (const NavaidText& n : s.converted.navaids) navaids.emplace(n.ident, &n);
  }
  for (const Source& s : sources) {
    if (s.name.empty()) continue;
    std::string error;
    if (!WriteWhole(folder / PathFromUtf8(s.name),
                    AirportFileText(s.converted, Copies(s.converted, navaids), vors), error)) {
      err << error << '\n';
      ++result.skipped;
      continue;
    }
    ++result.files;
    for (const AirportText& a : s.converted.airports) result.approaches += a.approaches;
    result.airports += static_cast<int>(s.converted.airports.size());
  }
}

}  // namespace

ImportResult RunImport(const ImportOptions& options, std::ostream& err) {
  ImportResult result;
  std::vector<std::filesystem::path> files;
  for (const std::filesystem::path& source : options.sources) {
    if (!Expand(source, files, err)) ++result.skipped;
  }
  // A file named and also found in a named folder is read once.
  std::vector<std::filesystem::path> seen;
  std::erase_if(files, [&](const std::filesystem::path& f) {
    std::error_code ec;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(f, ec);
    if (std::find(seen.begin(), seen.end(), canonical) != seen.end()) return true;
    seen.push_back(canonical);
    return false;
  });
  const std::filesystem::path folder = options.dataDir / kAirportFolder;
  std::error_code ec;
  std::filesystem::create_directories(folder, ec);
  if (!std::filesystem::is_directory(folder, ec)) {
    err << PathToUtf8(folder) << " could not be made - nothing imported\n";
    result.skipped += static_cast<int>(files.size());
    files.clear();
  }
  const std::vector<Source> sources = ReadSources(files, folder, result, err);
  std::vector<VorRecord> vors;
  for (const Source& s : sources) {
    vors.insert(vors.end(), s.converted.vors.begin(), s.converted.vors.end());
  }
  WriteAirportFiles(sources, vors, folder, result, err);
  if (!vors.empty() && !MergeVors(options.dataDir / kVorFileName, vors, err).ok) ++result.skipped;
  if (result.files > 0) {
    std::ostringstream none;
    RunIndex(IndexOptions{options.dataDir, "", false}, none, err, false);
  } else {
    err << "no airport found - the index stays as it was\n";
  }
  result.status = result.skipped == 0 && result.airports > 0 ? 0 : 1;
  result.summary = Counted(result.airports, "airport", "airports") + ", " +
                   Counted(result.approaches, "approach", "approaches") + " in " +
                   Counted(result.files, "file", "files") + ", " +
                   Counted(result.skipped, "file", "files") + " skipped";
  err << result.summary << '\n';
  return result;
}

}  // namespace velmora
