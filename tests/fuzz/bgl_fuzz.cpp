// The BGL reader on any bytes, in both details, then what it read converted and written in the
// reader's layout as the importer would.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "import/bgl_file.h"
#include "import/writer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  velmora::ParseBgl(bytes, velmora::BglDetail::kOutline);
  const velmora::SourceTree tree = velmora::ParseBgl(bytes);
  const velmora::ConvertedSource converted = velmora::ConvertSource(tree, "fuzz");
  velmora::AirportFileText(converted, {}, converted.vors);
  return 0;
}
