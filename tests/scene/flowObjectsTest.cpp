// Streamlines, arrows and plane picking on hand-made fields; expected paths from the field's geometry, not the tracer.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "scene/flowVectors.h"
#include "scene/modelHandle.h"
#include "scene/particles.h"
#include "scene/planes.h"
#include "scene/streamlines.h"
#include "testGrid.h"

namespace {

using namespace marv;

// A square 2D mesh of n x n nodes over [0, 1] x [0, 1].
struct flatFlow {
  appConfig cfg;
  ownedArray3d<double> u, v;
  ownedArray3d<int> solid;
  explicit flatFlow(int n) : u(n, n, 1), v(n, n, 1), solid(n, n, 1) {
    marv::testing::setGrid(cfg, n, n, 1);
    cfg.dz = cfg.dx;
  }
  flowSample sample() const { return {&u, &v, nullptr, &solid}; }
};

struct path {
  std::vector<std::array<double, 3>> points;
  static void record(void* user, const double p[3], const double q[3]) {
    path& self = *static_cast<path*>(user);
    if (self.points.empty()) self.points.push_back({p[0], p[1], p[2]});
    self.points.push_back({q[0], q[1], q[2]});
  }
};

TEST(streamline, UniformStreamRunsStraightToTheOutletAndNoFurther) {
  flatFlow f(21);
  for (int n = 0; n < f.u.count(); ++n) f.u[n] = 2.0, f.v[n] = 0.0;
  path line;
  const double step = 0.01;
  const int steps = traceStreamline(f.cfg, f.sample(), {0.0, 0.3, 0.0}, 2, step, 2.0, 100000, path::record, &line);
  // From x = 0 in steps of 0.01 the last one that stays in the mesh ends at 1.0 (or one short of it by rounding).
  EXPECT_NEAR(steps, 99.5, 0.5);
  ASSERT_FALSE(line.points.empty());
  for (const auto& p : line.points) EXPECT_NEAR(p[1], 0.3, 1e-12);
  EXPECT_GT(line.points.back()[0], 1.0 - 2 * step);
  EXPECT_LE(line.points.back()[0], 1.0);
}

TEST(streamline, SolidBodyRotationClosesItsCircle) {
  flatFlow f(41);
  const double c = 0.5, r = 0.25;
  for (int j = 0; j < 41; ++j)
    for (int i = 0; i < 41; ++i) f.u(i, j, 0) = -(f.cfg.yCoord[j] - c), f.v(i, j, 0) = f.cfg.xCoord[i] - c;
  const double vmax = std::sqrt(0.5);  // at the corners
  path line;
  // One turn of a circle of radius r in steps of about 2 pi r / 400.
  const double step = 2.0 * M_PI * r / 400.0 * vmax / r;
  traceStreamline(f.cfg, f.sample(), {c + r, c, 0.0}, 2, step, vmax, 400, path::record, &line);
  ASSERT_EQ(line.points.size(), 401u);
  double worst = 0.0;
  for (const auto& p : line.points) worst = std::max(worst, std::fabs(std::hypot(p[0] - c, p[1] - c) - r));
  // First-order steps turn by t = 2 pi / 400 and widen the radius by
  // sqrt(1 + t^2) each: about 5% over one turn.
  EXPECT_LT(worst, 0.06 * r) << "stays on its circle";
  const auto& end = line.points.back();
  EXPECT_LT(std::hypot(end[0] - (c + r), end[1] - c), 0.08 * r) << "comes back to its seed after one turn";
  EXPECT_EQ(traceStreamline(f.cfg, f.sample(), {c + r, c, 0.0}, 2, step, vmax, 7, nullptr, nullptr), 7)
      << "a closed line stops at the step limit";
}

TEST(arrows, AUniformFieldGivesTheSameArrowEverywhere) {
  arrow2d a, b;
  ASSERT_TRUE(makeArrow2d(3.0, 4.0, 1.0, 5.0, 4, 10, 100.0, 50.0, a));
  ASSERT_TRUE(makeArrow2d(3.0, 4.0, 1.0, 5.0, 4, 10, 300.0, 80.0, b));
  EXPECT_FLOAT_EQ(b.tailX - a.tailX, 200.0f);
  EXPECT_FLOAT_EQ(b.stroke1Y - a.stroke1Y, 30.0f);
  // The fastest speed gives the whole length ndiv x pixPerCell, pointing
  // up the screen for a positive v.
  EXPECT_NEAR(std::hypot(a.headX - a.tailX, a.headY - a.tailY), 40.0, 1e-4);
  EXPECT_NEAR((a.headX - a.tailX) / 40.0, 0.6, 1e-5);
  EXPECT_NEAR((a.headY - a.tailY) / 40.0, -0.8, 1e-5);
  // The slowest speed keeps a fifth of it.
  ASSERT_TRUE(makeArrow2d(0.6, 0.8, 1.0, 5.0, 4, 10, 0.0, 0.0, b));
  EXPECT_NEAR(std::hypot(b.headX - b.tailX, b.headY - b.tailY), 8.0, 1e-4);
  EXPECT_FALSE(makeArrow2d(0.0, 0.0, 0.0, 5.0, 4, 10, 0.0, 0.0, b)) << "at rest";
  EXPECT_FALSE(makeArrow2d(std::nan(""), 1.0, 0.0, 5.0, 4, 10, 0.0, 0.0, b)) << "not a number";

  const double along[3] = {2.0, 0.1, 0.0}, inflow[3] = {1.0, 0.05, 0.0}, plain[3] = {1.0, 1.0, 1.0};
  EXPECT_NEAR(inflowCorrelation(along, inflow), 1.0, 1e-12);
  EXPECT_TRUE(std::isnan(inflowCorrelation(along, plain))) << "an inflow with no spread";
}

TEST(tracers, AUniformStreamCarriesThemByVelocityTimesStepAndFreesThemAtTheBound) {
  flatFlow f(21);
  for (int n = 0; n < f.u.count(); ++n) f.u[n] = 0.5, f.v[n] = -0.25;
  f.cfg.ts = 20;
  float position[6] = {0.2f, 0.6f, 0.0f, 0.98f, 0.5f, 0.0f};
  double speed[2] = {0.0, 0.0};
  int state[2] = {0, 0};
  for (int step = 0; step < 10; ++step)
    advanceParticles(f.cfg, f.sample(), 2, 0.04, 0.0, 1.0, 2, position, speed, state);
  // Ten steps of 0.04 s at (0.5, -0.25) m/s: 0.2 m across, 0.1 m down.
  EXPECT_NEAR(position[0], 0.4, 1e-5);
  EXPECT_NEAR(position[1], 0.5, 1e-5);
  EXPECT_EQ(state[0], 0);
  EXPECT_NEAR(speed[0], std::hypot(0.5, 0.25), 1e-12);
  EXPECT_EQ(state[1], 1) << "the second one crossed x = 1";
  EXPECT_EQ(speed[1], 0.0);

  for (int n = 0; n < f.u.count(); ++n) f.u[n] = 0.005, f.v[n] = 0.0;
  advanceParticles(f.cfg, f.sample(), 2, 0.04, 0.0, 1.0, 1, position, speed, state);
  EXPECT_EQ(state[0], 1) << "slower than 1% of the speed range";
}

// A 3D mesh for the plane picking.
struct boxMesh {
  appConfig cfg;
  sceneView scene;
  boxMesh() {
    marv::testing::setGrid(cfg, 11, 6, 5, 1.0, 0.5, 0.4);  // spacing 0.1
    cfg.shiftDown = 1;
    scene.is3d = 1;
  }
};

TEST(planePicking, NearestPlaneMovesWithTheWheelWithinTheMesh) {
  boxMesh m;
  m.scene.planeK = 3, m.scene.planeI = 5;
  m.scene.hitDistanceXY = 100.0, m.scene.hitDistanceYZ = 200.0;
  m.cfg.wheelDelta = 4.0f;
  selectPlaneAndProbe(m.scene, m.cfg);
  EXPECT_EQ(m.scene.planeK, 4) << "stops at the top layer nz - 1";
  EXPECT_NEAR(m.cfg.zCrosssectionXY, 0.4, 1e-12);
  EXPECT_EQ(m.scene.planeI, 5);
  EXPECT_EQ(m.scene.hitDistanceXY, 1e10) << "picking is cleared for the next frame";

  m.scene.hitDistanceYZ = 50.0, m.scene.hitDistanceXY = 80.0;
  m.cfg.wheelDelta = 2.0f;
  selectPlaneAndProbe(m.scene, m.cfg);
  EXPECT_EQ(m.scene.planeI, 3) << "the YZ plane moves against the wheel";
  m.scene.hitDistanceYZ = 50.0;
  m.cfg.wheelDelta = 9.0f;
  selectPlaneAndProbe(m.scene, m.cfg);
  EXPECT_EQ(m.scene.planeI, 0);

  m.cfg.shiftDown = 0;
  m.scene.hitDistanceXY = 10.0;
  selectPlaneAndProbe(m.scene, m.cfg);
  EXPECT_EQ(m.scene.planeK, 4) << "without Shift the wheel is the camera's";
}

TEST(planePicking, ClicksOnAPlaneAddProbesUpToTenAndRightClicksRemoveTheNewest) {
  boxMesh m;
  m.scene.sceneScale = 100.0, m.scene.originX = 20, m.scene.originY = 10;
  m.cfg.leftClick = 1;
  for (int n = 0; n < 11; ++n) {
    m.scene.hitDistanceXY = 5.0;
    m.scene.pickXY = {20.0f + 50.0f, 10.0f + 20.0f, 10.0f};
    selectPlaneAndProbe(m.scene, m.cfg);
  }
  EXPECT_EQ(m.cfg.numProbes, 10);
  // World z runs down from the top layer.
  EXPECT_NEAR(std::hypot(m.cfg.probes[9].x - 0.5, m.cfg.probes[9].y - 0.2, m.cfg.probes[9].z - 0.3), 0.0, 1e-6);

  m.cfg.leftClick = 0, m.cfg.rightClick = 1;
  m.scene.hitDistanceXY = 1e10;  // no plane under the pointer
  selectPlaneAndProbe(m.scene, m.cfg);
  EXPECT_EQ(m.cfg.numProbes, 9);
  m.cfg.numProbes = 0;
  selectPlaneAndProbe(m.scene, m.cfg);
  EXPECT_EQ(m.cfg.numProbes, 0);
}

TEST(modelHandle, ADragMovesByItsLengthTimesAnEighthCellWithTheSignOfTheBar) {
  const vec3 left{100.0f, 200.0f, 0.5f}, right{300.0f, 200.0f, 0.5f};
  // A drag of 3 right and 4 down is 5 pixels long and goes along the bar.
  EXPECT_NEAR(handleMove(3.0, 4.0, left, right, 0.08), 5.0 * 0.01, 1e-12);
  EXPECT_NEAR(handleMove(-3.0, 4.0, left, right, 0.08), -5.0 * 0.01, 1e-12);
  EXPECT_NEAR(handleMove(3.0, 4.0, right, left, 0.08), -5.0 * 0.01, 1e-12) << "a bar seen end over end";
  EXPECT_EQ(handleMove(0.0, 0.0, left, right, 0.08), 0.0);
}

}  // namespace
