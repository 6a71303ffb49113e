#pragma once
// frmArpt on Qt: places the controls, shows the state of ArptForm and forwards events to it.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "data/store.h"
#include "import/run.h"
#include "shell/form.h"
#include "shell/qt/qt_canvas.h"

class QPrinter;

namespace velmora {

// Tells whether anything stands on the picture since its last Cls.
class InkCanvas final : public Canvas {
 public:
  bool inked() const { return inked_; }
  void drawCls() override { inked_ = false; }
  void drawLine(const Pen&, std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {
    inked_ = true;
  }
  void drawCircle(const Pen&, std::int32_t, std::int32_t, std::int32_t) override { inked_ = true; }
  void drawText(const Pen&, std::string_view) override { inked_ = true; }

 private:
  bool inked_ = false;
};

// picArpt: shows the raster picture, reports mouse presses in twips, wheel notches and the
// zoom keys.
class ChartView final : public QWidget {
  Q_OBJECT
 public:
  explicit ChartView(QWidget* parent);
  Canvas& canvas() { return tee_; }
  const QImage& image() const { return raster_.image(); }
  const RecordingCanvas& recording() const { return recording_; }
  bool hasChart() const { return ink_.inked(); }

 signals:
  void pressed(int button, int shift, double x, double y);
  // +1 zoom in, -1 zoom out: one wheel notch or one press of + or -.
  void zoomStep(int direction);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  // The recording lets the picture be painted anew at another device pixel ratio, printed
  // and saved exactly as shown.
  RecordingCanvas recording_;
  RasterCanvas raster_;
  InkCanvas ink_;
  TeeCanvas tee_;
  int wheelEighths_ = 0;  // eighths of a degree not yet spent on a step
};

// picProfile: the profile of the approach picked, beneath the chart.
class ProfileView final : public QWidget {
  Q_OBJECT
 public:
  explicit ProfileView(QWidget* parent);
  Canvas& canvas() { return tee_; }
  const QImage& image() const { return raster_.image(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  RecordingCanvas recording_;
  RasterCanvas raster_;
  TeeCanvas tee_;
};

// What the window keeps between runs (the profile pane shown or hidden), in the user's
// settings: ~/.config/Velmora/velmora.conf, the registry on Windows.
std::unique_ptr<QSettings> WindowSettings();

struct SaveChoice {
  QString path;
  double scale = 1.0;  // PNG pixels per screen pixel
};

class MainWindow final : public QWidget {
  Q_OBJECT
 public:
  MainWindow(std::filesystem::path dataDir, const std::string& commandLine);
  ~MainWindow() override;

  const ArptForm& form() const { return *form_; }
  ChartView* chart() const { return picArpt_; }
  ProfileView* profile() const { return picProfile_; }
  bool profileShown() const { return profileShown_; }

  // The dialogs, replaceable so that tests need no modal window. askPrinter sets up the
  // printer and says whether to print; askSavePath gets the suggested file name.
  std::function<bool(QPrinter&)> askPrinter;
  std::function<std::optional<SaveChoice>(const QString& suggested)> askSavePath;
  // askSimulatorFolder gets the simulator folder; askSceneryFile its scenery.cfg where none
  // is found for it, told why.
  std::function<std::optional<std::filesystem::path>()> askSimulatorFolder;
  std::function<std::optional<std::filesystem::path>(const QString& why)> askSceneryFile;

  void printChart();
  void saveChart();
  // The scenery library of a simulator folder, as velmora-import --sim reads it.
  void importFromSimulator();
  // Shows or hides the profile pane; the window grows or shrinks by its height.
  void toggleProfile();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  // Files and folders dropped here are imported into the data folder, as velmora-import does.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  template <class Handler>
  void run(Handler handler);
  void makeControls();
  void placeControls();
  void connectControls();
  void showState(const Controls& c);
  // A pick of cmbAPP's row, by the mouse or by the keyboard.
  void pick(int row);
  void pickShownRow();
  // Runs the import under a progress bar and tells the result in the caption.
  void importAndTell(const ImportOptions& options);
  void showProfileButton();

  std::unique_ptr<Store> store_;
  std::filesystem::path dataDir_;
  ChartView* picArpt_;
  ProfileView* picProfile_;
  QPushButton* cmdProfile_;
  bool profileShown_ = true;
  QLineEdit* txtSearch_;
  QPushButton* cmdSearch_;
  QLabel* lblSearch_;
  QPushButton* cmdExit_;
  QPushButton* cmdArpt_;
  QPushButton* cmdPlus_;
  QPushButton* cmdMinus_;
  QPushButton* cmdZoom_;
  QComboBox* cmbAPP_;
  QComboBox* cmbTerm_;
  std::unique_ptr<ArptForm> form_;
};

}  // namespace velmora
