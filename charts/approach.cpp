#include <locale>
#include <optional>
#include <sstream>

#include "charts/charts.h"
#include "data/numbers.h"
#include "data/runway_text.h"
#include "data/text.h"
#include "geometry/fix.h"

namespace velmora {
namespace {

constexpr std::string_view kCorruptWarning = "ATTENTION: Approach Data may be corrupt!";

// Whole degrees from "93.0": the last two characters cut, not rounded. None for a text too
// short or not a whole number.
std::optional<std::int32_t> Course(const std::string& magneticCourse) {
  if (magneticCourse.size() < 3) return std::nullopt;
  const std::string_view whole =
      std::string_view(magneticCourse).substr(0, magneticCourse.size() - 2);
  std::int32_t value = 0;
  for (char c : whole) {
    if (c < '0' || c > '9' || value > 100000) return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return value;
}

// Three digits, as "093".
std::string CourseText(const std::string& magneticCourse) {
  std::string text = magneticCourse.substr(0, magneticCourse.size() - 2);
  if (text.size() < 3) text.insert(0, 3 - text.size(), '0');
  return text;
}

// "2500.00F" gives "2500": the unit character is cut unread. Empty for 0 and for no number.
std::string AltitudeText(const std::string& altitude) {
  if (altitude.empty()) return {};
  const auto feet = ParseNumber(std::string_view(altitude).substr(0, altitude.size() - 1));
  const std::int64_t value = feet ? RoundAway(*feet) : 0;
  return value == 0 ? std::string{} : std::to_string(value);
}

// rho / 2053 as whole DME, grouped as the machine writes numbers. Empty for 0 and no number.
std::string DmeText(const std::string& rho) {
  const auto value = ParseNumber(rho);
  const std::int64_t dme = value ? RoundAway(*value / 2053.0) : 0;
  if (dme == 0) return {};
  std::ostringstream out;
  out.imbue(std::locale());
  out << dme;
  return out.str();
}

void PrintHeading(Canvas& c, std::string_view text) {
  PrintAt(c, 200, 3000, 14, true, text);
  c.pen.FontBold = false;
}

void Heading(Store& s, const LegRow& firstLeg, Canvas& c) {
  ApproachRow& app = s.Approach[s.SelApp];
  if (app.type == "ILS") {
    const std::string runway = RunwayText(app);
    for (std::int32_t slot = 0; slot <= s.IlsLast && s.Ils.has(slot); ++slot) {
      const IlsRow& ils = s.Ils[slot];
      if (!ContainsNoCase(ils.name, runway)) continue;
      PrintHeading(
          c, ils.name + "  " + ils.frequency + "   " + ils.end + "  " + ils.heading + kDegreeSign);
    }
  } else if (ContainsNoCase(app.type, "VOR")) {
    std::string runway = RunwayText(app);
    if (runway == "00") runway = "Visual APP";
    const std::string& navaid = firstLeg.recommendedIdent;
    std::string frequency;
    for (std::int32_t slot = 0; !navaid.empty() && slot <= s.VorLast && s.Vor.has(slot); ++slot) {
      if (s.Vor[slot].ident == navaid) {
        frequency = s.Vor[slot].frequency;
        break;
      }
    }
    PrintHeading(c, app.type + "  " + runway + "  " + navaid + "  " + frequency);
  }
}

void FixSymbol(Canvas& c, ScreenPoint p) {
  c.pen.ForeColor = kBlack;
  c.pen.DrawWidth = 2;
  c.Circle(p.x, p.y, 30);
}

void NameLabel(Canvas& c, ScreenPoint p, const LegRow& leg) {
  PrintAt(c, ScreenAdd(p.x, -100), p.y, 8, false, leg.fixIdent);
}

void AltitudeAndDme(Canvas& c, ScreenPoint p, const LegRow& leg) {
  PrintAt(c, ScreenAdd(p.x, -100), ScreenAdd(p.y, 200), 10, false, AltitudeText(leg.altitude));
  const std::string dme = DmeText(leg.rho);
  if (!dme.empty()) {
    PrintAt(c, ScreenAdd(p.x, -100), ScreenAdd(p.y, 400), 10, false, dme + " DME");
  }
}

void Warning(Canvas& c) {
  c.pen.CurrentX = 200;
  c.pen.CurrentY = 8800;
  c.pen.FontBold = true;
  c.pen.FontSize = 14;
  c.pen.ForeColor = kRed;
  c.Print(kCorruptWarning);
  c.pen.FontBold = false;
  c.pen.ForeColor = kBlack;
}

// The walk over the approach's own legs, with the state that decides dotted lines.
class Track {
 public:
  Track(Store& s, const View& v, Canvas& c)
      : s_(s), v_(v), c_(c), ils_(s.Approach[s.SelApp].type == "ILS") {}

  void leg(const LegRow& leg) {
    if (!firstDone_) {
      first(leg);
    } else {
      following(leg);
    }
  }

 private:
  void first(const LegRow& leg) {
    firstDone_ = true;
    Heading(s_, leg, c_);
    const std::int32_t gy = FixGridY(s_, leg.fixIdent);
    const std::int32_t gx = FixGridX(s_, leg.fixIdent);
    if (gx == 0) Warning(c_);
    const ScreenPoint p = Panned(v_, {GridToScreenX(v_, gx), GridToScreenY(v_, gy)});
    prev_ = p;
    if (ils_) start_ = p;
    FixSymbol(c_, p);
    NameLabel(c_, p, leg);
    AltitudeAndDme(c_, p, leg);
  }

  void following(const LegRow& leg) {
    if (leg.fixIdent.empty()) return;
    const std::int32_t gy = FixGridY(s_, leg.fixIdent);
    const std::int32_t gx = FixGridX(s_, leg.fixIdent);
    const std::int32_t screenY = GridToScreenY(v_, gy);
    // Only Y is tested, before pan; a fix no table holds falls out here.
    if (!WithinChartHeight(screenY)) return;
    const ScreenPoint p = Panned(v_, {GridToScreenX(v_, gx), screenY});
    FixSymbol(c_, p);
    NameLabel(c_, p, leg);
    if (leg.fixIdent.starts_with("RW")) {
      trackCount_ = 1;
      const auto course = Course(leg.magneticCourse);
      if (ils_ && course) DrawArrowHead(c_, start_.x, start_.y, *course, p.x, p.y);
    }
    AltitudeAndDme(c_, p, leg);
    trackLine(p);
    courseMark(p, leg);
    prev_ = p;
  }

  void trackLine(ScreenPoint p) {
    c_.pen.ForeColor = kGreen;
    // From the third line on, or after a runway fix, the track is dotted; the width left by
    // the fix symbol or the arrow decides whether the dots show.
    if (trackCount_ >= 2) {
      c_.pen.DrawStyle = kDotted;
      c_.pen.DrawWidth = 1;
    }
    c_.Line(prev_.x, prev_.y, p.x, p.y);
    c_.pen.ForeColor = kBlack;
    ++trackCount_;
  }

  void courseMark(ScreenPoint p, const LegRow& leg) {
    const std::int32_t midX = RoundEven(p.x - (static_cast<double>(p.x) - prev_.x) / 2.0);
    const std::int32_t midY = RoundEven(p.y - (static_cast<double>(p.y) - prev_.y) / 2.0);
    const auto course = Course(leg.magneticCourse);
    if (!course) return;
    DrawCourseMark(c_, midX, midY, *course);
    PrintAt(c_, ScreenAdd(midX, 50), ScreenAdd(midY, -400), 10, true,
            CourseText(leg.magneticCourse) + kDegreeSign);
    c_.pen.FontBold = false;
  }

  Store& s_;
  const View& v_;
  Canvas& c_;
  const bool ils_;
  bool firstDone_ = false;
  ScreenPoint prev_{0, 0};
  ScreenPoint start_{0, 0};
  std::int32_t trackCount_ = 0;
};

void TerminalRows(const Store& s, std::vector<std::string>& rows) {
  const std::int32_t last = s.TransLast;
  for (std::int32_t slot = 0; slot <= last && s.Trans.has(slot); ++slot) {
    const TransRow& t = s.Trans[slot];
    // A slot that holds no transition gives no row.
    if (t.fixType.empty() && t.fixIdent.empty()) continue;
    if (t.app != s.SelApp || t.fixType == "INT" || t.fixType == "WAYPOINT") continue;
    rows.push_back(t.fixType + " " + t.fixIdent);
  }
}

}  // namespace

std::string RunwayText(ApproachRow& app) {
  // The heading reads an empty runway as 0.
  app.runway = app.runway.empty() ? "0" : RunwayNumberText(app.runway);
  if (app.designator != "NONE") app.designator = DesignatorLetter(app.designator);
  return app.runway + DesignatorLetter(app.designator);
}

void DrawApp(Store& store, const View& view, Canvas& canvas, std::vector<std::string>& termRows) {
  if (!store.AppSelected) return;
  if (store.Approach.has(store.SelApp)) {
    Track track(store, view, canvas);
    const std::int32_t last = store.LegLast;
    for (std::int32_t slot = 0; slot <= last && store.Leg.has(slot); ++slot) {
      const LegRow& leg = store.Leg[slot];
      if (leg.app == store.SelApp && leg.trans == kApproachLeg) track.leg(leg);
    }
  }
  // Every other drawing of the program starts solid.
  canvas.pen.DrawStyle = kSolid;
  TerminalRows(store, termRows);
}

}  // namespace velmora
