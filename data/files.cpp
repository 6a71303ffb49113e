#include "data/files.h"

namespace velmora {

std::optional<std::filesystem::path> PathBelow(const std::filesystem::path& folder,
                                               std::string_view relative) {
  const std::filesystem::path rel = PathFromCp1252(relative).lexically_normal();
  // On Windows "/dev/zero" is not absolute (no drive) and "C:x" has no root directory: any
  // root at all leaves the folder.
  if (relative.empty() || rel.has_root_path()) return std::nullopt;
  const auto first = rel.begin();
  if (first == rel.end() || *first == "..") return std::nullopt;
  return folder / rel;
}

}  // namespace velmora
