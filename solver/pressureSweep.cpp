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
// Speed. The sweep is the hot loop of the program. Its chain from one node to
// the next runs through the node just updated (p-x), so the terms that do not
// depend on it are summed first, and nodes are taken in pairs, so that the
// chain is one multiply and one add per two nodes. The grouping changes
// rounding, not the iteration: every node still uses the new value of the
// node before it.
#include <atomic>
#include <cmath>

#include "solver/solverCommon.h"

namespace marv {

namespace {

template <bool Shared>
inline double loadNode(double* p, int c) {
  if constexpr (Shared)
    return std::atomic_ref<double>(p[c]).load(std::memory_order_relaxed);
  else
    return p[c];
}

template <bool Shared>
inline void storeNode(double* p, int c, double value) {
  if constexpr (Shared)
    std::atomic_ref<double>(p[c]).store(value, std::memory_order_relaxed);
  else
    p[c] = value;
}

// The sweep's grid constants, relax folded into the neighbour weights.
struct sweepConstants {
  double rax = 0.0;    // relax*ax [1]
  double ray = 0.0;    // relax*ay [1]
  double raz = 0.0;    // relax*az, 0 in two dimensions [1]
  double relax = 0.0;  // omega over the sum of the stencil weights [m^2]
  double keep = 0.0;   // 1 - omega [1]
  int nx = 0;          // stride of j
  int nxy = 0;         // stride of k
};

// The terms of the update of node c that do not depend on p-x:
//   relax*(ax*p+x + ay*(p+y + p-y) + az*(p+z + p-z) - rhs) + (1 - omega)*p
template <bool ThreeD, bool Shared>
inline double restOf(double* p, const double* rhs, int c, const sweepConstants& s) {
  double rest = s.rax * loadNode<Shared>(p, c + 1) +
                s.ray * (loadNode<Shared>(p, c + s.nx) + loadNode<Shared>(p, c - s.nx)) - s.relax * rhs[c] +
                s.keep * p[c];
  if constexpr (ThreeD) rest += s.raz * (loadNode<Shared>(p, c + s.nxy) + loadNode<Shared>(p, c - s.nxy));
  return rest;
}

// One stretch [c0, c1) of a row, in increasing i:
//   p = relax*(ax*(p+x + p-x) + ay*(p+y + p-y) + az*(p+z + p-z) - rhs) + (1 - omega)*p
// as p = relax*ax*p-x + rest. west holds p-x on entry (already updated when
// it lies in this row) and the last updated node on return. Nodes go in
// pairs: the second of a pair is rax^2*west + (rax*rest0 + rest1), so the
// chain through west is one multiply and one add per two nodes.
template <bool ThreeD, bool Shared>
inline double sweepStretch(double* p, const double* rhs, int c0, int c1, double west, const sweepConstants& s) {
  const double rax = s.rax, rax2 = s.rax * s.rax;
  int c = c0;
  for (; c + 1 < c1; c += 2) {
    const double rest0 = restOf<ThreeD, Shared>(p, rhs, c, s);
    const double rest1 = restOf<ThreeD, Shared>(p, rhs, c + 1, s);
    const double first = rax * west + rest0;
    west = rax2 * west + (rax * rest0 + rest1);
    storeNode<Shared>(p, c, first);
    storeNode<Shared>(p, c + 1, west);
  }
  if (c < c1) {
    west = rax * west + restOf<ThreeD, Shared>(p, rhs, c, s);
    storeNode<Shared>(p, c, west);
  }
  return west;
}

// Sweep over the range r; the low* and high* flags say on which sides of the
// range another tile lies.
template <bool ThreeD>
void sweepRange(double* p, const double* rhs, const tileRange& r, const sweepConstants& s, bool lowI, bool highI,
                bool lowJ, bool highJ, bool lowK, bool highK) {
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
      west = sweepStretch<ThreeD, false>(p, rhs, a, b, west, s);
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
  // prev = p, over the interior range.
  double worst = 0.0;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = s.nx * j + s.nxy * k;
      for (int i = r.i0; i < r.i1; ++i) {
        const double d = std::fabs(p.data[row + i] - prev.data[row + i]);
        prev.data[row + i] = p.data[row + i];
        worst = d > worst ? d : worst;
      }
    }
  threadResidual[t] = worst;
}

void solverCommon::solvePressure(int t) {
  const array3d<double>& ppeRhs = tau11;
  const array3d<double>& pOld = convZ;
  const array3d<double>& pPrev = divU;
  teamSingle([&] {
    converged = 0;
    sweepCount = 0;
  });
  threadResidual[t] = 0.0;
  copyTile(pfld, pOld, t);
  copyTile(pfld, pPrev, t);
  const int loopmax = cfg->loopmax;
  const int threads = static_cast<int>(threadResidual.size());
  while (sweepCount < loopmax && !converged) {
    sorSweep(pfld, ppeRhs, pPrev, t, sweepCount);
    teamBarrier();
    teamSingle([&] {
      appConfig& c = *cfg;
      c.presIterations = loopmax;  // what stays if the iteration never converges
      if (sweepCount % 20 == 0) {
        double residual = 0.0;
        for (int n = 0; n < threads && n < c.numThreads; ++n) residual = std::fmax(residual, threadResidual[n]);
        c.presResidual = residual * invPresw;
        if (c.peps > c.presResidual) {
          c.presIterations = sweepCount;
          converged = 1;
        }
      }
      ++sweepCount;
    });
  }
  if (cfg->presRelax != 1.0f) {
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
