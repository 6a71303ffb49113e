#pragma once
// The controls after a step as one JSON line, as velmora-chart's --state writes them.

#include <string>

#include "shell/form.h"

namespace velmora {

// {"step": N, "caption": ..., every control, Zoom, PanX, PanY, SelApp, AppSelected}; texts
// in UTF-8.
std::string StateLine(int step, const ArptForm& form);

}  // namespace velmora
