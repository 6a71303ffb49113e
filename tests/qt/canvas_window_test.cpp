#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QPushButton>
#include <algorithm>
#include <map>

#include "shell/qt/main_window.h"
#include "shell/qt/qt_canvas.h"
#include "tests/test_support.h"

namespace velmora::test {
namespace {

// Right edge in pixels of what differs from the background, -1 for an empty picture.
int RightEdge(const QImage& image) {
  for (int x = image.width() - 1; x >= 0; --x) {
    for (int y = 0; y < image.height(); ++y) {
      if (image.pixel(x, y) != qRgb(212, 208, 200)) return x;
    }
  }
  return -1;
}

QImage Render(int width, int style, bool circle) {
  RasterCanvas c;
  c.pen.DrawWidth = width, c.pen.DrawStyle = style;
  circle ? c.Circle(7000, 5000, 3000) : c.Line(1000, 5000, 13000, 5000);
  return c.image().copy();
}

TEST(QtCanvas, WarningEndsLeftOfTheScale) {
  RasterCanvas c;
  c.pen.CurrentX = 200, c.pen.CurrentY = 9900, c.pen.FontSize = 8;
  c.Print("DO NOT USE FOR REAL NAVIGATION! FSX ONLY     NM SCALE ->");
  // A screen pixel is 15 twips; the scale starts at 6000.
  EXPECT_GT(RightEdge(c.image()) * 15, 3000);
  EXPECT_LT(RightEdge(c.image()) * 15, 6000);
}

TEST(QtCanvas, DotsOnlyAtWidthOneAndClsKeepsThePen) {
  EXPECT_GT(RightEdge(Render(1, kDotted, false)), 0);
  EXPECT_NE(Render(1, kDotted, false), Render(1, 0, false));
  EXPECT_EQ(Render(2, kDotted, false), Render(2, 0, false));
  EXPECT_EQ(Render(2, kDotted, true), Render(2, 0, true));
  RasterCanvas c;
  c.pen = Pen{kRed, 5, kDotted, 14, true, 300, 400};
  c.Line(0, 0, Canvas::Width, Canvas::Height);
  c.Cls();
  const Pen& p = c.pen;
  EXPECT_EQ(RightEdge(c.image()), -1);
  EXPECT_TRUE(p.ForeColor == kRed && p.DrawWidth == 5 && p.DrawStyle == kDotted);
  EXPECT_TRUE(p.FontSize == 14 && p.FontBold && p.CurrentX == 0 && p.CurrentY == 0);
}

TEST(MainWindow, ControlsAtTheirTwipsAndTheRoadOfAChart) {
  MainWindow w(SampleDir(), "");
  w.show();
  EXPECT_EQ(w.size(), QSize(1121, 698));  // 16815 x 10470 twips
  // Each control at its twips / 15, found by kind and text.
  std::map<std::string, std::string> placed;
  for (QWidget* c : w.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    const QRect r = c->geometry();
    const QString text =
        c->property(qobject_cast<QComboBox*>(c) ? "currentText" : "text").toString();
    placed[std::string(c->metaObject()->className()) + ":" + text.toStdString()] =
        QString("%1,%2,%3,%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height()).toStdString();
  }
  const std::map<std::string, std::string> twips = {
      {"velmora::ChartView:", "8,8,961,681"},       {"QLineEdit:", "968,40,81,25"},
      {"QPushButton:Search", "1048,40,65,49"},      {"QLabel:    ICAO Code", "968,8,145,25"},
      {"QPushButton:EXIT", "1040,624,73,57"},       {"QPushButton:APP Chart", "976,96,137,65"},
      {"QPushButton:Zoom In", "984,392,65,65"},     {"QPushButton:Zoom Out", "1048,392,65,65"},
      {"QPushButton:Reset Zoom", "984,336,129,49"}, {"QComboBox:Approach", "976,168,137,27"},
      {"QComboBox:Terminal", "976,264,137,27"}};
  EXPECT_EQ(placed, twips);

  // The road of a chart, with a picture of the window after each step.
  const QString shots = VELMORA_SHOTS_DIR;
  ASSERT_TRUE(QDir().mkpath(shots));
  int step = 0;
  const auto shot = [&](const char* name) {
    EXPECT_TRUE(w.grab().save(QString("%1/window-%2-%3.png").arg(shots).arg(++step).arg(name)));
  };
  auto combos = w.findChildren<QComboBox*>(QString(), Qt::FindDirectChildrenOnly);
  std::ranges::sort(combos, {}, &QWidget::y);  // cmbAPP above cmbTerm
  w.clickSearch("xwhl");
  shot("search");
  EXPECT_EQ(w.windowTitle(), "XWHL-WhitlowHarborInternational-Westmark-sample_west.txt");
  EXPECT_EQ(RightEdge(w.chart()->image()), -1);
  w.clickLoad();
  shot("load");
  const QImage loaded = w.chart()->image().copy();
  EXPECT_NE(RightEdge(loaded), -1);
  EXPECT_EQ(combos[0]->count(), 4);
  w.pickApproach(0);
  shot("pick");
  EXPECT_NE(w.chart()->image(), loaded);
  EXPECT_EQ(combos[1]->count() == 1 ? combos[1]->itemText(0) : "", "VOR TKS");
  w.clickZoomIn();
  w.clickZoomIn();
  shot("zoom");
  QStringList buttons;  // the zoom caption on two lines
  for (const QPushButton* b : w.findChildren<QPushButton*>()) buttons << b->text();
  EXPECT_TRUE(buttons.contains("Reset Position\nZoom Level=12")) << buttons.join('|').toStdString();
  w.clickChart(8000.4, 5999.6);
  shot("click");
  EXPECT_EQ(std::pair(w.form().view().PanX, w.form().view().PanY), std::pair(-1000, -1000));
  w.clickResetZoom();
  shot("reset");
  EXPECT_EQ(std::pair(w.form().view().PanX, w.form().view().PanY), std::pair(0, 0));
}

}  // namespace
}  // namespace velmora::test
