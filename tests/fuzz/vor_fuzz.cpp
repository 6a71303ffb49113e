// The VOR list on any bytes, and its VORs drawn around a fixed airport.
#include "charts/charts.h"
#include "data/vor.h"
#include "fuzz_input.h"
#include "geometry/svg_canvas.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  static Store& store = *new Store;
  fuzz::Input in = fuzz::Take(data, size);
  LineReader reader(in.chunk, fuzz::kMaxLine);
  reader.openMemory(in.bytes);
  const VorReport r = LoadVor(store, reader);
  if (store.VorLast >= store.Vor.kHighest + 1 || r.skipped < 0) __builtin_trap();
  store.ArptLat = "N10 00.00";
  store.ArptLon = "E10 00.00";
  SvgCanvas canvas;
  DrawArpt(store, in.view, canvas);
  return 0;
}
