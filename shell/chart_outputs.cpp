#include "shell/chart_outputs.h"

#include <fstream>
#include <ostream>
#include <vector>

#include "data/platform.h"
#include "data/text.h"
#include "geometry/svg_canvas.h"
#include "shell/chart_name.h"

namespace velmora {
namespace {

// Writes each page as its own picture into a folder.
class FolderKit final : public KitDocument {
 public:
  FolderKit(std::filesystem::path folder, std::string ext, double scale, PictureWriter write)
      : folder_(std::move(folder)), ext_(std::move(ext)), scale_(scale), write_(std::move(write)) {}
  bool add(const KitPage& page, std::ostream& err) override {
    const auto path = folder_ / (KitFileStem(page.code, page.row, page.approach) + ext_);
    return WriteOutput(path, PictureFiller(*page.picture, path, scale_, write_, err), err);
  }
  bool finish(const std::filesystem::path&, std::ostream&) override { return true; }

 private:
  std::filesystem::path folder_;
  std::string ext_;
  double scale_;
  PictureWriter write_;
};

}  // namespace

std::string PictureExtension(const std::filesystem::path& path) {
  return AsciiLowerCase(PathToUtf8(path.extension()));
}

bool WriteSvg(const RecordingCanvas& picture, const std::filesystem::path& path,
              std::ostream& err) {
  SvgCanvas svg(picture.size());
  picture.replay(svg);
  std::ofstream file(path, std::ios::binary);
  file << svg.document();
  file.close();
  if (!file) {
    err << "velmora-chart: cannot write " << PathToUtf8(path) << "\n";
    return false;
  }
  return true;
}

FileFiller PictureFiller(const RecordingCanvas& picture, const std::filesystem::path& path,
                         double scale, const PictureWriter& writePicture, std::ostream& err) {
  const bool svg = PictureExtension(path) == ".svg";
  return [=, &picture, &writePicture, &err](const std::filesystem::path& temp) {
    return svg ? WriteSvg(picture, temp, err) : writePicture(picture, temp, scale, err);
  };
}

bool WriteOutput(const std::filesystem::path& path, const FileFiller& fill, std::ostream& err) {
  std::string reason;
  if (WriteWhole(path, fill, reason)) return true;
  err << "velmora-chart: " << PathToUtf8(path) << " was not written\n";
  return false;
}

bool WriteOutput(const std::filesystem::path& path, std::string_view bytes, std::ostream& err) {
  std::string reason;
  if (WriteWhole(path, bytes, reason)) return true;
  err << "velmora-chart: " << PathToUtf8(path) << " was not written\n";
  return false;
}

bool ChartSink::open(const std::filesystem::path& path, std::ostream& stdOut, std::ostream& err) {
  if (path.empty()) return true;
  if (path == "-") {
    stream_ = &stdOut;
    return true;
  }
  std::string reason;
  if (!file_.open(path, reason)) {
    err << "velmora-chart: cannot write " << PathToUtf8(path) << "\n";
    return false;
  }
  path_ = path;
  toFile_ = true;
  stream_ = &file_.stream();
  return true;
}

bool ChartSink::commit(std::ostream& err) {
  if (!toFile_) return true;
  toFile_ = false;
  std::string reason;
  if (file_.commit(reason)) return true;
  err << "velmora-chart: cannot write " << PathToUtf8(path_) << "\n";
  return false;
}

std::unique_ptr<KitDocument> MakeFolderKit(const std::filesystem::path& folder,
                                           const ChartOptions& options,
                                           PictureWriter writePicture) {
  return std::make_unique<FolderKit>(folder, "." + options.format, options.scale,
                                     std::move(writePicture));
}

bool IsFolderOut(const std::filesystem::path& path) {
  // "DIR/" has no file name, whichever separator the system uses.
  return !path.has_filename() || std::filesystem::is_directory(path);
}

bool OutputFoldersExist(const ChartOptions& o, std::ostream& err) {
  std::vector<std::filesystem::path> outs = o.outPaths;
  for (const std::filesystem::path& profile : {o.profilePath, o.profileJsonPath}) {
    if (!profile.empty() && profile != "-") outs.push_back(profile);
  }
  for (const std::filesystem::path& out : outs) {
    std::filesystem::path folder = out.parent_path();
    if (o.allApproaches && IsFolderOut(out)) folder = out;
    if (!folder.empty() && !std::filesystem::is_directory(folder)) {
      err << "velmora-chart: the folder " << PathToUtf8(folder)
          << " does not exist; nothing written\n";
      return false;
    }
  }
  return true;
}

}  // namespace velmora
