#pragma once
// The file name the window offers when a chart is saved.

#include <string>

#include "data/store.h"

namespace velmora {

// The airport and, once picked, the approach's row and text: "XWHL-0-ILS_16L"; no airport
// gives "chart".
std::string SuggestedChartName(const Store& store);

}  // namespace velmora
