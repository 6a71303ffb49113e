#pragma once
// What the last import of a scenery library read and wrote, kept in the data folder, so that
// importing an unchanged library again only checks sizes and times and says so.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "import/library.h"

namespace velmora {

struct LibraryState {
  std::string fingerprint;           // the simulator folder, scenery.cfg and each file read
  std::vector<std::string> outputs;  // the names written into FSXFiles (UTF-8)
};

inline constexpr std::string_view kLibraryStateName = "library-import.txt";

// One line for the folder, one for scenery.cfg and one per BGL file with its layer, size and
// modification time: any change to what the import would read changes it.
std::string LibraryFingerprint(const std::filesystem::path& simDir,
                               const std::filesystem::path& sceneryFile,
                               const std::vector<LibraryFolder>& folders);

std::string LibraryStateText(const LibraryState& state);
// None for a missing file or one this version did not write.
std::optional<LibraryState> ReadLibraryState(const std::filesystem::path& file);

}  // namespace velmora
