#include "import/run.h"

#include <algorithm>
#include <array>
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
#include "import/library.h"
#include "import/library_state.h"
#include "import/source_file.h"
#include "import/units.h"
#include "import/vor_merge.h"
#include "import/writer.h"

namespace velmora {
namespace {

// Where the files of an import wait until all are written: below FSXFiles, where neither the
// index nor the chart looks, and removed whole when the import is cancelled.
constexpr std::string_view kStagingName = ".velmora-import";

// A file to import and the library layer it comes from (0 for sources named one by one).
struct Input {
  std::filesystem::path path;
  int layer = 0;
};

struct Source {
  Input input;
  std::string name;  // of the file written into FSXFiles
  ConvertedSource converted;
  bool outline = false;  // only the airports' idents and places read yet
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
  if (AsciiLowerCase(ext) == ".bgl") ext = ".xml";  // what is written is text
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
         "       velmora-import [--data DIR] --sim DIR [--scenery FILE]\n"
         "  reads airport sources: BglComp XML files and the simulator's compiled BGL files\n"
         "  (SOURCE: files, or folders searched for .xml and .bgl files), or with --sim the\n"
         "  scenery library of the simulator in DIR (its scenery.cfg, or FILE), writes them\n"
         "  into DIR/FSXFiles in the layout the chart reads, adds their VORs to DIR/vor.nav\n"
         "  and rebuilds DIR/Arpt index.txt\n";
}

ImportOptions SourcesImport(std::filesystem::path dataDir,
                            std::vector<std::filesystem::path> sources) {
  ImportOptions options;
  options.dataDir = std::move(dataDir);
  options.sources = std::move(sources);
  return options;
}

std::optional<ImportOptions> ParseImportArgs(const std::vector<std::string>& args,
                                             const std::filesystem::path& defaultDir,
                                             std::ostream& err) {
  ImportOptions options;
  options.dataDir = defaultDir;
  const std::array<std::pair<std::string_view, std::filesystem::path*>, 3> valued = {
      {{"--data", &options.dataDir},
       {"--sim", &options.simDir},
       {"--scenery", &options.sceneryFile}}};
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const auto option =
        std::find_if(valued.begin(), valued.end(), [&](const auto& v) { return v.first == a; });
    std::string problem;
    if (option != valued.end() && i + 1 < args.size() && !args[i + 1].empty()) {
      *option->second = PathFromUtf8(args[++i]);
    } else if (option != valued.end()) {
      problem = a + " needs a value";
    } else if (a.size() > 1 && a.front() == '-') {
      problem = "unknown option " + a;
    } else {
      options.sources.push_back(PathFromUtf8(a));
    }
    if (!problem.empty()) {
      err << problem << '\n' << ImportUsage();
      return std::nullopt;
    }
  }
  const bool sim = !options.simDir.empty();
  const char* problem = !sim && !options.sceneryFile.empty() ? "--scenery goes with --sim"
                        : sim && !options.sources.empty()    ? "--sim takes no SOURCE"
                        : !sim && options.sources.empty()    ? "no SOURCE given"
                                                             : nullptr;
  if (problem != nullptr) {
    err << problem << '\n' << ImportUsage();
    return std::nullopt;
  }
  return options;
}

namespace {

// Stops the import when the caller asks to.
class Progress {
 public:
  explicit Progress(const ImportProgressFn& fn) : fn_(fn) {}
  bool step(std::string_view name, int done, int total) {
    if (!cancelled_ && fn_) cancelled_ = !fn_(ImportProgress{name, done, total});
    return !cancelled_;
  }
  bool cancelled() const { return cancelled_; }

 private:
  const ImportProgressFn& fn_;
  bool cancelled_ = false;
};

// The source converted, with the reader's notes on it first among the warnings.
ConvertedSource Converted(const SourceTree& tree, const std::filesystem::path& file) {
  ConvertedSource c = ConvertSource(tree, PathToUtf8(file));
  for (auto it = tree.notes.rbegin(); it != tree.notes.rend(); ++it) {
    c.warnings.insert(c.warnings.begin(), PathToUtf8(file) + ": " + *it);
  }
  return c;
}

// Each source read once: whole, or where the reader can pass over airports cheaply, only what
// the other files need of it (navaids, VORs, airport idents), to be read whole when written.
std::vector<Source> ReadSources(const std::vector<Input>& inputs,
                                const std::filesystem::path& folder, ImportResult& result,
                                Progress& progress, std::ostream& err) {
  std::vector<Source> sources;
  std::error_code ec;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    if (!progress.step("Reading", static_cast<int>(i), static_cast<int>(inputs.size()))) break;
    const std::filesystem::path& file = inputs[i].path;
    if (std::filesystem::equivalent(file.parent_path(), folder, ec)) {
      err << PathToUtf8(file) << ": stands in FSXFiles already - import it from elsewhere\n";
      ++result.skipped;
      continue;
    }
    const SourceTree parsed = ReadSourceFile(file, SourceDetail::kOutline);
    if (!parsed.ok()) {
      err << SourceProblem(file, parsed) << " - nothing of it imported\n";
      ++result.skipped;
      continue;
    }
    Source s{inputs[i], "", Converted(parsed, file), parsed.outline};
    for (const std::string& w : s.converted.warnings) err << w << '\n';
    sources.push_back(std::move(s));
  }
  return sources;
}

// An airport that a higher layer also holds is the higher layer's, as in the simulator.
void DropReplacedAirports(std::vector<Source>& sources) {
  std::map<std::string, int> top;
  for (const Source& s : sources) {
    for (const AirportText& a : s.converted.airports) {
      auto [it, fresh] = top.emplace(a.ident, s.input.layer);
      if (!fresh) it->second = std::max(it->second, s.input.layer);
    }
  }
  for (Source& s : sources) {
    std::erase_if(s.converted.airports,
                  [&](const AirportText& a) { return top[a.ident] > s.input.layer; });
  }
}

// Every source's VORs, in source order.
std::vector<VorRecord> AllVors(const std::vector<Source>& sources) {
  std::vector<VorRecord> vors;
  for (const Source& s : sources) {
    vors.insert(vors.end(), s.converted.vors.begin(), s.converted.vors.end());
  }
  return vors;
}

// The files of the sources that keep airports, into `staging`; a source read in outline is
// read whole now, its own warnings told once.
void WriteAirportFiles(std::vector<Source>& sources, const std::filesystem::path& staging,
                       ImportResult& result, Progress& progress, std::ostream& err) {
  const std::vector<VorRecord> vors = AllVors(sources);
  NavaidIndex navaids;
  for (const Source& s : sources) {
    for (const NavaidText& n : s.converted.navaids) navaids.emplace(n.ident, &n);
  }
  std::vector<std::string> taken;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    Source& s = sources[i];
    if (!progress.step("Writing", static_cast<int>(i), static_cast<int>(sources.size()))) return;
    if (s.converted.airports.empty()) continue;
    ConvertedSource whole;
    if (s.outline) {
      const SourceTree tree = ReadSourceFile(s.input.path);
      if (!tree.ok()) {
        err << SourceProblem(s.input.path, tree) << " - nothing of it imported\n";
        ++result.skipped;
        continue;
      }
      whole = Converted(tree, s.input.path);
      std::erase_if(whole.airports, [&](const AirportText& a) {
        return std::none_of(s.converted.airports.begin(), s.converted.airports.end(),
                            [&](const AirportText& kept) { return kept.ident == a.ident; });
      });
      for (const std::string& w : whole.warnings) {
        if (std::find(s.converted.warnings.begin(), s.converted.warnings.end(), w) ==
            s.converted.warnings.end()) {
          err << w << '\n';
        }
      }
    }
    const ConvertedSource& c = s.outline ? whole : s.converted;
    s.name = TargetName(s.input.path, taken);
    std::string error;
    if (!WriteWhole(staging / PathFromUtf8(s.name), AirportFileText(c, Copies(c, navaids), vors),
                    error)) {
      err << error << '\n';
      ++result.skipped;
      s.name.clear();
      continue;
    }
    ++result.files;
    for (const AirportText& a : c.airports) result.approaches += a.approaches;
    result.airports += static_cast<int>(c.airports.size());
  }
}

std::string Summary(const ImportResult& r) {
  return Counted(r.airports, "airport", "airports") + ", " +
         Counted(r.approaches, "approach", "approaches") + " in " +
         Counted(r.files, "file", "files") + ", " + Counted(r.skipped, "file", "files") +
         " skipped";
}

}  // namespace

namespace {

// The files named on the command line or found in the named folders, each once.
std::vector<Input> NamedInputs(const ImportOptions& options, ImportResult& result,
                               std::ostream& err) {
  std::vector<std::filesystem::path> files;
  for (const std::filesystem::path& source : options.sources) {
    if (!Expand(source, files, err)) ++result.skipped;
  }
  std::vector<std::filesystem::path> seen;
  std::vector<Input> inputs;
  for (const std::filesystem::path& f : files) {
    std::error_code ec;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(f, ec);
    if (std::find(seen.begin(), seen.end(), canonical) != seen.end()) continue;
    seen.push_back(canonical);
    inputs.push_back({f, 0});
  }
  return inputs;
}

struct Library {
  std::filesystem::path cfg;
  std::vector<LibraryFolder> folders;
  SceneryLibrary parsed;  // the folders point into it
  bool ok = false;
};

// The scenery library of the simulator folder: its areas' files in layer order.
void ReadLibrary(const ImportOptions& options, Library& library, ImportResult& result,
                 std::ostream& err) {
  const auto cfg = options.sceneryFile.empty()
                       ? FindSceneryFile(options.simDir, GetEnv("ProgramData"))
                       : std::optional(options.sceneryFile);
  if (!cfg) {
    err << PathToUtf8(options.simDir) << ": no scenery.cfg found for this simulator folder"
        << " - name it with --scenery\n";
    return;
  }
  library.cfg = *cfg;
  std::string bytes, reason;
  if (!ReadSmallFile(*cfg, kMaxLibraryBytes, bytes, reason)) {
    err << PathToUtf8(*cfg) << ": " << reason << '\n';
    return;
  }
  library.parsed = ParseSceneryLibrary(bytes);
  const std::string label = PathToUtf8(*cfg);
  for (const std::string& p : library.parsed.problems) err << label << ':' << p << '\n';
  std::ostringstream told;
  library.folders = FindLibraryFolders(library.parsed, options.simDir, label, told);
  const std::string skipped = told.str();
  err << skipped;
  const auto missing = std::count(skipped.begin(), skipped.end(), '\n');
  result.skipped += static_cast<int>(library.parsed.problems.size() + missing);
  library.ok = true;
}

std::vector<Input> LibraryInputs(const Library& library) {
  std::vector<Input> inputs;
  for (const LibraryFolder& f : library.folders) {
    for (const auto& file : f.files) inputs.push_back({file, f.area->layer});
  }
  return inputs;
}

// The staged files into FSXFiles; the last library import's files that this one did not write
// again go too, or where `removeOld` is false stay listed for the next import.
void Publish(const std::vector<Source>& sources, const std::filesystem::path& staging,
             const std::filesystem::path& folder, const std::vector<std::string>& before,
             bool removeOld, std::vector<std::string>& written, ImportResult& result,
             std::ostream& err) {
  for (const Source& s : sources) {
    if (s.name.empty()) continue;
    const auto target = folder / PathFromUtf8(s.name);
    const std::error_code ec = RenameOver(staging / PathFromUtf8(s.name), target);
    if (ec) {
      err << PathToUtf8(target) << ": " << ec.message() << '\n';
      ++result.skipped;
      continue;
    }
    written.push_back(s.name);
  }
  const std::size_t fresh = written.size();
  for (const std::string& old : before) {
    if (std::find(written.begin(), written.begin() + fresh, old) != written.begin() + fresh)
      continue;
    std::error_code ec;
    if (removeOld) {
      std::filesystem::remove(folder / PathFromUtf8(old), ec);
    } else {
      written.push_back(old);  // still the library's, to go at the next whole import
    }
  }
}

bool OutputsStand(const std::filesystem::path& folder, const std::vector<std::string>& names) {
  std::error_code ec;
  return std::all_of(names.begin(), names.end(), [&](const std::string& n) {
    return std::filesystem::is_regular_file(folder / PathFromUtf8(n), ec);
  });
}

// The VORs merged, the index rebuilt, the library's state kept and the summary told.
void Finish(const ImportOptions& options, const std::vector<Source>& sources, LibraryState* state,
            ImportResult& result, std::ostream& err) {
  const std::vector<VorRecord> vors = AllVors(sources);
  if (!vors.empty() && !MergeVors(options.dataDir / kVorFileName, vors, err).ok) ++result.skipped;
  if (result.files > 0) {
    std::ostringstream none;
    RunIndex(IndexOptions{options.dataDir, "", false}, none, err, false);
  } else {
    err << "no airport found - the index stays as it was\n";
  }
  std::string error;
  if (state != nullptr && result.files > 0 &&
      !WriteWhole(options.dataDir / kLibraryStateName, LibraryStateText(*state), error)) {
    err << error << '\n';
  }
  result.status = result.skipped == 0 && result.airports > 0 ? 0 : 1;
  result.summary = Summary(result);
  err << result.summary << '\n';
}

}  // namespace

ImportResult RunImport(const ImportOptions& options, std::ostream& err) {
  ImportResult result;
  Progress progress(options.progress);
  const bool sim = !options.simDir.empty();
  Library library;
  if (sim) ReadLibrary(options, library, result, err);
  if (sim && !library.ok) {
    result.status = 1;
    result.summary = "nothing imported";
    err << result.summary << '\n';
    return result;
  }
  const std::vector<Input> inputs =
      sim ? LibraryInputs(library) : NamedInputs(options, result, err);
  const std::filesystem::path folder = options.dataDir / kAirportFolder;
  const std::filesystem::path stateFile = options.dataDir / kLibraryStateName;
  const auto before = sim ? ReadLibraryState(stateFile) : std::nullopt;
  LibraryState state;
  if (library.ok)
    state.fingerprint = LibraryFingerprint(options.simDir, library.cfg, library.folders);
  if (before && before->fingerprint == state.fingerprint && OutputsStand(folder, before->outputs)) {
    result.unchanged = true;
    result.status = result.skipped == 0 ? 0 : 1;
    result.summary = "unchanged: " + Counted(static_cast<int>(inputs.size()), "file", "files") +
                     " as the last import found them";
    err << result.summary << '\n';
    return result;
  }
  const std::filesystem::path staging = folder / kStagingName;
  std::error_code ec;
  std::filesystem::remove_all(staging, ec);
  std::filesystem::create_directories(staging, ec);
  if (!std::filesystem::is_directory(staging, ec)) {
    err << PathToUtf8(folder) << " could not be made - nothing imported\n";
    result.skipped += static_cast<int>(inputs.size());
  }
  std::vector<Source> sources;
  if (!ec) {
    sources = ReadSources(inputs, folder, result, progress, err);
    DropReplacedAirports(sources);
    WriteAirportFiles(sources, staging, result, progress, err);
  }
  if (progress.cancelled()) {
    std::filesystem::remove_all(staging, ec);
    result.cancelled = true;
    result.status = 1;
    result.summary = "import cancelled - nothing changed";
    err << result.summary << '\n';
    return result;
  }
  // Files of the last import stay while a part of the library could not be read: an unplugged
  // disk should not take a pilot's airports away.
  Publish(sources, staging, folder, before ? before->outputs : std::vector<std::string>{},
          result.skipped == 0, state.outputs, result, err);
  std::filesystem::remove_all(staging, ec);
  Finish(options, sources, library.ok ? &state : nullptr, result, err);
  return result;
}

}  // namespace velmora
