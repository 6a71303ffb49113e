#include "import/library.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <ostream>

#include "data/platform.h"
#include "data/text.h"

namespace velmora {
namespace {

// A Local longer than this names no folder a simulator could use.
constexpr std::size_t kMaxLocal = 1024;
// Area numbers and layers beyond this are no library's.
constexpr int kMaxAreaNumber = 999999;

std::string Decoded(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return std::string(bytes.substr(3));
  if (bytes.starts_with("\xFF\xFE")) return Utf16ToUtf8(bytes.substr(2), false);
  if (bytes.starts_with("\xFE\xFF")) return Utf16ToUtf8(bytes.substr(2), true);
  return IsUtf8(bytes) ? std::string(bytes) : Cp1252ToUtf8(bytes);
}

std::string_view Trimmed(std::string_view s) {
  const auto first = s.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return s.substr(first, s.find_last_not_of(" \t\r") - first + 1);
}

bool SameNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && AsciiLowerCase(a) == AsciiLowerCase(b);
}

std::optional<int> WholeNumber(std::string_view text) {
  int n = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (ec != std::errc() || end != text.data() + text.size() || n < 0 || n > kMaxAreaNumber) {
    return std::nullopt;
  }
  return n;
}

// What one `key=value` line says of the area; a reason when the area can't stand.
std::string TakeValue(SceneryArea& area, std::string_view key, std::string_view value,
                      bool& layerGiven) {
  if (SameNoCase(key, "Title")) {
    area.title = value;
  } else if (SameNoCase(key, "Local")) {
    const bool control = std::any_of(value.begin(), value.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 0x20; });
    if (value.size() > kMaxLocal || control) return "Local= names no folder";
    area.local = value;
  } else if (SameNoCase(key, "Active")) {
    area.active = !SameNoCase(value, "FALSE");
  } else if (SameNoCase(key, "Layer")) {
    const auto layer = WholeNumber(value);
    if (!layer) return "Layer=" + std::string(value.substr(0, 40)) + " is no layer number";
    area.layer = *layer;
    layerGiven = true;
  }
  return {};
}

}  // namespace

SceneryLibrary ParseSceneryLibrary(std::string_view bytes) {
  const std::string text = Decoded(bytes);
  SceneryLibrary library;
  std::optional<SceneryArea> area;
  bool layerGiven = false, bad = false;
  auto close = [&] {
    if (area && !bad && area->local.empty()) {
      library.problems.push_back(std::to_string(area->line) + ": [Area." +
                                 std::to_string(area->number) + "] has no Local= - left out");
    } else if (area && !bad) {
      if (!layerGiven) area->layer = area->number;
      library.areas.push_back(std::move(*area));
    }
    area.reset();
  };
  std::uint64_t lineNo = 0;
  for (const std::string_view raw : Split(text, '\n')) {
    ++lineNo;
    const std::string_view line = Trimmed(raw);
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (line.front() == '[') {
      close();
      const std::string_view name = line.substr(1, line.find(']') - 1);
      if (name.size() > 5 && SameNoCase(name.substr(0, 5), "Area.")) {
        const auto number = WholeNumber(name.substr(5));
        if (!number) {
          library.problems.push_back(std::to_string(lineNo) + ": [" + std::string(name) +
                                     "] is no area number - left out");
          continue;
        }
        area = SceneryArea{*number, "", "", true, 0, lineNo};
        layerGiven = bad = false;
      }
      continue;
    }
    const auto eq = line.find('=');
    if (!area || bad || eq == std::string_view::npos) continue;
    const std::string reason =
        TakeValue(*area, Trimmed(line.substr(0, eq)), Trimmed(line.substr(eq + 1)), layerGiven);
    if (!reason.empty()) {
      library.problems.push_back(std::to_string(lineNo) + ": " + reason + " - area left out");
      bad = true;
    }
  }
  close();
  return library;
}

std::optional<std::filesystem::path> ResolveNoCase(const std::filesystem::path& base,
                                                   std::string_view relative) {
  std::filesystem::path at = base;
  std::string parts(relative);
  std::replace(parts.begin(), parts.end(), '\\', '/');
  std::error_code ec;
  for (const std::string_view part : Split(parts, '/')) {
    if (part.empty() || part == ".") continue;
    const std::filesystem::path exact = at / PathFromUtf8(part);
    if (part == ".." || std::filesystem::exists(exact, ec)) {
      at = exact;
      continue;
    }
    std::optional<std::filesystem::path> found;
    for (std::filesystem::directory_iterator it(at, ec), end; !ec && it != end; it.increment(ec)) {
      if (SameNoCase(PathToUtf8(it->path().filename()), part)) {
        found = it->path();
        break;
      }
    }
    if (!found) return std::nullopt;
    at = *found;
  }
  return at;
}

namespace {

// The folder a Windows drive letter stands for when the library is read outside Windows: C:
// of the Wine prefix that holds `simDir`.
std::optional<std::filesystem::path> WineDriveC(const std::filesystem::path& simDir) {
  std::error_code ec;
  for (std::filesystem::path p = std::filesystem::absolute(simDir, ec); !p.empty();
       p = p.parent_path()) {
    if (SameNoCase(PathToUtf8(p.filename()), "drive_c")) return p;
    if (p == p.parent_path()) break;
  }
  return std::nullopt;
}

// The area's folder as Local names it; a reason when it can't be found.
std::optional<std::filesystem::path> AreaFolder(const SceneryArea& area,
                                                const std::filesystem::path& simDir,
                                                std::string& reason) {
  std::string local = area.local;
  std::replace(local.begin(), local.end(), '\\', '/');
  std::filesystem::path base = simDir;
  const char letter =
      local.empty() ? ' ' : static_cast<char>(std::toupper(static_cast<unsigned char>(local[0])));
  const bool drive = local.size() >= 2 && local[1] == ':' && letter >= 'A' && letter <= 'Z';
  if (PathFromUtf8(local).is_absolute()) {
    base = PathFromUtf8(local).root_path();
    local = PathToUtf8(PathFromUtf8(local).relative_path());
  } else if (drive) {
    const auto driveC = WineDriveC(simDir);
    if (!driveC || letter != 'C') {
      reason = "Local=" + area.local + " names a Windows drive that is not here";
      return std::nullopt;
    }
    base = *driveC;
    local = local.substr(2);
  }
  const auto folder = ResolveNoCase(base, local);
  const auto scenery = folder ? ResolveNoCase(*folder, "scenery") : std::nullopt;
  if (!scenery) reason = "no folder " + PathToUtf8(base / PathFromUtf8(local)) + "/scenery";
  return scenery;
}

std::vector<std::filesystem::path> BglFiles(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end;
       it.increment(ec)) {
    if (it->is_regular_file(ec) && AsciiLowerCase(PathToUtf8(it->path().extension())) == ".bgl") {
      files.push_back(it->path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<LibraryFolder> FindLibraryFolders(const SceneryLibrary& library,
                                              const std::filesystem::path& simDir,
                                              const std::string& cfgLabel, std::ostream& err) {
  std::vector<const SceneryArea*> active;
  for (const SceneryArea& a : library.areas) {
    if (a.active) active.push_back(&a);
  }
  std::stable_sort(active.begin(), active.end(),
                   [](const SceneryArea* a, const SceneryArea* b) { return a->layer < b->layer; });
  std::vector<LibraryFolder> folders;
  for (const SceneryArea* a : active) {
    std::string reason;
    const auto scenery = AreaFolder(*a, simDir, reason);
    if (!scenery) {
      err << cfgLabel << ':' << a->line << ": area \"" << a->title << "\": " << reason
          << " - skipped\n";
      continue;
    }
    folders.push_back({a, *scenery, BglFiles(*scenery)});
  }
  return folders;
}

std::optional<std::filesystem::path> FindSceneryFile(
    const std::filesystem::path& simDir, const std::optional<std::string>& programData) {
  std::vector<std::filesystem::path> roots;
  if (programData && !programData->empty()) roots.push_back(PathFromUtf8(*programData));
  if (const auto driveC = WineDriveC(simDir)) {
    if (const auto pd = ResolveNoCase(*driveC, "ProgramData")) roots.push_back(*pd);
  }
  std::vector<std::string_view> sims = {
      "Microsoft/FSX", "Microsoft/FSX-SE", "Lockheed Martin/Prepar3D v6",
      "Lockheed Martin/Prepar3D v5", "Lockheed Martin/Prepar3D v4"};
  // The simulator in the folder goes first where both are installed.
  if (ResolveNoCase(simDir, "Prepar3D.exe"))
    std::rotate(sims.begin(), sims.begin() + 2, sims.end());
  else if (PathToUtf8(simDir).find("steamapps") != std::string::npos)
    std::swap(sims[0], sims[1]);
  for (const auto& root : roots) {
    for (const std::string_view sim : sims) {
      if (auto cfg = ResolveNoCase(root, std::string(sim) + "/scenery.cfg")) return cfg;
    }
  }
  return ResolveNoCase(simDir, "scenery.cfg");
}

}  // namespace velmora
