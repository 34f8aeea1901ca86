// Progress of a run on a terminal: step, simulated time, deltat, pressure
// residual and sweeps, steps per second and the time left, on one line that
// updates in place (plain lines when the output is not a terminal).
#pragma once

#include <cstdio>

#include "app/appConfig.h"

namespace marv {

struct runProgress {
  std::FILE* out = nullptr;  // where the line goes
  bool terminal = false;     // update one line in place
  int startMs = 0;           // clock at the first report [ms]
  int startStep = 0;         // step at the first report
  int lastMs = -1;           // clock of the last line [ms]
  int intervalMs = 250;      // least time between lines [ms]
};

// Starts reporting to out; a terminal gets one updating line.
void startProgress(runProgress& progress, std::FILE* out, int nowMs);

// Reports step ts of the run if the interval has passed (or always when
// final), and ends the line when final.
void reportProgress(runProgress& progress, const appConfig& cfg, int nowMs, bool final);

// The text of one progress line for the state after step, without line end.
void formatProgress(char* buffer, int size, const appConfig& cfg, int step, double stepsPerSecond);

}  // namespace marv
