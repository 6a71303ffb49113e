#include "data/file_status.h"

namespace velmora {

std::optional<std::string> FileProblem(const FileStatus& status, std::string notAFile,
                                       std::string unreadable) {
  if (status.notRegular) return notAFile;
  if (!status.opened || status.readError) return unreadable;
  return std::nullopt;
}

}  // namespace velmora
