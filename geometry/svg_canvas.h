#pragma once
// An SVG picture of the canvas, in twips as user units (viewBox 0 0 14415 10215 for the sheet).

#include <sstream>
#include <string>

#include "geometry/canvas.h"

namespace velmora {

class SvgCanvas final : public Canvas {
 public:
  explicit SvgCanvas(PictureSize size = kSheetSize) : size_(size) {}

  void drawCls() override;
  void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                std::int32_t y2) override;
  void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) override;
  void drawText(const Pen& pen, std::string_view text) override;
  void drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                std::int32_t height) override;

  // The whole document.
  std::string document() const;

 private:
  PictureSize size_;
  std::ostringstream body_;
  int clips_ = 0;  // each clip opens a group, closed by the next or by the document's end
};

}  // namespace velmora
