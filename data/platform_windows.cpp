// Windows has no FIFOs to wait on, but devices ("NUL", "CON") and folders open too: only a
// disk file that is not a folder is read. Text crosses the API as UTF-16.

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdlib>
#include <cwchar>

#include "data/platform.h"
#include "data/text.h"

namespace velmora {
namespace {

std::wstring Wide(const std::string& utf8) {
  return PathFromUtf8(utf8).wstring();
}

std::string Narrow(const std::wstring& wide) {
  return PathToUtf8(std::filesystem::path(wide));
}

// A C stream over a Windows handle; the handle is closed on failure.
std::FILE* StreamOf(HANDLE handle, int flags, const char* mode) {
  const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags);
  if (fd < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  std::FILE* file = _fdopen(fd, mode);
  if (file == nullptr) _close(fd);
  return file;
}

}  // namespace

OpenStatus OpenRegularFile(const std::filesystem::path& path, std::FILE*& file) {
  file = nullptr;
  // Backup semantics let a folder open too, so that it is told apart from a missing file.
  const HANDLE handle =
      CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return OpenStatus::kUnreadable;
  BY_HANDLE_FILE_INFORMATION info{};
  const bool disk = GetFileType(handle) == FILE_TYPE_DISK;
  const bool infoOk = disk && GetFileInformationByHandle(handle, &info) != 0;
  if (!disk || !infoOk || (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    CloseHandle(handle);
    return disk && !infoOk ? OpenStatus::kUnreadable : OpenStatus::kNotRegular;
  }
  file = StreamOf(handle, _O_RDONLY | _O_BINARY, "rb");
  return file != nullptr ? OpenStatus::kOpened : OpenStatus::kUnreadable;
}

std::error_code RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    return {};
  }
  return std::error_code(static_cast<int>(GetLastError()), std::system_category());
}

std::filesystem::path ExecutableDir() {
  std::wstring name(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (n == 0) return {};
    if (n < name.size()) return std::filesystem::path(name.substr(0, n)).parent_path();
    name.resize(name.size() * 2);
  }
}

std::optional<std::string> GetEnv(const std::string& name) {
  const wchar_t* value = _wgetenv(Wide(name).c_str());
  if (value == nullptr) return std::nullopt;
  return Narrow(value);
}

void SetEnv(const std::string& name, const std::string& value) {
  _wputenv_s(Wide(name).c_str(), Wide(value).c_str());
}

std::filesystem::path UserDataDir(const EnvLookup& env) {
  const auto appData = env("APPDATA");
  if (!appData || !PathFromUtf8(*appData).is_absolute()) return {};
  return PathFromUtf8(*appData) / "velmora";
}

void ProvideRuntimeDir() {}

void SetStdoutBinary() {
  _setmode(_fileno(stdout), _O_BINARY);
}

bool StderrIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

std::filesystem::path PathFromCp1252(std::string_view text) {
  return PathFromUtf8(Cp1252ToUtf8(text));
}

std::string PathToCp1252(const std::filesystem::path& path) {
  return Utf8ToCp1252(PathToUtf8(path));
}

std::vector<std::string> CommandLineArgs(int, char**) {
  // argv holds the ANSI code page's bytes; the wide command line holds every name whole.
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> args;
  for (int i = 1; i < count; ++i) args.push_back(Narrow(wide[i]));
  LocalFree(wide);
  return args;
}

}  // namespace velmora
