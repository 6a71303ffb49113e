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

const fs::path kRealDir = VELMORA_REAL_BGL_DIR;

#define SKIP_WITHOUT_REAL_DATA()                                                          \
  if (!fs::is_directory(kRealDir))                                                       \
  GTEST_SKIP() << kRealDir.string() << " is missing: the real BGL files of ../shared "   \
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
      const auto b = Number(bgl.substr(bgl.find(' ') + 1)), x = Number(xml.substr(xml.find(' ') + 1));
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

// The XML as BglComp compiles it: a <RunwayStart> inside a <Runway> becomes the same Start
// record (0x11) as an airport's <Start>, which is how the binary and its decompilers give it
// back, while the XML reader keeps no RunwayStart. So those become airport <Start>s here, with
// the number and designator of their runway end.
std::string XmlAsCompiled(const fs::path& xml) {
  std::string text = test::Slurp(xml);
  std::string moved;
  for (std::size_t at; (at = text.find("<RunwayStart")) != std::string::npos;) {
    const std::size_t end = text.find("/>", at) + 2;
    std::string element = text.substr(at, end - at);
    text.erase(at, end - at);
    const std::size_t runway = text.rfind("<Runway", at);
    const auto value = [&](const std::string& from, std::size_t pos, const std::string& key) {
      const std::size_t k = from.find(" " + key + "=\"", pos);
      const std::size_t v = from.find('"', k) + 1;
      return from.substr(v, from.find('"', v) - v);
    };
    const std::string number = value(text, runway, "number");
    std::string designator = value(text, runway, "designator");
    std::string n = number;
    if (value(element, 0, "end") == "SECONDARY") {
      n = std::to_string((std::stoi(number) + 17) % 36 + 1);
      designator = designator == "LEFT" ? "RIGHT" : designator == "RIGHT" ? "LEFT" : designator;
    }
    element.replace(0, 12, "<Start number=\"" + n + "\" designator=\"" + designator + "\"");
    moved += element + "\n";
  }
  const std::size_t close = text.find("</Airport>");
  if (close != std::string::npos) text.insert(close, moved);
  // A leg altitude without a unit letter is metres to BglComp (the importer takes feet).
  for (const std::string key : {" altitude1=\"", " altitude2=\""}) {
    for (std::size_t at = 0; (at = text.find(key, at)) != std::string::npos; ++at) {
      const std::size_t end = text.find('"', at + key.size());
      if (end > at + key.size() && std::isdigit(static_cast<unsigned char>(text[end - 1]))) {
        text.insert(end, "M");
      }
    }
  }
  return text;
}

SourceTree XmlTree(const fs::path& xml) {
  return ParseXmlSource(XmlAsCompiled(xml));
}

TEST(BglReal, CountsAndValuesEqualTheirXml) {
  SKIP_WITHOUT_REAL_DATA();
  int compared = 0, files = 0;
  for (const fs::path& bgl : RealBgls()) {
    if (!fs::exists(XmlBeside(bgl))) continue;
    ++files;
    const SourceTree b = ReadBglFile(bgl), x = XmlTree(XmlBeside(bgl));
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
      const int n = static_cast<int>(std::count_if(r.children.begin(), r.children.end(),
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
  // Lines that differ only in numbers the binary moved (a coordinate's last minute digit) or
  // that a hand-written source writes otherwise (110.3500 for 110.350, 179.580000 for the
  // float's 179.580001831055).
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
    if (std::isdigit(static_cast<unsigned char>(a[i])) && std::isdigit(static_cast<unsigned char>(b[j]))) {
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
      {"ColinM9991-BglReader_KTST_TestAirport_v5.BGL", "KTST", 1, 3},
      {"ColinM9991-BglReader_KTST_TestAirport_v6.bgl", "KTST", 1, 3},
      {"avs-code-Prepar3D_LEAB_LEAB_ADEP5_ARV187.bgl", "LEAB", 4, 0},
  };
  for (const RoadCase& c : cases) {
    TempDir dir;
    std::vector<std::string> roads[2];
    for (int i = 0; i < 2; ++i) {
      const fs::path source =
          i == 0 ? kRealDir / c.file
                 : dir.write(XmlBeside(c.file), XmlAsCompiled(XmlBeside(kRealDir / c.file)));
      const fs::path data = dir.path() / (i == 0 ? "bgl" : "xml");
      std::ostringstream err;
      const ImportResult r = RunImport({data, {source}}, err);
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
