#include "tests/support/bgl_builder.h"

#include <cmath>
#include <cstring>

namespace velmora::test {
namespace {

class Out {
 public:
  std::string b;
  std::size_t pos() const { return b.size(); }
  void u8(unsigned v) { b.push_back(static_cast<char>(v & 0xFF)); }
  void u16(unsigned v) {
    u8(v);
    u8(v >> 8);
  }
  void u32(std::uint32_t v) {
    u16(v & 0xFFFF);
    u16(v >> 16);
  }
  void f32(float f) {
    std::uint32_t v;
    std::memcpy(&v, &f, sizeof v);
    u32(v);
  }
  void zeros(std::size_t n) { b.append(n, '\0'); }
  // A record's header; end() writes its size.
  std::size_t begin(std::uint16_t id) {
    const std::size_t at = pos();
    u16(id);
    u32(0);
    return at;
  }
  void end(std::size_t at) { PutU32(b, at + 2, static_cast<std::uint32_t>(pos() - at)); }
  void position(double lat, double lon, std::int32_t altMm) {
    u32(BglLonRaw(lon));
    u32(BglLatRaw(lat));
    u32(static_cast<std::uint32_t>(altMm));
  }
  // Zero-terminated, padded to 4.
  void text(std::string_view s) {
    b.append(s);
    u8(0);
    while ((pos() & 3) != 0) u8(0);
  }
  void name(std::string_view s) {
    const std::size_t at = begin(0x19);
    text(s);
    end(at);
  }
};

void Leg(Out& o, const BglLegSpec& l) {
  o.u8(l.type);
  o.u8(l.altitudeDescriptor);
  o.u8(l.turn);
  o.u8(l.flags);
  o.u32(l.fixIdent.empty() ? 0 : BglTagged(l.fixIdent, l.fixType));
  o.u32(BglRegionAirportCode(l.fixRegion, l.fixAirport));
  o.u32(l.recommendedIdent.empty() ? 0 : BglTagged(l.recommendedIdent, l.recommendedType));
  o.u32(BglRegionAirportCode(l.recommendedRegion, l.recommendedAirport));
  for (float f : {l.theta, l.rho, l.course, l.distance, l.altitude1, l.altitude2}) o.f32(f);
}

void Legs(Out& o, std::uint16_t id, const std::vector<BglLegSpec>& legs) {
  const std::size_t at = o.begin(id);
  o.u16(static_cast<unsigned>(legs.size()));
  for (const BglLegSpec& l : legs) Leg(o, l);
  o.end(at);
}

void Transition(Out& o, const BglTransitionSpec& t, bool v6, const std::string& key,
                BglBuilt& built) {
  built.at[key] = static_cast<std::uint32_t>(o.pos());
  const std::size_t at = o.begin(v6 ? 0xB7 : 0x2C);
  o.u8(t.type);
  o.u8(static_cast<unsigned>(t.legs.size()));
  if (v6) {
    o.u32(t.fixType);
    o.u32(BglCode(t.fixIdent));
  } else {
    o.u32(BglTagged(t.fixIdent, t.fixType));
  }
  o.u32(BglRegionAirportCode(t.fixRegion, ""));
  o.f32(t.altitude);
  if (t.type == 2) {
    o.u32(BglTagged(t.dmeIdent, 2));
    o.u32(0);
    o.u32(t.dmeRadial);
    o.f32(t.dmeDistance);
  }
  Legs(o, 0x2F, t.legs);
  o.end(at);
}

void Approach(Out& o, const BglApproachSpec& a, bool v6, const std::string& key, BglBuilt& built) {
  built.at["approach" + key] = static_cast<std::uint32_t>(o.pos());
  const std::size_t at = o.begin(v6 ? 0xB6 : 0x24);
  o.u8(static_cast<unsigned char>(a.suffix));
  o.u8(a.runway);
  o.u8((a.type & 0x0F) | ((a.designator & 7) << 4) | (a.gpsOverlay ? 0x80 : 0));
  o.u8(static_cast<unsigned>(a.transitions.size()));
  o.u8(static_cast<unsigned>(a.legs.size()));
  o.u8(static_cast<unsigned>(a.missed.size()));
  if (v6) {
    o.u32(a.fixType);
    o.u32(BglCode(a.fixIdent));
  } else {
    o.u32(BglTagged(a.fixIdent, a.fixType));
  }
  o.u32(BglRegionAirportCode(a.fixRegion, ""));
  o.f32(a.altitude);
  o.f32(a.heading);
  o.f32(a.missedAltitude);
  built.at["legs" + key] = static_cast<std::uint32_t>(o.pos());
  Legs(o, 0x2D, a.legs);
  built.at["missed" + key] = static_cast<std::uint32_t>(o.pos());
  Legs(o, 0x2E, a.missed);
  for (std::size_t i = 0; i < a.transitions.size(); ++i) {
    Transition(o, a.transitions[i], v6, "transition" + key + "." + std::to_string(i), built);
  }
  o.end(at);
}

void Airport(Out& o, const BglAirportSpec& a, BglFormat format, std::size_t index,
             BglBuilt& built) {
  const std::string n = std::to_string(index);
  built.at["airport" + n] = static_cast<std::uint32_t>(o.pos());
  const bool p3d = format != BglFormat::kFsx;
  const std::size_t at = o.begin(p3d ? 0xAB : 0x3C);
  o.u8(static_cast<unsigned>(a.runways.size()));
  o.u8(static_cast<unsigned>(a.coms.size()));
  o.u8(static_cast<unsigned>(a.starts.size()));
  o.u8(p3d ? 0 : static_cast<unsigned>(a.approaches.size()));
  o.u8(0);
  o.u8(0);
  o.position(a.lat, a.lon, a.altMm);
  o.position(a.lat, a.lon, a.altMm);  // tower
  o.f32(a.magvar < 0 ? a.magvar + 360 : a.magvar);
  o.u32(BglTagged(a.ident, 1));
  o.u32(BglRegionAirportCode(a.region, ""));
  o.u32(0);
  o.u32(0);
  if (p3d) o.u32(static_cast<std::uint32_t>(a.approaches.size()));
  o.name(a.name);
  for (std::size_t i = 0; i < a.runways.size(); ++i) {
    const BglRunwaySpec& r = a.runways[i];
    built.at["runway" + n + "." + std::to_string(i)] = static_cast<std::uint32_t>(o.pos());
    const std::size_t rat = o.begin(r.documented04 ? 0x04 : 0x3E);
    o.u16(r.surface);
    o.u8(r.number);
    o.u8(r.designator);
    o.u8(r.secondaryNumber);
    o.u8(r.secondaryDesignator);
    o.u32(BglCode(r.primaryIls));
    o.u32(BglCode(r.secondaryIls));
    o.position(r.lat, r.lon, r.altMm);
    for (float f : {r.length, r.width, r.heading, r.patternAltitude}) o.f32(f);
    o.u16(0);
    o.u8(0);
    o.u8(0);
    if (!r.documented04) o.zeros(16);
    o.end(rat);
  }
  for (const BglStartSpec& s : a.starts) {
    const std::size_t sat = o.begin(0x11);
    o.u8(s.number);
    o.u8((s.designator & 0x0F) | (s.type << 4));
    o.position(s.lat, s.lon, s.altMm);
    o.f32(s.heading);
    o.end(sat);
  }
  for (const BglComSpec& c : a.coms) {
    const std::size_t cat = o.begin(0x12);
    o.u8(c.type);
    o.u8(p3d ? 7 : 0);
    o.u32(c.hz);
    o.text(c.name);
    o.end(cat);
  }
  for (std::size_t i = 0; i < a.approaches.size(); ++i) {
    Approach(o, a.approaches[i], format == BglFormat::kP3dV6, n + "." + std::to_string(i), built);
  }
  for (const BglRawRecord& r : a.extra) {
    const std::size_t xat = o.begin(r.id);
    o.b += r.payload;
    o.end(xat);
  }
  o.end(at);
}

void Navaid(Out& o, const BglNavaidSpec& v) {
  const std::size_t at = o.begin(0x13);
  o.u8(v.type);
  o.u8(v.flags);
  o.position(v.lat, v.lon, v.altMm);
  o.u32(v.hz);
  o.f32(v.range);
  o.f32(v.magvar < 0 ? v.magvar + 360 : v.magvar);
  o.u32(BglTagged(v.ident, 2));
  o.u32(BglRegionAirportCode(v.region, v.airport));
  if (v.localizer) {
    const std::size_t l = o.begin(0x14);
    o.u8(v.locRunway);
    o.u8(v.locDesignator);
    o.f32(v.locHeading);
    o.f32(v.locWidth);
    o.end(l);
  }
  if (v.glideSlope) {
    const std::size_t g = o.begin(0x15);
    o.u16(0);
    o.position(v.lat, v.lon, v.altMm);
    o.f32(v.range);
    o.f32(3);
    o.end(g);
  }
  if (v.dme) {
    const std::size_t d = o.begin(0x16);
    o.u16(0);
    o.position(v.lat, v.lon, v.altMm);
    o.f32(v.range);
    o.end(d);
  }
  o.name(v.name);
  o.end(at);
}

void Ndb(Out& o, const BglNdbSpec& n) {
  const std::size_t at = o.begin(0x17);
  o.u16(n.type);
  o.u32(n.hz);
  o.position(n.lat, n.lon, n.altMm);
  o.f32(n.range);
  o.f32(n.magvar < 0 ? n.magvar + 360 : n.magvar);
  o.u32(BglTagged(n.ident, 3));
  o.u32(BglRegionAirportCode(n.region, n.airport));
  o.name(n.name);
  o.end(at);
}

void Waypoint(Out& o, const BglWaypointSpec& w) {
  const std::size_t at = o.begin(0x22);
  o.u8(w.type);
  o.u8(0);
  o.u32(BglLonRaw(w.lon));
  o.u32(BglLatRaw(w.lat));
  o.f32(w.magvar < 0 ? w.magvar + 360 : w.magvar);
  o.u32(BglTagged(w.ident, w.airport.empty() ? 5 : 6));
  o.u32(BglRegionAirportCode(w.region, w.airport));
  o.end(at);
}

// Region, country, state, city and airport names, one each per airport, and the ICAO entries.
void NameList(Out& o, const std::vector<BglAirportSpec>& airports) {
  const std::size_t at = o.begin(0x27);
  const std::size_t n = airports.size();
  for (int i = 0; i < 6; ++i) o.u16(static_cast<unsigned>(n));
  const std::size_t offsets = o.pos();
  for (int i = 0; i < 6; ++i) o.u32(0);
  using Field = std::string BglAirportSpec::*;
  const Field fields[5] = {&BglAirportSpec::region, &BglAirportSpec::country,
                           &BglAirportSpec::state, &BglAirportSpec::city, &BglAirportSpec::name};
  for (int f = 0; f < 5; ++f) {
    PutU32(o.b, offsets + 4 * f, static_cast<std::uint32_t>(o.pos() - at));
    const std::size_t table = o.pos();
    o.zeros(4 * n);
    const std::size_t strings = o.pos();
    for (std::size_t i = 0; i < n; ++i) {
      PutU32(o.b, table + 4 * i, static_cast<std::uint32_t>(o.pos() - strings));
      o.b += airports[i].*fields[f];
      o.u8(0);
    }
  }
  PutU32(o.b, offsets + 20, static_cast<std::uint32_t>(o.pos() - at));
  for (std::size_t i = 0; i < n; ++i) {
    o.u8(static_cast<unsigned>(i));
    o.u8(static_cast<unsigned>(i));
    o.u16(static_cast<unsigned>(i << 4));
    o.u16(static_cast<unsigned>(i));
    o.u16(static_cast<unsigned>(i));
    o.u32(BglTagged(airports[i].ident, 1));
    o.u32(0);
    o.u32(0);
  }
  o.end(at);
}

}  // namespace

std::uint32_t BglCode(std::string_view ident) {
  std::uint32_t code = 0;
  for (char c : ident) {
    std::uint32_t d = 0;
    if (c >= '0' && c <= '9') d = static_cast<std::uint32_t>(c - '0') + 2;
    if (c >= 'A' && c <= 'Z') d = static_cast<std::uint32_t>(c - 'A') + 12;
    code = code * 38 + d;
  }
  return code;
}

std::uint32_t BglTagged(std::string_view ident, std::uint32_t tag) {
  return (BglCode(ident) << 5) | (tag & 0x1F);
}

std::uint32_t BglRegionAirportCode(std::string_view region, std::string_view airport) {
  return (BglCode(airport) << 11) | (BglCode(region) & 0x7FF);
}

std::uint32_t BglLonRaw(double degrees) {
  return static_cast<std::uint32_t>(std::llround((degrees + 180.0) * (3.0 * (1u << 28)) / 360.0));
}

std::uint32_t BglLatRaw(double degrees) {
  return static_cast<std::uint32_t>(std::llround((90.0 - degrees) * double(1u << 29) / 180.0));
}

void PutU16(std::string& bytes, std::size_t offset, std::uint16_t value) {
  bytes[offset] = static_cast<char>(value & 0xFF);
  bytes[offset + 1] = static_cast<char>(value >> 8);
}

void PutU32(std::string& bytes, std::size_t offset, std::uint32_t value) {
  PutU16(bytes, offset, static_cast<std::uint16_t>(value & 0xFFFF));
  PutU16(bytes, offset + 2, static_cast<std::uint16_t>(value >> 16));
}

BglBuilt BuildBgl(const BglFileSpec& contents) {
  BglBuilt built;
  struct Section {
    std::uint32_t type;
    std::string data;
  };
  std::vector<Section> sections;
  std::vector<std::map<std::string, std::uint32_t>> marks;
  const auto add = [&](std::uint32_t type, auto&& write) {
    Out o;
    BglBuilt local;
    write(o, local);
    sections.push_back({type, std::move(o.b)});
    marks.push_back(std::move(local.at));
  };
  if (!contents.airports.empty() || !contents.extraAirportSectionRecords.empty()) {
    add(0x03, [&](Out& o, BglBuilt& b) {
      for (std::size_t i = 0; i < contents.airports.size(); ++i) {
        Airport(o, contents.airports[i], contents.format, i, b);
      }
      for (const BglRawRecord& r : contents.extraAirportSectionRecords) {
        const std::size_t at = o.begin(r.id);
        o.b += r.payload;
        o.end(at);
      }
    });
  }
  const auto list = [&](std::uint32_t type, const auto& items, const char* key, auto&& one) {
    if (items.empty()) return;
    add(type, [&](Out& o, BglBuilt& b) {
      for (std::size_t i = 0; i < items.size(); ++i) {
        b.at[key + std::to_string(i)] = static_cast<std::uint32_t>(o.pos());
        one(o, items[i]);
      }
    });
  };
  list(0x13, contents.navaids, "navaid", Navaid);
  list(0x17, contents.ndbs, "ndb", Ndb);
  list(0x22, contents.waypoints, "waypoint", Waypoint);
  if (contents.nameList && !contents.airports.empty()) {
    add(0x27, [&](Out& o, BglBuilt& b) {
      b.at["names"] = 0;
      NameList(o, contents.airports);
    });
  }
  Out f;
  f.u32(0x19920201);
  f.u32(0x38);
  f.u32(0);
  f.u32(0);
  f.u32(0x08051803);
  f.u32(static_cast<std::uint32_t>(sections.size()));
  f.zeros(0x20);
  built.at["sections"] = static_cast<std::uint32_t>(f.pos());
  const std::size_t tables = 0x38 + 0x14 * sections.size();
  std::size_t data = tables + 16 * sections.size();
  for (std::size_t i = 0; i < sections.size(); ++i) {
    f.u32(sections[i].type);
    f.u32(1);
    f.u32(1);
    f.u32(static_cast<std::uint32_t>(tables + 16 * i));
    f.u32(16);
  }
  for (std::size_t i = 0; i < sections.size(); ++i) {
    f.u32(0);
    f.u32(sections[i].type == 0x27 ? 1 : 0);  // patched below for record sections
    f.u32(static_cast<std::uint32_t>(data));
    f.u32(static_cast<std::uint32_t>(sections[i].data.size()));
    for (const auto& [key, off] : marks[i]) built.at[key] = static_cast<std::uint32_t>(data + off);
    data += sections[i].data.size();
  }
  // Top-level record counts.
  for (std::size_t i = 0; i < sections.size(); ++i) {
    std::uint32_t count = 0;
    const std::string& d = sections[i].data;
    for (std::size_t p = 0; p + 6 <= d.size() && sections[i].type != 0x27;) {
      std::uint32_t size = 0;
      std::memcpy(&size, d.data() + p + 2, 4);
      ++count;
      p += size;
    }
    if (sections[i].type != 0x27) PutU32(f.b, tables + 16 * i + 4, count);
  }
  for (const Section& s : sections) f.b += s.data;
  built.bytes = std::move(f.b);
  return built;
}

}  // namespace velmora::test
