#pragma once
// frmArpt on Qt: places the controls, shows the state of ArptForm and forwards events to it.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>
#include <filesystem>
#include <memory>

#include "data/store.h"
#include "shell/form.h"
#include "shell/qt/qt_canvas.h"

namespace velmora {

// picArpt: shows the raster picture and reports mouse presses in twips.
class ChartView final : public QWidget {
  Q_OBJECT
 public:
  explicit ChartView(QWidget* parent);
  Canvas& canvas() { return tee_; }
  const QImage& image() const { return raster_.image(); }

 signals:
  void pressed(int button, int shift, double x, double y);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  // The recording lets the picture be painted anew at another device pixel ratio.
  RecordingCanvas recording_;
  RasterCanvas raster_;
  TeeCanvas tee_;
};

class MainWindow final : public QWidget {
  Q_OBJECT
 public:
  MainWindow(std::filesystem::path dataDir, const std::string& commandLine);
  ~MainWindow() override;

  const ArptForm& form() const { return *form_; }
  ChartView* chart() const { return picArpt_; }

  // The same as a user's click or pick, for tests and scripted screenshots.
  void clickSearch(const QString& code);
  void clickLoad() { cmdArpt_->click(); }
  void pickApproach(int row);
  void clickZoomIn() { cmdPlus_->click(); }
  void clickZoomOut() { cmdMinus_->click(); }
  void clickResetZoom() { cmdZoom_->click(); }
  void clickChart(double xTwips, double yTwips);

 private:
  template <class Handler>
  void run(Handler handler);
  void showState(const Controls& c);

  std::unique_ptr<Store> store_;
  ChartView* picArpt_;
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
