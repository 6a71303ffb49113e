// velmora-chart: the window's logic without a window, for scripts, tests and printing.

#include <QCoreApplication>
#include <QGuiApplication>

#include <cstdlib>
#include <iostream>

#include "shell/chart_run.h"
#include "shell/qt/pictures.h"

int main(int argc, char** argv) {
  // Fonts need a GUI application, but never a display.
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QGuiApplication app(argc, argv);
  std::vector<std::string> args(argv + 1, argv + argc);
  const std::filesystem::path exeDir =
      QCoreApplication::applicationDirPath().toStdString();
  const auto options = velmora::ParseChartArgs(args, exeDir, std::cerr);
  if (!options) return 2;
  return velmora::RunChart(*options, velmora::WritePicture, std::cout, std::cerr);
}
