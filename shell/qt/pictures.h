#pragma once
// Pictures of a finished chart: PNG from the same raster canvas as the window, PDF as one
// landscape vector page; and trip kits, many charts in one PDF with bookmarks.

#include <QPainter>
#include <QRectF>
#include <filesystem>
#include <iosfwd>
#include <memory>

#include "geometry/canvas.h"
#include "shell/chart_run.h"
#include "shell/qt/qt_canvas.h"

namespace velmora {

// By extension: .png (at `scale` pixels per screen pixel) or .pdf.
bool WritePicture(const RecordingCanvas& picture, const std::filesystem::path& path, double scale,
                  std::ostream& err);

// Paints `picture` as large as fits into `area` (device units), keeping its shape, clipped to
// the sheet; `dpi` is the device's resolution, which sets the font size. PDF pages and printers.
void PaintPicture(QPainter& painter, const RecordingCanvas& picture, const QRectF& area,
                  double dpi);
// The same onto a canvas kept from page to page, set up for `painter` and the device's dpi.
void PaintPicture(QPainter& painter, const RecordingCanvas& picture, const QRectF& area,
                  QtCanvas& canvas);

// A kit PDF for velmora-chart: landscape pages of `options.page` (else the locale's paper,
// else A4), each chart in vector, and a bookmark per airport with one per approach below it.
std::unique_ptr<KitDocument> MakeKitPdf(const std::filesystem::path& path,
                                        const ChartOptions& options, std::ostream& err);

}  // namespace velmora
