#pragma once
// The simulator's scenery library: scenery.cfg names the scenery areas, each a folder whose
// `scenery` subfolder holds BGL files, in layers; the simulator lets a higher layer's airport
// replace the same ident from a lower one. FSX, FSX Steam Edition and Prepar3D v4 to v6 write
// the file alike.

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// One [Area.NNN] entry as the file gives it.
struct SceneryArea {
  int number = 0;
  std::string title, local;  // UTF-8
  bool active = true;        // an entry without Active= counts, as the simulator takes it
  int layer = 0;             // the area number where the entry has no Layer=
  std::uint64_t line = 0;    // of the [Area.NNN] heading
};

struct SceneryLibrary {
  std::vector<SceneryArea> areas;     // in file order
  std::vector<std::string> problems;  // "LINE: reason", each entry concerned left out
};

// The text of scenery.cfg in any encoding the simulators write: UTF-8 with or without BOM,
// UTF-16 with BOM, or else Windows-1252; CR LF or LF.
SceneryLibrary ParseSceneryLibrary(std::string_view bytes);

// An active area's BGL files, found.
struct LibraryFolder {
  const SceneryArea* area;
  std::filesystem::path scenery;
  std::vector<std::filesystem::path> files;  // *.bgl in any letter case, in name order
};

// Finds the active areas' folders below `simDir` (or where an absolute Local points), in
// layer order, lowest first. Backslashes and letter case that differs from the disk's are
// taken as Windows takes them. Missing folders are told on `err` as "FILE:LINE: reason".
std::vector<LibraryFolder> FindLibraryFolders(const SceneryLibrary& library,
                                              const std::filesystem::path& simDir,
                                              const std::string& cfgLabel, std::ostream& err);

// Where the simulator in `simDir` keeps scenery.cfg: its folder under ProgramData (given, or
// the Wine prefix's when `simDir` lies in one), else `simDir` itself; none when no such file
// exists.
std::optional<std::filesystem::path> FindSceneryFile(const std::filesystem::path& simDir,
                                                     const std::optional<std::string>& programData);

// `relative` (either slash, any letter case) below `base` as it stands on disk; none when a
// part of it does not exist.
std::optional<std::filesystem::path> ResolveNoCase(const std::filesystem::path& base,
                                                   std::string_view relative);

// scenery.cfg files larger than this are no library.
inline constexpr std::uintmax_t kMaxLibraryBytes = std::uintmax_t{16} << 20;

}  // namespace velmora
