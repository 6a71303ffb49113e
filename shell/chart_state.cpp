#include "shell/chart_state.h"

#include "data/text.h"

namespace velmora {
namespace {

std::string JsonString(std::string_view cp1252) {
  std::string out = "\"";
  for (char c : Cp1252ToUtf8(cp1252)) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          const char* hex = "0123456789abcdef";
          out += "\\u00";
          out += hex[(c >> 4) & 0xF];
          out += hex[c & 0xF];
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

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
