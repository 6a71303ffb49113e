#pragma once
// Pictures of a finished chart: PNG from the same raster canvas as the window, PDF as one
// landscape vector page.

#include <QPainter>
#include <QRectF>
#include <filesystem>
#include <iosfwd>

#include "geometry/canvas.h"

namespace velmora {

// By extension: .png (at `scale` pixels per screen pixel) or .pdf.
bool WritePicture(const RecordingCanvas& picture, const std::filesystem::path& path, double scale,
                  std::ostream& err);

// Paints `picture` as large as fits into `area` (device units), keeping its shape, clipped to
// the sheet; `dpi` is the device's resolution, which sets the font size. PDF pages and printers.
void PaintPicture(QPainter& painter, const RecordingCanvas& picture, const QRectF& area, double dpi);

}  // namespace velmora
