#include "shell/chart_name.h"

#include "shell/form.h"

namespace velmora {

std::string SuggestedChartName(const Store& store) {
  if (!store.hasAirport()) return "chart";
  std::string name = store.ArptIdent;
  if (store.AppSelected && store.Approach.has(store.SelApp)) {
    name += "-" + ApproachRowText(store.Approach[store.SelApp]);
  }
  for (char& c : name) {
    const bool plain =
        (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    if (!plain) c = '_';
  }
  return name;
}

}  // namespace velmora
