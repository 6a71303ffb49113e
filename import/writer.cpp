#include "import/writer.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

#include "data/extract.h"
#include "data/numbers.h"
#include "data/text.h"
#include "import/units.h"

namespace velmora {
namespace {

constexpr std::string_view kEol = "\r\n";
constexpr std::string_view kCourseKey = "magneticCourse";

// How the reader wants a record: `first` (and `second`, read by position) on the element line,
// `pair` and `pairSecond` together on the next, then `reads` in order, the attributes it does
// not read, and `last`, which closes the record. A closing attribute the source lacks is
// written empty, or the reader would let the next record of its kind run over this one.
struct Layout {
  std::string_view element, first, second, pair, pairSecond;
  std::vector<std::string_view> reads;
  std::string_view last;
  bool children = false;
};

const std::array<Layout, 12> kLayouts = {{
    {"Airport",
     "ident",
     "",
     "",
     "",
     {"country", "state", "city", "name", "lat", "lon", "alt", "magvar"},
     "",
     true},
    {"Runway",
     "number",
     "designator",
     "",
     "",
     {"lat", "lon", "length", "width", "surface"},
     "",
     true},
    {"Start", "type", "", "number", "designator", {"lat", "lon"}, "heading", false},
    {"Ils", "end", "ident", "", "", {"frequency", "heading"}, "name", false},
    {"Com", "type", "", "", "", {"frequency"}, "name", false},
    {"Ndb", "", "", "", "", {"lat", "lon", "frequency", "ident"}, "name", false},
    {"Waypoint", "", "", "", "", {"waypointIdent", "lat"}, "lon", false},
    {"Approach", "type", "", "", "", {"runway", "designator"}, "", true},
    {"ApproachLegs", "", "", "", "", {}, "", true},
    {"MissedApproachLegs", "", "", "", "", {}, "", true},
    {"TransitionLegs", "", "", "", "", {}, "", true},
    {"Transition", "transitionType", "", "", "", {"fixType", "fixIdent"}, "", true},
}};
const Layout kLegLayout = {
    "Leg", "type", "",
    "",    "",     {"fixIdent", "rho", kCourseKey, "altitude1", "altitude2", "recommendedIdent"},
    "",    false};

const Layout* LayoutOf(std::string_view element) {
  if (element == "Leg") return &kLegLayout;
  for (const Layout& l : kLayouts) {
    if (l.element == element) return &l;
  }
  return nullptr;
}

using Converter = Converted (*)(std::string_view);
Converted Lat(std::string_view v) {
  return CoordinateValue(v, true);
}
Converted Lon(std::string_view v) {
  return CoordinateValue(v, false);
}

// The values the reader reads and that carry a unit or a form of their own.
Converter ConverterOf(std::string_view element, std::string_view key) {
  const bool positioned = element == "Airport" || element == "Runway" || element == "Start" ||
                          element == "Ndb" || element == "Waypoint";
  if (positioned && key == "lat") return Lat;
  if (positioned && key == "lon") return Lon;
  if (element == "Airport" && key == "alt") return LengthValue;
  if (element == "Runway" && (key == "length" || key == "width")) return RunwaySizeValue;
  if (element == "Airport" && key == "magvar") return MagvarValue;
  if (element == "Ils" && key == "heading") return CourseValue;
  if ((element == "Ils" || element == "Vor") && key == "frequency") return NavFrequencyValue;
  if (element == "Com" && key == "frequency") return ComFrequencyValue;
  if (element == "Ndb" && key == "frequency") return NdbFrequencyValue;
  if (element == "Leg" && (key == "altitude1" || key == "altitude2")) return AltitudeValue;
  if (element == "Leg" && key == "rho") return RhoValue;
  if (element == "Leg" && key == kCourseKey) return CourseValue;
  return nullptr;
}

// The reader splits at every double quote and takes any "<" for an element: both must go as
// references. Entities are not decoded by the reader, so they show as written.
std::string Escaped(const std::string& value) {
  return EscapeXml(value, "&<\"");
}

// Legs whose type ends in F (IF, TF, CF, DF, RF, AF, HF) end at their fix; the others end at
// an altitude, a distance, a radial or wherever the pilot leaves them.
bool EndsAtFix(const SourceElement& leg) {
  const std::string* type = leg.attr("type");
  return type != nullptr && type->size() == 2 && (type->back() & ~0x20) == 'F';
}

// Only a track-to-fix leg is flown along the track between its two fixes; FSX stores 0 for its
// course. Other legs give their own course or none (an arc's chord or a direct leg's start is
// no course to print).
bool TrackGivesCourse(const SourceElement& leg) {
  const std::string* type = leg.attr("type");
  if (type == nullptr || UpperCase(*type) != "TF") return false;
  const std::string* course = leg.attr(kCourseKey);
  if (course == nullptr) return true;
  const Converted c = CourseValue(*course);
  return c.problem.empty() && (c.text.empty() || ParseNumber(c.text) == 0.0);
}

class Writer {
 public:
  Writer(std::string& out, const std::string& label, std::vector<std::string>& warnings)
      : out_(out), label_(label), warnings_(warnings) {}

  void element(const SourceElement& e, int depth);
  std::string value(const SourceElement& e, std::string_view key);
  std::vector<CourseGap> takeGaps() { return std::move(gaps_); }

 private:
  void indent(int depth) { out_.append(static_cast<std::size_t>(depth) * 4, ' '); }
  void next(int depth) {
    out_ += kEol;
    indent(depth);
  }
  void line(int depth, std::string_view text) {
    indent(depth);
    out_ += text;
    out_ += kEol;
  }
  void attr(const SourceElement& e, std::string_view key);
  void attributeLines(const SourceElement& e, const Layout& l, int depth);
  void children(const SourceElement& e, int depth);
  void courseGap(const SourceElement& leg, int depth);

  std::string& out_;
  const std::string& label_;
  std::vector<std::string>& warnings_;
  std::vector<CourseGap> gaps_;
  std::string lastFix_;   // where the legs written so far end, empty when not at a fix
  bool gapHere_ = false;  // the leg being written gets its course from its fixes
};

std::string Writer::value(const SourceElement& e, std::string_view key) {
  const std::string* v = e.attr(key);
  if (v == nullptr) return {};
  const Converter convert = ConverterOf(e.name, key);
  if (convert == nullptr) return *v;
  Converted c = convert(*v);
  if (!c.problem.empty()) {
    warnings_.push_back(label_ + ":" + std::to_string(e.line) + ": " + e.name + " " +
                        std::string(key) + "=\"" + *v + "\": " + c.problem + " - left empty");
  }
  return std::move(c.text);
}

// Appends `key="value"` (converted and escaped) to the output.
void Writer::attr(const SourceElement& e, std::string_view key) {
  out_ += key;
  out_ += "=\"";
  out_ += Escaped(value(e, key));
  out_ += '"';
}

// The record's attribute lines, the element line first; the output ends without line end, so
// the caller can close the tag on the last line.
void Writer::attributeLines(const SourceElement& e, const Layout& l, int depth) {
  indent(depth);
  out_ += '<';
  out_ += e.name;
  const bool hasFirst = !l.first.empty() && e.attr(l.first);
  if (hasFirst) {
    out_ += ' ';
    attr(e, l.first);
    if (!l.second.empty() && e.attr(l.second)) {
      out_ += ' ';
      attr(e, l.second);
    }
  }
  const bool hasPair = !l.pair.empty() && e.attr(l.pair);
  if (hasPair) {
    next(depth + 1);
    attr(e, l.pair);
    if (e.attr(l.pairSecond)) {
      out_ += ' ';
      attr(e, l.pairSecond);
    }
  }
  for (std::string_view key : l.reads) {
    if (gapHere_ && key == kCourseKey) {
      courseGap(e, depth + 1);
    } else if (e.attr(key)) {
      next(depth + 1);
      attr(e, key);
    }
  }
  for (const auto& [key, v] : e.attrs) {
    const bool placed = (hasFirst && (key == l.first || key == l.second)) ||
                        (hasPair && (key == l.pair || key == l.pairSecond)) || key == l.last ||
                        std::find(l.reads.begin(), l.reads.end(), key) != l.reads.end();
    if (!placed) {
      next(depth + 1);
      attr(e, key);
    }
  }
  if (!l.last.empty()) {
    next(depth + 1);
    attr(e, l.last);
  }
}

// The course line is left out and its place noted; what the source gives is kept for the case
// that a fix can't be placed.
void Writer::courseGap(const SourceElement& leg, int depth) {
  CourseGap g{out_.size(), lastFix_, *leg.attr("fixIdent"), std::string(kEol), ""};
  g.lead.append(static_cast<std::size_t>(depth) * 4, ' ');
  if (leg.attr(kCourseKey)) {
    next(depth);
    attr(leg, kCourseKey);
    g.asGiven = out_.substr(g.at);
    out_.resize(g.at);
  }
  gaps_.push_back(std::move(g));
}

void Writer::element(const SourceElement& e, int depth) {
  const Layout* l = LayoutOf(e.name);
  if (l == nullptr) return;
  // An approach's legs start anew, and so do a transition's; the missed approach goes on from
  // the approach's last fix.
  if (e.name == "Approach" || e.name == "Transition") lastFix_.clear();
  const bool leg = l == &kLegLayout;
  const std::string* fix = e.attr("fixIdent");
  gapHere_ = leg && fix != nullptr && !fix->empty() && !lastFix_.empty() && TrackGivesCourse(e);
  attributeLines(e, *l, depth);
  if (leg) lastFix_ = fix != nullptr && EndsAtFix(e) ? *fix : "";
  out_ += l->children ? ">" : leg ? "" : "/>";
  out_ += kEol;
  // A leg ends at a line that holds "/>" and nothing else.
  if (leg) line(depth + 1, "/>");
  if (!l->children) return;
  children(e, depth + 1);
  if (e.name == "Airport") return;  // the caller adds copied fixes before the end
  line(depth, "</" + e.name + ">");
  // The reader steps its runway slot once more on the one line behind </Runway>.
  if (e.name == "Runway") line(0, "");
}

void Writer::children(const SourceElement& e, int depth) {
  // Runways before starts, so that a runway and the start of its first end share a slot; the
  // approach's own legs before its transitions, which would otherwise claim them.
  static const std::array<std::string_view, 12> kOrder = {"Runway",
                                                          "Start",
                                                          "Com",
                                                          "Ils",
                                                          "Ndb",
                                                          "Waypoint",
                                                          "Approach",
                                                          "ApproachLegs",
                                                          "MissedApproachLegs",
                                                          "Transition",
                                                          "TransitionLegs",
                                                          "Leg"};
  for (std::string_view kind : kOrder) {
    for (const SourceElement& c : e.children) {
      if (c.name == kind) element(c, depth);
    }
  }
}

// The fix kind a leg or transition names: NDB, waypoint, or none (VORs, runways).
std::optional<bool> FixIsNdb(const std::string* type) {
  const std::string t = type ? UpperCase(*type) : "";
  if (t.find("NDB") != std::string::npos) return true;
  if (t.find("VOR") != std::string::npos || t.find("RUNWAY") != std::string::npos ||
      t.find("LOCALIZER") != std::string::npos) {
    return std::nullopt;
  }
  return false;
}

void WantFix(AirportText& a, const std::string* ident, const std::string* type) {
  if (ident == nullptr || ident->empty()) return;
  const auto ndb = FixIsNdb(type);
  if (!ndb) return;
  for (const WantedFix& w : a.wanted) {
    if (w.ident == *ident && w.ndb == *ndb) return;
  }
  a.wanted.push_back({*ident, *ndb});
}

// Every fix the approaches name, less those the airport holds itself.
void CollectWanted(const SourceElement& airport, AirportText& a) {
  std::vector<std::pair<std::string, bool>> own;
  for (const SourceElement& c : airport.children) {
    if (c.name == "Ndb" && c.attr("ident")) own.emplace_back(*c.attr("ident"), true);
    if (c.name == "Waypoint" && c.attr("waypointIdent")) {
      own.emplace_back(*c.attr("waypointIdent"), false);
    }
  }
  const std::function<void(const SourceElement&)> visit = [&](const SourceElement& e) {
    if (e.name == "Leg") {
      WantFix(a, e.attr("fixIdent"), e.attr("fixType"));
      WantFix(a, e.attr("recommendedIdent"), e.attr("recommendedType"));
    }
    if (e.name == "Transition") WantFix(a, e.attr("fixIdent"), e.attr("fixType"));
    for (const SourceElement& c : e.children) visit(c);
  };
  for (const SourceElement& c : airport.children) {
    if (c.name == "Approach") {
      ++a.approaches;
      visit(c);
    }
  }
  std::erase_if(a.wanted, [&](const WantedFix& w) {
    return std::find(own.begin(), own.end(), std::pair{w.ident, w.ndb}) != own.end();
  });
}

std::optional<double> Degrees(const SourceElement& e, bool latitude) {
  const std::string* v = e.attr(latitude ? "lat" : "lon");
  return v ? CoordinateDegrees(*v, latitude) : std::nullopt;
}

// The airport's own fixes where the chart finds them: waypoints, NDBs, and runway ends under the
// names the reader gives its start records.
std::vector<FixPlace> OwnPlaces(const SourceElement& airport) {
  std::vector<FixPlace> places;
  for (const SourceElement& c : airport.children) {
    const auto text = [&](std::string_view key) {
      const std::string* v = c.attr(key);
      return v ? *v : std::string();
    };
    FixPlace p;
    if (c.name == "Waypoint") {
      p = {text("waypointIdent"), FixKind::kWaypoint};
    } else if (c.name == "Ndb") {
      p = {text("ident"), FixKind::kNdb};
    } else if (c.name == "Start") {
      RwyEndRow row;
      row.type = text("type");
      row.number = text("number");
      row.designator = text("designator");
      p = {RunwayFixName(row), FixKind::kRunway};
    }
    const auto lat = Degrees(c, true);
    const auto lon = Degrees(c, false);
    if (p.ident.empty() || !lat || !lon) continue;
    p.lat = *lat;
    p.lon = *lon;
    places.push_back(std::move(p));
  }
  return places;
}

void AddVor(const SourceElement& r, const std::string& label, ConvertedSource& out) {
  const auto lat = Degrees(r, true);
  const auto lon = Degrees(r, false);
  if (!lat || !lon) {
    out.warnings.push_back(label + ":" + std::to_string(r.line) +
                           ": Vor without a readable position - not added to vor.nav");
    return;
  }
  const auto text = [&](std::string_view key) {
    const std::string* v = r.attr(key);
    return v ? *v : std::string();
  };
  // The list's frequency prints as it stands, as an ILS frequency does.
  std::string unused;
  const std::string frequency = Writer(unused, label, out.warnings).value(r, "frequency");
  out.vors.push_back({text("name"), text("type"), text("ident"), frequency, *lat, *lon});
}

std::optional<FixPlace> NearestVor(const std::string& ident, const AirportText& a,
                                   const std::vector<VorRecord>& vors) {
  std::optional<FixPlace> best;
  double bestNm = kFixReachNm;
  if (!a.lat || !a.lon) return best;
  for (const VorRecord& v : vors) {
    const double nm = DistanceNm(*a.lat, *a.lon, v.lat, v.lon);
    if (v.ident == ident && nm <= bestNm) {
      best = FixPlace{ident, FixKind::kVor, v.lat, v.lon};
      bestNm = nm;
    }
  }
  return best;
}

// Where the chart will find `ident` for the airport: in the chart's order of tables, its own
// fixes before those copied in, and of the VORs the nearest within reach.
std::optional<FixPlace> PlaceOf(const std::string& ident, const AirportText& a,
                                const std::vector<const NavaidText*>& copies,
                                const std::vector<VorRecord>& vors) {
  for (const FixKind kind : {FixKind::kWaypoint, FixKind::kNdb, FixKind::kVor, FixKind::kRunway}) {
    for (const FixPlace& p : a.places) {
      if (p.kind == kind && p.ident == ident) return p;
    }
    for (const NavaidText* n : copies) {
      const FixKind copied = n->ndb ? FixKind::kNdb : FixKind::kWaypoint;
      if (copied == kind && n->ident == ident) return FixPlace{ident, kind, n->lat, n->lon};
    }
    if (kind == FixKind::kVor) {
      if (auto vor = NearestVor(ident, a, vors)) return vor;
    }
  }
  return std::nullopt;
}

std::string CourseLine(const CourseGap& g, const AirportText& a,
                       const std::vector<const NavaidText*>& copies,
                       const std::vector<VorRecord>& vors) {
  const auto from = PlaceOf(g.from, a, copies, vors);
  const auto to = PlaceOf(g.to, a, copies, vors);
  if (!from || !to || (from->lat == to->lat && from->lon == to->lon)) return g.asGiven;
  const double course = TrueCourse(from->lat, from->lon, to->lat, to->lon);
  return g.lead + std::string(kCourseKey) + "=\"" + MagneticCourseText(course, a.magvar) + '"';
}

}  // namespace

ConvertedSource ConvertSource(const SourceTree& source, const std::string& label) {
  ConvertedSource out;
  for (const SourceElement& r : source.records) {
    if (r.name == "Vor") {
      AddVor(r, label, out);
      continue;
    }
    const bool airport = r.name == "Airport";
    std::string text;
    Writer writer(text, label, out.warnings);
    writer.element(r, airport ? 0 : 1);
    const std::string* ident = r.attr(r.name == "Waypoint" ? "waypointIdent" : "ident");
    if (airport) {
      AirportText& a = out.airports.emplace_back();
      a.ident = ident ? *ident : "";
      a.text = std::move(text);
      a.lat = Degrees(r, true);
      a.lon = Degrees(r, false);
      CollectWanted(r, a);
      if (const std::string* magvar = r.attr("magvar")) a.magvar = *magvar;
      a.places = OwnPlaces(r);
      a.gaps = writer.takeGaps();
      continue;
    }
    const auto lat = Degrees(r, true);
    const auto lon = Degrees(r, false);
    if (ident && lat && lon)
      out.navaids.push_back({*ident, r.name == "Ndb", *lat, *lon, std::move(text)});
  }
  return out;
}

std::string AirportFileText(const ConvertedSource& source,
                            const std::vector<std::vector<const NavaidText*>>& copies,
                            const std::vector<VorRecord>& vors) {
  static const std::vector<const NavaidText*> kNone;
  std::string out;
  out += "<?xml version=\"1.0\" encoding=\"Windows-1252\"?>";
  out += kEol;
  out +=
      "<FSData version=\"9.0\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xsi:noNamespaceSchemaLocation=\"bglcomp.xsd\">";
  out += kEol;
  for (std::size_t i = 0; i < source.airports.size(); ++i) {
    const AirportText& a = source.airports[i];
    const auto& copied = i < copies.size() ? copies[i] : kNone;
    std::size_t at = 0;
    for (const CourseGap& g : a.gaps) {
      out.append(a.text, at, g.at - at);
      out += CourseLine(g, a, copied, vors);
      at = g.at;
    }
    out.append(a.text, at);
    for (const NavaidText* n : copied) out += n->text;
    out += "</Airport>";
    out += kEol;
    out += kEol;
  }
  out += "</FSData>";
  out += kEol;
  return out;
}

}  // namespace velmora
