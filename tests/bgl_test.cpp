// The BGL reader: real FSX and Prepar3D files against the XML they were compiled from (values,
// counts and the whole chart road), and files of our own for each record variant and each
// kind of damage.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <sstream>

#include "data/platform.h"
#include "data/text.h"
#include "import/bgl_file.h"
#include "import/run.h"
#include "import/source_file.h"
#include "import/units.h"
#include "import/xml_source.h"
#include "tests/support/bgl_builder.h"
#include "tests/test_support.h"

namespace velmora {
namespace {

using test::TempDir;
namespace fs = std::filesystem;

const fs::path kRealDir = fs::path(VELMORA_REALDATA_DIR) / "bgl";

#define SKIP_WITHOUT_REAL_DATA()                                  \
  if (!fs::is_directory(kRealDir))                                \
  GTEST_SKIP() << kRealDir.string()                               \
               << " is missing: the real BGL files of ../shared " \
                  "are not here, so they are not compared"

std::vector<fs::path> RealBgls() {
  std::vector<fs::path> files;
  std::error_code ec;
  for (const auto& e : fs::directory_iterator(kRealDir, ec)) {
    if (AsciiLowerCase(e.path().extension().string()) == ".bgl") files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

fs::path XmlBeside(const fs::path& bgl) {
  fs::path xml = bgl;
  xml.replace_extension(".xml");
  return xml;
}

// Every element of a tree by a path of names, as "Airport/Runway/Ils".
void Collect(const SourceElement& e, const std::string& path,
             std::map<std::string, std::vector<const SourceElement*>>& out) {
  const std::string here = path.empty() ? e.name : path + "/" + e.name;
  out[here].push_back(&e);
  for (const SourceElement& c : e.children) Collect(c, here, out);
}

// Navaids in ident order: the binary keeps them by QMID cell, not in the source's order.
std::map<std::string, std::vector<const SourceElement*>> Elements(const SourceTree& t) {
  std::map<std::string, std::vector<const SourceElement*>> out;
  for (const SourceElement& r : t.records) Collect(r, "", out);
  for (auto& [path, list] : out) {
    const bool navaid = path.ends_with("Waypoint") || path.ends_with("Ndb") || path == "Vor" ||
                        path.ends_with("Ils");
    if (!navaid) continue;
    const auto key = [](const SourceElement* e) {
      const std::string* id = e->attr(e->name == "Waypoint" ? "waypointIdent" : "ident");
      return (id ? *id : "") + " " + (e->attr("lat") ? *e->attr("lat") : "");
    };
    std::stable_sort(list.begin(), list.end(),
                     [&](const auto* a, const auto* b) { return key(a) < key(b); });
  }
  return out;
}

TEST(BglReal, EveryFileReadsWithoutError) {
  SKIP_WITHOUT_REAL_DATA();
  const auto files = RealBgls();
  ASSERT_GE(files.size(), 15u);
  for (const fs::path& f : files) {
    for (BglDetail detail : {BglDetail::kFull, BglDetail::kOutline}) {
      const SourceTree t = ReadBglFile(f, detail);
      EXPECT_TRUE(t.ok()) << f << ": " << t.error;
      EXPECT_TRUE(t.notes.empty()) << f << ": " << t.notes.front();
      EXPECT_FALSE(t.records.empty()) << f;
      for (const SourceElement& r : t.records) {
        if (r.name != "Airport") continue;
        EXPECT_NE(r.attr("ident"), nullptr);
        if (detail == BglDetail::kOutline) {
          EXPECT_TRUE(r.children.empty());
          EXPECT_EQ(r.attrs.size(), 3u) << "ident, lat and lon only";
        }
      }
    }
    EXPECT_TRUE(IsSourceFile(f));
  }
}

// How a chart-read value of the BGL may differ from the XML's once both are converted.
struct Tolerance {
  std::string key;
  std::function<bool(const std::string& bgl, const std::string& xml)> same;
};

std::optional<double> Number(const std::string& text) {
  std::string t = text;
  if (!t.empty() && std::isalpha(static_cast<unsigned char>(t.back()))) t.pop_back();
  char* end = nullptr;
  const double v = std::strtod(t.c_str(), &end);
  if (t.empty() || end != t.c_str() + t.size()) return std::nullopt;
  return v;
}

bool Within(const std::string& a, const std::string& b, double abs, double rel) {
  const auto x = Number(a), y = Number(b);
  return x && y && std::fabs(*x - *y) <= abs + rel * std::fabs(*y);
}

// A value in each form the importer gives: the texts the reader gets.
std::string Converted(const SourceElement& e, const std::string& key, const std::string& v) {
  const bool positioned = e.name != "Ils" && e.name != "Vor";
  if (positioned && (key == "lat" || key == "lon")) return CoordinateValue(v, key == "lat").text;
  if (key == "lat" || key == "lon") {
    return std::to_string(CoordinateDegrees(v, key == "lat").value_or(999));
  }
  if ((e.name == "Airport" && key == "alt") || key == "length" || key == "width") {
    return e.name == "Ils" ? v : LengthValue(v).text;
  }
  if (key == "altitude1" || key == "altitude2") return AltitudeValue(v).text;
  if (key == "rho") return RhoValue(v).text;
  if (key == "magneticCourse") return CourseValue(v).text;
  if (e.name == "Airport" && key == "magvar") return MagvarValue(v).text;
  return v;
}

// Values the chart reads, compared after conversion. Coordinates: one unit of the reader's
// last minute digit (0.0001'), as the binary's 4-5 cm can cross a rounding; metres of a
// length 0.05; nm-based rho 0.03 %; frequencies, headings and texts by number or exactly.
bool SameValue(const std::string& key, const std::string& bgl, const std::string& xml) {
  if (bgl == xml) return true;
  if (key == "lat" || key == "lon") {
    if (bgl.size() > 4 && xml.size() > 4 && bgl[0] == xml[0]) {
      const auto b = Number(bgl.substr(bgl.find(' ') + 1)),
                 x = Number(xml.substr(xml.find(' ') + 1));
      if (b && x && bgl.substr(0, bgl.find(' ')) == xml.substr(0, xml.find(' '))) {
        return std::fabs(*b - *x) <= 0.00011;
      }
    }
    return Within(bgl, xml, 1e-6, 0);  // decimal degrees
  }
  if (key == "alt" || key == "length" || key == "width") return Within(bgl, xml, 0.06, 0);
  if (key == "altitude1" || key == "altitude2") return Within(bgl, xml, 0.01, 0);
  if (key == "rho") return Within(bgl, xml, 0.1, 0.0003);
  return Within(bgl, xml, 0, 1e-6);  // frequencies, headings, courses written otherwise
}

const std::map<std::string, std::vector<std::string>> kChartKeys = {
    {"Airport", {"ident", "country", "state", "city", "name", "lat", "lon", "alt", "magvar"}},
    {"Airport/Runway", {"number", "designator", "lat", "lon", "length", "width", "surface"}},
    {"Airport/Runway/Ils", {"end", "ident", "frequency", "heading", "name"}},
    {"Airport/Start", {"type", "number", "designator", "lat", "lon"}},
    {"Airport/Com", {"type", "frequency", "name"}},
    {"Airport/Ndb", {"lat", "lon", "frequency", "ident", "name"}},
    {"Airport/Waypoint", {"waypointIdent", "lat", "lon"}},
    {"Airport/Approach", {"type", "runway", "designator"}},
    {"Airport/Approach/Transition", {"fixType", "fixIdent"}},
    {"Airport/Approach/ApproachLegs/Leg",
     {"type", "fixIdent", "rho", "magneticCourse", "altitude1", "altitude2", "recommendedIdent"}},
    {"Airport/Approach/MissedApproachLegs/Leg",
     {"type", "fixIdent", "rho", "magneticCourse", "altitude1", "altitude2", "recommendedIdent"}},
    {"Airport/Approach/Transition/TransitionLegs/Leg",
     {"type", "fixIdent", "rho", "magneticCourse", "altitude1", "altitude2", "recommendedIdent"}},
    {"Ndb", {"lat", "lon", "frequency", "ident", "name"}},
    {"Waypoint", {"waypointIdent", "lat", "lon"}},
    {"Vor", {"lat", "lon", "frequency", "ident", "name", "type"}},
};

// A value the XML leaves out and the binary stores as 0 comes out as nothing or as 0; the
// chart draws both alike (no DME, no altitude label).
bool ZeroOrAbsent(const std::string* v) {
  if (v == nullptr) return true;
  const auto n = Number(*v);
  return n && *n == 0;
}

TEST(BglReal, CountsAndValuesEqualTheirXml) {
  SKIP_WITHOUT_REAL_DATA();
  int compared = 0, files = 0;
  for (const fs::path& bgl : RealBgls()) {
    if (!fs::exists(XmlBeside(bgl))) continue;
    ++files;
    const SourceTree b = ReadBglFile(bgl), x = ReadXmlSource(XmlBeside(bgl));
    ASSERT_TRUE(b.ok() && x.ok()) << bgl;
    const auto be = Elements(b), xe = Elements(x);
    for (const auto& [path, keys] : kChartKeys) {
      const auto bi = be.find(path), xi = xe.find(path);
      const std::size_t bn = bi == be.end() ? 0 : bi->second.size();
      const std::size_t xn = xi == xe.end() ? 0 : xi->second.size();
      ASSERT_EQ(bn, xn) << bgl.filename() << ": " << path;
      for (std::size_t i = 0; i < bn; ++i) {
        const SourceElement& be1 = *bi->second[i];
        const SourceElement& xe1 = *xi->second[i];
        for (const std::string& key : keys) {
          const std::string* bv = be1.attr(key);
          const std::string* xv = xe1.attr(key);
          if (xv == nullptr || bv == nullptr) {
            EXPECT_TRUE(ZeroOrAbsent(bv) && ZeroOrAbsent(xv))
                << bgl.filename() << ": " << path << "[" << i << "] " << key << ": "
                << (bv ? *bv : "(none)") << " / " << (xv ? *xv : "(none)");
            continue;
          }
          const std::string bc = Converted(be1, key, *bv), xc = Converted(xe1, key, *xv);
          EXPECT_TRUE(SameValue(key, bc, xc))
              << bgl.filename() << ": " << path << "[" << i << "] " << key << ": BGL " << *bv
              << " (" << bc << "), XML " << *xv << " (" << xc << ")";
          ++compared;
        }
      }
    }
  }
  EXPECT_EQ(files, 13);
  EXPECT_GT(compared, 700);
}

TEST(BglReal, AirportsListTheirApproaches) {
  SKIP_WITHOUT_REAL_DATA();
  const std::map<std::string, int> expected = {{"LEAR", 2}, {"LEAB", 4}, {"KTST", 1}, {"LEAV", 0}};
  for (const fs::path& bgl : RealBgls()) {
    const SourceTree t = ReadBglFile(bgl);
    for (const SourceElement& r : t.records) {
      if (r.name != "Airport") continue;
      const int n =
          static_cast<int>(std::count_if(r.children.begin(), r.children.end(),
                                         [](const auto& c) { return c.name == "Approach"; }));
      ASSERT_TRUE(expected.count(*r.attr("ident"))) << *r.attr("ident");
      EXPECT_EQ(n, expected.at(*r.attr("ident"))) << bgl.filename();
    }
  }
}

// The whole road of one airport: search, load, and a pick of each approach row, each step's
// trace and the lists' rows.
std::vector<std::string> Road(const fs::path& dataDir, const std::string& code) {
  test::Harness h(dataDir);
  std::vector<std::string> out;
  const auto take = [&](const std::string& step) {
    out.push_back("== " + step + " | " + h.form().controls().caption);
    for (std::string& l : h.takeTrace()) out.push_back(std::move(l));
    for (const std::string& row : h.form().controls().cmbAPP.rows) out.push_back("APP " + row);
    for (const std::string& row : h.form().controls().cmbTerm.rows) out.push_back("TERM " + row);
  };
  h.form().setSearchText(code);
  h.form().cmdSearch_Click();
  take("search");
  h.form().cmdArpt_Click();
  take("load");
  const std::size_t rows = h.form().controls().cmbAPP.rows.size();
  for (std::size_t i = 0; i < rows; ++i) {
    h.form().cmbAPP_Click(static_cast<int>(i));
    take("pick " + std::to_string(i));
  }
  return out;
}

struct RoadCase {
  std::string file, code;
  int approaches;
  // Lines that differ only in numbers the binary moved: a coordinate's last minute digit.
  int numericallySame;
};

// Every piece that is no number the same; numbers with a point equal within the binary's
// precision (0.0001' of a coordinate, or one part in a million); whole numbers, such as the
// positions drawn to, exactly.
bool SameLineButNumbers(const std::string& a, const std::string& b) {
  std::size_t i = 0, j = 0;
  const auto number = [](const std::string& s, std::size_t& k) {
    const std::size_t start = k;
    while (k < s.size() && (std::isdigit(static_cast<unsigned char>(s[k])) || s[k] == '.')) ++k;
    return s.substr(start, k - start);
  };
  while (i < a.size() && j < b.size()) {
    if (std::isdigit(static_cast<unsigned char>(a[i])) &&
        std::isdigit(static_cast<unsigned char>(b[j]))) {
      const std::string x = number(a, i), y = number(b, j);
      if (x == y) continue;
      if (x.find('.') == std::string::npos || y.find('.') == std::string::npos) return false;
      if (!Within(x, y, 0.00011, 1e-6)) return false;
      continue;
    }
    if (a[i++] != b[j++]) return false;
  }
  return i == a.size() && j == b.size();
}

TEST(BglReal, TheChartOfEveryApproachIsTheXmlsChart) {
  SKIP_WITHOUT_REAL_DATA();
  const std::vector<RoadCase> cases = {
      {"avs-code-Prepar3D_LEAB_LEAR_ADEX_ARV187.bgl", "LEAR", 2, 0},
      {"ColinM9991-BglReader_KTST_TestAirport_v5.BGL", "KTST", 1, 2},
      {"ColinM9991-BglReader_KTST_TestAirport_v6.bgl", "KTST", 1, 2},
      {"avs-code-Prepar3D_LEAB_LEAB_ADEP5_ARV187.bgl", "LEAB", 4, 0},
  };
  for (const RoadCase& c : cases) {
    TempDir dir;
    std::vector<std::string> roads[2];
    for (int i = 0; i < 2; ++i) {
      const fs::path source = i == 0 ? kRealDir / c.file : XmlBeside(kRealDir / c.file);
      const fs::path data = dir.path() / (i == 0 ? "bgl" : "xml");
      std::ostringstream err;
      const ImportResult r = RunImport(SourcesImport(data, {source}), err);
      ASSERT_EQ(r.status, 0) << err.str();
      EXPECT_EQ(r.approaches, c.approaches) << c.file;
      roads[i] = Road(data, c.code);
    }
    ASSERT_EQ(roads[0].size(), roads[1].size()) << c.file;
    int picks = 0, numerically = 0;
    for (std::size_t l = 0; l < roads[0].size(); ++l) {
      picks += roads[1][l].rfind("== pick", 0) == 0;
      if (roads[0][l] == roads[1][l]) continue;
      ++numerically;
      EXPECT_TRUE(SameLineButNumbers(roads[0][l], roads[1][l]))
          << c.file << " line " << l << "\n  BGL " << roads[0][l] << "\n  XML " << roads[1][l];
    }
    EXPECT_EQ(picks, c.approaches);
    EXPECT_EQ(numerically, c.numericallySame) << c.file;
  }
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

using namespace velmora::test;

// One airport with every record the chart uses, ILS, VOR and navaids inside and outside it.
BglFileSpec Sample(BglFormat format) {
  BglFileSpec f;
  f.format = format;
  BglAirportSpec a;
  a.ident = "KXYZ";
  a.region = "K1";
  a.name = "Caf\xC3\xA9 Field";  // UTF-8: comes out as Windows-1252
  a.country = "United States";
  a.state = "Illinois";
  a.city = "Testville";
  a.lat = 41.5;
  a.lon = -89.25;
  a.altMm = 200000;
  a.magvar = -3.5;
  BglRunwaySpec r;
  r.number = 9;
  r.designator = 1;
  r.secondaryNumber = 27;
  r.secondaryDesignator = 2;
  r.primaryIls = "IXYZ";
  r.lat = 41.5;
  r.lon = -89.25;
  r.length = 1828.8f;  // 6000 ft
  r.width = 45.05f;
  r.heading = 90;
  a.runways.push_back(r);
  a.starts.push_back({9, 1, 1, 41.5, -89.26, 200000, 90});
  a.starts.push_back({27, 2, 1, 41.5, -89.24, 200000, 270});
  a.coms.push_back({6, 118300000, "XYZ TOWER"});
  BglApproachSpec ap;
  ap.type = 4;
  ap.runway = 9;
  ap.designator = 1;
  ap.fixType = 9;
  ap.fixIdent = "RW09L";
  ap.heading = 90;
  BglLegSpec l1;
  l1.type = 15;
  l1.fixType = 5;
  l1.fixIdent = "ABCDE";
  l1.fixRegion = "K1";
  l1.altitude1 = 914.4f;  // 3000 ft
  BglLegSpec l2;
  l2.type = 4;
  l2.fixType = 9;
  l2.fixIdent = "RW09L";
  l2.fixRegion = "K1";
  l2.recommendedType = 8;
  l2.recommendedIdent = "IXYZ";
  l2.recommendedAirport = "KXYZ";
  l2.course = 92.5f;
  l2.rho = 9262.37f;  // 5 nm as BglComp stores them
  l2.altitude2 = 609.6f;
  ap.legs = {l1, l2};
  BglLegSpec m;
  m.type = 8;
  m.flags = 1;
  m.fixType = 9;
  m.fixIdent = "RW09L";
  m.course = 90;
  ap.missed = {m};
  BglTransitionSpec t;
  t.fixType = 3;
  t.fixIdent = "XN";
  t.legs = {l1};
  BglTransitionSpec arc;
  arc.type = 2;
  arc.fixType = 5;
  arc.fixIdent = "ARCFX";
  arc.dmeIdent = "XV";
  arc.dmeRadial = 270;
  arc.dmeDistance = 18524.7f;
  ap.transitions = {t, arc};
  a.approaches.push_back(ap);
  f.airports.push_back(a);
  BglNavaidSpec ils;
  ils.type = 4;
  ils.flags = 0x19;
  ils.ident = "IXYZ";
  ils.airport = "KXYZ";
  ils.hz = 110350000;
  ils.name = "ILS 09L";
  ils.localizer = true;
  ils.locRunway = 9;
  ils.locDesignator = 1;
  ils.locHeading = 90.5f;
  ils.glideSlope = true;
  ils.dme = true;
  BglNavaidSpec vor;
  vor.ident = "XV";
  vor.region = "K1";
  vor.hz = 113000000;
  vor.name = "X VOR";
  vor.lat = 41.6;
  vor.lon = -89.3;
  f.navaids = {ils, vor};
  f.ndbs.push_back({1, 350000, 41.4, -89.2, 0, 0, 0, "XN", "K1", "KXYZ", "X NDB"});
  f.ndbs.push_back({1, 400000, 42.4, -89.2, 0, 0, 0, "YN", "K1", "", "Y NDB"});
  f.waypoints.push_back({1, 41.45, -89.35, 0, "ABCDE", "K1", ""});
  f.waypoints.push_back({6, 41.46, -89.36, 0, "FAF09", "K1", "KXYZ"});
  return f;
}

const SourceElement* Child(const SourceElement& e, std::string_view name, int nth = 0) {
  for (const SourceElement& c : e.children) {
    if (c.name == name && nth-- == 0) return &c;
  }
  return nullptr;
}

std::string Attr(const SourceElement* e, std::string_view key) {
  if (e == nullptr) return "(no element)";
  const std::string* v = e->attr(key);
  return v ? *v : "(none)";
}

struct VariantCase {
  std::string name;
  BglFormat format;
};

TEST(BglBytes, EveryRecordVariantReadsAsItsXmlWould) {
  const std::vector<VariantCase> cases = {
      {"FSX 0x3C, 0x24, 0x2C", BglFormat::kFsx},
      {"P3D v5 0xAB, 0x24, 0x2C", BglFormat::kP3dV5},
      {"P3D v6 0xAB, 0xB6, 0xB7", BglFormat::kP3dV6},
  };
  for (const VariantCase& c : cases) {
    SCOPED_TRACE(c.name);
    const BglBuilt built = BuildBgl(Sample(c.format));
    const SourceTree t = ParseBgl(built.bytes);
    ASSERT_TRUE(t.ok()) << t.error;
    EXPECT_TRUE(t.notes.empty());
    ASSERT_EQ(t.records.size(), 4u);  // the airport, the VOR, the NDB and waypoint outside it
    const SourceElement& a = t.records[0];
    const std::vector<std::pair<std::string, std::string>> airport = {{"ident", "KXYZ"},
                                                                      {"name", "Caf\xE9 Field"},
                                                                      {"country", "United States"},
                                                                      {"state", "Illinois"},
                                                                      {"city", "Testville"},
                                                                      {"lat", "41.4999998733401"},
                                                                      {"lon", "-89.2499998211861"},
                                                                      {"alt", "200M"},
                                                                      {"magvar", "-3.5"}};
    for (const auto& [key, value] : airport) EXPECT_EQ(Attr(&a, key), value) << key;
    EXPECT_EQ(CoordinateValue(Attr(&a, "lat"), true).text, "N41 30.00");  // 1.3e-7 deg: 1.4 cm
    EXPECT_EQ(CoordinateValue(Attr(&a, "lon"), false).text, "W089 15.00");
    const SourceElement* rwy = Child(a, "Runway");
    EXPECT_EQ(Attr(rwy, "number"), "09");
    EXPECT_EQ(Attr(rwy, "designator"), "LEFT");
    EXPECT_EQ(Attr(rwy, "length"), "6000F");
    EXPECT_EQ(Attr(rwy, "width"), "45.05M");
    EXPECT_EQ(Attr(rwy, "surface"), "ASPHALT");
    const SourceElement* ils = rwy ? Child(*rwy, "Ils") : nullptr;
    EXPECT_EQ(Attr(ils, "end"), "PRIMARY");
    EXPECT_EQ(Attr(ils, "ident"), "IXYZ");
    EXPECT_EQ(Attr(ils, "frequency"), "110.350");
    EXPECT_EQ(Attr(ils, "heading"), "90.5");
    EXPECT_EQ(Attr(ils, "name"), "ILS 09L");
    EXPECT_EQ(Attr(Child(a, "Start", 1), "number"), "27");
    EXPECT_EQ(Attr(Child(a, "Start", 1), "designator"), "RIGHT");
    EXPECT_EQ(Attr(Child(a, "Com"), "frequency"), "118.3000");
    EXPECT_EQ(Attr(Child(a, "Com"), "type"), "TOWER");
    EXPECT_EQ(Attr(Child(a, "Com"), "name"), "XYZ TOWER");
    EXPECT_EQ(Attr(Child(a, "Ndb"), "ident"), "XN");
    EXPECT_EQ(Attr(Child(a, "Ndb"), "frequency"), "0350.00");
    EXPECT_EQ(Attr(Child(a, "Waypoint"), "waypointIdent"), "FAF09");
    const SourceElement* ap = Child(a, "Approach");
    EXPECT_EQ(Attr(ap, "type"), "ILS");
    EXPECT_EQ(Attr(ap, "runway"), "09");
    EXPECT_EQ(Attr(ap, "designator"), "LEFT");
    EXPECT_EQ(Attr(ap, "fixIdent"), "RW09L");
    EXPECT_EQ(Attr(ap, "fixType"), "RUNWAY");
    ASSERT_NE(ap, nullptr);
    const SourceElement* legs = Child(*ap, "ApproachLegs");
    ASSERT_NE(legs, nullptr);
    ASSERT_EQ(legs->children.size(), 2u);
    const SourceElement& l1 = legs->children[0];
    const SourceElement& l2 = legs->children[1];
    EXPECT_EQ(Attr(&l1, "type"), "IF");
    EXPECT_EQ(Attr(&l1, "fixIdent"), "ABCDE");
    EXPECT_EQ(Attr(&l1, "fixType"), "WAYPOINT");
    EXPECT_EQ(Attr(&l1, "fixRegion"), "K1");
    EXPECT_EQ(Attr(&l1, "altitude1"), "3000F");
    EXPECT_EQ(Attr(&l1, "magneticCourse"), "(none)") << "an IF leg has no course";
    EXPECT_EQ(Attr(&l2, "magneticCourse"), "92.5");
    EXPECT_EQ(Attr(&l2, "rho"), "9262.37M");
    EXPECT_EQ(RhoValue(Attr(&l2, "rho")).text, "10267.6");  // 5 nm of 1852.47 m: DME 5
    EXPECT_EQ(Attr(&l2, "altitude2"), "2000F");
    EXPECT_EQ(Attr(&l2, "recommendedIdent"), "IXYZ");
    EXPECT_EQ(Attr(&l2, "recommendedType"), "LOCALIZER");
    const SourceElement* missed = Child(*ap, "MissedApproachLegs");
    ASSERT_NE(missed, nullptr);
    EXPECT_EQ(Attr(&missed->children.at(0), "trueCourse"), "90");
    const SourceElement* tr = Child(*ap, "Transition");
    EXPECT_EQ(Attr(tr, "fixType"), "NDB");
    EXPECT_EQ(Attr(tr, "fixIdent"), "XN");
    EXPECT_EQ(Attr(tr, "transitionType"), "FULL");
    ASSERT_NE(tr, nullptr);
    EXPECT_EQ(Child(*tr, "TransitionLegs")->children.size(), 1u);
    const SourceElement* dme = Child(*ap, "Transition", 1);
    EXPECT_EQ(Attr(dme, "transitionType"), "DME");
    EXPECT_EQ(Attr(dme, "fixIdent"), "ARCFX");
    EXPECT_EQ(Attr(dme, "dmeArcIdent"), "XV");
    EXPECT_EQ(Attr(dme, "dmeArcRadial"), "270");
    EXPECT_EQ(t.records[1].name, "Vor");
    EXPECT_EQ(Attr(&t.records[1], "frequency"), "113.000");
    EXPECT_EQ(Attr(&t.records[1], "type"), "LOW");
    EXPECT_EQ(t.records[2].name, "Ndb");
    EXPECT_EQ(Attr(&t.records[2], "ident"), "YN");
    EXPECT_EQ(t.records[3].name, "Waypoint");
    EXPECT_EQ(Attr(&t.records[3], "waypointIdent"), "ABCDE");

    const SourceTree outline = ParseBgl(built.bytes, BglDetail::kOutline);
    ASSERT_TRUE(outline.ok());
    ASSERT_EQ(outline.records.size(), 6u) << "navaids of the airport stand on their own";
    EXPECT_TRUE(outline.records[0].children.empty());
    EXPECT_EQ(outline.records[0].attrs.size(), 3u);
  }
}

TEST(BglBytes, TheDocumentedRunwayRecordAndUnknownRecords) {
  BglFileSpec f = Sample(BglFormat::kFsx);
  f.airports[0].runways[0].documented04 = true;
  f.airports[0].extra = {{0x99, std::string(10, '\0')}, {0x99, ""}, {0x1A, std::string(4, 'x')}};
  f.extraAirportSectionRecords = {{0x03, std::string(50, '\0')}};
  const SourceTree t = ParseBgl(BuildBgl(f).bytes);
  ASSERT_TRUE(t.ok()) << t.error;
  EXPECT_EQ(Attr(Child(t.records[0], "Runway"), "length"), "6000F");
  EXPECT_EQ(Attr(Child(*Child(t.records[0], "Runway"), "Ils"), "ident"), "IXYZ");
  ASSERT_EQ(t.notes.size(), 1u);
  EXPECT_EQ(t.notes[0],
            "3 records of a kind this reader doesn't know passed over (airport 0x99 x2, airport "
            "section 0x3) - what it holds is not imported");
}

TEST(BglBytes, IdentsAndCoordinates) {
  EXPECT_EQ(BglTaggedIdent(0x0273C1A1), "LEAR");
  EXPECT_EQ(BglTaggedIdent(0x51551966), "IF25N");
  EXPECT_EQ(BglRegion(0x9CF06B7A), "LE");
  EXPECT_EQ(BglRegionAirport(0x9CF06B7A), "LEAR");
  EXPECT_EQ(BglIdent(700499), "AR25");
  EXPECT_EQ(BglIdent(0), "");
  EXPECT_NEAR(BglLongitude(0x178B7463), -3.41441497206688, 1e-9);
  EXPECT_NEAR(BglLatitude(0x08D7B6B8), 40.2601960301399, 1e-9);
  for (double lat : {-90.0, -45.123456, 0.0, 89.9999}) {
    EXPECT_NEAR(BglLatitude(BglLatRaw(lat)), lat, 1.7e-7);
  }
  for (double lon : {-180.0, -3.4, 0.0, 179.9999}) {
    EXPECT_NEAR(BglLongitude(BglLonRaw(lon)), lon, 2.3e-7);
  }
}

// A record that nests `depth` approaches in each other.
std::string Nested(int depth) {
  std::string r;
  for (int i = 0; i < depth; ++i) {
    std::string outer(6 + 0x1A, '\0');
    outer[0] = 0x24;
    outer += r;
    PutU32(outer, 2, static_cast<std::uint32_t>(outer.size()));
    r = std::move(outer);
  }
  return r.substr(6);
}

struct DamageCase {
  std::string name;
  std::function<void(BglBuilt&)> damage;
  std::string error;  // "offset N: ..." begins so
};

TEST(BglBytes, DamagedFilesSayWhereAndGiveNothing) {
  const auto at = [](const BglBuilt& b, const std::string& key) { return b.at.at(key); };
  const std::vector<DamageCase> cases = {
      {"empty", [](BglBuilt& b) { b.bytes.clear(); }, "offset 0: the file header"},
      {"cut in the header", [](BglBuilt& b) { b.bytes.resize(0x20); }, "offset 0: the file header"},
      {"not a BGL", [](BglBuilt& b) { b.bytes[0] = 'X'; }, "offset 0: not a BGL file"},
      {"second magic", [](BglBuilt& b) { b.bytes[0x10] = 0; }, "offset 16: not a BGL file"},
      {"sections that don't fit", [](BglBuilt& b) { PutU32(b.bytes, 0x14, 100000); },
       "offset 20: 100000 sections don't fit"},
      {"subsection table past the end", [](BglBuilt& b) { PutU32(b.bytes, 0x38 + 12, 0x7FFFFFF0); },
       "offset 68: section 0x3's"},
      {"table size not its entries", [](BglBuilt& b) { PutU32(b.bytes, 0x38 + 16, 17); },
       "offset 72: a subsection table of 17 bytes"},
      {"data past the end", [&](BglBuilt& b) { PutU32(b.bytes, 0x38 + 5 * 0x14 + 12, 0x7FFFFFFF); },
       "offset 164: the data of section 0x3"},
      {"data inside the header", [&](BglBuilt& b) { PutU32(b.bytes, 0x38 + 5 * 0x14 + 8, 0x10); },
       "lies inside the header and section table"},
      {"two sections on the same bytes",
       [&](BglBuilt& b) { PutU32(b.bytes, 0x38 + 5 * 0x14 + 16 + 8, at(b, "airport0")); },
       "lies inside the data of section"},
      {"more records than bytes",
       [&](BglBuilt& b) { PutU32(b.bytes, 0x38 + 5 * 0x14 + 4, 1u << 30); },
       "offset 160: 1073741824 records can't fit"},
      {"record size below its header",
       [&](BglBuilt& b) { PutU32(b.bytes, at(b, "airport0") + 2, 3); }, "a record size of 3 bytes"},
      {"record past its parent",
       [&](BglBuilt& b) { PutU32(b.bytes, at(b, "approach0.0") + 2, 1u << 20); },
       "runs past its parent's end"},
      {"runway shorter than its fixed part",
       [&](BglBuilt& b) { PutU32(b.bytes, at(b, "runway0.0") + 2, 0x10); },
       "is shorter than its fixed part of 68"},
      {"more legs than the list holds",
       [&](BglBuilt& b) { PutU16(b.bytes, at(b, "legs0.0") + 6, 500); },
       "500 legs don't fit in a list of 96 bytes"},
      {"truncated in the records", [](BglBuilt& b) { b.bytes.resize(b.bytes.size() - 40); },
       "runs past the end of the file"},
  };
  const BglBuilt good = BuildBgl(Sample(BglFormat::kFsx));
  ASSERT_TRUE(ParseBgl(good.bytes).ok());
  for (const DamageCase& c : cases) {
    BglBuilt b = good;
    c.damage(b);
    const SourceTree t = ParseBgl(b.bytes);
    EXPECT_NE(t.error.find(c.error), std::string::npos) << c.name << ": " << t.error;
    EXPECT_EQ(t.error.rfind("offset ", 0), 0u) << c.name << ": " << t.error;
    EXPECT_TRUE(t.records.empty()) << c.name;
  }
  BglFileSpec deep = Sample(BglFormat::kFsx);
  deep.airports[0].extra = {{0x24, Nested(kMaxBglDepth + 2)}};
  const SourceTree t = ParseBgl(BuildBgl(deep).bytes);
  EXPECT_NE(t.error.find("records nested more than 8 deep"), std::string::npos) << t.error;
  deep.airports[0].extra = {{0x24, Nested(3)}};
  EXPECT_TRUE(ParseBgl(BuildBgl(deep).bytes).ok());
}

TEST(BglBytes, ImportedLikeXmlAndABrokenOneIsTold) {
  TempDir dir;
  const BglBuilt good = BuildBgl(Sample(BglFormat::kP3dV6));
  BglBuilt broken = good;
  PutU32(broken.bytes, broken.at.at("airport0") + 2, 3);
  const fs::path sources = dir.path() / "src";
  dir.write("src/KXYZ.BGL", good.bytes);
  dir.write("src/sub/broken.bgl", broken.bytes);
  dir.write("src/notes.txt", "not a source");
  const fs::path big = dir.write("huge.bgl", "");
  fs::resize_file(big, kMaxSourceBytes + 1);
  std::ostringstream err;
  const ImportResult r = RunImport(SourcesImport(dir.path() / "data", {sources, big}), err);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.files, 1);
  EXPECT_EQ(r.airports, 1);
  EXPECT_EQ(r.approaches, 1);
  EXPECT_EQ(r.skipped, 2);
  const std::string text = err.str();
  EXPECT_NE(text.find(PathToUtf8(sources / "sub" / "broken.bgl") + ": offset " +
                      std::to_string(broken.at.at("airport0") + 2) +
                      ": a record size of 3 bytes - nothing of it imported"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(PathToUtf8(big) + ": larger than 512 MB - not read"), std::string::npos)
      << text;
  EXPECT_TRUE(fs::exists(dir.path() / "data" / "FSXFiles" / "KXYZ.xml"));
  test::Harness h(dir.path() / "data");
  h.load("KXYZ");
  EXPECT_EQ(h.form().controls().cmbAPP.rows, std::vector<std::string>{"ILS 09L"});
}

}  // namespace
}  // namespace velmora
