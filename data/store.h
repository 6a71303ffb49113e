#pragma once
// The store: the one airport last loaded, and the VOR list that outlives every airport.
// Values stay the file's text, character for character; each user converts at the point of
// use. One object, handed to whoever reads or fills it.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// A table of fixed capacity, stated as its highest slot. Free slots hold empty rows.
template <class Row, std::int32_t Highest>
class Table {
 public:
  static constexpr std::int32_t kHighest = Highest;

  Table() : rows_(Highest + 1) {}

  static constexpr bool has(std::int32_t slot) { return slot >= 0 && slot <= Highest; }
  // Reads and writes go through here; callers check has() for slots that come from files.
  Row& operator[](std::int32_t slot) { return rows_[static_cast<std::size_t>(slot)]; }
  const Row& operator[](std::int32_t slot) const { return rows_[static_cast<std::size_t>(slot)]; }

  void clear() { std::fill(rows_.begin(), rows_.end(), Row{}); }

 private:
  std::vector<Row> rows_;
};

struct RwyEndRow {
  std::string type, number, designator, lat, lon, length, width, surface, fixName;
  std::string alt{};  // of the Start record; only the profile reads it
};
struct ComRow {
  std::string type, frequency, name;
};
struct IlsRow {
  std::string name, end, frequency, heading;
  std::string glideSlopePitch{};  // degrees, of the <GlideSlope inside the record; profile only
};
struct NdbRow {
  std::string lat, lon, frequency, ident;
};
struct WaypointRow {
  std::string ident, lat, lon;
};
struct VorRow {
  std::string ident, lat, lon, frequency;
};
struct ApproachRow {
  std::string type, runway, designator;
};
struct TransRow {
  std::int32_t app = 0;
  std::string fixIdent, fixType;
};
// A leg of the approach itself has this in `trans`; a transition leg has its Trans slot.
inline constexpr std::int32_t kApproachLeg = 1000;
struct LegRow {
  std::int32_t app = 0;
  std::int32_t trans = 0;
  std::string fixIdent, rho, altitude, magneticCourse, recommendedIdent;
  // Read for the profile alone; the overlay never looks at them. `altitude` above holds the
  // later of the two altitudes, these each their own. (Initialised here, so that rows written
  // as lists of the fields above stay whole.)
  std::string type{}, altitudeDescriptor{}, altitude1{}, altitude2{};
  bool missed = false;  // stands in <MissedApproachLegs>
};

struct Store {
  // Airport values, from the <Airport element.
  std::string ArptIdent, ArptCountry, ArptState, ArptCity, ArptName;
  std::string ArptLat, ArptLon, ArptAlt, ArptMagvar;

  // Each counter is the highest used slot: 0 for an empty table as for one row in slot 0.
  Table<RwyEndRow, 100> RwyEnd;
  std::int32_t RwyLast = 0;
  Table<ComRow, 100> Com;
  std::int32_t ComLast = 0;
  Table<IlsRow, 100> Ils;
  std::int32_t IlsLast = 0;
  Table<NdbRow, 8000> Ndb;  // slot 0 stays empty
  std::int32_t NdbLast = 0;
  Table<WaypointRow, 1000> Waypoint;
  std::int32_t WaypointLast = 0;
  Table<ApproachRow, 50> Approach;
  std::int32_t AppLast = 0;
  Table<TransRow, 1000> Trans;
  std::int32_t TransLast = 0;
  Table<LegRow, 1000> Leg;
  std::int32_t LegLast = 0;

  // Loaded once at start; -1 when the list has no line.
  Table<VorRow, 8000> Vor;
  std::int32_t VorLast = 0;

  std::string CurElement;  // the reader's last element word
  std::int32_t SelApp = 0;
  bool AppSelected = false;

  // Back to "no airport loaded"; the VOR list, view and selection stay.
  void ClearArpt();
  // An airport is on hand to draw: the reader found it in its file.
  bool hasAirport() const { return !ArptIdent.empty(); }
};

}  // namespace velmora
