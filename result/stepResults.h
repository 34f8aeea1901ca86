// Result output of a run step (records, image, dump) and the restart read.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "solver/fieldViews.h"

namespace marv {

// Writes what step ts owes: records, image, dump. False when a write failed;
// the failure has then been shown through cfg.showMessage.
bool writeStepResults(appConfig& cfg, fieldViews& views);

// Shows a failed write of step ts (the file and the reason), once per step.
void reportWriteFailure(appConfig& cfg, const std::string& failure);
// Saves the screen as ./figs/snapshot_%08d_%s.jpg with ts and the local time,
// the rectangle above the status strip, JPEG quality 80 with 2x1 chroma.
// False, with the failure shown, when the picture could not be written.
bool saveSnapshot(appConfig& cfg);
// Reads the dump of a step into the fields; -1 when it cannot.
int readDump(appConfig& cfg, fieldViews& views, int step);

}  // namespace marv
