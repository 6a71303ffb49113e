#include "shell/chart_name.h"

#include "shell/chart_run.h"
#include "shell/form.h"

namespace velmora {

std::string SuggestedChartName(const Store& store) {
  if (!store.hasAirport()) return "chart";
  const bool picked = store.AppSelected && store.Approach.has(store.SelApp);
  // Named as velmora-chart names the pages of a kit.
  return KitFileStem(store.ArptIdent, picked ? store.SelApp : -1,
                     picked ? ApproachRowText(store.Approach[store.SelApp]) : "");
}

}  // namespace velmora
