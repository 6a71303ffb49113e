#include "shell/chart_name.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

// A kit's page and a saved chart share one name: airport, row and approach, with every
// character a file system could refuse made "_", cut well below any limit on a name.
TEST(ChartName, KitFileStems) {
  const struct {
    std::string code;
    int row;
    std::string approach, stem;
  } cases[] = {{"KSEA", -1, "ignored", "KSEA"},
               {"KSEA", 0, "ILS 16L", "KSEA-0-ILS_16L"},
               {"X P B N", 12, "RNAV/GPS: Y?", "X_P_B_N-12-RNAV_GPS__Y_"},
               {"XAMO", 3, "VOR \xc3\xa9", "XAMO-3-VOR___"},
               {"XAMO", 1, "../..", "XAMO-1-.._.."},
               {"XAMO", 1, std::string(300, 'A'), "XAMO-1-" + std::string(113, 'A')}};
  for (const auto& k : cases) EXPECT_EQ(KitFileStem(k.code, k.row, k.approach), k.stem) << k.code;
}

// The name offered when saving: the picked approach's row text, or the airport alone.
TEST(ChartName, SuggestedForTheChartShown) {
  const struct {
    std::string ident, type, runway, designator;
    bool picked;
    int slot;
    std::string want;
  } cases[] = {
      {"", "ILS", "16", "LEFT", true, 0, "chart"},
      {"XWHL", "ILS", "16", "LEFT", false, 0, "XWHL"},
      {"XWHL", "ILS", "16", "LEFT", true, 0, "XWHL-0-ILS_16L"},
      {"XWHL", "VOR", "04", "NONE", true, 0, "XWHL-0-VOR_04"},
      {"XWHL", "ILS", "16", "LEFT", true, 51, "XWHL"},  // a slot beyond the table
  };
  for (const auto& c : cases) {
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
