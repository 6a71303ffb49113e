#pragma once
// One run of velmora-chart: the form with its canvas, trace and state lines, driven through
// typed steps as a user would drive the window.

#include <iosfwd>
#include <memory>
#include <string>

#include "charts/profile.h"
#include "data/store.h"
#include "geometry/canvas.h"
#include "geometry/trace_canvas.h"
#include "shell/chart_options.h"
#include "shell/form.h"

namespace velmora {

class ChartSession {
 public:
  // `trace` and `state` may be null: no trace, no states.
  ChartSession(const ChartOptions& options, std::ostream* trace, std::ostream* state);

  // 0, or 2 for a step that can't be run (with a message on `err`).
  int run(const ChartStep& step, std::ostream& err);

  // type, search and load of `code`; 1 with the window's caption when it has no chart.
  int load(const std::string& code, std::ostream& err);

  const ArptForm& form() const { return *form_; }
  const RecordingCanvas& picture() const { return picture_; }
  // The profile of the approach picked last, as the window's profile pane shows it.
  const RecordingCanvas& profilePicture() const { return profile_; }

 private:
  int dispatch(const ChartStep& step, std::ostream& err);
  int pick(const ChartStep& step, std::ostream& err);
  int pickApproach(const ChartStep& step, std::ostream& err);
  int fit(const ChartStep& step, std::ostream& err);
  int click(const ChartStep& step, std::ostream& err);

  std::ostream* state_;
  std::unique_ptr<TraceCanvas> tracer_;
  RecordingCanvas picture_;
  RecordingCanvas profile_{kProfileSize};
  TeeCanvas canvas_;
  std::unique_ptr<Store> store_;
  std::unique_ptr<ArptForm> form_;
  int step_ = 0;
};

}  // namespace velmora
