// The pressure iteration: successive over-relaxation of lap(p) = ppeRhs in
// place, tile by tile on all threads at once, with a convergence test every
// 20 sweeps; the under-relaxation with the previous pressure, and the
// removal of the mean.
//
// Cross-tile reads. A thread reads the nodes next to its tile while their
// owner may be updating them in the same sweep; either value is right for
// the method (Gauss-Seidel inside a tile, Jacobi-like across tiles), which
// is why results differ slightly with the thread count and from run to run.
// To make those reads defined, every access to a node that two threads touch
// in one sweep (the layer on each side of a border between tiles) is a
// relaxed atomic: rows of the tile that face another tile in j or k are swept
// with atomic loads and stores, and in the other rows only the first and
// last node when a tile lies beside in i. All other accesses are plain, so a
// single tile has no atomic access at all.
//
// Speed. The sweep is the hot loop of the program; its rows run in the
// kernels of sweepRows.h, chosen for the processor at run time. The team
// meets once per sweep: after the barrier every thread takes the test of
// that sweep itself from the same per-thread changes, so all reach the same
// verdict without a second barrier, and thread 0 alone writes the results.
#include <algorithm>
#include <cmath>

#include "solver/solverCommon.h"
#include "solver/sweepRows.h"

namespace marv {

namespace {

// Sweep over the range r; the low* and high* flags say on which sides of the
// range another tile lies.
template <bool ThreeD>
void sweepRange(double* p, const double* rhs, const tileRange& r, const sweepConstants& s, bool lowI, bool highI,
                bool lowJ, bool highJ, bool lowK, bool highK) {
  const plainStretchFn plain = plainStretch(ThreeD);
  for (int k = r.k0; k < r.k1; ++k) {
    const bool sharedPlane = (lowK && k == r.k0) || (highK && k == r.k1 - 1);
    for (int j = r.j0; j < r.j1; ++j) {
      const int c0 = r.i0 + s.nx * j + s.nxy * k, c1 = r.i1 + s.nx * j + s.nxy * k;
      if (c0 >= c1) continue;
      if (sharedPlane || (lowJ && j == r.j0) || (highJ && j == r.j1 - 1)) {
        sweepStretch<ThreeD, true>(p, rhs, c0, c1, loadNode<true>(p, c0 - 1), s);
        continue;
      }
      double west = lowI ? loadNode<true>(p, c0 - 1) : p[c0 - 1];
      int a = c0;
      if (lowI) {
        west = sweepStretch<ThreeD, true>(p, rhs, a, a + 1, west, s);
        ++a;
      }
      const int b = highI && a < c1 ? c1 - 1 : c1;
      if (a < b) west = plain(p, rhs, a, b, west, s);
      if (b < c1) sweepStretch<ThreeD, true>(p, rhs, b, c1, west, s);
    }
  }
}

}  // namespace

void solverCommon::sorSweep(const array3d<double>& p, const array3d<double>& rhs, const array3d<double>& prev, int t,
                            int sweep) {
  const appConfig& c = *cfg;
  const bool threeD = c.nz != 1;
  const double dx2 = c.dx * c.dx, dy2 = c.dy * c.dy, dz2 = c.dz * c.dz;
  const double relax = threeD ? c.omega * 0.5 * dx2 * dy2 * dz2 / (dy2 * dz2 + dx2 * dz2 + dx2 * dy2)
                              : c.omega * 0.5 * dx2 * dy2 / (dy2 + dx2);
  sweepConstants s;
  s.rax = relax * (1.0 / c.dx / c.dx);
  s.ray = relax * (1.0 / c.dy / c.dy);
  s.raz = threeD ? relax * (1.0 / c.dz / c.dz) : 0.0;
  s.relax = relax;
  s.keep = 1.0 - c.omega;
  s.nx = p.nx;
  s.nxy = p.nxy;

  const tileRange tile = tileOf(c, t);
  const tileRange r = interiorOf(c, t);
  const bool lowI = tile.i0 > 0, highI = tile.i1 < c.nx;
  const bool lowJ = tile.j0 > 0, highJ = tile.j1 < c.ny;
  const bool lowK = threeD && tile.k0 > 0, highK = threeD && tile.k1 < c.nz;
  if (threeD)
    sweepRange<true>(p.data, rhs.data, r, s, lowI, highI, lowJ, highJ, lowK, highK);
  else
    sweepRange<false>(p.data, rhs.data, r, s, lowI, highI, lowJ, highJ, false, false);

  if (sweep % 20 != 0) return;
  // Test share: the largest change since the last test, d = |p - prev|, and
  // prev = p, over the interior range. Four running maxima over the nodes
  // by i modulo 4, so that the pass is not one chain of comparisons; the
  // largest of a set does not depend on the order it is taken in (d is never
  // -0, and a NaN never replaces a maximum in either form).
  double worst[4] = {0.0, 0.0, 0.0, 0.0};
  double* const pd = p.data;
  double* const qd = prev.data;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = s.nx * j + s.nxy * k;
      int i = r.i0;
      for (; i + 4 <= r.i1; i += 4)
        for (int m = 0; m < 4; ++m) {
          const double d = std::fabs(pd[row + i + m] - qd[row + i + m]);
          qd[row + i + m] = pd[row + i + m];
          worst[m] = d > worst[m] ? d : worst[m];
        }
      for (; i < r.i1; ++i) {
        const double d = std::fabs(pd[row + i] - qd[row + i]);
        qd[row + i] = pd[row + i];
        worst[0] = d > worst[0] ? d : worst[0];
      }
    }
  for (int m = 1; m < 4; ++m) worst[0] = worst[m] > worst[0] ? worst[m] : worst[0];
  threadResidual[t] = worst[0];
}

void solverCommon::solvePressure(int t) {
  const array3d<double>& ppeRhs = tau11;
  const array3d<double>& pOld = convZ;
  const array3d<double>& pPrev = divU;
  appConfig& c = *cfg;
  if (t == 0) {
    converged = 0;
    sweepCount = 0;
  }
  threadResidual[t] = 0.0;
  copyTile(pfld, pOld, t);
  copyTile(pfld, pPrev, t);
  const int loopmax = c.loopmax;
  const int threads = std::min(static_cast<int>(threadResidual.size()), c.numThreads);
  // threadResidual[n] of a test sweep is written before that sweep's barrier
  // and next written 20 sweeps later, after the following barrier: between
  // the two every thread reads the same values in the same order.
  int sweep = 0;
  bool met = false;
  for (; sweep < loopmax && !met; ++sweep) {
    sorSweep(pfld, ppeRhs, pPrev, t, sweep);
    teamBarrier();
    if (sweep % 20 != 0) continue;
    double residual = 0.0;
    for (int n = 0; n < threads; ++n) residual = std::fmax(residual, threadResidual[n]);
    residual *= invPresw;
    met = c.peps > residual;
    if (t != 0) continue;
    c.presResidual = residual;
    if (met) {
      c.presIterations = sweep;
      converged = 1;
    }
  }
  if (t == 0) {
    sweepCount = sweep;
    if (sweep > 0 && !met) c.presIterations = loopmax;  // the iteration never converged
  }
  if (c.presRelax != 1.0f) {
    relaxPressure(pfld, pOld, t);
    teamBarrier();
  }
}

// p = presRelax*p + (1 - presRelax)*old over the interior range.
void solverCommon::relaxPressure(const array3d<double>& p, const array3d<double>& old, int t) const {
  const tileRange r = interiorOf(*cfg, t);
  const double a = static_cast<double>(cfg->presRelax), b = 1.0 - a;
  const int nx = p.nx, nxy = p.nxy;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = r.i0; i < r.i1; ++i) p.data[row + i] = a * p.data[row + i] + b * old.data[row + i];
    }
}

double solverCommon::meanPressure(int t, int n) {
  const tileRange g = tileOf(*cfg, t);
  const int nx = pfld.nx, nxy = pfld.nxy;
  double sum = 0.0;
  for (int k = g.k0; k < g.k1; ++k)
    for (int j = g.j0; j < g.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = g.i0; i < g.i1; ++i) sum += pfld.data[row + i];
    }
  threadSum[t] = sum;
  teamBarrier();
  teamSingle([&] {
    const int threads = std::min(n, static_cast<int>(threadSum.size()));
    for (int s = 1; s < threads; ++s) threadSum[0] += threadSum[s];
    threadSum[0] = threadSum[0] / cfg->nx / cfg->ny / cfg->nz;
  });
  return threadSum[0];
}

// p = p - mean over the tile.
void solverCommon::removeMean(const array3d<double>& p, double mean, int t) const {
  if (!cfg->presAdjustFlag) return;
  const tileRange g = tileOf(*cfg, t);
  const int nx = p.nx, nxy = p.nxy;
  for (int k = g.k0; k < g.k1; ++k)
    for (int j = g.j0; j < g.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = g.i0; i < g.i1; ++i) p.data[row + i] -= mean;
    }
}

}  // namespace marv
