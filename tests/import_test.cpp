// velmora-import: units, the reader's view of what was imported, bad and hostile sources.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "data/arpt_index.h"
#include "data/extract.h"
#include "data/platform.h"
#include "data/vor.h"
#include "import/run.h"
#include "import/source_file.h"
#include "import/units.h"
#include "import/vor_merge.h"
#include "import/xml_source.h"
#include "shell/form.h"
#include "tests/import/layouts.h"
#include "tests/test_support.h"

namespace velmora {
namespace {

using test::Slurp;
using test::TempDir;

struct UnitCase {
  std::string source;
  std::function<Converted(std::string_view)> convert;
  std::string text;
  bool problem = false;
};

TEST(ImportUnits, ConvertsToTheReadersForm) {
  const auto lat = [](std::string_view v) { return CoordinateValue(v, true); };
  const auto lon = [](std::string_view v) { return CoordinateValue(v, false); };
  const std::vector<UnitCase> cases = {
      {"N47 26.39", lat, "N47 26.39"},
      {"49.2018527537584", lat, "N49 12.1112"},
      {"-123.16384524107", lon, "W123 09.8307"},
      {"N49* 12' 6.67\"", lat, "N49 12.1112"},
      {"49\xB0 12' 6.67\" S", lat, "S49 12.1112"},
      {"-0.001", lon, "W000 00.06"},
      {"0", lat, "N00 00.00"},
      {"999", lat, "", true},
      {"E10 20.00", lat, "", true},
      {"N49* 75' 0\"", lat, "", true},
      {"204.216M", LengthValue, "204.216M"},
      {"1193.9", LengthValue, "1193.9M"},
      {"10500F", LengthValue, "3200.4M"},
      {"1N", LengthValue, "1852.0M"},
      {"12K", LengthValue, "", true},
      {"nan", LengthValue, "", true},
      {"1e308M", LengthValue, "", true},
      {"1694.688M", AltitudeValue, "5560.00F"},
      {"5000.00F", AltitudeValue, "5000.00F"},
      {"1524", AltitudeValue, "5000.00F"},
      {"14264.05M", RhoValue, "15812.1"},
      {"36338.1", RhoValue, "36338.1"},
      {"2N", RhoValue, "4106.0"},
      {"153", CourseValue, "153.0"},
      {"160.0", CourseValue, "160.0"},
      {"93.96", CourseValue, "94.0"},
      {"-90", CourseValue, "270.0"},
      {"1e9", CourseValue, "", true},
      {"-21", MagvarValue, "339.000"},
      {"355.000", MagvarValue, "355.000"},
      {"6.5", MagvarValue, "6.5"},
      {"-400", MagvarValue, "", true},
      {"279.940002441406", CourseValue, "279.9"},
      {"30.48M", RunwaySizeValue, "30.5M"},
      {"3200.4M", RunwaySizeValue, "3200.4M"},
      {"10500F", RunwaySizeValue, "3200.4M"},
      {"1e308M", RunwaySizeValue, "", true},
      {"109.700", NavFrequencyValue, "109.70"},
      {"110.30", NavFrequencyValue, "110.30"},
      {"136.9750", ComFrequencyValue, "136.975"},
      {"0350.00", NdbFrequencyValue, "350.0"},
      {"415.55", NdbFrequencyValue, "415.6"},
      {"-118.3", ComFrequencyValue, "", true},
      {"1e9", NavFrequencyValue, "", true},
      {"VHF", NavFrequencyValue, "", true},
  };
  for (const UnitCase& c : cases) {
    const Converted got = c.convert(c.source);
    EXPECT_EQ(got.text, c.text) << c.source;
    EXPECT_EQ(!got.problem.empty(), c.problem) << c.source;
  }
}

// The importer's conversion of a value the reader reads, by element and key.
std::string Expected(const SourceElement& e, std::string_view key) {
  const std::string* v = e.attr(key);
  if (v == nullptr) return {};
  if (key == "lat" || key == "lon") return CoordinateValue(*v, key == "lat").text;
  if (key == "alt") return LengthValue(*v).text;
  if (key == "length" || key == "width") return RunwaySizeValue(*v).text;
  if (e.name == "Ils" && key == "heading") return CourseValue(*v).text;
  if (e.name == "Ils" && key == "frequency") return NavFrequencyValue(*v).text;
  if (e.name == "Com" && key == "frequency") return ComFrequencyValue(*v).text;
  if (e.name == "Ndb" && key == "frequency") return NdbFrequencyValue(*v).text;
  if (key == "magvar") return MagvarValue(*v).text;
  if (key == "altitude1" || key == "altitude2") return AltitudeValue(*v).text;
  if (key == "rho") return RhoValue(*v).text;
  if (key == "magneticCourse") return CourseValue(*v).text;
  return *v;
}

std::vector<const SourceElement*> Children(const SourceElement& e, std::string_view name) {
  std::vector<const SourceElement*> out;
  for (const SourceElement& c : e.children) {
    if (c.name == name) out.push_back(&c);
  }
  return out;
}

void ExpectRunwaysAndRadios(const Store& s, const SourceElement& a) {
  const auto runways = Children(a, "Runway");
  std::vector<const SourceElement*> ils;
  for (std::size_t k = 0; k < runways.size(); ++k) {
    const RwyEndRow& row = s.RwyEnd[static_cast<std::int32_t>(2 * k)];
    EXPECT_EQ(row.length, Expected(*runways[k], "length"));
    EXPECT_EQ(row.width, Expected(*runways[k], "width"));
    EXPECT_EQ(row.surface, Expected(*runways[k], "surface"));
    for (const SourceElement* i : Children(*runways[k], "Ils")) ils.push_back(i);
  }
  const auto starts = Children(a, "Start");
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const RwyEndRow& row = s.RwyEnd[static_cast<std::int32_t>(i)];
    EXPECT_EQ(row.type, Expected(*starts[i], "type"));
    EXPECT_EQ(row.number, Expected(*starts[i], "number"));
    EXPECT_EQ(row.designator, Expected(*starts[i], "designator"));
    EXPECT_EQ(row.lat, Expected(*starts[i], "lat"));
    EXPECT_EQ(row.lon, Expected(*starts[i], "lon"));
  }
  for (const SourceElement* i : Children(a, "Ils")) ils.push_back(i);
  for (std::size_t i = 0; i < ils.size(); ++i) {
    const IlsRow& row = s.Ils[static_cast<std::int32_t>(i)];
    EXPECT_EQ(row.end, Expected(*ils[i], "ident"));
    EXPECT_EQ(row.frequency, Expected(*ils[i], "frequency"));
    EXPECT_EQ(row.heading, Expected(*ils[i], "heading"));
    EXPECT_EQ(row.name, Expected(*ils[i], "name"));
  }
  const auto coms = Children(a, "Com");
  for (std::size_t i = 0; i < coms.size(); ++i) {
    const ComRow& row = s.Com[static_cast<std::int32_t>(i)];
    EXPECT_EQ(row.type, Expected(*coms[i], "type"));
    EXPECT_EQ(row.frequency, Expected(*coms[i], "frequency"));
    EXPECT_EQ(row.name, Expected(*coms[i], "name"));
  }
}

void ExpectFixes(const Store& s, const SourceElement& a) {
  const auto ndbs = Children(a, "Ndb");
  EXPECT_EQ(s.NdbLast, static_cast<std::int32_t>(ndbs.size()));
  for (std::size_t i = 0; i < ndbs.size(); ++i) {
    const NdbRow& row = s.Ndb[static_cast<std::int32_t>(i + 1)];
    EXPECT_EQ(row.ident, Expected(*ndbs[i], "ident"));
    EXPECT_EQ(row.frequency, Expected(*ndbs[i], "frequency"));
    EXPECT_EQ(row.lat, Expected(*ndbs[i], "lat"));
    EXPECT_EQ(row.lon, Expected(*ndbs[i], "lon"));
  }
  const auto waypoints = Children(a, "Waypoint");
  for (std::size_t i = 0; i < waypoints.size(); ++i) {
    const WaypointRow& row = s.Waypoint[static_cast<std::int32_t>(i)];
    EXPECT_EQ(row.ident, Expected(*waypoints[i], "waypointIdent"));
    EXPECT_EQ(row.lat, Expected(*waypoints[i], "lat"));
    EXPECT_EQ(row.lon, Expected(*waypoints[i], "lon"));
  }
}

void ExpectLeg(const Store& s, std::int32_t& slot, const SourceElement& leg, std::int32_t app,
               std::int32_t trans) {
  const LegRow& row = s.Leg[slot++];
  EXPECT_EQ(row.app, app);
  EXPECT_EQ(row.trans, trans);
  EXPECT_EQ(row.fixIdent, Expected(leg, "fixIdent"));
  EXPECT_EQ(row.rho, Expected(leg, "rho"));
  EXPECT_EQ(row.magneticCourse, Expected(leg, "magneticCourse"));
  EXPECT_EQ(row.altitude, Expected(leg, leg.attr("altitude2") ? "altitude2" : "altitude1"));
  EXPECT_EQ(row.recommendedIdent, Expected(leg, "recommendedIdent"));
}

void ExpectApproaches(const Store& s, const SourceElement& a) {
  std::int32_t leg = 0, trans = 0, app = 0;
  for (const SourceElement* ap : Children(a, "Approach")) {
    const ApproachRow& row = s.Approach[app];
    EXPECT_EQ(row.type, Expected(*ap, "type"));
    EXPECT_EQ(row.runway, Expected(*ap, "runway"));
    EXPECT_EQ(row.designator, Expected(*ap, "designator"));
    for (const char* group : {"ApproachLegs", "MissedApproachLegs"}) {
      for (const SourceElement* g : Children(*ap, group)) {
        for (const SourceElement& l : g->children) ExpectLeg(s, leg, l, app, kApproachLeg);
      }
    }
    for (const SourceElement* t : Children(*ap, "Transition")) {
      EXPECT_EQ(s.Trans[trans].app, app);
      EXPECT_EQ(s.Trans[trans].fixType, Expected(*t, "fixType"));
      EXPECT_EQ(s.Trans[trans].fixIdent, Expected(*t, "fixIdent"));
      for (const SourceElement* g : Children(*t, "TransitionLegs")) {
        for (const SourceElement& l : g->children) ExpectLeg(s, leg, l, app, trans);
      }
      ++trans;
    }
    ++app;
  }
  EXPECT_EQ(s.LegLast, std::max(leg - 1, 0));
}

void ExpectStoreHolds(const Store& s, const SourceElement& a) {
  const std::pair<const std::string*, const char*> fields[] = {
      {&s.ArptCountry, "country"}, {&s.ArptState, "state"},  {&s.ArptCity, "city"},
      {&s.ArptName, "name"},       {&s.ArptLat, "lat"},      {&s.ArptLon, "lon"},
      {&s.ArptAlt, "alt"},         {&s.ArptMagvar, "magvar"}};
  for (const auto& [field, key] : fields) EXPECT_EQ(*field, Expected(a, key)) << key;
  ExpectRunwaysAndRadios(s, a);
  ExpectFixes(s, a);
  ExpectApproaches(s, a);
}

std::vector<std::filesystem::path> WriteSources(const TempDir& dir,
                                                const std::vector<test::SourceFile>& files) {
  std::vector<std::filesystem::path> paths;
  for (const auto& f : files) paths.push_back(dir.write("src/" + f.name, f.bytes));
  return paths;
}

// Each style: every airport the parser saw, read back by the reader from the imported file,
// holds the parser's values converted.
TEST(Import, TheReaderHoldsWhatTheParserSawConverted) {
  for (const test::SourceStyle& style : test::SourceStyles()) {
    if (style.navaidsApart) continue;  // copied fixes change the tables on purpose
    SCOPED_TRACE(style.name);
    TempDir dir;
    const auto files = test::SampleSources(style);
    std::ostringstream err;
    const ImportResult result =
        RunImport(SourcesImport(dir.path() / "data", WriteSources(dir, files)), err);
    EXPECT_EQ(result.status, 0) << err.str();
    EXPECT_EQ(result.airports, 5);
    auto store = std::make_unique<Store>();
    for (const auto& f : files) {
      for (const SourceElement& a : ParseXmlSource(f.bytes).records) {
        const ExtractReport report =
            ExtractArpt(*store, dir.path() / "data" / kAirportFolder / f.name, *a.attr("ident"));
        EXPECT_TRUE(report.found) << *a.attr("ident");
        ExpectStoreHolds(*store, a);
      }
    }
  }
}

const char* const kGood =
    "<FSData><Airport ident=\"XGOD\" name=\"Good\" lat=\"10\" lon=\"20\" alt=\"5M\">"
    "<Runway number=\"1\" lat=\"10\" lon=\"20\" length=\"100M\" width=\"10M\"/></Airport>"
    "<Vor ident=\"GVR\" lat=\"10.5\" lon=\"20.5\" type=\"HIGH\" frequency=\"113.00\" "
    "name=\"GOOD VOR\"/></FSData>\n";

ImportResult Import(const TempDir& dir, std::vector<std::filesystem::path> sources,
                    std::ostringstream& err) {
  return RunImport(SourcesImport(dir.path() / "data", std::move(sources)), err);
}

TEST(Import, ABrokenSourceIsToldAndTheOthersGoOn) {
  TempDir dir;
  // A folder is searched for .xml files, whatever the case of their extension.
  const auto good = dir.write("src/good.XML", kGood);
  const std::string brokenBytes =
      "<FSData>\n\n\n\n\n\n<Airport ident=\"XBAD\">\n<Runway>\n</Airport>\n";
  const auto broken = dir.write("src/broken.xml", brokenBytes);
  std::ostringstream err;
  const ImportResult result = Import(dir, {dir.path() / "src"}, err);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.files, 1);
  EXPECT_EQ(result.skipped, 1);
  // Named as the folder walk finds it: with the system's own separators.
  const std::string brokenName = PathToUtf8(dir.path() / "src" / "broken.xml");
  EXPECT_NE(err.str().find(brokenName + ":9: mismatched tag"), std::string::npos) << err.str();
  // A file that can't be opened is told without a line.
  EXPECT_EQ(SourceProblem(dir.path(), ReadSourceFile(dir.path())),
            PathToUtf8(dir.path()) + ": not a plain file");
  EXPECT_TRUE(std::filesystem::exists(dir.path() / "data/FSXFiles/good.XML"));
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "data/FSXFiles/broken.xml"));
  EXPECT_EQ(Slurp(broken), brokenBytes);
  EXPECT_EQ(Slurp(good), kGood);
  EXPECT_NE(Slurp(dir.path() / "data" / kIndexFileName).find("XGOD;Good;"), std::string::npos);
}

TEST(Import, OverAnExistingFolderOnlyTheSameNameIsReplaced) {
  TempDir dir;
  const std::string kept =
      test::CrLf({"<Airport ident=\"XGOD\"", "    name=\"Older\"", "</Airport>"});
  dir.write("data/FSXFiles/a_kept.txt", kept);
  dir.write("data/FSXFiles/good.xml", "<Airport ident=\"XOLD\"\r\n</Airport>\r\n");
  std::ostringstream err;
  EXPECT_EQ(Import(dir, {dir.write("src/good.xml", kGood)}, err).status, 0) << err.str();
  EXPECT_EQ(Slurp(dir.path() / "data/FSXFiles/a_kept.txt"), kept);
  const std::string index = Slurp(dir.path() / "data" / kIndexFileName);
  EXPECT_EQ(index, "XGOD;Older;;a_kept.txt\r\n");
  EXPECT_NE(err.str().find("\"XGOD\" stands also in a_kept.txt"), std::string::npos) << err.str();
  // A source that stands in FSXFiles already is told and left as it is.
  std::ostringstream inside;
  const auto written = Slurp(dir.path() / "data/FSXFiles/good.xml");
  EXPECT_EQ(Import(dir, {dir.path() / "data/FSXFiles/good.xml"}, inside).status, 1);
  EXPECT_NE(inside.str().find("good.xml: stands in FSXFiles already"), std::string::npos);
  EXPECT_EQ(Slurp(dir.path() / "data/FSXFiles/good.xml"), written);
}

// The index names files in Windows-1252: an imported file keeps every character of its source's
// name that the index can give back, so that its airports are found.
TEST(Import, FileNamesOutsideAsciiStayFindable) {
  const struct {
    std::filesystem::path source, written;
  } cases[] = {
      {u8"K\u00f6ln S\u00fcd.xml", u8"K\u00f6ln_S\u00fcd.xml"},
#ifdef _WIN32
      {u8"\u0141\u00f3d\u017a.xml", u8"_\u00f3d_.xml"},
#else
      {u8"\u0141\u00f3d\u017a.xml", u8"\u0141\u00f3d\u017a.xml"},
#endif
  };
  for (const auto& c : cases) {
    TempDir dir;
    std::ostringstream err;
    EXPECT_EQ(Import(dir, {dir.write(std::filesystem::path("src") / c.source, kGood)}, err).status,
              0)
        << err.str();
    EXPECT_TRUE(std::filesystem::exists(dir.path() / "data/FSXFiles" / c.written));
    EXPECT_EQ(Slurp(dir.path() / "data" / kIndexFileName),
              "XGOD;Good;;" + PathToCp1252(c.written) + "\r\n");
  }
}

// The reader splits at every double quote and takes any "<" for an element: such characters
// of a name are written as references, which the reader shows as written.
TEST(Import, QuotesAndAngleBracketsOfANameGoAsReferences) {
  TempDir dir;
  const std::string source =
      "<FSData><Airport ident=\"XAMP\" name=\"A &amp; B &quot;&lt;x&gt;&quot;\" lat=\"10\" "
      "lon=\"20\"></Airport></FSData>\n";
  std::ostringstream err;
  EXPECT_EQ(Import(dir, {dir.write("src/amp.xml", source)}, err).status, 0) << err.str();
  const std::string written = Slurp(dir.path() / "data/FSXFiles/amp.xml");
  EXPECT_NE(written.find("name=\"A &amp; B &quot;&lt;x>&quot;\""), std::string::npos) << written;
}

TEST(Import, VorsJoinTheListOnceAndWithinItsLength) {
  TempDir dir;
  std::string list = "GOOD VOR;20;30.00;10;30.00;H;GVR;113.00\r";  // ends in a lone CR
  dir.write("data/vor.nav", list);
  std::ostringstream err;
  const std::string source =
      "<FSData><Vor ident=\"GVR\" lat=\"10.5166666667\" lon=\"20.5166666667\"/>"
      "<Vor ident=\"GV2\" lat=\"10.5\" lon=\"20.5\"/>"
      "<Vor ident=\"NEW\" lat=\"-0.1\" lon=\"-20.25\" type=\"LOW\" "
      "frequency=\"112.10\" name=\"A;B\"/></FSData>";
  Import(dir, {dir.write("src/vors.xml", source)}, err);
  EXPECT_EQ(err.str().find("left out"), std::string::npos) << err.str();
  // A VOR a minute from one of the same ident is that one; another ident there is another.
  EXPECT_EQ(Slurp(dir.path() / "data/vor.nav"),
            list + ";20;30.00;10;30.00;;GV2;\r\nA,B;-20;15.00;0;-06.00;L;NEW;112.10\r\n");
  auto store = std::make_unique<Store>();
  LoadVor(*store, dir.path() / "data/vor.nav");
  EXPECT_EQ(store->Vor[2].lat, "N0 -06.00");
  EXPECT_EQ(store->Vor[2].lon, "W20 15");

  for (int i = 1; i < kVorLines; ++i) list += "FILL;1;0;1;0;H;F" + std::to_string(i) + ";1\r\n";
  dir.write("data/vor.nav", list);
  std::ostringstream full;
  Import(dir, {dir.path() / "src/vors.xml"}, full);
  EXPECT_EQ(Slurp(dir.path() / "data/vor.nav"), list);
  EXPECT_NE(full.str().find("2 VORs left out - the list holds at most 8,001 lines"),
            std::string::npos)
      << full.str();
}

struct RunwayStartCase {
  std::string number, designator, end;  // the runway's, and the end the start names
  std::string startNumber, startDesignator;
};

// BglComp compiles a <RunwayStart> into the start record of the runway end it names.
TEST(Import, ARunwayStartIsTheStartOfItsEnd) {
  const std::vector<RunwayStartCase> cases = {
      {"18", "NONE", "PRIMARY", "18", "NONE"},
      {"18", "NONE", "SECONDARY", "36", "NONE"},
      {"9", "LEFT", "SECONDARY", "27", "RIGHT"},
      {"27", "RIGHT", "SECONDARY", "09", "LEFT"},
      {"36", "CENTER", "SECONDARY", "18", "CENTER"},
      {"NORTHEAST", "NONE", "SECONDARY", "SOUTHWEST", "NONE"},
      {"16", "RIGHT", "PRIMARY", "16", "RIGHT"},
  };
  for (const RunwayStartCase& c : cases) {
    const SourceTree t = ParseXmlSource("<FSData><Airport ident=\"XRWS\"><Runway number=\"" +
                                        c.number + "\" designator=\"" + c.designator +
                                        "\"><RunwayStart type=\"RUNWAY\" lat=\"10\" end=\"" +
                                        c.end + "\"/></Runway></Airport></FSData>");
    ASSERT_EQ(t.records.size(), 1u) << t.error;
    const auto starts = Children(t.records[0], "Start");
    ASSERT_EQ(starts.size(), 1u) << c.number << " " << c.end;
    ASSERT_NE(starts[0]->attr("number"), nullptr);
    ASSERT_NE(starts[0]->attr("designator"), nullptr);
    EXPECT_EQ(*starts[0]->attr("number"), c.startNumber) << c.number << " " << c.end;
    EXPECT_EQ(*starts[0]->attr("designator"), c.startDesignator) << c.number << " " << c.end;
    EXPECT_EQ(starts[0]->attr("end"), nullptr) << "the end is in the number";
    EXPECT_EQ(*starts[0]->attr("lat"), "10");
    EXPECT_TRUE(Children(*Children(t.records[0], "Runway")[0], "RunwayStart").empty());
  }
}

struct HostileCase {
  std::string name;
  std::string bytes;
  std::string message;  // part of the error, empty when the source is read
};

TEST(Import, HostileSourcesEndWithAMessage) {
  std::string laughs = "<!DOCTYPE a [<!ENTITY l0 \"ha\">";
  for (int i = 1; i < 10; ++i) {
    std::string tenfold;
    for (int k = 0; k < 10; ++k) tenfold += "&l" + std::to_string(i - 1) + ";";
    laughs += "<!ENTITY l" + std::to_string(i) + " \"" + tenfold + "\">";
  }
  laughs += "]><FSData>&l9;</FSData>";
  std::string nested;
  for (int i = 0; i < 200000; ++i) nested += "<a>";
  for (int i = 0; i < 200000; ++i) nested += "</a>";
  const std::vector<HostileCase> cases = {
      {"billion laughs", laughs, "declares entities"},
      {"deep nesting", nested, ""},
      {"huge attribute", "<Airport name=\"" + std::string(2 << 20, 'x') + "\"/>",
       "longer than 1 MB"},
      {"unknown encoding", "<?xml version=\"1.0\" encoding=\"EBCDIC\"?><a/>", "unknown encoding"},
      {"not closed", "<FSData><Airport ident=\"X\">", "no element found"},
  };
  for (const HostileCase& c : cases) {
    const SourceTree got = ParseXmlSource(c.bytes);
    EXPECT_NE(got.error.find(c.message), std::string::npos) << c.name << ": " << got.error;
    EXPECT_EQ(got.ok(), c.message.empty()) << c.name;
  }
}

TEST(Import, AbsurdNumbersLeaveTheFieldEmptyAndSaySo) {
  TempDir dir;
  std::ostringstream err;
  const std::string source =
      "<FSData>\n<Airport ident=\"XABS\" lat=\"999\" lon=\"1e308\" "
      "alt=\"NaN\" magvar=\"-1e9\"/>\n</FSData>";
  EXPECT_EQ(Import(dir, {dir.write("src/absurd.xml", source)}, err).status, 0);
  auto store = std::make_unique<Store>();
  ExtractArpt(*store, dir.path() / "data/FSXFiles/absurd.xml", "XABS");
  EXPECT_EQ(store->ArptLat, "");
  EXPECT_EQ(store->ArptLon, "");
  EXPECT_EQ(store->ArptAlt, "");
  EXPECT_EQ(store->ArptMagvar, "");
  EXPECT_NE(err.str().find("absurd.xml:2: Airport lat=\"999\": not a latitude - left empty"),
            std::string::npos)
      << err.str();
}

TEST(Import, CommandLine) {
  std::ostringstream err;
  EXPECT_FALSE(ParseImportArgs({}, "/d", err));
  EXPECT_FALSE(ParseImportArgs({"--data"}, "/d", err));
  EXPECT_FALSE(ParseImportArgs({"--bogus", "a.xml"}, "/d", err));
  // Arguments are UTF-8 on every system; a name outside ASCII stays that name.
  const auto options =
      ParseImportArgs({"--data", "/J\xc3\xbcrgen", "K\xc3\xb6ln.xml", "dir"}, "/d", err);
  ASSERT_TRUE(options);
  EXPECT_EQ(options->dataDir, std::filesystem::path(u8"/Jürgen"));
  EXPECT_EQ(options->sources, (std::vector<std::filesystem::path>{u8"Köln.xml", "dir"}));
}

TEST(Import, TheIndexTellsOfAirportsInAnotherLayout) {
  TempDir dir;
  dir.write("FSXFiles/alone.xml", test::CrLf({"<FSData>", "<Airport", "  ident=\"XALN\"/>"}));
  dir.write("FSXFiles/one_line.xml", "<Airport ident=\"XONE\" lat=\"N1 0.0\"/>\r\n");
  dir.write("FSXFiles/other_first.xml", "<Airport region=\"X\" ident=\"XOTH\"/>\r\n");
  dir.write("FSXFiles/reader.txt", test::CrLf({"<Airport ident=\"XRDR\"", "lat=\"N1 0.0\""}));
  dir.write("FSXFiles/words.txt", "<Airports> are not here\r\n");
  const IndexBuild build = BuildIndex(dir.path() / "FSXFiles");
  const std::string layout =
      ": airports in a layout the chart cannot read - import it with velmora-import";
  EXPECT_EQ(build.warnings, (std::vector<std::string>{"alone.xml" + layout, "one_line.xml" + layout,
                                                      "other_first.xml" + layout,
                                                      "words.txt: no airport in this file"}));
}

}  // namespace
}  // namespace velmora
