// velmora-chart: the window's logic without a window, for scripts, tests and printing.

#include <unistd.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "shell/chart_run.h"
#include "shell/qt/pictures.h"

int main(int argc, char** argv) {
  // Fonts need a GUI application, but never a display.
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  // Qt wants a private runtime folder even offscreen; give it one rather than a warning.
  if (std::getenv("XDG_RUNTIME_DIR") == nullptr) {
    const auto dir =
        std::filesystem::temp_directory_path() / ("velmora-runtime-" + std::to_string(getuid()));
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    std::filesystem::permissions(dir, std::filesystem::perms::owner_all, ec);
    setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
  }
  QGuiApplication app(argc, argv);
  std::vector<std::string> args(argv + 1, argv + argc);
  const std::filesystem::path exeDir = QCoreApplication::applicationDirPath().toStdString();
  auto options = velmora::ParseChartArgs(args, exeDir, std::cerr);
  if (!options) return 2;
  options->progress = isatty(STDERR_FILENO) == 1;
  return velmora::RunChart(*options, velmora::WritePicture, velmora::MakeKitPdf, std::cout,
                           std::cerr);
}
