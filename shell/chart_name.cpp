#include "shell/chart_name.h"

#include "shell/form.h"

namespace velmora {

std::string KitFileStem(std::string_view code, int row, std::string_view approach) {
  std::string stem = std::string(code);
  if (row >= 0) stem += "-" + std::to_string(row) + "-" + std::string(approach);
  for (char& ch : stem) {
    const bool keep = (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') ||
                      (ch >= '0' && ch <= '9') || ch == '-' || ch == '_' || ch == '.';
    if (!keep) ch = '_';
  }
  // Well below any file system's limit on a name.
  if (stem.size() > 120) stem.resize(120);
  return stem;
}

std::string SuggestedChartName(const Store& store) {
  if (!store.hasAirport()) return "chart";
  const bool picked = store.AppSelected && store.Approach.has(store.SelApp);
  // Named as velmora-chart names the pages of a kit.
  return KitFileStem(store.ArptIdent, picked ? store.SelApp : -1,
                     picked ? ApproachRowText(store.Approach[store.SelApp]) : "");
}

}  // namespace velmora
