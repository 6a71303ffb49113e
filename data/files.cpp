#include "data/files.h"

#include <cstdio>

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

bool ReadSmallFile(const std::filesystem::path& path, std::uintmax_t limit, std::string& bytes,
                   std::string& reason) {
  std::FILE* file = nullptr;
  const OpenStatus status = OpenRegularFile(path, file);
  if (status != OpenStatus::kOpened) {
    reason = status == OpenStatus::kNotRegular ? "not a plain file" : "can't be read";
    return false;
  }
  const std::string tooLarge = "larger than " + std::to_string(limit >> 20) + " MB - not read";
  // A file that says it is too large is refused unread.
  std::error_code ec;
  if (const auto size = std::filesystem::file_size(path, ec); !ec && size > limit) {
    std::fclose(file);
    reason = tooLarge;
    return false;
  }
  bytes.clear();
  char buffer[1 << 16];
  std::size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0 && bytes.size() <= limit) {
    bytes.append(buffer, n);
  }
  const bool failed = std::ferror(file) != 0;
  std::fclose(file);
  if (bytes.size() > limit) {
    reason = tooLarge;
  } else if (failed) {
    reason = "a read failed";
  }
  if (!reason.empty()) bytes.clear();
  return reason.empty();
}

}  // namespace velmora
