#pragma once
// The painters of the chart, each a layer on the one canvas: the sheet (DisplayArpt), the
// plan (DrawArpt), the approach overlay (DrawApp) and its symbols. They share the pen as the
// chart's look requires: what one leaves, the next finds.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "data/store.h"
#include "geometry/canvas.h"
#include "geometry/mapping.h"

namespace velmora {

// Clears the canvas, draws title block, frequency list, runway list, warning and scale bar
// at fixed places, and ends with DrawArpt.
void DisplayArpt(Store& store, View& view, Canvas& canvas);

// Sets the origin for the present Zoom and draws reference point, ring, runways, NDBs and
// the VORs on the sheet. Draws nothing without an airport position.
void DrawArpt(const Store& store, View& view, Canvas& canvas);

// The overlay of the approach in slot SelApp, when AppSelected; appends its transitions to
// `termRows`. Rests on the origin of the last DrawArpt.
void DrawApp(Store& store, const View& view, Canvas& canvas, std::vector<std::string>& termRows);

// "09L" for runway 9 with designator LEFT; writes the padded runway and the one-letter
// designator back into the row.
std::string RunwayText(ApproachRow& approach);

// "3.00° W" for 3 and "19.00° E" for 341; empty for empty or unreadable text.
std::string VariationText(std::string_view magvar);

// Black triangle with its tip on the track, pointing along `course` (whole degrees).
void DrawCourseMark(Canvas& canvas, std::int32_t tipX, std::int32_t tipY, std::int32_t course);
// Green dart from the first fix (a notch between two barbs) to its tip at the runway fix.
void DrawArrowHead(Canvas& canvas, std::int32_t startX, std::int32_t startY, std::int32_t course,
                   std::int32_t tipX, std::int32_t tipY);

// Sets the print position and font, then prints.
void PrintAt(Canvas& canvas, std::int32_t x, std::int32_t y, int fontSize, bool bold,
             std::string_view text);

}  // namespace velmora
