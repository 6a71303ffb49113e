#include "data/store.h"

namespace velmora {

void Store::ClearArpt() {
  for (std::string* s : {&ArptIdent, &ArptCountry, &ArptState, &ArptCity, &ArptName, &ArptLat,
                         &ArptLon, &ArptAlt, &ArptMagvar}) {
    s->clear();
  }
  RwyEnd.clear();
  Com.clear();
  Ils.clear();
  Ndb.clear();
  Waypoint.clear();
  Approach.clear();
  Trans.clear();
  Leg.clear();
  RwyLast = ComLast = IlsLast = NdbLast = WaypointLast = AppLast = TransLast = LegLast = 0;
}

}  // namespace velmora
