#include "import/units.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <vector>

#include "data/numbers.h"
#include "geometry/coords.h"

namespace velmora {
namespace {

constexpr double kNauticalMileMetres = 1852.0;
constexpr double kRhoPerNauticalMile = 2053.0;  // the overlay's DME label is rho / 2053
constexpr char kDegreeMark = '\xB0';            // Windows-1252
constexpr double kRadPerDeg = 3.14159265358979323846 / 180;
// The decimals of the chart's own data, which the overlay cuts and the sheet prints as they stand.
constexpr int kCourseDecimals = 1;  // the overlay cuts two characters
constexpr int kMetreDecimals = 1;
constexpr int kNavFrequencyDecimals = 2;  // "110.30"
constexpr int kComFrequencyDecimals = 3;  // "118.300"
constexpr int kNdbFrequencyDecimals = 1;  // "338.0"
constexpr double kFrequencyLimit = 1e6;

std::string_view Trim(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
  return s;
}

// Numbers as XML writers give them: sign, digits, point, exponent. Never infinite or NaN.
std::optional<double> SourceNumber(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  double value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

// to_chars rather than printf: the same digits, several times faster.
std::string Fixed(double value, int decimals) {
  char text[64];
  const auto res =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  if (res.ec != std::errc()) std::snprintf(text, sizeof text, "%.*f", decimals, value);
  std::string out = res.ec == std::errc() ? std::string(text, res.ptr) : std::string(text);
  if (out.front() == '-' && out.find_first_not_of("-0.") == std::string::npos) out.erase(0, 1);
  return out;
}

Converted Problem(std::string text) {
  return {"", std::move(text)};
}

// A number and its unit letter, upper-cased; 0 for none.
struct Measure {
  std::string_view digits;
  char unit = 0;
  std::optional<double> value;
};

Measure Split(std::string_view text) {
  Measure m;
  m.digits = Trim(text);
  const char last = m.digits.empty() ? 0 : m.digits.back();
  if ((last >= 'A' && last <= 'Z') || (last >= 'a' && last <= 'z')) {
    m.unit = static_cast<char>(last & ~0x20);
    m.digits.remove_suffix(1);
  }
  m.value = SourceNumber(m.digits);
  return m;
}

// The digits as written when the reader can read them, else the value with `decimals`.
std::string Keep(const Measure& m, int decimals) {
  return ParseNumber(m.digits) ? std::string(m.digits) : Fixed(*m.value, decimals);
}

// A length-like value: `factor` turns M, F and N into the target unit; `plain` is the unit a
// value without letter is in, `letter` the one written behind the result (none for rho).
Converted Measured(std::string_view text, char target, char plain, char letter, double limit,
                   double perMetre) {
  const Measure m = Split(text);
  if (m.digits.empty() && m.unit == 0) return {};
  if (!m.value) return Problem("not a number");
  const char unit = m.unit == 0 ? plain : m.unit;
  double metres = 0;
  switch (unit) {
    case 'M':
      metres = *m.value;
      break;
    case 'F':
      metres = *m.value * kFootMetres;
      break;
    case 'N':
      metres = *m.value * kNauticalMileMetres;
      break;
    default:
      return Problem(std::string("unit letter \"") + m.unit + "\" unknown (M, F, N)");
  }
  const double result = unit == target ? *m.value : metres * perMetre;
  if (!(std::fabs(result) <= limit)) return Problem("out of range");
  const std::string suffix = letter == 0 ? "" : std::string(1, letter);
  if (unit == target) return {Keep(m, 2) + suffix, ""};
  return {Fixed(result, letter == 'M' ? kMetreDecimals : letter == 'F' ? 2 : 1) + suffix, ""};
}

// The reader's own form: letter, whole degrees, one blank, minutes.
std::optional<double> ReaderForm(std::string_view v, bool latitude) {
  const std::string_view letters = latitude ? "NS" : "EW";
  if (v.size() < 4 || letters.find(v.front()) == std::string_view::npos) return std::nullopt;
  const std::size_t blank = v.find(' ');
  if (blank == std::string_view::npos || blank < 2) return std::nullopt;
  const std::string_view deg = v.substr(1, blank - 1);
  if (deg.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const auto d = ParseNumber(deg);
  const auto m = ParseNumber(v.substr(blank + 1));
  if (!d || !m) return std::nullopt;
  const double value = *d + std::fabs(*m) / 60;
  const bool negative = v.front() == letters[1] || *m < 0;
  return negative ? -value : value;
}

// Decimal degrees or degrees, minutes, seconds with marks and a hemisphere letter in front or
// behind.
std::optional<double> MarkedForm(std::string_view v, bool latitude) {
  const std::string_view letters = latitude ? "NSns" : "EWew";
  int sign = 0;
  if (!v.empty() && letters.find(v.front()) != std::string_view::npos) {
    sign = (v.front() & ~0x20) == letters[1] ? -1 : 1;
    v.remove_prefix(1);
  } else if (!v.empty() && letters.find(v.back()) != std::string_view::npos) {
    sign = (v.back() & ~0x20) == letters[1] ? -1 : 1;
    v.remove_suffix(1);
  }
  std::vector<double> parts;
  std::size_t at = 0;
  while (at < v.size() && parts.size() <= 3) {
    const std::size_t end = v.find_first_of(std::string_view(" *'\"\xB0", 5), at);
    const std::string_view word = v.substr(at, end - at);
    if (!word.empty()) {
      const auto n = SourceNumber(word);
      if (!n) return std::nullopt;
      parts.push_back(*n);
    }
    at = end == std::string_view::npos ? v.size() : end + 1;
  }
  if (parts.empty() || parts.size() > 3) return std::nullopt;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    if (parts[i] < 0 || parts[i] >= 60) return std::nullopt;
  }
  if (sign != 0 && parts[0] < 0) return std::nullopt;
  const double magnitude = std::fabs(parts[0]) + (parts.size() > 1 ? parts[1] / 60 : 0) +
                           (parts.size() > 2 ? parts[2] / 3600 : 0);
  return (sign < 0 || parts[0] < 0 || (sign == 0 && std::signbit(parts[0]))) ? -magnitude
                                                                             : magnitude;
}

// A number the sheet prints as it stands, with the decimals of the chart's own data.
Converted Decimals(std::string_view value, int decimals) {
  const std::string_view v = Trim(value);
  if (v.empty()) return {};
  const auto n = SourceNumber(v);
  if (!n) return Problem("not a number");
  if (!(*n >= 0 && *n <= kFrequencyLimit)) return Problem("out of range");
  return {Fixed(*n, decimals), ""};
}

}  // namespace

std::optional<double> CoordinateDegrees(std::string_view value, bool latitude) {
  const std::string_view v = Trim(value);
  auto degrees = ReaderForm(v, latitude);
  if (!degrees) degrees = MarkedForm(v, latitude);
  if (!degrees || std::fabs(*degrees) > (latitude ? 90 : 180)) return std::nullopt;
  return degrees;
}

Converted CoordinateValue(std::string_view value, bool latitude) {
  const std::string_view v = Trim(value);
  if (v.empty()) return {};
  if (ReaderForm(v, latitude) && CoordinateDegrees(v, latitude)) return {std::string(v), ""};
  const auto degrees = CoordinateDegrees(v, latitude);
  if (!degrees) return Problem(latitude ? "not a latitude" : "not a longitude");
  return {latitude ? LatText(*degrees) : LonText(*degrees), ""};
}

Converted LengthValue(std::string_view value) {
  return Measured(value, 'M', 'M', 'M', 1e6, 1.0);
}

Converted RunwaySizeValue(std::string_view value) {
  Converted c = LengthValue(value);
  if (c.text.empty()) return c;
  // The runway list prints the size as written: metres with the sheet's one decimal.
  c.text.pop_back();
  return {Fixed(*ParseNumber(c.text), kMetreDecimals) + 'M', ""};
}

Converted AltitudeValue(std::string_view value) {
  // Without a letter metres, as BglComp takes it.
  return Measured(value, 'F', 'M', 'F', 1e7, 1 / kFootMetres);
}

Converted RhoValue(std::string_view value) {
  // Without a letter rho is already in the reader's unit.
  const Measure m = Split(value);
  if (m.unit == 0) {
    if (m.digits.empty()) return {};
    if (!m.value) return Problem("not a number");
    if (!(std::fabs(*m.value) <= 1e9)) return Problem("out of range");
    return {Keep(m, 1), ""};
  }
  return Measured(value, 'R', 'M', 0, 1e9, kRhoPerNauticalMile / kNauticalMileMetres);
}

Converted CourseValue(std::string_view value) {
  const std::string_view v = Trim(value);
  if (v.empty()) return {};
  const auto n = SourceNumber(v);
  if (!n) return Problem("not a number of degrees");
  if (*n < -360 || *n > 720) return Problem("out of range");
  // The overlay cuts the last two characters: exactly one decimal is what it needs.
  const std::size_t point = v.find('.');
  if (*n >= 0 && *n <= 360 && point != std::string_view::npos && point + 2 == v.size() &&
      ParseNumber(v)) {
    return {std::string(v), ""};
  }
  const double course = *n < 0 ? *n + 360 : *n > 360 ? *n - 360 : *n;
  return {Fixed(course, kCourseDecimals), ""};
}

Converted MagvarValue(std::string_view value) {
  const std::string_view v = Trim(value);
  if (v.empty()) return {};
  const auto n = SourceNumber(v);
  if (!n) return Problem("not a number of degrees");
  if (*n < -360 || *n > 360) return Problem("out of range");
  // BglComp writes east as negative; the reader counts 0 to 360, east above 180.
  if (*n < 0) return {Fixed(*n + 360, 3), ""};
  return {ParseNumber(v) ? std::string(v) : Fixed(*n, 3), ""};
}

Converted NavFrequencyValue(std::string_view value) {
  return Decimals(value, kNavFrequencyDecimals);
}

Converted ComFrequencyValue(std::string_view value) {
  return Decimals(value, kComFrequencyDecimals);
}

Converted NdbFrequencyValue(std::string_view value) {
  return Decimals(value, kNdbFrequencyDecimals);
}

double DistanceNm(double lat1, double lon1, double lat2, double lon2) {
  const double x = (lon2 - lon1) * std::cos((lat1 + lat2) / 2 * kRadPerDeg);
  return std::hypot(x, lat2 - lat1) * 60;
}

double TrueCourse(double lat1, double lon1, double lat2, double lon2) {
  const double p1 = lat1 * kRadPerDeg, p2 = lat2 * kRadPerDeg;
  const double dl = (lon2 - lon1) * kRadPerDeg;
  const double course =
      std::atan2(std::sin(dl) * std::cos(p2),
                 std::cos(p1) * std::sin(p2) - std::sin(p1) * std::cos(p2) * std::cos(dl)) /
      kRadPerDeg;
  return course < 0 ? course + 360 : course;
}

std::string MagneticCourseText(double trueCourse, std::string_view magvar) {
  // In the reader's form (0 to 360) west lies below 180 and east is 360 less the variation, so
  // adding it subtracts an east variation and adds a west one, modulo 360.
  const auto variation = ParseNumber(MagvarValue(magvar).text);
  return Fixed(std::fmod(trueCourse + variation.value_or(0), 360), kCourseDecimals);
}

}  // namespace velmora
