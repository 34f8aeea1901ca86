// Velocity statistics of a frame.
#include "scene/velocityStatistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace marv {

velocityStatistics scanVelocity(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w) {
  velocityStatistics s;
  double maxSpeed = -1e20, minSpeed = 1e20;
  double maxU = -1e20, minU = 1e20, maxV = -1e20, minV = 1e20, maxW = -1e20, minW = 1e20;
  const int count = std::min(u.count(), v.count());
  const bool hasW = w.count() >= count && w.data != nullptr;
  // A value that is not finite vanishes from max and min; zero times it does
  // not, so that the peaks can tell a diverged field from a calm one.
  float nonFinite = 0.0f;
  // Values are rounded to single precision, as the display works in floats.
  for (int n = 0; n < count; ++n) {
    const float un = static_cast<float>(u.data[n]);
    const float vn = static_cast<float>(v.data[n]);
    const float wn = hasW ? static_cast<float>(w.data[n]) : 0.0f;
    nonFinite += un * 0.0f + vn * 0.0f + wn * 0.0f;
    const double speed2 = static_cast<double>(un * un + vn * vn + wn * wn);
    maxSpeed = std::max(maxSpeed, speed2);
    minSpeed = std::min(minSpeed, speed2);
    maxU = std::max(maxU, static_cast<double>(un));
    minU = std::min(minU, static_cast<double>(un));
    maxV = std::max(maxV, static_cast<double>(vn));
    minV = std::min(minV, static_cast<double>(vn));
    maxW = std::max(maxW, static_cast<double>(wn));
    minW = std::min(minW, static_cast<double>(wn));
  }
  if (count == 0) return s;
  s.maxSpeed = std::sqrt(maxSpeed);
  s.minSpeed = std::sqrt(minSpeed);
  if (s.maxSpeed == s.minSpeed) s.minSpeed = 0.5 * s.maxSpeed;
  s.maxU = maxU, s.minU = minU, s.maxV = maxV, s.minV = minV, s.maxW = maxW, s.minW = minW;
  s.peakU = std::max(std::fabs(maxU), std::fabs(minU));
  s.peakV = std::max(std::fabs(maxV), std::fabs(minV));
  s.peakW = std::max(std::fabs(maxW), std::fabs(minW));
  if (nonFinite != 0.0f) s.peakU = s.peakV = s.peakW = std::numeric_limits<double>::quiet_NaN();
  return s;
}

double adaptiveDeltat(double cfl, double dx, double dy, const velocityStatistics& stats) {
  return cfl * std::min(dx / std::max(stats.peakU, 1e-5), dy / std::max(stats.peakV, 1e-5));
}

bool peaksFinite(const velocityStatistics& stats) {
  return std::isfinite(stats.peakU) && std::isfinite(stats.peakV) && std::isfinite(stats.peakW);
}

}  // namespace marv
