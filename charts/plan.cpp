#include <array>
#include <optional>

#include "charts/charts.h"
#include "data/numbers.h"
#include "geometry/coords.h"

namespace velmora {
namespace {

// Canvas position without pan; none for a row whose coordinate text can't be read.
std::optional<ScreenPoint> Map(const View& v, const std::string& lat, const std::string& lon) {
  const auto gy = LatToGrid(lat);
  const auto gx = LonToGrid(lon);
  if (!gx || !gy) return std::nullopt;
  return ScreenPoint{GridToScreenX(v, *gx), GridToScreenY(v, *gy)};
}

void ReferencePoint(const View& v, ScreenPoint arp, Canvas& c) {
  // The yellow cross stays where a click brings the clicked point; the rest moves with pan.
  c.pen.ForeColor = kYellow;
  c.Line(ScreenAdd(arp.x, -200), arp.y, ScreenAdd(arp.x, 200), arp.y);
  c.Line(arp.x, ScreenAdd(arp.y, -200), arp.x, ScreenAdd(arp.y, 200));
  const auto [x, y] = Panned(v, arp);
  // The ring has the radius of the whole scale bar: 48000 grid units.
  c.Circle(x, y, RoundEven(48000.0 / v.Zoom));
  c.Circle(x, y, 30);
  c.pen.DrawWidth = 1;
  c.pen.ForeColor = kBlack;
  c.Line(ScreenAdd(x, -100), y, ScreenAdd(x, 100), y);
  c.Line(x, ScreenAdd(y, -100), x, ScreenAdd(y, 100));
  // The label takes whatever font is set.
  c.pen.CurrentX = ScreenAdd(x, 40);
  c.pen.CurrentY = y;
  c.Print("ARP");
}

void Runways(const Store& s, const View& v, Canvas& c) {
  std::array<std::optional<ScreenPoint>, decltype(s.RwyEnd)::kHighest + 1> ends;
  for (std::int32_t slot = 0; slot <= s.RwyLast && s.RwyEnd.has(slot); ++slot) {
    if (auto p = Map(v, s.RwyEnd[slot].lat, s.RwyEnd[slot].lon)) {
      ends[slot] = Panned(v, *p);
    }
  }
  for (std::int32_t slot = 0; slot < s.RwyLast && s.RwyEnd.has(slot + 1); slot += 2) {
    if (s.RwyEnd[slot].type == "HELIPAD" || !ends[slot] || !ends[slot + 1]) continue;
    // Left at 5 when the walk is over; the next VOR's circles inherit it.
    c.pen.DrawWidth = 5;
    c.Line(ends[slot]->x, ends[slot]->y, ends[slot + 1]->x, ends[slot + 1]->y);
  }
}

void Ndbs(const Store& s, const View& v, Canvas& c) {
  for (std::int32_t slot = 1; slot <= s.NdbLast && s.Ndb.has(slot); ++slot) {
    const NdbRow& ndb = s.Ndb[slot];
    const auto p = Map(v, ndb.lat, ndb.lon);
    if (!p) continue;
    const auto [x, y] = Panned(v, *p);
    c.pen.DrawWidth = 1;
    c.pen.ForeColor = kRed;
    c.Circle(x, y, 30);
    c.Circle(x, y, 60);
    PrintAt(c, x, ScreenAdd(y, -800), 10, false, ndb.ident);
    c.pen.CurrentX = x;
    c.pen.CurrentY = ScreenAdd(y, -600);
    c.Print(ndb.frequency);
    c.pen.ForeColor = kBlack;
  }
}

void Vors(const Store& s, const View& v, Canvas& c) {
  for (std::int32_t slot = 0; slot <= s.VorLast && s.Vor.has(slot); ++slot) {
    const VorRow& vor = s.Vor[slot];
    const auto p = Map(v, vor.lat, vor.lon);
    // Only X is tested, and before pan.
    if (!p || !WithinChartWidth(p->x)) continue;
    const auto [x, y] = Panned(v, *p);
    c.pen.ForeColor = kBlue;
    c.Circle(x, y, 30);
    c.Circle(x, y, 60);
    c.Circle(x, y, 90);
    c.pen.CurrentX = ScreenAdd(x, 500);
    c.pen.CurrentY = y;
    c.pen.DrawWidth = 1;
    c.pen.FontSize = 10;
    c.pen.FontBold = true;
    c.Print(vor.ident);
    c.pen.CurrentX = ScreenAdd(x, 500);
    c.pen.CurrentY = ScreenAdd(y, 200);
    c.Print(vor.frequency);
    c.pen.FontBold = false;
    c.pen.ForeColor = kBlack;
  }
}

}  // namespace

void DrawArpt(const Store& store, View& view, Canvas& canvas) {
  const auto gy = LatToGrid(store.ArptLat);
  const auto gx = LonToGrid(store.ArptLon);
  if (!gx || !gy) return;
  SetOrigin(view, *gx, *gy);
  ReferencePoint(view, {GridToScreenX(view, *gx), GridToScreenY(view, *gy)}, canvas);
  Runways(store, view, canvas);
  Ndbs(store, view, canvas);
  Vors(store, view, canvas);
}

}  // namespace velmora
