// The constant-density step: fields at rest, sub-grid and scalar switches, a conserved species blob, a short cavity.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/solver/cavityCase.h"

namespace marv {
namespace {

struct openBox {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<incompSolver> solver;
  // n^3 (or n^2 with nz = 1) fluid nodes, no walls: the outer planes only
  // copy their inner neighbours.
  openBox(int nx, int ny, int nz, int threads = 1) {
    testing::setGrid(cfg, nx, ny, nz);
    testing::setTiles(cfg, 1, 1, threads);
    if (nz == 1) testing::setTiles(cfg, 1, threads, 1);
    cfg.ibm = 0;
    cfg.mu = 1e-3;
    cfg.deltat = 1e-3;
    setColourTables(cfg);
    constructDomain(domain, cfg);
    buildNodeLists(domain, cfg);
    solver = std::make_unique<incompSolver>(cfg, domain);
  }
};

TEST(IncompSolver, UniformFlowStaysUniform) {
  for (int nz : {1, 7}) {
    openBox b(9, 8, nz);
    b.cfg.uinw = 0.7, b.cfg.vinw = -0.2, b.cfg.winw = nz > 1 ? 0.3 : 0.0;
    setInitialFields(*b.solver);
    for (int s = 0; s < 20; ++s) b.solver->step();
    for (int n = 0; n < b.solver->ufld.count(); ++n) {
      ASSERT_NEAR(b.solver->ufld[n], 0.7, 1e-12) << "nz=" << nz << " at n=" << n;
      ASSERT_NEAR(b.solver->vfld[n], -0.2, 1e-12) << "nz=" << nz << " at n=" << n;
      ASSERT_NEAR(b.solver->pfld[n], 0.0, 1e-9) << "nz=" << nz << " at n=" << n;
    }
  }
}

TEST(IncompSolver, TwoDimensionsLeaveWAloneAndSubGridOffWritesNoStress) {
  testing::cavityCase flat(17, 100.0);
  for (int j = 1; j < 16; ++j)
    for (int i = 1; i < 16; ++i) flat.solver->wfld(i, j, 0) = 0.125;
  for (int s = 0; s < 30; ++s) flat.advance();
  for (int j = 1; j < 16; ++j)
    for (int i = 1; i < 16; ++i) ASSERT_EQ(flat.solver->wfld(i, j, 0), 0.125) << "at i=" << i << " j=" << j;

  openBox b(7, 7, 7);
  b.cfg.cs = dashValue;
  setInitialFields(*b.solver);
  for (int n = 0; n < b.solver->ufld.count(); ++n) b.solver->ufld[n] = std::sin(0.3 * n);
  b.solver->step();
  for (int n = 0; n < b.solver->tau12.count(); ++n) ASSERT_EQ(b.solver->tau12[n], 0.0) << "at n=" << n;

  // With the model on, a shear flow has stresses of the sign that damps it.
  openBox on(7, 7, 7);
  on.cfg.cs = 0.17;
  setInitialFields(*on.solver);
  for (int k = 0; k < 7; ++k)
    for (int j = 0; j < 7; ++j)
      for (int i = 0; i < 7; ++i) on.solver->ufld(i, j, k) = j * on.cfg.dy;  // du/dy = 1
  on.solver->interiorTerms(0);
  EXPECT_LT(on.solver->tau12(3, 3, 3), 0.0);
}

// A blob of species diffusing in still fluid with no walls: the interior sum
// changes only through the outer planes, whose copies make the flux zero.
// The age of still fluid grows by deltat a step.
TEST(IncompSolver, SpeciesBlobIsConservedAndAgeGrowsInAClosedBox) {
  for (int threads : {1, 2}) {
    openBox b(17, 16, 1, threads);
    b.cfg.speciesFlag = 1, b.cfg.ageFlag = 1;
    b.cfg.sc = 0.5;
    b.solver = std::make_unique<incompSolver>(b.cfg, b.domain);
    setInitialFields(*b.solver);
    for (int j = 0; j < 16; ++j)
      for (int i = 0; i < 17; ++i) b.solver->yfld(i, j, 0) = std::exp(-((i - 8) * (i - 8) + (j - 7) * (j - 7)) / 6.0);
    auto interiorSum = [&] {
      double sum = 0.0;
      for (int j = 1; j < 15; ++j)
        for (int i = 1; i < 16; ++i) sum += b.solver->yfld(i, j, 0);
      return sum;
    };
    applyScalar(b.domain, b.solver->yfld, b.cfg.bcMassfr, b.domain.massfrCells);
    const double before = interiorSum();
    for (int s = 0; s < 200; ++s) b.solver->step();
    EXPECT_NEAR(interiorSum(), before, 1e-12 * before) << threads << " threads";
    EXPECT_LT(b.solver->yfld(8, 7, 0), 0.99) << "the blob spreads";
    EXPECT_NEAR(b.solver->afld(8, 7, 0), 200 * b.cfg.deltat, 1e-13) << "the age grows by deltat in still fluid";
    EXPECT_NEAR(b.solver->afld(0, 7, 0), 200 * b.cfg.deltat, 1e-13) << "outer planes copy their neighbour";
  }
}

TEST(IncompSolver, CavityDevelopsAPrimaryVortexAndSettles) {
  testing::cavityCase c(33, 100.0);
  auto snapshot = [&] {
    return std::vector<double>(c.solver->ufld.data, c.solver->ufld.data + c.solver->ufld.count());
  };
  auto change = [](const std::vector<double>& a, const std::vector<double>& b) {
    double worst = 0.0;
    for (std::size_t n = 0; n < a.size(); ++n) worst = std::max(worst, std::fabs(a[n] - b[n]));
    return worst;
  };
  for (int s = 0; s < 100; ++s) c.advance();
  const auto at100 = snapshot();
  for (int s = 0; s < 200; ++s) c.advance();
  const double earlyChange = change(at100, snapshot());
  for (int s = 0; s < 500; ++s) c.advance();
  const auto at800 = snapshot();
  for (int s = 0; s < 200; ++s) c.advance();
  EXPECT_LT(change(at800, snapshot()), 0.2 * earlyChange) << "the flow settles toward its steady state";
  EXPECT_LT(c.maxDivergence(), 0.05) << "the core stays nearly free of divergence (velocity gradients are O(1))";
  const int mid = 16;
  // Primary vortex: return flow along the bottom half of the vertical
  // centreline, up on the left and down on the right of the horizontal one.
  EXPECT_LT(c.solver->ufld(mid, 8, 0), -0.05);
  EXPECT_GT(c.solver->ufld(mid, 30, 0), 0.2);
  EXPECT_GT(c.solver->vfld(6, mid, 0), 0.05);
  EXPECT_LT(c.solver->vfld(26, mid, 0), -0.05);
  EXPECT_EQ(c.solver->ufld(mid, 32, 0), 1.0) << "the lid";
  EXPECT_EQ(c.solver->ufld(0, mid, 0), 0.0) << "the wall";
}

// A lid moving the other way gives the mirror image of the flow, up to the
// pressure tolerance (the sweep order is not mirror-symmetric). One and two
// threads agree to the same tolerance.
TEST(IncompSolver, MirroredCavityAndThreadCountsAgree) {
  testing::cavityCase right(17, 100.0, 1);
  testing::cavityCase left(17, 100.0, 1, true);
  testing::cavityCase twoThreads(17, 100.0, 2);
  for (int s = 0; s < 100; ++s) {
    right.advance();
    left.advance();
    twoThreads.advance();
  }
  for (int j = 0; j < 17; ++j)
    for (int i = 0; i < 17; ++i) {
      ASSERT_NEAR(right.solver->ufld(i, j, 0), -left.solver->ufld(16 - i, j, 0), 1e-6) << "at i=" << i << " j=" << j;
      ASSERT_NEAR(right.solver->vfld(i, j, 0), left.solver->vfld(16 - i, j, 0), 1e-6) << "at i=" << i << " j=" << j;
      ASSERT_NEAR(right.solver->ufld(i, j, 0), twoThreads.solver->ufld(i, j, 0), 1e-6) << "at i=" << i << " j=" << j;
    }
}

}  // namespace
}  // namespace marv
