// Every row kernel of the pressure sweep against a plain sweep written here, on all row lengths; the team barrier.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "domain/bcDomain.h"
#include "solver/sweepRows.h"
#include "tests/solver/cavityCase.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

using testing::pressureOnly;

// Restores the kernel a run would choose, whatever a test selected.
struct kernelGuard {
  sweepInstructions saved = sweepInstructionsInUse();
  ~kernelGuard() { useSweepInstructions(saved); }
};

// A rough field: neighbouring nodes differ, so that a node taken with a
// wrong neighbour, an old value for a new one or a lost block shows.
double rough(int i, int j, int k) { return std::sin(1.3 * i + 0.7 * j * j + 2.1 * k) + 0.01 * i * j; }

struct sweepCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<pressureOnly> solver;
  sweepCase(int nx, int ny, int nz, int npx) {
    testing::setGrid(cfg, nx, ny, nz, 1.0, 0.8, 0.6);  // dx, dy, dz all different
    testing::setTiles(cfg, npx, 1, 1);
    cfg.presw = 1.0;
    cfg.peps = 0.0;  // never met: exactly loopmax sweeps
    cfg.loopmax = 5;
    cfg.omega = 1.7;
    constructDomain(domain, cfg);
    solver = std::make_unique<pressureOnly>(cfg, domain);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
          solver->pfld(i, j, k) = rough(i, j, k);
          solver->tau11(i, j, k) = 3.0 * rough(j, k, i);
        }
  }
};

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
        sweepCase c(nx, 6, nz, 1);
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

}  // namespace
}  // namespace marv
