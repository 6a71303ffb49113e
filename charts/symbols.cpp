#include <optional>

#include "charts/charts.h"
#include "geometry/polar.h"
#include "geometry/screen.h"

namespace velmora {
namespace {

struct Bearings {
  std::int32_t first, second;
};

Bearings SideBearings(std::int32_t course, std::int32_t angle) {
  std::int32_t first = course - angle;
  if (first < 0) first = 360 + first;
  std::int32_t second = course + angle;
  if (second > 360) second -= 360;
  return {first, second};
}

// None where the bearing leaves 0 to 360: such a corner is never drawn to.
std::optional<ScreenPoint> CornerAt(std::int32_t x, std::int32_t y, std::int32_t bearing,
                                    double distance) {
  if (bearing < 0 || bearing > 360) return std::nullopt;
  ScreenPoint c{x, y};
  PolarOffset(x, y, bearing, distance, c.x, c.y);
  return c;
}

void LineTo(Canvas& c, std::int32_t x, std::int32_t y, const std::optional<ScreenPoint>& to) {
  if (to) c.Line(x, y, to->x, to->y);
}

}  // namespace

void DrawCourseMark(Canvas& canvas, std::int32_t tipX, std::int32_t tipY, std::int32_t course) {
  const Bearings b = SideBearings(course, 160);
  canvas.pen.DrawWidth = 2;
  canvas.pen.ForeColor = kBlack;
  const auto p1 = CornerAt(tipX, tipY, b.first, 0.6);
  LineTo(canvas, tipX, tipY, p1);
  const auto p2 = CornerAt(tipX, tipY, b.second, 0.6);
  LineTo(canvas, tipX, tipY, p2);
  if (p1) LineTo(canvas, p1->x, p1->y, p2);
  canvas.pen.ForeColor = kBlack;
  canvas.pen.DrawWidth = 1;
}

void DrawArrowHead(Canvas& canvas, std::int32_t startX, std::int32_t startY, std::int32_t course,
                   std::int32_t tipX, std::int32_t tipY) {
  const Bearings b = SideBearings(course, 130);
  canvas.pen.DrawWidth = 1;
  canvas.pen.ForeColor = kGreen;
  for (const auto& barb :
       {CornerAt(startX, startY, b.first, 1.0), CornerAt(startX, startY, b.second, 1.0)}) {
    if (!barb) continue;
    canvas.Line(startX, startY, barb->x, barb->y);
    canvas.Line(barb->x, barb->y, tipX, tipY);
  }
  // DrawWidth stays 1: the track line of the same leg inherits it.
  canvas.pen.ForeColor = kBlack;
}

}  // namespace velmora
