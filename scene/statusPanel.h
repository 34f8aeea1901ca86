// The status panel under the picture (colour bar, quantity, step timing,
// tiles, time, step, pressure sweeps and residual) and the title line at the
// top (time step, Courant number, step time, remaining time).
#pragma once

#include <cstddef>

#include "scene/sceneView.h"

namespace marv {

// "*%-12s | CPU: %6d+%-4d ms/step | PL: %0.2d-%0.2d-%0.2d"
void formatStatusLine1(char* out, std::size_t size, const char* label, int solveMs, int drawMs, int npx, int npy,
                       int npz);
// "%.4e s | %0.6d steps | %.3d iters | %.3e er"
void formatStatusLine2(char* out, std::size_t size, double time, int ts, int iterations, double residual);

struct remainingTime {
  int hours = 0, minutes = 0, seconds = 0;
};
// Time left for the steps from ts to latts at cpu whole milliseconds a step;
// the step product is 32-bit, as shown on the screen (it wraps for very long runs).
remainingTime timeLeft(int latts, int ts, int cpuMs);

// "%s | dt:%.2e s | max{CFL}:%.2f | CPU:%d ms | Remaining:%02dh:%02dm:%02ds"
void formatTitleLine(char* out, std::size_t size, const char* title, double deltat, double maxCfl, int cpuMs,
                     const remainingTime& left);

// Smoothed time per step from this frame's solve and draw times: the raw sum
// at the first step after the start, a running mean over 21 otherwise, and
// unchanged while something holds the run.
void smoothStepTime(appConfig& cfg);

// The panel, the title line and the smoothing of the step time.
void drawStatus(sceneView& scene, appConfig& cfg);

}  // namespace marv
