#include <cmath>

#include "charts/charts.h"
#include "data/numbers.h"
#include "data/runway_text.h"
#include "data/text.h"
#include "geometry/coords.h"

namespace velmora {
namespace {

constexpr std::string_view kWarning = "DO NOT USE FOR REAL NAVIGATION! FSX ONLY     NM SCALE ->";

std::int32_t ListRowY(int row) {
  return 800 + 250 * row;
}

bool IsEmpty(const RwyEndRow& r) {
  return r.type.empty() && r.number.empty() && r.designator.empty() && r.length.empty() &&
         r.width.empty() && r.surface.empty();
}

void TitleBlock(const Store& s, Canvas& c) {
  PrintAt(c, 100, 100, 14, true, s.ArptIdent);
  PrintAt(c, 2100, 100, 14, false, s.ArptCity + "  " + s.ArptName);
  PrintAt(c, 10100, 100, 14, false, s.ArptState + "  " + s.ArptCountry);
  c.Line(0, 500, Canvas::Width, 500);
  PrintAt(c, 100, 550, 12, true, "Elev: " + MetersToFeet(s.ArptAlt));
  PrintAt(c, 5100, 550, 10, false,
          s.ArptLat + "   " + s.ArptLon +
              "                               Magnetic Variation: " + VariationText(s.ArptMagvar));
  c.Line(0, 900, Canvas::Width, 900);
}

void FrequencyList(const Store& s, Canvas& c) {
  int row = 1;
  for (std::int32_t slot = 0; slot <= s.ComLast && s.Com.has(slot); ++slot) {
    const ComRow& com = s.Com[slot];
    if (!ContainsNoCase(com.type, "ATIS") && !ContainsNoCase(com.type, "TOWER") &&
        !ContainsNoCase(com.type, "APPROACH")) {
      continue;
    }
    PrintAt(c, 10500, ListRowY(row), 8, false, com.name + " " + com.type + "  " + com.frequency);
    ++row;
  }
}

void RunwayList(const Store& s, Canvas& c) {
  int row = 1;
  for (std::int32_t slot = 0; slot <= s.RwyLast && s.RwyEnd.has(slot); slot += 2) {
    const RwyEndRow& rwy = s.RwyEnd[slot];
    // An airport without runway ends gets no row of bare dashes.
    if (rwy.type == "HELIPAD" || IsEmpty(rwy)) continue;
    // The list drops the letter of any designator that begins with "N", not of "NONE" alone.
    const std::string letter =
        rwy.designator.starts_with('N') ? std::string{} : DesignatorLetter(rwy.designator);
    PrintAt(c, 200, ListRowY(row), 8, false,
            "RWY- " + RunwayNumberText(rwy.number) + letter + "-" + rwy.length + " x " + rwy.width +
                " - " + rwy.surface);
    ++row;
  }
}

void Warning(Canvas& c) {
  c.pen.CurrentX = 200;
  c.pen.CurrentY = 9900;
  c.pen.ForeColor = kRed;
  c.pen.FontSize = 8;
  c.Print(kWarning);
  c.pen.ForeColor = kBlack;
}

void Scale(const View& v, Canvas& c) {
  // One tick is 4800 grid units at every Zoom.
  const std::int32_t tick = RoundEven(4800.0 / v.Zoom);
  for (std::int32_t i = 0; i <= 10; ++i) {
    c.Line(6000, 9920, 6000 + i * tick, 9920);
    c.pen.CurrentX = 6000 + i * tick;
    c.pen.CurrentY = 9900;
    c.pen.ForeColor = kRed;
    c.pen.FontSize = 8;
    c.Print(std::to_string(i));
    c.pen.ForeColor = kBlack;
  }
}

}  // namespace

void PrintAt(Canvas& c, std::int32_t x, std::int32_t y, int fontSize, bool bold,
             std::string_view text) {
  c.pen.CurrentX = x;
  c.pen.CurrentY = y;
  c.pen.FontBold = bold;
  c.pen.FontSize = fontSize;
  c.Print(text);
}

std::string VariationText(std::string_view magvar) {
  const auto value = ParseNumber(magvar);
  if (!value) return {};
  const bool west = *value < 180;
  const double degrees = west ? *value : 360 - *value;
  // Snap away binary noise first, so a decimal half such as 0.125 rounds up as written.
  const std::int64_t cents = RoundAway(std::round(degrees * 100 * 1e6) / 1e6);
  const std::int64_t whole = std::llabs(cents);
  std::string text = cents < 0 ? "-" : "";
  text += std::to_string(whole / 100) + '.' + static_cast<char>('0' + whole % 100 / 10) +
          static_cast<char>('0' + whole % 10);
  return text + kDegreeSign + (west ? " W" : " E");
}

void DisplayArpt(Store& store, View& view, Canvas& canvas) {
  canvas.Cls();
  canvas.pen.DrawWidth = 1;
  TitleBlock(store, canvas);
  FrequencyList(store, canvas);
  RunwayList(store, canvas);
  Warning(canvas);
  Scale(view, canvas);
  DrawArpt(store, view, canvas);
}

}  // namespace velmora
