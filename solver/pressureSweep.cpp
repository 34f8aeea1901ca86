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
// relaxed atomic. A row that faces another tile in j or k reads the other
// tile's row through atomic loads into a copy, runs the vector kernel on the
// copy, and stores its new values through atomic stores; when a tile also
// lies beside in i, such rows are swept scalar with atomics throughout. In
// the other rows only the first and last node are atomic when a tile lies
// beside in i. All other accesses are plain, so a single tile has no atomic
// access at all.
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

// A row that another thread reads, or one of whose neighbour rows another
// thread writes, during the sweep; the tile has no other tile beside it in
// i. The neighbour rows another thread owns are copied into scratch through
// relaxed atomic loads, all at once, so that their transfers from the other
// core overlap; the vector kernel then writes the new values to scratch,
// and they reach the grid through relaxed atomic stores. The copies are
// snapshots of the other tile's nodes, which either value is right for.
template <bool ThreeD>
void sweepSharedRow(sweepRow row, int i0, int i1, double west, const bool foreign[4], double* scratch,
                    const sweepConstants& s, rowKernelFn kernel) {
  const int n = i1 - i0;
  const double** const rows[4] = {&row.south, &row.north, &row.down, &row.up};
  for (int side = 0; side < 4; ++side) {
    if (!foreign[side]) continue;
    const double* const from = *rows[side] + i0;
    for (int m = 0; m < n; ++m) scratch[m] = loadNode<true>(from + m);
    *rows[side] = scratch - i0;
    scratch += n;
  }
  double* const grid = row.out;
  row.out = scratch - i0;
  kernel(row, i0, i1, west, s);
  for (int i = i0; i < i1; ++i) storeNode<true>(grid + i, row.out[i]);
}

// Sweep over the range r; the low* and high* flags say on which sides of the
// range another tile lies.
template <bool ThreeD>
void sweepRange(double* p, const double* rhs, const tileRange& r, const sweepConstants& s, int nx, int nxy, bool lowI,
                bool highI, bool lowJ, bool highJ, bool lowK, bool highK, double* scratch) {
  if (r.i0 >= r.i1) return;
  const rowKernelFn kernel = rowKernel(ThreeD);
  const int middle = (r.j0 + r.j1) / 2;
  for (int k = r.k0; k < r.k1; ++k) {
    const bool downShared = lowK && k == r.k0, upShared = highK && k == r.k1 - 1;
    for (int j = r.j0; j < r.j1; ++j) {
      const sweepRow row = gridRow(p, rhs, j, k, nx, nxy, ThreeD);
      // The row past the high border in j is read at the end of the tile's
      // sweep; its owner wrote it at the start of its own. Fetching it halfway
      // takes its transfer off the end of the sweep, where both threads wait.
      if (highJ && j == middle) {
        const double* const past = p + nx * r.j1 + nxy * k;
        for (int i = r.i0; i < r.i1; i += 8) __builtin_prefetch(past + i);
        __builtin_prefetch(past + r.i1 - 1);
      }
      const bool foreign[4] = {lowJ && j == r.j0, highJ && j == r.j1 - 1, downShared, upShared};
      if (foreign[0] || foreign[1] || foreign[2] || foreign[3]) {
        if (!lowI && !highI)
          sweepSharedRow<ThreeD>(row, r.i0, r.i1, row.in[r.i0 - 1], foreign, scratch, s, kernel);
        else
          sweepStretch<ThreeD, true>(row, r.i0, r.i1, loadNode<true>(row.in + r.i0 - 1), s);
        continue;
      }
      double west = lowI ? loadNode<true>(row.in + r.i0 - 1) : row.in[r.i0 - 1];
      int a = r.i0;
      if (lowI) {
        west = sweepStretch<ThreeD, true>(row, a, a + 1, west, s);
        ++a;
      }
      const int b = highI && a < r.i1 ? r.i1 - 1 : r.i1;
      if (a < b) west = kernel(row, a, b, west, s);
      if (b < r.i1) sweepStretch<ThreeD, true>(row, b, r.i1, west, s);
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

  const tileRange tile = tileOf(c, t);
  const tileRange r = interiorOf(c, t);
  const bool lowI = tile.i0 > 0, highI = tile.i1 < c.nx;
  const bool lowJ = tile.j0 > 0, highJ = tile.j1 < c.ny;
  const bool lowK = threeD && tile.k0 > 0, highK = threeD && tile.k1 < c.nz;
  if (threeD)
    sweepRange<true>(p.data, rhs.data, r, s, p.nx, p.nxy, lowI, highI, lowJ, highJ, lowK, highK, scratchOf(t));
  else
    sweepRange<false>(p.data, rhs.data, r, s, p.nx, p.nxy, lowI, highI, lowJ, highJ, false, false, scratchOf(t));

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
      const int row = p.nx * j + p.nxy * k;
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
