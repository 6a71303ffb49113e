#include "import/bgl_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "data/files.h"
#include "data/runway_text.h"
#include "data/text.h"

namespace velmora {
namespace {

// Why a file is not read, at the byte that shows it.
struct Damage {
  std::uint64_t offset;
  std::string reason;
};

std::string Hex(std::uint64_t v) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(v));
  return text;
}

// The one way to the bytes: little-endian, unaligned, every read checked against the end.
class Cursor {
 public:
  explicit Cursor(std::string_view bytes) : b_(bytes) {}
  std::uint64_t size() const { return b_.size(); }
  bool holds(std::uint64_t offset, std::uint64_t n) const {
    return offset <= b_.size() && n <= b_.size() - offset;
  }
  void need(std::uint64_t offset, std::uint64_t n, std::uint64_t at,
            const std::string& what) const {
    if (!holds(offset, n)) {
      throw Damage{at, what + " (" + std::to_string(n) + " bytes at " + std::to_string(offset) +
                           ") runs past the end of the file at " + std::to_string(b_.size())};
    }
  }
  std::uint32_t le(std::uint64_t offset, int n) const {
    need(offset, static_cast<std::uint64_t>(n), offset, "a value");
    std::uint32_t v = 0;
    for (int i = n - 1; i >= 0; --i) {
      v = (v << 8) | static_cast<unsigned char>(b_[static_cast<std::size_t>(offset) + i]);
    }
    return v;
  }
  std::uint8_t u8(std::uint64_t offset) const { return static_cast<std::uint8_t>(le(offset, 1)); }
  std::uint16_t u16(std::uint64_t offset) const {
    return static_cast<std::uint16_t>(le(offset, 2));
  }
  std::uint32_t u32(std::uint64_t offset) const { return le(offset, 4); }
  float f32(std::uint64_t offset) const {
    const std::uint32_t bits = u32(offset);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
  }
  // Bytes up to the first zero, at most `n`.
  std::string_view text(std::uint64_t offset, std::uint64_t n) const {
    need(offset, n, offset, "a text");
    const std::string_view s =
        b_.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(n));
    return s.substr(0, s.find('\0'));
  }

 private:
  std::string_view b_;
};

// One record: id, size, and reads by offset from its first byte, checked against its size.
struct Record {
  const Cursor* c;
  std::uint64_t at;
  std::uint16_t id;
  std::uint32_t size;
  void need(std::uint64_t off, std::uint64_t n) const {
    if (off + n > size) {
      throw Damage{at, "a record of kind " + Hex(id) + " of " + std::to_string(size) +
                           " bytes is too short for its fields"};
    }
  }
  std::uint8_t u8(std::uint64_t off) const { return need(off, 1), c->u8(at + off); }
  std::uint16_t u16(std::uint64_t off) const { return need(off, 2), c->u16(at + off); }
  std::uint32_t u32(std::uint64_t off) const { return need(off, 4), c->u32(at + off); }
  float f32(std::uint64_t off) const { return need(off, 4), c->f32(at + off); }
  std::string_view text(std::uint64_t off) const {
    return off >= size ? std::string_view() : c->text(at + off, size - off);
  }
};

// The fixed part in front of the children of the records that have children.
std::optional<std::uint32_t> ChildrenStart(const Record& r) {
  switch (r.id) {
    case 0x3C:
      return 0x38;  // airport, FSX and P3D v4
    case 0xAB:
      return 0x3C;  // airport, P3D v5 and v6
    case 0x3E:
      return 0x44;  // runway
    case 0x04:
      return 0x34;  // runway as documented
    case 0x24:
      return 0x20;  // approach
    case 0xB6:
      return 0x24;  // approach, P3D v6
    case 0x2C:
      return r.u8(6) == 2 ? 0x24 : 0x14;  // transition; a DME arc has 16 bytes more
    case 0xB7:
      return r.u8(6) == 2 ? 0x28 : 0x18;
    case 0x13:
      return 0x28;  // VOR, ILS, DME
    case 0x17:
      return 0x28;  // NDB
    default:
      return std::nullopt;
  }
}

// Walks records laid end to end from `begin` to `end`; children of the kinds that have them
// are walked too. Sizes must fit their parent, and nesting stays within kMaxBglDepth.
void CheckRecords(const Cursor& c, std::uint64_t begin, std::uint64_t end, int depth) {
  std::uint64_t p = begin;
  while (p < end) {
    if (end - p < 6) {
      throw Damage{p, std::to_string(end - p) + " bytes left where a record header needs 6"};
    }
    const Record r{&c, p, c.u16(p), c.u32(p + 2)};
    if (r.size < 6) throw Damage{p + 2, "a record size of " + std::to_string(r.size) + " bytes"};
    if (r.size > end - p) {
      throw Damage{p + 2, "a record of " + std::to_string(r.size) +
                              " bytes runs past its parent's end at " + std::to_string(end)};
    }
    if (const auto start = ChildrenStart(r)) {
      if (*start > r.size) {
        throw Damage{p, "a record of kind " + Hex(r.id) + " of " + std::to_string(r.size) +
                            " bytes is shorter than its fixed part of " + std::to_string(*start)};
      }
      if (depth >= kMaxBglDepth) {
        throw Damage{p, "records nested more than " + std::to_string(kMaxBglDepth) + " deep"};
      }
      CheckRecords(c, p + *start, p + r.size, depth + 1);
    }
    p += r.size;
  }
}

// Calls `f` for each record from `begin` to `end` (already checked).
template <typename F>
void EachRecord(const Cursor& c, std::uint64_t begin, std::uint64_t end, F&& f) {
  for (std::uint64_t p = begin; p + 6 <= end;) {
    const Record r{&c, p, c.u16(p), c.u32(p + 2)};
    f(r);
    p += r.size;
  }
}

template <typename F>
void EachChild(const Record& r, F&& f) {
  EachRecord(*r.c, r.at + ChildrenStart(r).value_or(r.size), r.at + r.size, f);
}

// ---- values ----

constexpr std::string_view kBase38 = " ?0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

// to_chars rather than printf: the same digits, several times faster.
std::string Fixed(double v, int decimals) {
  char text[64];
  const auto res = std::to_chars(text, text + sizeof text, v, std::chars_format::fixed, decimals);
  if (res.ec == std::errc()) return std::string(text, res.ptr);
  std::snprintf(text, sizeof text, "%.*f", decimals, v);
  return text;
}

// The shortest text that reads back as the same single float.
std::string Short(float v) {
  if (!std::isfinite(v)) return "0";
  char text[48];
  const auto res = std::to_chars(text, text + sizeof text, v);
  return std::string(text, res.ptr);
}

// As decompilers write floats and positions: the value with 15 significant digits.
std::string Digits15(double v) {
  if (!std::isfinite(v)) return "0";
  char text[48];
  const auto res = std::to_chars(text, text + sizeof text, v, std::chars_format::general, 15);
  return std::string(text, res.ptr);
}

// Metres with up to `decimals` decimals, trailing zeros dropped, and a unit letter.
std::string Trimmed(double v, int decimals) {
  std::string s = Fixed(v, decimals);
  if (s.find('.') != std::string::npos) {
    while (s.back() == '0') s.pop_back();
    if (s.back() == '.') s.pop_back();
  }
  if (s == "-0") s = "0";
  return s;
}

// A runway's length or width: feet when it is a whole number of them (the source wrote feet,
// which the importer turns into metres with one decimal), else metres as decompilers write
// them, the shortest text of the float with at least one decimal.
std::string RunwayLength(float v) {
  if (!std::isfinite(v)) return "0M";
  const double feet = v / 0.3048;
  if (feet >= 1 && std::fabs(feet - std::round(feet)) < feet * 1.2e-7 + 1e-4) {
    return Trimmed(std::round(feet), 0) + "F";
  }
  std::string m = Short(v);
  if (m.find_first_of(".e") == std::string::npos) m += ".0";
  return m + "M";
}

std::string Metres(float v, int decimals) {
  return std::isfinite(v) ? Fixed(v, decimals) + "M" : std::string("0M");
}

std::string Feet(float metres) {
  return std::isfinite(metres) ? Trimmed(metres / 0.3048, 2) + "F" : std::string("0F");
}

// Stored 0 to 360; BglComp sources write east as negative.
std::string Magvar(float v) {
  if (!std::isfinite(v)) return "0";
  return Short(v > 180 ? v - 360 : v);
}

std::string Mhz(std::uint32_t hz, int decimals) {
  return Fixed(hz / 1e6, decimals);
}

template <std::size_t N>
std::string Named(const std::array<std::string_view, N>& names, unsigned value) {
  return value < N && !names[value].empty() ? std::string(names[value]) : std::to_string(value);
}

constexpr std::array<std::string_view, 24> kSurfaces = {
    "CONCRETE",   "GRASS",      "WATER", "",        "ASPHALT", "",      "",       "CLAY",
    "SNOW",       "ICE",        "",      "",        "DIRT",    "CORAL", "GRAVEL", "OIL_TREATED",
    "STEEL_MATS", "BITUMINOUS", "BRICK", "MACADAM", "PLANKS",  "SAND",  "SHALE",  "TARMAC"};
constexpr std::array<std::string_view, 7> kDesignators = {"NONE",  "LEFT", "RIGHT", "CENTER",
                                                          "WATER", "A",    "B"};
constexpr std::array<std::string_view, 16> kComTypes = {"",
                                                        "ATIS",
                                                        "MULTICOM",
                                                        "UNICOM",
                                                        "CTAF",
                                                        "GROUND",
                                                        "TOWER",
                                                        "CLEARANCE",
                                                        "APPROACH",
                                                        "DEPARTURE",
                                                        "CENTER",
                                                        "FSS",
                                                        "AWOS",
                                                        "ASOS",
                                                        "CLEARANCE_PRE_TAXI",
                                                        "REMOTE_CLEARANCE_DELIVERY"};
constexpr std::array<std::string_view, 12> kApproachTypes = {
    "",    "GPS", "VOR",    "NDB",    "ILS",  "LOCALIZER",
    "SDF", "LDA", "VORDME", "NDBDME", "RNAV", "LOCALIZER_BACKCOURSE"};
constexpr std::array<std::string_view, 24> kLegTypes = {
    "",   "AF", "CA", "CD", "CF", "CI", "CR", "DF", "FA", "FC", "FD", "FM",
    "HA", "HF", "HM", "IF", "PI", "RF", "TF", "VA", "VD", "VI", "VM", "VR"};
constexpr std::array<std::string_view, 10> kFixTypes = {
    "",         "AIRPORT",           "VOR", "NDB",       "TERMINAL_NDB",
    "WAYPOINT", "TERMINAL_WAYPOINT", "",    "LOCALIZER", "RUNWAY"};
constexpr std::array<std::string_view, 8> kWaypointTypes = {"",    "NAMED",     "UNNAMED", "VOR",
                                                            "NDB", "OFF_ROUTE", "IAF",     "FAF"};
constexpr std::array<std::string_view, 6> kVorTypes = {"", "TERMINAL", "LOW", "HIGH", "ILS", "VOT"};
constexpr std::array<std::string_view, 4> kNdbTypes = {"COMPASS_POINT", "MH", "H", "HH"};
constexpr std::array<std::string_view, 5> kAltitudeDescriptors = {"", "A", "+", "-", "B"};
constexpr std::array<std::string_view, 4> kTurns = {"", "L", "R", "E"};
constexpr std::array<std::string_view, 4> kStartTypes = {"", "RUNWAY", "WATER", "HELIPAD"};

// Leg types whose course the source gives even when it is 0 (north).
bool HasCourse(unsigned type) {
  static constexpr std::array<std::string_view, 18> kWith = {"CA", "CD", "CF", "CI", "CR", "FA",
                                                             "FC", "FD", "FM", "HA", "HF", "HM",
                                                             "PI", "VA", "VD", "VI", "VM", "VR"};
  const std::string name = Named(kLegTypes, type);
  return std::find(kWith.begin(), kWith.end(), name) != kWith.end();
}

std::string RunwayNumber(unsigned n) {
  if (n >= 37 && n <= 44) return std::string(kRunwayCompassNames[n - 37]);
  char text[8];
  std::snprintf(text, sizeof text, "%02u", n);
  return text;
}

bool ValidUtf8WithMultiByte(std::string_view s) {
  bool multi = false;
  for (std::size_t i = 0; i < s.size();) {
    const auto b = static_cast<unsigned char>(s[i]);
    std::size_t n = 0;
    if (b < 0x80) {
      ++i;
      continue;
    }
    if (b >= 0xC2 && b <= 0xDF) {
      n = 1;
    } else if (b >= 0xE0 && b <= 0xEF) {
      n = 2;
    } else if (b >= 0xF0 && b <= 0xF4) {
      n = 3;
    } else {
      return false;
    }
    if (i + n >= s.size()) return false;
    for (std::size_t k = 1; k <= n; ++k) {
      if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
    }
    multi = true;
    i += n + 1;
  }
  return multi;
}

// Names are UTF-8 when they are valid multi-byte UTF-8, else Windows-1252 as they stand.
std::string NameText(std::string_view bytes) {
  return ValidUtf8WithMultiByte(bytes) ? Utf8ToCp1252(bytes) : std::string(bytes);
}

SourceElement Element(std::string name, std::uint64_t at) {
  SourceElement e;
  e.name = std::move(name);
  e.line = at;
  return e;
}

void Add(SourceElement& e, std::string key, std::string value) {
  e.attrs.emplace_back(std::move(key), std::move(value));
}

// Coordinates as decompilers write them: decimal degrees with 15 significant digits.
void AddPosition(SourceElement& e, const Record& r, std::uint64_t lonAt, bool alt) {
  Add(e, "lat", Digits15(BglLatitude(r.u32(lonAt + 4))));
  Add(e, "lon", Digits15(BglLongitude(r.u32(lonAt))));
  if (alt) {
    const auto mm = static_cast<std::int32_t>(r.u32(lonAt + 8));
    Add(e, "alt", Trimmed(mm / 1000.0, 3) + "M");
  }
}

// A fix reference: tagged ident (or, in v6, a type and a plain ident) and region dword.
void AddFix(SourceElement& e, std::string_view prefix, unsigned type, std::string ident,
            std::uint32_t region) {
  if (ident.empty()) return;
  Add(e, std::string(prefix) + "Type", Named(kFixTypes, type));
  const std::string reg = BglRegion(region);
  if (!reg.empty()) Add(e, std::string(prefix) + "Region", reg);
  Add(e, std::string(prefix) + "Ident", std::move(ident));
}

struct Names {
  std::string region, country, state, city;
};

// ---- the reader ----

class Reader {
 public:
  Reader(std::string_view bytes, BglDetail detail) : c_(bytes), detail_(detail) {}
  SourceTree read();

 private:
  struct Subsection {
    std::uint32_t type;
    std::uint64_t at, size;
  };
  struct Range {
    std::uint64_t begin, end;
    std::uint64_t pointer;  // where the file points to it
    std::string what;
  };

  struct AirportEntry {
    SourceElement element;
    std::uint32_t code;
    // Runway slots in `element.children` with their ILS idents and ends.
    struct Rwy {
      std::size_t child;
      std::uint32_t primaryIls, secondaryIls;
      int primaryNumber, primaryDesignator, secondaryNumber, secondaryDesignator;
    };
    std::vector<Rwy> runways;
  };
  void sections();
  void unknown(std::string_view parent, std::uint16_t id) {
    ++unknown_[std::string(parent) + " " + Hex(id)];
  }
  void nameList(const Subsection& s);
  SourceElement airport(const Record& r, std::vector<AirportEntry::Rwy>& rwys);
  SourceElement runway(const Record& r);
  SourceElement approach(const Record& r);
  SourceElement transition(const Record& r);
  void legs(const Record& list, SourceElement& group);
  SourceElement navaid(const Record& r, bool ils);
  SourceElement ndb(const Record& r);
  SourceElement waypoint(const Record& r);
  void placeIls(SourceElement ils, std::uint32_t identCode, std::uint32_t regionAirport,
                int locNumber, int locDesignator, bool hasLoc);

  Cursor c_;
  BglDetail detail_;
  std::vector<Subsection> subsections_;
  std::map<std::uint32_t, Names> names_;  // by the airport's code
  std::map<std::string, int> unknown_;    // "parent 0xID" -> count
  int lostIls_ = 0;

  std::vector<AirportEntry> airports_;
  std::vector<SourceElement> others_;
  AirportEntry* airportOf(std::uint32_t regionAirport) {
    const std::uint32_t code = regionAirport >> 11;
    if (code == 0) return nullptr;
    for (AirportEntry& a : airports_) {
      if (a.code == code) return &a;
    }
    return nullptr;
  }
};

void Reader::sections() {
  c_.need(0, 0x38, 0, "the file header");
  if (c_.u32(0) != 0x19920201)
    throw Damage{0, "not a BGL file (its first bytes are not 01 02 92 19)"};
  if (c_.u32(0x10) != 0x08051803) throw Damage{0x10, "not a BGL file (no second magic number)"};
  const std::uint64_t count = c_.u32(0x14);
  if (count > (c_.size() - 0x38) / 0x14) {
    throw Damage{0x14, std::to_string(count) + " sections don't fit in the file"};
  }
  std::vector<Range> ranges{{0, 0x38 + count * 0x14, 0, "the header and section table"}};
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t p = 0x38 + i * 0x14;
    const std::uint32_t type = c_.u32(p);
    const std::uint64_t entry = ((c_.u32(p + 4) & 0x10000) | 0x40000) >> 14;
    const std::uint64_t n = c_.u32(p + 8), table = c_.u32(p + 12), tableSize = c_.u32(p + 16);
    if (n * entry != tableSize) {
      throw Damage{p + 16, "a subsection table of " + std::to_string(tableSize) + " bytes for " +
                               std::to_string(n) + " entries of " + std::to_string(entry)};
    }
    c_.need(table, tableSize, p + 12, "section " + Hex(type) + "'s subsection table");
    ranges.push_back(
        {table, table + tableSize, p + 12, "section " + Hex(type) + "'s subsection table"});
    for (std::uint64_t j = 0; j < n; ++j) {
      const std::uint64_t e = table + j * entry + (entry - 12);
      const std::uint64_t records = c_.u32(e), at = c_.u32(e + 4), size = c_.u32(e + 8);
      c_.need(at, size, e + 4, "the data of section " + Hex(type));
      ranges.push_back({at, at + size, e + 4, "the data of section " + Hex(type)});
      const bool decoded = type == 0x03 || type == 0x13 || type == 0x17 || type == 0x22;
      if (decoded && records > size / 6) {
        throw Damage{e, std::to_string(records) + " records can't fit in " + std::to_string(size) +
                            " bytes"};
      }
      if (decoded || type == 0x27) subsections_.push_back({type, at, size});
    }
  }
  // Each part of the file has one owner: data pointing into a table or into other data is
  // damage, not a second view of the same bytes.
  std::sort(ranges.begin(), ranges.end(),
            [](const Range& a, const Range& b) { return a.begin < b.begin; });
  const Range* last = nullptr;
  for (const Range& r : ranges) {
    if (r.begin == r.end) continue;
    if (last != nullptr && r.begin < last->end) {
      throw Damage{r.pointer, r.what + " at " + std::to_string(r.begin) + " lies inside " +
                                  last->what + " at " + std::to_string(last->begin)};
    }
    last = &r;
  }
  for (const Subsection& s : subsections_) {
    if (s.type != 0x27) CheckRecords(c_, s.at, s.at + s.size, 1);
  }
}

// The airport name list (section 0x27): counts and offsets of the region, country, state, city
// and airport name lists and of the ICAO entries that point into them. A list that does not
// hold together gives no names: the section is no part of what the chart needs to be right.
void Reader::nameList(const Subsection& s) {
  const std::uint64_t end = s.at + s.size;
  const auto u8 = [&](std::uint64_t o) { return o + 1 <= end ? c_.u8(o) : throw Damage{o, ""}; };
  const auto u16 = [&](std::uint64_t o) { return o + 2 <= end ? c_.u16(o) : throw Damage{o, ""}; };
  const auto u32 = [&](std::uint64_t o) { return o + 4 <= end ? c_.u32(o) : throw Damage{o, ""}; };
  try {
    std::array<std::uint64_t, 6> counts{}, offsets{};
    for (int i = 0; i < 6; ++i) {
      counts[i] = u16(s.at + 6 + 2 * i);
      offsets[i] = u32(s.at + 0x12 + 4 * i);
    }
    const auto name = [&](int list, std::uint64_t index) -> std::string {
      if (index >= counts[list]) return {};
      const std::uint64_t base = s.at + offsets[list];
      const std::uint64_t at = base + 4 * counts[list] + u32(base + 4 * index);
      if (at >= end) return {};
      return NameText(c_.text(at, end - at));
    };
    for (std::uint64_t i = 0; i < counts[5] && i < s.size / 20; ++i) {
      const std::uint64_t e = s.at + offsets[5] + 20 * i;
      Names n{name(0, u8(e)), name(1, u8(e + 1)), name(2, u16(e + 2) >> 4), name(3, u16(e + 4))};
      names_[u32(e + 8) >> 5] = std::move(n);
    }
  } catch (const Damage&) {
  }
}

SourceElement Reader::airport(const Record& r, std::vector<AirportEntry::Rwy>& rwys) {
  SourceElement e = Element("Airport", r.at);
  const std::uint32_t code = r.u32(0x28) >> 5;
  const auto found = names_.find(code);
  const bool full = detail_ == BglDetail::kFull;
  if (full && found != names_.end()) {
    if (!found->second.region.empty()) Add(e, "region", found->second.region);
    Add(e, "country", found->second.country);
    Add(e, "state", found->second.state);
    Add(e, "city", found->second.city);
  }
  std::string name;
  std::vector<SourceElement> runways, starts, coms, approaches;
  if (full) {
    EachChild(r, [&](const Record& k) {
      switch (k.id) {
        case 0x19:
          name = NameText(k.text(6));
          break;
        case 0x3E:
        case 0x04: {
          rwys.push_back(
              {runways.size(), k.u32(0x0C), k.u32(0x10), k.u8(8), k.u8(9), k.u8(0x0A), k.u8(0x0B)});
          runways.push_back(runway(k));
          break;
        }
        case 0x11: {
          SourceElement s = Element("Start", k.at);
          const unsigned bits = k.u8(7);
          Add(s, "type", Named(kStartTypes, bits >> 4));
          AddPosition(s, k, 8, true);
          Add(s, "heading", Short(k.f32(0x14)));
          Add(s, "number", RunwayNumber(k.u8(6)));
          Add(s, "designator", Named(kDesignators, bits & 0x0F));
          starts.push_back(std::move(s));
          break;
        }
        case 0x12: {
          SourceElement m = Element("Com", k.at);
          Add(m, "frequency", Mhz(k.u32(8), 4));
          Add(m, "type", Named(kComTypes, k.u8(6)));
          Add(m, "name", NameText(k.text(0x0C)));
          coms.push_back(std::move(m));
          break;
        }
        case 0x24:
        case 0xB6:
          approaches.push_back(approach(k));
          break;
        case 0x1A:
        case 0x1C:
        case 0x1D:
        case 0x26:
        case 0x31:
        case 0x33:
        case 0x37:
        case 0x38:
        case 0x39:
        case 0x3A:
        case 0x3D:
        case 0x40:
        case 0x41:
        case 0xAC:
        case 0xAD:
        case 0xAE:
        case 0xAF:
        case 0xB0:
        case 0xB5:
          break;  // taxiways, aprons, helipads, fences, jetways, parking
        default:
          unknown("airport", k.id);
      }
    });
    Add(e, "name", name);
  }
  AddPosition(e, r, 0x0C, full);
  if (full) Add(e, "magvar", Magvar(r.f32(0x24)));
  Add(e, "ident", BglTaggedIdent(r.u32(0x28)));
  for (auto* group : {&runways, &starts, &coms, &approaches}) {
    for (SourceElement& k : *group) e.children.push_back(std::move(k));
  }
  return e;
}

SourceElement Reader::runway(const Record& r) {
  SourceElement e = Element("Runway", r.at);
  AddPosition(e, r, 0x14, true);
  Add(e, "surface", Named(kSurfaces, r.u16(6) & 0x7F));
  Add(e, "heading", Short(r.f32(0x28)));
  Add(e, "length", RunwayLength(r.f32(0x20)));
  Add(e, "width", RunwayLength(r.f32(0x24)));
  Add(e, "number", RunwayNumber(r.u8(8)));
  Add(e, "designator", Named(kDesignators, r.u8(9)));
  Add(e, "patternAltitude", Metres(r.f32(0x2C), 1));
  EachChild(r, [&](const Record& k) {
    const bool known = (k.id >= 0x05 && k.id <= 0x10) || k.id == 0xB3 || k.id == 0xB4;
    if (!known) unknown("runway", k.id);  // thresholds, blast pads, overruns, lights
  });
  return e;
}

// Approach (0x24) and its P3D v6 form (0xB6), whose fix has its type and a plain ident apart.
SourceElement Reader::approach(const Record& r) {
  SourceElement e = Element("Approach", r.at);
  const bool v6 = r.id == 0xB6;
  const unsigned bits = r.u8(8);
  const std::uint64_t k = v6 ? 4 : 0;  // the shift of the fields behind the fix
  Add(e, "type", Named(kApproachTypes, bits & 0x0F));
  Add(e, "runway", RunwayNumber(r.u8(7)));
  Add(e, "designator", Named(kDesignators, (bits >> 4) & 0x07));
  if (r.u8(6) != 0) Add(e, "suffix", std::string(1, static_cast<char>(r.u8(6))));
  Add(e, "gpsOverlay", bits & 0x80 ? "TRUE" : "FALSE");
  if (v6) {
    AddFix(e, "fix", r.u32(0x0C), BglIdent(r.u32(0x10)), r.u32(0x14));
  } else {
    AddFix(e, "fix", r.u32(0x0C) & 0x1F, BglTaggedIdent(r.u32(0x0C)), r.u32(0x10));
  }
  Add(e, "altitude", Metres(r.f32(0x14 + k), 3));
  Add(e, "heading", Short(r.f32(0x18 + k)));
  Add(e, "missedAltitude", Metres(r.f32(0x1C + k), 3));
  std::vector<SourceElement> transitions;
  EachChild(r, [&](const Record& c) {
    if (c.id == 0x2D || c.id == 0x2E) {
      SourceElement group = Element(c.id == 0x2D ? "ApproachLegs" : "MissedApproachLegs", c.at);
      legs(c, group);
      e.children.push_back(std::move(group));
    } else if (c.id == 0x2C || c.id == 0xB7) {
      transitions.push_back(transition(c));
    } else {
      unknown("approach", c.id);
    }
  });
  for (SourceElement& t : transitions) e.children.push_back(std::move(t));
  return e;
}

SourceElement Reader::transition(const Record& r) {
  SourceElement e = Element("Transition", r.at);
  const bool v6 = r.id == 0xB7;
  const std::uint64_t k = v6 ? 4 : 0;
  const unsigned type = r.u8(6);
  Add(e, "transitionType", type == 2 ? "DME" : type == 1 ? "FULL" : std::to_string(type));
  if (v6) {
    AddFix(e, "fix", r.u32(0x08), BglIdent(r.u32(0x0C)), r.u32(0x10));
  } else {
    AddFix(e, "fix", r.u32(0x08) & 0x1F, BglTaggedIdent(r.u32(0x08)), r.u32(0x0C));
  }
  Add(e, "altitude", Metres(r.f32(0x10 + k), 3));
  if (type == 2) {
    Add(e, "dmeArcIdent", BglTaggedIdent(r.u32(0x14 + k)));
    const std::string region = BglRegion(r.u32(0x18 + k));
    if (!region.empty()) Add(e, "dmeArcRegion", region);
    Add(e, "dmeArcRadial", std::to_string(r.u32(0x1C + k)));
    Add(e, "dmeArcDistance", Metres(r.f32(0x20 + k), 1));
  }
  EachChild(r, [&](const Record& c) {
    if (c.id == 0x2F) {
      SourceElement group = Element("TransitionLegs", c.at);
      legs(c, group);
      e.children.push_back(std::move(group));
    } else {
      unknown("transition", c.id);
    }
  });
  return e;
}

// A leg list: a count and that many legs of 0x2C bytes, which are no records.
void Reader::legs(const Record& list, SourceElement& group) {
  const std::uint64_t n = list.u16(6);
  if (8 + n * 0x2C > list.size) {
    throw Damage{list.at + 6, std::to_string(n) + " legs don't fit in a list of " +
                                  std::to_string(list.size) + " bytes"};
  }
  for (std::uint64_t i = 0; i < n; ++i) {
    const std::uint64_t o = 8 + i * 0x2C;
    SourceElement leg = Element("Leg", list.at + o);
    const unsigned type = list.u8(o), flags = list.u8(o + 3);
    Add(leg, "type", Named(kLegTypes, type));
    const std::uint32_t fix = list.u32(o + 4), recommended = list.u32(o + 0x0C);
    AddFix(leg, "fix", fix & 0x1F, BglTaggedIdent(fix), list.u32(o + 8));
    if (list.u8(o + 2) != 0) Add(leg, "turnDirection", Named(kTurns, list.u8(o + 2)));
    Add(leg, "flyOver", flags & 4 ? "TRUE" : "FALSE");
    AddFix(leg, "recommended", recommended & 0x1F, BglTaggedIdent(recommended), list.u32(o + 0x10));
    const float theta = list.f32(o + 0x14), rho = list.f32(o + 0x18);
    const float course = list.f32(o + 0x1C), distance = list.f32(o + 0x20);
    if (theta != 0) Add(leg, "theta", Short(theta));
    if (rho != 0) Add(leg, "rho", Metres(rho, 2));
    if (course != 0 || HasCourse(type)) {
      Add(leg, flags & 1 ? "trueCourse" : "magneticCourse", Short(course));
    }
    if (distance != 0) {
      if (flags & 2) {
        Add(leg, "time", Short(distance));
      } else {
        Add(leg, "distance", Metres(distance, 2));
      }
    }
    if (list.u8(o + 1) != 0) {
      Add(leg, "altitudeDescriptor", Named(kAltitudeDescriptors, list.u8(o + 1)));
    }
    const float alt1 = list.f32(o + 0x24), alt2 = list.f32(o + 0x28);
    if (alt1 != 0) Add(leg, "altitude1", Feet(alt1));
    if (alt2 != 0) Add(leg, "altitude2", Feet(alt2));
    group.children.push_back(std::move(leg));
  }
}

// VOR, ILS and DME records share a layout; an ILS goes to its runway end.
SourceElement Reader::navaid(const Record& r, bool ils) {
  SourceElement e = Element(ils ? "Ils" : "Vor", r.at);
  const unsigned flags = r.u8(7);
  AddPosition(e, r, 8, true);
  if (!ils) Add(e, "type", Named(kVorTypes, r.u8(6)));
  Add(e, "frequency", Mhz(r.u32(0x14), 3));
  Add(e, "range", Metres(r.f32(0x18), 1));
  Add(e, "magvar", Magvar(r.f32(0x1C)));
  Add(e, "ident", BglTaggedIdent(r.u32(0x20)));
  const std::string region = BglRegion(r.u32(0x24));
  if (!region.empty()) Add(e, "region", region);
  if (!ils && !(flags & 1)) Add(e, "dmeOnly", "TRUE");
  if (ils) Add(e, "backCourse", flags & 4 ? "TRUE" : "FALSE");
  std::string name;
  EachChild(r, [&](const Record& k) {
    if (k.id == 0x19) {
      name = NameText(k.text(6));
    } else if (k.id == 0x14) {
      Add(e, "heading", Digits15(k.f32(8)));
      Add(e, "width", Short(k.f32(0x0C)));
    } else if (k.id != 0x15 && k.id != 0x16) {
      unknown(ils ? "ILS" : "VOR", k.id);
    }
  });
  Add(e, "name", name);
  return e;
}

SourceElement Reader::ndb(const Record& r) {
  SourceElement e = Element("Ndb", r.at);
  AddPosition(e, r, 0x0C, true);
  Add(e, "type", Named(kNdbTypes, r.u16(6)));
  char text[32];
  std::snprintf(text, sizeof text, "%07.2f", r.u32(8) / 1000.0);
  Add(e, "frequency", text);
  Add(e, "range", Metres(r.f32(0x18), 1));
  Add(e, "magvar", Magvar(r.f32(0x1C)));
  const std::string region = BglRegion(r.u32(0x24));
  if (!region.empty()) Add(e, "region", region);
  Add(e, "ident", BglTaggedIdent(r.u32(0x20)));
  std::string name;
  EachChild(r, [&](const Record& k) {
    if (k.id == 0x19) {
      name = NameText(k.text(6));
    } else {
      unknown("NDB", k.id);
    }
  });
  Add(e, "name", name);
  return e;
}

SourceElement Reader::waypoint(const Record& r) {
  SourceElement e = Element("Waypoint", r.at);
  Add(e, "lat", Digits15(BglLatitude(r.u32(0x0C))));
  Add(e, "lon", Digits15(BglLongitude(r.u32(0x08))));
  Add(e, "waypointType", Named(kWaypointTypes, r.u8(6)));
  Add(e, "magvar", Magvar(r.f32(0x10)));
  const std::string region = BglRegion(r.u32(0x18));
  if (!region.empty()) Add(e, "waypointRegion", region);
  Add(e, "waypointIdent", BglTaggedIdent(r.u32(0x14)));
  return e;
}

void Reader::placeIls(SourceElement ils, std::uint32_t identCode, std::uint32_t regionAirport,
                      int locNumber, int locDesignator, bool hasLoc) {
  AirportEntry* a = airportOf(regionAirport);
  if (a == nullptr) {
    ++lostIls_;
    return;
  }
  for (const AirportEntry::Rwy& w : a->runways) {
    std::string end;
    if (w.primaryIls == identCode && identCode != 0)
      end = "PRIMARY";
    else if (w.secondaryIls == identCode && identCode != 0)
      end = "SECONDARY";
    else if (hasLoc && w.primaryNumber == locNumber && w.primaryDesignator == locDesignator)
      end = "PRIMARY";
    else if (hasLoc && w.secondaryNumber == locNumber && w.secondaryDesignator == locDesignator)
      end = "SECONDARY";
    if (end.empty()) continue;
    ils.attrs.insert(ils.attrs.begin(), {"end", end});
    // The primary end's ILS first, as sources list them; the file keeps them by place.
    auto& kids = a->element.children[w.child].children;
    const auto at = end == "PRIMARY" ? std::find_if(kids.begin(), kids.end(),
                                                    [](const SourceElement& k) {
                                                      const std::string* e = k.attr("end");
                                                      return e && *e == "SECONDARY";
                                                    })
                                     : kids.end();
    kids.insert(at, std::move(ils));
    return;
  }
  a->element.children.push_back(std::move(ils));  // an ILS of no runway stands in the airport
}

SourceTree Reader::read() {
  SourceTree tree;
  try {
    sections();
    for (const Subsection& s : subsections_) {
      if (s.type == 0x27) nameList(s);
    }
    // Airports first: ILS, NDBs and waypoints of an airport go into it.
    for (const Subsection& s : subsections_) {
      if (s.type != 0x03) continue;
      EachRecord(c_, s.at, s.at + s.size, [&](const Record& r) {
        if (r.id != 0x3C && r.id != 0xAB) return unknown("airport section", r.id);
        AirportEntry a{{}, r.u32(0x28) >> 5, {}};
        a.element = airport(r, a.runways);
        airports_.push_back(std::move(a));
      });
    }
    const bool full = detail_ == BglDetail::kFull;
    for (const Subsection& s : subsections_) {
      if (s.type == 0x03 || s.type == 0x27) continue;
      EachRecord(c_, s.at, s.at + s.size, [&](const Record& r) {
        if (r.id != s.type) return unknown("section " + Hex(s.type), r.id);
        if (s.type == 0x13) {
          const bool ils = r.u8(6) == 4;
          if (ils && !full) return;
          SourceElement e = navaid(r, ils);
          if (!ils) return others_.push_back(std::move(e));
          int number = 0, designator = 0;
          bool hasLoc = false;
          EachChild(r, [&](const Record& k) {
            if (k.id == 0x14) {
              number = k.u8(6);
              designator = k.u8(7);
              hasLoc = true;
            }
          });
          placeIls(std::move(e), r.u32(0x20) >> 5, r.u32(0x24), number, designator, hasLoc);
          return;
        }
        SourceElement e = s.type == 0x17 ? ndb(r) : waypoint(r);
        const std::uint32_t regionAirport = r.u32(s.type == 0x17 ? 0x24 : 0x18);
        AirportEntry* a = full ? airportOf(regionAirport) : nullptr;
        if (a != nullptr) {
          a->element.children.push_back(std::move(e));
        } else {
          others_.push_back(std::move(e));
        }
      });
    }
  } catch (const Damage& d) {
    tree.error = "offset " + std::to_string(d.offset) + ": " + d.reason;
    return tree;
  }
  for (AirportEntry& a : airports_) tree.records.push_back(std::move(a.element));
  for (SourceElement& e : others_) tree.records.push_back(std::move(e));
  int count = 0;
  std::string kinds;
  for (const auto& [where, n] : unknown_) {
    count += n;
    kinds += (kinds.empty() ? "" : ", ") + where + (n > 1 ? " x" + std::to_string(n) : "");
  }
  if (count > 0) {
    tree.notes.push_back(std::to_string(count) + (count == 1 ? " record" : " records") +
                         " of a kind this reader doesn't know passed over (" + kinds +
                         ") - what it holds is not imported");
  }
  if (lostIls_ > 0) {
    tree.notes.push_back(std::to_string(lostIls_) + " ILS of an airport this file lacks left out");
  }
  return tree;
}

}  // namespace

std::string BglIdent(std::uint32_t code) {
  std::string out;
  while (code != 0 && out.size() < 8) {
    out.insert(out.begin(), kBase38[code % 38]);
    code /= 38;
  }
  while (!out.empty() && out.back() == ' ') out.pop_back();
  while (!out.empty() && out.front() == ' ') out.erase(out.begin());
  return out;
}

std::string BglTaggedIdent(std::uint32_t raw) {
  return BglIdent(raw >> 5);
}

std::string BglRegion(std::uint32_t raw) {
  return BglIdent(raw & 0x7FF);
}

std::string BglRegionAirport(std::uint32_t raw) {
  return BglIdent(raw >> 11);
}

double BglLongitude(std::uint32_t raw) {
  return raw * 360.0 / (3.0 * (1u << 28)) - 180.0;
}

double BglLatitude(std::uint32_t raw) {
  return 90.0 - raw * 180.0 / double(1u << 29);
}

SourceTree ParseBgl(std::string_view bytes, BglDetail detail) {
  return Reader(bytes, detail).read();
}

SourceTree ReadBglFile(const std::filesystem::path& path, BglDetail detail) {
  std::string bytes, reason;
  if (!ReadSmallFile(path, kMaxSourceBytes, bytes, reason)) {
    SourceTree failed;
    failed.error = "0: " + reason;
    return failed;
  }
  return ParseBgl(bytes, detail);
}

}  // namespace velmora
