#include <gtest/gtest.h>

#include <initializer_list>
#include <span>
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

// File lines written with "|" between them, each led by two blanks; "$" takes the next of
// `args`.
Lines Rec(std::string_view pattern, std::initializer_list<std::string> args = {}) {
  std::string text;
  auto arg = args.begin();
  for (char c : pattern) text += (c == '$' && arg != args.end()) ? *arg++ : std::string(1, c);
  Lines lines;
  for (std::string_view piece : Split(text, '|'))
    lines.push_back(piece.empty() ? "" : "  " + std::string(piece));
  return lines;
}

std::string Join(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (std::string_view part : parts) (text += part) += '|';
  return text.substr(0, text.size() - 1);
}

// The airport's own lat comes before a tower's, a runway's before its Vasi's.
Lines Airport(const Lines& body, S ident = "KAAA", S name = "Sea") {
  return Lines{"<Airport ident=\"" + ident + "\""} +
         Rec(R"(name="$"|lat="N47 26.39"|magvar="-18.00"|>|<Tower|lat="N1 00.00"/>)", {name}) +
         body + Lines{"</Airport>"};
}
Lines Runway(S number, S designator, S length, int blanksBehind = 1) {
  return Rec(R"(<Runway number="$" designator="$"|lat="N47 00.00"|length="$"|width="45.0M"|)"
             R"(surface="ASPHALT">|<Vasi type="PAPI4"|lat="N9 00.00"/>|</Runway>)",
             {number, designator, length}) +
         Lines(blanksBehind, "");
}
const auto Start = [](S number, S designator, S lat) {
  return Rec(
      R"(<Start type="RUNWAY"|number="$" designator="$"|lat="$"|lon="W122 18.10"|heading="70.0"/>)",
      {number, designator, lat});
};
const auto Com = [](S name) { return Rec(R"(<Com type="TOWER"|name="$"/>)", {name}); };
const auto Ndb = [](S ident, S name) {
  return Rec(R"(<Ndb type="H"|frequency="350.0"|ident="$"|name="$"/>)", {ident, name});
};
const auto Approach = [](S type, S runway = "16", S designator = "LEFT") {
  return Rec(R"(<Approach type="$"|runway="$"|designator="$">)", {type, runway, designator});
};
// `extra`: further attribute lines; a "/>" line of its own closes the leg.
Lines Leg(S fix, std::string_view extra = {}) {
  return Rec(R"(<Leg type="TF"|fixIdent="$")", {fix}) + (extra.empty() ? Lines{} : Rec(extra)) +
         Rec("/>");
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
    std::string_view key = line;
    EXPECT_EQ(std::tuple(element, AttrKey(key), AttrValue(line), AttrValue2(line)),
              std::tuple(c.element, c.key, c.first, c.second))
        << c.line;
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
  EXPECT_TRUE(ContainsNoCase("ils rwy 16L", "RWY 16l") && !ContainsNoCase("ILS", "ILSX"));
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
  const char* want[] = {
      "RUNWAY|7|RW07|N47 25.00|3000.0M|45.0M|ASPHALT", "RUNWAY|25|RW25|N47 26.00|||",
      "RUNWAY|16|RW16L|N47 27.00|2500.0M|45.0M|ASPHALT", "RUNWAY|34|RW34R|N47 28.00|||"};
  for (auto [interleaved, eol] :
       {std::pair{false, "\r\n"}, {true, "\r\n"}, {false, "\r"}, {false, "\n"}}) {
    SCOPED_TRACE(::testing::Message() << interleaved << " eol " << int(eol[0]));
    const Lines body = interleaved ? r1 + s1 + s2 + r2 + s3 + s4 : r1 + r2 + s1 + s2 + s3 + s4;
    ASSERT_TRUE(Load(Airport(body), "KAAA", eol).found);
    EXPECT_EQ(std::tie(store.ArptMagvar, store.RwyLast), std::tuple("-18.00", 3));
    for (int i = 0; i < 4; ++i) {
      const RwyEndRow& r = store.RwyEnd[i];
      EXPECT_EQ(Join({r.type, r.number, r.fixName, r.lat, r.length, r.width, r.surface}), want[i]);
      EXPECT_EQ(r.lon, "W122 18.10");
    }
  }
  // Each line behind </Runway> moves the runway slot on by one.
  for (int blanks : {0, 1, 2}) {
    Load(Airport(Runway("07", "NONE", "3000.0M", blanks) + r2));
    EXPECT_EQ(store.RwyEnd[blanks + 1].length + store.RwyEnd[blanks + 1].designator, "2500.0MLEFT")
        << blanks;
  }
}

// One of each record. A leg's "/>" behind an attribute doesn't close: R and S make one row.
Lines FullAirport() {
  Lines start = Start("7", "NONE", "N47 25.00");
  start[2] = "\tlat=\"N9 99.00\"";  // a Start line led by a tab matches no key
  return Airport(Rec(R"(<Runway number="07" designator="NONE"|lat="N47 00.00"|length="3000.0M">|)"
                     R"(<Ils end="PRIMARY" ident="ISEA"|lat="N9 00.00"|frequency="110.30"|)"
                     R"(heading="163.0"|name="IGS RW07"/>|</Runway>|)") +
                 Runway("16", "LEFT", "2500.0M") + start + Com("A") + Com("B") +
                 Ndb("NA", "Alpha") + Ndb("NB", "") +  // empty quotes close too
                 Rec(R"(<Waypoint|waypointIdent="WA">|</Waypoint>)") + Approach("ILS") +
                 Leg("P", R"(altitude1="1000"|altitude2="2000"|recommendedIdent="SEA")") +
                 Leg("Q", R"(altitude2="2000"|altitude1="1000")") +
                 Rec(R"(<Leg type="CF"|fixIdent="R"|magneticCourse="160.0"|rho="5.0"/>)") +
                 Leg("S", R"(altitude1="3000")") +
                 Rec(R"(<Transition|fixType="VOR"|fixIdent="T">)") + Leg("Z") +
                 Lines{"</Transition>", "</Approach>"} + Approach("NDB") + Lines{"</Approach>"});
}

// A full airport, then a file of three: only the asked one is left in the store.
TEST_F(ExtractTest, RecordsCloseOnTheirLastLineAndOnlyTheAskedAirportStays) {
  std::tie(store.Vor[2].ident, store.VorLast) = std::tuple("SEA", 2);
  Load(FullAirport());
  const IlsRow& ils = store.Ils[0];
  EXPECT_EQ(Join({ils.end, ils.frequency, ils.heading, ils.name}), "ISEA|110.30|163.0|IGS RW07");
  const RwyEndRow& r = store.RwyEnd[0];
  EXPECT_EQ(Join({r.lat, r.length, r.fixName, store.RwyEnd[2].length}),
            "N47 00.00|3000.0M|RW07|2500.0M");
  EXPECT_EQ(Join({store.Com[1].name, store.Ndb[0].ident, store.Ndb[1].ident, store.Ndb[1].frequency,
                  store.Ndb[2].ident, store.Waypoint[0].ident}),
            "B||NA|350.0|NB|WA");
  const LegRow &p = store.Leg[0], &q = store.Leg[1], &rs = store.Leg[2];
  EXPECT_EQ(Join({p.altitude, p.recommendedIdent, q.altitude, rs.fixIdent, rs.rho,
                  rs.magneticCourse, rs.altitude, store.Leg[3].fixIdent, store.Trans[0].fixIdent}),
            "2000|SEA|1000|S|5.0|160.0|3000|Z|T");
  EXPECT_EQ(std::tie(store.IlsLast, store.RwyLast, store.ComLast, store.NdbLast, store.AppLast,
                     store.LegLast),
            std::tuple(0, 0, 1, 2, 1, 3));

  const Lines second = Approach("VOR") + Leg("X") + Lines{"</Approach>"} + Com("C-B");
  const ExtractReport report =
      Load(Airport(Com("C-A") + Ndb("NA", "A"), "KAAA", "First") +
               Airport(second, "KBBB", "Second") + Airport(Ndb("NC", "C"), "KCCC", "Third"),
           "KBBB");
  EXPECT_TRUE(report.opened && report.found);
  const LegRow& leg = store.Leg[0];
  EXPECT_EQ(Join({store.ArptIdent, store.ArptName, store.ArptLat, store.Approach[0].type,
                  store.Com[0].name, leg.fixIdent, leg.rho, leg.altitude, leg.magneticCourse,
                  leg.recommendedIdent}),
            "KBBB|Second|N47 26.39|VOR|C-B|X||||");  // not the tower's lat
  EXPECT_EQ(store.RwyEnd[0].number + store.RwyEnd[2].number + store.RwyEnd[0].length +
                store.Ils[0].name + store.Approach[1].type + store.Com[1].name +
                store.Ndb[1].ident + store.Waypoint[0].ident + store.Trans[0].fixIdent +
                store.Leg[1].fixIdent,
            "");
  EXPECT_EQ(std::tie(store.RwyLast, store.ComLast, store.NdbLast, store.WaypointLast, store.AppLast,
                     store.TransLast, store.LegLast),
            std::tuple(0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(std::tie(store.Vor[2].ident, store.VorLast), std::tuple("SEA", 2));  // VORs stay

  // An ident differing in case, or a tab in front of the line, is not the airport; nor is a
  // missing file.
  for (const char* first : {"<Airport ident=\"kbbb\"", "\t<Airport ident=\"KBBB\""}) {
    Lines other = Airport(Com("C-B"), "KBBB");
    other[0] = first;
    EXPECT_FALSE(Load(other, "KBBB").found) << first;
    EXPECT_EQ(store.ArptIdent + store.ArptName + store.Com[0].name, "") << first;
  }
  store.ArptName = "Old";
  const auto lasts = {&store.RwyLast,      &store.ComLast, &store.IlsLast,   &store.NdbLast,
                      &store.WaypointLast, &store.AppLast, &store.TransLast, &store.LegLast};
  for (std::int32_t* last : lasts) *last = 5;
  const ExtractReport missing = ExtractArpt(store, dir.path() / "FSXFiles/none.xml", "KAAA");
  EXPECT_FALSE(missing.opened || missing.found);
  EXPECT_EQ(store.ArptName, "");
  for (std::int32_t* last : lasts) EXPECT_EQ(*last, 0);
}

TEST_F(ExtractTest, RecordsBeyondTheLastSlotAreDropped) {
  Lines body;
  for (int i = 0; i < 103; ++i) body = body + Com("C" + std::to_string(i));
  body = body + Approach("ILS");
  for (int i = 0; i < 1002; ++i) body = body + Leg("L" + std::to_string(i));
  const Dropped dropped = Load(Airport(body + Lines{"</Approach>"})).dropped;
  EXPECT_EQ(std::tie(store.ComLast, store.Com[100].name, dropped.com), std::tuple(100, "C100", 2));
  EXPECT_EQ(std::tie(store.LegLast, store.Leg[1000].fixIdent, dropped.leg, store.AppLast),
            std::tuple(1000, "L1000", 1, 0));
}

// Legs A and B in one group, C in another, D and E in two transitions; then a second approach
// with F, a transition with G, and a leg behind that transition, which is lost. Blank lines
// behind the closing words step nothing.
TEST_F(ExtractTest, ApproachLegsAndTransitionsWalkThrough) {
  const auto transition = [](S type, S fix, S leg) {
    return Rec(R"(<Transition transitionType="FULL"|fixType="$"|fixIdent="$"|)"
               R"(altitude="3000">|<TransitionLegs>)",
               {type, fix}) +
           Leg(leg);
  };
  for (int blanks : {0, 2}) {
    const Lines close = Rec("</TransitionLegs>|</Transition>") + Lines(blanks, "");
    Load(Airport(Approach("ILS") + Lines{"<ApproachLegs>"} + Leg("A") + Leg("B") +
                 Lines{"</ApproachLegs>", "<MissedApproachLegs>"} + Leg("C") +
                 Lines{"</MissedApproachLegs>"} + transition("VOR", "T1", "D") + close +
                 transition("WAYPOINT", "T2", "E") + close + Lines{"</Approach>"} +
                 Lines(blanks, "") + Approach("VOR", "34", "NONE") + Lines{"<ApproachLegs>"} +
                 Leg("F") + Lines{"</ApproachLegs>"} + transition("INT", "T3", "G") + close +
                 Leg("LOST") + Lines{"</Approach>"}));
    SCOPED_TRACE(blanks);
    EXPECT_EQ(std::tie(store.LegLast, store.TransLast, store.AppLast), std::tuple(6, 2, 1));
    // fix, approach, transition (1000: none); the row behind the last written is empty.
    std::string legs, trans;
    for (const LegRow& l : std::span(&store.Leg[0], 8)) {
      legs += l.fixIdent + " " + std::to_string(l.app) + " " + std::to_string(l.trans) + ",";
    }
    for (const TransRow& t : std::span(&store.Trans[0], 4)) {
      trans += t.fixIdent + " " + t.fixType + " " + std::to_string(t.app) + ",";
    }
    EXPECT_EQ(legs, "A 0 1000,B 0 1000,C 0 1000,D 0 0,E 0 1,F 1 1000,G 1 2, 0 0,");
    EXPECT_EQ(trans, "T1 VOR 0,T2 WAYPOINT 0,T3 INT 1,  0,");
    const ApproachRow &a0 = store.Approach[0], &a1 = store.Approach[1];
    EXPECT_EQ(Join({a0.type, a0.runway, a0.designator, a1.type, a1.runway, a1.designator}),
              "ILS|16|LEFT|VOR|34|NONE");
  }
}

}  // namespace
}  // namespace velmora::test
