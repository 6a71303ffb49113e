// velmora: the charting window. The command line, as one text, goes into the search box.

#include <QApplication>
#include <QStandardPaths>
#include <locale>
#include <stdexcept>

#include "shell/data_dir.h"
#include "shell/qt/main_window.h"
#include "shell/qt/qt_canvas.h"
#include "shell/qt/qt_paths.h"

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
  const std::filesystem::path dataDir = velmora::ChooseDataDir(
      exeDir, velmora::ToPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)));
  velmora::MainWindow window(dataDir, commandLine);
  if (const std::string hint = velmora::NoDataCaption(dataDir); !hint.empty()) {
    window.setWindowTitle(QString::fromStdString(hint));
  }
  window.show();
  return app.exec();
}
