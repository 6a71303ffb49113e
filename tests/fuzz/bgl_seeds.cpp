// Writes seed BGL files for bgl_fuzz into the folder given: one airport with every record the
// reader decodes, in each generation's variant, and a library file of many airports.
//   bgl_seeds DIR

#include <fstream>
#include <string>

#include "tests/support/bgl_builder.h"

using namespace velmora::test;

namespace {

BglFileSpec Airport(BglFormat format, int n) {
  BglFileSpec f;
  f.format = format;
  for (int i = 0; i < n; ++i) {
    BglAirportSpec a;
    a.ident = "K" + std::to_string(100 + i);
    a.name = "Field " + std::to_string(i);
    a.country = "Country";
    a.lat = 40 + i * 0.01;
    a.lon = -90 - i * 0.01;
    BglRunwaySpec r;
    r.number = 9;
    r.secondaryNumber = 27;
    r.primaryIls = "I" + std::to_string(i);
    r.length = 1828.8f;
    r.width = 45;
    a.runways.push_back(r);
    a.starts.push_back({9, 0, 1, a.lat, a.lon, 0, 90});
    a.coms.push_back({6, 118300000, "TOWER"});
    BglApproachSpec ap;
    ap.runway = 9;
    ap.fixIdent = "RW09";
    BglLegSpec leg;
    leg.fixType = 5;
    leg.fixIdent = "FIX" + std::to_string(i);
    leg.altitude1 = 900;
    ap.legs = {leg, leg};
    ap.missed = {leg};
    BglTransitionSpec t;
    t.fixIdent = "TR";
    t.legs = {leg};
    BglTransitionSpec arc = t;
    arc.type = 2;
    arc.dmeIdent = "DM";
    ap.transitions = {t, arc};
    a.approaches.push_back(ap);
    f.airports.push_back(a);
    BglNavaidSpec ils;
    ils.type = 4;
    ils.ident = r.primaryIls;
    ils.airport = a.ident;
    ils.localizer = ils.glideSlope = ils.dme = true;
    ils.locRunway = 9;
    f.navaids.push_back(ils);
  }
  BglNavaidSpec vor;
  vor.ident = "XV";
  vor.name = "VOR";
  f.navaids.push_back(vor);
  f.ndbs.push_back({1, 350000, 40, -90, 0, 0, 0, "XN", "K1", "", "NDB"});
  f.waypoints.push_back({1, 40, -90, 0, "WPT", "K1", ""});
  return f;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string dir = argv[1];
  const std::pair<const char*, BglFormat> formats[] = {
      {"fsx", BglFormat::kFsx}, {"v5", BglFormat::kP3dV5}, {"v6", BglFormat::kP3dV6}};
  for (const auto& [name, format] : formats) {
    for (int n : {1, 5}) {
      std::ofstream(dir + "/built-" + name + "-" + std::to_string(n) + ".bgl", std::ios::binary)
          << BuildBgl(Airport(format, n)).bytes;
    }
  }
  return 0;
}
