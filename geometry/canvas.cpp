#include "geometry/canvas.h"

#include <algorithm>

#include "geometry/screen.h"

namespace velmora {

void Canvas::Cls() {
  pen.CurrentX = 0;
  pen.CurrentY = 0;
  drawCls();
}

void Canvas::Line(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) {
  drawLine(pen, x1, y1, x2, y2);
}

void Canvas::Circle(std::int32_t x, std::int32_t y, std::int32_t radius) {
  drawCircle(pen, x, y, radius);
}

void Canvas::Print(std::string_view text) {
  if (!text.empty()) drawText(pen, text);
}

void TeeCanvas::drawCls() {
  for (Canvas* t : targets_) t->drawCls();
}

void TeeCanvas::drawLine(const Pen& p, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                         std::int32_t y2) {
  for (Canvas* t : targets_) t->drawLine(p, x1, y1, x2, y2);
}

void TeeCanvas::drawCircle(const Pen& p, std::int32_t x, std::int32_t y, std::int32_t radius) {
  for (Canvas* t : targets_) t->drawCircle(p, x, y, radius);
}

void TeeCanvas::drawText(const Pen& p, std::string_view text) {
  for (Canvas* t : targets_) t->drawText(p, text);
}

void TeeCanvas::drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                         std::int32_t height) {
  for (Canvas* t : targets_) t->drawClip(left, top, width, height);
}

void RecordingCanvas::drawLine(const Pen& p, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                               std::int32_t y2) {
  ops_.push_back({Kind::kLine, p, x1, y1, x2, y2, {}});
}

void RecordingCanvas::drawCircle(const Pen& p, std::int32_t x, std::int32_t y,
                                 std::int32_t radius) {
  ops_.push_back({Kind::kCircle, p, x, y, radius, 0, {}});
}

void RecordingCanvas::drawText(const Pen& p, std::string_view text) {
  ops_.push_back({Kind::kText, p, 0, 0, 0, 0, std::string(text)});
}

void RecordingCanvas::drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                               std::int32_t height) {
  ops_.push_back({Kind::kClip, pen, left, top, width, height, {}});
}

void RecordingCanvas::replay(Canvas& target) const {
  target.drawCls();
  for (const Op& op : ops_) {
    switch (op.kind) {
      case Kind::kLine:
        target.drawLine(op.pen, op.a, op.b, op.c, op.d);
        break;
      case Kind::kCircle:
        target.drawCircle(op.pen, op.a, op.b, op.c);
        break;
      case Kind::kText:
        target.drawText(op.pen, op.text);
        break;
      case Kind::kClip:
        target.drawClip(op.a, op.b, op.c, op.d);
        break;
    }
  }
}

void RecordingCanvas::stack(const RecordingCanvas& below, std::int32_t gap) {
  const std::int32_t dy = ScreenAdd(size_.height, gap);
  ops_.insert(ops_.begin(), {Kind::kClip, pen, 0, 0, size_.width, size_.height, {}});
  ops_.push_back({Kind::kClip, pen, 0, dy, below.size_.width, below.size_.height, {}});
  for (Op op : below.ops_) {
    if (op.kind == Kind::kText) {
      op.pen.CurrentY = ScreenAdd(op.pen.CurrentY, dy);
    } else {
      op.b = ScreenAdd(op.b, dy);
      if (op.kind == Kind::kLine) op.d = ScreenAdd(op.d, dy);
    }
    ops_.push_back(std::move(op));
  }
  size_ = {std::max(size_.width, below.size_.width), ScreenAdd(dy, below.size_.height)};
}

}  // namespace velmora
