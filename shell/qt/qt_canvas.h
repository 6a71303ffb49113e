#pragma once
// The chart canvas on Qt: a QPainter in screen pixels of 15 twips. RasterCanvas keeps the picture
// in a QImage, so a covered window loses nothing and the window and a PNG show the same pixels.

#include <QColor>
#include <QFont>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QStaticText>
#include <QString>
#include <filesystem>
#include <map>

#include "geometry/canvas.h"

namespace velmora {

QColor ToQColor(Rgb c);

// "Lucida Sans Unicode" where the machine has it, else DejaVu Sans, which the build requires.
QString ChartFontFamily();
// Where the machine lacks "Lucida Sans Unicode" or "Lucida Console", adds the fonts of
// `exeDir`/fonts (a Windows install ships DejaVu there; Linux has it installed). Call it
// before anything is drawn.
void AddBundledFonts(const std::filesystem::path& exeDir);
// The chart font at `points` on a 96 dpi device; `fontScale` is 96 / the device's dpi.
QFont ChartFont(int points, bool bold, double fontScale = 1.0);
// Windows-1252 text as Qt text.
QString FromCp1252(std::string_view text);

class QtCanvas : public Canvas {
 public:
  // `painter` must count screen pixels (15 twips each) of a device whose fonts come out at
  // 96 / `fontScale` dots per inch; the picture is `size` large.
  explicit QtCanvas(QPainter* painter = nullptr, double fontScale = 1.0,
                    PictureSize size = kSheetSize)
      : painter_(painter), fontScale_(fontScale), size_(size) {}

  PictureSize size() const { return size_; }
  void setSize(PictureSize size) { size_ = size; }

  void drawCls() override;
  void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                std::int32_t y2) override;
  void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) override;
  void drawText(const Pen& pen, std::string_view text) override;
  void drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                std::int32_t height) override;

 protected:
  void setPainter(QPainter* painter) { painter_ = painter; }

 private:
  void applyPen(const Pen& pen);
  const QFont& font(int points, bool bold);
  bool outside(double left, double top, double right, double bottom) const;

  QPainter* painter_;
  double fontScale_;
  PictureSize size_;
  bool clipped_ = false;  // a part's clip stands since the last Cls
  // A chart uses a handful of sizes; building a QFont per label would cost more than drawing.
  std::map<int, QFont> fonts_;
  // Laid-out labels: shaping each text anew is most of a redraw's time, and every zoom step
  // prints the same labels again.
  QHash<QString, QStaticText> labels_;
};

class RasterCanvas final : public QtCanvas {
 public:
  // `pixelRatio` device pixels per screen pixel (1 screen pixel = 15 twips).
  explicit RasterCanvas(double pixelRatio = 1.0, PictureSize size = kSheetSize);
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
