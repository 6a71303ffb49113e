#include "shell/chart_run.h"

#include <ostream>

#include "data/platform.h"
#include "data/text.h"
#include "geometry/fix.h"
#include "shell/chart_session.h"

namespace velmora {
namespace {

// The first fix of the shown approach, when no table holds it; empty otherwise.
std::string LostFirstFix(const Store& s) {
  for (std::int32_t slot = 0; slot <= s.LegLast && s.Leg.has(slot); ++slot) {
    const LegRow& leg = s.Leg[slot];
    if (leg.app != s.SelApp || leg.trans != kApproachLeg) continue;
    return FixGridX(s, leg.fixIdent) == 0 ? "'" + Cp1252ToUtf8(leg.fixIdent) + "'" : "";
  }
  return {};
}

// Twips between the plan and the profile strip of a kit page.
constexpr std::int32_t kStripGap = 150;

// An approach page of a kit: the chart, with the approach's profile strip under it if asked
// (put together in `withStrip`).
const RecordingCanvas& ApproachPage(const ChartOptions& o, const ChartSession& session,
                                    RecordingCanvas& withStrip) {
  if (!o.profileStrips) return session.picture();
  withStrip = session.picture();
  withStrip.stack(session.profilePicture(), kStripGap);
  return withStrip;
}

// Adds the pages of a kit, with the progress line for long kits.
class KitPages {
 public:
  KitPages(const ChartOptions& o, KitDocument& kit, std::ostream& err)
      : progress_(o.progress), kit_(kit), err_(err) {}
  // Ends the progress line of a kit that got through.
  void done() {
    if (progress_ && known_ > 4) err_ << "\n";
  }
  void expect(std::size_t pages) { known_ += static_cast<int>(pages); }
  bool add(const KitPage& page) {
    ++pages_;
    if (progress_ && known_ > 4) {
      err_ << "\rvelmora-chart: page " << pages_ << " of " << known_ << " (" << page.title << ")"
           << std::string(8, ' ') << std::flush;
    }
    return kit_.add(page, err_);
  }

 private:
  bool progress_;
  KitDocument& kit_;
  std::ostream& err_;
  int pages_ = 0, known_ = 0;
};

// One page per approach row of the airport loaded last, after its sheet.
int KitAirport(const ChartOptions& o, const std::string& code, ChartSession& session,
               KitPages& pages, std::ostream& err) {
  const std::vector<std::string> rows = session.form().controls().cmbAPP.rows;
  pages.expect(1 + rows.size());
  if (!pages.add({code, -1, "", code, &session.picture()})) return 1;
  if (rows.empty()) err << "velmora-chart: " << code << " has no approaches: its sheet alone\n";
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (const int status = session.run(ParseStep("pick:" + std::to_string(row)), err)) {
      return status;
    }
    const std::string approach = Cp1252ToUtf8(rows[row]);
    const std::string title = code + " " + approach;
    if (const std::string lost = LostFirstFix(session.form().store()); !lost.empty()) {
      err << "velmora-chart: " << title << ": first fix " << lost
          << " not found; the page carries the warning\n";
    }
    if (o.fit) {
      if (const int status = session.run(ParseStep("fit"), err)) return status;
    }
    RecordingCanvas withStrip;
    const RecordingCanvas& page = ApproachPage(o, session, withStrip);
    if (!pages.add({code, static_cast<int>(row), approach, title, &page})) return 1;
  }
  return 0;
}

int RunKit(const ChartOptions& o, ChartSession& session, KitDocument& kit, std::ostream& err) {
  KitPages pages(o, kit, err);
  for (const std::string& code : o.airports) {
    if (const int status = session.load(code, err)) return status;
    if (const int status = KitAirport(o, code, session, pages, err)) return status;
  }
  pages.done();
  return 0;
}

int MakeAndRunKit(const ChartOptions& o, const PictureWriter& writePicture, const KitMaker& makeKit,
                  ChartSession& session, std::ostream& err) {
  const std::filesystem::path& path = o.outPaths.front();
  std::unique_ptr<KitDocument> kit;
  if (IsFolderOut(path)) {
    kit = MakeFolderKit(path, o, writePicture);
  } else if (makeKit) {
    kit = makeKit(path, o, err);
  } else {
    err << "velmora-chart: " << PathToUtf8(path) << ": a kit is a .pdf or a folder\n";
  }
  if (!kit) return 2;
  if (const int status = RunKit(o, session, *kit, err)) return status;
  return kit->finish(path, err) ? 0 : 1;
}

// The airport's load, its approach and fit, then the steps given.
int RunSteps(const ChartOptions& o, ChartSession& session, std::ostream& err) {
  if (!o.airports.empty()) {
    if (const int status = session.load(o.airports.front(), err)) return status;
    // The row is found by its text once the list is filled.
    if (!o.approach.empty()) {
      if (const int status = session.run(ParseStep("approach:" + o.approach), err)) return status;
      if (o.fit) {
        if (const int status = session.run(ParseStep("fit"), err)) return status;
      }
    }
  }
  for (const ChartStep& step : o.steps) {
    if (const int status = session.run(step, err)) return status;
  }
  return 0;
}

bool WritePictures(const ChartOptions& o, const PictureWriter& writePicture,
                   const ChartSession& session, std::ostream& err) {
  bool written = true;
  for (const std::filesystem::path& path : o.outPaths) {
    const auto fill = PictureFiller(session.picture(), path, o.scale, writePicture, err);
    if (!WriteOutput(path, fill, err)) written = false;
  }
  return written;
}

// The profile of the approach picked when the steps end: its picture and its JSON.
int WriteProfile(const ChartOptions& o, const PictureWriter& writePicture,
                 const ChartSession& session, std::ostream& out, std::ostream& err) {
  if (o.profilePath.empty() && o.profileJsonPath.empty()) return 0;
  if (!session.form().store().AppSelected) {
    err << "velmora-chart: the profile needs an approach: give --approach or a pick step\n";
    return 2;
  }
  const Profile& profile = session.form().profile();
  if (!profile.whyNot.empty()) err << "velmora-chart: " << Cp1252ToUtf8(profile.whyNot) << "\n";
  bool written = true;
  if (!o.profilePath.empty()) {
    const auto fill =
        PictureFiller(session.profilePicture(), o.profilePath, o.scale, writePicture, err);
    written = WriteOutput(o.profilePath, fill, err);
  }
  if (!o.profileJsonPath.empty()) {
    const std::string json = ProfileJson(profile);
    if (o.profileJsonPath == "-") {
      out << json;
    } else if (!WriteOutput(o.profileJsonPath, json, err)) {
      written = false;
    }
  }
  return written ? 0 : 1;
}

}  // namespace

int RunChart(const ChartOptions& options, const PictureWriter& writePicture,
             const KitMaker& makeKit, std::ostream& out, std::ostream& err) {
  if (options.help || options.version) {
    out << (options.help ? ChartUsage() : ChartVersion());
    return 0;
  }
  if (!OutputFoldersExist(options, err)) return 1;
  ChartSink traceSink, stateSink;
  if (!traceSink.open(options.tracePath, out, err) ||
      !stateSink.open(options.statePath, out, err)) {
    return 1;
  }
  ChartSession session(options, traceSink.get(), stateSink.get());
  const int status = options.allApproaches
                         ? MakeAndRunKit(options, writePicture, makeKit, session, err)
                         : RunSteps(options, session, err);
  // The trace and states tell how far a failed run came; they are kept whole either way.
  const bool written = traceSink.commit(err) & stateSink.commit(err);
  if (status != 0) return status;
  const bool pictures = options.allApproaches || WritePictures(options, writePicture, session, err);
  const int profile = WriteProfile(options, writePicture, session, out, err);
  if (profile == 2) return profile;
  return written && pictures && profile == 0 ? 0 : 1;
}

int RunChart(const ChartOptions& options, const PictureWriter& writePicture, std::ostream& out,
             std::ostream& err) {
  return RunChart(options, writePicture, nullptr, out, err);
}

}  // namespace velmora
