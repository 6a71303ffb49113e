#include "bench/bench_support.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
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

// Fixed seed: every run writes the same files.
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

// Lines with CR LF, as the data files are written.
class Writer {
 public:
  // Formats into the text itself, however long the line.
  void line(const char* fmt, ...) __attribute__((format(printf, 2, 3))) {
    va_list args, again;
    va_start(args, fmt);
    va_copy(again, args);
    const int n = std::vsnprintf(nullptr, 0, fmt, args);
    va_end(args);
    if (n < 0) throw std::runtime_error(std::string("cannot format ") + fmt);
    const std::size_t at = text.size();
    text.resize(at + static_cast<std::size_t>(n) + 1);
    std::vsnprintf(text.data() + at, static_cast<std::size_t>(n) + 1, fmt, again);
    va_end(again);
    text.resize(at + static_cast<std::size_t>(n));
    text += "\r\n";
  }
  // Lines of a multi-line template as they stand.
  void block(std::string_view lines) {
    for (std::string_view l : Split(lines, '\n')) (text += l) += "\r\n";
  }
  void blank() { text += "\r\n"; }
  std::string text;
};

class File {
 public:
  explicit File(const std::filesystem::path& path) : f_(std::fopen(path.c_str(), "wb")) {
    if (f_ == nullptr) throw std::runtime_error("cannot write " + path.string());
  }
  ~File() { std::fclose(f_); }
  void write(std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), f_) != text.size()) {
      throw std::runtime_error("short write");
    }
    text.clear();
  }

 private:
  std::FILE* f_;
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
  char buf[32];
  std::snprintf(buf, sizeof buf, "%c%d %05.2f", letter, whole, minutes);
  return buf;
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
  char buf[48];
  if (degrees < 0 && whole == 0) {
    std::snprintf(buf, sizeof buf, "0;-%.2f", minutes);
  } else {
    std::snprintf(buf, sizeof buf, "%s%d;%.2f", degrees < 0 ? "-" : "", whole, minutes);
  }
  return buf;
}

constexpr const char* kCountries[] = {"United States", "Canada", "France", "Germany",
                                      "Australia",     "Brazil", "Japan",  "Norway"};
constexpr const char* kSurfaces[] = {"ASPHALT", "CONCRETE", "GRASS", "GRAVEL"};
constexpr const char* kDesignators[] = {"NONE", "LEFT", "RIGHT", "CENTER"};
constexpr const char* kComTypes[] = {"ATIS",   "CLEARANCE", "GROUND",    "TOWER",
                                     "UNICOM", "APPROACH",  "DEPARTURE", "CENTER"};

struct AirportShape {
  std::string ident;
  double lat, lon;
};

void Header(Writer& w, const AirportShape& a, Rng& rng, const char* name) {
  w.line("<Airport ident=\"%s\"", a.ident.c_str());
  w.line("    region=\"K%d\"", rng.pick(1, 7));
  w.line("    country=\"%s\"", kCountries[rng.pick(0, 7)]);
  w.line("    state=\"State %d\"", rng.pick(1, 50));
  w.line("    city=\"City %d\"", rng.pick(1, 9999));
  w.line("    name=\"%s\"", name);
  w.line("    lat=\"%s\"", Lat(a.lat).c_str());
  w.line("    lon=\"%s\"", Lon(a.lon).c_str());
  w.line("    alt=\"%.1fM\"", rng.range(0, 2500));
  w.line("    magvar=\"%.3f\"", rng.range(0, 360));
  w.block(R"(    trafficScalar="0.7">
    <Services>
        <Fuel type="100"
            availability="YES"/>
    </Services>
    <Tower)");
  w.line("        lat=\"%s\"", Lat(a.lat + 0.003).c_str());
  w.line("        lon=\"%s\"", Lon(a.lon - 0.002).c_str());
  w.line("        alt=\"%.1fM\"", rng.range(0, 2500));
  w.line("        />");
}

void Ils(Writer& w, const AirportShape& a, Rng& rng, const std::string& name, int heading) {
  w.line("        <Ils end=\"PRIMARY\" ident=\"I%s\"", a.ident.substr(1).c_str());
  w.line("            lat=\"%s\"", Lat(a.lat - 0.01).c_str());
  w.line("            lon=\"%s\"", Lon(a.lon + 0.004).c_str());
  w.line("            alt=\"130.2M\"");
  w.line("            range=\"27.0N\"");
  w.line("            frequency=\"%d.%02d\"", rng.pick(108, 111), rng.pick(0, 19) * 5);
  w.line("            heading=\"%d.0\"", heading);
  w.block(R"(            magvar="341.0"
            width="5.0"
            backCourse="FALSE")");
  w.line("            name=\"%s\">", name.c_str());
  w.line("            <GlideSlope");
  w.line("                lat=\"%s\"", Lat(a.lat + 0.01).c_str());
  w.line("                lon=\"%s\"", Lon(a.lon).c_str());
  w.block(R"(                alt="130.2M"
                pitch="3.00"
                range="18.5N"/>
        </Ils>)");
}

struct RunwayShape {
  int number;
  const char* designator;
  double lat, lon;
  bool vasi;
  std::string ilsName;  // empty: no ILS record inside
};

void Runway(Writer& w, const AirportShape& a, Rng& rng, const RunwayShape& r) {
  w.line("    <Runway number=\"%d\" designator=\"%s\"", r.number, r.designator);
  w.line("        lat=\"%s\"", Lat(r.lat).c_str());
  w.line("        lon=\"%s\"", Lon(r.lon).c_str());
  w.line("        length=\"%.1fM\"", rng.range(900, 3800));
  w.line("        width=\"%.1fM\"", rng.range(20, 60));
  w.line("        heading=\"%d.0\"", r.number * 10);
  w.line("        surface=\"%s\"", kSurfaces[rng.pick(0, 3)]);
  w.block(R"(        patternAltitude="304.8M">
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
            />)");
  if (r.vasi) {
    w.block(R"(        <Vasi end="PRIMARY"
            type="PAPI4"
            side="LEFT")");
    w.line("            lat=\"%s\"", Lat(r.lat + 0.004).c_str());
    w.line("            lon=\"%s\"", Lon(r.lon + 0.001).c_str());
    w.block(R"(            biasX="-20.0M"
            biasZ="300.0M"
            spacing="9.0M"
            pitch="3.00"
            />)");
  }
  if (!r.ilsName.empty()) Ils(w, a, rng, r.ilsName, r.number * 10);
  w.line("    </Runway>");
  w.blank();
}

void Start(Writer& w, int number, const char* designator, double lat, double lon) {
  w.line("    <Start type=\"RUNWAY\"");
  w.line("        number=\"%d\" designator=\"%s\"", number, designator);
  w.line("        lat=\"%s\"", Lat(lat).c_str());
  w.line("        lon=\"%s\"", Lon(lon).c_str());
  w.line("        alt=\"130.2M\"");
  w.line("        heading=\"%d.0\"/>", number * 10);
}

void Com(Writer& w, const char* type, Rng& rng) {
  w.line("    <Com type=\"%s\"", type);
  w.line("        frequency=\"%d.%03d\"", rng.pick(118, 135), rng.pick(0, 39) * 25);
  w.line("        name=\"CITY %s\"/>", type);
}

void Ndb(Writer& w, const std::string& ident, double lat, double lon, Rng& rng) {
  w.line("    <Ndb");
  w.line("        type=\"HH\"");
  w.line("        lat=\"%s\"", Lat(lat).c_str());
  w.line("        lon=\"%s\"", Lon(lon).c_str());
  w.line("        alt=\"130.2M\"");
  w.line("        frequency=\"%d.0\"", rng.pick(200, 420));
  w.line("        range=\"46300.0M\"");
  w.line("        region=\"K1\"");
  w.line("        ident=\"%s\"", ident.c_str());
  w.line("        name=\"%s BEACON\"/>", ident.c_str());
}

void Waypoint(Writer& w, const std::string& ident, double lat, double lon) {
  w.block(R"(    <Waypoint
        waypointType="NAMED"
        waypointRegion="K1")");
  w.line("        waypointIdent=\"%s\"", ident.c_str());
  w.line("        magvar=\"341.0\"");
  w.line("        lat=\"%s\"", Lat(lat).c_str());
  w.line("        lon=\"%s\"", Lon(lon).c_str());
}

void Leg(Writer& w, const char* indent, const char* type, const std::string& fix,
         const std::string& recommended, Rng& rng) {
  w.line("%s<Leg type=\"%s\"", indent, type);
  w.line("%s    fixType=\"TERMINAL_WAYPOINT\"", indent);
  w.line("%s    fixRegion=\"K1\"", indent);
  w.line("%s    fixIdent=\"%s\"", indent, fix.c_str());
  w.line("%s    recommendedType=\"VOR\"", indent);
  w.line("%s    recommendedRegion=\"K1\"", indent);
  w.line("%s    recommendedIdent=\"%s\"", indent, recommended.c_str());
  w.line("%s    theta=\"%d.0\"", indent, rng.pick(0, 359));
  w.line("%s    rho=\"%.1f\"", indent, rng.range(2000, 60000));
  w.line("%s    magneticCourse=\"%d.0\"", indent, rng.pick(0, 359));
  w.line("%s    altitudeDescriptor=\"+\"", indent);
  w.line("%s    altitude1=\"%d.00F\"", indent, rng.pick(10, 80) * 100);
  w.line("%s    />", indent);
}

void ApproachStart(Writer& w, const char* type, int runway, const char* designator) {
  w.line("    <Approach type=\"%s\"", type);
  w.line("        runway=\"%d\"", runway);
  w.line("        designator=\"%s\"", designator);
  w.block(R"(        suffix="0"
        gpsOverlay="FALSE"
        altitude="1200.00F"
        heading="160.0">)");
}

void Transition(Writer& w, const char* fixType, const std::string& fix, const std::string& next,
                Rng& rng) {
  w.line("        <Transition transitionType=\"FULL\"");
  w.line("            fixType=\"%s\"", fixType);
  w.line("            fixRegion=\"K1\"");
  w.line("            fixIdent=\"%s\"", fix.c_str());
  w.line("            altitude=\"6000.00F\">");
  w.line("            <TransitionLegs>");
  Leg(w, "                ", "IF", fix, fix, rng);
  Leg(w, "                ", "TF", next, fix, rng);
  w.line("            </TransitionLegs>");
  w.line("        </Transition>");
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
    ApproachStart(w, "RNAV", 16, "NONE");
    w.line("        <ApproachLegs>");
    Leg(w, "            ", "IF", wp, a.ident, rng);
    Leg(w, "            ", "TF", "RW16", a.ident, rng);
    w.line("        </ApproachLegs>");
    w.line("    </Approach>");
  }
  w.line("</Airport>");
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

void WriteVorList(const std::filesystem::path& path) {
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
    w.line("VOR %d;%s;%s;H;%s;%d.%02d", slot, VorFields(lon).c_str(), VorFields(lat).c_str(),
           VorIdent(slot).c_str(), rng.pick(108, 117), rng.pick(0, 19) * 5);
  }
  File f(path);
  f.write(w.text);
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
    Waypoint(w, waypoints.back(), a.lat + rng.range(-0.3, 0.3), a.lon + rng.range(-0.45, 0.45));
  }
  // Even slots from the last one down: near VORs, found only after most of the table.
  std::vector<std::string> lateVors;
  for (int slot = kVorLines - 1; lateVors.size() < 8; slot -= 200) {
    lateVors.push_back(VorIdent(slot));
  }
  const std::string recommended = lateVors.front();

  ApproachStart(w, "ILS", 16, "LEFT");
  w.line("        <ApproachLegs>");
  constexpr int kMissed = 2;
  for (int i = 0; i < kApproachLegs - kMissed; ++i) {
    std::string fix = waypoints[static_cast<std::size_t>(i)];
    if (i % 4 == 1) fix = lateVors[static_cast<std::size_t>(i / 4)];
    if (i == 14) fix = "SE";
    if (i == kApproachLegs - kMissed - 1) fix = "RW16L";
    Leg(w, "            ", i == 0 ? "IF" : "CF", fix, recommended, rng);
  }
  w.line("        </ApproachLegs>");
  w.line("        <MissedApproachLegs>");
  Leg(w, "            ", "DF", lateVors[7], recommended, rng);
  Leg(w, "            ", "TF", waypoints[29], recommended, rng);
  w.line("        </MissedApproachLegs>");
  Transition(w, "VOR", lateVors[6], waypoints[0], rng);
  Transition(w, "NDB", "PV", waypoints[0], rng);
  w.line("    </Approach>");

  ApproachStart(w, "VOR", 34, "RIGHT");
  w.line("        <ApproachLegs>");
  for (int i = 0; i < 5; ++i) Leg(w, "            ", "CF", waypoints[i + 10], recommended, rng);
  Leg(w, "            ", "CF", "RW34R", recommended, rng);
  w.block(R"(        </ApproachLegs>
    </Approach>
</Airport>)");
}

void WriteIndex(const std::filesystem::path& path) {
  Writer w;
  for (int i = 0; i < kIndexLines - 1; ++i) {
    w.line("%s;Some Field %d;%s;file%d.txt", Code(i).c_str(), i, kCountries[i % 8], i % 400);
  }
  w.line("%s;Velmora Bench International;United States;%s", std::string(kWantedIdent).c_str(),
         std::string(kBigFileName).c_str());
  File f(path);
  f.write(w.text);
}

int WriteBigFile(const std::filesystem::path& path) {
  Rng rng(3);
  File f(path);
  Writer w;
  w.line("<?xml version=\"1.0\" encoding=\"Windows-1252\"?>");
  w.line("<FSData version=\"9.0\">");
  std::uintmax_t written = 0;
  int airports = 0;
  while (written + w.text.size() < kBigFileBytes) {
    OtherAirport(w, airports++, rng);
    if (w.text.size() > (4u << 20)) {
      written += w.text.size();
      f.write(w.text);
    }
  }
  WantedAirport(w);
  w.blank();
  w.line("</FSData>");
  f.write(w.text);
  return airports;
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
  WriteIndex(data.index);
  WriteVorList(data.vor);
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

  View view;
  view.Zoom = 16;
  SetOrigin(view, *LonToGrid(kWantedLon), *LatToGrid(kWantedLat));
  for (std::int32_t slot = 0; slot <= s.VorLast; ++slot) {
    const auto gx = LonToGrid(s.Vor[slot].lon);
    if (!gx) continue;
    if (WithinChartWidth(GridToScreenX(view, *gx))) ++data.vorsInRange;
  }
}

}  // namespace velmora::bench
