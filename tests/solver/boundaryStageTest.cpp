// The boundary stage on small hand-built domains, staircase and immersed, on one and two threads; the pressure
// source and outer-plane derivatives of the step against hand values.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "solver/solverCommon.h"
#include "solver/timeStepTerms.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

// Grid nx*ny*nz over 1 m, all fluid, fields with distinct node values. Blue
// blows along +x with u = 2 fixed and v free; Black walls are fixed at
// 300 K, Non-Preset walls adiabatic (0).
struct stageCase {
  appConfig cfg;
  bcDomain domain;
  ownedArray3d<double> u, v, w, q;
  stageCase(int nx, int ny, int nz) {
    testing::setGrid(cfg, nx, ny, nz);
    testing::setTiles(cfg, 1, 1, 1);
    cfg.ibm = 0;
    cfg.bcTypePresent = {1, 1, 1, 0, 0, 0, 0, 0, 1, 0};
    cfg.bcU[2] = 2.0, cfg.bcV[2] = dashValue, cfg.bcW[2] = 0.0;
    cfg.bcFixU[2] = 1.0, cfg.bcFixV[2] = 0.0, cfg.bcFixW[2] = 1.0;
    cfg.bcTemp = {300, 300, 310, 300, 300, 300, 300, 300, 0};
    constructDomain(domain, cfg);
    int scale = 1;
    for (auto* f : {&u, &v, &w, &q}) {
      *f = ownedArray3d<double>(nx, ny, nz);
      for (int n = 0; n < f->count(); ++n) (*f)[n] = scale * (0.25 + 0.001 * n);
      ++scale;
    }
  }
};

// The node whose old value the copy of the outer planes leaves at i: one
// layer in; on a line of two nodes both end with the second one's value.
int inward(int i, int n) { return n == 1 ? 0 : n == 2 ? 1 : i == 0 ? 1 : i == n - 1 ? n - 2 : i; }

TEST(BoundaryStage, WithoutWallsOnlyTheOuterPlanesCopyTheirInnerNeighbour) {
  for (int nx : {1, 2, 3, 7})
    for (int ny : {2, 3, 16})
      for (int nz : {1, 2, 3}) {
        stageCase c(nx, ny, nz);
        buildNodeLists(c.domain, c.cfg);
        // Each face node once with its inner neighbour; no z faces in two dimensions.
        ASSERT_EQ(c.domain.edgePairs.size(), std::size_t(2 * (ny * nz + nx * nz + (nz == 1 ? 0 : nx * ny))));
        ownedArray3d<double> before(nx, ny, nz);
        copyFrom(before, c.q);
        applyPressure(c.domain, c.q);
        for (int k = 0; k < nz; ++k)
          for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i)
              ASSERT_EQ(c.q(i, j, k), before(inward(i, nx), inward(j, ny), inward(k, nz)))
                  << nx << "x" << ny << "x" << nz << " at " << i << "," << j << "," << k;
      }
}

TEST(BoundaryStage, StaircaseWallsStopTheFlowInletsFixTheirComponentsAndScalarsCopyTheLastFluidNeighbour) {
  stageCase c(5, 5, 1);
  c.cfg.cmode = 1;
  c.cfg.bcFixTemp = {0, 1, 0, 0, 0, 0, 0, 0, 1};
  c.domain.bcFlag(0, 1, 0) = c.domain.bcFlag(0, 2, 0) = 2;  // Blue on the left face
  c.domain.bcFlag(2, 2, 0) = 1;                             // Black, 300 K
  c.domain.bcFlag(3, 1, 0) = 9;
  c.domain.bcFlag(1, 3, 0) = c.domain.bcFlag(2, 3, 0) = 8;  // adiabatic
  buildNodeLists(c.domain, c.cfg);
  const double vInside[2] = {c.v(1, 1, 0), c.v(1, 2, 0)};
  applyVelocity(c.domain, c.u, c.v, c.w);
  for (int n : {2 + 5 * 2, 3 + 5 * 1, 1 + 5 * 3}) EXPECT_EQ(c.u[n] + c.v[n] + c.w[n], 0.0) << "wall at n=" << n;
  for (int j : {1, 2})  // fixed u and w; a free v follows its neighbour
    EXPECT_EQ(std::tuple(c.u(0, j, 0), c.w(0, j, 0), c.v(0, j, 0)), std::tuple(2.0, 0.0, vInside[j - 1])) << j;

  applyScalar(c.domain, c.q, c.cfg.bcTemp, c.domain.tempCells);
  EXPECT_EQ(c.q(2, 2, 0), 300.0);
  // Neighbours go +x, -x, +y, -y and the last fluid one decides: -y for
  // (1,3); for (2,3), whose -y is the Black node, +y (after its own copy).
  EXPECT_EQ(c.q(1, 3, 0), c.q(1, 2, 0));
  EXPECT_EQ(c.q(2, 3, 0), c.q(2, 4, 0));
  setScalar(c.q, c.cfg.bcTemp, c.domain.tempCells);
  EXPECT_EQ(c.q(1, 3, 0), 0.0);

  // With no fluid neighbour at all a node keeps its value.
  stageCase boxed(3, 3, 1);
  boxed.cfg.cmode = 1, boxed.cfg.bcFixTemp[8] = 1;
  fill<int>(boxed.domain.bcFlag, 8);
  buildNodeLists(boxed.domain, boxed.cfg);
  const double centre = boxed.q(1, 1, 0);
  applyScalar(boxed.domain, boxed.q, boxed.cfg.bcTemp, boxed.domain.tempCells);
  EXPECT_EQ(boxed.q(1, 1, 0), centre);
}

TEST(BoundaryStage, PressureHasZeroGradientAtWallsAndIsZeroOnOpenCellsWhenAsked) {
  for (int open : {0, 1}) {
    stageCase c(4, 4, 1);
    c.domain.bcFlag(1, 1, 0) = c.domain.bcFlag(1, 0, 0) = 1;  // (1,0) is a wall, not open
    buildNodeLists(c.domain, c.cfg);
    c.cfg.openPresFlag = open;
    applyPressure(c.domain, c.q);
    SCOPED_TRACE(open);
    EXPECT_EQ(c.q(1, 1, 0), c.q(1, 2, 0)) << "+y, since -y is a wall";
    EXPECT_EQ(c.q(1, 0, 0), c.q(0, 0, 0)) << "-x, since -y clamps to the node";
    ASSERT_EQ(c.domain.openCells.size(), 15u);
    for (const cellNode& n : c.domain.openCells) EXPECT_EQ(c.q[n.at] == 0.0, open == 1) << n.i << "," << n.j;
  }
}

// Immersed form: a linear field makes S exact at an image point inside;
// the marker point (2 lx, 2 ly, 2 lz) lies outside and samples 0.
TEST(BoundaryStage, ImmersedGhostValuesGoThroughImagePointsIncludingOnesOutsideTheGrid) {
  stageCase c(5, 5, 5);
  c.cfg.ibm = 1, c.cfg.cmode = 1;
  c.cfg.bcFixTemp = {0, 1, 1, 0, 0, 0, 0, 0, 1};
  auto linear = [](double x, double y, double z) { return 1.0 + x + 2.0 * y + 3.0 * z; };
  ownedArray3d<double> p(5, 5, 5);
  for (int n = 0; n < p.count(); ++n)
    c.u[n] = c.v[n] = c.w[n] = c.q[n] = p[n] = linear(0.25 * (n % 5), 0.25 * (n / 5 % 5), 0.25 * (n / 25));
  auto ghost = [&](int i, int j, int k, int type, float x, float y, float z) {
    c.domain.bcFlag(i, j, k) = type;
    c.domain.imageX(i, j, k) = x, c.domain.imageY(i, j, k) = y, c.domain.imageZ(i, j, k) = z;
  };
  ghost(2, 2, 2, 1, 0.6f, 0.55f, 0.45f);  // Black, image inside
  ghost(1, 2, 2, 8, 2.0f, 2.0f, 2.0f);    // adiabatic, image outside
  ghost(2, 1, 2, 2, 2.0f, 2.0f, 2.0f);    // Blue, image outside
  c.domain.bcFlag(0, 0, 0) = 1;           // Black on a corner of the domain
  buildNodeLists(c.domain, c.cfg);
  const double s = linear(0.6f, 0.55f, 0.45f);

  applyVelocity(c.domain, c.u, c.v, c.w);
  EXPECT_NEAR(c.u(2, 2, 2) + c.w(2, 2, 2), -s, 1e-12) << "half the mirrored value";
  EXPECT_EQ(c.u(1, 2, 2), 0.0) << "image outside: the ghost stops";
  EXPECT_EQ(c.u(2, 1, 2), 1.5 * 2.0) << "fixed u: 1.5 U - 0.5*0";
  EXPECT_EQ(c.v(2, 1, 2), linear(0.5, 0.25, 0.5)) << "a free v is left alone";
  EXPECT_EQ(c.u(0, 0, 0), 0.0) << "wall nodes of the outer planes are held at 0";

  applyScalar(c.domain, c.q, c.cfg.bcTemp, c.domain.tempCells);
  EXPECT_NEAR(c.q(2, 2, 2), 1.5 * 300.0 - 0.5 * s, 1e-9);
  EXPECT_EQ(c.q(2, 1, 2), 1.5 * 310.0) << "fixed value, image outside";
  EXPECT_EQ(c.q(1, 2, 2), 0.0) << "adiabatic: the image value, 0 outside";

  applyPressure(c.domain, p);
  EXPECT_NEAR(p(2, 2, 2), s, 1e-12);
  EXPECT_EQ(p(1, 2, 2), 0.0);
}

class stageOnly : public solverCommon {
 public:
  using solverCommon::solverCommon;
  void step() override {
    runStep([&](int t) { boundaryStage(t); });
  }
};

TEST(BoundaryStage, WholeStageAgreesOnOneAndTwoThreads) {
  ownedArray3d<double> pressure[2];
  for (int threads : {1, 2}) {
    stageCase c(7, 6, 5);
    testing::setTiles(c.cfg, 1, 1, threads);
    c.cfg.speciesFlag = 1, c.cfg.ageFlag = 1;
    c.cfg.bcFixMassfr[1] = 1, c.cfg.bcMassfr[1] = 0.3;
    c.cfg.bcV[2] = 0.0, c.cfg.bcFixV[2] = 1.0;  // fully fixed and blowing in: the age restarts
    c.domain.bcFlag(3, 3, 2) = 1;
    c.domain.bcFlag(0, 2, 2) = 2;
    buildNodeLists(c.domain, c.cfg);
    stageOnly solver(c.cfg, c.domain);
    for (auto* f : {&solver.ufld, &solver.pfld, &solver.yfld, &solver.afld}) copyFrom(*f, c.q);
    solver.step();
    double sum = 0.0;
    for (int n = 0; n < solver.pfld.count(); ++n) sum += solver.pfld[n];
    EXPECT_NEAR(sum, 0.0, 1e-12) << "mean removed, threads " << threads;
    EXPECT_EQ(std::tuple(solver.yfld(3, 3, 2), solver.afld(0, 2, 2), solver.ufld(0, 2, 2)), std::tuple(0.3, 0.0, 2.0))
        << "threads " << threads;
    pressure[threads - 1] = ownedArray3d<double>(7, 6, 5);
    copyFrom(pressure[threads - 1], solver.pfld);
  }
  for (int n = 0; n < pressure[0].count(); ++n) ASSERT_NEAR(pressure[0][n], pressure[1][n], 1e-14) << n;
}

// Pressure source and one-sided outer-plane derivatives against hand values on a 3 x 3 grid (dx 0.5, dy 0.25).
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
