// Airport files dropped on the real window are imported, found by the next search and charted.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include "shell/qt/main_window.h"
#include "tests/import/layouts.h"
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

}  // namespace
}  // namespace velmora::test
