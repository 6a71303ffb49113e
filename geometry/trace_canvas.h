#pragma once
// Writes every drawing operation as one UTF-8 line, with the pen as it stands:
//   cls | line X1 Y1 X2 Y2 R,G,B W S | circle X Y R R,G,B W S | print X Y R,G,B SIZE BOLD TEXT
// Tests and velmora-chart compare charts by these lines.

#include <ostream>

#include "geometry/canvas.h"

namespace velmora {

class TraceCanvas final : public Canvas {
 public:
  explicit TraceCanvas(std::ostream& out) : out_(out) {}

  // Lines that are not drawing: a step heading and a change of the window caption.
  void step(int number, std::string_view what);
  void caption(std::string_view text);

  void drawCls() override;
  void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                std::int32_t y2) override;
  void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) override;
  void drawText(const Pen& pen, std::string_view text) override;

 private:
  std::ostream& out_;
};

}  // namespace velmora
