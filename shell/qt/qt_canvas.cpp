#include "shell/qt/qt_canvas.h"

#include <QFontDatabase>
#include <QFontMetricsF>

#include <cmath>

#include "data/text.h"

namespace velmora {
namespace {

QColor ToQColor(Rgb c) { return QColor(c.r, c.g, c.b); }

// Far-off shapes are normal (a VOR far north, a scale tick at low zoom); skip those that
// can't touch the canvas rather than hand the painter millions of twips.
bool Outside(double left, double top, double right, double bottom) {
  constexpr double kMargin = 200;
  return right < -kMargin || bottom < -kMargin || left > Canvas::Width + kMargin ||
         top > Canvas::Height + kMargin;
}

}  // namespace

QString ChartFontFamily() {
  static const QString family = [] {
    const QStringList families = QFontDatabase::families();
    for (const QString& wanted : {QStringLiteral("Lucida Sans Unicode"), QStringLiteral("DejaVu Sans")}) {
      if (families.contains(wanted)) return wanted;
    }
    return QStringLiteral("Sans Serif");
  }();
  return family;
}

QFont ChartFont(int points, bool bold) {
  QFont font(ChartFontFamily());
  font.setPixelSize(points * 20);  // 20 twips to the point
  font.setBold(bold);
  return font;
}

void QtCanvas::applyPen(const Pen& pen) {
  // DrawWidth counts screen pixels of 15 twips; dots only on the thinnest pen.
  QPen qpen(ToQColor(pen.ForeColor), pen.DrawWidth * kTwipsPerPixel);
  const bool dotted = pen.DrawStyle == kDotted && pen.DrawWidth == 1;
  qpen.setStyle(dotted ? Qt::DotLine : Qt::SolidLine);
  qpen.setCapStyle(pen.DrawWidth > 1 ? Qt::RoundCap : Qt::FlatCap);
  painter_->setPen(qpen);
  painter_->setBrush(Qt::NoBrush);
}

void QtCanvas::drawCls() {
  painter_->fillRect(QRectF(0, 0, Width, Height), ToQColor(kPictureBackground));
}

void QtCanvas::drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                        std::int32_t y2) {
  if (Outside(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2))) return;
  applyPen(pen);
  painter_->drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void QtCanvas::drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) {
  const double r = std::abs(static_cast<double>(radius));
  if (Outside(x - r, y - r, x + r, y + r)) return;
  applyPen(pen);
  painter_->drawEllipse(QPointF(x, y), r, r);
}

void QtCanvas::drawText(const Pen& pen, std::string_view text) {
  // No label of the chart is near 30000 twips long or 400 high.
  if (Outside(pen.CurrentX, pen.CurrentY, pen.CurrentX + 30000.0, pen.CurrentY + 400.0)) return;
  const QFont font = ChartFont(pen.FontSize, pen.FontBold);
  painter_->setFont(font);
  painter_->setPen(ToQColor(pen.ForeColor));
  // Print puts the top of the text at CurrentY.
  const double ascent = QFontMetricsF(font).ascent();
  painter_->drawText(QPointF(pen.CurrentX, pen.CurrentY + ascent),
                     QString::fromStdString(Cp1252ToUtf8(text)));
}

RasterCanvas::RasterCanvas(double pixelRatio) { setPixelRatio(pixelRatio); }

RasterCanvas::~RasterCanvas() {
  if (painter_.isActive()) painter_.end();
}

void RasterCanvas::setPixelRatio(double pixelRatio) {
  if (painter_.isActive()) painter_.end();
  ratio_ = pixelRatio > 0 ? pixelRatio : 1.0;
  const int w = static_cast<int>(std::ceil(Width / double(kTwipsPerPixel) * ratio_));
  const int h = static_cast<int>(std::ceil(Height / double(kTwipsPerPixel) * ratio_));
  image_ = QImage(w, h, QImage::Format_RGB32);
  image_.setDevicePixelRatio(ratio_);
  image_.fill(QColor(kPictureBackground.r, kPictureBackground.g, kPictureBackground.b));
  painter_.begin(&image_);
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::TextAntialiasing);
  // The image has its device pixel ratio set, so the painter already counts screen pixels.
  painter_.scale(1.0 / kTwipsPerPixel, 1.0 / kTwipsPerPixel);
  painter_.setClipRect(QRectF(0, 0, Width, Height));
  setPainter(&painter_);
}

}  // namespace velmora
