#include "bench/bench_support.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>
#include <vector>

#include "data/extract.h"
#include "data/text.h"
#include "data/vor.h"
#include "geometry/coords.h"
#include "geometry/mapping.h"

namespace velmora::bench {
namespace {

std::map<std::string, double>& Results() {
  static std::map<std::string, double> results;
  return results;
}

// Fixed seed: every run writes the same files. Each draw stands in a statement of its own, in
// the order the files have always been written: the arguments of one call may be evaluated in
// any order, and a draw moved changes every byte after it.
class Rng {
 public:
  explicit Rng(std::uint64_t seed) : s_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (s_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  double unit() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
  double range(double lo, double hi) { return lo + (hi - lo) * unit(); }
  int pick(int lo, int hi) { return lo + static_cast<int>(next() % (hi - lo + 1)); }
  bool chance(double p) { return unit() < p; }

 private:
  std::uint64_t s_;
};

// The text of a data file: every line put ends with CR LF, as the data files have it.
class Writer {
 public:
  void put(std::string_view lines, std::string_view indent = "") {
    for (std::string_view line : Split(lines, '\n')) ((text += indent) += line) += "\r\n";
  }
  std::string text;
};

std::string Code(int i) {
  std::string code(4, 'A');
  for (int k = 3; k >= 0; --k, i /= 26) code[static_cast<std::size_t>(k)] = char('A' + i % 26);
  return code;
}

// "N47 26.39" from signed degrees.
std::string Coord(double degrees, char positive, char negative) {
  const char letter = degrees < 0 ? negative : positive;
  const double a = std::fabs(degrees);
  int whole = static_cast<int>(a);
  double minutes = std::round((a - whole) * 6000.0) / 100.0;
  if (minutes >= 60.0) {
    ++whole;
    minutes = 0;
  }
  return Format("%c%d %05.2f", letter, whole, minutes);
}
std::string Lat(double d) {
  return Coord(d, 'N', 'S');
}
std::string Lon(double d) {
  return Coord(d, 'E', 'W');
}

// Two vor.nav fields: degrees with the sign, then minutes; the sign moves to the minutes
// when the degrees are 0.
std::string VorFields(double degrees) {
  const double a = std::fabs(degrees);
  const int whole = static_cast<int>(a);
  const double minutes = (a - whole) * 60.0;
  if (degrees < 0 && whole == 0) return Format("0;-%.2f", minutes);
  return Format("%s%d;%.2f", degrees < 0 ? "-" : "", whole, minutes);
}

// A VOR or ILS frequency in steps of 50 kHz, "108.95".
std::string NavFrequency(Rng& rng, int lowMhz, int highMhz) {
  const int hundredths = rng.pick(0, 19) * 5;
  const int mhz = rng.pick(lowMhz, highMhz);
  return Format("%d.%02d", mhz, hundredths);
}

constexpr const char* kCountries[] = {"United States", "Canada", "France", "Germany",
                                      "Australia",     "Brazil", "Japan",  "Norway"};
constexpr const char* kSurfaces[] = {"ASPHALT", "CONCRETE", "GRASS", "GRAVEL"};
constexpr const char* kDesignators[] = {"NONE", "LEFT", "RIGHT", "CENTER"};
constexpr const char* kComTypes[] = {"ATIS",   "CLEARANCE", "GROUND",    "TOWER",
                                     "UNICOM", "APPROACH",  "DEPARTURE", "CENTER"};

// Legs stand below <ApproachLegs> and <MissedApproachLegs>, or deeper below <TransitionLegs>.
constexpr std::string_view kApproachLeg = "            ";
constexpr std::string_view kTransitionLeg = "                ";

struct AirportShape {
  std::string ident;
  double lat, lon;
};

void Header(Writer& w, const AirportShape& a, Rng& rng, const char* name) {
  const int region = rng.pick(1, 7);
  const char* country = kCountries[rng.pick(0, 7)];
  const int state = rng.pick(1, 50);
  const int city = rng.pick(1, 9999);
  const double alt = rng.range(0, 2500);
  const double magvar = rng.range(0, 360);
  const double towerAlt = rng.range(0, 2500);
  w.put(Format(R"(<Airport ident="%s"
    region="K%d"
    country="%s"
    state="State %d"
    city="City %d"
    name="%s"
    lat="%s"
    lon="%s"
    alt="%.1fM"
    magvar="%.3f"
    trafficScalar="0.7">
    <Services>
        <Fuel type="100"
            availability="YES"/>
    </Services>
    <Tower
        lat="%s"
        lon="%s"
        alt="%.1fM"
        />)",
               a.ident.c_str(), region, country, state, city, name, Lat(a.lat).c_str(),
               Lon(a.lon).c_str(), alt, magvar, Lat(a.lat + 0.003).c_str(),
               Lon(a.lon - 0.002).c_str(), towerAlt));
}

void Ils(Writer& w, const AirportShape& a, Rng& rng, const std::string& name, int heading) {
  const std::string frequency = NavFrequency(rng, 108, 111);
  w.put(Format(R"(        <Ils end="PRIMARY" ident="I%s"
            lat="%s"
            lon="%s"
            alt="130.2M"
            range="27.0N"
            frequency="%s"
            heading="%d.0"
            magvar="341.0"
            width="5.0"
            backCourse="FALSE"
            name="%s">
            <GlideSlope
                lat="%s"
                lon="%s"
                alt="130.2M"
                pitch="3.00"
                range="18.5N"/>
        </Ils>)",
               a.ident.substr(1).c_str(), Lat(a.lat - 0.01).c_str(), Lon(a.lon + 0.004).c_str(),
               frequency.c_str(), heading, name.c_str(), Lat(a.lat + 0.01).c_str(),
               Lon(a.lon).c_str()));
}

struct RunwayShape {
  int number;
  const char* designator;
  double lat, lon;
  bool vasi;
  std::string ilsName;  // empty: no ILS record inside
};

void Vasi(Writer& w, const RunwayShape& r) {
  w.put(Format(R"(        <Vasi end="PRIMARY"
            type="PAPI4"
            side="LEFT"
            lat="%s"
            lon="%s"
            biasX="-20.0M"
            biasZ="300.0M"
            spacing="9.0M"
            pitch="3.00"
            />)",
               Lat(r.lat + 0.004).c_str(), Lon(r.lon + 0.001).c_str()));
}

void Runway(Writer& w, const AirportShape& a, Rng& rng, const RunwayShape& r) {
  const double length = rng.range(900, 3800);
  const double width = rng.range(20, 60);
  const char* surface = kSurfaces[rng.pick(0, 3)];
  w.put(Format(R"(    <Runway number="%d" designator="%s"
        lat="%s"
        lon="%s"
        length="%.1fM"
        width="%.1fM"
        heading="%d.0"
        surface="%s"
        patternAltitude="304.8M">
        <Markings alternateThreshold="FALSE"
            edges="TRUE"
            threshold="TRUE"
            fixedDistance="TRUE"
            touchdown="TRUE"
            designation="TRUE"
            />
        <Lights center="NONE"
            edge="MEDIUM"
            centerRed="FALSE"
            />)",
               r.number, r.designator, Lat(r.lat).c_str(), Lon(r.lon).c_str(), length, width,
               r.number * 10, surface));
  if (r.vasi) Vasi(w, r);
  if (!r.ilsName.empty()) Ils(w, a, rng, r.ilsName, r.number * 10);
  w.put("    </Runway>\n");
}

void Start(Writer& w, int number, const char* designator, double lat, double lon) {
  w.put(Format(R"(    <Start type="RUNWAY"
        number="%d" designator="%s"
        lat="%s"
        lon="%s"
        alt="130.2M"
        heading="%d.0"/>)",
               number, designator, Lat(lat).c_str(), Lon(lon).c_str(), number * 10));
}

void Com(Writer& w, const char* type, Rng& rng) {
  const int thousandths = rng.pick(0, 39) * 25;
  const int mhz = rng.pick(118, 135);
  w.put(Format(R"(    <Com type="%s"
        frequency="%d.%03d"
        name="CITY %s"/>)",
               type, mhz, thousandths, type));
}

void Ndb(Writer& w, const std::string& ident, double lat, double lon, Rng& rng) {
  const int khz = rng.pick(200, 420);
  w.put(Format(R"(    <Ndb
        type="HH"
        lat="%s"
        lon="%s"
        alt="130.2M"
        frequency="%d.0"
        range="46300.0M"
        region="K1"
        ident="%s"
        name="%s BEACON"/>)",
               Lat(lat).c_str(), Lon(lon).c_str(), khz, ident.c_str(), ident.c_str()));
}

void Waypoint(Writer& w, const std::string& ident, double lat, double lon) {
  w.put(Format(R"(    <Waypoint
        waypointType="NAMED"
        waypointRegion="K1"
        waypointIdent="%s"
        magvar="341.0"
        lat="%s"
        lon="%s")",
               ident.c_str(), Lat(lat).c_str(), Lon(lon).c_str()));
}

void Leg(Writer& w, std::string_view indent, const char* type, const std::string& fix,
         const std::string& recommended, Rng& rng) {
  const int theta = rng.pick(0, 359);
  const double rho = rng.range(2000, 60000);
  const int course = rng.pick(0, 359);
  const int feet = rng.pick(10, 80) * 100;
  w.put(Format(R"(<Leg type="%s"
    fixType="TERMINAL_WAYPOINT"
    fixRegion="K1"
    fixIdent="%s"
    recommendedType="VOR"
    recommendedRegion="K1"
    recommendedIdent="%s"
    theta="%d.0"
    rho="%.1f"
    magneticCourse="%d.0"
    altitudeDescriptor="+"
    altitude1="%d.00F"
    />)",
               type, fix.c_str(), recommended.c_str(), theta, rho, course, feet),
        indent);
}

// Opens the approach and its legs.
void Approach(Writer& w, const char* type, int runway, const char* designator) {
  w.put(Format(R"(    <Approach type="%s"
        runway="%d"
        designator="%s"
        suffix="0"
        gpsOverlay="FALSE"
        altitude="1200.00F"
        heading="160.0">
        <ApproachLegs>)",
               type, runway, designator));
}

void Transition(Writer& w, const char* fixType, const std::string& fix, const std::string& next,
                Rng& rng) {
  w.put(Format(R"(        <Transition transitionType="FULL"
            fixType="%s"
            fixRegion="K1"
            fixIdent="%s"
            altitude="6000.00F">
            <TransitionLegs>)",
               fixType, fix.c_str()));
  Leg(w, kTransitionLeg, "IF", fix, fix, rng);
  Leg(w, kTransitionLeg, "TF", next, fix, rng);
  w.put(R"(            </TransitionLegs>
        </Transition>)");
}

// An everyday airport of about 2 to 4 KB.
void OtherAirport(Writer& w, int index, Rng& rng) {
  AirportShape a{Code(index), rng.range(-60, 70), rng.range(-179, 179)};
  Header(w, a, rng, "Some Regional Field");
  const int runways = rng.pick(1, 2);
  for (int r = 0; r < runways; ++r) {
    const int number = rng.pick(1, 18);
    RunwayShape shape{number,
                      kDesignators[rng.pick(0, 3)],
                      a.lat + r * 0.004,
                      a.lon,
                      rng.chance(0.4),
                      rng.chance(0.2) ? "ILS RWY " + std::to_string(number) : ""};
    Runway(w, a, rng, shape);
  }
  for (int r = 0; r < runways; ++r) {
    const int number = rng.pick(1, 18);
    Start(w, number, "NONE", a.lat + 0.01, a.lon + 0.002);
    Start(w, number + 18, "NONE", a.lat - 0.01, a.lon - 0.002);
  }
  const int coms = rng.pick(2, 5);
  for (int c = 0; c < coms; ++c) Com(w, kComTypes[rng.pick(0, 7)], rng);
  if (rng.chance(0.3)) Ndb(w, a.ident.substr(2), a.lat + 0.05, a.lon - 0.04, rng);
  if (rng.chance(0.25)) {
    const std::string wp = "W" + a.ident;
    Waypoint(w, wp, a.lat + 0.1, a.lon + 0.1);
    Approach(w, "RNAV", 16, "NONE");
    Leg(w, kApproachLeg, "IF", wp, a.ident, rng);
    Leg(w, kApproachLeg, "TF", "RW16", a.ident, rng);
    w.put(R"(        </ApproachLegs>
    </Approach>)");
  }
  w.put("</Airport>");
}

// Like a world list: every 200th VOR (41 of them) lies near the wanted airport, the rest are
// spread over the world. The near ones reach to the end of the table, where fix lookups cost
// most, and every redraw still converts all 8001 positions.
bool NearVor(int slot) {
  return slot % 200 == 0;
}
std::string VorIdent(int slot) {
  return Code(slot).substr(1);
}

constexpr double kWantedLatDeg = 47.0 + 26.39 / 60.0;
constexpr double kWantedLonDeg = -(122.0 + 18.55 / 60.0);

std::string VorList() {
  Rng rng(11);
  Writer w;
  for (int slot = 0; slot < kVorLines; ++slot) {
    double lat, lon;
    if (NearVor(slot)) {
      lat = kWantedLatDeg + rng.range(-0.35, 0.35);
      lon = kWantedLonDeg + rng.range(-0.4, 0.4);
    } else {
      lat = rng.range(-70, 70);
      lon = rng.range(-179, 179);
    }
    const std::string frequency = NavFrequency(rng, 108, 117);
    w.put(Format("VOR %d;%s;%s;H;%s;%s", slot, VorFields(lon).c_str(), VorFields(lat).c_str(),
                 VorIdent(slot).c_str(), frequency.c_str()));
  }
  return w.text;
}

// The ILS approach: fixes are the waypoints but for every fourth, a late VOR, then the NDB
// halfway and the runway end; two missed approach legs and two transitions.
void IlsApproach(Writer& w, const std::vector<std::string>& waypoints,
                 const std::vector<std::string>& lateVors, Rng& rng) {
  const std::string& recommended = lateVors.front();
  Approach(w, "ILS", 16, "LEFT");
  constexpr int kMissed = 2;
  for (int i = 0; i < kApproachLegs - kMissed; ++i) {
    std::string fix = waypoints[static_cast<std::size_t>(i)];
    if (i % 4 == 1) fix = lateVors[static_cast<std::size_t>(i / 4)];
    if (i == 14) fix = "SE";
    if (i == kApproachLegs - kMissed - 1) fix = "RW16L";
    Leg(w, kApproachLeg, i == 0 ? "IF" : "CF", fix, recommended, rng);
  }
  w.put(R"(        </ApproachLegs>
        <MissedApproachLegs>)");
  Leg(w, kApproachLeg, "DF", lateVors[7], recommended, rng);
  Leg(w, kApproachLeg, "TF", waypoints[29], recommended, rng);
  w.put("        </MissedApproachLegs>");
  Transition(w, "VOR", lateVors[6], waypoints[0], rng);
  Transition(w, "NDB", "PV", waypoints[0], rng);
  w.put("    </Approach>");
}

// The airport under test: two parallel runways, a 30-leg ILS approach whose fixes are
// waypoints, late VORs, an NDB and the runway end, and a short VOR approach.
void WantedAirport(Writer& w) {
  Rng rng(7);
  const AirportShape a{std::string(kWantedIdent), kWantedLatDeg, kWantedLonDeg};
  Header(w, a, rng, "Velmora Bench International");
  Runway(w, a, rng, {16, "LEFT", a.lat, a.lon + 0.004, true, "ILS RWY 16L"});
  Runway(w, a, rng, {16, "RIGHT", a.lat, a.lon - 0.008, true, ""});
  Start(w, 16, "LEFT", a.lat + 0.029, a.lon + 0.002);
  Start(w, 34, "RIGHT", a.lat - 0.029, a.lon + 0.006);
  Start(w, 16, "RIGHT", a.lat + 0.025, a.lon - 0.010);
  Start(w, 34, "LEFT", a.lat - 0.025, a.lon - 0.006);
  for (const char* type : kComTypes) Com(w, type, rng);
  Ndb(w, "SE", a.lat + 0.12, a.lon + 0.01, rng);
  Ndb(w, "PV", a.lat - 0.15, a.lon - 0.05, rng);
  std::vector<std::string> waypoints;
  for (int i = 0; i < 30; ++i) {
    waypoints.push_back("WX" + Code(i).substr(1));
    const double east = rng.range(-0.45, 0.45);
    const double north = rng.range(-0.3, 0.3);
    Waypoint(w, waypoints.back(), a.lat + north, a.lon + east);
  }
  // Even slots from the last one down: near VORs, found only after most of the table.
  std::vector<std::string> lateVors;
  for (int slot = kVorLines - 1; lateVors.size() < 8; slot -= 200) {
    lateVors.push_back(VorIdent(slot));
  }
  IlsApproach(w, waypoints, lateVors, rng);
  Approach(w, "VOR", 34, "RIGHT");
  for (int i = 0; i < 5; ++i) Leg(w, kApproachLeg, "CF", waypoints[i + 10], lateVors[0], rng);
  Leg(w, kApproachLeg, "CF", "RW34R", lateVors[0], rng);
  w.put(R"(        </ApproachLegs>
    </Approach>
</Airport>)");
}

std::string Index() {
  Writer w;
  for (int i = 0; i < kIndexLines - 1; ++i) {
    w.put(Format("%s;Some Field %d;%s;file%d.txt", Code(i).c_str(), i, kCountries[i % 8], i % 400));
  }
  w.put(Format("%s;Velmora Bench International;United States;%s", std::string(kWantedIdent).c_str(),
               std::string(kBigFileName).c_str()));
  return w.text;
}

// Everyday airports up to the size wanted, then the wanted airport last; written out a few MB
// at a time.
int WriteBigFile(const std::filesystem::path& path) {
  Rng rng(3);
  std::ofstream out = OutFile(path);
  Writer w;
  w.put(R"(<?xml version="1.0" encoding="Windows-1252"?>
<FSData version="9.0">)");
  std::uintmax_t written = 0;
  int airports = 0;
  while (written + w.text.size() < kBigFileBytes) {
    OtherAirport(w, airports++, rng);
    if (w.text.size() > (4u << 20)) {
      written += w.text.size();
      out << w.text;
      w.text.clear();
    }
  }
  WantedAirport(w);
  w.put("\n</FSData>");
  out << w.text;
  return airports;
}

// The VORs that pass the chart's range test with the wanted airport loaded at Zoom 16.
int VorsInRange(const Store& s) {
  View view;
  view.Zoom = 16;
  SetOrigin(view, *LonToGrid(kWantedLon), *LatToGrid(kWantedLat));
  int inRange = 0;
  for (std::int32_t slot = 0; slot <= s.VorLast; ++slot) {
    const auto gx = LonToGrid(s.Vor[slot].lon);
    if (gx && WithinChartWidth(GridToScreenX(view, *gx))) ++inRange;
  }
  return inRange;
}

}  // namespace

Data& Shared() {
  static Data data;
  return data;
}

void Record(const std::string& name, double value) {
  Results()[name] = value;
}

std::optional<double> Recorded(const std::string& name) {
  const auto it = Results().find(name);
  if (it == Results().end()) return std::nullopt;
  return it->second;
}

std::string Format(const char* fmt, ...) {
  va_list args, again;
  va_start(args, fmt);
  va_copy(again, args);
  const int n = std::vsnprintf(nullptr, 0, fmt, args);
  va_end(args);
  if (n < 0) throw std::runtime_error(std::string("cannot format ") + fmt);
  std::string text(static_cast<std::size_t>(n), '\0');
  std::vsnprintf(text.data(), text.size() + 1, fmt, again);
  va_end(again);
  return text;
}

std::ofstream OutFile(const std::filesystem::path& path) {
  std::ofstream out(path, std::ios::binary);
  if (!out) throw std::runtime_error("cannot write " + path.string());
  out.exceptions(std::ios::badbit | std::ios::failbit);
  return out;
}

std::size_t CountLines(const std::filesystem::path& file) {
  std::FILE* f = std::fopen(file.c_str(), "rb");
  if (f == nullptr) return 0;
  std::vector<char> buf(1 << 20);
  std::size_t lines = 0;
  for (std::size_t got; (got = std::fread(buf.data(), 1, buf.size(), f)) > 0;) {
    const char* p = buf.data();
    const char* end = p + got;
    while (const void* lf = std::memchr(p, '\n', static_cast<std::size_t>(end - p))) {
      ++lines;
      p = static_cast<const char*>(lf) + 1;
    }
  }
  std::fclose(f);
  return lines;
}

void Generate(Data& data) {
  namespace fs = std::filesystem;
  fs::create_directories(data.dir / "FSXFiles");
  data.index = data.dir / "Arpt index.txt";
  data.vor = data.dir / "vor.nav";
  data.bigFile = data.dir / "FSXFiles" / kBigFileName;
  OutFile(data.index) << Index();
  OutFile(data.vor) << VorList();
  data.airportsInBigFile = WriteBigFile(data.bigFile);
  data.indexBytes = fs::file_size(data.index);
  data.vorBytes = fs::file_size(data.vor);
  data.bigBytes = fs::file_size(data.bigFile);

  data.store = std::make_unique<Store>();
  Store& s = *data.store;
  const VorReport vor = LoadVor(s, data.vor);
  if (!vor.opened || s.VorLast != kVorLines - 1) throw std::runtime_error("VOR list not loaded");
  const ExtractReport r = ExtractArpt(s, data.bigFile, kWantedIdent);
  if (!r.found) throw std::runtime_error("wanted airport not found in the big file");
  data.vorsInRange = VorsInRange(s);
}

}  // namespace velmora::bench
