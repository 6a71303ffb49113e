#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "data/decoders.h"
#include "data/extract.h"
#include "data/text.h"
#include "test_support.h"

namespace velmora::test {
namespace {

using S = const std::string&;

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The lines of a record as an airport file holds them: each but the empty ones led by two
// blanks.
Lines Block(std::string_view text) {
  Lines lines;
  for (std::string_view line : Split(text, '\n'))
    lines.push_back(line.empty() ? "" : "  " + std::string(line));
  return lines;
}

// The airport's own lat comes before a tower's, a runway's before its Vasi's.
Lines Airport(const Lines& body, S ident = "KAAA", S name = "Sea") {
  return Lines{"<Airport ident=\"" + ident + "\""} + Block("name=\"" + name + R"("
lat="N47 26.39"
magvar="-18.00"
>
<Tower
lat="N1 00.00"/>)") +
         body + Lines{"</Airport>"};
}
Lines Runway(S number, S designator, S length, int blanksBehind = 1) {
  return Block("<Runway number=\"" + number + "\" designator=\"" + designator + R"("
lat="N47 00.00"
length=")" + length +
               R"("
width="45.0M"
surface="ASPHALT">
<Vasi type="PAPI4"
lat="N9 00.00"/>
</Runway>)") +
         Lines(blanksBehind, "");
}
Lines Start(S number, S designator, S lat) {
  return Block(R"(<Start type="RUNWAY"
number=")" + number +
               "\" designator=\"" + designator + R"("
lat=")" + lat + R"("
lon="W122 18.10"
heading="70.0"/>)");
}
Lines Com(S name) {
  return Block("<Com type=\"TOWER\"\nname=\"" + name + "\"/>");
}
Lines Ndb(S ident, S name) {
  return Block(R"(<Ndb type="H"
frequency="350.0"
ident=")" + ident +
               R"("
name=")" + name +
               "\"/>");
}
Lines Approach(S type, S runway = "16", S designator = "LEFT") {
  return Block("<Approach type=\"" + type + "\"\nrunway=\"" + runway + "\"\ndesignator=\"" +
               designator + "\">");
}
// `extra`: further attribute lines; a "/>" line of its own closes the leg.
Lines Leg(S fix, std::string_view extra = {}) {
  return Block("<Leg type=\"TF\"\nfixIdent=\"" + fix + "\"") +
         (extra.empty() ? Lines{} : Block(extra)) + Block("/>");
}

class ExtractTest : public ::testing::Test {
 protected:
  ExtractReport Load(const Lines& lines, std::string_view ident = "KAAA", S eol = "\r\n") {
    std::string text;
    for (const std::string& l : lines) text += l + eol;
    return ExtractArpt(store, dir.write("FSXFiles/APX41.xml", text), ident);
  }
  TempDir dir;
  Store store;
};

TEST(Decoders, ScanElementThenKeyAndQuotedValues) {
  EXPECT_EQ(StripLead("  \t a "), "\t a ");  // blanks only, and only in front
  const struct {
    const char *line, *element, *key, *first, *second;
  } cases[] = {
      {"\t\t<Runway\tnumber=\"07\" designator=\"NONE\"", "<Runway", "<Runway number", "07", "NONE"},
      {"    name=\"a<b\" x", "name=\"a<b\"", "name", "a<b", ""},
      {"  lat =\"N47 26.39\"", "<Before", "lat ", "N47 26.39", ""},
      {"a=\"x y", "<Before", "a", "x y", ""},         // one quote: the rest of the line
      {"a=\"x\" b=\"yy", "<Before", "a", "x", "yy"},  // three: the rest behind the third
  };
  for (const auto& c : cases) {
    std::string line = c.line, element = "<Before";
    ScanElement(line, element);
    std::string_view rest = line;
    EXPECT_EQ(element, c.element) << c.line;
    EXPECT_EQ(AttrKey(rest), c.key) << c.line;
    EXPECT_EQ(AttrValue(line), c.first) << c.line;
    EXPECT_EQ(AttrValue2(line), c.second) << c.line;
  }
}

// Windows-1252 both ways, and upper case for the accented letters but not for the signs
// that share their rows (division, multiplication).
TEST(Text, Cp1252CaseAndUtf8) {
  EXPECT_EQ(UpperCase("ab\xE9\xF7\xD7\xFF\x9A\xDFz1"), "AB\xC9\xF7\xD7\x9F\x8A\xDFZ1");
  const std::string all = "A\x80\x81\x9F\xA0\xB0\xFF";
  EXPECT_EQ(Cp1252ToUtf8(all), "A\u20AC\u0081\u0178\u00A0\u00B0\u00FF");
  EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(all)), all);
  EXPECT_EQ(Utf8ToCp1252("\u4E2D\xC3"), "??");
  EXPECT_TRUE(ContainsNoCase("ils rwy 16L", "RWY 16l"));
  EXPECT_FALSE(ContainsNoCase("ILS", "ILSX"));
}

TEST(Extract, RunwayFixNameBesidesTheSlotWalk) {
  for (auto [type, number, name] :
       {std::tuple{"WATER", "07", "RW07C"}, {"HELIPAD", "1", ""}, {"RUNWAY", "100", ""}}) {
    EXPECT_EQ(RunwayFixName({type, number, "CENTER", "", "", "", "", "", ""}), name)
        << type << ' ' << number;
  }
}

// Two runways, four Start records: the same store whatever the order and the line ends.
TEST_F(ExtractTest, RunwaySlotsWalkInStepsOfTwo) {
  const Lines s1 = Start("7", "NONE", "N47 25.00"), s2 = Start("25", "NONE", "N47 26.00");
  const Lines s3 = Start("16", "LEFT", "N47 27.00"), s4 = Start("34", "RIGHT", "N47 28.00");
  const Lines r1 = Runway("07", "NONE", "3000.0M"), r2 = Runway("16", "LEFT", "2500.0M");
  // The Start records fill type, number, fix name and position; the runway its measures.
  const struct {
    const char *number, *fixName, *lat, *length, *width, *surface;
  } want[] = {{"7", "RW07", "N47 25.00", "3000.0M", "45.0M", "ASPHALT"},
              {"25", "RW25", "N47 26.00", "", "", ""},
              {"16", "RW16L", "N47 27.00", "2500.0M", "45.0M", "ASPHALT"},
              {"34", "RW34R", "N47 28.00", "", "", ""}};
  for (auto [interleaved, eol] :
       {std::pair{false, "\r\n"}, {true, "\r\n"}, {false, "\r"}, {false, "\n"}}) {
    SCOPED_TRACE(::testing::Message() << interleaved << " eol " << int(eol[0]));
    const Lines body = interleaved ? r1 + s1 + s2 + r2 + s3 + s4 : r1 + r2 + s1 + s2 + s3 + s4;
    ASSERT_TRUE(Load(Airport(body), "KAAA", eol).found);
    EXPECT_EQ(store.ArptMagvar, "-18.00");
    EXPECT_EQ(store.RwyLast, 3);
    for (int i = 0; i < 4; ++i) {
      SCOPED_TRACE(i);
      const RwyEndRow& r = store.RwyEnd[i];
      EXPECT_EQ(r.type, "RUNWAY");
      EXPECT_EQ(r.number, want[i].number);
      EXPECT_EQ(r.fixName, want[i].fixName);
      EXPECT_EQ(r.lat, want[i].lat);
      EXPECT_EQ(r.lon, "W122 18.10");
      EXPECT_EQ(r.length, want[i].length);
      EXPECT_EQ(r.width, want[i].width);
      EXPECT_EQ(r.surface, want[i].surface);
    }
  }
  // Each line behind </Runway> moves the runway slot on by one.
  for (int blanks : {0, 1, 2}) {
    Load(Airport(Runway("07", "NONE", "3000.0M", blanks) + r2));
    EXPECT_EQ(store.RwyEnd[blanks + 1].length, "2500.0M") << blanks;
    EXPECT_EQ(store.RwyEnd[blanks + 1].designator, "LEFT") << blanks;
  }
}

// One of each record. A leg's "/>" behind an attribute doesn't close: R and S make one row.
Lines FullAirport() {
  Lines start = Start("7", "NONE", "N47 25.00");
  start[2] = "\tlat=\"N9 99.00\"";  // a Start line led by a tab matches no key
  return Airport(Block(R"(<Runway number="07" designator="NONE"
lat="N47 00.00"
length="3000.0M">
<Ils end="PRIMARY" ident="ISEA"
lat="N9 00.00"
frequency="110.30"
heading="163.0"
name="IGS RW07"/>
</Runway>
)") + Runway("16", "LEFT", "2500.0M") +
                 start + Com("A") + Com("B") + Ndb("NA", "Alpha") +
                 Ndb("NB", "") +  // empty quotes close too
                 Block("<Waypoint\nwaypointIdent=\"WA\">\n</Waypoint>") + Approach("ILS") +
                 Leg("P", "altitude1=\"1000\"\naltitude2=\"2000\"\nrecommendedIdent=\"SEA\"") +
                 Leg("Q", "altitude2=\"2000\"\naltitude1=\"1000\"") + Block(R"(<Leg type="CF"
fixIdent="R"
magneticCourse="160.0"
rho="5.0"/>)") + Leg("S", "altitude1=\"3000\"") +
                 Block("<Transition\nfixType=\"VOR\"\nfixIdent=\"T\">") + Leg("Z") +
                 Lines{"</Transition>", "</Approach>"} + Approach("NDB") + Lines{"</Approach>"});
}

// One of each record, each closed on its last line.
TEST_F(ExtractTest, RecordsCloseOnTheirLastLine) {
  Load(FullAirport());
  EXPECT_EQ(store.Ils[0].end, "ISEA");
  EXPECT_EQ(store.Ils[0].frequency, "110.30");
  EXPECT_EQ(store.Ils[0].heading, "163.0");
  EXPECT_EQ(store.Ils[0].name, "IGS RW07");
  EXPECT_EQ(store.RwyEnd[0].lat, "N47 00.00");  // not the Ils's, nor the tab-led Start line's
  EXPECT_EQ(store.RwyEnd[0].length, "3000.0M");
  EXPECT_EQ(store.RwyEnd[0].fixName, "RW07");
  EXPECT_EQ(store.RwyEnd[2].length, "2500.0M");
  EXPECT_EQ(store.Com[1].name, "B");
  EXPECT_EQ(store.Ndb[0].ident, "");  // slot 0 of the NDBs stays empty
  EXPECT_EQ(store.Ndb[1].ident, "NA");
  EXPECT_EQ(store.Ndb[1].frequency, "350.0");
  EXPECT_EQ(store.Ndb[2].ident, "NB");
  EXPECT_EQ(store.Waypoint[0].ident, "WA");
  // Of altitude1 and altitude2 the later line wins; R's "/>" doesn't close its leg.
  EXPECT_EQ(store.Leg[0].altitude, "2000");
  EXPECT_EQ(store.Leg[0].recommendedIdent, "SEA");
  EXPECT_EQ(store.Leg[1].altitude, "1000");
  EXPECT_EQ(store.Leg[2].fixIdent, "S");
  EXPECT_EQ(store.Leg[2].rho, "5.0");
  EXPECT_EQ(store.Leg[2].magneticCourse, "160.0");
  EXPECT_EQ(store.Leg[2].altitude, "3000");
  EXPECT_EQ(store.Leg[3].fixIdent, "Z");
  EXPECT_EQ(store.Trans[0].fixIdent, "T");
  EXPECT_EQ(store.IlsLast, 0);
  EXPECT_EQ(store.RwyLast, 0);
  EXPECT_EQ(store.ComLast, 1);
  EXPECT_EQ(store.NdbLast, 2);
  EXPECT_EQ(store.AppLast, 1);
  EXPECT_EQ(store.LegLast, 3);
}

// A full airport loaded, then a file of three: only the asked one is left in the store, and
// the VOR list stays.
TEST_F(ExtractTest, OnlyTheAskedAirportStays) {
  store.Vor[2].ident = "SEA";
  store.VorLast = 2;
  Load(FullAirport());
  const Lines second = Approach("VOR") + Leg("X") + Lines{"</Approach>"} + Com("C-B");
  const ExtractReport report =
      Load(Airport(Com("C-A") + Ndb("NA", "A"), "KAAA", "First") +
               Airport(second, "KBBB", "Second") + Airport(Ndb("NC", "C"), "KCCC", "Third"),
           "KBBB");
  EXPECT_TRUE(report.opened);
  EXPECT_TRUE(report.found);
  EXPECT_EQ(store.ArptIdent, "KBBB");
  EXPECT_EQ(store.ArptName, "Second");
  EXPECT_EQ(store.ArptLat, "N47 26.39");  // not the tower's lat
  EXPECT_EQ(store.Approach[0].type, "VOR");
  EXPECT_EQ(store.Com[0].name, "C-B");
  const LegRow& leg = store.Leg[0];
  EXPECT_EQ(leg.fixIdent, "X");
  EXPECT_EQ(leg.rho, "");
  EXPECT_EQ(leg.altitude, "");
  EXPECT_EQ(leg.magneticCourse, "");
  EXPECT_EQ(leg.recommendedIdent, "");
  // Nothing of the first airport's records is left behind.
  const std::string* emptied[] = {&store.RwyEnd[0].number,  &store.RwyEnd[2].number,
                                  &store.RwyEnd[0].length,  &store.Ils[0].name,
                                  &store.Approach[1].type,  &store.Com[1].name,
                                  &store.Ndb[1].ident,      &store.Waypoint[0].ident,
                                  &store.Trans[0].fixIdent, &store.Leg[1].fixIdent};
  for (const std::string* field : emptied) EXPECT_EQ(*field, "");
  for (const std::int32_t last : {store.RwyLast, store.ComLast, store.NdbLast, store.WaypointLast,
                                  store.AppLast, store.TransLast, store.LegLast}) {
    EXPECT_EQ(last, 0);
  }
  EXPECT_EQ(store.Vor[2].ident, "SEA");  // VORs stay
  EXPECT_EQ(store.VorLast, 2);
}

// An ident differing in case, or a tab in front of the line, is not the airport; nor is a
// missing file. Each empties the store.
TEST_F(ExtractTest, NotTheAirportOrNoFileLeavesNothing) {
  for (const char* first : {"<Airport ident=\"kbbb\"", "\t<Airport ident=\"KBBB\""}) {
    Load(FullAirport());  // the store full of another airport
    Lines other = Airport(Com("C-B"), "KBBB");
    other[0] = first;
    EXPECT_FALSE(Load(other, "KBBB").found) << first;
    EXPECT_EQ(store.ArptIdent, "") << first;
    EXPECT_EQ(store.ArptName, "") << first;
    EXPECT_EQ(store.Com[0].name, "") << first;
  }
  store.ArptName = "Old";
  const auto lasts = {&store.RwyLast,      &store.ComLast, &store.IlsLast,   &store.NdbLast,
                      &store.WaypointLast, &store.AppLast, &store.TransLast, &store.LegLast};
  for (std::int32_t* last : lasts) *last = 5;
  const ExtractReport missing = ExtractArpt(store, dir.path() / "FSXFiles/none.xml", "KAAA");
  EXPECT_FALSE(missing.opened);
  EXPECT_FALSE(missing.found);
  EXPECT_EQ(store.ArptName, "");
  for (std::int32_t* last : lasts) EXPECT_EQ(*last, 0);
}

TEST_F(ExtractTest, RecordsBeyondTheLastSlotAreDropped) {
  Lines body;
  for (int i = 0; i < 103; ++i) body = body + Com("C" + std::to_string(i));
  body = body + Approach("ILS");
  for (int i = 0; i < 1002; ++i) body = body + Leg("L" + std::to_string(i));
  const Dropped dropped = Load(Airport(body + Lines{"</Approach>"})).dropped;
  EXPECT_EQ(store.ComLast, 100);
  EXPECT_EQ(store.Com[100].name, "C100");
  EXPECT_EQ(dropped.com, 2);
  EXPECT_EQ(store.LegLast, 1000);
  EXPECT_EQ(store.Leg[1000].fixIdent, "L1000");
  EXPECT_EQ(dropped.leg, 1);
  EXPECT_EQ(store.AppLast, 0);
}

// Legs A and B in one group, C in another, D and E in two transitions; then a second approach
// with F, a transition with G, and a leg behind that transition, which is lost. Blank lines
// behind the closing words step nothing.
TEST_F(ExtractTest, ApproachLegsAndTransitionsWalkThrough) {
  const auto transition = [](S type, S fix, S leg) {
    return Block("<Transition transitionType=\"FULL\"\nfixType=\"" + type + "\"\nfixIdent=\"" +
                 fix + "\"\naltitude=\"3000\">\n<TransitionLegs>") +
           Leg(leg);
  };
  for (int blanks : {0, 2}) {
    const Lines close = Block("</TransitionLegs>\n</Transition>") + Lines(blanks, "");
    Load(Airport(Approach("ILS") + Lines{"<ApproachLegs>"} + Leg("A") + Leg("B") +
                 Lines{"</ApproachLegs>", "<MissedApproachLegs>"} + Leg("C") +
                 Lines{"</MissedApproachLegs>"} + transition("VOR", "T1", "D") + close +
                 transition("WAYPOINT", "T2", "E") + close + Lines{"</Approach>"} +
                 Lines(blanks, "") + Approach("VOR", "34", "NONE") + Lines{"<ApproachLegs>"} +
                 Leg("F") + Lines{"</ApproachLegs>"} + transition("INT", "T3", "G") + close +
                 Leg("LOST") + Lines{"</Approach>"}));
    SCOPED_TRACE(blanks);
    EXPECT_EQ(store.LegLast, 6);
    EXPECT_EQ(store.TransLast, 2);
    EXPECT_EQ(store.AppLast, 1);
    // Each leg's approach and transition (1000: none); the row behind the last written is empty.
    const struct {
      const char* fix;
      int app, trans;
    } legs[] = {{"A", 0, 1000}, {"B", 0, 1000}, {"C", 0, 1000}, {"D", 0, 0},
                {"E", 0, 1},    {"F", 1, 1000}, {"G", 1, 2},    {"", 0, 0}};
    for (int i = 0; i < 8; ++i) {
      EXPECT_EQ(store.Leg[i].fixIdent, legs[i].fix) << "leg " << i;
      EXPECT_EQ(store.Leg[i].app, legs[i].app) << "leg " << i;
      EXPECT_EQ(store.Leg[i].trans, legs[i].trans) << "leg " << i;
    }
    const struct {
      const char *fix, *type;
      int app;
    } trans[] = {{"T1", "VOR", 0}, {"T2", "WAYPOINT", 0}, {"T3", "INT", 1}, {"", "", 0}};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(store.Trans[i].fixIdent, trans[i].fix) << "transition " << i;
      EXPECT_EQ(store.Trans[i].fixType, trans[i].type) << "transition " << i;
      EXPECT_EQ(store.Trans[i].app, trans[i].app) << "transition " << i;
    }
    EXPECT_EQ(store.Approach[0].type, "ILS");
    EXPECT_EQ(store.Approach[0].runway, "16");
    EXPECT_EQ(store.Approach[0].designator, "LEFT");
    EXPECT_EQ(store.Approach[1].type, "VOR");
    EXPECT_EQ(store.Approach[1].runway, "34");
    EXPECT_EQ(store.Approach[1].designator, "NONE");
  }
}

}  // namespace
}  // namespace velmora::test
