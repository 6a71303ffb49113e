#include "import/source_file.h"

#include "data/platform.h"
#include "data/text.h"

namespace velmora {

bool IsSourceFile(const std::filesystem::path& path) {
  return AsciiLowerCase(PathToUtf8(path.extension())) == ".xml";
}

SourceTree ReadSourceFile(const std::filesystem::path& path, SourceDetail) {
  return ReadXmlSource(path);
}

std::string SourceProblem(const std::filesystem::path& path, const SourceTree& tree) {
  const std::string& e = tree.error;
  const bool atLine = !e.empty() && e.front() >= '0' && e.front() <= '9' && e.rfind("0: ", 0) != 0;
  return PathToUtf8(path) + (atLine ? ":" + e : ": " + (e.rfind("0: ", 0) == 0 ? e.substr(3) : e));
}

}  // namespace velmora
