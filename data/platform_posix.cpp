#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "data/platform.h"

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

std::error_code RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code ec;
  std::filesystem::rename(from, to, ec);
  return ec;
}

std::filesystem::path ExecutableDir() {
  std::error_code ec;
  return std::filesystem::read_symlink("/proc/self/exe", ec).parent_path();
}

std::optional<std::string> GetEnv(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return value;
}

void SetEnv(const std::string& name, const std::string& value) {
  ::setenv(name.c_str(), value.c_str(), 1);
}

std::filesystem::path UserDataDir(const EnvLookup& env) {
  if (const auto xdg = env("XDG_DATA_HOME"); xdg && std::filesystem::path(*xdg).is_absolute()) {
    return std::filesystem::path(*xdg) / "velmora";
  }
  if (const auto home = env("HOME"); home && !home->empty()) {
    return std::filesystem::path(*home) / ".local" / "share" / "velmora";
  }
  return {};
}

void ProvideRuntimeDir() {
  if (GetEnv("XDG_RUNTIME_DIR")) return;
  const auto dir =
      std::filesystem::temp_directory_path() / ("velmora-runtime-" + std::to_string(::getuid()));
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  std::filesystem::permissions(dir, std::filesystem::perms::owner_all, ec);
  SetEnv("XDG_RUNTIME_DIR", dir.string());
}

void SetStdoutBinary() {}

bool StderrIsTerminal() {
  return ::isatty(STDERR_FILENO) == 1;
}

std::filesystem::path PathFromCp1252(std::string_view text) {
  return std::filesystem::path(text);
}

std::string PathToCp1252(const std::filesystem::path& path) {
  return path.string();
}

std::vector<std::string> CommandLineArgs(int argc, char** argv) {
  return std::vector<std::string>(argv + 1, argv + argc);
}

}  // namespace velmora
