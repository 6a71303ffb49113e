#pragma once
// The approach profile: the descent a pilot flies, beside the plan. Distance to the runway
// threshold runs across (nautical miles, growing to the left as on published charts), altitude
// up (feet). Worked out from the store alone, then drawn on any canvas.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/store.h"
#include "geometry/canvas.h"

namespace velmora {

enum class Constraint { kNone, kAt, kAtOrAbove, kAtOrBelow, kBetween };

// The airport file's altitudeDescriptor: "A" at, "+" at or above, "-" at or below, "B"
// between; any other text, and none, is no constraint.
Constraint ConstraintOf(std::string_view descriptor);
// The word of the machine-readable profile: "at", "atOrAbove", "atOrBelow", "between", "none".
std::string_view ConstraintWord(Constraint constraint);

struct ProfileFix {
  std::string ident;      // Windows-1252
  double distanceNm = 0;  // along the legs to the threshold
  // As the leg gives them (altitude1, altitude2); none where the leg has none.
  std::optional<double> altitudeFt, altitude2Ft;
  Constraint constraint = Constraint::kNone;
  // Where the profile draws the fix: its altitude (the lower one of "between"), or for a fix
  // without one the line between its neighbours.
  double standsAtFt = 0;
};

struct Profile {
  std::string airport, approach;       // Windows-1252: "XWHL", "ILS 16L"
  std::vector<ProfileFix> fixes;       // the fixes placed, in flying order
  std::vector<std::string> notPlaced;  // idents of legs no table places, in flying order
  // False for an approach that names no runway end the airport has (a circling approach):
  // distances then run to its last fix, and the elevation is the airport's.
  bool threshold = false;
  std::optional<double> thresholdElevationFt;
  std::optional<double> glidePathDeg;  // ILS approaches only
  double glidePathBaseFt = 0;          // the glide path's height over the threshold
  int finalFix = -1;                   // index in `fixes`, -1 where the legs give none placed
  int missedApproachPoint = -1;
  std::string whyNot;  // why nothing can be drawn; empty when the profile can be
};

// Where the data holds no glide slope angle.
inline constexpr double kDefaultGlidePathDeg = 3.0;
// The profile's picture: as wide as the chart, a strip below it.
inline constexpr PictureSize kProfileSize{Canvas::Width, 2400};

// The profile of approach `slot`, named `approachText` (the row of the approach list).
Profile MakeProfile(const Store& store, std::int32_t slot, std::string_view approachText);
// What the profile says before an approach is picked.
Profile NoApproachProfile();

// Feet of the glide path `distanceNm` from the threshold; the profile must have one.
double GlidePathFt(const Profile& profile, double distanceNm);

// Whole feet, as the profile writes altitudes: "2900".
std::string FeetText(double feet);

// Clears `canvas` and draws the profile within kProfileSize, or says why there is none.
void DrawProfile(const Profile& profile, Canvas& canvas);

// {"airport": ..., "approach": ..., "thresholdElevationFt": ..., "glidePathDeg": ...,
// "fixes": [{"ident", "distanceNm", "altitudeFt", "altitude2Ft", "constraint"}, ...]}, UTF-8,
// distances with two decimals, altitudes in whole feet.
std::string ProfileJson(const Profile& profile);

}  // namespace velmora
