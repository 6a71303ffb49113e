#include "import/writer.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

#include "data/text.h"
#include "import/units.h"

namespace velmora {
namespace {

constexpr std::string_view kEol = "\r\n";

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
    "Leg", "type",
    "",    "",
    "",    {"fixIdent", "rho", "magneticCourse", "altitude1", "altitude2", "recommendedIdent"},
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
  if ((element == "Airport" && key == "alt") ||
      (element == "Runway" && (key == "length" || key == "width"))) {
    return LengthValue;
  }
  if (element == "Airport" && key == "magvar") return MagvarValue;
  if (element == "Leg" && (key == "altitude1" || key == "altitude2")) return AltitudeValue;
  if (element == "Leg" && key == "rho") return RhoValue;
  if (element == "Leg" && key == "magneticCourse") return CourseValue;
  return nullptr;
}

// The reader splits at every double quote and takes any "<" for an element: both must go as
// references. Entities are not decoded by the reader, so they show as written.
std::string Escaped(const std::string& value) {
  return EscapeXml(value, "&<\"");
}

class Writer {
 public:
  Writer(std::string& out, const std::string& label, std::vector<std::string>& warnings)
      : out_(out), label_(label), warnings_(warnings) {}

  void element(const SourceElement& e, int depth);
  std::string value(const SourceElement& e, std::string_view key);

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

  std::string& out_;
  const std::string& label_;
  std::vector<std::string>& warnings_;
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
    if (e.attr(key)) {
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

void Writer::element(const SourceElement& e, int depth) {
  const Layout* l = LayoutOf(e.name);
  if (l == nullptr) return;
  attributeLines(e, *l, depth);
  const bool leg = l == &kLegLayout;
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
  out.vors.push_back({text("name"), text("type"), text("ident"), text("frequency"), *lat, *lon});
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
    Writer(text, label, out.warnings).element(r, airport ? 0 : 1);
    const std::string* ident = r.attr(r.name == "Waypoint" ? "waypointIdent" : "ident");
    if (airport) {
      AirportText& a = out.airports.emplace_back();
      a.ident = ident ? *ident : "";
      a.text = std::move(text);
      a.lat = Degrees(r, true);
      a.lon = Degrees(r, false);
      CollectWanted(r, a);
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
                            const std::vector<std::vector<const NavaidText*>>& copies) {
  std::string out;
  out += "<?xml version=\"1.0\" encoding=\"Windows-1252\"?>";
  out += kEol;
  out +=
      "<FSData version=\"9.0\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xsi:noNamespaceSchemaLocation=\"bglcomp.xsd\">";
  out += kEol;
  for (std::size_t i = 0; i < source.airports.size(); ++i) {
    out += source.airports[i].text;
    if (i < copies.size()) {
      for (const NavaidText* n : copies[i]) out += n->text;
    }
    out += "</Airport>";
    out += kEol;
    out += kEol;
  }
  out += "</FSData>";
  out += kEol;
  return out;
}

}  // namespace velmora
