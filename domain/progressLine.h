// The progress line of domain construction: three bars, one per phase
// (masks and polygons, model scan, classification), drawn centred in the
// window; for large grids also a line on the terminal when asked for.
#pragma once

#include "app/appConfig.h"

namespace marv {

// Draws the bars with row's bar at progressCount / progressTotal, shows
// them, and counts one refresh. A closed window ends the process.
void showProgress(appConfig& cfg, int row);

// Lets the window system run inside long loops; a closed window ends the
// process.
void letWindowRun();

}  // namespace marv
