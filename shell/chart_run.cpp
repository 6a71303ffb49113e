#include "shell/chart_run.h"

#include <cctype>
#include <charconv>
#include <fstream>
#include <memory>
#include <ostream>
#include <random>

#include "charts/fit.h"
#include "data/platform.h"
#include "data/store.h"
#include "data/text.h"
#include "geometry/fix.h"
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

// An output stream for "-" or a file, written to a temporary file that takes the file's
// place on commit(); null with a message when the file can't be made.
class Sink {
 public:
  ~Sink() { discard(); }
  bool open(const std::string& path, std::ostream& stdOut, std::ostream& err) {
    if (path.empty()) return true;
    if (path == "-") {
      stream_ = &stdOut;
      return true;
    }
    path_ = path;
    temp_ = TempPath(path_);
    file_ = std::make_unique<std::ofstream>(temp_, std::ios::binary);
    if (!*file_) {
      err << "velmora-chart: cannot write " << path << "\n";
      discard();
      return false;
    }
    stream_ = file_.get();
    return true;
  }
  std::ostream* get() const { return stream_; }
  bool commit(std::ostream& err) {
    if (!file_) return true;
    file_->close();
    if (!*file_ || !RenameOver(temp_, path_)) {
      err << "velmora-chart: cannot write " << path_.string() << "\n";
      discard();
      return false;
    }
    file_.reset();
    return true;
  }

 private:
  void discard() {
    if (!file_) return;
    file_.reset();
    std::error_code ec;
    std::filesystem::remove(temp_, ec);
  }
  std::filesystem::path path_, temp_;
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
  } else if (step == "fit") {
    if (!c.cmdPlus.enabled) return disabled("cmdPlus");
    if (const auto v = FitApproach(form.store())) {
      form.showView(v->Zoom, v->PanX, v->PanY);
    } else {
      err << "velmora-chart: fit: no approach with a known fix is shown; the view stays\n";
    }
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

std::filesystem::path TempPath(const std::filesystem::path& path) {
  std::random_device random;
  // Built as a path, so a name outside the narrow character set stays whole.
  std::filesystem::path name = ".";
  name += path.stem();
  name += ".part" + std::to_string(random());
  name += path.extension();
  return path.parent_path() / name;
}

std::string PictureExtension(const std::filesystem::path& path) {
  std::string ext = path.extension().string();
  for (char& ch : ext) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  return ext;
}

std::string ChartUsage() {
  return "usage: velmora-chart [--data DIR] [--trace FILE] [--state FILE] [--out FILE]...\n"
         "                     [--scale F] [--fit] [--airport CODE [--approach TEXT]] STEP...\n"
         "       velmora-chart --airport CODE[,CODE...] --all-approaches --out kit.pdf|DIR/\n"
         "                     [--page a4|letter|a5] [--format png|svg] [--fit]\n"
         "       velmora-chart --help | --version\n"
         "steps: type:TEXT search load pick:N approach:TEXT plus minus reset click:X,Y fit\n"
         "FILE '-' is standard output; --out writes .png, .svg or .pdf\n"
         "--all-approaches: each airport's sheet, then one page per approach, in list order\n"
         "--fit: each approach at the closest zoom that holds all its fixes\n"
         "exit status: 0 done, 1 airport not found or an output not written,\n"
         "             2 bad command line or a step that can't be run\n";
}

std::string ChartVersion() {
  return "velmora-chart " VELMORA_VERSION "\n";
}

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

std::optional<ChartOptions> ParseChartArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& exeDir, std::ostream& err) {
  ChartOptions o;
  o.dataDir = exeDir;
  std::string airport, approach;
  std::vector<std::string> steps;
  const auto fail = [&](const std::string& message) {
    err << "velmora-chart: " << message << "\n" << ChartUsage();
    return std::nullopt;
  };
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool takesValue = a == "--data" || a == "--trace" || a == "--state" || a == "--out" ||
                            a == "--scale" || a == "--airport" || a == "--approach" ||
                            a == "--page" || a == "--format";
    if (a == "--help" || a == "-h") {
      o.help = true;
      return o;
    }
    if (a == "--version") {
      o.version = true;
      return o;
    }
    if (a == "--all-approaches" || a == "--fit") {
      (a == "--fit" ? o.fit : o.allApproaches) = true;
      continue;
    }
    if (!takesValue) {
      if (a.starts_with("--")) return fail("unknown option " + a);
      steps.push_back(a);
      continue;
    }
    if (i + 1 == args.size()) return fail(a + " needs a value");
    const std::string& v = args[++i];
    if (a == "--data") o.dataDir = PathFromUtf8(v);
    if (a == "--trace") o.tracePath = v;
    if (a == "--state") o.statePath = v;
    if (a == "--out") o.outPaths.push_back(v);
    if (a == "--airport") airport = v;
    if (a == "--approach") approach = v;
    if (a == "--page") {
      if (v != "a4" && v != "letter" && v != "a5") return fail("--page takes a4, letter or a5");
      o.page = v;
    }
    if (a == "--format") {
      if (v != "png" && v != "svg") return fail("--format takes png or svg");
      o.format = v;
    }
    if (a == "--scale" && (!ParseNumberArg(v, o.scale) || !(o.scale > 0) || o.scale > 16)) {
      err << "velmora-chart: --scale takes a number above 0 and up to 16\n";
      return std::nullopt;
    }
  }
  if (airport.empty() && steps.empty()) return fail("nothing to do: give --airport or steps");
  if (!approach.empty() && airport.empty()) {
    err << "velmora-chart: --approach needs --airport\n";
    return std::nullopt;
  }
  for (std::size_t from = 0; !airport.empty();) {
    const std::size_t comma = airport.find(',', from);
    o.airports.push_back(airport.substr(from, comma - from));
    if (o.airports.back().empty()) return fail("--airport: an empty code in '" + airport + "'");
    if (comma == std::string::npos) break;
    from = comma + 1;
  }
  if (o.allApproaches) {
    if (o.airports.empty()) return fail("--all-approaches needs --airport");
    if (!approach.empty() || !steps.empty()) {
      return fail("--all-approaches takes no --approach and no steps");
    }
    if (o.outPaths.size() != 1) return fail("--all-approaches needs one --out, a .pdf or DIR/");
    return o;
  }
  if (o.airports.size() > 1) return fail("several airports make a kit: add --all-approaches");
  if (!airport.empty()) {
    o.steps = {"type:" + airport, "search", "load"};
    // The row is found by its text once the list is filled.
    if (!approach.empty()) o.steps.push_back("approach:" + approach);
    if (!approach.empty() && o.fit) o.steps.push_back("fit");
  }
  o.steps.insert(o.steps.end(), steps.begin(), steps.end());
  return o;
}

bool WriteWhole(const std::filesystem::path& path,
                const std::function<bool(const std::filesystem::path& temp)>& write,
                std::ostream& err) {
  const std::filesystem::path temp = TempPath(path);
  std::error_code ec;
  const bool ok = write(temp) && RenameOver(temp, path);
  if (!ok) {
    std::filesystem::remove(temp, ec);
    err << "velmora-chart: " << path.string() << " was not written\n";
  }
  return ok;
}

bool WriteSvg(const RecordingCanvas& picture, const std::filesystem::path& path,
              std::ostream& err) {
  SvgCanvas svg;
  picture.replay(svg);
  std::ofstream file(path, std::ios::binary);
  file << svg.document();
  file.close();
  if (!file) {
    err << "velmora-chart: cannot write " << path.string() << "\n";
    return false;
  }
  return true;
}

namespace {

bool IsFolderOut(const std::string& path) {
  return path.ends_with('/') || std::filesystem::is_directory(path);
}

// Before any work: a folder that isn't there can't take the outputs.
bool OutputFoldersExist(const ChartOptions& o, std::ostream& err) {
  for (const std::string& out : o.outPaths) {
    std::filesystem::path folder = std::filesystem::path(out).parent_path();
    if (o.allApproaches && IsFolderOut(out)) folder = out;
    if (!folder.empty() && !std::filesystem::is_directory(folder)) {
      err << "velmora-chart: the folder " << folder.string()
          << " does not exist; nothing written\n";
      return false;
    }
  }
  return true;
}

// Writes each page as its own picture into a folder.
class FolderKit final : public KitDocument {
 public:
  FolderKit(std::filesystem::path folder, std::string ext, double scale, PictureWriter write)
      : folder_(std::move(folder)), ext_(std::move(ext)), scale_(scale), write_(std::move(write)) {}
  bool add(const KitPage& page, std::ostream& err) override {
    const auto path = folder_ / (KitFileStem(page.code, page.row, page.approach) + ext_);
    return WriteWhole(
        path,
        [&](const std::filesystem::path& temp) {
          return ext_ == ".svg" ? WriteSvg(*page.picture, temp, err)
                                : write_(*page.picture, temp, scale_, err);
        },
        err);
  }
  bool finish(const std::filesystem::path&, std::ostream&) override { return true; }

 private:
  std::filesystem::path folder_;
  std::string ext_;
  double scale_;
  PictureWriter write_;
};

// The form with its canvas, trace and state lines: what one run of velmora-chart drives.
class Session {
 public:
  Session(const ChartOptions& o, std::ostream* trace, std::ostream* state)
      : state_(state), store_(std::make_unique<Store>()) {
    canvas_.add(picture_);
    if (trace != nullptr) {
      tracer_ = std::make_unique<TraceCanvas>(*trace);
      canvas_.add(*tracer_);
    }
    form_ = std::make_unique<ArptForm>(*store_, canvas_, o.dataDir);
    form_->onCaption = [this](const std::string& text) {
      if (tracer_) tracer_->caption(text);
    };
    if (tracer_) tracer_->step(0, "start");
    form_->Form_Load("");
    if (state_ != nullptr) *state_ << StateLine(0, *form_);
  }

  // 0, or the exit status of a step that can't be run.
  int run(const std::string& text, std::ostream& err) {
    ++step_;
    if (tracer_) tracer_->step(step_, text);
    int status = 0;
    if (text.starts_with("approach:")) {
      const std::string wanted = text.substr(9);
      const auto& rows = form_->controls().cmbAPP.rows;
      std::size_t row = 0;
      while (row < rows.size() && Cp1252ToUtf8(rows[row]) != wanted) ++row;
      if (row == rows.size()) {
        err << "velmora-chart: no approach '" << wanted << "'; the airport has:";
        for (const auto& r : rows) err << " '" << Cp1252ToUtf8(r) << "'";
        err << (rows.empty() ? " none\n" : "\n");
        return 2;
      }
      status = RunStep(*form_, "pick:" + std::to_string(row), err);
    } else {
      status = RunStep(*form_, text, err);
    }
    if (status == 0 && state_ != nullptr) *state_ << StateLine(step_, *form_);
    return status;
  }

  // type, search and load of `code`; 1 with the window's caption when it has no chart.
  int load(const std::string& code, std::ostream& err) {
    for (const std::string& step : {"type:" + code, std::string("search"), std::string("load")}) {
      if (step == "load" && !form_->controls().cmdArpt.enabled) break;
      if (const int status = run(step, err)) return status;
    }
    if (form_->store().hasAirport()) return 0;
    err << "velmora-chart: " << Cp1252ToUtf8(form_->controls().caption) << "\n";
    return 1;
  }

  const ArptForm& form() const { return *form_; }
  const RecordingCanvas& picture() const { return picture_; }

 private:
  std::ostream* state_;
  std::unique_ptr<TraceCanvas> tracer_;
  RecordingCanvas picture_;
  TeeCanvas canvas_;
  std::unique_ptr<Store> store_;
  std::unique_ptr<ArptForm> form_;
  int step_ = 0;
};

// The first fix of the shown approach, when no table holds it; empty otherwise.
std::string LostFirstFix(const Store& s) {
  for (std::int32_t slot = 0; slot <= s.LegLast && s.Leg.has(slot); ++slot) {
    const LegRow& leg = s.Leg[slot];
    if (leg.app != s.SelApp || leg.trans != kApproachLeg) continue;
    return FixGridX(s, leg.fixIdent) == 0 ? "'" + Cp1252ToUtf8(leg.fixIdent) + "'" : "";
  }
  return {};
}

int RunKit(const ChartOptions& o, Session& session, KitDocument& kit, std::ostream& err) {
  int pages = 0, known = 0;
  const auto add = [&](const KitPage& page) {
    ++pages;
    if (o.progress && known > 4) {
      err << "\rvelmora-chart: page " << pages << " of " << known << " (" << page.title << ")"
          << std::string(8, ' ') << std::flush;
    }
    return kit.add(page, err);
  };
  for (const std::string& code : o.airports) {
    if (const int status = session.load(code, err)) return status;
    const std::vector<std::string> rows = session.form().controls().cmbAPP.rows;
    known += 1 + static_cast<int>(rows.size());
    if (!add({code, -1, "", code, &session.picture()})) return 1;
    if (rows.empty()) err << "velmora-chart: " << code << " has no approaches: its sheet alone\n";
    for (std::size_t row = 0; row < rows.size(); ++row) {
      if (const int status = session.run("pick:" + std::to_string(row), err)) return status;
      const std::string approach = Cp1252ToUtf8(rows[row]);
      const std::string title = code + " " + approach;
      if (const std::string lost = LostFirstFix(session.form().store()); !lost.empty()) {
        err << "velmora-chart: " << title << ": first fix " << lost
            << " not found; the page carries the warning\n";
      }
      if (o.fit) {
        if (const int status = session.run("fit", err)) return status;
      }
      if (!add({code, static_cast<int>(row), approach, title, &session.picture()})) return 1;
    }
  }
  if (o.progress && known > 4) err << "\n";
  return 0;
}

}  // namespace

int RunChart(const ChartOptions& options, const PictureWriter& writePicture,
             const KitMaker& makeKit, std::ostream& out, std::ostream& err) {
  if (options.help || options.version) {
    out << (options.help ? ChartUsage() : ChartVersion());
    return 0;
  }
  if (!OutputFoldersExist(options, err)) return 1;
  Sink traceSink, stateSink;
  if (!traceSink.open(options.tracePath, out, err) ||
      !stateSink.open(options.statePath, out, err)) {
    return 1;
  }
  Session session(options, traceSink.get(), stateSink.get());
  const auto finish = [&](int status) {
    // The trace and states tell how far a failed run came; they are kept whole either way.
    const bool written = traceSink.commit(err) & stateSink.commit(err);
    return status == 0 && !written ? 1 : status;
  };

  if (options.allApproaches) {
    const std::string& path = options.outPaths.front();
    std::unique_ptr<KitDocument> kit;
    if (IsFolderOut(path)) {
      kit = std::make_unique<FolderKit>(path, "." + options.format, options.scale, writePicture);
    } else if (makeKit) {
      kit = makeKit(path, options, err);
    } else {
      err << "velmora-chart: " << path << ": a kit is a .pdf or a folder\n";
    }
    if (!kit) return finish(2);
    const int status = RunKit(options, session, *kit, err);
    if (status != 0) return finish(status);
    return finish(kit->finish(path, err) ? 0 : 1);
  }

  const std::size_t airportSteps = options.airports.empty() ? 0 : 3;
  for (std::size_t i = 0; i < options.steps.size(); ++i) {
    if (i == 0 && airportSteps > 0) {
      if (const int status = session.load(options.airports.front(), err)) return finish(status);
      i = airportSteps - 1;
      continue;
    }
    if (const int status = session.run(options.steps[i], err)) return finish(status);
  }
  int result = finish(0);
  for (const std::string& path : options.outPaths) {
    const bool ok = WriteWhole(
        path,
        [&](const std::filesystem::path& temp) {
          return PictureExtension(path) == ".svg"
                     ? WriteSvg(session.picture(), temp, err)
                     : writePicture(session.picture(), temp, options.scale, err);
        },
        err);
    if (!ok) result = 1;
  }
  return result;
}

int RunChart(const ChartOptions& options, const PictureWriter& writePicture, std::ostream& out,
             std::ostream& err) {
  return RunChart(options, writePicture, nullptr, out, err);
}

}  // namespace velmora
