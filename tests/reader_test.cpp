#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>

#include "data/decoders.h"
#include "data/extract.h"
#include "data/text.h"
#include "test_support.h"

namespace velmora::test {
namespace {

using Lines = std::vector<std::string>;
using S = const std::string&;

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// File lines written with "|" between them; each "$" takes the next of `args`.
Lines Rec(std::string_view pattern, std::initializer_list<std::string> args = {}) {
  std::string text;
  auto arg = args.begin();
  for (char c : pattern) text += (c == '$' && arg != args.end()) ? *arg++ : std::string(1, c);
  Lines lines;
  for (std::string_view piece : Split(text, '|')) lines.emplace_back(piece);
  return lines;
}

Lines Airport(S ident, S name, const Lines& body) {
  return Rec(R"(<Airport ident="$"|  name="$"|  lat="N47 26.39"|  lon="W122 18.55"|)"
             R"(  magvar="-18.00"|  >|  <Tower|    lat="N1 00.00"/>)",
             {ident, name}) +
         body + Lines{"</Airport>"};
}
Lines Runway(S number, S designator, S length, int blanksBehind = 1) {
  return Rec(R"(  <Runway number="$" designator="$"|    lat="N47 00.00"|    length="$"|)"
             R"(    width="45.0M"|    heading="70.0"|    surface="ASPHALT">|)"
             R"(    <Vasi type="PAPI4"|      lat="N9 00.00"/>|  </Runway>)",
             {number, designator, length}) +
         Lines(blanksBehind, "");
}
Lines Start(S number, S designator, S lat) {
  return Rec(R"(  <Start type="RUNWAY"|    number="$" designator="$"|    lat="$"|)"
             R"(    lon="W122 18.10"|    alt="130.2M"|    heading="70.0"/>)",
             {number, designator, lat});
}
Lines Com(const std::string& name) {
  return Rec(R"(  <Com type="TOWER"|    frequency="118.300"|    name="$"/>)", {name});
}
Lines Ndb(S ident, S name) {
  return Rec(R"(  <Ndb type="H"|    lat="N47 30.00"|    frequency="350.0"|    ident="$"|)"
             R"(    name="$"/>)",
             {ident, name});
}
Lines Waypoint(const std::string& ident) {
  return Rec(R"(  <Waypoint waypointType="NAMED"|    waypointIdent="$"|    lat="N47 40.00"|)"
             R"(    lon="W122 20.00">|  </Waypoint>)",
             {ident});
}
// `extra`: further attribute lines; a "/>" line of its own closes the leg.
Lines Leg(const std::string& fix, std::string_view extra = {}) {
  return Rec(R"(      <Leg type="TF"|        fixType="WAYPOINT"|        fixIdent="$")", {fix}) +
         (extra.empty() ? Lines{} : Rec(extra)) + Lines{"        />"};
}
Lines Approach(S type, S runway, S designator) {
  return Rec(R"(  <Approach type="$"|    runway="$"|    designator="$">)",
             {type, runway, designator});
}

class ExtractTest : public ::testing::Test {
 protected:
  ExtractReport Load(const Lines& lines, std::string_view ident = "KAAA",
                     const std::string& eol = "\r\n") {
    std::string text;
    for (const std::string& l : lines) text += l + eol;
    return ExtractArpt(store, dir.write("FSXFiles/APX41.xml", text), ident);
  }
  TempDir dir;
  Store store;
};

TEST(Decoders, ElementWordWithTabsAndQuotes) {
  // Tabs count as blanks; a "<" inside quotes still makes an element line.
  const struct {
    const char *line, *element, *normalised;
  } cases[] = {{"\t\t<Runway\tnumber=\"07\"", "<Runway", "<Runway number=\"07\""},
               {"    name=\"a<b\" x", "name=\"a<b\"", "name=\"a<b\" x"},
               {" \t lat=\"N4\"", "<Before", "lat=\"N4\""}};
  for (const auto& c : cases) {
    std::string line = c.line, element = "<Before";
    ScanElement(line, element);
    EXPECT_EQ(std::tie(element, line), std::tuple(c.element, c.normalised)) << c.line;
  }
}

TEST(Decoders, KeyAndQuotedValues) {
  const struct {
    const char *line, *key, *first, *second;
  } cases[] = {{"<Runway number=\"07\" designator=\"NONE\"", "<Runway number", "07", "NONE"},
               {"    lat=\"N47 26.39\"", "lat", "N47 26.39", ""},
               {"lat =\"N47 26.39\"", "lat ", "N47 26.39", ""},
               {"    />", "/>", "", ""},
               {"rho=\"5.0\"/>", "rho", "5.0", ""},
               {"a=\"x y", "a", "x y", ""},         // one quote: the rest of the line
               {"a=\"x\" b=\"yy", "a", "x", "yy"},  // three: the rest behind the third
               {"   ", "", "", ""}};
  for (const auto& c : cases) {
    std::string_view line = c.line;
    EXPECT_EQ(AttrKey(line), c.key) << c.line;
    EXPECT_EQ(line, StripLead(c.line)) << c.line;
    EXPECT_EQ(AttrValue(c.line), c.first) << c.line;
    EXPECT_EQ(AttrValue2(c.line), c.second) << c.line;
  }
}

TEST(Extract, RunwayFixNameLeavesOutHelipadsAndLongNumbers) {
  const auto name = [](const char* type, const char* number, const char* designator) {
    RwyEndRow row;
    std::tie(row.type, row.number, row.designator) = std::tuple(type, number, designator);
    return RunwayFixName(row);
  };
  EXPECT_EQ(name("HELIPAD", "1", "NONE") + name("RUNWAY", "100", "NONE"), "");
  EXPECT_EQ(name("WATER", "7", "CENTER"), "RW07C");
}

// Two runways, four Start records: the same store whatever the order and the line ends.
TEST_F(ExtractTest, RunwaySlotsWalkInStepsOfTwo) {
  const Lines s1 = Start("7", "NONE", "N47 25.00"), s2 = Start("25", "NONE", "N47 26.00");
  const Lines s3 = Start("16", "LEFT", "N47 27.00"), s4 = Start("34", "RIGHT", "N47 28.00");
  const Lines r1 = Runway("07", "NONE", "3000.0M"), r2 = Runway("16", "LEFT", "2500.0M");
  const Lines runwaysFirst = r1 + r2 + s1 + s2 + s3 + s4, interleaved = r1 + s1 + s2 + r2 + s3 + s4;
  const struct {
    const Lines* body;
    const char* eol;
  } variants[] = {{&runwaysFirst, "\r\n"},
                  {&interleaved, "\r\n"},
                  {&runwaysFirst, "\r"},
                  {&runwaysFirst, "\n"}};
  for (const auto& v : variants) {
    SCOPED_TRACE(::testing::Message() << (v.body == &interleaved) << " eol " << int(v.eol[0]));
    ASSERT_TRUE(Load(Airport("KAAA", "Sea", *v.body), "KAAA", v.eol).found);
    EXPECT_EQ(store.ArptMagvar, "-18.00");
    EXPECT_EQ(store.RwyLast, 3);
    const struct {
      const char *number, *fixName, *lat, *length;
    } want[] = {{"7", "RW07", "N47 25.00", "3000.0M"},
                {"25", "RW25", "N47 26.00", ""},
                {"16", "RW16L", "N47 27.00", "2500.0M"},
                {"34", "RW34R", "N47 28.00", ""}};
    for (int i = 0; i < 4; ++i) {
      const RwyEndRow& r = store.RwyEnd[i];
      const bool even = i % 2 == 0;
      EXPECT_EQ(std::tie(r.type, r.number, r.fixName, r.lat, r.lon),
                std::tuple("RUNWAY", want[i].number, want[i].fixName, want[i].lat, "W122 18.10"));
      EXPECT_EQ(std::tie(r.length, r.width, r.surface),
                std::tuple(want[i].length, even ? "45.0M" : "", even ? "ASPHALT" : ""));
    }
  }
  // Each line behind </Runway> moves the runway slot on by one.
  for (int blanks : {0, 1, 2}) {
    Load(Airport("KAAA", "Sea", Runway("07", "NONE", "3000.0M", blanks) + r2));
    EXPECT_EQ(store.RwyEnd[blanks + 1].length, "2500.0M") << blanks;
  }
}

TEST_F(ExtractTest, OnlyTheAskedAirportReachesTheStore) {
  const Lines file = Airport("KAAA", "First", Com("C-A") + Ndb("NA", "A")) +
                     Airport("KBBB", "Second", Com("C-B")) +
                     Airport("KCCC", "Third", Waypoint("WC"));
  const ExtractReport report = Load(file, "KBBB");
  EXPECT_TRUE(report.opened && report.found);
  EXPECT_EQ(store.ArptIdent, "KBBB");
  EXPECT_EQ(store.ArptName, "Second");
  EXPECT_EQ(store.ArptLat, "N47 26.39");  // not the tower's
  EXPECT_EQ(store.Com[0].name + "|" + store.Com[1].name, "C-B|");
  EXPECT_EQ(store.ComLast + store.NdbLast + store.WaypointLast, 0);
  EXPECT_EQ(store.Ndb[1].ident + store.Waypoint[0].ident, "");

  // An ident differing in case, or a tab in front of the line, is not the airport.
  for (const char* first : {"<Airport ident=\"kbbb\"", "\t<Airport ident=\"KBBB\""}) {
    Lines other = Airport("KBBB", "Second", Com("C-B"));
    other[0] = first;
    EXPECT_FALSE(Load(other, "KBBB").found) << first;
    EXPECT_EQ(store.ArptIdent + store.ArptName + store.Com[0].name, "") << first;
  }
}

TEST_F(ExtractTest, RecordsCloseOnTheirLastLine) {
  Lines start = Start("7", "NONE", "N47 25.00");
  start[2] = "\tlat=\"N9 99.00\"";  // a Start line led by a tab matches no key
  const Lines runwayWithIls =
      Rec(R"(  <Runway number="07" designator="NONE"|    lat="N47 00.00"|    length="3000.0M">|)"
          R"(    <Ils end="PRIMARY" ident="ISEA"|      lat="N9 00.00"|      frequency="110.30"|)"
          R"(      heading="163.0"|      name="IGS RW07"/>|  </Runway>|)");
  Load(Airport("KAAA", "Sea",
               runwayWithIls + Runway("16", "LEFT", "2500.0M") + start + Ndb("NA", "Alpha") +
                   Ndb("NB", "")));  // empty quotes close too

  const IlsRow& ils = store.Ils[0];
  EXPECT_EQ(std::tie(ils.end, ils.frequency, ils.heading, ils.name, store.IlsLast),
            std::tuple("ISEA", "110.30", "163.0", "IGS RW07", 0));
  const RwyEndRow& r = store.RwyEnd[0];
  EXPECT_EQ(std::tie(r.lat, r.length, r.fixName, store.RwyEnd[2].length, store.RwyLast),
            std::tuple("N47 00.00", "3000.0M", "RW07", "2500.0M", 0));
  EXPECT_EQ(std::tie(store.Ndb[0].ident, store.Ndb[1].ident, store.Ndb[2].ident, store.NdbLast),
            std::tuple("", "NA", "NB", 2));
  EXPECT_EQ(store.Ndb[1].frequency, "350.0");
}

TEST_F(ExtractTest, RecordsBeyondTheLastSlotAreDropped) {
  Lines body;
  for (int i = 0; i < 102; ++i) body = body + Com("C" + std::to_string(i));
  for (int i = 0; i < 1003; ++i) body = body + Waypoint("W" + std::to_string(i));
  body = body + Approach("RNAV", "16", "NONE");
  for (int i = 0; i < 1002; ++i) body = body + Leg("L" + std::to_string(i));
  const Dropped dropped = Load(Airport("KAAA", "Big", body + Lines{"</Approach>"})).dropped;

  EXPECT_EQ(std::tie(store.ComLast, store.Com[100].name, dropped.com), std::tuple(100, "C100", 1));
  EXPECT_EQ(std::tie(store.WaypointLast, store.Waypoint[1000].ident, dropped.waypoint),
            std::tuple(1000, "W1000", 2));
  EXPECT_EQ(std::tie(store.LegLast, store.Leg[1000].fixIdent, dropped.leg),
            std::tuple(1000, "L1000", 1));
  EXPECT_EQ(store.AppLast, 0);
}

TEST_F(ExtractTest, ASmallerAirportLeavesNothingOfTheOneBefore) {
  Lines big = Runway("07", "NONE", "3000.0M");
  for (const char* n : {"7", "25", "9", "27"}) big = big + Start(n, "NONE", "N47 25.00");
  big = big + Com("A") + Com("B") + Ndb("NA", "A") + Waypoint("WA") +
        Approach("ILS", "16", "LEFT") +
        Leg("X", R"(rho="5.0"|altitude1="2000"|magneticCourse="160"|recommendedIdent="SEA")") +
        Leg("Y") + Rec(R"(<Transition|fixType="VOR"|fixIdent="T")") + Leg("Z") +
        Lines{"</Transition>", "</Approach>"};
  store.Vor[2].ident = "SEA";
  store.VorLast = 2;
  Load(Airport("KAAA", "Big", big));
  ASSERT_EQ(store.Leg[0].rho, "5.0");
  ASSERT_EQ(store.RwyLast, 3);
  Load(Airport("KBBB", "Small", Approach("VOR", "34", "NONE") + Leg("X") + Lines{"</Approach>"}),
       "KBBB");

  EXPECT_EQ(store.ArptName, "Small");
  for (int i = 0; i < 4; ++i) EXPECT_EQ(store.RwyEnd[i].number + store.RwyEnd[i].length, "") << i;
  EXPECT_EQ(store.Com[0].name + store.Ndb[1].ident + store.Waypoint[0].ident, "");
  EXPECT_EQ(store.Trans[0].fixIdent + store.Leg[1].fixIdent, "");
  const LegRow& leg = store.Leg[0];
  EXPECT_EQ(leg.fixIdent, "X");
  EXPECT_EQ(leg.rho + leg.altitude + leg.magneticCourse + leg.recommendedIdent, "");
  for (int last : {store.RwyLast, store.ComLast, store.NdbLast, store.WaypointLast, store.AppLast,
                   store.TransLast, store.LegLast}) {
    EXPECT_EQ(last, 0);
  }
  EXPECT_EQ(store.Vor[2].ident, "SEA");
  EXPECT_EQ(store.VorLast, 2);

  store.ArptName = "Old";
  const ExtractReport missing = ExtractArpt(store, dir.path() / "FSXFiles/none.xml", "KAAA");
  EXPECT_FALSE(missing.opened || missing.found);
  EXPECT_EQ(store.ArptName, "");
}

// Legs A and B in one group, C in another, D and E in two transitions; then a second approach
// with F, a transition with G, and a leg behind that transition, which is lost. Blank lines
// behind the closing words step nothing.
TEST_F(ExtractTest, ApproachLegsAndTransitionsWalkThrough) {
  const auto transition = [](const std::string& type, const std::string& fix,
                             const std::string& leg) {
    return Rec(R"(  <Transition transitionType="FULL"|    fixType="$"|    fixIdent="$"|)"
               R"(    altitude="3000">|    <TransitionLegs>)",
               {type, fix}) +
           Leg(leg);
  };
  for (int blanks : {0, 2}) {
    SCOPED_TRACE(blanks);
    const Lines close = Lines{"    </TransitionLegs>", "  </Transition>"} + Lines(blanks, "");
    Load(Airport("KAAA", "Sea",
                 Approach("ILS", "16", "LEFT") + Lines{"<ApproachLegs>"} + Leg("A") + Leg("B") +
                     Lines{"</ApproachLegs>", "<MissedApproachLegs>"} + Leg("C") +
                     Lines{"</MissedApproachLegs>"} + transition("VOR", "T1", "D") + close +
                     transition("WAYPOINT", "T2", "E") + close + Lines{"</Approach>"} +
                     Lines(blanks, "") + Approach("VOR", "34", "NONE") + Leg("F") +
                     transition("INT", "T3", "G") + close + Leg("LOST") + Lines{"</Approach>"}));
    EXPECT_EQ(std::tie(store.LegLast, store.TransLast, store.AppLast), std::tuple(6, 2, 1));
    const struct {
      const char* fix;
      int app, trans;
    } legs[] = {{"A", 0, 1000}, {"B", 0, 1000}, {"C", 0, 1000}, {"D", 0, 0},
                {"E", 0, 1},    {"F", 1, 1000}, {"G", 1, 2},    {"", 0, 0}};
    for (int i = 0; i < 8; ++i) {
      const auto& l = store.Leg[i];
      EXPECT_EQ(std::tie(l.fixIdent, l.app, l.trans),
                std::tuple(legs[i].fix, legs[i].app, legs[i].trans));
    }
    const auto& t = store.Trans;
    EXPECT_EQ(std::tie(t[0].fixType, t[0].fixIdent, t[1].app, t[2].fixType, t[2].app),
              std::tuple("VOR", "T1", 0, "INT", 1));
    const ApproachRow &a0 = store.Approach[0], &a1 = store.Approach[1];
    EXPECT_EQ(std::tie(a0.type, a0.runway, a0.designator, a1.type, a1.runway, a1.designator),
              std::tuple("ILS", "16", "LEFT", "VOR", "34", "NONE"));
  }
}

TEST_F(ExtractTest, LegAttributesAndTheClosingLine) {
  // "/>" behind an attribute doesn't close: R and S run together in one row.
  Load(Airport("KAAA", "Sea",
               Approach("ILS", "16", "LEFT") +
                   Leg("P", R"(altitude1="1000"|altitude2="2000"|recommendedIdent="SEA")") +
                   Leg("Q", R"(altitude2="2000"|altitude1="1000")") +
                   Rec(R"(<Leg type="CF"|fixIdent="R"|magneticCourse="160.0"|rho="5.0"/>)") +
                   Leg("S", R"(altitude1="3000")") + Lines{"</Approach>"}));
  EXPECT_EQ(std::tie(store.LegLast, store.Leg[0].altitude, store.Leg[0].recommendedIdent,
                     store.Leg[1].altitude, store.Leg[3].fixIdent),
            std::tuple(2, "2000", "SEA", "1000", ""));
  const LegRow& rs = store.Leg[2];
  EXPECT_EQ(std::tie(rs.fixIdent, rs.rho, rs.magneticCourse, rs.altitude),
            std::tuple("S", "5.0", "160.0", "3000"));
}

}  // namespace
}  // namespace velmora::test
