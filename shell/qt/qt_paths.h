#pragma once
// Paths to and from Qt's text. Windows names files in UTF-16, which QString holds as is;
// narrow text would pass through the ANSI code page there and lose a "Zürich". Elsewhere file
// names are bytes, read as UTF-8 as Qt reads them.

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora {

inline QString ToQString(const std::filesystem::path& path) {
#ifdef _WIN32
  return QString::fromStdU16String(path.u16string());
#else
  return QString::fromStdString(path.string());
#endif
}

inline std::filesystem::path ToPath(const QString& text) {
#ifdef _WIN32
  return std::filesystem::path(text.toStdU16String());
#else
  return std::filesystem::path(text.toStdString());
#endif
}

// The arguments after the program's name that Qt left (it takes its own, such as -platform),
// as UTF-8 on Windows, where argv holds the ANSI code page; elsewhere argv's bytes.
inline std::vector<std::string> ProgramArguments(int argc, char** argv) {
#ifdef _WIN32
  (void)argc;
  (void)argv;
  std::vector<std::string> args;
  const QStringList all = QCoreApplication::arguments();
  for (qsizetype i = 1; i < all.size(); ++i) args.push_back(all[i].toStdString());
  return args;
#else
  return std::vector<std::string>(argv + 1, argv + argc);
#endif
}

}  // namespace velmora
