// The coordinate, number and line decoders on any text.
#include <string>

#include "charts/charts.h"
#include "data/decoders.h"
#include "data/numbers.h"
#include "data/text.h"
#include "geometry/coords.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto n = ParseNumber(text); n && *n != *n) __builtin_trap();  // never NaN
  LonToGrid(text);
  LatToGrid(text);
  MetersToFeet(text);
  VariationText(text);
  std::string_view line = text;
  AttrKey(line);
  AttrValue(text);
  AttrValue2(text);
  std::string scanned(text), element;
  ScanElement(scanned, element);
  if (Utf8ToCp1252(Cp1252ToUtf8(text)) != text) __builtin_trap();  // the round trip is exact
  UpperCase(text);
  RemoveBlanks(text);
  Split(text, ';');
  return 0;
}
