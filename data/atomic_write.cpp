#include "data/atomic_write.h"

#include <cerrno>
#include <random>
#include <system_error>
#include <utility>

#include "data/platform.h"

namespace velmora {
namespace {

std::string SystemReason(int error) {
  return error != 0 ? std::generic_category().message(error) : "the system gave no reason";
}

// Makes the temporary file, so that a folder which takes no files is told before any work.
bool CreateTemp(const std::filesystem::path& temp, std::ofstream& file, std::string& reason) {
  errno = 0;
  file.open(temp, std::ios::binary | std::ios::trunc);
  if (file) return true;
  reason = SystemReason(errno);
  return false;
}

void Discard(const std::filesystem::path& temp) {
  std::error_code ec;
  std::filesystem::remove(temp, ec);
}

bool Replace(const std::filesystem::path& temp, const std::filesystem::path& path,
             std::string& reason) {
  const std::error_code ec = RenameOver(temp, path);
  if (!ec) return true;
  reason = ec.message();
  Discard(temp);
  return false;
}

}  // namespace

std::filesystem::path TempPath(const std::filesystem::path& path) {
  std::random_device random;
  // Built as a path, so a name outside the narrow character set stays whole.
  std::filesystem::path name = ".";
  name += path.stem();
  name += ".part" + std::to_string(random());
  name += path.extension();
  return path.parent_path() / name;
}

bool WriteWhole(const std::filesystem::path& path, const FileFiller& fill, std::string& reason) {
  const std::filesystem::path temp = TempPath(path);
  std::ofstream probe;
  if (!CreateTemp(temp, probe, reason)) return false;
  probe.close();
  if (!fill(temp)) {
    reason = "its content could not be written";
    Discard(temp);
    return false;
  }
  return Replace(temp, path, reason);
}

bool WriteWhole(const std::filesystem::path& path, std::string_view bytes, std::string& reason) {
  WholeFile file;
  if (!file.open(path, reason)) return false;
  file.stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file.commit(reason);
}

WholeFile::~WholeFile() {
  if (temp_.empty()) return;
  file_.close();
  Discard(temp_);
}

bool WholeFile::open(const std::filesystem::path& path, std::string& reason) {
  const std::filesystem::path temp = TempPath(path);
  if (!CreateTemp(temp, file_, reason)) return false;
  path_ = path;
  temp_ = temp;
  return true;
}

bool WholeFile::commit(std::string& reason) {
  if (temp_.empty()) return true;
  errno = 0;
  file_.close();
  const std::filesystem::path temp = std::exchange(temp_, {});
  if (!file_) {
    reason = SystemReason(errno);
    Discard(temp);
    return false;
  }
  return Replace(temp, path_, reason);
}

}  // namespace velmora
