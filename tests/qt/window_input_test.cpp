// The window driven as a pilot drives it: key presses, clicks and the wheel on the real
// widgets, with a screenshot of each state under build/screenshots/scale-F/.

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QPainter>
#include <QPrinter>
#include <QProcess>
#include <QTest>
#include <QWheelEvent>
#include <fstream>
#include <sstream>

#include "shell/chart_run.h"
#include "shell/qt/main_window.h"
#include "shell/qt/pictures.h"
#include "tests/test_support.h"

namespace velmora::test {
namespace {

// Each pilot's window starts as on a first run: no settings kept.
struct FreshSettings {
  FreshSettings() { WindowSettings()->clear(); }
};

class Pilot {
  FreshSettings fresh_;

 public:
  Pilot(const std::filesystem::path& dir, const char* name) : w(dir, ""), name_(name) {
    w.show();
    w.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&w));
    EXPECT_TRUE(QDir().mkpath(shots_));
  }
  template <class T = QWidget>
  T* at(const char* name) {
    T* widget = w.findChild<T*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  QWidget* focus() const { return QApplication::focusWidget(); }
  // A key to whatever has the focus, as the keyboard sends it.
  void key(Qt::Key k, Qt::KeyboardModifiers mods = Qt::NoModifier) {
    QTest::keyClick(focus(), k, mods);
  }
  void type(const char* text) { QTest::keyClicks(focus(), text); }
  // Tab until `name` has the focus (inside it, for a list); false if it never comes.
  bool tabTo(const char* name) {
    QWidget* target = at(name);
    for (int i = 0; i < 14; ++i) {
      if (focus() == target || target->isAncestorOf(focus())) return true;
      key(Qt::Key_Tab);
    }
    return false;
  }
  // Types CODE, searches by Enter and loads the airport by its button.
  void load(const char* code) {
    type(code);
    key(Qt::Key_Return);
    ASSERT_TRUE(tabTo("cmdArpt"));
    key(Qt::Key_Space);
  }
  void wheel(int eighths) {
    QWidget* chart = at("picArpt");
    const QPointF p(100, 100);
    QWheelEvent e(p, chart->mapToGlobal(p), QPoint(), QPoint(0, eighths), Qt::NoButton,
                  Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(chart, &e);
  }
  // The window as the screen shows it, with an opened list drawn over it.
  QImage shot(const char* name, QWidget* popup = nullptr) {
    QImage image = w.grab().toImage();
    if (popup != nullptr) {
      QPainter(&image).drawPixmap(w.mapFromGlobal(popup->mapToGlobal(QPoint(0, 0))), popup->grab());
    }
    EXPECT_TRUE(image.save(QString("%1/%2-%3-%4.png").arg(shots_, name_).arg(++step_).arg(name)));
    return image;
  }
  int zoom() const { return w.form().view().Zoom; }
  const Store& store() const { return w.form().store(); }

  MainWindow w;

 private:
  QString name_, shots_ = QString("%1/scale-%2")
                              .arg(VELMORA_SHOTS_DIR, qEnvironmentVariable("QT_SCALE_FACTOR", "1"));
  int step_ = 0;
};

// Pixels of `area` (in points) that stand clearly apart from its most common colour: its text.
int InkPixels(const QImage& image, const QRect& area) {
  const double ratio = image.devicePixelRatio();
  const QRect px = QRect(area.topLeft() * ratio, area.size() * ratio).intersected(image.rect());
  std::map<QRgb, int> counts;
  for (int y = px.top(); y <= px.bottom(); ++y)
    for (int x = px.left(); x <= px.right(); ++x) ++counts[image.pixel(x, y)];
  const auto luma = [](QRgb c) { return 0.299 * qRed(c) + 0.587 * qGreen(c) + 0.114 * qBlue(c); };
  const QRgb background =
      std::ranges::max_element(counts, {}, &decltype(counts)::value_type::second)->first;
  int ink = 0;
  for (auto [colour, n] : counts) ink += std::abs(luma(colour) - luma(background)) > 90 ? n : 0;
  return ink;
}

// Every row of an opened list carries readable text.
void ExpectRowsReadable(QComboBox* box) {
  QAbstractItemView* view = box->view();
  ASSERT_TRUE(view->isVisible()) << box->objectName().toStdString();
  const QImage image = view->grab().toImage();
  for (int row = 0; row < box->count(); ++row) {
    EXPECT_GT(InkPixels(image, view->visualRect(view->model()->index(row, 0))), 15)
        << box->itemText(row).toStdString();
  }
}

TEST(WindowInput, SearchAndLoadByKeyboardZoomByWheel) {
  Pilot p(SampleDir(), "road");
  EXPECT_EQ(p.focus(), p.at("txtSearch"));
  p.wheel(120);  // no chart yet: the zoom buttons are disabled
  EXPECT_EQ(p.zoom(), 2);
  p.type("xwhl");
  p.key(Qt::Key_Return);  // the search box hands Enter to the default button
  EXPECT_EQ(p.w.windowTitle(), "XWHL-WhitlowHarborInternational-Westmark-sample_west.txt");
  p.shot("search");
  // Enter on a focused button presses that button, not the default one.
  ASSERT_TRUE(p.tabTo("cmdArpt"));
  p.key(Qt::Key_Return);
  EXPECT_EQ(p.store().ArptIdent, "XWHL");
  EXPECT_EQ(p.at<QComboBox>("cmbAPP")->count(), 4);
  EXPECT_TRUE(p.w.chart()->hasChart());
  p.shot("load");
  // The wheel: one step per notch of 120 eighths of a degree, finer turns add up.
  for (auto [eighths, zoom] : {std::pair{120, 14}, {-240, 18}, {60, 18}, {60, 16}, {-119, 16}}) {
    p.wheel(eighths);
    EXPECT_EQ(p.zoom(), zoom) << eighths;
  }
}

TEST(WindowInput, PicksByKeyboardFromTheClosedList) {
  Pilot p(SampleDir(), "pick");
  p.load("xwhl");
  auto* apps = p.at<QComboBox>("cmbAPP");
  // Each Down and Up is a pick of the next row; Enter picks the row shown.
  ASSERT_TRUE(p.tabTo("cmbAPP"));
  const std::pair<Qt::Key, int> picks[] = {
      {Qt::Key_Down, 0}, {Qt::Key_Down, 1}, {Qt::Key_Down, 2}, {Qt::Key_Up, 1}};
  for (auto [k, row] : picks) {
    p.key(k);
    EXPECT_TRUE(p.store().AppSelected);
    EXPECT_EQ(p.store().SelApp, row);
    EXPECT_EQ(apps->currentText(), apps->itemText(row));
  }
  p.shot("pick");
  p.key(Qt::Key_Return);
  EXPECT_EQ(p.store().SelApp, 1);
  // Typed text is no pick, neither on leaving the field nor on Enter.
  apps->lineEdit()->selectAll();
  p.type("GPS 27");
  p.key(Qt::Key_Tab);
  EXPECT_EQ(p.store().SelApp, 1);
}

TEST(WindowInput, ZoomPanResetAndExitByKeyboard) {
  Pilot p(SampleDir(), "zoom");
  p.load("xwhl");
  // Space and Enter on the zoom buttons; + and - on the chart while the buttons are enabled.
  // Each key goes to the widget named, or with "" to the focus as it is.
  const std::tuple<const char*, Qt::Key, int> zooms[] = {{"cmdPlus", Qt::Key_Space, 14},
                                                         {"", Qt::Key_Return, 12},
                                                         {"picArpt", Qt::Key_Plus, 10},
                                                         {"", Qt::Key_Minus, 12},
                                                         {"", Qt::Key_Minus, 14}};
  for (auto [to, k, zoom] : zooms) {
    ASSERT_TRUE(!*to || p.tabTo(to)) << to;
    p.key(k);
    EXPECT_EQ(p.zoom(), zoom) << k;
  }
  p.shot("zoom");
  QTest::mouseClick(p.at("picArpt"), Qt::RightButton, {}, QPoint(400, 300));  // a press moves
  EXPECT_EQ(p.w.form().view().PanX, 7000 - 6000);
  ASSERT_TRUE(p.tabTo("cmdZoom"));
  p.key(Qt::Key_Space);
  EXPECT_EQ(p.w.form().view().PanX, 0);
  ASSERT_TRUE(p.tabTo("picArpt"));
  p.key(Qt::Key_Return);  // the default button: a search for the empty box clears the chart
  EXPECT_FALSE(p.w.chart()->hasChart());
  p.key(Qt::Key_Plus);
  EXPECT_EQ(p.zoom(), 14);
  p.shot("search-again");
  ASSERT_TRUE(p.tabTo("cmdExit"));
  p.key(Qt::Key_Space);
  EXPECT_FALSE(p.w.isVisible());
}

TEST(WindowInput, ResizedAndMaximisedTheControlsStay) {
  Pilot p(SampleDir(), "frame");
  // 16815 x 10470 twips, and 2520 more for the profile pane beneath the chart.
  EXPECT_EQ(p.w.size(), QSize(1121, 866));
  const std::map<std::string, QRect> twips = {
      {"picArpt", {8, 8, 961, 681}},     {"txtSearch", {968, 40, 81, 25}},
      {"cmdSearch", {1048, 40, 65, 49}}, {"lblSearch", {968, 8, 145, 25}},
      {"cmdExit", {1040, 624, 73, 57}},  {"cmdArpt", {976, 96, 137, 65}},
      {"cmdPlus", {984, 392, 65, 65}},   {"cmdMinus", {1048, 392, 65, 65}},
      {"cmdZoom", {984, 336, 129, 49}},  {"cmbAPP", {976, 168, 137, 27}},
      {"cmbTerm", {976, 264, 137, 27}},  {"cmdProfile", {984, 472, 129, 49}},
      {"picProfile", {8, 697, 961, 160}}};
  for (const QSize size : {QSize(1121, 866), QSize(1300, 800), QSize(900, 500), QSize()}) {
    size.isValid() ? p.w.resize(size) : p.w.showMaximized();  // an empty size: maximised
    QTest::qWait(20);
    EXPECT_EQ(p.w.isMaximized() ? QSize() : p.w.size(), size);
    for (const auto& [name, rect] : twips) EXPECT_EQ(p.at(name.c_str())->geometry(), rect) << name;
    const QImage shot = p.shot("resized");
    if (size.width() > 1250) {  // beyond the controls: black
      EXPECT_EQ(shot.pixel(QPoint(1250, 750) * shot.devicePixelRatio()), qRgb(0, 0, 0));
    }
  }
}

// Pages of a PDF as pictures, by poppler's pdftoppm at `dpi`.
QImage RenderPdf(const QString& pdf, int dpi) {
  QProcess::execute("pdftoppm", {"-r", QString::number(dpi), "-png", "-singlefile", pdf, pdf});
  return QImage(pdf + ".png").convertToFormat(QImage::Format_RGB32);
}

// Pixels of `a` and `b` whose colours differ by more than `threshold`; all of them when the
// sizes differ.
int PixelsUnlike(const QImage& a, const QImage& b, int threshold = 0) {
  if (a.size() != b.size()) return std::max(a.width() * a.height(), b.width() * b.height());
  int unlike = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
      unlike += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                    std::abs(qBlue(p) - qBlue(q)) >
                threshold;
    }
  return unlike;
}

// Cells of a coarse grid over the picture where the painted part of the page and the picture
// on screen clearly differ; text hinting and smoothing stay below the threshold.
int CellsUnlikeScreen(const QImage& page, const QImage& screen) {
  QRect painted;
  for (int y = 0; y < page.height(); ++y)
    for (int x = 0; x < page.width(); ++x)
      if (page.pixel(x, y) != qRgb(255, 255, 255)) painted |= QRect(x, y, 1, 1);
  const auto cells = [](const QImage& i) {
    return i.convertToFormat(QImage::Format_RGB32)
        .scaled(160, 113, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  };
  return PixelsUnlike(cells(page.copy(painted)), cells(screen), 90);
}

// The sample with one approach named longer than the box is wide, in `data`.
void SampleWithALongApproachName(const TempDir& data) {
  std::filesystem::copy(SampleDir(), data.path(), std::filesystem::copy_options::recursive);
  std::string bytes = Slurp(data.path() / "FSXFiles" / "sample_west.txt");
  bytes.replace(bytes.find("type=\"VORDME\""), 13, "type=\"LOCALIZER_BACKCOURSE\"");
  data.write("FSXFiles/sample_west.txt", bytes);
}

// The lists opened are readable and as wide as their rows.
TEST(WindowInput, ListsReadableAndAsWideAsTheirRows) {
  TempDir data;
  SampleWithALongApproachName(data);
  Pilot p(data.path(), "lists");
  auto* apps = p.at<QComboBox>("cmbAPP");
  auto* terms = p.at<QComboBox>("cmbTerm");
  const QImage start = p.shot("start");
  for (QComboBox* box : {apps, terms}) {  // disabled boxes still show their text
    EXPECT_GT(InkPixels(start, box->lineEdit()->geometry().translated(box->pos())), 30);
  }
  p.load("XWHL");
  ASSERT_TRUE(p.tabTo("cmbAPP"));
  p.key(Qt::Key_Down, Qt::AltModifier);
  ExpectRowsReadable(apps);
  const QString longest = "LOCALIZER_BACKCOURSE 9";
  ASSERT_EQ(apps->itemText(2), longest);
  EXPECT_GE(apps->view()->viewport()->width(),
            apps->view()->fontMetrics().horizontalAdvance(longest));
  p.shot("approach-list", apps->view()->window());
  for (Qt::Key k : {Qt::Key_End, Qt::Key_Home, Qt::Key_Return})  // a pick from the opened list
    QTest::keyClick(apps->view(), k);
  EXPECT_FALSE(apps->view()->isVisible());
  EXPECT_TRUE(p.store().AppSelected);
  EXPECT_EQ(p.store().SelApp, 0);
  EXPECT_EQ(terms->count(), 1);
  ASSERT_TRUE(p.tabTo("cmbTerm"));
  p.key(Qt::Key_F4);
  ExpectRowsReadable(terms);
  p.shot("terminal-list", terms->view()->window());
  QTest::keyClick(terms->view(), Qt::Key_Escape);
  EXPECT_FALSE(terms->view()->isVisible());
}

// Saved in every format and printed, the chart picked is the one on screen and the one
// velmora-chart draws; before a chart, and into a folder that can't be written, the caption
// says why.
TEST(WindowInput, PrintAndSaveAsOnScreen) {
  TempDir data, dir;
  SampleWithALongApproachName(data);
  const auto in = [&](const char* name) {
    return QString::fromStdString((dir.path() / name).string());
  };
  Pilot p(data.path(), "save");
  int asked = 0;
  std::optional<SaveChoice> choice;
  QString suggested;
  p.w.askSavePath = [&](const QString& name) {
    ++asked;
    suggested = name;
    return choice;
  };
  p.w.askPrinter = [&](QPrinter& printer) {
    ++asked;
    EXPECT_EQ(printer.pageLayout().orientation(), QPageLayout::Landscape);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(in("printed.pdf"));
    return true;
  };
  p.key(Qt::Key_P, Qt::ControlModifier);
  p.key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(asked, 0);
  EXPECT_EQ(p.w.windowTitle().left(20), "No chart to save yet");

  p.load("XWHL");
  const QImage loaded = p.w.chart()->image().copy();
  ASSERT_TRUE(p.tabTo("cmbAPP"));
  p.key(Qt::Key_Down);  // picks the first row
  ASSERT_EQ(p.store().SelApp, 0);
  const QImage screen = p.w.chart()->image().copy();

  // What velmora-chart draws for the same road, for the formats it can write itself.
  ChartOptions reference;
  reference.dataDir = data.path();
  reference.outPaths = {in("ref.svg").toStdString(), in("ref.pdf").toStdString()};
  for (const char* step : {"type:XWHL", "search", "load", "pick:0"}) {
    reference.steps.push_back(ParseStep(step));
  }
  std::ostringstream out, err;
  ASSERT_EQ(RunChart(reference, WritePicture, out, err), 0) << err.str();

  for (auto [name, scale] : {std::pair{"saved.png", screen.devicePixelRatio()},
                             {"saved.svg", 1.0},
                             {"saved.pdf", 1.0}}) {
    choice = SaveChoice{in(name), scale};
    p.key(Qt::Key_S, Qt::ControlModifier);
  }
  EXPECT_EQ(suggested, "XWHL-0-ILS_16L");
  // At 1.5 a few edge pixels of the replay fall otherwise than those drawn live.
  EXPECT_LT(PixelsUnlike(QImage(in("saved.png")), screen), 50);
  EXPECT_GT(PixelsUnlike(QImage(in("saved.png")), loaded), 5000);
  EXPECT_EQ(Slurp(dir.path() / "saved.svg"), Slurp(dir.path() / "ref.svg"));
  const QImage savedPdf = RenderPdf(in("saved.pdf"), 40);
  EXPECT_FALSE(savedPdf.isNull());
  EXPECT_EQ(savedPdf, RenderPdf(in("ref.pdf"), 40));
  // No half-written files beside the saved ones.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 7);

  p.key(Qt::Key_P, Qt::ControlModifier);
  const QImage page = RenderPdf(in("printed.pdf"), 90);
  ASSERT_FALSE(page.isNull());
  EXPECT_GT(page.width(), page.height());  // landscape
  EXPECT_EQ(Slurp(dir.path() / "printed.pdf").find("/Subtype /Image"),
            std::string::npos);  // vector
  const int unlike = CellsUnlikeScreen(page, screen);
  EXPECT_LT(unlike, 40);
  EXPECT_GT(CellsUnlikeScreen(page, loaded), 4 * unlike + 40);

  choice = SaveChoice{in("nowhere/x.png"), 1};
  p.key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(p.w.windowTitle().left(15), "Could not write");
  p.shot("save-failed");
}

// The profile pane beneath the chart follows the pick, shows what velmora-chart --profile
// draws, and hides and shows again by F7, by its button from the keyboard and by the mouse;
// the next window starts as the last one was left.
TEST(WindowInput, ProfilePaneFollowsThePickAndHidesOnRequest) {
  TempDir dir;
  const auto in = [&](const char* name) { return dir.path() / name; };
  {
    Pilot p(SampleDir(), "profile");
    auto* pane = p.at<ProfileView>("picProfile");
    auto* button = p.at<QPushButton>("cmdProfile");
    EXPECT_TRUE(pane->isVisible());
    EXPECT_EQ(button->text(), "Hide Profile\n(F7)");
    const QImage unpicked = pane->image().copy();
    p.load("xwhl");
    EXPECT_EQ(PixelsUnlike(pane->image(), unpicked), 0);  // a load picks nothing
    ASSERT_TRUE(p.tabTo("cmbAPP"));
    p.key(Qt::Key_Down);  // ILS 16L
    EXPECT_EQ(p.w.form().profile().approach, "ILS 16L");
    const QImage ils16L = pane->image().copy();
    EXPECT_GT(PixelsUnlike(ils16L, unpicked), 2000);
    p.shot("profile-ils16l");

    ChartOptions reference;
    reference.dataDir = SampleDir();
    reference.profilePath = in("ref.png");
    reference.scale = ils16L.devicePixelRatio();
    for (const char* step : {"type:XWHL", "search", "load", "pick:0"}) {
      reference.steps.push_back(ParseStep(step));
    }
    std::ostringstream out, err;
    ASSERT_EQ(RunChart(reference, WritePicture, out, err), 0) << err.str();
    EXPECT_LT(PixelsUnlike(QImage(QString::fromStdString(in("ref.png").string())), ils16L), 50);

    p.key(Qt::Key_Down);  // ILS 34R: the pane follows
    EXPECT_GT(PixelsUnlike(pane->image(), ils16L), 2000);

    p.key(Qt::Key_F7);
    QTest::qWait(20);
    EXPECT_FALSE(pane->isVisible());
    EXPECT_EQ(p.w.size(), QSize(1121, 698));
    EXPECT_EQ(button->text(), "Show Profile\n(F7)");
    EXPECT_EQ(p.w.form().store().SelApp, 1);  // hiding changes nothing else
    p.shot("profile-hidden");
    ASSERT_TRUE(p.tabTo("cmdProfile"));
    p.key(Qt::Key_Space);
    QTest::qWait(20);
    EXPECT_TRUE(pane->isVisible());
    EXPECT_EQ(p.w.size(), QSize(1121, 866));
    p.shot("profile-shown");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::qWait(20);
    EXPECT_FALSE(pane->isVisible());
  }
  MainWindow next(SampleDir(), "");
  next.show();
  EXPECT_FALSE(next.profileShown());
  EXPECT_FALSE(next.profile()->isVisible());
  EXPECT_EQ(next.size(), QSize(1121, 698));
}

}  // namespace
}  // namespace velmora::test
