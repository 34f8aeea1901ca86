// The variable-density step: rest under a body force, the constant-density limit, the heated cavity's circulation.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/solver/cavityCase.h"

namespace marv {
namespace {

using thermoBox = testing::openBox<incompSolverThermo>;

TEST(IncompSolverThermo, UniformGasAtRestStaysAtRestUnderABodyForce) {
  for (int nz : {1, 5}) {
    thermoBox b(7, 6, nz, 1);
    b.cfg.gfx = 3.0, b.cfg.gfy = -9.8;
    EXPECT_EQ(b.solver->rfld(2, 2, 0), b.cfg.rhow) << "the density of the initial field is rhow";
    for (int s = 0; s < 20; ++s) b.solver->step();
    for (int n = 0; n < b.solver->ufld.count(); ++n) {
      // gfx (1 - rhow/rho) vanishes up to the rounding of rhow/rho.
      ASSERT_NEAR(std::fabs(b.solver->ufld[n]) + std::fabs(b.solver->vfld[n]), 0.0, 1e-14) << nz << " n=" << n;
      ASSERT_EQ(b.solver->tfld[n], b.cfg.tempw) << nz << " n=" << n;
    }
  }
}

// At uniform temperature and without a body force the variable-density step
// is the constant-density one with rho = rhow, up to round-off.
TEST(IncompSolverThermo, UniformTemperatureReducesToConstantDensity) {
  testing::cavityCase reference(17, 100.0);
  thermoBox b(17, 17, 1, 1);
  b.cfg.mu = reference.cfg.mu * b.cfg.rhow;  // the same kinematic viscosity
  b.cfg.uinb = 1.0;
  b.cfg.peps = reference.cfg.peps;
  b.cfg.loopmax = reference.cfg.loopmax;
  b.cfg.tempwallk = b.cfg.tempb = b.cfg.tempw;
  setColourTables(b.cfg);
  b.cfg.bcTypePresent = reference.cfg.bcTypePresent;
  for (int j = 0; j < 17; ++j)
    for (int i = 0; i < 17; ++i) b.domain.bcFlag(i, j, 0) = reference.domain.bcFlag(i, j, 0);
  b.start();
  reference.cfg.deltat = b.cfg.deltat = 2e-3;
  for (int s = 0; s < 200; ++s) {
    reference.solver->step();
    b.solver->step();
  }
  for (int j = 0; j < 17; ++j)
    for (int i = 0; i < 17; ++i) {
      ASSERT_NEAR(b.solver->ufld(i, j, 0), reference.solver->ufld(i, j, 0), 1e-9) << i << "," << j;
      ASSERT_NEAR(b.solver->vfld(i, j, 0), reference.solver->vfld(i, j, 0), 1e-9) << i << "," << j;
    }
}

TEST(IncompSolverThermo, HeatedCavityCirculatesAndTransfersHeat) {
  testing::heatedCavity c(17, 1e4, 0.71);
  for (int s = 0; s < 400; ++s) c.advance();
  EXPECT_GT(c.solver->vfld(2, 8, 0), 0.0) << "up along the hot wall";
  EXPECT_LT(c.solver->vfld(14, 8, 0), 0.0) << "down along the cold wall";
  EXPECT_GT(c.hotWallNusselt(), 1.0) << "more than conduction alone";
  EXPECT_EQ(c.solver->tfld(0, 8, 0), c.hot);
  EXPECT_EQ(c.solver->tfld(16, 8, 0), c.cold);
}

}  // namespace
}  // namespace marv
