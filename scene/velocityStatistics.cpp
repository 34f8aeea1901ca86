// Velocity statistics of a frame.
#include "scene/velocityStatistics.h"

#include <algorithm>
#include <cmath>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace marv {

namespace {

// A component below 1e-18 m/s counts as 0: its square would be a subnormal
// float, whose arithmetic costs the processor a hundred times more, and a
// flow that starts from rest is full of such values.
inline float rounded(double value) {
  const double kept = std::fabs(value) < 1e-18 ? 0.0 : value;  // NaN stays NaN
  return static_cast<float>(kept);
}

// Extremes in single precision; widening them afterwards gives the same
// numbers as widening every value first.
struct extremes {
  float maxSpeed2 = -1e20f, minSpeed2 = 1e20f;
  float maxU = -1e20f, minU = 1e20f, maxV = -1e20f, minV = 1e20f, maxW = -1e20f, minW = 1e20f;
  int finite = 0;  // nodes that took part
};

// The same, leaving out every node with a non-finite component.
void scanFinite(const double* u, const double* v, const double* w, int count, extremes& e) {
  e = extremes{};
  for (int n = 0; n < count; ++n) {
    const float un = rounded(u[n]), vn = rounded(v[n]);
    const float wn = w ? rounded(w[n]) : 0.0f;
    const float s = un * un + vn * vn + wn * wn;
    if (!std::isfinite(un) || !std::isfinite(vn) || !std::isfinite(wn)) continue;
    ++e.finite;
    e.maxSpeed2 = std::max(e.maxSpeed2, s), e.minSpeed2 = std::min(e.minSpeed2, s);
    e.maxU = std::max(e.maxU, un), e.minU = std::min(e.minU, un);
    e.maxV = std::max(e.maxV, vn), e.minV = std::min(e.minV, vn);
    e.maxW = std::max(e.maxW, wn), e.minW = std::min(e.minW, wn);
  }
}

// Extremes to statistics.
velocityStatistics fromExtremes(const extremes& e) {
  velocityStatistics s;
  if (e.finite == 0) return s;  // nothing to measure: a still fluid
  s.maxSpeed = std::sqrt(static_cast<double>(e.maxSpeed2));
  s.minSpeed = std::sqrt(static_cast<double>(e.minSpeed2));
  if (s.maxSpeed == s.minSpeed) s.minSpeed = 0.5 * s.maxSpeed;
  s.maxU = e.maxU, s.minU = e.minU, s.maxV = e.maxV, s.minV = e.minV, s.maxW = e.maxW, s.minW = e.minW;
  s.peakU = std::max(std::fabs(s.maxU), std::fabs(s.minU));
  s.peakV = std::max(std::fabs(s.maxV), std::fabs(s.minV));
  s.peakW = std::max(std::fabs(s.maxW), std::fabs(s.minW));
  return s;
}

// Every node, in a loop the compiler can vectorise; reports whether some
// node was not finite, in which case its results are not used. withSpeed
// also writes each node's speed to out and its range (solid nodes left out
// when masked) to lo..hi.
template <bool hasW, bool masked, bool withSpeed>
bool scanNodes(const double* u, const double* v, const double* w, double* out, const int* solid, int count, extremes& e,
               double& lo, double& hi) {
  int bad = 0;
  float maxS = e.maxSpeed2, minS = e.minSpeed2, maxU = e.maxU, minU = e.minU;
  float maxV = e.maxV, minV = e.minV, maxW = e.maxW, minW = e.minW;
  double top = -1e10, bottom = 1e10;
#pragma omp simd reduction(|                                                             \
                           : bad) reduction(max                                          \
                                            : maxS, maxU, maxV, maxW, top) reduction(min \
                                                                                     : minS, minU, minV, minW, bottom)
  for (int n = 0; n < count; ++n) {
    const double wd = hasW ? w[n] : 0.0;
    if constexpr (withSpeed) {
      const double speed = std::sqrt(u[n] * u[n] + v[n] * v[n] + wd * wd);
      out[n] = speed;
      const bool counts = !masked || solid[n] == 0;
      top = std::max(top, counts ? speed : -1e300);
      bottom = std::min(bottom, counts ? speed : 1e300);
      bad |= !(speed - speed == 0.0);
    }
    const float un = rounded(u[n]), vn = rounded(v[n]);
    const float wn = hasW ? rounded(wd) : 0.0f;
    const float s = un * un + vn * vn + wn * wn;
    bad |= !(un - un == 0.0f) | !(vn - vn == 0.0f) | !(wn - wn == 0.0f);
    maxS = std::max(maxS, s), minS = std::min(minS, s);
    maxU = std::max(maxU, un), minU = std::min(minU, un);
    maxV = std::max(maxV, vn), minV = std::min(minV, vn);
    maxW = std::max(maxW, wn), minW = std::min(minW, wn);
  }
  e.maxSpeed2 = maxS, e.minSpeed2 = minS, e.maxU = maxU, e.minU = minU;
  e.maxV = maxV, e.minV = minV, e.maxW = maxW, e.minW = minW;
  e.finite = count;
  if constexpr (withSpeed) lo = bottom, hi = top;
  return bad == 0;
}

// The extremes alone, eight nodes a step, on processors with AVX2: the run
// loop takes them after every step, and the compiler leaves the loop above
// scalar. Rounding and sums are those of rounded() and scanNodes, so the
// results are the same to the bit: rounded() turns every zero into +0, so
// no extreme depends on which of two zeros came first, and the extremes are
// used only when every value was finite. The last nodes, and every node on
// other processors, go through scanNodes.
#if defined(__x86_64__)
__attribute__((target("avx2"))) inline __m256 rounded8(const double* at) {
  const __m256d sign = _mm256_set1_pd(-0.0), tiny = _mm256_set1_pd(1e-18);
  const __m256d low = _mm256_loadu_pd(at), high = _mm256_loadu_pd(at + 4);
  // Below 1e-18 in magnitude: 0 (a NaN compares false and stays).
  const __m256d keptLow = _mm256_andnot_pd(_mm256_cmp_pd(_mm256_andnot_pd(sign, low), tiny, _CMP_LT_OQ), low);
  const __m256d keptHigh = _mm256_andnot_pd(_mm256_cmp_pd(_mm256_andnot_pd(sign, high), tiny, _CMP_LT_OQ), high);
  return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(keptLow)), _mm256_cvtpd_ps(keptHigh), 1);
}

template <bool hasW>
__attribute__((target("avx2"))) bool scanPeaksAvx2(const double* u, const double* v, const double* w, int count,
                                                   extremes& e) {
  __m256 maxS = _mm256_set1_ps(e.maxSpeed2), minS = _mm256_set1_ps(e.minSpeed2);
  __m256 maxU = _mm256_set1_ps(e.maxU), minU = _mm256_set1_ps(e.minU), maxV = _mm256_set1_ps(e.maxV);
  __m256 minV = _mm256_set1_ps(e.minV), maxW = _mm256_set1_ps(e.maxW), minW = _mm256_set1_ps(e.minW);
  __m256 bad = _mm256_setzero_ps();
  const __m256 zero = _mm256_setzero_ps();
  int n = 0;
  for (; n + 8 <= count; n += 8) {
    const __m256 un = rounded8(u + n), vn = rounded8(v + n);
    const __m256 wn = hasW ? rounded8(w + n) : zero;
    const __m256 s = _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(un, un), _mm256_mul_ps(vn, vn)), _mm256_mul_ps(wn, wn));
    // x - x is 0 for every finite x, NaN otherwise.
    bad = _mm256_or_ps(bad, _mm256_cmp_ps(_mm256_sub_ps(un, un), zero, _CMP_NEQ_UQ));
    bad = _mm256_or_ps(bad, _mm256_cmp_ps(_mm256_sub_ps(vn, vn), zero, _CMP_NEQ_UQ));
    bad = _mm256_or_ps(bad, _mm256_cmp_ps(_mm256_sub_ps(wn, wn), zero, _CMP_NEQ_UQ));
    maxS = _mm256_max_ps(maxS, s), minS = _mm256_min_ps(minS, s);
    maxU = _mm256_max_ps(maxU, un), minU = _mm256_min_ps(minU, un);
    maxV = _mm256_max_ps(maxV, vn), minV = _mm256_min_ps(minV, vn);
    maxW = _mm256_max_ps(maxW, wn), minW = _mm256_min_ps(minW, wn);
  }
  bool finite = _mm256_movemask_ps(bad) == 0;
  alignas(32) float lanes[8][8];
  const __m256 all[8] = {maxS, minS, maxU, minU, maxV, minV, maxW, minW};
  for (int q = 0; q < 8; ++q) _mm256_store_ps(lanes[q], all[q]);
  for (int m = 0; m < 8; ++m) {
    e.maxSpeed2 = std::max(e.maxSpeed2, lanes[0][m]), e.minSpeed2 = std::min(e.minSpeed2, lanes[1][m]);
    e.maxU = std::max(e.maxU, lanes[2][m]), e.minU = std::min(e.minU, lanes[3][m]);
    e.maxV = std::max(e.maxV, lanes[4][m]), e.minV = std::min(e.minV, lanes[5][m]);
    e.maxW = std::max(e.maxW, lanes[6][m]), e.minW = std::min(e.minW, lanes[7][m]);
  }
  double lo = 0.0, hi = 0.0;
  finite &= scanNodes<hasW, false, false>(u + n, v + n, hasW ? w + n : nullptr, nullptr, nullptr, count - n, e, lo, hi);
  e.finite = count;
  return finite;
}

bool hostHasAvx2() {
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return has;
}
#endif

bool scanAll(const double* u, const double* v, const double* w, int count, extremes& e) {
#if defined(__x86_64__)
  if (hostHasAvx2()) return w ? scanPeaksAvx2<true>(u, v, w, count, e) : scanPeaksAvx2<false>(u, v, w, count, e);
#endif
  double lo = 0.0, hi = 0.0;
  return w ? scanNodes<true, false, false>(u, v, w, nullptr, nullptr, count, e, lo, hi)
           : scanNodes<false, false, false>(u, v, w, nullptr, nullptr, count, e, lo, hi);
}

}  // namespace

bool scanVelocityWithSpeed(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w,
                           const array3d<double>& out, const array3d<int>& solidMask, bool countSolid,
                           velocityStatistics& stats, double& lo, double& hi) {
  const int count = out.count();
  if (u.count() < count || v.count() < count || count == 0) return false;
  const double* wd = w.data != nullptr && w.count() >= count ? w.data : nullptr;
  const int* solid = !countSolid && solidMask.data != nullptr && solidMask.count() >= count ? solidMask.data : nullptr;
  extremes e;
  bool ok = false;
  if (wd)
    ok = solid ? scanNodes<true, true, true>(u.data, v.data, wd, out.data, solid, count, e, lo, hi)
               : scanNodes<true, false, true>(u.data, v.data, wd, out.data, solid, count, e, lo, hi);
  else
    ok = solid ? scanNodes<false, true, true>(u.data, v.data, wd, out.data, solid, count, e, lo, hi)
               : scanNodes<false, false, true>(u.data, v.data, wd, out.data, solid, count, e, lo, hi);
  if (!ok) return false;
  stats = fromExtremes(e);
  if (lo == hi) lo = hi != 0.0 ? 0.0 : hi - 1.0;  // a flat range: 0..v, or -1..0
  return true;
}

velocityStatistics scanVelocity(const array3d<double>& u, const array3d<double>& v, const array3d<double>& w) {
  const int count = std::min(u.count(), v.count());
  const double* wd = w.count() >= count && w.data != nullptr ? w.data : nullptr;
  // Values are rounded to single precision, as the display works in floats.
  // A node with a non-finite component (a diverged run) is left out, so
  // that the time step and the Courant number stay numbers.
  extremes e;
  if (!scanAll(u.data, v.data, wd, count, e)) scanFinite(u.data, v.data, wd, count, e);
  velocityStatistics s = fromExtremes(e);
  s.nonFiniteNodes = count - e.finite;
  return s;
}

bool peaksFinite(const velocityStatistics& stats) {
  return stats.nonFiniteNodes == 0 && std::isfinite(stats.peakU) && std::isfinite(stats.peakV) &&
         std::isfinite(stats.peakW);
}

double adaptiveDeltat(double cfl, double dx, double dy, const velocityStatistics& stats) {
  return cfl * std::min(dx / std::max(stats.peakU, 1e-5), dy / std::max(stats.peakV, 1e-5));
}

}  // namespace marv
