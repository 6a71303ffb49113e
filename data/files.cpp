#include "data/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

OpenStatus OpenRegularFile(const std::filesystem::path& path, std::FILE*& file) {
  file = nullptr;
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return OpenStatus::kUnreadable;
  struct stat st {};
  const bool statOk = ::fstat(fd, &st) == 0;
  if (!statOk || !S_ISREG(st.st_mode)) {
    ::close(fd);
    return statOk ? OpenStatus::kNotRegular : OpenStatus::kUnreadable;
  }
  const int flags = ::fcntl(fd, F_GETFL);
  if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) {
    ::close(fd);
    return OpenStatus::kUnreadable;
  }
  file = ::fdopen(fd, "rb");
  if (file == nullptr) {
    ::close(fd);
    return OpenStatus::kUnreadable;
  }
  return OpenStatus::kOpened;
}

std::optional<std::filesystem::path> PathBelow(const std::filesystem::path& folder,
                                               std::string_view relative) {
  const std::filesystem::path rel = std::filesystem::path(relative).lexically_normal();
  if (relative.empty() || rel.is_absolute() || rel.has_root_name()) return std::nullopt;
  const auto first = rel.begin();
  if (first == rel.end() || *first == "..") return std::nullopt;
  return folder / rel;
}

}  // namespace velmora
