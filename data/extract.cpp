#include "data/extract.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

#include "data/airport_scan.h"
#include "data/decoders.h"
#include "data/runway_text.h"

namespace velmora {
namespace {

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

// Text fields of a row by their key.
template <class Row>
using Fields = std::initializer_list<std::pair<std::string_view, std::string Row::*>>;

template <class Row>
void Assign(Row& row, const AttrLine& l, Fields<Row> fields) {
  for (const auto& [key, member] : fields) {
    if (l.key == key) row.*member = l.first();
  }
}

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

  // A record of one table: its fields fill the slot until the line with `closeKey` closes it.
  template <class Row, std::int32_t Highest>
  static void Record(Table<Row, Highest>& table, std::int32_t& slot, std::int32_t& last,
                     int& droppedCount, const AttrLine& l, std::string_view closeKey,
                     Fields<Row> fields) {
    if (table.has(slot)) Assign(table[slot], l, fields);
    if (l.key == closeKey) Close(table.has(slot), last, slot, droppedCount);
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
  void glideSlope(const AttrLine& l);
  void approachLegs(const AttrLine&) { missed_ = false; }
  void missedLegs(const AttrLine&) { missed_ = true; }

  Store& s_;
  Dropped& dropped_;
  std::int32_t runway_ = 0, start_ = 0, ils_ = 0, com_ = 0, ndb_ = 1, waypoint_ = 0;
  std::int32_t approach_ = 0, trans_ = 0, leg_ = 0;
  enum class LegOwner { kNone, kApproach, kTransition } legOwner_ = LegOwner::kNone;
  // For the profile alone: the ILS record a <GlideSlope behind it belongs to, and whether the
  // legs now read are the missed approach's.
  std::int32_t glideSlopeIls_ = -1;
  bool missed_ = false;
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
    {"<GlideSlope", &AirportReader::glideSlope},
    {"<ApproachLegs>", &AirportReader::approachLegs},
    {"<MissedApproachLegs>", &AirportReader::missedLegs},
    {"</MissedApproachLegs>", &AirportReader::approachLegs},
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
  // In the order of kArptKeys, which the index builder reads too.
  const std::array<std::string*, kArptKeys.size()> fields = {
      &s_.ArptCountry, &s_.ArptState, &s_.ArptCity, &s_.ArptName,
      &s_.ArptLat,     &s_.ArptLon,   &s_.ArptAlt,  &s_.ArptMagvar};
  if (const int i = ArptKeyIndex(l.key); i >= 0) *fields[static_cast<std::size_t>(i)] = l.first();
}

void AirportReader::runway(const AttrLine& l) {
  if (!s_.RwyEnd.has(runway_)) return;
  RwyEndRow& row = s_.RwyEnd[runway_];
  if (l.key == "<Runway number") row.designator = l.second();
  Assign<RwyEndRow>(row, l,
                    {{"<Runway number", &RwyEndRow::number},
                     {"lat", &RwyEndRow::lat},
                     {"lon", &RwyEndRow::lon},
                     {"length", &RwyEndRow::length},
                     {"width", &RwyEndRow::width},
                     {"surface", &RwyEndRow::surface}});
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
  } else if (l.startKey == "alt") {
    row.alt = l.first();
  }
}

void AirportReader::ils(const AttrLine& l) {
  if (l.key == "<Ils end" && s_.Ils.has(ils_)) s_.Ils[ils_].end = l.second();
  const std::int32_t slot = ils_;
  Record(
      s_.Ils, ils_, s_.IlsLast, dropped_.ils, l, "name",
      {{"frequency", &IlsRow::frequency}, {"heading", &IlsRow::heading}, {"name", &IlsRow::name}});
  // The name closes the record; its children, the glide slope among them, come behind it.
  if (ils_ != slot) glideSlopeIls_ = s_.Ils.has(slot) ? slot : -1;
}

void AirportReader::glideSlope(const AttrLine& l) {
  if (l.key == "pitch" && s_.Ils.has(glideSlopeIls_)) {
    s_.Ils[glideSlopeIls_].glideSlopePitch = l.first();
  }
}

void AirportReader::com(const AttrLine& l) {
  Record(
      s_.Com, com_, s_.ComLast, dropped_.com, l, "name",
      {{"<Com type", &ComRow::type}, {"frequency", &ComRow::frequency}, {"name", &ComRow::name}});
}

void AirportReader::ndb(const AttrLine& l) {
  Record(s_.Ndb, ndb_, s_.NdbLast, dropped_.ndb, l, "name",
         {{"lat", &NdbRow::lat},
          {"lon", &NdbRow::lon},
          {"frequency", &NdbRow::frequency},
          {"ident", &NdbRow::ident}});
}

void AirportReader::waypoint(const AttrLine& l) {
  Record(s_.Waypoint, waypoint_, s_.WaypointLast, dropped_.waypoint, l, "lon",
         {{"waypointIdent", &WaypointRow::ident},
          {"lat", &WaypointRow::lat},
          {"lon", &WaypointRow::lon}});
}

void AirportReader::approach(const AttrLine& l) {
  legOwner_ = LegOwner::kApproach;
  missed_ = false;
  if (!s_.Approach.has(approach_)) return;
  Assign<ApproachRow>(s_.Approach[approach_], l,
                      {{"<Approach type", &ApproachRow::type},
                       {"runway", &ApproachRow::runway},
                       {"designator", &ApproachRow::designator}});
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
    row.missed = ofApproach && missed_;
    Assign<LegRow>(row, l,
                   {{"fixIdent", &LegRow::fixIdent},
                    {"rho", &LegRow::rho},
                    {"magneticCourse", &LegRow::magneticCourse},
                    {"altitude1", &LegRow::altitude},
                    {"altitude2", &LegRow::altitude},
                    {"recommendedIdent", &LegRow::recommendedIdent},
                    {"<Leg type", &LegRow::type},
                    {"altitudeDescriptor", &LegRow::altitudeDescriptor},
                    {"altitude1", &LegRow::altitude1},
                    {"altitude2", &LegRow::altitude2}});
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
  missed_ = false;
  if (!s_.Trans.has(trans_)) return;
  TransRow& row = s_.Trans[trans_];
  row.app = approach_;
  Assign<TransRow>(row, l, {{"fixType", &TransRow::fixType}, {"fixIdent", &TransRow::fixIdent}});
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
  return "RW" + RunwayNumberText(row.number) + DesignatorLetter(row.designator);
}

ExtractReport ExtractArpt(Store& store, const std::filesystem::path& file,
                          std::string_view searchIdent) {
  store.ClearArpt();
  return ReadFileWith<ExtractReport>(
      file, [&](LineReader& reader) { return ExtractArpt(store, reader, searchIdent); });
}

ExtractReport ExtractArpt(Store& store, LineReader& reader, std::string_view searchIdent) {
  ExtractReport report;
  store.ClearArpt();
  AirportReader airport(store, report.dropped);
  AirportLine work;
  bool flag = false;
  std::string_view raw;
  while (NextAirportLine(reader, flag, raw)) {
    const LineHead head = ReadLineHead(raw);
    if (head.opensAirport) flag = head.ident == searchIdent;
    if (!flag) continue;
    store.ArptIdent = searchIdent;
    const std::string_view key = work.take(raw, store.CurElement);
    if (!airport.take(key, head.key, work.line())) break;
  }
  report.take(reader);
  report.found = store.hasAirport();
  return report;
}

}  // namespace velmora
