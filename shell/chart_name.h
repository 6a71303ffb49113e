#pragma once
// The file name the window offers when a chart is saved.

#include <string>

#include "data/store.h"

namespace velmora {

// The airport and, once picked, the approach: "XWHL-ILS_16L". Characters that some file
// systems refuse (and dots) become "_"; no airport gives "chart".
std::string SuggestedChartName(const Store& store);

}  // namespace velmora
