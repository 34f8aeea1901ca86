// Velocity statistics of a frame.
#include "scene/velocityStatistics.h"

#include <algorithm>
#include <cmath>

namespace marv {

velocityStatistics scanVelocity(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w) {
  velocityStatistics s;
  double maxSpeed = -1e20, minSpeed = 1e20;
  double maxU = -1e20, minU = 1e20, maxV = -1e20, minV = 1e20, maxW = -1e20, minW = 1e20;
  const int count = std::min(u.count(), v.count());
  const bool hasW = w.count() >= count && w.data != nullptr;
  int finite = 0;
  // Values are rounded to single precision, as the display works in floats.
  // A node with a non-finite component (a diverged run) is left out, so
  // that the time step and the Courant number stay numbers.
  for (int n = 0; n < count; ++n) {
    const float un = static_cast<float>(u.data[n]);
    const float vn = static_cast<float>(v.data[n]);
    const float wn = hasW ? static_cast<float>(w.data[n]) : 0.0f;
    const double speed2 = static_cast<double>(un * un + vn * vn + wn * wn);
    const bool ok = std::isfinite(speed2);
    finite += ok;
    maxSpeed = ok && speed2 > maxSpeed ? speed2 : maxSpeed;
    minSpeed = ok && speed2 < minSpeed ? speed2 : minSpeed;
    maxU = ok && un > maxU ? un : maxU;
    minU = ok && un < minU ? un : minU;
    maxV = ok && vn > maxV ? vn : maxV;
    minV = ok && vn < minV ? vn : minV;
    maxW = ok && wn > maxW ? wn : maxW;
    minW = ok && wn < minW ? wn : minW;
  }
  if (finite == 0) return s;  // nothing to measure: a still fluid
  s.maxSpeed = std::sqrt(maxSpeed);
  s.minSpeed = std::sqrt(minSpeed);
  if (s.maxSpeed == s.minSpeed) s.minSpeed = 0.5 * s.maxSpeed;
  s.maxU = maxU, s.minU = minU, s.maxV = maxV, s.minV = minV, s.maxW = maxW, s.minW = minW;
  s.peakU = std::max(std::fabs(maxU), std::fabs(minU));
  s.peakV = std::max(std::fabs(maxV), std::fabs(minV));
  s.peakW = std::max(std::fabs(maxW), std::fabs(minW));
  return s;
}

double adaptiveDeltat(double cfl, double dx, double dy, const velocityStatistics& stats) {
  return cfl * std::min(dx / std::max(stats.peakU, 1e-5), dy / std::max(stats.peakV, 1e-5));
}

}  // namespace marv
