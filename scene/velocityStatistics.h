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
  int nonFiniteNodes = 0;                        // nodes left out: a component NaN or beyond single precision
};

// Statistics over all nodes of u, v, w (same sizes); an empty w counts as 0.
// A node with a component that is not finite in single precision is left
// out and counted in nonFiniteNodes.
velocityStatistics scanVelocity(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w);

// The statistics and the speed field in one pass over the velocity, for the
// default quantity: out = sqrt(u^2 + v^2 + w^2) in double precision, and lo,
// hi its range over the nodes whose solidMask is 0 (all nodes with
// countSolid, or without a mask). False, with nothing usable, when some
// value is not finite: the caller then takes the separate scans, which leave
// such nodes out.
bool scanVelocityWithSpeed(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w,
                           const array3d<double>& out, const array3d<int>& solidMask, bool countSolid,
                           velocityStatistics& stats, double& lo, double& hi);

// The time step of an adaptive run from the peaks: cfl*min(dx/peakU, dy/peakV),
// with peaks below 1e-5 taken as 1e-5.
double adaptiveDeltat(double cfl, double dx, double dy, const velocityStatistics& stats);

// False when the flow has diverged: some node was not finite.
bool peaksFinite(const velocityStatistics& stats);

}  // namespace marv
