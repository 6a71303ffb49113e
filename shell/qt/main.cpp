// velmora: the charting window. The command line, as one text, goes into the search box.

#include <QApplication>
#include <QStandardPaths>
#include <locale>
#include <stdexcept>

#include "shell/data_dir.h"
#include "shell/qt/main_window.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  // DME labels group digits as the machine writes numbers.
  try {
    std::locale::global(std::locale(""));
  } catch (const std::runtime_error&) {
  }
  std::string commandLine;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) commandLine += ' ';
    commandLine += argv[i];
  }
  const std::filesystem::path dataDir = velmora::ChooseDataDir(
      QCoreApplication::applicationDirPath().toStdString(),
      QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString());
  velmora::MainWindow window(dataDir, commandLine);
  if (const std::string hint = velmora::NoDataCaption(dataDir); !hint.empty()) {
    window.setWindowTitle(QString::fromStdString(hint));
  }
  window.show();
  return app.exec();
}
