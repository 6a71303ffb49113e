// scenery.cfg on any bytes: every area kept names a folder of reasonable length, and looking
// for the folders (below a folder that does not exist) finds none and never fails.
#include <cstdint>
#include <sstream>
#include <string_view>

#include "import/library.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const SceneryLibrary lib =
      ParseSceneryLibrary(std::string_view(reinterpret_cast<const char*>(data), size));
  for (const SceneryArea& a : lib.areas) {
    if (a.local.empty() || a.local.size() > 1024 || a.line == 0) __builtin_trap();
  }
  std::ostringstream err;
  if (!FindLibraryFolders(lib, "/nonexistent/velmora-fuzz", "cfg", err).empty()) __builtin_trap();
  return 0;
}
