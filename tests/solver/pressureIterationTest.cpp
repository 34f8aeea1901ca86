// The pressure iteration: a manufactured Poisson problem on 1 and 2 threads, the stop test, relaxation; every row
// kernel against a plain sweep written here, on all row lengths; the team barrier.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "domain/bcDomain.h"
#include "solver/sweepRows.h"
#include "tests/solver/cavityCase.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

using testing::pressureOnly;

// p = x^2 + y^2 (+ z^2): the seven-point Laplacian of a quadratic is exact,
// so the discrete solution is this field itself.
double exact(double x, double y, double z) { return x * x + y * y + z * z; }

// A pressure-only solver on nx x ny x nz nodes over 1 x ly x lz m, tiles npx x npy x npz.
struct pressureCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<pressureOnly> solver;
  pressureCase(int nx, int ny, int nz, double ly, double lz, int npx, int npy, int npz) {
    testing::setGrid(cfg, nx, ny, nz, 1.0, ly, lz);
    testing::setTiles(cfg, npx, npy, npz);
    cfg.presw = 1.0;
    constructDomain(domain, cfg);
    solver = std::make_unique<pressureOnly>(cfg, domain);
  }
  // f(i, j, k, x, y, z, p, ppeRhs) at every node.
  template <class F>
  void each(F f) {
    for (int k = 0; k < cfg.nz; ++k)
      for (int j = 0; j < cfg.ny; ++j)
        for (int i = 0; i < cfg.nx; ++i)
          f(i, j, k, cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k], solver->pfld(i, j, k), solver->tau11(i, j, k));
  }
};

// Grid n x n (x nz) over 1 m; boundary nodes hold the exact solution,
// interior nodes start at 0, ppeRhs = 4 (6 in three dimensions).
struct poissonCase : pressureCase {
  poissonCase(int n, int nz, int npx, int npy, int npz) : pressureCase(n, n, nz, 1.0, 1.0, npx, npy, npz) {
    each([&](int i, int j, int k, double x, double y, double z, double& p, double& rhs) {
      const bool inner = i > 0 && i < n - 1 && j > 0 && j < n - 1 && (nz == 1 || (k > 0 && k < nz - 1));
      p = inner ? 0.0 : exact(x, y, z);
      rhs = nz == 1 ? 4.0 : 6.0;
    });
  }
  double maxError() {
    double worst = 0.0;
    each([&](int, int, int, double x, double y, double z, double& p, double&) {
      worst = std::fmax(worst, std::fabs(p - exact(x, y, z)));
    });
    return worst;
  }
};

// One thread, and two split along each axis.
using layout = std::tuple<int, int, int>;
std::vector<layout> layouts(int nz) {
  if (nz == 1) return {{1, 1, 1}, {2, 1, 1}, {1, 2, 1}};
  return {{1, 1, 1}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}};
}

// Tiles with a tile on both sides in one axis, and tiles beside each other in two axes: the threads keep pace
// with more than one neighbour at once.
std::vector<layout> moreLayouts(int nz) {
  if (nz == 1) return {{1, 3, 1}, {2, 2, 1}};
  return {{1, 1, 3}, {1, 2, 2}, {2, 1, 2}};
}

TEST(PressureIteration, ManufacturedPoissonConvergesWithOneAndTwoThreads) {
  for (int n : {3, 7, 16, 17, 65})
    for (int nz : {1, n}) {
      std::vector<layout> all = nz > 17 ? std::vector<layout>{} : layouts(nz);
      if (n == 3 || n == 7 || n == 17)
        for (const layout& more : moreLayouts(nz)) all.push_back(more);
      for (const auto& [x, y, z] : all) {
        SCOPED_TRACE(::testing::Message() << n << " " << nz << " tiles " << x << y << z);
        poissonCase c(n, nz, x, y, z);
        c.cfg.peps = 1e-13, c.cfg.loopmax = 20000;
        c.solver->step();
        EXPECT_TRUE(c.solver->converged);
        EXPECT_EQ(c.cfg.presIterations % 20, 0);
        EXPECT_LT(c.maxError(), 1e-9);
      }
    }
}

// Between tests the threads do not meet, yet every iteration must end with all of them past the same last sweep,
// whatever loopmax is, and the next step must start from a clean slate: several steps in a row, with loopmax
// before, on and after a test sweep.
TEST(PressureIteration, ThreadsThatKeepPaceEndTogetherOnAnyLoopmax) {
  for (int nz : {1, 9})
    for (const auto& [x, y, z] : moreLayouts(nz))
      for (int loopmax : {1, 2, 7, 20, 21, 41}) {
        SCOPED_TRACE(::testing::Message() << "nz " << nz << " tiles " << x << y << z << " loopmax " << loopmax);
        poissonCase c(13, nz, x, y, z);
        // Gauss-Seidel, and Jacobi across tiles: from an error of one sign both only shrink it, node by node.
        c.cfg.peps = 0.0, c.cfg.loopmax = loopmax, c.cfg.omega = 1.0;
        double error = c.maxError();
        for (int step = 0; step < 3; ++step) {
          c.solver->step();
          ASSERT_EQ(c.solver->sweepCount, loopmax);
          ASSERT_EQ(c.cfg.presIterations, loopmax);
          const double now = c.maxError();
          EXPECT_LT(now, error) << "step " << step;  // every step's sweeps made progress
          error = now;
        }
      }
}

// The tiles beside each tile across its faces, and a layout whose tiles do not meet face to face, which makes the
// team meet after every sweep; the iteration still converges there.
TEST(PressureIteration, TileNeighboursAcrossFacesAndLayoutsThatDoNotMatch) {
  appConfig cfg;
  testing::setGrid(cfg, 9, 9, 1);
  testing::setTiles(cfg, 2, 2, 1);  // threads x fastest: 0 1 below, 2 3 above
  using faces = std::array<int, tileFaces>;
  EXPECT_EQ(tileNeighbours(cfg, 0, 4), (faces{-1, 1, -1, 2, -1, -1}));
  EXPECT_EQ(tileNeighbours(cfg, 3, 4), (faces{2, -1, 1, -1, -1, -1}));
  EXPECT_EQ(tileNeighbours(cfg, 4, 4), (faces{-1, -1, -1, -1, -1, -1}));  // no such thread
  EXPECT_TRUE(tilesMeetFaceToFace(cfg, 4));
  EXPECT_EQ(tileNeighbours(cfg, 0, 3), (faces{-1, 1, -1, 2, -1, -1}));
  EXPECT_EQ(tileNeighbours(cfg, 2, 3), (faces{-1, -2, 0, -1, -1, -1}));  // thread 3 is not in the team
  EXPECT_FALSE(tilesMeetFaceToFace(cfg, 3));

  appConfig deep;
  testing::setGrid(deep, 5, 5, 7);
  testing::setTiles(deep, 1, 1, 3);
  EXPECT_EQ(tileNeighbours(deep, 1, 3), (faces{-1, -1, -1, -1, 0, 2}));

  // One tile below two that split the rows above it in i.
  poissonCase c(17, 1, 1, 3, 1);
  c.cfg.tileI0 = {0, 0, 8}, c.cfg.tileI1 = {17, 8, 17};
  c.cfg.tileJ0 = {0, 8, 8}, c.cfg.tileJ1 = {8, 17, 17};
  ASSERT_FALSE(tilesMeetFaceToFace(c.cfg, 3));
  c.cfg.peps = 1e-13, c.cfg.loopmax = 20000;
  c.solver->step();
  EXPECT_TRUE(c.solver->converged);
  EXPECT_LT(c.maxError(), 1e-9);
}

TEST(PressureIteration, TestsFallOnEveryTwentiethSweepAndTheComparisonIsStrict) {
  // The residual after sweep 0, with a tolerance equal to it and one just above: strictly below stops at sweep 0.
  poissonCase probe(7, 1, 1, 1, 1);
  probe.cfg.peps = 0.0, probe.cfg.loopmax = 1;
  probe.solver->step();
  const double r0 = probe.cfg.presResidual;
  ASSERT_GT(r0, 0.0);
  for (double peps : {r0, std::nextafter(r0, 1.0)}) {
    poissonCase c(7, 1, 1, 1, 1);
    c.cfg.peps = peps, c.cfg.loopmax = 20;
    c.solver->step();
    EXPECT_EQ(std::pair(c.cfg.presIterations, c.solver->sweepCount), peps > r0 ? std::pair(0, 1) : std::pair(20, 20))
        << " at peps=" << peps;
  }

  // loopmax = 0 touches nothing.
  poissonCase none(7, 1, 1, 1, 1);
  none.cfg.loopmax = 0, none.cfg.presResidual = 123.0, none.cfg.presIterations = 77;
  none.solver->step();
  EXPECT_EQ(std::tuple(none.cfg.presResidual, none.cfg.presIterations, none.solver->pfld(3, 3, 0)),
            std::tuple(123.0, 77, 0.0));
}

TEST(PressureIteration, UnderRelaxationAveragesInteriorNodesWithTheOldPressure) {
  // A whole iteration on one thread, with and without relaxation.
  poissonCase full(16, 1, 1, 1, 1), half(16, 1, 1, 1, 1);
  for (poissonCase* c : {&full, &half}) {
    for (int n = 0; n < c->solver->pfld.count(); ++n) c->solver->pfld[n] += 1.0;  // old pressure 1 inside
    c->cfg.loopmax = 20;
  }
  half.cfg.presRelax = 0.5f;
  full.solver->step();
  half.solver->step();
  for (int j = 0; j < 16; ++j)
    for (int i = 0; i < 16; ++i) {
      const bool inner = i > 0 && i < 15 && j > 0 && j < 15;
      const double expected = inner ? 0.5 * full.solver->pfld(i, j, 0) + 0.5 : full.solver->pfld(i, j, 0);
      ASSERT_DOUBLE_EQ(half.solver->pfld(i, j, 0), expected) << i << "," << j;
    }
}

// Restores the kernel a run would choose, whatever a test selected.
struct kernelGuard {
  sweepInstructions saved = sweepInstructionsInUse();
  ~kernelGuard() { useSweepInstructions(saved); }
};

// A rough field: neighbouring nodes differ, so that a node taken with a
// wrong neighbour, an old value for a new one or a lost block shows.
double rough(int i, int j, int k) { return std::sin(1.3 * i + 0.7 * j * j + 2.1 * k) + 0.01 * i * j; }

// The update as written, node by node in k, j, i order, in place, over the
// interior nodes with i0 <= i < i1.
std::vector<double> referenceSweeps(const appConfig& g, std::vector<double> p, const std::vector<double>& rhs,
                                    int sweeps, int i0 = 1, int i1 = -1) {
  if (i1 < 0) i1 = g.nx - 1;
  const bool threeD = g.nz > 1;
  const double ax = 1 / g.dx / g.dx, ay = 1 / g.dy / g.dy, az = threeD ? 1 / g.dz / g.dz : 0.0;
  const double dx2 = g.dx * g.dx, dy2 = g.dy * g.dy, dz2 = g.dz * g.dz;
  const double relax = threeD ? g.omega * 0.5 * dx2 * dy2 * dz2 / (dy2 * dz2 + dx2 * dz2 + dx2 * dy2)
                              : g.omega * 0.5 * dx2 * dy2 / (dy2 + dx2);
  auto at = [&](int i, int j, int k) -> double& { return p[i + g.nx * (j + g.ny * k)]; };
  for (int s = 0; s < sweeps; ++s)
    for (int k = threeD ? 1 : 0; k < (threeD ? g.nz - 1 : 1); ++k)
      for (int j = 1; j < g.ny - 1; ++j)
        for (int i = std::max(i0, 1); i < std::min(i1, g.nx - 1); ++i) {
          const double zs = threeD ? at(i, j, k + 1) + at(i, j, k - 1) : 0.0;
          at(i, j, k) = relax * (ax * (at(i + 1, j, k) + at(i - 1, j, k)) + ay * (at(i, j + 1, k) + at(i, j - 1, k)) +
                                 az * zs - rhs[i + g.nx * (j + g.ny * k)]) +
                        (1.0 - g.omega) * at(i, j, k);
        }
  return p;
}

std::vector<sweepInstructions> kernelsOnHost() {
  std::vector<sweepInstructions> sets{sweepInstructions::baseline};
  if (hostSupports(sweepInstructions::avx2Fma)) sets.push_back(sweepInstructions::avx2Fma);
  return sets;
}

std::string name(sweepInstructions set) { return set == sweepInstructions::avx2Fma ? "avx2Fma" : "baseline"; }

// One tile: the whole row goes through the kernel. Rows of 1 to 13 interior
// nodes cover the blocks of two and four and every remainder.
TEST(SweepRows, EveryKernelFollowsTheLexicographicSweepOnRowsOfEveryLength) {
  kernelGuard guard;
  for (sweepInstructions set : kernelsOnHost()) {
    ASSERT_EQ(useSweepInstructions(set), set);
    for (int nz : {1, 5})
      for (int nx = 3; nx <= 15; ++nx) {
        pressureCase c(nx, 6, nz, 0.8, 0.6, 1, 1, 1);            // dx, dy, dz all different
        c.cfg.peps = 0.0, c.cfg.loopmax = 5, c.cfg.omega = 1.7;  // never met: exactly loopmax sweeps
        c.each([](int i, int j, int k, double, double, double, double& p, double& rhs) {
          p = rough(i, j, k), rhs = 3.0 * rough(j, k, i);
        });
        const int count = c.solver->pfld.count();
        const std::vector<double> start(c.solver->pfld.data, c.solver->pfld.data + count);
        const std::vector<double> rhs(c.solver->tau11.data, c.solver->tau11.data + count);
        const std::vector<double> expected = referenceSweeps(c.cfg, start, rhs, c.cfg.loopmax);
        c.solver->step();
        for (int n = 0; n < count; ++n)
          ASSERT_NEAR(c.solver->pfld[n], expected[n], 1e-12 * (1.0 + std::fabs(expected[n])))
              << name(set) << " nx=" << nx << " nz=" << nz << " node " << n;
      }
  }
}

// Tiles swept one after the other by one thread: the rows next to another
// tile take their copies and the i ends their scalar nodes, and the result
// must be the sweep in that order. For tiles split in j or k that order is
// the whole grid's; for a split in i it is the left part of every row first.
TEST(SweepRows, TilesSweptInTurnFollowTheSweepInTheirOrder) {
  kernelGuard guard;
  for (sweepInstructions set : kernelsOnHost()) {
    ASSERT_EQ(useSweepInstructions(set), set);
    for (int nz : {1, 6})
      for (int nx : {7, 13})
        for (const auto& [x, y, z] : layouts(nz)) {
          pressureCase c(nx, 9, nz, 0.8, 0.6, x, y, z);
          c.cfg.omega = 1.7;
          c.each([](int i, int j, int k, double, double, double, double& p, double& rhs) {
            p = rough(i, j, k), rhs = 3.0 * rough(j, k, i);
          });
          const int count = c.solver->pfld.count();
          std::vector<double> expected(c.solver->pfld.data, c.solver->pfld.data + count);
          const std::vector<double> rhs(c.solver->tau11.data, c.solver->tau11.data + count);
          for (int sweep = 1; sweep <= 3; ++sweep)
            for (int t = 0; t < c.cfg.numThreads; ++t) {
              c.solver->sorSweep(c.solver->pfld, c.solver->tau11, c.solver->divU, t, sweep);
              if (x == 1 && t == 0) expected = referenceSweeps(c.cfg, expected, rhs, 1);
              if (x == 2) expected = referenceSweeps(c.cfg, expected, rhs, 1, c.cfg.tileI0[t], c.cfg.tileI1[t]);
            }
          for (int n = 0; n < count; ++n)
            ASSERT_NEAR(c.solver->pfld[n], expected[n], 1e-12 * (1.0 + std::fabs(expected[n])))
                << name(set) << " nx=" << nx << " nz=" << nz << " tiles " << x << y << z << " node " << n;
        }
  }
}

// Tiles split along the axis the sweep runs slowest keep an order on all threads: each reads the tile below as
// it finished the previous sweep and the tile above as it started the present one. The team's iteration must
// then be, to the bit, the tiles swept one after the other from the top, whatever the timing of the threads.
TEST(PressureIteration, TilesAlongTheSlowestAxisGiveTheTilesSweptFromTheTopOnAnyTiming) {
  for (int nz : {1, 7})
    for (int tiles : {2, 3})
      for (int loopmax : {5, 41}) {
        SCOPED_TRACE(::testing::Message() << "nz " << nz << ", " << tiles << " tiles, loopmax " << loopmax);
        auto start = [&](pressureCase& c) {
          c.cfg.omega = 1.7, c.cfg.peps = 0.0, c.cfg.loopmax = loopmax;
          c.each([](int i, int j, int k, double, double, double, double& p, double& rhs) {
            p = rough(i, j, k), rhs = 3.0 * rough(j, k, i);
          });
        };
        pressureCase team(11, 13, nz, 0.8, 0.6, 1, nz == 1 ? tiles : 1, nz == 1 ? 1 : tiles);
        pressureCase inTurn(11, 13, nz, 0.8, 0.6, 1, nz == 1 ? tiles : 1, nz == 1 ? 1 : tiles);
        start(team), start(inTurn);
        ASSERT_TRUE(tilesSplitAlongSlowestAxis(team.cfg, tiles));
        for (int repeat = 0; repeat < 2; ++repeat) team.solver->step();
        for (int sweep = 0; sweep < 2 * loopmax; ++sweep)
          for (int t = tiles - 1; t >= 0; --t)
            inTurn.solver->sorSweep(inTurn.solver->pfld, inTurn.solver->tau11, inTurn.solver->divU, t, sweep);
        const int count = team.solver->pfld.count();
        for (int n = 0; n < count; ++n) ASSERT_EQ(team.solver->pfld[n], inTurn.solver->pfld[n]) << "node " << n;
      }
}

// Each thread writes its slot of round r, meets the others and must see every slot at round r: a barrier that
// lets a thread through early or does not publish the writes fails (teams of 2 and 3, more than the cores).
TEST(TeamBarrier, NoThreadPassesBeforeAllHaveArrivedAndAllWritesAreSeen) {
  for (int team : {2, 3}) {
    std::vector<int> slot(team, -1);
    std::vector<int> wrong(team, 0);
    const int rounds = 300;
    runTeam(team, [&](int t) {
      for (int r = 0; r < rounds; ++r) {
        slot[t] = r;
        teamBarrier();
        for (int other = 0; other < team; ++other) wrong[t] += slot[other] != r;
        teamBarrier();
      }
    });
    for (int t = 0; t < team; ++t) EXPECT_EQ(wrong[t], 0) << "thread " << t << " of " << team;
  }
  teamBarrier();  // the master alone: must not wait for the team that has ended
  SUCCEED();
}

// One thread raises a count after writing the slot of each round, the others wait for it and must find the slot
// written; now and then the raiser lingers long enough for the waiters to fall asleep, and must wake them.
TEST(TeamCount, AWaiterReturnsOnlyOnceTheCountIsReachedAndSeesWhatCameBefore) {
  for (int team : {2, 3}) {
    teamCount count;
    const int rounds = 200;
    std::vector<int> slot(rounds + 1, -1);
    std::vector<int> wrong(team, 0);
    runTeam(team, [&](int t) {
      for (int r = 1; r <= rounds; ++r) {
        if (t == 0) {
          if (r % 50 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(20));
          slot[r] = r;
          teamRaise(count, r);
        } else {
          teamAwait(count, r);
          wrong[t] += slot[r] != r;
        }
      }
    });
    for (int t = 1; t < team; ++t) EXPECT_EQ(wrong[t], 0) << "thread " << t << " of " << team;
    EXPECT_EQ(count.sleepers.load(), 0);
  }
}

}  // namespace
}  // namespace marv
