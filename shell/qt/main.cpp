// velmora: the charting window. The command line, as one text, goes into the search box.

#include <QApplication>
#include <chrono>
#include <cstdio>
#include <locale>
#include <stdexcept>

#include "data/platform.h"
#include "shell/data_dir.h"
#include "shell/qt/main_window.h"
#include "shell/qt/qt_canvas.h"
#include "shell/qt/qt_paths.h"

namespace {

// With VELMORA_PAINT_TIME set, the wall-clock time of the window's first paint goes to stderr
// as "first paint NS" (ns since the epoch), so bench/window_figures.sh measures the start
// itself rather than how often it looks for the window.
class FirstPaint final : public QObject {
 public:
  explicit FirstPaint(const QWidget& window) : window_(window) {}
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Paint && widget != nullptr && widget->window() == &window_) {
      const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(
          std::chrono::system_clock::now().time_since_epoch());
      std::fprintf(stderr, "first paint %lld\n", static_cast<long long>(ns.count()));
      std::fflush(stderr);
      QCoreApplication::instance()->removeEventFilter(this);
    }
    return false;
  }

 private:
  const QWidget& window_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  // DME labels group digits as the machine writes numbers.
  try {
    std::locale::global(std::locale(""));
  } catch (const std::runtime_error&) {
  }
  const std::vector<std::string> args = velmora::ProgramArguments(argc, argv);
  std::string commandLine;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (i > 0) commandLine += ' ';
    commandLine += args[i];
  }
  const std::filesystem::path exeDir = velmora::ToPath(QCoreApplication::applicationDirPath());
  velmora::AddBundledFonts(exeDir);
  const std::filesystem::path dataDir = velmora::ChooseDataDir(exeDir, velmora::UserDataDir());
  velmora::MainWindow window(dataDir, commandLine);
  if (const std::string hint = velmora::NoDataCaption(dataDir); !hint.empty()) {
    window.setWindowTitle(QString::fromStdString(hint));
  }
  FirstPaint firstPaint(window);
  if (!qEnvironmentVariableIsEmpty("VELMORA_PAINT_TIME")) app.installEventFilter(&firstPaint);
  window.show();
  return app.exec();
}
