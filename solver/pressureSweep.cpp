// The pressure iteration: successive over-relaxation of lap(p) = ppeRhs in
// place, tile by tile on all threads at once, with a convergence test every
// 20 sweeps; the under-relaxation with the previous pressure, and the
// removal of the mean.
//
// Cross-tile reads. A thread reads the nodes next to its tile while their
// owner may be updating them in the same sweep; either value is right for
// the method (Gauss-Seidel inside a tile, Jacobi-like across tiles).
//   - Tiles split only along the axis the sweep runs slowest (the layouts
//     the program chooses for up to four threads) take one of the two in a
//     fixed order (sweepLinks, ordered): the threads' counts order every
//     access across a border, all of them are plain, and the result is
//     that of the tiles swept one after the other, whatever the timing.
//   - Other layouts leave the choice to timing, which is why their results
//     differ slightly from run to run. To make those reads defined, every
//     access to a node that two threads touch in one sweep (the layer on
//     each side of a border between tiles) is a relaxed atomic. A row that
//     faces another tile in j or k reads the other tile's row through
//     atomic loads into a copy, runs the vector kernel on the copy, and
//     stores its new values through atomic stores; when a tile also lies
//     beside in i, such rows are swept scalar with atomics throughout. In
//     the other rows only the first and last node are atomic when a tile
//     lies beside in i.
// All other accesses are plain, so a single tile has no atomic access at
// all.
//
// Speed. The sweep is the hot loop of the program; its rows run in the
// kernels of sweepRows.h, chosen for the processor at run time. Between
// tests a thread waits only for the tiles beside its own, and the rows that
// cross a border are fetched some rows before they are needed. The team
// meets after each test sweep: after the barrier every thread takes the
// test of that sweep itself from the same per-thread changes, so all reach
// the same verdict without a second barrier, and thread 0 alone writes the
// results.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "solver/lineFetch.h"
#include "solver/solverCommon.h"
#include "solver/sweepRows.h"

namespace marv {

// How a tile's sweep keeps pace with the tiles beside it when the team does
// not meet after every sweep. Before the sweep reads a node of a tile
// beside it, that tile must have finished the rows next to it in the
// previous sweep; since each tile waits so for the other, neither can
// overwrite those rows again before the reader is past them. A read then
// finds the values of the previous sweep or of the present one, as after a
// barrier, but a thread need not wait for the whole team: the tile on the
// high side in j reads its neighbour's last row first and the neighbour
// reads its first row last, and the two run a few rows apart instead of
// meeting.
//
// The face counts to reach: across the low face in i, j or k, the sweeps
// the tile beside has completed; across the high face in j or k, those in
// which it has finished its rows on its low face; across a face in i every
// row reads the tile beside, so the whole sweep again.
//
// Ordered: when the tiles are split only along the axis the sweep runs
// slowest (j in two dimensions, k in three), the sweep also waits, before
// it first reads the tile above, for that tile to finish its first rows of
// the present sweep. Every read of another tile then has one answer: the
// tile below as it finished the previous sweep, the tile above with its
// first rows already updated in the present one, just as if the tiles were
// swept one after the other from the top. The reads and writes across the border are then
// ordered by the counts alone: the border rows run in the vector kernel in
// place, and the result does not depend on the timing of the threads.
struct sweepLinks {
  int sweep = 0;                      // sweeps of this iteration completed before this one
  bool ordered = false;               // the tiles are split along the slowest axis alone
  tileProgress* own = nullptr;        // the counts this thread raises
  teamCount* beside[tileFaces] = {};  // per face, the count of the tile beside to wait for
};

namespace {

// Publishes that the present sweep has finished the rows on the low face in
// j, in k, or the whole tile.
void raiseFaces(const sweepLinks& links, bool lowJ, bool lowK, bool whole) {
  if (lowJ) teamRaise(links.own->lowJ, links.sweep + 1);
  if (lowK) teamRaise(links.own->lowK, links.sweep + 1);
  if (whole) teamRaise(links.own->whole, links.sweep + 1);
}

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

// Cache lines of a row fetched a few at a time, a step per row swept, so
// that the fetches never take all of the core's fill buffers from the
// sweep's own loads. A row fetched for writing is one the other core has
// read: fetching it to own it takes the other core's copy away before the
// row is written.
struct rowFetch {
  static constexpr int linesPerStep = 3;
  std::uintptr_t next = 0, end = 0;
  bool write = false, own = false;
  void start(const double* row, int i0, int i1, bool forWriting) {
    next = reinterpret_cast<std::uintptr_t>(row + i0) & ~std::uintptr_t(63);
    end = reinterpret_cast<std::uintptr_t>(row + i1);
    write = forWriting;
    own = forWriting && fetchesToOwn();
  }
  void step() {
    for (int n = 0; n < linesPerStep && next < end; ++n, next += 64) {
      const void* const line = reinterpret_cast<const void*>(next);
      if (write)
        fetchLineToOwn(line, own);
      else
        fetchLine(line);
    }
  }
};

// Rows from the end of its sweep at which a tile with another beside it on
// its low side in j or k starts to look whether that tile has finished the
// same sweep: if it has, the row the next sweep begins with can be fetched
// while the last rows run.
constexpr int lookAheadRows = 8;

// Sweep over the range r; the low* and high* flags say on which sides of the
// range another tile lies. With links, the sweep waits for and publishes its
// progress as described in sweepLinks.
template <bool ThreeD>
void sweepRange(double* p, const double* rhs, const tileRange& r, const sweepConstants& s, int nx, int nxy, bool lowI,
                bool highI, bool lowJ, bool highJ, bool lowK, bool highK, double* scratch, const sweepLinks* links) {
  if (links) {
    for (int f : {lowIFace, highIFace, lowJFace, lowKFace})
      if (links->beside[f]) teamAwait(*links->beside[f], links->sweep);
  }
  if (r.i0 >= r.i1 || r.j0 >= r.j1 || r.k0 >= r.k1) {
    if (links) raiseFaces(*links, lowJ, lowK, true);
    return;
  }
  const rowKernelFn kernel = rowKernel(ThreeD);
  const int middle = (r.j0 + r.j1) / 2;
  // Past the high border, the own last row, the next sweep's first row, the own first row.
  rowFetch fetches[4];
  // The tile beside on the low side in j (or else in k): when it has
  // finished this sweep, the row the next sweep reads first is final and
  // the tile's own first row has been read.
  const teamCount* const lowDone = links ? links->beside[lowJ ? lowJFace : lowKFace] : nullptr;
  const teamCount* const highStarted = links ? links->beside[highJFace] : nullptr;
  bool lowSeen = lowDone == nullptr, highSeen = highStarted == nullptr;
  for (int k = r.k0; k < r.k1; ++k) {
    const bool downShared = lowK && k == r.k0, upShared = highK && k == r.k1 - 1;
    for (int j = r.j0; j < r.j1; ++j) {
      if (links) {
        const int above = links->ordered ? links->sweep + 1 : links->sweep;
        if (j == r.j1 - 1 && k == r.k0 && links->beside[highJFace]) teamAwait(*links->beside[highJFace], above);
        if (j == r.j0 && k == r.k1 - 1 && links->beside[highKFace]) teamAwait(*links->beside[highKFace], above);
        if (!lowSeen && k == r.k1 - 1 && j >= r.j1 - lookAheadRows &&
            lowDone->value.load(std::memory_order_relaxed) > links->sweep) {
          const long first = lowJ ? long(nx) * (r.j0 - 1) + long(nxy) * r.k0 : long(nx) * r.j0 + long(nxy) * (r.k0 - 1);
          const long own = long(nx) * r.j0 + long(nxy) * r.k0;
          fetches[2].start(p + first, r.i0, r.i1, false);
          fetches[3].start(p + own, r.i0, r.i1, true);
          lowSeen = true;
        }
        if (!highSeen && j > middle && k == r.k1 - 1 &&
            highStarted->value.load(std::memory_order_relaxed) > links->sweep) {
          fetches[1].start(p + long(nx) * (r.j1 - 1) + long(nxy) * k, r.i0, r.i1, true);
          highSeen = true;
        }
      }
      // The row past the high border in j is read at the end of the tile's
      // sweep; its owner wrote it at the start of its own. Fetching it from
      // halfway takes its transfer off the end of the sweep.
      if (highJ && j == middle) {
        fetches[0].start(p + long(nx) * r.j1 + long(nxy) * k, r.i0, r.i1, false);
        if (highStarted) fetchLine(highStarted);  // the count the last row waits for
      }
      for (rowFetch& f : fetches) f.step();
      const sweepRow row = gridRow(p, rhs, j, k, nx, nxy, ThreeD);
      const bool foreign[4] = {lowJ && j == r.j0, highJ && j == r.j1 - 1, downShared, upShared};
      const bool lowJDone = foreign[0] && k == r.k1 - 1, lowKDone = downShared && j == r.j1 - 1;
      if ((foreign[0] || foreign[1] || foreign[2] || foreign[3]) && !(links && links->ordered)) {
        if (!lowI && !highI)
          sweepSharedRow<ThreeD>(row, r.i0, r.i1, row.in[r.i0 - 1], foreign, scratch, s, kernel);
        else
          sweepStretch<ThreeD, true>(row, r.i0, r.i1, loadNode<true>(row.in + r.i0 - 1), s);
        if (links) raiseFaces(*links, lowJDone, lowKDone, false);
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
      if (links && (lowJDone || lowKDone)) raiseFaces(*links, lowJDone, lowKDone, false);
    }
  }
  if (links) raiseFaces(*links, false, false, true);
}

}  // namespace

void solverCommon::sorSweep(const array3d<double>& p, const array3d<double>& rhs, const array3d<double>& prev, int t,
                            int sweep) {
  sweepTile(p, rhs, prev, t, sweep, nullptr);
}

void solverCommon::sweepTile(const array3d<double>& p, const array3d<double>& rhs, const array3d<double>& prev, int t,
                             int sweep, const sweepLinks* links) {
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
    sweepRange<true>(p.data, rhs.data, r, s, p.nx, p.nxy, lowI, highI, lowJ, highJ, lowK, highK, scratchOf(t), links);
  else
    sweepRange<false>(p.data, rhs.data, r, s, p.nx, p.nxy, lowI, highI, lowJ, highJ, false, false, scratchOf(t), links);

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
  threadResidual[residualSlot(t, sweep)] = worst[0];
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
  threadResidual[residualSlot(t, 0)] = threadResidual[residualSlot(t, 20)] = 0.0;
  copyTile(pfld, pOld, t);
  copyTile(pfld, pPrev, t);
  const int loopmax = c.loopmax;
  const int threads = std::min(static_cast<int>(threadResidual.size() / 2), c.numThreads);
  // Between tests the team does not meet: each thread keeps pace with the
  // tiles beside its own (sweepLinks), and meets the others only after a
  // test sweep and after the last. Tiles that do not meet face to face
  // (a thread layout the links do not describe) meet after every sweep.
  //
  // A test's share is written before that sweep's barrier, and its slot
  // next written two tests later, after the following test's barrier:
  // between the two every thread reads the same values in the same order,
  // however far ahead of the others a thread runs between tests.
  sweepLinks links;
  // Every thread takes the same choice (findPacing, before the region), or
  // the team's barriers would not match; and a tile without a thread would
  // hold its neighbours for ever, so the team must have a thread per tile.
  const bool paced = pacedTiles && teamSize == threads;
  if (paced) {
    links.ordered = orderedTiles;
    links.own = &sweepProgress[t];
    const std::array<int, tileFaces> beside = tileNeighbours(c, t, threads);
    for (int f = 0; f < tileFaces; ++f) {
      if (beside[f] < 0) continue;
      tileProgress& other = sweepProgress[beside[f]];
      links.beside[f] = f == highJFace ? &other.lowJ : f == highKFace ? &other.lowK : &other.whole;
    }
  }
  int sweep = 0;
  bool met = false;
  for (; sweep < loopmax && !met; ++sweep) {
    links.sweep = sweep;
    sweepTile(pfld, ppeRhs, pPrev, t, sweep, paced ? &links : nullptr);
    const bool test = sweep % 20 == 0;
    if (paced && !test && sweep + 1 < loopmax) continue;
    teamBarrier();
    if (!test) continue;
    double residual = 0.0;
    for (int n = 0; n < threads; ++n) residual = std::fmax(residual, threadResidual[residualSlot(n, sweep)]);
    residual *= invPresw;
    met = c.peps > residual;
    if (t != 0) continue;
    c.presResidual = residual;
    if (met) {
      c.presIterations = sweep;
      converged = 1;
    }
  }
  // Every thread is past the iteration's last barrier and waits on no count
  // until the next iteration, which begins behind further barriers.
  if (paced) {
    links.own->lowJ.value.store(0, std::memory_order_relaxed);
    links.own->lowK.value.store(0, std::memory_order_relaxed);
    links.own->whole.value.store(0, std::memory_order_relaxed);
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

void solverCommon::findPacing() {
  const appConfig& c = *cfg;
  const int threads = std::min(static_cast<int>(threadResidual.size() / 2), c.numThreads);
  pacedTiles = threads > 1 && c.numThreads == threads && tilesMeetFaceToFace(c, threads);
  orderedTiles = pacedTiles && tilesSplitAlongSlowestAxis(c, threads);
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
