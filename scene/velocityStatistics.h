// The frame's statistics of the velocity field: largest and smallest speed
// and components, and the peak magnitude of each component, found over every
// node in single precision. The adaptive time step is taken from the peaks.
#pragma once

#include "common/array3d.h"

namespace marv {

struct velocityStatistics {
  double maxSpeed = 0.0, minSpeed = 0.0;         // [m/s]
  double maxU = 0.0, minU = 0.0;                 // [m/s]
  double maxV = 0.0, minV = 0.0;                 // [m/s]
  double maxW = 0.0, minW = 0.0;                 // [m/s]
  double peakU = 0.0, peakV = 0.0, peakW = 0.0;  // largest magnitude of each component [m/s]
};

// Statistics over all nodes of u, v, w (same sizes); an empty w counts as 0.
velocityStatistics scanVelocity(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w);

// The time step of an adaptive run from the peaks: cfl*min(dx/peakU, dy/peakV),
// with peaks below 1e-5 taken as 1e-5.
double adaptiveDeltat(double cfl, double dx, double dy, const velocityStatistics& stats);

}  // namespace marv
