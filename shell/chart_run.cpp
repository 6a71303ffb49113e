#include "shell/chart_run.h"

#include <cctype>
#include <charconv>
#include <fstream>
#include <memory>
#include <ostream>

#include "data/store.h"
#include "data/text.h"
#include "geometry/svg_canvas.h"
#include "geometry/trace_canvas.h"
#include "shell/form.h"

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

std::string JsonControl(std::string_view name, const Control& c) {
  return "\"" + std::string(name) + "\": {\"text\": " + JsonString(c.text) +
         ", \"enabled\": " + (c.enabled ? "true" : "false") + "}";
}

std::string JsonCombo(std::string_view name, const ComboBox& c) {
  std::string rows;
  for (const std::string& row : c.rows) rows += (rows.empty() ? "" : ", ") + JsonString(row);
  return "\"" + std::string(name) + "\": {\"text\": " + JsonString(c.text) +
         ", \"enabled\": " + (c.enabled ? "true" : "false") + ", \"rows\": [" + rows + "]}";
}

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
         ", \"AppSelected\": " + (s.AppSelected ? "true" : "false") + "}\n";
}

// An output stream for "-" or a file; null with a message when the file can't be made.
class Sink {
 public:
  bool open(const std::string& path, std::ostream& stdOut, std::ostream& err) {
    if (path.empty()) return true;
    if (path == "-") {
      stream_ = &stdOut;
      return true;
    }
    file_ = std::make_unique<std::ofstream>(path, std::ios::binary);
    if (!*file_) {
      err << "velmora-chart: cannot write " << path << "\n";
      return false;
    }
    stream_ = file_.get();
    return true;
  }
  std::ostream* get() const { return stream_; }

 private:
  std::unique_ptr<std::ofstream> file_;
  std::ostream* stream_ = nullptr;
};

bool ParseNumberArg(std::string_view text, double& value) {
  const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && ptr == text.data() + text.size();
}

struct Step {
  std::string verb;
  std::string arg;
};

Step SplitStep(const std::string& step) {
  const std::size_t colon = step.find(':');
  if (colon == std::string::npos) return {step, {}};
  return {step.substr(0, colon), step.substr(colon + 1)};
}

// Runs one step; 0, or 2 for a step that can't be run.
int RunStep(ArptForm& form, const std::string& step, std::ostream& err) {
  const Step s = SplitStep(step);
  const Controls& c = form.controls();
  const auto disabled = [&](std::string_view control) {
    err << "velmora-chart: " << step << ": " << control << " is disabled; nothing happens\n";
    return 0;
  };
  if (s.verb == "type" && step.find(':') != std::string::npos) {
    form.setSearchText(Utf8ToCp1252(s.arg));
  } else if (step == "search") {
    form.cmdSearch_Click();
  } else if (step == "load") {
    if (!c.cmdArpt.enabled) return disabled("cmdArpt");
    form.cmdArpt_Click();
  } else if (s.verb == "pick") {
    int row = -1;
    const auto [ptr, ec] = std::from_chars(s.arg.data(), s.arg.data() + s.arg.size(), row);
    if (ec != std::errc() || ptr != s.arg.data() + s.arg.size() || row < 0 ||
        row >= static_cast<int>(c.cmbAPP.rows.size())) {
      err << "velmora-chart: " << step << ": cmbAPP has no row " << s.arg << " (it has "
          << c.cmbAPP.rows.size() << " rows)\n";
      return 2;
    }
    if (!c.cmbAPP.enabled) return disabled("cmbAPP");
    form.cmbAPP_Click(row);
  } else if (step == "plus") {
    if (!c.cmdPlus.enabled) return disabled("cmdPlus");
    form.cmdPlus_Click();
  } else if (step == "minus") {
    if (!c.cmdMinus.enabled) return disabled("cmdMinus");
    form.cmdMinus_Click();
  } else if (step == "reset") {
    if (!c.cmdZoom.enabled) return disabled("cmdZoom");
    form.cmdZoom_Click();
  } else if (s.verb == "click") {
    const std::size_t comma = s.arg.find(',');
    double x = 0, y = 0;
    if (comma == std::string::npos || !ParseNumberArg(s.arg.substr(0, comma), x) ||
        !ParseNumberArg(s.arg.substr(comma + 1), y)) {
      err << "velmora-chart: " << step << ": a click needs X,Y in twips, as click:7000,5000\n";
      return 2;
    }
    form.picArpt_MouseDown(1, 0, x, y);
  } else {
    err << "velmora-chart: unknown step '" << step << "'\n" << ChartUsage();
    return 2;
  }
  return 0;
}

}  // namespace

std::string PictureExtension(const std::filesystem::path& path) {
  std::string ext = path.extension().string();
  for (char& ch : ext) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  return ext;
}

std::string ChartUsage() {
  return "usage: velmora-chart [--data DIR] [--trace FILE] [--state FILE] [--out FILE]...\n"
         "                     [--scale F] [--airport CODE [--approach TEXT]] STEP...\n"
         "steps: type:TEXT search load pick:N approach:TEXT plus minus reset click:X,Y\n"
         "FILE '-' is standard output; --out writes .png, .svg or .pdf\n";
}

std::optional<ChartOptions> ParseChartArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& exeDir, std::ostream& err) {
  ChartOptions o;
  o.dataDir = exeDir;
  std::string airport, approach;
  std::vector<std::string> steps;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool takesValue = a == "--data" || a == "--trace" || a == "--state" || a == "--out" ||
                            a == "--scale" || a == "--airport" || a == "--approach";
    if (!takesValue) {
      if (a.starts_with("--")) {
        err << "velmora-chart: unknown option " << a << "\n" << ChartUsage();
        return std::nullopt;
      }
      steps.push_back(a);
      continue;
    }
    if (i + 1 == args.size()) {
      err << "velmora-chart: " << a << " needs a value\n" << ChartUsage();
      return std::nullopt;
    }
    const std::string& v = args[++i];
    if (a == "--data") o.dataDir = v;
    if (a == "--trace") o.tracePath = v;
    if (a == "--state") o.statePath = v;
    if (a == "--out") o.outPaths.push_back(v);
    if (a == "--airport") airport = v;
    if (a == "--approach") approach = v;
    if (a == "--scale" && (!ParseNumberArg(v, o.scale) || !(o.scale > 0) || o.scale > 16)) {
      err << "velmora-chart: --scale takes a number above 0 and up to 16\n";
      return std::nullopt;
    }
  }
  if (!approach.empty() && airport.empty()) {
    err << "velmora-chart: --approach needs --airport\n";
    return std::nullopt;
  }
  if (!airport.empty()) {
    o.steps = {"type:" + airport, "search", "load"};
    // The row is found by its text once the list is filled.
    if (!approach.empty()) o.steps.push_back("approach:" + approach);
  }
  o.steps.insert(o.steps.end(), steps.begin(), steps.end());
  return o;
}

bool WriteSvg(const RecordingCanvas& picture, const std::filesystem::path& path,
              std::ostream& err) {
  SvgCanvas svg;
  picture.replay(svg);
  std::ofstream file(path, std::ios::binary);
  file << svg.document();
  if (!file) {
    err << "velmora-chart: cannot write " << path.string() << "\n";
    return false;
  }
  return true;
}

int RunChart(const ChartOptions& options, const PictureWriter& writePicture, std::ostream& out,
             std::ostream& err) {
  Sink traceSink, stateSink;
  if (!traceSink.open(options.tracePath, out, err) ||
      !stateSink.open(options.statePath, out, err)) {
    return 1;
  }
  std::ostream* trace = traceSink.get();
  std::ostream* state = stateSink.get();

  std::unique_ptr<TraceCanvas> tracer;
  RecordingCanvas picture;
  TeeCanvas canvas;
  canvas.add(picture);
  if (trace != nullptr) {
    tracer = std::make_unique<TraceCanvas>(*trace);
    canvas.add(*tracer);
  }
  auto store = std::make_unique<Store>();
  ArptForm form(*store, canvas, options.dataDir);
  form.onCaption = [&](const std::string& text) {
    if (tracer) tracer->caption(text);
  };

  if (tracer) tracer->step(0, "start");
  form.Form_Load("");
  if (state != nullptr) *state << StateLine(0, form);

  int step = 0;
  for (const std::string& text : options.steps) {
    ++step;
    if (tracer) tracer->step(step, text);
    int status = 0;
    if (text.starts_with("approach:")) {
      const std::string wanted = text.substr(9);
      const auto& rows = form.controls().cmbAPP.rows;
      std::size_t row = 0;
      while (row < rows.size() && Cp1252ToUtf8(rows[row]) != wanted) ++row;
      if (row == rows.size()) {
        err << "velmora-chart: no approach '" << wanted << "'; the airport has:";
        for (const auto& r : rows) err << " '" << Cp1252ToUtf8(r) << "'";
        err << (rows.empty() ? " none\n" : "\n");
        return 2;
      }
      status = RunStep(form, "pick:" + std::to_string(row), err);
    } else {
      status = RunStep(form, text, err);
    }
    if (status != 0) return status;
    if (state != nullptr) *state << StateLine(step, form);
  }
  if (trace != nullptr) trace->flush();
  if (state != nullptr) state->flush();

  int result = 0;
  for (const std::string& path : options.outPaths) {
    const bool ok = PictureExtension(path) == ".svg"
                        ? WriteSvg(picture, path, err)
                        : writePicture(picture, path, options.scale, err);
    if (!ok) result = 1;
  }
  return result;
}

}  // namespace velmora
