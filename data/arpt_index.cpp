#include "data/arpt_index.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "data/airport_scan.h"
#include "data/decoders.h"
#include "data/line_reader.h"
#include "data/platform.h"
#include "data/text.h"

namespace velmora {
namespace {

// The first airport of each ident and where it stands; the search never reaches a second.
using FirstPlace = std::unordered_map<std::string, std::string>;

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

// Why the search could never load an airport of this ident, or empty when it can. The search
// upper-cases what is typed and removes blanks from index fields; ";" would split the line.
std::string IdentProblem(std::string_view ident) {
  if (ident.empty()) return "has no ident";
  if (ident.find(' ') != std::string_view::npos) {
    return "has a blank in its ident, which the search removes";
  }
  if (ident.find(';') != std::string_view::npos) return "has a \";\" in its ident";
  if (UpperCase(ident) != ident) {
    return "has lower-case letters in its ident, and the search upper-cases what is typed";
  }
  return {};
}

// Fields 2 and 3 are free text but must not split the line.
std::string FieldText(std::string_view text) {
  std::string out(text);
  std::replace(out.begin(), out.end(), ';', ',');
  return out;
}

class FileIndexer {
 public:
  FileIndexer(const std::string& file, IndexBuild& build, FirstPlace& first)
      : file_(file), build_(build), first_(first) {}

  // The airports of one file as the reader finds them; false when the file can't be read.
  bool run(const std::filesystem::path& path) {
    LineReader reader;
    if (reader.open(path) != OpenStatus::kOpened) return false;
    std::string curElement;
    bool own = false;  // the lines now read belong to the airport's own element
    std::string_view raw;
    // Once the airport's own element is behind, only a line naming "Airport" can matter: it
    // may open the next airport, close this one or bring its element back. The rest is
    // skipped the way the reader skips other airports.
    const auto next = [&] {
      if (inAirport_ && !own) return reader.nextContaining("Airport", raw);
      return NextAirportLine(reader, inAirport_, raw);
    };
    while (next()) {
      // Without "<" a line can neither open an airport nor name one.
      const bool angle = raw.find('<') != std::string_view::npos;
      const LineHead head = angle ? ReadLineHead(raw) : LineHead{};
      if (head.opensAirport) {
        finish();
        open(head.ident);
        // A second attribute on the line is one the reader never sees.
        if (std::count(raw.begin(), raw.end(), '=') > 1) oddLayout_ = true;
      } else if (!inAirport_ || (angle && raw.find(kAirportKey) != std::string_view::npos)) {
        // Outside an airport every line read holds it.
        warn("a line with " + std::string(kAirportKey) +
             " that the reader passes over (it does not begin with it, or begins with a tab)");
      }
      if (!inAirport_) continue;
      const std::string_view key = line_.take(raw, curElement);
      own = curElement == "<Airport";
      if (curElement == "</Airport>") {
        finish();
      } else if (own && current_) {
        if (const int i = ArptKeyIndex(key); i >= 0 && i <= kArptName) {
          fields_[static_cast<std::size_t>(i)] = AttrValue(line_.line());
        }
      }
    }
    finish();
    if (reader.failed()) {
      entries_.clear();
      return false;
    }
    for (IndexEntry& e : entries_) build_.entries.push_back(std::move(e));
    return true;
  }

  std::size_t listed() const { return entries_.size(); }
  bool oddLayout() const { return oddLayout_; }
  int seen() const { return seen_; }

 private:
  void warn(const std::string& text) { build_.warnings.push_back(file_ + ": " + text); }

  void open(std::string_view ident) {
    inAirport_ = true;
    ++seen_;
    current_ = false;
    if (const std::string problem = IdentProblem(ident); !problem.empty()) {
      warn("airport " + Quoted(ident) + " " + problem + " - not listed");
      return;
    }
    const auto [at, isNew] = first_.emplace(ident, file_);
    if (!isNew) {
      warn(Quoted(ident) + " stands also in " + at->second +
           "; the search takes that one - not listed again");
      return;
    }
    current_ = true;
    ident_ = ident;
    fields_ = {};
  }

  void finish() {
    inAirport_ = false;
    if (!current_) return;
    current_ = false;
    const std::string& name = fields_[kArptName].empty() ? fields_[kArptCity] : fields_[kArptName];
    const std::string& country =
        fields_[kArptCountry].empty() ? fields_[kArptState] : fields_[kArptCountry];
    entries_.push_back({ident_, FieldText(name), FieldText(country), file_});
  }

  const std::string& file_;
  IndexBuild& build_;
  FirstPlace& first_;
  AirportLine line_;
  bool inAirport_ = false;
  bool current_ = false;  // the open airport goes into the index
  bool oddLayout_ = false;
  int seen_ = 0;
  std::string ident_;
  std::array<std::string, 4> fields_;  // country, state, city, name
  std::vector<IndexEntry> entries_;
};

constexpr std::string_view kLayoutWarning =
    "airports in a layout the chart cannot read - import it with velmora-import";

// An <Airport element in another layout than the reader's, such as "<Airport" alone on its line
// or followed by another attribute than the ident.
bool HasAirportElement(const std::filesystem::path& path) {
  LineReader reader;
  if (reader.open(path) != OpenStatus::kOpened) return false;
  constexpr std::string_view kWord = "<Airport";
  std::string_view raw;
  while (reader.nextContaining(kWord, raw)) {
    for (std::size_t at = raw.find(kWord); at != std::string_view::npos;
         at = raw.find(kWord, at + 1)) {
      const std::string_view rest = raw.substr(at + kWord.size());
      if (!rest.empty() && std::string_view(" \t").find(rest.front()) != std::string_view::npos &&
          rest.find('=') != std::string_view::npos) {
        return true;
      }
      // The word alone on its line: an element when attributes follow on the next.
      if (rest.find_first_not_of(" \t") == std::string_view::npos) {
        return reader.next(raw) && raw.find('=') != std::string_view::npos;
      }
    }
  }
  return false;
}

// Why a folder entry can't be indexed, or empty. Field 4 loses its blanks in the search, so
// such a file could never be opened.
std::string EntryProblem(const std::filesystem::path& path, const std::string& name) {
  std::error_code ec;
  const auto status = std::filesystem::status(path, ec);
  if (std::filesystem::is_symlink(std::filesystem::symlink_status(path, ec)) &&
      !std::filesystem::exists(status)) {
    return "a link to nothing - passed over";
  }
  if (std::filesystem::is_directory(status)) {
    return "a folder - files in folders below FSXFiles are not read";
  }
  if (!std::filesystem::is_regular_file(status)) return "not a plain file - passed over";
  if (name.find(' ') != std::string::npos) {
    return "the file name holds a blank, and the search removes blanks from the index's file "
           "field, so its airports could never be loaded - rename it";
  }
  if (name.find_first_of(";\r\n") != std::string::npos) {
    return "the file name holds a character an index line cannot carry - rename it";
  }
  return {};
}

}  // namespace

IndexBuild BuildIndex(const std::filesystem::path& airportFolder,
                      const std::function<void(int, int, int)>& progress) {
  IndexBuild build;
  std::error_code ec;
  if (!std::filesystem::is_directory(airportFolder, ec)) return build;
  std::vector<std::string> names;
  for (std::filesystem::directory_iterator it(airportFolder, ec), end; !ec && it != end;
       it.increment(ec)) {
    names.push_back(PathToCp1252(it->path().filename()));
  }
  if (ec) return build;
  build.folderOpened = true;
  // Byte order of the names, so that the same folder always gives the same index.
  std::sort(names.begin(), names.end());

  FirstPlace first;
  int done = 0;
  for (const std::string& name : names) {
    const std::filesystem::path path = airportFolder / PathFromCp1252(name);
    bool indexed = false;
    if (const std::string problem = EntryProblem(path, name); !problem.empty()) {
      build.warnings.push_back(name + ": " + problem);
    } else {
      FileIndexer file(name, build, first);
      if (!file.run(path)) {
        build.warnings.push_back(name + ": could not be read - none of its airports listed");
      } else if (file.seen() == 0) {
        build.warnings.push_back(
            name + ": " +
            std::string(HasAirportElement(path) ? kLayoutWarning : "no airport in this file"));
      } else if (file.oddLayout()) {
        build.warnings.push_back(name + ": " + std::string(kLayoutWarning));
      }
      indexed = file.listed() > 0;
    }
    if (indexed) {
      ++build.filesWithAirports;
    } else {
      ++build.filesSkipped;
    }
    if (progress)
      progress(++done, static_cast<int>(names.size()), static_cast<int>(build.entries.size()));
  }
  return build;
}

std::string IndexLine(const IndexEntry& e) {
  return e.ident + ';' + e.name + ';' + e.country + ';' + e.file + "\r\n";
}

std::string Grouped(std::uintmax_t n) {
  std::string digits = std::to_string(n);
  for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), ",");
  }
  return digits;
}

std::string IndexSummary(const IndexBuild& b) {
  const auto count = [](std::uintmax_t n, std::string_view one, std::string_view many) {
    return Grouped(n) + ' ' + std::string(n == 1 ? one : many);
  };
  return count(b.entries.size(), "airport", "airports") + " in " +
         count(static_cast<std::uintmax_t>(b.filesWithAirports), "file", "files") + ", " +
         count(static_cast<std::uintmax_t>(b.filesSkipped), "file", "files") + " skipped";
}

}  // namespace velmora
