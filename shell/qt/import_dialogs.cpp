#include "shell/qt/import_dialogs.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QProgressDialog>

#include "shell/qt/qt_paths.h"

namespace velmora {

std::optional<std::filesystem::path> AskSimulatorFolder(QWidget* parent) {
  const QString dir = QFileDialog::getExistingDirectory(
      parent, "Import from the simulator: its folder (where fsx.exe or Prepar3D.exe is)");
  if (dir.isEmpty()) return std::nullopt;
  return ToPath(dir);
}

std::optional<std::filesystem::path> AskSceneryFile(QWidget* parent, const QString& why) {
  const QString file =
      QFileDialog::getOpenFileName(parent, why, QString(), "Scenery library (scenery.cfg *.cfg)");
  if (file.isEmpty()) return std::nullopt;
  return ToPath(file);
}

ImportResult RunImportWithProgress(QWidget* parent, ImportOptions options, std::ostream& messages) {
  QProgressDialog bar("Importing...", "Cancel", 0, 1, parent);
  bar.setWindowTitle("Velmora - import");
  bar.setWindowModality(Qt::WindowModal);
  bar.setMinimumDuration(0);
  bar.setValue(0);
  options.progress = [&bar](const ImportProgress& p) {
    bar.setMaximum(std::max(p.total, 1));
    bar.setValue(p.done);
    bar.setLabelText(
        QString("%1 file %2 of %3")
            .arg(QString::fromUtf8(p.step.data(), static_cast<qsizetype>(p.step.size())))
            .arg(p.done + 1)
            .arg(p.total));
    QCoreApplication::processEvents();
    return !bar.wasCanceled();
  };
  return RunImport(options, messages);
}

}  // namespace velmora
