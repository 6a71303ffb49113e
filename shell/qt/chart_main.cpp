// velmora-chart: the window's logic without a window, for scripts, tests and printing.

#include <QCoreApplication>
#include <QGuiApplication>
#include <filesystem>
#include <iostream>

#include "data/platform.h"
#include "shell/chart_run.h"
#include "shell/data_dir.h"
#include "shell/qt/pictures.h"
#include "shell/qt/qt_canvas.h"
#include "shell/qt/qt_paths.h"

int main(int argc, char** argv) {
  // Fonts need a GUI application, but never a display. Windows' own platform needs none and
  // finds the system's fonts, where offscreen would look in Qt's folder alone.
#ifndef _WIN32
  if (!velmora::GetEnv("QT_QPA_PLATFORM")) velmora::SetEnv("QT_QPA_PLATFORM", "offscreen");
#endif
  velmora::ProvideRuntimeDir();
  velmora::SetStdoutBinary();
  QGuiApplication app(argc, argv);
  const std::filesystem::path exeDir = velmora::ToPath(QCoreApplication::applicationDirPath());
  velmora::AddBundledFonts(exeDir);
  const std::filesystem::path dataDir = velmora::ChooseDataDir(exeDir, velmora::UserDataDir());
  auto options = velmora::ParseChartArgs(velmora::ProgramArguments(argc, argv), dataDir, std::cerr);
  if (!options) return 2;
  options->progress = velmora::StderrIsTerminal();
  return velmora::RunChart(*options, velmora::WritePicture, velmora::MakeKitPdf, std::cout,
                           std::cerr);
}
