#include "charts/profile.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "data/numbers.h"
#include "data/runway_text.h"
#include "data/text.h"
#include "geometry/coords.h"
#include "geometry/fix.h"

namespace velmora {
namespace {

constexpr double kFeetPerNm = 1852.0 / kFootMetres;
constexpr double kDegreesToRadians = 3.14159265358979323846 / 180.0;
// Where the legs give the threshold no height of its own: the usual crossing height.
constexpr double kThresholdCrossingFt = 50.0;

// Legs flown by course or heading until an altitude, a distance, an intercept or a radial
// (ARINC 424 CA, CD, CI, CR, VA, VD, VI, VM, VR) end where no fix stands: they are passed over.
bool HasNoPositionOfItsOwn(const LegRow& leg) {
  static constexpr std::string_view kCourseOrHeading[] = {"CA", "CD", "CI", "CR", "VA",
                                                          "VD", "VI", "VM", "VR"};
  return leg.fixIdent.empty() || std::find(std::begin(kCourseOrHeading), std::end(kCourseOrHeading),
                                           leg.type) != std::end(kCourseOrHeading);
}

// Feet of a leg altitude; compiled files hold 0 where a leg has none.
std::optional<double> LegAltitude(const std::string& text) {
  const auto feet = HeightFeet(text, 'F');
  if (!feet || *feet == 0) return std::nullopt;
  return feet;
}

// A fix leg of the approach itself, in flying order, placed or not.
struct FixLeg {
  const LegRow* leg;
  std::optional<GridPoint> at;
};

// Legs of approach `slot` that name a fix of their own, neither missed approach nor
// transition. A fix named by two legs in a row (a hold at the fix just reached) counts once.
std::vector<FixLeg> FixLegs(const Store& s, std::int32_t slot) {
  std::vector<FixLeg> legs;
  for (std::int32_t i = 0; i <= s.LegLast && s.Leg.has(i); ++i) {
    const LegRow& leg = s.Leg[i];
    if (leg.app != slot || leg.trans != kApproachLeg || leg.missed) continue;
    if (HasNoPositionOfItsOwn(leg)) continue;
    if (!legs.empty() && legs.back().leg->fixIdent == leg.fixIdent) {
      if (!LegAltitude(legs.back().leg->altitude1) && !LegAltitude(legs.back().leg->altitude2))
        legs.back().leg = &leg;
      continue;
    }
    legs.push_back({&leg, FixGrid(s, leg.fixIdent)});
  }
  return legs;
}

ProfileFix FixOf(const LegRow& leg) {
  ProfileFix fix;
  fix.ident = leg.fixIdent;
  fix.altitudeFt = LegAltitude(leg.altitude1);
  fix.altitude2Ft = LegAltitude(leg.altitude2);
  if (!fix.altitudeFt) std::swap(fix.altitudeFt, fix.altitude2Ft);
  fix.constraint = ConstraintOf(leg.altitudeDescriptor);
  return fix;
}

// The runway end the approach names, as its legs name it ("RW16L"); null for none.
const RwyEndRow* ThresholdRow(const Store& s, const ApproachRow& a) {
  const std::string name = "RW" + RunwayNumberText(a.runway) + DesignatorLetter(a.designator);
  for (std::int32_t slot = 0; slot <= s.RwyLast && s.RwyEnd.has(slot); ++slot) {
    if (!s.RwyEnd[slot].fixName.empty() && s.RwyEnd[slot].fixName == name) return &s.RwyEnd[slot];
  }
  return nullptr;
}

// The glide slope angle of the ILS that serves the runway, as the approach's heading line
// finds it; the usual 3 degrees where the data holds none.
double GlidePathDeg(const Store& s, const ApproachRow& a) {
  const std::string runway =
      (a.runway.empty() ? "0" : RunwayNumberText(a.runway)) + DesignatorLetter(a.designator);
  for (std::int32_t slot = 0; slot <= s.IlsLast && s.Ils.has(slot); ++slot) {
    const IlsRow& ils = s.Ils[slot];
    if (!ContainsNoCase(ils.name, runway)) continue;
    const auto pitch = ParseNumber(ils.glideSlopePitch);
    if (pitch && *pitch > 0 && *pitch <= 10) return *pitch;
  }
  return kDefaultGlidePathDeg;
}

// Distances summed leg by leg from the threshold (or the last fix) back to the first fix.
void SumDistances(const std::vector<GridPoint>& at, std::optional<GridPoint> threshold,
                  std::vector<ProfileFix>& fixes) {
  const std::size_t n = fixes.size();
  if (n == 0) return;
  fixes[n - 1].distanceNm = threshold ? GreatCircleNm(at[n - 1], *threshold) : 0.0;
  for (std::size_t i = n - 1; i-- > 0;) {
    fixes[i].distanceNm = fixes[i + 1].distanceNm + GreatCircleNm(at[i], at[i + 1]);
  }
}

std::optional<double> OwnHeight(const ProfileFix& f) {
  if (f.constraint == Constraint::kBetween && f.altitudeFt && f.altitude2Ft) {
    return std::min(*f.altitudeFt, *f.altitude2Ft);
  }
  return f.altitudeFt;
}

// A fix without altitude stands on the line between the nearest fixes with one, or level
// with the one it has; with none at all, on the ground.
void PlaceHeights(std::vector<ProfileFix>& fixes, double groundFt) {
  const auto n = static_cast<int>(fixes.size());
  for (int i = 0; i < n; ++i) {
    if (const auto own = OwnHeight(fixes[i])) {
      fixes[i].standsAtFt = *own;
      continue;
    }
    int before = i - 1, after = i + 1;
    while (before >= 0 && !OwnHeight(fixes[before])) --before;
    while (after < n && !OwnHeight(fixes[after])) ++after;
    double& at = fixes[i].standsAtFt;
    if (before >= 0 && after < n) {
      const ProfileFix &b = fixes[before], &a = fixes[after];
      const double span = b.distanceNm - a.distanceNm;
      const double part = span > 0 ? (b.distanceNm - fixes[i].distanceNm) / span : 0;
      at = *OwnHeight(b) + (*OwnHeight(a) - *OwnHeight(b)) * part;
    } else if (before >= 0 || after < n) {
      at = *OwnHeight(fixes[before >= 0 ? before : after]);
    } else {
      at = groundFt;
    }
  }
}

std::string WhyNot(const Profile& p, std::size_t legs) {
  const std::string name = p.airport + " " + p.approach;
  if (legs == 0) return "No profile for " + name + ": the approach has no fixes of its own";
  return "No profile for " + name + ": " + std::to_string(p.fixes.size()) + " of its " +
         std::to_string(legs) + (legs == 1 ? " fix" : " fixes") +
         (p.fixes.size() == 1 ? " has" : " have") + " a known position, and a profile needs two";
}

}  // namespace

Constraint ConstraintOf(std::string_view descriptor) {
  if (descriptor == "A") return Constraint::kAt;
  if (descriptor == "+") return Constraint::kAtOrAbove;
  if (descriptor == "-") return Constraint::kAtOrBelow;
  if (descriptor == "B") return Constraint::kBetween;
  return Constraint::kNone;
}

std::string_view ConstraintWord(Constraint constraint) {
  switch (constraint) {
    case Constraint::kAt:
      return "at";
    case Constraint::kAtOrAbove:
      return "atOrAbove";
    case Constraint::kAtOrBelow:
      return "atOrBelow";
    case Constraint::kBetween:
      return "between";
    case Constraint::kNone:
      break;
  }
  return "none";
}

Profile MakeProfile(const Store& s, std::int32_t slot, std::string_view approachText) {
  Profile p;
  p.airport = s.ArptIdent;
  p.approach = approachText;
  if (!s.Approach.has(slot)) {
    p.whyNot = WhyNot(p, 0);
    return p;
  }
  const ApproachRow& a = s.Approach[slot];
  const RwyEndRow* end = ThresholdRow(s, a);
  std::optional<GridPoint> threshold;
  if (end != nullptr) {
    const auto x = LonToGrid(end->lon), y = LatToGrid(end->lat);
    if (x && y) threshold = GridPoint{*x, *y};
  }
  p.threshold = threshold.has_value();
  p.thresholdElevationFt = end != nullptr ? HeightFeet(end->alt, 'M') : std::nullopt;
  if (!p.thresholdElevationFt) p.thresholdElevationFt = HeightFeet(s.ArptAlt, 'M');

  const std::vector<FixLeg> legs = FixLegs(s, slot);
  std::vector<GridPoint> at;
  for (std::size_t i = 0; i < legs.size(); ++i) {
    if (!legs[i].at) {
      p.notPlaced.push_back(legs[i].leg->fixIdent);
      continue;
    }
    // The last fix leg is the missed-approach point, the one before it the final approach fix.
    if (i + 1 == legs.size()) p.missedApproachPoint = static_cast<int>(p.fixes.size());
    if (i + 2 == legs.size()) p.finalFix = static_cast<int>(p.fixes.size());
    p.fixes.push_back(FixOf(*legs[i].leg));
    at.push_back(*legs[i].at);
  }
  SumDistances(at, threshold, p.fixes);
  const double ground = p.thresholdElevationFt.value_or(0);
  PlaceHeights(p.fixes, ground);
  if (p.fixes.size() < 2) {
    p.whyNot = WhyNot(p, legs.size());
    return p;
  }
  if (a.type == "ILS") {
    p.glidePathDeg = GlidePathDeg(s, a);
    const ProfileFix& last = p.fixes.back();
    const bool atThreshold = p.threshold && last.distanceNm < 0.05 && OwnHeight(last);
    p.glidePathBaseFt = atThreshold ? last.standsAtFt : ground + kThresholdCrossingFt;
  }
  return p;
}

Profile NoApproachProfile() {
  Profile p;
  p.whyNot = "Pick an approach: its descent profile shows here";
  return p;
}

double GlidePathFt(const Profile& p, double distanceNm) {
  const double slope = std::tan(p.glidePathDeg.value_or(kDefaultGlidePathDeg) * kDegreesToRadians);
  return p.glidePathBaseFt + distanceNm * kFeetPerNm * slope;
}

std::string FeetText(double feet) {
  return std::to_string(RoundAway(feet));
}

namespace {

std::string JsonFeet(const std::optional<double>& feet) {
  return feet ? FeetText(*feet) : "null";
}

}  // namespace

std::string ProfileJson(const Profile& p) {
  std::string out =
      "{\"airport\": " + JsonString(p.airport) + ", \"approach\": " + JsonString(p.approach) +
      ", \"thresholdElevationFt\": " + JsonFeet(p.thresholdElevationFt) +
      ", \"glidePathDeg\": " + (p.glidePathDeg ? DecimalText(*p.glidePathDeg, 2) : "null") +
      ",\n \"fixes\": [";
  for (std::size_t i = 0; i < p.fixes.size(); ++i) {
    const ProfileFix& f = p.fixes[i];
    out += std::string(i == 0 ? "\n" : ",\n") + "  {\"ident\": " + JsonString(f.ident) +
           ", \"distanceNm\": " + DecimalText(f.distanceNm, 2) +
           ", \"altitudeFt\": " + JsonFeet(f.altitudeFt) +
           ", \"altitude2Ft\": " + JsonFeet(f.altitude2Ft) + ", \"constraint\": \"" +
           std::string(ConstraintWord(f.constraint)) + "\"}";
  }
  return out + "]}\n";
}

}  // namespace velmora
