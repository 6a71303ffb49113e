#pragma once
// The window's import: the simulator folder (or its scenery.cfg, where the simulator keeps it
// elsewhere) asked for, and any import run under a progress bar with Cancel.

#include <QString>
#include <filesystem>
#include <iosfwd>
#include <optional>

#include "import/run.h"

class QWidget;

namespace velmora {

// The simulator folder the pilot chose; none when he cancelled.
std::optional<std::filesystem::path> AskSimulatorFolder(QWidget* parent);
// A scenery.cfg for a folder where none was found; none when he cancelled.
std::optional<std::filesystem::path> AskSceneryFile(QWidget* parent, const QString& why);

// `options` run with a modal progress bar whose Cancel stops the import, which then changes
// nothing. Messages go to `messages`.
ImportResult RunImportWithProgress(QWidget* parent, ImportOptions options, std::ostream& messages);

}  // namespace velmora
