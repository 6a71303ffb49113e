#include "shell/qt/import_dialogs.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QProgressDialog>

#include "shell/qt/qt_paths.h"

namespace velmora {

namespace {

// A dialog object as the save dialog uses, which draws itself on every desktop; the static
// helpers may hand over to a desktop portal that draws nothing where none runs.
std::optional<std::filesystem::path> AskPath(QWidget* parent, const QString& title,
                                             QFileDialog::FileMode mode, const QString& filter) {
  QFileDialog dialog(parent, title);
  dialog.setFileMode(mode);
  if (mode == QFileDialog::Directory) dialog.setOption(QFileDialog::ShowDirsOnly);
  if (!filter.isEmpty()) dialog.setNameFilter(filter);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return ToPath(dialog.selectedFiles().front());
}

}  // namespace

std::optional<std::filesystem::path> AskSimulatorFolder(QWidget* parent) {
  return AskPath(parent, "Import from the simulator: its folder (where fsx.exe or Prepar3D.exe is)",
                 QFileDialog::Directory, "");
}

std::optional<std::filesystem::path> AskSceneryFile(QWidget* parent, const QString& why) {
  return AskPath(parent, why, QFileDialog::ExistingFile, "Scenery library (scenery.cfg *.cfg)");
}

ImportResult RunImportWithProgress(QWidget* parent, ImportOptions options, std::ostream& messages) {
  QProgressDialog bar("Importing...", "Cancel", 0, 1, parent);
  bar.setWindowTitle("Velmora - import");
  bar.setWindowModality(Qt::WindowModal);
  bar.setMinimumDuration(0);
  bar.setValue(0);
  options.progress = [&bar](const ImportProgress& p) {
    // The text first: a modal bar lets events through as its value is set.
    bar.setLabelText(
        QString("%1 file %2 of %3")
            .arg(QString::fromUtf8(p.step.data(), static_cast<qsizetype>(p.step.size())))
            .arg(p.done + 1)
            .arg(p.total));
    bar.setMaximum(std::max(p.total, 1));
    bar.setValue(p.done);
    QCoreApplication::processEvents();
    return !bar.wasCanceled();
  };
  return RunImport(options, messages);
}

}  // namespace velmora
