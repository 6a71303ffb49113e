// The profile's picture: the fixes on the descent with their idents, altitudes and constraints
// as published charts write them, distances below the ground line, the threshold, the glide
// path of an ILS and the missed-approach point.

#include <algorithm>
#include <cmath>

#include "charts/charts.h"
#include "charts/profile.h"
#include "data/numbers.h"
#include "data/text.h"

namespace velmora {
namespace {

// The layout, twips. The descent runs from the farthest fix at the left down to the
// threshold at the right; labels stand above each fix, distances below the ground.
constexpr std::int32_t kFarX = 1000;
constexpr std::int32_t kThresholdX = 12900;
constexpr std::int32_t kTopY = 800;
constexpr std::int32_t kGroundY = 1850;
constexpr std::int32_t kDistanceY = kGroundY + 50;
constexpr std::int32_t kNoteY = 2180;
constexpr std::int32_t kTitleX = 8400;
constexpr std::int32_t kRunwayTwips = 300;
constexpr std::int32_t kRow = 230;       // a row of 10 pt labels
constexpr std::int32_t kSmallRow = 190;  // a row of 8 pt labels
// A distance label closer than this to the one before goes a row lower.
constexpr std::int32_t kDistanceLabelRoom = 600;
// The glide path is drawn a quarter beyond the final approach fix.
constexpr double kGlidePathBeyondFaf = 1.25;

// A label's width in twips, from the average width of the chart font's characters; the
// canvas can't measure text, and the bars of a constraint need only come close.
std::int32_t LabelWidth(std::string_view text, int points) {
  return static_cast<std::int32_t>(text.size()) * points * 20 * 62 / 100;
}

// Distance and altitude to canvas positions.
class Scale {
 public:
  Scale(double spanNm, double floorFt, double topFt)
      : span_(std::max(spanNm, 0.5)), floor_(floorFt), top_(std::max(topFt, floorFt + 500)) {}
  std::int32_t x(double nm) const {
    return RoundEven(kThresholdX - nm / span_ * (kThresholdX - kFarX));
  }
  std::int32_t y(double ft) const {
    return RoundEven(kGroundY - (ft - floor_) / (top_ - floor_) * (kGroundY - kTopY));
  }

 private:
  double span_, floor_, top_;
};

void SetPen(Canvas& c, Rgb colour, int width, int style) {
  c.pen.ForeColor = colour;
  c.pen.DrawWidth = width;
  c.pen.DrawStyle = style;
}

// One altitude with its bars: above for "at or below", below for "at or above", both for "at".
void Altitude(Canvas& c, std::int32_t x, std::int32_t top, double feet, bool over, bool under) {
  const std::string text = FeetText(feet);
  PrintAt(c, x, top, 10, false, text);
  const std::int32_t right = x + LabelWidth(text, 10);
  SetPen(c, kBlack, 1, kSolid);
  if (over) c.Line(x, top + 25, right, top + 25);
  if (under) c.Line(x, top + 205, right, top + 205);
}

// The altitude rows of a fix, the lowest ending just above `bottom`; how many were drawn.
int AltitudeRows(Canvas& c, const ProfileFix& f, std::int32_t x, std::int32_t bottom) {
  if (!f.altitudeFt) return 0;
  const std::int32_t top = bottom - kRow;
  if (f.constraint == Constraint::kBetween && f.altitude2Ft) {
    // A window: the upper limit barred above, the lower barred below.
    Altitude(c, x, top - kRow, std::max(*f.altitudeFt, *f.altitude2Ft), true, false);
    Altitude(c, x, top, std::min(*f.altitudeFt, *f.altitude2Ft), false, true);
    return 2;
  }
  const Constraint k = f.constraint;
  Altitude(c, x, top, *f.altitudeFt, k == Constraint::kAt || k == Constraint::kAtOrBelow,
           k == Constraint::kAt || k == Constraint::kAtOrAbove);
  return 1;
}

// Ident, altitude and "MAP" above the fix at `p`, kept on the picture.
void FixLabels(Canvas& c, const ProfileFix& f, ScreenPoint p, bool map) {
  const std::int32_t x = p.x - 150;
  const int rows = AltitudeRows(c, f, x, p.y - 40);
  std::int32_t top = std::max<std::int32_t>(p.y - 40 - rows * kRow - kSmallRow - 30, 0);
  PrintAt(c, x, top, 8, false, f.ident);
  if (map) PrintAt(c, x, std::max<std::int32_t>(top - kSmallRow, 0), 8, true, "MAP");
  c.pen.FontBold = false;
}

// The final approach fix's cross.
void FinalFixMark(Canvas& c, ScreenPoint p) {
  SetPen(c, kBlack, 2, kSolid);
  c.Line(p.x - 60, p.y - 60, p.x + 60, p.y + 60);
  c.Line(p.x - 60, p.y + 60, p.x + 60, p.y - 60);
}

void Title(Canvas& c, const Profile& p) {
  PrintAt(c, kTitleX, 40, 10, true, p.airport + "  " + p.approach + "  profile");
  c.pen.FontBold = false;
  std::string note = p.threshold ? "NM to the threshold, altitudes in ft"
                                 : "NM to " + p.fixes.back().ident + ", altitudes in ft";
  if (p.glidePathDeg) note += "  -  glide path " + DecimalText(*p.glidePathDeg, 2) + kDegreeSign;
  PrintAt(c, kTitleX, 40 + kRow, 8, false, note);
}

// The ground at the threshold's elevation, the runway beyond the threshold, and its label.
void Ground(Canvas& c, const Profile& p, std::int32_t farX) {
  SetPen(c, kBlack, 1, kSolid);
  c.Line(farX - 300, kGroundY, kThresholdX, kGroundY);
  std::string label = p.threshold ? "THR" : "ELEV";
  if (p.thresholdElevationFt) label += " " + FeetText(*p.thresholdElevationFt);
  if (p.threshold) {
    SetPen(c, kBlack, 5, kSolid);
    c.Line(kThresholdX, kGroundY, kThresholdX + kRunwayTwips, kGroundY);
  }
  PrintAt(c, kThresholdX + kRunwayTwips + 80, kGroundY - 100, 8, false, label);
}

void GlidePath(Canvas& c, const Profile& p, const Scale& s, double endNm) {
  SetPen(c, kGreen, 2, kSolid);
  const ScreenPoint from{s.x(0), s.y(p.glidePathBaseFt)};
  const ScreenPoint to{s.x(endNm), s.y(GlidePathFt(p, endNm))};
  c.Line(from.x, from.y, to.x, to.y);
  c.pen.ForeColor = kGreen;
  PrintAt(c, to.x - 200, to.y - kSmallRow - 20, 8, false,
          "GS " + DecimalText(*p.glidePathDeg, 2) + kDegreeSign);
  c.pen.ForeColor = kBlack;
}

// Where the glide path ends: through the final approach fix, within the picture.
double GlidePathEnd(const Profile& p) {
  const double far = p.fixes.front().distanceNm;
  if (p.finalFix < 0) return far;
  return std::min(far,
                  p.fixes[static_cast<std::size_t>(p.finalFix)].distanceNm * kGlidePathBeyondFaf);
}

void Distances(Canvas& c, const Profile& p, const std::vector<ScreenPoint>& at) {
  std::int32_t lastX = -kDistanceLabelRoom, row = 0;
  for (std::size_t i = 0; i < at.size(); ++i) {
    row = at[i].x - lastX < kDistanceLabelRoom ? 1 - row : 0;
    lastX = at[i].x;
    PrintAt(c, at[i].x - 130, kDistanceY + row * kSmallRow, 8, false,
            DecimalText(p.fixes[i].distanceNm, 1));
  }
}

void NotPlaced(Canvas& c, const Profile& p, std::int32_t y) {
  if (p.notPlaced.empty()) return;
  std::string names;
  for (const std::string& ident : p.notPlaced) names += (names.empty() ? "" : ", ") + ident;
  PrintAt(c, 200, y, 8, false, "Not placed (no position in the airport file or vor.nav): " + names);
}

// Each fix stands on a dotted line over its distance, as on published profiles; the descent
// joins them.
void Descent(Canvas& c, const std::vector<ScreenPoint>& at) {
  SetPen(c, kBlack, 1, kDotted);
  for (const ScreenPoint& q : at) c.Line(q.x, q.y, q.x, kGroundY);
  SetPen(c, kBlack, 2, kSolid);
  for (std::size_t i = 1; i < at.size(); ++i) c.Line(at[i - 1].x, at[i - 1].y, at[i].x, at[i].y);
}

void Fixes(Canvas& c, const Profile& p, const std::vector<ScreenPoint>& at) {
  for (std::size_t i = 0; i < at.size(); ++i) {
    if (static_cast<int>(i) == p.finalFix) FinalFixMark(c, at[i]);
    FixLabels(c, p.fixes[i], at[i], static_cast<int>(i) == p.missedApproachPoint);
  }
}

}  // namespace

void DrawProfile(const Profile& p, Canvas& c) {
  c.Cls();
  SetPen(c, kBlack, 1, kSolid);
  if (!p.whyNot.empty()) {
    PrintAt(c, 200, 900, 10, true, p.whyNot);
    c.pen.FontBold = false;
    NotPlaced(c, p, 900 + kRow + 40);
    return;
  }
  const double ground = p.thresholdElevationFt.value_or(p.fixes.back().standsAtFt);
  const double glideEnd = p.glidePathDeg ? GlidePathEnd(p) : 0;
  double top = p.glidePathDeg ? GlidePathFt(p, glideEnd) : ground;
  for (const ProfileFix& f : p.fixes) top = std::max(top, f.standsAtFt);
  double span = 0;
  for (const ProfileFix& f : p.fixes) span = std::max(span, f.distanceNm);
  const Scale s(span, ground, top);
  std::vector<ScreenPoint> at;
  for (const ProfileFix& f : p.fixes) at.push_back({s.x(f.distanceNm), s.y(f.standsAtFt)});

  Title(c, p);
  Ground(c, p, at.front().x);
  Descent(c, at);
  // Over the descent, which it follows closely down from the final approach fix.
  if (p.glidePathDeg) GlidePath(c, p, s, glideEnd);
  Fixes(c, p, at);
  Distances(c, p, at);
  NotPlaced(c, p, kNoteY);
  SetPen(c, kBlack, 1, kSolid);
}

}  // namespace velmora
