#pragma once
// BGL files made from plain structs, for tests and the benchmark: airports with runways,
// starts, COM, approaches with legs, missed-approach legs and transitions, in the FSX, P3D v5
// and P3D v6 record variants, and VOR/ILS, NDB and waypoint sections. The bytes come back with
// the offsets of the records, so that a test can damage the file where it wants. Standard
// library only, and one pass over the structs: fast enough for libraries of many files.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

enum class BglFormat { kFsx, kP3dV5, kP3dV6 };

struct BglLegSpec {
  std::uint8_t type = 15;                                    // IF
  std::uint8_t altitudeDescriptor = 0, turn = 0, flags = 0;  // flags: 1 true course, 2 time
  std::uint8_t fixType = 0;  // table 6.6; 0 with an empty ident: no fix
  std::string fixIdent, fixRegion, fixAirport;
  std::uint8_t recommendedType = 0;
  std::string recommendedIdent, recommendedRegion, recommendedAirport;
  float theta = 0, rho = 0, course = 0, distance = 0, altitude1 = 0, altitude2 = 0;  // metres
};

struct BglTransitionSpec {
  std::uint8_t type = 1;  // 1 FULL, 2 DME arc
  std::uint8_t fixType = 5;
  std::string fixIdent, fixRegion;
  float altitude = 0;
  std::string dmeIdent;  // DME arc only
  std::uint32_t dmeRadial = 0;
  float dmeDistance = 0;
  std::vector<BglLegSpec> legs;
};

struct BglApproachSpec {
  std::uint8_t type = 4;  // ILS
  std::uint8_t runway = 0, designator = 0;
  char suffix = 0;
  bool gpsOverlay = false;
  std::uint8_t fixType = 9;
  std::string fixIdent, fixRegion;
  float altitude = 0, heading = 0, missedAltitude = 0;
  std::vector<BglLegSpec> legs, missed;
  std::vector<BglTransitionSpec> transitions;
};

struct BglRunwaySpec {
  std::uint8_t number = 0, designator = 0, secondaryNumber = 0, secondaryDesignator = 0;
  std::uint16_t surface = 4;  // ASPHALT
  std::string primaryIls, secondaryIls;
  double lat = 0, lon = 0;
  std::int32_t altMm = 0;
  float length = 0, width = 0, heading = 0, patternAltitude = 0;
  bool documented04 = false;  // the 0x04 record of the documentation rather than 0x3E
};

struct BglStartSpec {
  std::uint8_t number = 0, designator = 0, type = 1;
  double lat = 0, lon = 0;
  std::int32_t altMm = 0;
  float heading = 0;
};

struct BglComSpec {
  std::uint8_t type = 6;  // TOWER
  std::uint32_t hz = 0;
  std::string name;
};

// A record written as given: id, then `payload` behind the 6-byte header.
struct BglRawRecord {
  std::uint16_t id = 0;
  std::string payload;
};

struct BglAirportSpec {
  std::string ident, region, name, country, state, city;
  double lat = 0, lon = 0;
  std::int32_t altMm = 0;
  float magvar = 0;
  std::vector<BglRunwaySpec> runways;
  std::vector<BglStartSpec> starts;
  std::vector<BglComSpec> coms;
  std::vector<BglApproachSpec> approaches;
  std::vector<BglRawRecord> extra;  // further children, after the others
};

// VOR (type 1-3, 5) or ILS (type 4) of section 0x13.
struct BglNavaidSpec {
  std::uint8_t type = 2, flags = 0x31;
  double lat = 0, lon = 0;
  std::int32_t altMm = 0;
  std::uint32_t hz = 0;
  float range = 0, magvar = 0;
  std::string ident, region, airport, name;
  bool localizer = false;  // ILS: runway number and designator of the localizer
  std::uint8_t locRunway = 0, locDesignator = 0;
  float locHeading = 0, locWidth = 5;
  bool glideSlope = false, dme = false;
};

struct BglNdbSpec {
  std::uint16_t type = 1;
  std::uint32_t hz = 0;
  double lat = 0, lon = 0;
  std::int32_t altMm = 0;
  float range = 0, magvar = 0;
  std::string ident, region, airport, name;
};

struct BglWaypointSpec {
  std::uint8_t type = 1;
  double lat = 0, lon = 0;
  float magvar = 0;
  std::string ident, region, airport;
};

struct BglFileSpec {
  BglFormat format = BglFormat::kFsx;
  std::vector<BglAirportSpec> airports;
  std::vector<BglNavaidSpec> navaids;
  std::vector<BglNdbSpec> ndbs;
  std::vector<BglWaypointSpec> waypoints;
  bool nameList = true;  // section 0x27 with country, state and city
  std::vector<BglRawRecord> extraAirportSectionRecords;
};

struct BglBuilt {
  std::string bytes;
  // Where things stand: "sections" (the table), "airport0", "runway0.1", "approach0.0",
  // "legs0.0" (the approach's leg list), "missed0.0", "transition0.0.0", "navaid0", "ndb0",
  // "waypoint0", "names".
  std::map<std::string, std::uint32_t> at;
};

BglBuilt BuildBgl(const BglFileSpec& contents);

// Encodings: base-38 code, tagged ident, region + airport dword, coordinates.
std::uint32_t BglCode(std::string_view ident);
std::uint32_t BglTagged(std::string_view ident, std::uint32_t tag);
std::uint32_t BglRegionAirportCode(std::string_view region, std::string_view airport);
std::uint32_t BglLonRaw(double degrees);
std::uint32_t BglLatRaw(double degrees);

// Damage: overwrite bytes at `offset` (little-endian).
void PutU16(std::string& bytes, std::size_t offset, std::uint16_t value);
void PutU32(std::string& bytes, std::size_t offset, std::uint32_t value);

}  // namespace velmora::test
