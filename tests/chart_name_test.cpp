#include "shell/chart_name.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(ChartName, AirportAndPickedApproach) {
  struct Case {
    std::string ident, type, runway, designator;
    bool picked;
    int slot;
    std::string want;
  };
  const Case cases[] = {
      {"", "ILS", "16", "LEFT", true, 0, "chart"},
      {"XWHL", "ILS", "16", "LEFT", false, 0, "XWHL"},
      {"XWHL", "ILS", "16", "LEFT", true, 0, "XWHL-0-ILS_16L"},
      {"XWHL", "VOR", "04", "NONE", true, 0, "XWHL-0-VOR_04"},
      {"X/H", "RNAV", "2*", "", true, 0, "X_H-0-RNAV_2_"},
      {"XWHL", "ILS", "16", "LEFT", true, 51, "XWHL"},  // a slot beyond the table
  };
  for (const Case& c : cases) {
    Store store;
    store.ArptIdent = c.ident;
    store.Approach[0] = {c.type, c.runway, c.designator};
    store.AppSelected = c.picked;
    store.SelApp = c.slot;
    EXPECT_EQ(SuggestedChartName(store), c.want) << c.ident << " " << c.type;
  }
}

}  // namespace
}  // namespace velmora::test
