#pragma once
// Every file the programs write goes through here: it is filled under a hidden name beside its
// target and renamed over it when whole, so a failed run leaves no half file and an existing
// file as it was.

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>

namespace velmora {

// A hidden name beside `path` with the same extension, so that writers which go by the
// extension pick the same format.
std::filesystem::path TempPath(const std::filesystem::path& path);

// Fills the temporary file and says whether it is whole.
using FileFiller = std::function<bool(const std::filesystem::path& temp)>;

// `fill` writes the temporary file, which then replaces `path`. False with `reason` (the
// system's words where it gives any) on failure; then `path` is unchanged and no temporary is
// left.
bool WriteWhole(const std::filesystem::path& path, const FileFiller& fill, std::string& reason);
// The same for bytes at hand.
bool WriteWhole(const std::filesystem::path& path, std::string_view bytes, std::string& reason);

// A file written as a stream over a whole run (a trace, the control states): nothing reaches
// `path` before commit(); destroyed uncommitted, it leaves nothing behind.
class WholeFile {
 public:
  ~WholeFile();
  bool open(const std::filesystem::path& path, std::string& reason);
  std::ostream& stream() { return file_; }
  bool commit(std::string& reason);

 private:
  std::filesystem::path path_, temp_;
  std::ofstream file_;
};

}  // namespace velmora
