// Arrows, tracer particles, plane picking and the model handle on hand-made fields and meshes.
#include <gtest/gtest.h>

#include <cmath>

#include "scene/flowVectors.h"
#include "scene/modelHandle.h"
#include "scene/particles.h"
#include "scene/planes.h"
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

TEST(arrows, LengthFollowsTheSpeedBetweenAFifthAndTheWhole) {
  arrow2d a, b;
  ASSERT_TRUE(makeArrow2d(3.0, 4.0, 1.0, 5.0, 4, 10, 100.0, 50.0, a));
  // The fastest speed gives the whole length ndiv x pixPerCell = 40 along
  // (3, 4), up the screen for a positive v.
  EXPECT_NEAR(a.headX - a.tailX, 24.0, 1e-4);
  EXPECT_NEAR(a.headY - a.tailY, -32.0, 1e-4);
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
