#pragma once
// The names of chart files: the pages of a kit and the file the window offers when a chart is
// saved are named alike.

#include <string>
#include <string_view>

#include "data/store.h"

namespace velmora {

// "XWHL-3-ILS_16L": letters, digits, "-", "_" and "." kept, anything else "_"; row -1 gives
// the code alone (the airport's sheet).
std::string KitFileStem(std::string_view code, int row, std::string_view approach);

// The airport and, once picked, the approach's row and text: "XWHL-0-ILS_16L"; no airport
// gives "chart".
std::string SuggestedChartName(const Store& store);

}  // namespace velmora
