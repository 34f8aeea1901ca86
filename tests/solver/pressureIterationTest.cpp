// The pressure iteration: a manufactured Poisson problem on 1 and 2 threads, the stop test, relaxation, mean removal.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "domain/bcDomain.h"
#include "tests/solver/cavityCase.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

using testing::pressureOnly;

// p = x^2 + y^2 (+ z^2): the seven-point Laplacian of a quadratic is exact,
// so the discrete solution is this field itself.
double exact(double x, double y, double z) { return x * x + y * y + z * z; }

struct poissonCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<pressureOnly> solver;
  // Grid n x n (x nz), tiles npx x npy x npz; boundary nodes hold the exact
  // solution, interior nodes start at 0, ppeRhs = 4 (6 in three dimensions).
  poissonCase(int n, int nz, int npx, int npy, int npz) {
    testing::setGrid(cfg, n, n, nz, 1.0, 1.0, 1.0);
    testing::setTiles(cfg, npx, npy, npz);
    cfg.presw = 1.0;
    constructDomain(domain, cfg);
    solver = std::make_unique<pressureOnly>(cfg, domain);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
          const bool inner = i > 0 && i < n - 1 && j > 0 && j < n - 1 && (nz == 1 || (k > 0 && k < nz - 1));
          solver->pfld(i, j, k) = inner ? 0.0 : exact(cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k]);
          solver->tau11(i, j, k) = nz == 1 ? 4.0 : 6.0;
        }
  }
  double maxError() const {
    double worst = 0.0;
    for (int k = 0; k < cfg.nz; ++k)
      for (int j = 0; j < cfg.ny; ++j)
        for (int i = 0; i < cfg.nx; ++i)
          worst =
              std::fmax(worst, std::fabs(solver->pfld(i, j, k) - exact(cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k])));
    return worst;
  }
};

// One thread, and two split along each axis.
using layout = std::tuple<int, int, int>;
std::vector<layout> layouts(int nz) {
  if (nz == 1) return {{1, 1, 1}, {2, 1, 1}, {1, 2, 1}};
  return {{1, 1, 1}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}};
}

TEST(PressureIteration, ManufacturedPoissonConvergesWithOneAndTwoThreads) {
  for (int n : {3, 7, 16, 17, 65})
    for (int nz : {1, n})
      for (const auto& [x, y, z] : nz > 17 ? std::vector<layout>{} : layouts(nz)) {
        SCOPED_TRACE(::testing::Message() << n << " " << nz << " tiles " << x << y << z);
        poissonCase c(n, nz, x, y, z);
        c.cfg.peps = 1e-13, c.cfg.loopmax = 20000;
        c.solver->step();
        EXPECT_TRUE(c.solver->converged);
        EXPECT_EQ(c.cfg.presIterations % 20, 0);
        EXPECT_LT(c.maxError(), 1e-9);
      }
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

}  // namespace
}  // namespace marv
