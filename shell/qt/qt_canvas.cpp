#include "shell/qt/qt_canvas.h"

#include <QFontDatabase>
#include <cmath>

#include "data/text.h"
#include "shell/qt/qt_paths.h"

namespace velmora {

QColor ToQColor(Rgb c) {
  return QColor(c.r, c.g, c.b);
}

namespace {

// Painters count screen pixels of 15 twips: Qt lays out text fastest untransformed.
double Px(double twips) {
  return twips / Canvas::kTwipsPerPixel;
}

}  // namespace

// Far-off shapes are normal (a VOR far north, a scale tick at low zoom); skip those that
// can't touch the canvas rather than hand the painter millions of twips.
bool QtCanvas::outside(double left, double top, double right, double bottom) const {
  constexpr double kMargin = 200;
  return right < -kMargin || bottom < -kMargin || left > size_.width + kMargin ||
         top > size_.height + kMargin;
}

QString ChartFontFamily() {
  static const QString family = [] {
    const QStringList families = QFontDatabase::families();
    for (const QString& wanted :
         {QStringLiteral("Lucida Sans Unicode"), QStringLiteral("DejaVu Sans")}) {
      if (families.contains(wanted)) return wanted;
    }
    return QStringLiteral("Sans Serif");
  }();
  return family;
}

void AddBundledFonts(const std::filesystem::path& exeDir) {
  const QStringList families = QFontDatabase::families();
  if (families.contains("Lucida Sans Unicode") && families.contains("Lucida Console")) return;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(exeDir / "fonts", ec), end; !ec && it != end;
       it.increment(ec)) {
    if (it->path().extension() == ".ttf") QFontDatabase::addApplicationFont(ToQString(it->path()));
  }
}

QString FromCp1252(std::string_view text) {
  QString out(static_cast<qsizetype>(text.size()), Qt::Uninitialized);
  for (std::size_t i = 0; i < text.size(); ++i) {
    out[static_cast<qsizetype>(i)] =
        QChar(static_cast<char16_t>(Cp1252CodePoint(static_cast<unsigned char>(text[i]))));
  }
  return out;
}

QFont ChartFont(int points, bool bold, double fontScale) {
  QFont font(ChartFontFamily());
  font.setPointSizeF(points * fontScale);
  font.setBold(bold);
  return font;
}

void QtCanvas::applyPen(const Pen& pen) {
  // DrawWidth counts screen pixels; dots only on the thinnest pen.
  QPen qpen(ToQColor(pen.ForeColor), pen.DrawWidth);
  const bool dotted = pen.DrawStyle == kDotted && pen.DrawWidth == 1;
  qpen.setStyle(dotted ? Qt::DotLine : Qt::SolidLine);
  qpen.setCapStyle(pen.DrawWidth > 1 ? Qt::RoundCap : Qt::FlatCap);
  painter_->setPen(qpen);
  painter_->setBrush(Qt::NoBrush);
}

void QtCanvas::drawCls() {
  // Within the whole picture again, after the parts of one put together from others. Only
  // then: a clip slows every shape drawn under it.
  if (clipped_) painter_->setClipRect(QRectF(0, 0, Px(size_.width), Px(size_.height)));
  clipped_ = false;
  painter_->fillRect(QRectF(0, 0, Px(size_.width), Px(size_.height)), ToQColor(kPictureBackground));
}

void QtCanvas::drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                        std::int32_t y2) {
  if (outside(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2))) return;
  applyPen(pen);
  painter_->drawLine(QPointF(Px(x1), Px(y1)), QPointF(Px(x2), Px(y2)));
}

void QtCanvas::drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) {
  const double r = std::abs(static_cast<double>(radius));
  if (outside(x - r, y - r, x + r, y + r)) return;
  applyPen(pen);
  painter_->drawEllipse(QPointF(Px(x), Px(y)), Px(r), Px(r));
}

void QtCanvas::drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                        std::int32_t height) {
  const QRectF picture(0, 0, Px(size_.width), Px(size_.height));
  clipped_ = true;
  painter_->setClipRect(QRectF(Px(left), Px(top), Px(width), Px(height)).intersected(picture));
}

const QFont& QtCanvas::font(int points, bool bold) {
  const int key = points * 2 + (bold ? 1 : 0);
  auto it = fonts_.find(key);
  if (it == fonts_.end()) it = fonts_.emplace(key, ChartFont(points, bold, fontScale_)).first;
  return it->second;
}

void QtCanvas::drawText(const Pen& pen, std::string_view text) {
  // No label of the chart is near 30000 twips long or 400 high.
  if (outside(pen.CurrentX, pen.CurrentY, pen.CurrentX + 30000.0, pen.CurrentY + 400.0)) return;
  const QFont& f = font(pen.FontSize, pen.FontBold);
  painter_->setFont(f);
  painter_->setPen(ToQColor(pen.ForeColor));
  const QString key = QChar(pen.FontSize * 2 + (pen.FontBold ? 1 : 0)) + FromCp1252(text);
  auto it = labels_.find(key);
  if (it == labels_.end()) {
    constexpr qsizetype kMaxLabels = 50000;
    if (labels_.size() > kMaxLabels) labels_.clear();
    QStaticText label(key.mid(1));
    label.setTextFormat(Qt::PlainText);
    label.setPerformanceHint(QStaticText::AggressiveCaching);
    label.prepare(painter_->transform(), f);
    it = labels_.insert(key, label);
  }
  // QStaticText places the top of the text at the point, as Print does.
  painter_->drawStaticText(QPointF(Px(pen.CurrentX), Px(pen.CurrentY)), *it);
}

RasterCanvas::RasterCanvas(double pixelRatio, PictureSize size) : QtCanvas(nullptr, 1.0, size) {
  setPixelRatio(pixelRatio);
}

RasterCanvas::~RasterCanvas() {
  if (painter_.isActive()) painter_.end();
}

void RasterCanvas::setPixelRatio(double pixelRatio) {
  if (painter_.isActive()) painter_.end();
  ratio_ = pixelRatio > 0 ? pixelRatio : 1.0;
  const int w = static_cast<int>(std::ceil(size().width / double(kTwipsPerPixel) * ratio_));
  const int h = static_cast<int>(std::ceil(size().height / double(kTwipsPerPixel) * ratio_));
  image_ = QImage(w, h, QImage::Format_RGB32);
  image_.setDevicePixelRatio(ratio_);
  image_.fill(ToQColor(kPictureBackground));
  painter_.begin(&image_);
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::TextAntialiasing);
  // The image has its device pixel ratio set, so the painter already counts screen pixels.
  setPainter(&painter_);
}

}  // namespace velmora
