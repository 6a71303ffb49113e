#pragma once
// Pictures of a finished chart: PNG from the same raster canvas as the window, PDF as one
// landscape vector page.

#include <filesystem>
#include <iosfwd>

#include "geometry/canvas.h"

namespace velmora {

// By extension: .png (at `scale` pixels per screen pixel) or .pdf.
bool WritePicture(const RecordingCanvas& picture, const std::filesystem::path& path, double scale,
                  std::ostream& err);

}  // namespace velmora
