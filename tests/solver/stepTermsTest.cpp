// Pressure source and one-sided outer-plane derivatives against hand values on a 3 x 3 grid (dx 0.5, dy 0.25).
#include <gtest/gtest.h>

#include <vector>

#include "solver/timeStepTerms.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

struct grid3x3 {
  appConfig cfg;
  std::vector<double> u, v, w, rho, convX, convY, convZ, divU, ppe;
  stepTerms::fields f;
  grid3x3() : u(9), v(9), w(9), rho(9, 2.0), convX(9), convY(9), convZ(9), divU(9), ppe(9) {
    testing::setGrid(cfg, 3, 3, 1, 1.0, 0.5);  // dx = 0.5, dy = 0.25
    testing::setTiles(cfg, 1, 1, 1);
    cfg.mu = 0.1, cfg.rhow = 2.0, cfg.deltat = 0.1;
    f.u = u.data(), f.v = v.data(), f.w = w.data(), f.rho = rho.data();
    f.convX = convX.data(), f.convY = convY.data(), f.convZ = convZ.data(), f.divU = divU.data();
  }
  static int at(int i, int j) { return i + 3 * j; }
};

TEST(StepTerms, PressureSourceTakesTwiceMuTimesTheLaplacianOfTheDivergence) {
  grid3x3 g;
  const int c = grid3x3::at(1, 1);
  g.convX[grid3x3::at(0, 1)] = 1, g.convX[grid3x3::at(2, 1)] = 3;
  g.convY[grid3x3::at(1, 0)] = 2, g.convY[grid3x3::at(1, 2)] = -2;
  g.divU[c] = 1, g.divU[grid3x3::at(0, 1)] = 2, g.divU[grid3x3::at(2, 1)] = 4, g.divU[grid3x3::at(1, 2)] = 3;
  const tileRange centre{1, 2, 1, 2, 0, 1};

  // By hand: rhow gx(convX) = 2 * 2 = 4, rhow gy(convY) = 2 * -8 = -16,
  // 2 mu/dx^2 d2x(divU) = 0.8 * 4 = 3.2, 2 mu/dy^2 d2y(divU) = 3.2 * 1 = 3.2, rhow/deltat divU = 20.
  stepTerms::pressureRhs(g.f, g.ppe.data(), centre, stepTerms::factorsOf(g.cfg, 3, 9, false), g.cfg, false);
  EXPECT_NEAR(g.ppe[c], 14.4, 1e-12);

  // Variable density, rho = 2: (1/deltat)(gx(rho u) + gy(rho v)) = 10 * (4 + 4) = 80, gx(convX) + gy(convY)
  // = 2 - 8, and the same 6.4 of the divergence.
  g.u[grid3x3::at(0, 1)] = 1, g.u[grid3x3::at(2, 1)] = 3, g.v[grid3x3::at(1, 2)] = 1;
  stepTerms::pressureRhs(g.f, g.ppe.data(), centre, stepTerms::factorsOf(g.cfg, 3, 9, true), g.cfg, true);
  EXPECT_NEAR(g.ppe[c], 80.4, 1e-12);
}

TEST(StepTerms, OuterPlanesDifferenceOneSidedAcrossAndUpwindAlong) {
  grid3x3 g;
  const int left = grid3x3::at(0, 1), right = grid3x3::at(2, 1);
  g.u[left] = 1, g.u[grid3x3::at(1, 1)] = 3, g.u[grid3x3::at(0, 0)] = 0, g.u[grid3x3::at(0, 2)] = 2, g.u[right] = 5;
  g.v[left] = 0.5, g.v[grid3x3::at(0, 0)] = 1, g.v[grid3x3::at(0, 2)] = 3, g.v[grid3x3::at(1, 1)] = 7;
  g.v[grid3x3::at(2, 2)] = 1;
  stepTerms::faceTerms(g.f, g.cfg, 0, stepTerms::factorsOf(g.cfg, 3, 9, false), false);

  // Left plane: du/dx = (3 - 1)/0.5 = 4 forward; along y u is upwinded with
  // v = 0.5: (0.5 (2 - 0) - 0.5 * 0) / (2 dy) = 2; so convX = -(1 * 4 + 2).
  EXPECT_NEAR(g.convX[left], -6.0, 1e-12);
  // dv/dx = (7 - 0.5)/0.5 = 13 forward; along y (0.5 (3 - 1) - 0.5 * 3) * 2 = -1.
  EXPECT_NEAR(g.convY[left], -12.0, 1e-12);
  EXPECT_NEAR(g.divU[left], 4.0 + 4.0, 1e-12) << "du/dx one-sided plus dv/dy central";
  // Right plane: du/dx = (5 - 3)/0.5 backward, dv/dy = (1 - 0) * 2 central.
  EXPECT_NEAR(g.divU[right], 6.0, 1e-12);
}

}  // namespace
}  // namespace marv
