// Result output of a run step (records, image, dump) and the restart read.
#pragma once

#include "app/appConfig.h"
#include "solver/fieldViews.h"

namespace marv {

// Writes what step ts owes: records, image, dump.
void writeStepResults(appConfig& cfg, fieldViews& views);
// Saves the screen as ./figs/snapshot_%08d_%s.jpg with ts and the local time,
// the rectangle above the status strip, JPEG quality 80 with 2x1 chroma.
void saveSnapshot(const appConfig& cfg);
// Reads the dump of a step into the fields; -1 when it cannot.
int readDump(appConfig& cfg, fieldViews& views, int step);

}  // namespace marv
