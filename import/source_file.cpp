#include "import/source_file.h"

#include "data/platform.h"
#include "data/text.h"
#include "import/bgl_file.h"

namespace velmora {

namespace {

bool IsBgl(const std::filesystem::path& path) {
  return AsciiLowerCase(PathToUtf8(path.extension())) == ".bgl";
}

}  // namespace

bool IsSourceFile(const std::filesystem::path& path) {
  return AsciiLowerCase(PathToUtf8(path.extension())) == ".xml" || IsBgl(path);
}

SourceTree ReadSourceFile(const std::filesystem::path& path, SourceDetail detail) {
  if (!IsBgl(path)) return ReadXmlSource(path);
  const bool outline = detail == SourceDetail::kOutline;
  SourceTree tree = ReadBglFile(path, outline ? BglDetail::kOutline : BglDetail::kFull);
  tree.outline = outline;
  return tree;
}

std::string SourceProblem(const std::filesystem::path& path, const SourceTree& tree) {
  const std::string& e = tree.error;
  const bool atLine = !e.empty() && e.front() >= '0' && e.front() <= '9' && e.rfind("0: ", 0) != 0;
  return PathToUtf8(path) + (atLine ? ":" + e : ": " + (e.rfind("0: ", 0) == 0 ? e.substr(3) : e));
}

}  // namespace velmora
