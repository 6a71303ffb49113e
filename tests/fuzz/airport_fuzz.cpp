// The airport reader on any bytes, and the chart and the approaches' profiles drawn from
// whatever it read.
#include <vector>

#include "charts/charts.h"
#include "charts/profile.h"
#include "data/extract.h"
#include "fuzz_input.h"
#include "geometry/svg_canvas.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  static Store& store = *new Store;  // its tables are large; ExtractArpt clears them
  fuzz::Input in = fuzz::Take(data, size);
  LineReader reader(in.chunk, fuzz::kMaxLine);
  reader.openMemory(in.bytes);
  ExtractArpt(store, reader, in.code);
  SvgCanvas canvas;
  DisplayArpt(store, in.view, canvas);
  std::vector<std::string> rows;
  for (std::int32_t app = 0; app <= store.AppLast && store.Approach.has(app) && app < 4; ++app) {
    store.SelApp = app;
    store.AppSelected = true;
    DrawApp(store, in.view, canvas, rows);
    SvgCanvas profile(kProfileSize);
    DrawProfile(MakeProfile(store, app, "FUZZ"), profile);
  }
  store.AppSelected = false;
  return 0;
}
