#include "shell/qt/pictures.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <algorithm>
#include <ostream>

#include "shell/chart_run.h"
#include "shell/qt/qt_canvas.h"

namespace velmora {
namespace {

bool WritePdf(const RecordingCanvas& picture, const QString& path) {
  QPdfWriter writer(path);
  writer.setPageLayout(
      QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape, QMarginsF(10, 10, 10, 10)));
  writer.setResolution(1200);
  writer.setTitle(QStringLiteral("Velmora chart - not for real navigation"));
  QPainter painter;
  if (!painter.begin(&writer)) return false;
  PaintPicture(painter, picture, QRectF(0, 0, writer.width(), writer.height()),
               writer.resolution());
  return painter.end();
}

}  // namespace

void PaintPicture(QPainter& painter, const RecordingCanvas& picture, const QRectF& area,
                  double dpi) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  // The canvas counts screen pixels; fit them to the area.
  const double pixels = Canvas::kTwipsPerPixel;
  const double fit = std::min(area.width() / (Canvas::Width / pixels),
                              area.height() / (Canvas::Height / pixels));
  painter.translate(area.topLeft());
  painter.scale(fit, fit);
  painter.setClipRect(QRectF(0, 0, Canvas::Width / pixels, Canvas::Height / pixels));
  QtCanvas canvas(&painter, 96.0 / dpi);
  picture.replay(canvas);
  painter.restore();
}

bool WritePicture(const RecordingCanvas& picture, const std::filesystem::path& path, double scale,
                  std::ostream& err) {
  const std::string ext = PictureExtension(path);
  const QString file = QString::fromStdString(path.string());
  bool ok = false;
  if (ext == ".png") {
    RasterCanvas canvas(scale);
    picture.replay(canvas);
    ok = canvas.image().save(file, "PNG");
  } else if (ext == ".pdf") {
    ok = WritePdf(picture, file);
  } else {
    err << "velmora-chart: " << path.string() << ": pictures are .png, .svg or .pdf\n";
    return false;
  }
  if (!ok) err << "velmora-chart: cannot write " << path.string() << "\n";
  return ok;
}

}  // namespace velmora
