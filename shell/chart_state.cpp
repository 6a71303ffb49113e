#include "shell/chart_state.h"

#include "data/text.h"

namespace velmora {
namespace {

std::string JsonBool(bool value) {
  return value ? "true" : "false";
}

// "NAME": {"text": ..., "enabled": ...; the caller closes the brace.
std::string JsonControlFields(std::string_view name, const std::string& text, bool enabled) {
  return "\"" + std::string(name) + "\": {\"text\": " + JsonString(text) +
         ", \"enabled\": " + JsonBool(enabled);
}

std::string JsonControl(std::string_view name, const Control& c) {
  return JsonControlFields(name, c.text, c.enabled) + "}";
}

std::string JsonCombo(std::string_view name, const ComboBox& c) {
  std::string rows;
  for (const std::string& row : c.rows) rows += (rows.empty() ? "" : ", ") + JsonString(row);
  return JsonControlFields(name, c.text, c.enabled) + ", \"rows\": [" + rows + "]}";
}

}  // namespace

std::string StateLine(int step, const ArptForm& form) {
  const Controls& c = form.controls();
  const View& v = form.view();
  const Store& s = form.store();
  return "{\"step\": " + std::to_string(step) + ", \"caption\": " + JsonString(c.caption) + ", " +
         JsonControl("txtSearch", c.txtSearch) + ", " + JsonControl("cmdSearch", c.cmdSearch) +
         ", " + JsonControl("cmdExit", c.cmdExit) + ", " + JsonControl("cmdArpt", c.cmdArpt) +
         ", " + JsonControl("cmdPlus", c.cmdPlus) + ", " + JsonControl("cmdMinus", c.cmdMinus) +
         ", " + JsonControl("cmdZoom", c.cmdZoom) + ", " + JsonCombo("cmbAPP", c.cmbAPP) + ", " +
         JsonCombo("cmbTerm", c.cmbTerm) + ", \"Zoom\": " + std::to_string(v.Zoom) +
         ", \"PanX\": " + std::to_string(v.PanX) + ", \"PanY\": " + std::to_string(v.PanY) +
         ", \"SelApp\": " + std::to_string(s.SelApp) +
         ", \"AppSelected\": " + JsonBool(s.AppSelected) + "}\n";
}

}  // namespace velmora
