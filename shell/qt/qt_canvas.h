#pragma once
// The chart canvas on Qt: a QPainter whose units are twips. RasterCanvas keeps the picture in
// a QImage, so a covered window loses nothing and the window and a PNG show the same pixels.

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QString>

#include "geometry/canvas.h"

namespace velmora {

// "Lucida Sans Unicode" where the machine has it, else DejaVu Sans, which the build requires.
QString ChartFontFamily();
// The chart font at `points`, sized in twips for a painter that draws in twips.
QFont ChartFont(int points, bool bold);

class QtCanvas : public Canvas {
 public:
  // `painter` must be set up so that one unit is one twip.
  explicit QtCanvas(QPainter* painter = nullptr) : painter_(painter) {}

  void drawCls() override;
  void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                std::int32_t y2) override;
  void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) override;
  void drawText(const Pen& pen, std::string_view text) override;

 protected:
  void setPainter(QPainter* painter) { painter_ = painter; }

 private:
  void applyPen(const Pen& pen);
  QPainter* painter_;
};

class RasterCanvas final : public QtCanvas {
 public:
  // `pixelRatio` device pixels per screen pixel (1 screen pixel = 15 twips).
  explicit RasterCanvas(double pixelRatio = 1.0);
  ~RasterCanvas() override;

  // Starts over at another ratio with an empty picture.
  void setPixelRatio(double pixelRatio);
  double pixelRatio() const { return ratio_; }
  const QImage& image() const { return image_; }

 private:
  double ratio_ = 1.0;
  QImage image_;
  QPainter painter_;
};

}  // namespace velmora
