#include "data/extract.h"

#include <algorithm>

#include "data/decoders.h"
#include "data/line_reader.h"

namespace velmora {
namespace {

constexpr std::string_view kAirportKey = "<Airport ident";

void AddPart(std::string& out, int count, std::string_view one, std::string_view many) {
  if (count == 0) return;
  if (!out.empty()) out += ", ";
  out += std::to_string(count) + ' ' + std::string(count == 1 ? one : many);
}

// One attribute line of the wanted airport, tabs already turned into blanks except in
// `startKey`, which is the key of the line as read.
struct AttrLine {
  std::string_view key, startKey, line;
  std::string first() const { return std::string(AttrValue(line)); }
  std::string second() const { return std::string(AttrValue2(line)); }
};

// One call's worth of reader state: the slots the next records fill. Each element word has
// its handler, which sees every line from that word up to the next element line.
class AirportReader {
 public:
  AirportReader(Store& store, Dropped& dropped) : s_(store), dropped_(dropped) {}

  // False once the airport's </Airport> is reached.
  bool take(std::string_view key, std::string_view startKey, std::string_view line);

 private:
  using Handler = void (AirportReader::*)(const AttrLine&);
  struct Entry {
    std::string_view element;
    Handler handler;
  };
  static const Entry kHandlers[];

  // Closes a record: the counter takes the slot if the table has it.
  static void Close(bool fits, std::int32_t& last, std::int32_t& slot, int& droppedCount) {
    if (fits) {
      last = slot;
    } else {
      ++droppedCount;
    }
    ++slot;
  }

  void airport(const AttrLine& l);
  void runway(const AttrLine& l);
  void runwayEnd(const AttrLine& l);
  void start(const AttrLine& l);
  void ils(const AttrLine& l);
  void com(const AttrLine& l);
  void ndb(const AttrLine& l);
  void waypoint(const AttrLine& l);
  void approach(const AttrLine& l);
  void leg(const AttrLine& l);
  void transition(const AttrLine& l);
  void transitionEnd(const AttrLine& l);
  void approachEnd(const AttrLine& l);

  Store& s_;
  Dropped& dropped_;
  std::int32_t runway_ = 0, start_ = 0, ils_ = 0, com_ = 0, ndb_ = 1, waypoint_ = 0;
  std::int32_t approach_ = 0, trans_ = 0, leg_ = 0;
  enum class LegOwner { kNone, kApproach, kTransition } legOwner_ = LegOwner::kNone;
};

constexpr std::string_view kAirportEnd = "</Airport>";

const AirportReader::Entry AirportReader::kHandlers[] = {
    {"<Airport", &AirportReader::airport},
    {"<Runway", &AirportReader::runway},
    {"</Runway>", &AirportReader::runwayEnd},
    {"<Start", &AirportReader::start},
    {"<Ils", &AirportReader::ils},
    {"<Com", &AirportReader::com},
    {"<Ndb", &AirportReader::ndb},
    {"<Waypoint", &AirportReader::waypoint},
    {"<Approach", &AirportReader::approach},
    {"<Leg", &AirportReader::leg},
    {"<Transition", &AirportReader::transition},
    {"</Transition>", &AirportReader::transitionEnd},
    {"</Approach>", &AirportReader::approachEnd},
};

bool AirportReader::take(std::string_view key, std::string_view startKey, std::string_view line) {
  const std::string& element = s_.CurElement;
  if (element == kAirportEnd) return false;
  for (const Entry& e : kHandlers) {
    if (e.element == element) {
      (this->*e.handler)(AttrLine{key, startKey, line});
      break;
    }
  }
  return true;
}

void AirportReader::airport(const AttrLine& l) {
  std::string* field = l.key == "country"  ? &s_.ArptCountry
                       : l.key == "state"  ? &s_.ArptState
                       : l.key == "city"   ? &s_.ArptCity
                       : l.key == "name"   ? &s_.ArptName
                       : l.key == "lat"    ? &s_.ArptLat
                       : l.key == "lon"    ? &s_.ArptLon
                       : l.key == "alt"    ? &s_.ArptAlt
                       : l.key == "magvar" ? &s_.ArptMagvar
                                           : nullptr;
  if (field != nullptr) *field = l.first();
}

void AirportReader::runway(const AttrLine& l) {
  if (!s_.RwyEnd.has(runway_)) return;
  RwyEndRow& row = s_.RwyEnd[runway_];
  if (l.key == "<Runway number") {
    row.number = l.first();
    row.designator = l.second();
    return;
  }
  std::string* field = l.key == "lat"       ? &row.lat
                       : l.key == "lon"     ? &row.lon
                       : l.key == "length"  ? &row.length
                       : l.key == "width"   ? &row.width
                       : l.key == "surface" ? &row.surface
                                            : nullptr;
  if (field != nullptr) *field = l.first();
}

void AirportReader::runwayEnd(const AttrLine&) {
  // Acts on the closing line and on every line behind it up to the next element line.
  ++runway_;
}

void AirportReader::start(const AttrLine& l) {
  // Under <Start the key comes from the line as read, tabs and all.
  if (l.startKey == "heading") {
    Close(s_.RwyEnd.has(start_), s_.RwyLast, start_, dropped_.rwyEnd);
    return;
  }
  if (!s_.RwyEnd.has(start_)) return;
  RwyEndRow& row = s_.RwyEnd[start_];
  if (l.startKey == "<Start type") {
    row.type = l.first();
  } else if (l.startKey == "number") {
    row.number = l.first();
    row.designator = l.second();
    row.fixName = RunwayFixName(row);
  } else if (l.startKey == "lat") {
    row.lat = l.first();
  } else if (l.startKey == "lon") {
    row.lon = l.first();
  }
}

void AirportReader::ils(const AttrLine& l) {
  if (s_.Ils.has(ils_)) {
    IlsRow& row = s_.Ils[ils_];
    if (l.key == "<Ils end") row.end = l.second();
    if (l.key == "frequency") row.frequency = l.first();
    if (l.key == "heading") row.heading = l.first();
    if (l.key == "name") row.name = l.first();
  }
  if (l.key == "name") Close(s_.Ils.has(ils_), s_.IlsLast, ils_, dropped_.ils);
}

void AirportReader::com(const AttrLine& l) {
  if (s_.Com.has(com_)) {
    ComRow& row = s_.Com[com_];
    if (l.key == "<Com type") row.type = l.first();
    if (l.key == "frequency") row.frequency = l.first();
    if (l.key == "name") row.name = l.first();
  }
  if (l.key == "name") Close(s_.Com.has(com_), s_.ComLast, com_, dropped_.com);
}

void AirportReader::ndb(const AttrLine& l) {
  if (s_.Ndb.has(ndb_)) {
    NdbRow& row = s_.Ndb[ndb_];
    if (l.key == "lat") row.lat = l.first();
    if (l.key == "lon") row.lon = l.first();
    if (l.key == "frequency") row.frequency = l.first();
    if (l.key == "ident") row.ident = l.first();
  }
  if (l.key == "name") Close(s_.Ndb.has(ndb_), s_.NdbLast, ndb_, dropped_.ndb);
}

void AirportReader::waypoint(const AttrLine& l) {
  if (s_.Waypoint.has(waypoint_)) {
    WaypointRow& row = s_.Waypoint[waypoint_];
    if (l.key == "waypointIdent") row.ident = l.first();
    if (l.key == "lat") row.lat = l.first();
    if (l.key == "lon") row.lon = l.first();
  }
  if (l.key == "lon") {
    Close(s_.Waypoint.has(waypoint_), s_.WaypointLast, waypoint_, dropped_.waypoint);
  }
}

void AirportReader::approach(const AttrLine& l) {
  legOwner_ = LegOwner::kApproach;
  if (!s_.Approach.has(approach_)) return;
  ApproachRow& row = s_.Approach[approach_];
  if (l.key == "<Approach type") row.type = l.first();
  if (l.key == "runway") row.runway = l.first();
  if (l.key == "designator") row.designator = l.first();
}

void AirportReader::leg(const AttrLine& l) {
  if (legOwner_ == LegOwner::kNone) return;
  const bool ofApproach = legOwner_ == LegOwner::kApproach;
  // A transition in the table's top slot would read as the approach's own mark.
  const bool storable = s_.Leg.has(leg_) && (ofApproach || trans_ < kApproachLeg);
  if (storable) {
    LegRow& row = s_.Leg[leg_];
    row.app = approach_;
    row.trans = ofApproach ? kApproachLeg : trans_;
    if (l.key == "fixIdent") row.fixIdent = l.first();
    if (l.key == "rho") row.rho = l.first();
    if (l.key == "magneticCourse") row.magneticCourse = l.first();
    if (l.key == "altitude1" || l.key == "altitude2") row.altitude = l.first();
    if (l.key == "recommendedIdent") row.recommendedIdent = l.first();
  }
  if (l.key != "/>") return;
  if (storable) {
    s_.LegLast = leg_++;
  } else {
    ++dropped_.leg;
  }
}

void AirportReader::transition(const AttrLine& l) {
  legOwner_ = LegOwner::kTransition;
  if (!s_.Trans.has(trans_)) return;
  TransRow& row = s_.Trans[trans_];
  row.app = approach_;
  if (l.key == "fixType") row.fixType = l.first();
  if (l.key == "fixIdent") row.fixIdent = l.first();
}

void AirportReader::transitionEnd(const AttrLine&) {
  legOwner_ = LegOwner::kNone;
  s_.CurElement.clear();
  Close(s_.Trans.has(trans_), s_.TransLast, trans_, dropped_.trans);
}

void AirportReader::approachEnd(const AttrLine&) {
  s_.CurElement.clear();
  Close(s_.Approach.has(approach_), s_.AppLast, approach_, dropped_.approach);
}

}  // namespace

std::string Dropped::text() const {
  std::string out;
  AddPart(out, rwyEnd, "runway end", "runway ends");
  AddPart(out, com, "frequency", "frequencies");
  AddPart(out, ils, "ILS", "ILS");
  AddPart(out, ndb, "NDB", "NDBs");
  AddPart(out, waypoint, "waypoint", "waypoints");
  AddPart(out, approach, "approach", "approaches");
  AddPart(out, trans, "transition", "transitions");
  AddPart(out, leg, "leg", "legs");
  return out;
}

std::string RunwayFixName(const RwyEndRow& row) {
  if (row.type == "HELIPAD" || row.number.size() > 2) return {};
  std::string name = "RW";
  if (row.number.size() == 1) name += '0';
  name += row.number;
  if (row.designator != "NONE" && !row.designator.empty()) name += row.designator.front();
  return name;
}

ExtractReport ExtractArpt(Store& store, const std::filesystem::path& file,
                          std::string_view searchIdent) {
  ExtractReport report;
  store.ClearArpt();
  LineReader reader;
  report.opened = reader.open(file);
  if (!report.opened) return report;

  AirportReader airport(store, report.dropped);
  bool flag = false;
  std::string work, scratch;
  std::string_view raw;
  // Lines of other airports can only matter if they raise the flag, so they are skipped
  // wholesale up to the next line that could.
  while (flag ? reader.next(raw) : reader.nextContaining(kAirportKey, raw)) {
    std::string_view asRead = raw;
    const std::string_view startKey = AttrKey(asRead);
    if (startKey == kAirportKey) flag = AttrValue(asRead) == searchIdent;
    if (!flag) continue;
    store.ArptIdent = searchIdent;

    work.assign(raw);
    std::replace(work.begin(), work.end(), '\t', ' ');
    scratch = work;
    ScanElement(scratch, store.CurElement);
    std::string_view line = work;
    const std::string_view key = AttrKey(line);
    if (!airport.take(key, startKey, line)) break;
  }
  report.readError = reader.failed();
  report.found = store.hasAirport();
  return report;
}

}  // namespace velmora
