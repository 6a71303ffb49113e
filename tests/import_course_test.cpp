// velmora-import: the courses of track-to-fix legs from their fixes, and the numbers the chart
// prints as they stand written with the decimals of its own data.

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>

#include "data/extract.h"
#include "data/files.h"
#include "data/numbers.h"
#include "data/vor.h"
#include "geometry/fix.h"
#include "import/run.h"
#include "import/xml_source.h"
#include "tests/test_support.h"

#ifndef VELMORA_REALDATA_DIR
#error "VELMORA_REALDATA_DIR must name the folder of real decompiled files"
#endif

namespace velmora {
namespace {

using test::TempDir;

// Where a fix of the case stands: in the airport, in another source, or nowhere.
enum class Where { kWaypoint, kNdb, kRunway, kOtherSourceVor, kOtherSourceWaypoint, kNowhere };
// Which leg group the course leg stands in, behind an approach leg to the first fix.
enum class Group { kApproach, kMissed, kTransition };

struct Fix {
  Where where;
  double lat = 0, lon = 0;
};

struct CourseCase {
  const char* what;
  const char* magvar;  // the airport's, as the source writes it
  Fix from, to;
  const char* type;                   // of the leg to `to`
  std::optional<std::string> course;  // its source course; none when it has none
  std::string expected;               // its course as the reader gets it
  const char* previousType = "IF";    // of the leg to `from`
  Group group = Group::kApproach;
};

std::string Number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6f", v);
  return text;
}

std::string Place(const Fix& f) {
  return " lat=\"" + Number(f.lat) + "\" lon=\"" + Number(f.lon) + "\"";
}

// A runway end's fix is named for its start record.
std::string Ident(const Fix& f, const char* name, const char* runway) {
  return f.where == Where::kRunway ? std::string("RW") + runway : name;
}

// The fix's record: within the airport, or for another source.
void AddFix(const Fix& f, const std::string& ident, const char* runway, std::string& own,
            std::string& other) {
  switch (f.where) {
    case Where::kWaypoint:
      own += "<Waypoint waypointIdent=\"" + ident + "\"" + Place(f) + "/>";
      break;
    case Where::kNdb:
      own += "<Ndb ident=\"" + ident + "\"" + Place(f) + "/>";
      break;
    case Where::kRunway:
      own += "<Start type=\"RUNWAY\" number=\"" + std::string(runway) + "\" designator=\"NONE\"" +
             Place(f) + "/>";
      break;
    case Where::kOtherSourceVor:
      other += "<Vor ident=\"" + ident + "\"" + Place(f) + " frequency=\"113.00\"/>";
      break;
    case Where::kOtherSourceWaypoint:
      other += "<Waypoint waypointIdent=\"" + ident + "\"" + Place(f) + "/>";
      break;
    case Where::kNowhere:
      break;
  }
}

std::string FixType(const Fix& f) {
  return f.where == Where::kRunway           ? "RUNWAY"
         : f.where == Where::kOtherSourceVor ? "VOR"
         : f.where == Where::kNdb            ? "NDB"
                                             : "WAYPOINT";
}

std::string Leg(const char* type, const std::string& ident, const Fix& f,
                const std::optional<std::string>& course) {
  std::string leg = "<Leg type=\"" + std::string(type) + "\" fixType=\"" + FixType(f) +
                    "\" fixIdent=\"" + ident + "\"";
  if (course) leg += " magneticCourse=\"" + *course + "\"";
  return leg + "/>";
}

// The leg to the case's second fix, as the reader's Leg row 1 gets it.
std::string ImportedCourse(const CourseCase& c) {
  const std::string from = Ident(c.from, "FROM", "09"), to = Ident(c.to, "TO", "27");
  std::string own, other;
  AddFix(c.from, from, "09", own, other);
  AddFix(c.to, to, "27", own, other);
  const std::string first = "<ApproachLegs>" + Leg(c.previousType, from, c.from, "0") +
                            (c.group == Group::kApproach ? "" : "</ApproachLegs>");
  const std::string second = Leg(c.type, to, c.to, c.course);
  const std::string legs =
      c.group == Group::kApproach ? first + second + "</ApproachLegs>"
      : c.group == Group::kMissed
          ? first + "<MissedApproachLegs>" + second + "</MissedApproachLegs>"
          : first + "<Transition fixType=\"WAYPOINT\" fixIdent=\"TO\"><TransitionLegs>" + second +
                "</TransitionLegs></Transition>";
  TempDir dir;
  const auto airport =
      dir.write("src/airport.xml", "<FSData><Airport ident=\"XCRS\" lat=\"0\" lon=\"0\" magvar=\"" +
                                       std::string(c.magvar) + "\">" + own +
                                       "<Approach type=\"RNAV\" runway=\"27\">" + legs +
                                       "</Approach></Airport></FSData>");
  const auto navaids = dir.write("src/navaids.xml", "<FSData>" + other + "</FSData>");
  std::ostringstream err;
  RunImport(SourcesImport(dir.path() / "data", {airport, navaids}), err);
  const auto written = dir.path() / "data/FSXFiles/airport.xml";
  const std::string bytes = test::Slurp(written);
  for (std::size_t i = bytes.find('\n'); i != std::string::npos; i = bytes.find('\n', i + 1)) {
    EXPECT_EQ(bytes[i - 1], '\r') << "a line end without CR around the course line";
  }
  auto store = std::make_unique<Store>();
  EXPECT_TRUE(ExtractArpt(*store, written, "XCRS").found) << err.str();
  EXPECT_EQ(store->Leg[1].fixIdent, to);
  return store->Leg[1].magneticCourse;
}

// Expected courses worked by hand: the initial great-circle course is
// atan2(sin dLon cos lat2, cos lat1 sin lat2 - sin lat1 cos lat2 cos dLon), and the magnetic
// course is that less an east variation or plus a west one.
TEST(ImportCourses, TrackToFixLegsGetTheCourseBetweenTheirFixes) {
  const Fix origin{Where::kWaypoint, 0, 0};
  const Fix east{Where::kWaypoint, 0, 1};
  const std::vector<CourseCase> cases = {
      {"north-east at the equator: atan(cos 1) is 44.996",
       "0",
       origin,
       {Where::kWaypoint, 1, 1},
       "TF",
       "0",
       "45.0"},
      {"east under 10 west (BglComp's sign)", "10", origin, east, "TF", "0", "100.0"},
      {"east under 21 east (BglComp's sign)", "-21", origin, east, "TF", "0", "69.0"},
      {"east under 21 east (the reader's form)", "339.000", origin, east, "TF", "0.0", "69.0"},
      {"north under 21 east wraps below 0",
       "-21",
       origin,
       {Where::kWaypoint, 1, 0},
       "TF",
       "0",
       "339.0"},
      {"354.29 under 10 west wraps past 360",
       "10",
       origin,
       {Where::kWaypoint, 1, -0.1},
       "TF",
       "0",
       "4.3"},
      {"at 60 north a great circle to the east starts at 89.57",
       "0",
       {Where::kWaypoint, 60, 0},
       {Where::kWaypoint, 60, 1},
       "TF",
       "0",
       "89.6"},
      {"a leg without course", "0", origin, east, "TF", std::nullopt, "90.0"},
      {"an NDB to a runway end",
       "0",
       {Where::kNdb, 0, 0},
       {Where::kRunway, 0, 1},
       "TF",
       "0",
       "90.0"},
      {"a VOR of another source", "0", {Where::kOtherSourceVor, 0, 0}, east, "TF", "0", "90.0"},
      {"a waypoint of another source",
       "0",
       origin,
       {Where::kOtherSourceWaypoint, 0, 1},
       "TF",
       "0",
       "90.0"},
      {"the missed approach goes on from the approach's last fix", "0", origin, east, "TF", "0",
       "90.0", "IF", Group::kMissed},
      {"a given course stays", "0", origin, east, "TF", "153", "153.0"},
      {"a course-to-fix leg keeps its own course, 0 too", "0", origin, east, "CF", "0", "0.0"},
      {"a direct leg starts wherever the turn ends", "0", origin, east, "DF", std::nullopt, ""},
      {"a leg to where it starts has no track", "0", origin, origin, "TF", "0", "0.0"},
      {"the previous fix is nowhere", "0", {Where::kNowhere}, east, "TF", "0", "0.0"},
      {"no course and no previous fix", "0", {Where::kNowhere}, east, "TF", std::nullopt, ""},
      {"a VOR beyond reach is another one",
       "0",
       {Where::kOtherSourceVor, 20, 0},
       east,
       "TF",
       "0",
       "0.0"},
      {"the previous leg ends at an altitude, not at its fix", "0", origin, east, "TF", "0", "0.0",
       "FA"},
      {"a transition's legs start anew", "0", origin, east, "TF", "0", "0.0", "IF",
       Group::kTransition},
  };
  for (const CourseCase& c : cases) {
    EXPECT_EQ(ImportedCourse(c), c.expected) << c.what;
  }
}

// Every number the sheet, the plan and the heading line print as they stand, from the forms
// decompilers write.
TEST(ImportCourses, PrintedNumbersGetTheChartsDecimals) {
  TempDir dir;
  const auto source = dir.write(
      "src/radios.xml",
      "<FSData><Airport ident=\"XRAD\" lat=\"40\" lon=\"-3\">"
      "<Runway number=\"25\" designator=\"RIGHT\" lat=\"40\" lon=\"-3\" length=\"2700.0144M\" "
      "width=\"100F\"><Ils ident=\"IRAD\" frequency=\"110.3500\" heading=\"279.940002441406\" "
      "name=\"ILS 25R\"/></Runway>"
      "<Com type=\"TOWER\" frequency=\"118.3000\" name=\"RADIO\"/>"
      "<Ndb ident=\"RD\" lat=\"40\" lon=\"-3\" frequency=\"0350.00\" name=\"RADIO\"/>"
      "</Airport><Vor ident=\"RAD\" lat=\"40.25\" lon=\"-3.5\" frequency=\"116.950\"/>"
      "</FSData>");
  std::ostringstream err;
  EXPECT_EQ(RunImport(SourcesImport(dir.path() / "data", {source}), err).status, 0) << err.str();
  auto store = std::make_unique<Store>();
  LoadVor(*store, dir.path() / "data" / kVorFileName);
  ExtractArpt(*store, dir.path() / "data/FSXFiles/radios.xml", "XRAD");
  EXPECT_EQ(store->RwyEnd[0].length, "2700.0M");
  EXPECT_EQ(store->RwyEnd[0].width, "30.5M");
  EXPECT_EQ(store->Ils[0].frequency, "110.35");
  EXPECT_EQ(store->Ils[0].heading, "279.9");
  EXPECT_EQ(store->Com[0].frequency, "118.300");
  EXPECT_EQ(store->Ndb[1].frequency, "350.0");
  EXPECT_EQ(store->Vor[0].frequency, "116.95");
}

std::size_t Decimals(const std::string& number) {
  const std::size_t point = number.find('.');
  return point == std::string::npos ? 0 : number.size() - point - 1;
}

struct Tally {
  int ils = 0, tracks = 0;
};

// The legs of the written file in the reader's order, with the types the store doesn't keep.
std::vector<const SourceElement*> LegsInOrder(const SourceElement& airport) {
  std::vector<const SourceElement*> legs;
  std::function<void(const SourceElement&)> walk = [&](const SourceElement& e) {
    for (const SourceElement& c : e.children) {
      if (c.name == "Leg") legs.push_back(&c);
      walk(c);
    }
  };
  walk(airport);
  return legs;
}

void ExpectChartsForms(const Store& s, const SourceElement& airport, Tally& tally) {
  for (std::int32_t i = 0; i <= s.IlsLast; ++i) {
    if (s.Ils[i].heading.empty()) continue;
    ++tally.ils;
    EXPECT_EQ(Decimals(s.Ils[i].heading), 1u) << s.Ils[i].name << " " << s.Ils[i].heading;
  }
  const auto legs = LegsInOrder(airport);
  const auto known = [&](const std::string& ident) {
    return !ident.empty() && FixGridX(s, ident) != 0;
  };
  for (std::int32_t i = 1; i <= s.LegLast && i < static_cast<std::int32_t>(legs.size()); ++i) {
    const LegRow &leg = s.Leg[i], &previous = s.Leg[i - 1];
    const bool sameGroup = leg.app == previous.app && leg.trans == previous.trans;
    if (*legs[i]->attr("type") != "TF" || !sameGroup || !known(previous.fixIdent) ||
        !known(leg.fixIdent)) {
      continue;
    }
    ++tally.tracks;
    EXPECT_NE(ParseNumber(leg.magneticCourse).value_or(0), 0.0) << leg.fixIdent;
  }
}

// Real decompiled files, imported together: every ILS heading has the chart's one decimal, and
// no track-to-fix leg between two fixes the chart finds keeps FSX's 0.
TEST(ImportCourses, RealDecompiledFilesChartWithTheirOwnCourses) {
  const std::filesystem::path found = VELMORA_REALDATA_DIR;
  std::error_code ec;
  if (!std::filesystem::is_directory(found, ec)) {
    GTEST_SKIP() << found.string() << " is missing: no real decompiled files to import";
  }
  // The decompiled XML alone: the compiled files beside them hold the same airports.
  std::vector<std::filesystem::path> sources;
  for (const char* folder : {"bgl", "xml"}) {
    for (const auto& entry : std::filesystem::directory_iterator(found / folder)) {
      if (entry.path().extension() == ".xml") sources.push_back(entry.path());
    }
  }
  TempDir dir;
  std::ostringstream err;
  const ImportResult result = RunImport(SourcesImport(dir.path() / "data", sources), err);
  EXPECT_EQ(result.status, 0) << err.str();
  auto store = std::make_unique<Store>();
  LoadVor(*store, dir.path() / "data" / kVorFileName);
  Tally tally;
  for (const auto& entry : std::filesystem::directory_iterator(dir.path() / "data/FSXFiles")) {
    for (const SourceElement& a : ReadXmlSource(entry.path()).records) {
      SCOPED_TRACE(entry.path().filename().string() + " " + *a.attr("ident"));
      ASSERT_TRUE(ExtractArpt(*store, entry.path(), *a.attr("ident")).found);
      ExpectChartsForms(*store, a, tally);
    }
  }
  // KTST (twice), LEAB and LEAR hold two ILS each; none of the files holds a TF leg yet.
  EXPECT_EQ(tally.ils, 6);
  RecordProperty("track-to-fix legs checked", tally.tracks);
}

}  // namespace
}  // namespace velmora
