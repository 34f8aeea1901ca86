// The boundary stage on small hand-built domains: the zero-gradient copy on
// the outer planes, walls and inlets in the staircase and the immersed form,
// scalars, pressure, and the whole stage on one and two threads.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "solver/solverCommon.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

// Node value that no boundary operation produces.
double seed(int n) { return 0.25 + 0.001 * n; }

struct stageCase {
  appConfig cfg;
  bcDomain domain;
  ownedArray3d<double> u, v, w, q;
  // Grid nx*ny*nz over 1 m, all fluid; Blue blows along +x with u fixed and
  // v free; Black walls at 300 K fixed, Non-Preset walls adiabatic (0).
  stageCase(int nx, int ny, int nz) {
    testing::setGrid(cfg, nx, ny, nz);
    testing::setTiles(cfg, 1, 1, 1);
    cfg.ibm = 0;
    cfg.bcTypePresent = {1, 1, 1, 0, 0, 0, 0, 0, 1, 0};
    cfg.bcU[2] = 2.0, cfg.bcFixU[2] = 1.0;
    cfg.bcV[2] = dashValue, cfg.bcFixV[2] = 0.0;
    cfg.bcW[2] = 0.0, cfg.bcFixW[2] = 1.0;
    cfg.bcTemp = {300, 300, 310, 300, 300, 300, 300, 300, 0};
    constructDomain(domain, cfg);
    for (auto* f : {&u, &v, &w, &q}) {
      *f = ownedArray3d<double>(nx, ny, nz);
      for (int n = 0; n < f->count(); ++n) (*f)[n] = seed(n) * (f == &u ? 1 : f == &v ? 2 : f == &w ? 3 : 4);
    }
  }
  void lists() { buildNodeLists(domain, cfg); }
};

// Where the copy of the outer planes takes a node's value from: one layer
// in, except that a line of two nodes ends with the inner value twice.
int inward(int i, int n) {
  if (n == 1) return 0;
  if (n == 2) return 1;
  return i == 0 ? 1 : i == n - 1 ? n - 2 : i;
}

TEST(BoundaryStage, WithoutWallsOnlyTheOuterPlanesCopyTheirInnerNeighbour) {
  for (int nx : {1, 2, 3, 7})
    for (int ny : {2, 3, 16})
      for (int nz : {1, 2, 3}) {
        stageCase c(nx, ny, nz);
        c.lists();
        const ownedArray3d<double> before = [&] {
          ownedArray3d<double> b(nx, ny, nz);
          copyFrom(b, c.q);
          return b;
        }();
        ownedArray3d<double> p(nx, ny, nz);
        copyFrom(p, c.q);
        applyScalar(c.domain, c.q, c.cfg.bcTemp, c.domain.tempCells);  // tempCells empty: cmode 0
        applyPressure(c.domain, p);
        for (int k = 0; k < nz; ++k)
          for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i) {
              const double expected = before(inward(i, nx), inward(j, ny), inward(k, nz));
              ASSERT_EQ(c.q(i, j, k), expected)
                  << " at " << nx << "x" << ny << "x" << nz << " i=" << i << " j=" << j << " k=" << k;
              ASSERT_EQ(p(i, j, k), expected) << " pressure at i=" << i << " j=" << j << " k=" << k;
            }
      }
}

TEST(BoundaryStage, StaircaseWallsStopTheFlowAndInletsImposeOnlyTheirFixedComponents) {
  stageCase c(5, 4, 1);
  c.domain.bcFlag(0, 1, 0) = c.domain.bcFlag(0, 2, 0) = 2;  // Blue on the left face
  c.domain.bcFlag(2, 2, 0) = 1;                             // a Black node inside
  c.domain.bcFlag(3, 1, 0) = 9;                             // a solid node
  c.cfg.bcNoFlow[2] = 0;
  c.lists();
  applyVelocity(c.domain, c.u, c.v, c.w);
  for (auto [i, j] : {std::pair{2, 2}, std::pair{3, 1}}) {
    EXPECT_EQ(c.u(i, j, 0), 0.0) << " at i=" << i << " j=" << j;
    EXPECT_EQ(c.v(i, j, 0), 0.0) << " at i=" << i << " j=" << j;
    EXPECT_EQ(c.w(i, j, 0), 0.0) << " at i=" << i << " j=" << j;
  }
  for (int j : {1, 2}) {
    EXPECT_EQ(c.u(0, j, 0), 2.0) << " fixed u at j=" << j;
    EXPECT_EQ(c.w(0, j, 0), 0.0) << " fixed w at j=" << j;
    EXPECT_EQ(c.v(0, j, 0), 2 * seed(1 + 5 * j)) << " free v follows its neighbour at j=" << j;
  }
  // A corner takes the y plane's copy, which came after the x plane's.
  EXPECT_EQ(c.u(0, 0, 0), seed(1 + 5));
}

TEST(BoundaryStage, StaircaseScalarsFixValuesOrCopyTheLastFluidNeighbour) {
  stageCase c(5, 5, 1);
  c.cfg.cmode = 1;
  c.cfg.bcFixTemp = {0, 1, 0, 0, 0, 0, 0, 0, 1};
  c.domain.bcFlag(2, 2, 0) = 1;                             // Black, fixed at 300 K
  c.domain.bcFlag(1, 3, 0) = c.domain.bcFlag(2, 3, 0) = 8;  // adiabatic Non-Preset
  c.lists();
  applyScalar(c.domain, c.q, c.cfg.bcTemp, c.domain.tempCells);
  EXPECT_EQ(c.q(2, 2, 0), 300.0);
  // (1,3): +x is solid, -x, +y and -y are fluid; in the order +x, -x, +y, -y
  // the last fluid neighbour, -y, decides.
  EXPECT_EQ(c.q(1, 3, 0), c.q(1, 2, 0));
  // (2,3): -y is the Black node, so +y (an outer node, after its copy) decides.
  EXPECT_EQ(c.q(2, 3, 0), c.q(2, 4, 0));
  EXPECT_NE(c.q(2, 3, 0), c.q(3, 3, 0));

  // A node whose neighbours are all solid keeps its value.
  stageCase boxed(3, 3, 1);
  boxed.cfg.cmode = 1;
  boxed.cfg.bcFixTemp[8] = 1;
  for (int n = 0; n < 9; ++n) boxed.domain.bcFlag[n] = 8;
  boxed.lists();
  const double centre = boxed.q(1, 1, 0);
  applyScalar(boxed.domain, boxed.q, boxed.cfg.bcTemp, boxed.domain.tempCells);
  EXPECT_EQ(boxed.q(1, 1, 0), centre);

  // setScalar assigns the value of each node's type.
  setScalar(c.q, c.cfg.bcTemp, c.domain.tempCells);
  EXPECT_EQ(c.q(1, 3, 0), 0.0);
  EXPECT_EQ(c.q(2, 2, 0), 300.0);
}

TEST(BoundaryStage, PressureHasZeroGradientAtWallsAndIsZeroOnOpenCellsWhenAsked) {
  for (int open : {0, 1}) {
    stageCase c(4, 4, 1);
    c.domain.bcFlag(1, 1, 0) = 1;
    c.domain.bcFlag(1, 0, 0) = 1;  // a wall node on the outer plane is not open
    c.lists();
    c.cfg.openPresFlag = open;
    applyPressure(c.domain, c.q);
    // (1,1): -y is a wall, so +y is the last fluid neighbour. (1,0): -y
    // clamps to itself, so -x decides.
    EXPECT_EQ(c.q(1, 1, 0), c.q(1, 2, 0)) << " at open=" << open;
    EXPECT_EQ(c.q(1, 0, 0), c.q(0, 0, 0)) << " at open=" << open;
    ASSERT_EQ(c.domain.openCells.size(), 15u);
    for (const cellNode& n : c.domain.openCells) {
      if (open) {
        EXPECT_EQ(c.q[n.at], 0.0) << " at i=" << n.i << " j=" << n.j;
      } else {
        EXPECT_NE(c.q[n.at], 0.0) << " at i=" << n.i << " j=" << n.j;
      }
    }
  }
}

// Immersed form: a linear field makes S exact at any image point inside;
// the marker point (2 lx, 2 ly, 2 lz) lies outside and samples 0.
TEST(BoundaryStage, ImmersedGhostValuesGoThroughImagePointsIncludingOnesOutsideTheGrid) {
  stageCase c(5, 5, 5);
  c.cfg.ibm = 1;
  c.cfg.cmode = 1;
  c.cfg.bcFixTemp = {0, 1, 1, 0, 0, 0, 0, 0, 1};
  c.cfg.bcNoFlow[2] = 0;
  auto linear = [](double x, double y, double z) { return 1.0 + x + 2.0 * y + 3.0 * z; };
  ownedArray3d<double> p(5, 5, 5);
  for (int k = 0; k < 5; ++k)
    for (int j = 0; j < 5; ++j)
      for (int i = 0; i < 5; ++i)
        c.u(i, j, k) = c.v(i, j, k) = c.w(i, j, k) = c.q(i, j, k) = p(i, j, k) = linear(0.25 * i, 0.25 * j, 0.25 * k);
  auto image = [&](int i, int j, int k, float x, float y, float z) {
    c.domain.imageX(i, j, k) = x, c.domain.imageY(i, j, k) = y, c.domain.imageZ(i, j, k) = z;
  };
  c.domain.bcFlag(2, 2, 2) = 1;  // Black ghost, image inside
  image(2, 2, 2, 0.6f, 0.55f, 0.45f);
  c.domain.bcFlag(1, 2, 2) = 8;  // adiabatic ghost, image outside
  image(1, 2, 2, 2.0f, 2.0f, 2.0f);
  c.domain.bcFlag(2, 1, 2) = 2;  // Blue ghost, image outside
  image(2, 1, 2, 2.0f, 2.0f, 2.0f);
  c.domain.bcFlag(0, 0, 0) = 1;  // Black on a corner of the domain
  c.lists();
  const double s = linear(0.6f, 0.55f, 0.45f);

  applyVelocity(c.domain, c.u, c.v, c.w);
  EXPECT_NEAR(c.u(2, 2, 2), -0.5 * s, 1e-12) << "half the mirrored value";
  EXPECT_NEAR(c.w(2, 2, 2), -0.5 * s, 1e-12);
  EXPECT_EQ(c.u(1, 2, 2), 0.0) << "a wall ghost with its image outside stops";
  EXPECT_EQ(c.u(2, 1, 2), 1.5 * 2.0) << "fixed u: 1.5 U - 0.5*0";
  EXPECT_EQ(c.v(2, 1, 2), linear(0.5, 0.25, 0.5)) << "a free v is left alone";
  EXPECT_EQ(c.w(2, 1, 2), 0.0);
  EXPECT_EQ(c.u(0, 0, 0), 0.0) << "a wall node on the outer planes is held at 0";

  applyScalar(c.domain, c.q, c.cfg.bcTemp, c.domain.tempCells);
  EXPECT_NEAR(c.q(2, 2, 2), 1.5 * 300.0 - 0.5 * s, 1e-9) << "fixed wall temperature";
  EXPECT_EQ(c.q(2, 1, 2), 1.5 * 310.0) << "fixed value, image outside";
  EXPECT_EQ(c.q(1, 2, 2), 0.0) << "adiabatic: the image value, 0 outside";

  applyPressure(c.domain, p);
  EXPECT_NEAR(p(2, 2, 2), s, 1e-12);
  EXPECT_EQ(p(1, 2, 2), 0.0);
}

// A solver whose step is the boundary stage alone.
class stageOnly : public solverCommon {
 public:
  using solverCommon::solverCommon;
  void step() override {
    runStep([&](int t) { boundaryStage(t); });
  }
};

TEST(BoundaryStage, WholeStageAgreesOnOneAndTwoThreads) {
  ownedArray3d<double> results[2][3];
  for (int threads : {1, 2}) {
    stageCase c(7, 6, 5);
    testing::setTiles(c.cfg, 1, 1, threads);
    c.cfg.speciesFlag = 1, c.cfg.ageFlag = 1;
    c.cfg.bcFixMassfr = {0, 1, 0, 0, 0, 0, 0, 0, 0};
    c.cfg.bcMassfr[1] = 0.3;
    c.domain.bcFlag(3, 3, 2) = 1;
    c.domain.bcFlag(0, 2, 2) = 2;
    c.cfg.bcNoFlow[2] = 0;
    c.cfg.bcV[2] = 0.0, c.cfg.bcFixV[2] = 1.0;  // fully fixed, blowing in: the age restarts
    c.lists();
    stageOnly solver(c.cfg, c.domain);
    for (auto* f : {&solver.ufld, &solver.pfld, &solver.yfld, &solver.afld}) copyFrom(*f, c.q);
    solver.step();
    double sum = 0.0;
    for (int n = 0; n < solver.pfld.count(); ++n) sum += solver.pfld[n];
    EXPECT_NEAR(sum, 0.0, 1e-12) << " mean removed with threads=" << threads;
    EXPECT_EQ(solver.yfld(3, 3, 2), 0.3) << " at threads=" << threads;
    EXPECT_EQ(solver.afld(0, 2, 2), 0.0) << " age reset at the inlet, threads=" << threads;
    EXPECT_EQ(solver.ufld(0, 2, 2), 2.0) << " at threads=" << threads;
    ownedArray3d<double>* out[3] = {&solver.ufld, &solver.pfld, &solver.afld};
    for (int f = 0; f < 3; ++f) {
      results[threads - 1][f] = ownedArray3d<double>(7, 6, 5);
      copyFrom(results[threads - 1][f], *out[f]);
    }
  }
  for (int f = 0; f < 3; ++f)
    for (int n = 0; n < results[0][f].count(); ++n)
      ASSERT_NEAR(results[0][f][n], results[1][f][n], 1e-14) << " field " << f << " at n=" << n;
}

}  // namespace
}  // namespace marv
