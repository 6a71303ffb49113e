#pragma once
// What the operating system does differently, each behind one small function: one source file
// per system (platform_posix.cpp, platform_windows.cpp), picked by the build. Paths stay
// std::filesystem::path; text handed in and out is UTF-8.

#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace velmora {

enum class OpenStatus { kOpened, kUnreadable, kNotRegular };

// Opens `path` for reading if it is, or links to, a regular file. Never blocks: the open
// itself doesn't wait for a FIFO's writer. `file` is set only for kOpened.
OpenStatus OpenRegularFile(const std::filesystem::path& path, std::FILE*& file);

// Renames `from` to `to`, replacing a file there in one step; the system's error if not.
std::error_code RenameOver(const std::filesystem::path& from, const std::filesystem::path& to);

// The folder of the running executable; empty when the system won't say.
std::filesystem::path ExecutableDir();

// The environment variable `name`, none when unset.
std::optional<std::string> GetEnv(const std::string& name);
void SetEnv(const std::string& name, const std::string& value);
using EnvLookup = std::function<std::optional<std::string>(const std::string&)>;

// The user's data folder of the programs without a window, from the environment: on Windows
// %APPDATA%\velmora; elsewhere $XDG_DATA_HOME/velmora, where that is an absolute path, else
// $HOME/.local/share/velmora. Empty when the environment names none.
std::filesystem::path UserDataDir(const EnvLookup& env = GetEnv);

// Gives XDG_RUNTIME_DIR, which Qt wants even without a display, a private folder when it is
// unset; Windows needs none.
void ProvideRuntimeDir();

// Standard output takes bytes as given: Windows would make each LF a CR LF.
void SetStdoutBinary();

// Whether standard error goes to a terminal (a console on Windows).
bool StderrIsTerminal();

// The command line's arguments after the program's name, as UTF-8.
std::vector<std::string> CommandLineArgs(int argc, char** argv);

// A file name as the index's Windows-1252 text gives it, and back. Elsewhere the bytes are the
// name, as they always were; Windows names files in UTF-16, so the bytes are decoded.
std::filesystem::path PathFromCp1252(std::string_view text);
std::string PathToCp1252(const std::filesystem::path& path);

// A path from UTF-8 text and back, whatever the system's own encoding of file names (UTF-16
// on Windows, where narrow text would pass through the ANSI code page on some compilers).
inline std::filesystem::path PathFromUtf8(std::string_view text) {
  return std::u8string(text.begin(), text.end());
}
inline std::string PathToUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
}

}  // namespace velmora
