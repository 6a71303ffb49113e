#pragma once
// velmora-chart without its pictures: runs the session of steps or the trip kit the command
// line asks for and writes the outputs. Picture formats that need a toolkit come in through
// `PictureWriter` and `KitMaker`.

#include <iosfwd>

#include "shell/chart_options.h"
#include "shell/chart_outputs.h"

namespace velmora {

// Exit status: 0 done, 1 the airport was not found or an output could not be written, 2 the
// command line or a step can't be run.
int RunChart(const ChartOptions& options, const PictureWriter& writePicture,
             const KitMaker& makeKit, std::ostream& out, std::ostream& err);
int RunChart(const ChartOptions& options, const PictureWriter& writePicture, std::ostream& out,
             std::ostream& err);

}  // namespace velmora
