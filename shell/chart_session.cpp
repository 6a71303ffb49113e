#include "shell/chart_session.h"

#include <ostream>

#include "charts/fit.h"
#include "data/text.h"
#include "shell/chart_state.h"

namespace velmora {
namespace {

// The steps that press a button, which velmora-chart presses only when it is enabled.
struct ButtonStep {
  StepKind kind;
  std::string_view name;
  Control Controls::*control;
  void (ArptForm::*click)();
};

constexpr ButtonStep kButtonSteps[] = {
    {StepKind::kLoad, "cmdArpt", &Controls::cmdArpt, &ArptForm::cmdArpt_Click},
    {StepKind::kPlus, "cmdPlus", &Controls::cmdPlus, &ArptForm::cmdPlus_Click},
    {StepKind::kMinus, "cmdMinus", &Controls::cmdMinus, &ArptForm::cmdMinus_Click},
    {StepKind::kReset, "cmdZoom", &Controls::cmdZoom, &ArptForm::cmdZoom_Click},
};

// 0: a step aimed at a disabled control does nothing.
int Disabled(const ChartStep& step, std::string_view control, std::ostream& err) {
  err << "velmora-chart: " << step.text << ": " << control << " is disabled; nothing happens\n";
  return 0;
}

}  // namespace

ChartSession::ChartSession(const ChartOptions& o, std::ostream* trace, std::ostream* state)
    : state_(state), store_(std::make_unique<Store>()) {
  canvas_.add(picture_);
  if (trace != nullptr) {
    tracer_ = std::make_unique<TraceCanvas>(*trace);
    canvas_.add(*tracer_);
  }
  form_ = std::make_unique<ArptForm>(*store_, canvas_, o.dataDir, &profile_);
  form_->onCaption = [this](const std::string& text) {
    if (tracer_) tracer_->caption(text);
  };
  if (tracer_) tracer_->step(0, "start");
  form_->Form_Load("");
  if (state_ != nullptr) *state_ << StateLine(0, *form_);
}

int ChartSession::run(const ChartStep& step, std::ostream& err) {
  ++step_;
  if (tracer_) tracer_->step(step_, step.text);
  const int status = dispatch(step, err);
  if (status == 0 && state_ != nullptr) *state_ << StateLine(step_, *form_);
  return status;
}

int ChartSession::load(const std::string& code, std::ostream& err) {
  for (const std::string& text : {"type:" + code, std::string("search"), std::string("load")}) {
    const ChartStep step = ParseStep(text);
    if (step.kind == StepKind::kLoad && !form_->controls().cmdArpt.enabled) break;
    if (const int status = run(step, err)) return status;
  }
  if (form_->store().hasAirport()) return 0;
  err << "velmora-chart: " << Cp1252ToUtf8(form_->controls().caption) << "\n";
  return 1;
}

int ChartSession::dispatch(const ChartStep& step, std::ostream& err) {
  for (const ButtonStep& b : kButtonSteps) {
    if (b.kind != step.kind) continue;
    if (!(form_->controls().*b.control).enabled) return Disabled(step, b.name, err);
    ((*form_).*b.click)();
    return 0;
  }
  switch (step.kind) {
    case StepKind::kType:
      form_->setSearchText(Utf8ToCp1252(step.value));
      return 0;
    case StepKind::kSearch:
      form_->cmdSearch_Click();
      return 0;
    case StepKind::kPick:
      return pick(step, err);
    case StepKind::kApproach:
      return pickApproach(step, err);
    case StepKind::kFit:
      return fit(step, err);
    case StepKind::kClick:
      return click(step, err);
    default:
      err << "velmora-chart: unknown step '" << step.text << "'\n" << ChartUsage();
      return 2;
  }
}

int ChartSession::pick(const ChartStep& step, std::ostream& err) {
  const ComboBox& box = form_->controls().cmbAPP;
  int row = -1;
  if (!ParseArgNumber(step.value, row) || row < 0 || row >= static_cast<int>(box.rows.size())) {
    err << "velmora-chart: " << step.text << ": cmbAPP has no row " << step.value << " (it has "
        << box.rows.size() << " rows)\n";
    return 2;
  }
  if (!box.enabled) return Disabled(step, "cmbAPP", err);
  form_->cmbAPP_Click(row);
  return 0;
}

// The row with the text given, picked as pick:N would pick it.
int ChartSession::pickApproach(const ChartStep& step, std::ostream& err) {
  const auto& rows = form_->controls().cmbAPP.rows;
  std::size_t row = 0;
  while (row < rows.size() && Cp1252ToUtf8(rows[row]) != step.value) ++row;
  if (row == rows.size()) {
    err << "velmora-chart: no approach '" << step.value << "'; the airport has:";
    for (const auto& r : rows) err << " '" << Cp1252ToUtf8(r) << "'";
    err << (rows.empty() ? " none\n" : "\n");
    return 2;
  }
  return pick(ParseStep("pick:" + std::to_string(row)), err);
}

int ChartSession::fit(const ChartStep& step, std::ostream& err) {
  if (!form_->controls().cmdPlus.enabled) return Disabled(step, "cmdPlus", err);
  if (const auto v = FitApproach(form_->store())) {
    form_->showView(v->Zoom, v->PanX, v->PanY);
  } else {
    err << "velmora-chart: fit: no approach with a known fix is shown; the view stays\n";
  }
  return 0;
}

int ChartSession::click(const ChartStep& step, std::ostream& err) {
  const std::string_view at = step.value;
  const std::size_t comma = at.find(',');
  double x = 0, y = 0;
  if (comma == std::string_view::npos || !ParseArgNumber(at.substr(0, comma), x) ||
      !ParseArgNumber(at.substr(comma + 1), y)) {
    err << "velmora-chart: " << step.text << ": a click needs X,Y in twips, as click:7000,5000\n";
    return 2;
  }
  form_->picArpt_MouseDown(1, 0, x, y);
  return 0;
}

}  // namespace velmora
