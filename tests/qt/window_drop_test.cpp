// Airport files dropped on the real window, and the simulator's scenery library through Ctrl+I,
// are imported, found by the next search and charted.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "shell/qt/main_window.h"
#include "tests/import/layouts.h"
#include "tests/support/bgl_builder.h"
#include "tests/test_support.h"

namespace velmora::test {
namespace {

// A drag of `paths` entering the window and dropped on it, as the desktop sends them.
bool Drop(MainWindow& w, const std::vector<std::filesystem::path>& paths) {
  QMimeData data;
  QList<QUrl> urls;
  for (const auto& p : paths) urls << QUrl::fromLocalFile(QString::fromStdString(p.string()));
  data.setUrls(urls);
  const QPoint at(200, 200);
  QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&w, &enter);
  if (!enter.isAccepted()) return false;
  QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&w, &drop);
  return drop.isAccepted();
}

TEST(WindowDrop, DroppedFilesAreImportedAndCharted) {
  TempDir dir;
  const auto data = dir.path() / "data";
  std::filesystem::create_directories(data);
  for (const SourceFile& f : SampleSources(SourceStyles().front())) {
    dir.write("decompiled/" + std::filesystem::path(f.name).stem().string() + ".xml", f.bytes);
  }
  MainWindow w(data, "");
  w.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));

  ASSERT_TRUE(Drop(w, {dir.path() / "decompiled/sample_west.xml", dir.path() / "decompiled"}));
  EXPECT_EQ(w.windowTitle().toStdString(),
            "Imported 5 airports, 9 approaches in 2 files, 0 files skipped");
  EXPECT_TRUE(std::filesystem::exists(data / "FSXFiles/sample_multi.xml"));

  QTest::keyClicks(w.findChild<QWidget*>("txtSearch"), "XWHL");
  QTest::mouseClick(w.findChild<QWidget*>("cmdSearch"), Qt::LeftButton);
  QTest::mouseClick(w.findChild<QWidget*>("cmdArpt"), Qt::LeftButton);
  EXPECT_EQ(w.form().store().ArptIdent, "XWHL");
  EXPECT_EQ(w.form().store().ArptLat, "N46 18.40");
  EXPECT_TRUE(w.chart()->hasChart());
  const QString shots = VELMORA_SHOTS_DIR;
  QDir().mkpath(shots);
  EXPECT_TRUE(w.grab().toImage().save(shots + "/drop-charted.png"));
}

TEST(WindowDrop, ABrokenFileIsNamedInTheCaption) {
  TempDir dir;
  const auto broken = dir.write("broken.xml", "<FSData>\n<Airport ident=\"XBAD\">\n");
  MainWindow w(dir.path() / "data", "");
  ASSERT_TRUE(Drop(w, {broken}));
  EXPECT_EQ(w.windowTitle().toStdString(),
            "Imported 0 airports, 0 approaches in 0 files, 1 file skipped - " + broken.string() +
                ":3: no element found - nothing of it imported");
}

// A simulator folder whose library holds XAAA in one area and XBBB in a second.
std::filesystem::path MakeSimulator(const TempDir& dir) {
  std::string cfg;
  for (const char* ident : {"XAAA", "XBBB"}) {
    BglAirportSpec a;
    a.ident = ident;
    a.region = "XX";
    a.lat = a.lon = 10;
    BglRunwaySpec r;
    r.number = 16;
    r.lat = r.lon = 10;
    r.length = 2000;
    r.width = 45;
    a.runways.push_back(r);
    BglFileSpec contents;
    contents.airports.push_back(a);
    dir.write(std::string("sim/Addon/") + ident + "/scenery/" + ident + ".bgl",
              BuildBgl(contents).bytes);
    cfg +=
        std::string("[Area.") + std::to_string(cfg.size()) + "]\r\nLocal=Addon\\" + ident + "\r\n";
  }
  dir.write("sim/scenery.cfg", cfg);
  return dir.path() / "sim";
}

// Shortcuts reach an active window only.
void ShowActive(MainWindow& w) {
  w.show();
  w.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
}

struct Seen {
  bool shown = false;
  int maximum = 0;
  QString label;
};

// What the import's progress bar shows once it is up and counting files; with `cancel`, its
// Cancel is then pressed. The import lets events through between files, so the watch runs.
void WatchProgress(MainWindow& w, Seen& seen, bool cancel) {
  auto* timer = new QTimer(&w);
  QObject::connect(timer, &QTimer::timeout, &w, [&w, &seen, cancel, timer] {
    auto* bar = w.findChild<QProgressDialog*>();
    if (bar == nullptr || !bar->isVisible() || bar->maximum() < 2) return;
    timer->stop();
    seen = {true, bar->maximum(), bar->labelText()};
    const QString shots = VELMORA_SHOTS_DIR;
    QDir().mkpath(shots);
    bar->grab().toImage().save(shots + "/import-progress.png");
    if (cancel) QTest::mouseClick(bar->findChild<QPushButton*>(), Qt::LeftButton);
  });
  timer->start(0);
}

// Ctrl+I on the shown window, the simulator folder chosen; what its progress bar showed.
Seen ImportByCtrlI(MainWindow& w, const std::filesystem::path& sim, bool cancel) {
  w.askSimulatorFolder = [sim] { return std::optional(sim); };
  ShowActive(w);
  Seen seen;
  WatchProgress(w, seen, cancel);
  QTest::keyClick(&w, Qt::Key_I, Qt::ControlModifier);
  return seen;
}

TEST(WindowImport, CtrlIImportsTheSimulatorsLibraryUnderAProgressBar) {
  TempDir dir;
  MainWindow w(dir.path() / "data", "");
  const Seen seen = ImportByCtrlI(w, MakeSimulator(dir), false);
  EXPECT_TRUE(seen.shown);
  EXPECT_EQ(seen.maximum, 2);
  EXPECT_EQ(seen.label.toStdString(), "Reading file 2 of 2");
  EXPECT_EQ(w.windowTitle().toStdString(),
            "Imported 2 airports, 0 approaches in 2 files, 0 files skipped");
  QTest::keyClicks(w.findChild<QWidget*>("txtSearch"), "XBBB");
  QTest::mouseClick(w.findChild<QWidget*>("cmdSearch"), Qt::LeftButton);
  QTest::mouseClick(w.findChild<QWidget*>("cmdArpt"), Qt::LeftButton);
  EXPECT_EQ(w.form().store().ArptIdent, "XBBB");

  ShowActive(w);
  QTest::keyClick(&w, Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(w.windowTitle().toStdString(), "unchanged: 2 files as the last import found them");
}

TEST(WindowImport, CancelLeavesTheDataAsItWas) {
  TempDir dir;
  MainWindow w(dir.path() / "data", "");
  const Seen seen = ImportByCtrlI(w, MakeSimulator(dir), true);
  EXPECT_TRUE(seen.shown);
  EXPECT_EQ(w.windowTitle().toStdString(), "import cancelled - nothing changed");
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "data/FSXFiles/XAAA.xml"));
}

TEST(WindowImport, NoLibraryFoundAsksForIt) {
  TempDir dir;
  const auto sim = MakeSimulator(dir);
  std::filesystem::rename(sim / "scenery.cfg", dir.path() / "my.cfg");
  MainWindow w(dir.path() / "data", "");
  w.askSimulatorFolder = [&] { return std::optional(sim); };
  QString asked;
  w.askSceneryFile = [&](const QString& why) {
    asked = why;
    return std::optional(dir.path() / "my.cfg");
  };
  ShowActive(w);
  QTest::keyClick(&w, Qt::Key_I, Qt::ControlModifier);
  EXPECT_TRUE(asked.startsWith("No scenery.cfg found for "));
  EXPECT_EQ(w.windowTitle().toStdString(),
            "Imported 2 airports, 0 approaches in 2 files, 0 files skipped");
}

TEST(WindowImport, ADroppedSceneryCfgImportsItsLibrary) {
  TempDir dir;
  const auto sim = MakeSimulator(dir);
  MainWindow w(dir.path() / "data", "");
  ASSERT_TRUE(Drop(w, {sim / "scenery.cfg"}));
  EXPECT_EQ(w.windowTitle().toStdString(),
            "Imported 2 airports, 0 approaches in 2 files, 0 files skipped");
}

}  // namespace
}  // namespace velmora::test
