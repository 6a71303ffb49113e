#include "data/extract.h"

#include <algorithm>

#include "data/decoders.h"

namespace velmora {
namespace {

constexpr std::string_view kAirportKey = "<Airport ident";

void AddPart(std::string& out, int count, std::string_view one, std::string_view many) {
  if (count == 0) return;
  if (!out.empty()) out += ", ";
  out += std::to_string(count) + ' ' + std::string(count == 1 ? one : many);
}

// One call's worth of reader state: the slots the next records fill.
class AirportReader {
 public:
  AirportReader(Store& store, Dropped& dropped) : s_(store), dropped_(dropped) {}

  // False once the airport's </Airport> is reached.
  bool take(std::string_view key, std::string_view startKey, std::string_view line);

 private:
  // Closes a record: the counter takes the slot if the table has it.
  static void Close(bool fits, std::int32_t& last, std::int32_t& slot, int& droppedCount) {
    if (fits) {
      last = slot;
    } else {
      ++droppedCount;
    }
    ++slot;
  }

  Store& s_;
  Dropped& dropped_;
  std::int32_t runway_ = 0, start_ = 0, ils_ = 0, com_ = 0, ndb_ = 1, waypoint_ = 0;
  std::int32_t approach_ = 0, trans_ = 0, leg_ = 0;
  std::string legContext_;
};

bool AirportReader::take(std::string_view key, std::string_view startKey, std::string_view line) {
  const std::string& element = s_.CurElement;
  const auto first = [&] { return std::string(AttrValue(line)); };

  if (element == "<Airport") {
    std::string* field = key == "country"  ? &s_.ArptCountry
                         : key == "state"  ? &s_.ArptState
                         : key == "city"   ? &s_.ArptCity
                         : key == "name"   ? &s_.ArptName
                         : key == "lat"    ? &s_.ArptLat
                         : key == "lon"    ? &s_.ArptLon
                         : key == "alt"    ? &s_.ArptAlt
                         : key == "magvar" ? &s_.ArptMagvar
                                           : nullptr;
    if (field != nullptr) *field = first();
  } else if (element == "<Runway") {
    if (!s_.RwyEnd.has(runway_)) return true;
    RwyEndRow& row = s_.RwyEnd[runway_];
    if (key == "<Runway number") {
      row.number = first();
      row.designator = AttrValue2(line);
    } else if (key == "lat") {
      row.lat = first();
    } else if (key == "lon") {
      row.lon = first();
    } else if (key == "length") {
      row.length = first();
    } else if (key == "width") {
      row.width = first();
    } else if (key == "surface") {
      row.surface = first();
    }
  } else if (element == "</Runway>") {
    // Acts on the closing line and on every line behind it up to the next element line.
    ++runway_;
  } else if (element == "<Start") {
    // Under <Start the key comes from the line as read, tabs and all.
    if (startKey == "heading") {
      Close(s_.RwyEnd.has(start_), s_.RwyLast, start_, dropped_.rwyEnd);
    } else if (s_.RwyEnd.has(start_)) {
      RwyEndRow& row = s_.RwyEnd[start_];
      if (startKey == "<Start type") {
        row.type = first();
      } else if (startKey == "number") {
        row.number = first();
        row.designator = AttrValue2(line);
        row.fixName = RunwayFixName(row);
      } else if (startKey == "lat") {
        row.lat = first();
      } else if (startKey == "lon") {
        row.lon = first();
      }
    }
  } else if (element == "<Ils") {
    if (s_.Ils.has(ils_)) {
      IlsRow& row = s_.Ils[ils_];
      if (key == "<Ils end") row.end = AttrValue2(line);
      if (key == "frequency") row.frequency = first();
      if (key == "heading") row.heading = first();
      if (key == "name") row.name = first();
    }
    if (key == "name") Close(s_.Ils.has(ils_), s_.IlsLast, ils_, dropped_.ils);
  } else if (element == "<Com") {
    if (s_.Com.has(com_)) {
      ComRow& row = s_.Com[com_];
      if (key == "<Com type") row.type = first();
      if (key == "frequency") row.frequency = first();
      if (key == "name") row.name = first();
    }
    if (key == "name") Close(s_.Com.has(com_), s_.ComLast, com_, dropped_.com);
  } else if (element == "<Ndb") {
    if (s_.Ndb.has(ndb_)) {
      NdbRow& row = s_.Ndb[ndb_];
      if (key == "lat") row.lat = first();
      if (key == "lon") row.lon = first();
      if (key == "frequency") row.frequency = first();
      if (key == "ident") row.ident = first();
    }
    if (key == "name") Close(s_.Ndb.has(ndb_), s_.NdbLast, ndb_, dropped_.ndb);
  } else if (element == "<Waypoint") {
    if (s_.Waypoint.has(waypoint_)) {
      WaypointRow& row = s_.Waypoint[waypoint_];
      if (key == "waypointIdent") row.ident = first();
      if (key == "lat") row.lat = first();
      if (key == "lon") row.lon = first();
    }
    if (key == "lon")
      Close(s_.Waypoint.has(waypoint_), s_.WaypointLast, waypoint_, dropped_.waypoint);
  } else if (element == "</Airport>") {
    return false;
  } else if (element == "<Approach") {
    legContext_ = "<Approach";
    if (s_.Approach.has(approach_)) {
      ApproachRow& row = s_.Approach[approach_];
      if (key == "<Approach type") row.type = first();
      if (key == "runway") row.runway = first();
      if (key == "designator") row.designator = first();
    }
  } else if (element == "<Leg") {
    if (legContext_.empty()) return true;
    const bool ofApproach = legContext_ == "<Approach";
    // A transition in the table's top slot would read as the approach's own mark.
    const bool storable = s_.Leg.has(leg_) && (ofApproach || trans_ < kApproachLeg);
    if (storable) {
      LegRow& row = s_.Leg[leg_];
      row.app = approach_;
      row.trans = ofApproach ? kApproachLeg : trans_;
      if (key == "fixIdent") row.fixIdent = first();
      if (key == "rho") row.rho = first();
      if (key == "magneticCourse") row.magneticCourse = first();
      if (key == "altitude1" || key == "altitude2") row.altitude = first();
      if (key == "recommendedIdent") row.recommendedIdent = first();
    }
    if (key == "/>") {
      if (storable) {
        s_.LegLast = leg_++;
      } else {
        ++dropped_.leg;
      }
    }
  } else if (element == "<Transition") {
    legContext_ = "<Transition";
    if (s_.Trans.has(trans_)) {
      TransRow& row = s_.Trans[trans_];
      row.app = approach_;
      if (key == "fixType") row.fixType = first();
      if (key == "fixIdent") row.fixIdent = first();
    }
  } else if (element == "</Transition>") {
    legContext_.clear();
    s_.CurElement.clear();
    Close(s_.Trans.has(trans_), s_.TransLast, trans_, dropped_.trans);
  } else if (element == "</Approach>") {
    s_.CurElement.clear();
    Close(s_.Approach.has(approach_), s_.AppLast, approach_, dropped_.approach);
  }
  return true;
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
  LineReader reader;
  const OpenStatus status = reader.open(file);
  if (status == OpenStatus::kOpened) return ExtractArpt(store, reader, searchIdent);
  store.ClearArpt();
  ExtractReport report;
  report.notRegular = status == OpenStatus::kNotRegular;
  return report;
}

ExtractReport ExtractArpt(Store& store, LineReader& reader, std::string_view searchIdent) {
  ExtractReport report;
  report.opened = true;
  store.ClearArpt();
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
  report.longLines = reader.longLines();
  report.found = store.hasAirport();
  return report;
}

}  // namespace velmora
