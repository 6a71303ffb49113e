#pragma once
// Imported records written in exactly the layout the airport file reader reads: each record's
// element word and first attribute on one line, every further attribute on a line of its own,
// the attributes the reader reads in its order, the one that closes a record last.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "import/xml_source.h"

namespace velmora {

// A navaid written as an airport's child, ready to be copied into the airports that need it.
struct NavaidText {
  std::string ident;
  bool ndb = false;  // else a waypoint
  double lat = 0, lon = 0;
  std::string text;
};

// A fix that an approach names and that the airport's own NDBs and waypoints lack.
struct WantedFix {
  std::string ident;
  bool ndb = false;
};

// A navaid farther than this from the airport is not the one its approach means.
inline constexpr double kFixReachNm = 300;

// The tables the chart looks for a fix in, in its order.
enum class FixKind { kWaypoint, kNdb, kVor, kRunway };

struct FixPlace {
  std::string ident;
  FixKind kind = FixKind::kWaypoint;
  double lat = 0, lon = 0;
};

// A track-to-fix leg without course (FSX stores 0): the track between its fixes gives it, once
// every navaid the airport may copy is known.
struct CourseGap {
  std::size_t at = 0;    // where in the airport's text its attribute line goes
  std::string from, to;  // the fix the previous leg ends at, the leg's own
  std::string lead;      // line end and indent in front of the attribute
  std::string asGiven;   // the line as the source gives it, for fixes that can't be placed
};

struct AirportText {
  std::string ident;
  std::string text;  // from <Airport up to, not including, </Airport>
  std::vector<WantedFix> wanted;
  std::optional<double> lat, lon;
  int approaches = 0;
  std::string magvar;            // as the source writes it
  std::vector<FixPlace> places;  // its own waypoints, NDBs and runway ends
  std::vector<CourseGap> gaps;   // in text order
};

struct VorRecord {
  std::string name, type, ident, frequency;  // Windows-1252
  double lat = 0, lon = 0;
};

struct ConvertedSource {
  std::vector<AirportText> airports;
  std::vector<NavaidText> navaids;  // NDBs and waypoints outside any airport
  std::vector<VorRecord> vors;
  std::vector<std::string> warnings;  // "FILE:LINE: ..." each
};

// `label` names the source in warnings.
ConvertedSource ConvertSource(const SourceTree& source, const std::string& label);

// The whole file: declaration, the airports with `copies[i]` (navaid texts) before the i-th
// airport's end, CR LF line ends. The courses of the gaps come from the fixes' places among
// the airport's own, its copies and `vors`.
std::string AirportFileText(const ConvertedSource& source,
                            const std::vector<std::vector<const NavaidText*>>& copies,
                            const std::vector<VorRecord>& vors);

}  // namespace velmora
