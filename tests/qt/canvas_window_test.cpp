#include <gtest/gtest.h>

#include "geometry/svg_canvas.h"
#include "shell/qt/qt_canvas.h"

namespace velmora::test {
namespace {

// Right edge in pixels of what differs from the background, -1 for an empty picture.
int RightEdge(const QImage& image) {
  for (int x = image.width() - 1; x >= 0; --x)
    for (int y = 0; y < image.height(); ++y)
      if (image.pixel(x, y) != qRgb(212, 208, 200)) return x;
  return -1;
}

QImage Render(int width, int style, bool circle) {
  RasterCanvas c;
  c.pen.DrawWidth = width;
  c.pen.DrawStyle = style;
  circle ? c.Circle(7000, 5000, 3000) : c.Line(1000, 5000, 13000, 5000);
  return c.image().copy();
}

TEST(QtCanvas, WarningEndsLeftOfTheScale) {
  RasterCanvas c;
  c.pen.CurrentX = 200;
  c.pen.CurrentY = 9900;
  c.pen.FontSize = 8;
  c.Print("DO NOT USE FOR REAL NAVIGATION! FSX ONLY     NM SCALE ->");
  const int right = RightEdge(c.image()) * 15;         // a screen pixel is 15 twips
  EXPECT_TRUE(right > 3000 && right < 6000) << right;  // the scale starts at 6000
}

TEST(QtCanvas, DotsOnlyAtWidthOneAndClsKeepsThePen) {
  EXPECT_GT(RightEdge(Render(1, kDotted, false)), 0);
  EXPECT_NE(Render(1, kDotted, false), Render(1, 0, false));
  for (bool circle : {false, true}) EXPECT_EQ(Render(2, kDotted, circle), Render(2, 0, circle));
  RasterCanvas c;
  c.pen = Pen{kRed, 5, kDotted, 14, true, 300, 400};
  c.Line(0, 0, Canvas::Width, Canvas::Height);
  c.Cls();
  EXPECT_EQ(RightEdge(c.image()), -1);
  const Pen& p = c.pen;
  EXPECT_TRUE(p.ForeColor == kRed && p.DrawWidth == 5 && p.DrawStyle == kDotted &&
              p.FontSize == 14 && p.FontBold && p.CurrentX == 0 && p.CurrentY == 0);
}

// A picture put together from two keeps each part within its own rectangle: a shape of the
// upper one that reaches beyond its bottom doesn't show on the lower one, in raster and SVG.
TEST(QtCanvas, StackedPicturesStayInTheirParts) {
  RecordingCanvas chart({1500, 1500}), strip({1500, 600});
  chart.pen.DrawWidth = 5;
  chart.Line(750, 0, 750, 5000);  // on through the strip's place
  strip.pen.DrawWidth = 5;
  strip.Line(0, 300, 1500, 300);
  chart.stack(strip, 150);
  EXPECT_EQ(chart.size(), (PictureSize{1500, 2250}));
  RasterCanvas c(1.0, chart.size());
  chart.replay(c);
  const auto ink = [&](int twipsX, int twipsY) {
    return c.image().pixel(twipsX / 15, twipsY / 15) != qRgb(212, 208, 200);
  };
  EXPECT_TRUE(ink(750, 1000));   // the chart's line in the chart
  EXPECT_FALSE(ink(750, 1580));  // not in the gap
  EXPECT_FALSE(ink(750, 2100));  // nor on the strip
  EXPECT_TRUE(ink(300, 1950));   // where the strip's own line lies
  SvgCanvas svg(chart.size());
  chart.replay(svg);
  const std::string doc = svg.document();
  EXPECT_NE(doc.find("<rect x=\"0\" y=\"1650\" width=\"1500\" height=\"600\"/></clipPath>"),
            std::string::npos);
}

}  // namespace
}  // namespace velmora::test
