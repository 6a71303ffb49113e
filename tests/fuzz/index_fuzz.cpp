// The index search on any bytes, and the airport file name it gives.
#include "data/files.h"
#include "data/index_search.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const fuzz::Input in = fuzz::Take(data, size);
  LineReader reader(in.chunk, fuzz::kMaxLine);
  reader.openMemory(in.bytes);
  int lastDots = -1;
  const IndexSearchResult r = SearchIndex(reader, in.code, [&](int dots) {
    // Dots only grow, one at a time, up to seven.
    if (dots != lastDots + 1 || dots > 7) __builtin_trap();
    lastDots = dots;
  });
  if (const auto path = PathBelow("/nonexistent/FSXFiles", r.file)) {
    if (path->lexically_normal().string().find("/nonexistent/FSXFiles") != 0) __builtin_trap();
  }
  return 0;
}
