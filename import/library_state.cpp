#include "import/library_state.h"

#include <fstream>
#include <iterator>

#include "data/platform.h"
#include "data/text.h"

namespace velmora {
namespace {

constexpr std::string_view kHeading = "velmora library import 1\n";
constexpr std::string_view kOutput = "out\t";

// Size and modification time; a file that can't be asked gives zeros, which no file has.
std::string Stamp(const std::filesystem::path& p) {
  std::error_code ec;
  const auto size = std::filesystem::file_size(p, ec);
  const auto time = std::filesystem::last_write_time(p, ec);
  return std::to_string(ec ? 0 : size) + '\t' +
         std::to_string(ec ? 0 : time.time_since_epoch().count());
}

}  // namespace

std::string LibraryFingerprint(const std::filesystem::path& simDir,
                               const std::filesystem::path& sceneryFile,
                               const std::vector<LibraryFolder>& folders) {
  std::error_code ec;
  std::string text = "sim\t" + PathToUtf8(std::filesystem::absolute(simDir, ec)) + '\n';
  text += "cfg\t" + Stamp(sceneryFile) + '\t' + PathToUtf8(sceneryFile) + '\n';
  for (const LibraryFolder& f : folders) {
    for (const auto& file : f.files) {
      text += "file\t" + std::to_string(f.area->layer) + '\t' + Stamp(file) + '\t' +
              PathToUtf8(file) + '\n';
    }
  }
  return text;
}

std::string LibraryStateText(const LibraryState& state) {
  std::string text(kHeading);
  text += state.fingerprint;
  for (const std::string& name : state.outputs) text += std::string(kOutput) + name + '\n';
  return text;
}

std::optional<LibraryState> ReadLibraryState(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (!in.eof() || !text.starts_with(kHeading)) return std::nullopt;
  LibraryState state;
  for (const std::string_view line : Split(std::string_view(text).substr(kHeading.size()), '\n')) {
    if (line.empty()) continue;
    if (line.starts_with(kOutput)) {
      state.outputs.emplace_back(line.substr(kOutput.size()));
    } else {
      state.fingerprint.append(line).push_back('\n');
    }
  }
  return state;
}

}  // namespace velmora
