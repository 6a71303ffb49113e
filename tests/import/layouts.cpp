#include "tests/import/layouts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "data/numbers.h"
#include "data/store.h"
#include "data/text.h"
#include "data/vor.h"
#include "import/units.h"
#include "import/xml_source.h"

#ifndef VELMORA_SAMPLE_DIR
#error "VELMORA_SAMPLE_DIR must name the sample folder"
#endif

namespace velmora::test {
namespace {

using Coords = SourceStyle::Coords;
using Encoding = SourceStyle::Encoding;

std::string Format(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string CoordIn(const std::string& text, bool latitude, Coords coords) {
  const double deg = *CoordinateDegrees(text, latitude);
  if (coords == Coords::kDecimal) return Format("%.13f", deg);
  const double a = std::fabs(deg);
  const double whole = std::floor(a);
  const double minutes = std::round((a - whole) * 60 * 100) / 100;
  const char letter = latitude ? (deg < 0 ? 'S' : 'N') : (deg < 0 ? 'W' : 'E');
  return letter + Format("%.0f", whole) + "* " + Format("%.0f", std::floor(minutes)) + "' " +
         Format("%.1f", (minutes - std::floor(minutes)) * 60) + "\"";
}

// A value of the sample ("351.7M", "5000.00F", "36338.1") in another unit.
std::string UnitIn(const std::string& text, double perSampleUnit[3], char unit, bool lettered) {
  const double v = *ParseNumber(lettered ? text.substr(0, text.size() - 1) : text);
  if (unit == 0) return lettered ? text.substr(0, text.size() - 1) : text;
  const int i = unit == 'M' ? 0 : unit == 'F' ? 1 : 2;
  return Format("%.9f", v * perSampleUnit[i]) + unit;
}

std::string Converted(const std::string& element, const std::string& key, const std::string& v,
                      const SourceStyle& s) {
  if ((key == "lat" || key == "lon") && s.coords != Coords::kReader) {
    return CoordIn(v, key == "lat", s.coords);
  }
  double metres[3] = {1, 1 / 0.3048, 1 / 1852.0};
  double feet[3] = {0.3048, 1, 0.3048 / 1852};
  double rho[3] = {1852 / 2053.0, 1852 / 2053.0 / 0.3048, 1 / 2053.0};
  if ((element == "Airport" && key == "alt") ||
      (element == "Runway" && (key == "length" || key == "width"))) {
    return s.lengthUnit == 'M' ? v : UnitIn(v, metres, s.lengthUnit, true);
  }
  if (element == "Leg" && (key == "altitude1" || key == "altitude2")) {
    if (s.altitudeUnit != 0)
      return s.altitudeUnit == 'F' ? v : UnitIn(v, feet, s.altitudeUnit, true);
    // Without a letter a leg altitude is metres.
    const std::string metres = UnitIn(v, feet, 'M', true);
    return metres.substr(0, metres.size() - 1);
  }
  if (element == "Leg" && key == "rho") return UnitIn(v, rho, s.rhoUnit, false);
  if (element == "Airport" && key == "magvar" && s.bglMagvar && *ParseNumber(v) > 180) {
    return Format("%.3f", *ParseNumber(v) - 360);
  }
  if (key == "magneticCourse" && s.wholeCourse && v.size() > 2 && v.substr(v.size() - 2) == ".0") {
    return v.substr(0, v.size() - 2);
  }
  return v;
}

std::string Escaped(const std::string& v, char quote) {
  std::string out;
  for (char c : v) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else if (c == quote)
      out += quote == '"' ? "&quot;" : "&apos;";
    else
      out += c;
  }
  return out;
}

constexpr const char* kClutter =
    "  <!-- taxiways: the chart needs none of this -->\n"
    "  <TaxiwayPoint index=\"0\" type=\"NORMAL\" lat=\"1.5\" lon=\"2.5\"/>\n"
    "  <SceneryObject lat=\"1\" lon=\"2\"><LibraryObject name=\"x\" "
    "scale=\"1\"/></SceneryObject>\n";

void Write(std::string& out, const SourceElement& e, const SourceStyle& s, int depth) {
  const std::string pad(static_cast<std::size_t>(depth) * 2, ' ');
  auto attrs = e.attrs;
  if (s.wordAlone) std::reverse(attrs.begin(), attrs.end());
  out += pad + "<" + e.name;
  for (const auto& [key, value] : attrs) {
    out += s.oneLine ? " " : "\n" + pad + "    ";
    out += key + "=" + s.quote + Escaped(Converted(e.name, key, value, s), s.quote) + s.quote;
  }
  if (e.children.empty()) {
    out += "/>\n";
    return;
  }
  out += ">\n";
  if (s.clutter && e.name == "Airport") out += kClutter;
  for (const SourceElement& c : e.children) Write(out, c, s, depth + 1);
  out += pad + "</" + e.name + ">\n";
}

std::string Document(const std::vector<const SourceElement*>& records, const SourceStyle& s) {
  const char* encoding = s.encoding == Encoding::kUtf8     ? "UTF-8"
                         : s.encoding == Encoding::kLatin1 ? "ISO-8859-1"
                                                           : "Windows-1252";
  std::string out =
      std::string("<?xml version=\"1.0\" encoding=\"") + encoding + "\"?>\n<FSData>\n";
  if (s.clutter) out += kClutter;
  for (const SourceElement* r : records) Write(out, *r, s, 1);
  out += "</FSData>\n";
  return s.encoding == Encoding::kUtf8 ? Cp1252ToUtf8(out) : out;
}

SourceElement VorRecord(const VorRow& row) {
  const char* types = "THL";
  SourceElement v{"Vor", {}, {}, 0};
  v.attrs = {{"lat", row.lat},
             {"lon", row.lon},
             {"ident", row.ident},
             {"frequency", row.frequency},
             {"type", std::string(1, types[0])},
             {"name", row.ident}};
  return v;
}

// Each start that names a runway's first end goes into that runway as a <RunwayStart>, and the
// start behind it in the sample, the other end's, with it.
void IntoRunways(SourceElement& airport) {
  std::vector<SourceElement> kept;
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t runway = kNone;  // in `kept`, whose second end comes next
  for (SourceElement& c : airport.children) {
    const auto own = std::find_if(kept.begin(), kept.end(), [&](const SourceElement& r) {
      return c.name == "Start" && r.name == "Runway" && *r.attr("number") == *c.attr("number") &&
             *r.attr("designator") == *c.attr("designator");
    });
    const bool primary = own != kept.end();
    if (primary) runway = static_cast<std::size_t>(own - kept.begin());
    if (c.name != "Start" || runway == kNone) {
      kept.push_back(std::move(c));
      continue;
    }
    SourceElement start{"RunwayStart", {}, {}, c.line};
    for (auto& a : c.attrs) {
      if (a.first != "number" && a.first != "designator") start.attrs.push_back(a);
    }
    start.attrs.emplace_back("end", primary ? "PRIMARY" : "SECONDARY");
    kept[runway].children.push_back(std::move(start));
    if (!primary) runway = kNone;
  }
  airport.children = std::move(kept);
}

}  // namespace

std::vector<SourceStyle> SourceStyles() {
  std::vector<SourceStyle> styles;
  SourceStyle decompiled{"decompiled"};
  decompiled.wordAlone = true;
  decompiled.coords = Coords::kDecimal;
  decompiled.altitudeUnit = 'M';
  decompiled.rhoUnit = 'M';
  decompiled.bglMagvar = true;
  decompiled.wholeCourse = true;
  decompiled.encoding = Encoding::kUtf8;
  decompiled.clutter = true;
  styles.push_back(decompiled);
  styles.push_back({"reader"});
  const auto add = [&](std::string name, auto change) {
    SourceStyle s{std::move(name)};
    change(s);
    styles.push_back(s);
  };
  add("word-alone", [](SourceStyle& s) { s.wordAlone = true; });
  add("one-line", [](SourceStyle& s) { s.oneLine = true; });
  add("single-quotes", [](SourceStyle& s) { s.quote = '\''; });
  add("decimal-degrees", [](SourceStyle& s) { s.coords = Coords::kDecimal; });
  add("dms", [](SourceStyle& s) { s.coords = Coords::kDms; });
  add("metres", [](SourceStyle& s) { s.altitudeUnit = s.rhoUnit = 'M'; });
  add("feet", [](SourceStyle& s) { s.lengthUnit = s.rhoUnit = 'F'; });
  add("nautical-miles", [](SourceStyle& s) { s.lengthUnit = s.altitudeUnit = s.rhoUnit = 'N'; });
  add("no-unit", [](SourceStyle& s) { s.lengthUnit = s.altitudeUnit = 0; });
  add("utf-8", [](SourceStyle& s) { s.encoding = Encoding::kUtf8; });
  add("iso-8859-1", [](SourceStyle& s) { s.encoding = Encoding::kLatin1; });
  add("navaids-apart", [](SourceStyle& s) { s.navaidsApart = true; });
  add("runway-starts", [](SourceStyle& s) { s.runwayStarts = true; });
  return styles;
}

std::vector<SourceFile> SampleSources(const SourceStyle& style) {
  const std::filesystem::path sample = VELMORA_SAMPLE_DIR;
  std::vector<SourceFile> files;
  std::vector<SourceElement> navaids;
  std::vector<SourceTree> parsed;
  for (const char* name : {"sample_west.txt", "sample_multi.txt"}) {
    SourceTree source = ReadXmlSource(sample / "FSXFiles" / name);
    std::vector<const SourceElement*> records;
    for (SourceElement& airport : source.records) {
      if (style.runwayStarts) IntoRunways(airport);
      if (style.navaidsApart) {
        for (const SourceElement& c : airport.children) {
          if (c.name == "Ndb" || c.name == "Waypoint") navaids.push_back(c);
        }
        std::erase_if(airport.children, [](const SourceElement& c) {
          return c.name == "Ndb" || c.name == "Waypoint";
        });
      }
      records.push_back(&airport);
    }
    files.push_back({name, Document(records, style)});
  }
  if (style.navaidsApart) {
    Store store;
    LoadVor(store, sample / "vor.nav");
    for (std::int32_t i = 0; i <= store.VorLast; ++i) navaids.push_back(VorRecord(store.Vor[i]));
    std::vector<const SourceElement*> records;
    for (const SourceElement& n : navaids) records.push_back(&n);
    files.push_back({"navaids.xml", Document(records, style)});
  }
  return files;
}

}  // namespace velmora::test
