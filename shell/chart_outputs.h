#pragma once
// What velmora-chart writes: the trace and state streams, pictures in their formats and the
// pages of a kit. Formats that need a toolkit come in through `PictureWriter` and `KitMaker`;
// every file is written whole or not at all (data/atomic_write.h).

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "data/atomic_write.h"
#include "geometry/canvas.h"
#include "shell/chart_options.h"

namespace velmora {

// Writes `picture` to `path` in the format its extension names; false with a message on
// failure or for an unknown format.
using PictureWriter =
    std::function<bool(const RecordingCanvas& picture, const std::filesystem::path& path,
                       double scale, std::ostream& err)>;

// ".png", ".svg", ".pdf": the extension in lower case, which names the picture's format.
std::string PictureExtension(const std::filesystem::path& path);

// SVG is written by the core itself.
bool WriteSvg(const RecordingCanvas& picture, const std::filesystem::path& path, std::ostream& err);

// The one choice of format for the command line, the kit and the window: a filler for
// WriteWhole that writes SVG by the core and anything else by `writePicture`, into the
// temporary file of `path`. The arguments must outlive the filler.
FileFiller PictureFiller(const RecordingCanvas& picture, const std::filesystem::path& path,
                         double scale, const PictureWriter& writePicture, std::ostream& err);

// WriteWhole with velmora-chart's message on failure.
bool WriteOutput(const std::filesystem::path& path, const FileFiller& fill, std::ostream& err);
bool WriteOutput(const std::filesystem::path& path, std::string_view bytes, std::ostream& err);

// The trace or the states: "-" is `stdOut`, a file is written whole once the run ends, an
// empty path is no stream at all.
class ChartSink {
 public:
  bool open(const std::filesystem::path& path, std::ostream& stdOut, std::ostream& err);
  std::ostream* get() const { return stream_; }
  bool commit(std::ostream& err);

 private:
  std::filesystem::path path_;
  WholeFile file_;
  bool toFile_ = false;
  std::ostream* stream_ = nullptr;
};

// One page of a trip kit: an airport's sheet (row -1) or the chart of one approach row.
struct KitPage {
  std::string code;      // as typed, UTF-8
  int row = -1;          // the row of cmbAPP, from 0
  std::string approach;  // the row's text, UTF-8
  std::string title;     // "KSEA ILS 16L"; the code alone for the sheet
  const RecordingCanvas* picture = nullptr;
};

// Collects the pages of a kit into one document; nothing reaches `path` unless finish()
// succeeds.
class KitDocument {
 public:
  virtual ~KitDocument() = default;
  virtual bool add(const KitPage& page, std::ostream& err) = 0;
  virtual bool finish(const std::filesystem::path& path, std::ostream& err) = 0;
};
// A document for `path` (by extension), or null with a message when the format has none.
using KitMaker = std::function<std::unique_ptr<KitDocument>(
    const std::filesystem::path& path, const ChartOptions& options, std::ostream& err)>;

// A kit written as one picture per page into the folder `path`, named by KitFileStem.
std::unique_ptr<KitDocument> MakeFolderKit(const std::filesystem::path& folder,
                                           const ChartOptions& options, PictureWriter writePicture);

// "DIR/" or an existing folder: a kit goes there as pictures.
bool IsFolderOut(const std::filesystem::path& path);

// Before any work: a folder that isn't there can't take the outputs.
bool OutputFoldersExist(const ChartOptions& options, std::ostream& err);

}  // namespace velmora
