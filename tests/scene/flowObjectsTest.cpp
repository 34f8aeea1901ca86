// Arrows, tracer particles and plane picking on hand-made fields and meshes.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "scene/flowVectors.h"
#include "scene/particles.h"
#include "scene/planes.h"
#include "testGrid.h"

namespace {

using namespace marv;

TEST(arrows, LengthFollowsTheSpeedBetweenAFifthAndTheWhole) {
  arrow2d a, b;
  ASSERT_TRUE(makeArrow2d(3.0, 4.0, 1.0, 5.0, 4, 10, 100.0, 50.0, a));
  // The fastest speed gives the whole length ndiv x pixPerCell = 40 along (3, 4), up the screen for a positive v.
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
  appConfig cfg;
  marv::testing::setGrid(cfg, 21, 21, 1);  // over [0, 1] x [0, 1]
  ownedArray3d<double> u(21, 21, 1), v(21, 21, 1);
  ownedArray3d<int> solid(21, 21, 1);
  const flowSample sample{&u, &v, nullptr, &solid};
  for (int n = 0; n < u.count(); ++n) u[n] = 0.5, v[n] = -0.25;
  cfg.ts = 20;
  float position[6] = {0.2f, 0.6f, 0.0f, 0.98f, 0.5f, 0.0f};
  double speed[2] = {0.0, 0.0};
  int state[2] = {0, 0};
  for (int step = 0; step < 10; ++step) advanceParticles(cfg, sample, 2, 0.04, 0.0, 1.0, 2, position, speed, state);
  // Ten steps of 0.04 s at (0.5, -0.25) m/s: 0.2 m across, 0.1 m down.
  EXPECT_NEAR(position[0], 0.4, 1e-5);
  EXPECT_NEAR(position[1], 0.5, 1e-5);
  EXPECT_NEAR(speed[0], std::hypot(0.5, 0.25), 1e-12);
  EXPECT_EQ((std::vector<double>{double(state[0]), double(state[1]), speed[1]}), (std::vector<double>{0, 1, 0}))
      << "the second one crossed x = 1 and stands";
  for (int n = 0; n < u.count(); ++n) u[n] = 0.005, v[n] = 0.0;
  advanceParticles(cfg, sample, 2, 0.04, 0.0, 1.0, 1, position, speed, state);
  EXPECT_EQ(state[0], 1) << "slower than 1% of the speed range";
}

TEST(planePicking, TheWheelMovesTheNearestPlaneWithinTheMeshAndClicksAddOrRemoveProbes) {
  appConfig cfg;
  sceneView scene;
  marv::testing::setGrid(cfg, 11, 6, 5, 1.0, 0.5, 0.4);  // spacing 0.1
  cfg.shiftDown = 1, scene.is3d = 1;
  scene.planeK = 3, scene.planeI = 5;
  scene.hitDistanceXY = 100.0, scene.hitDistanceYZ = 200.0;
  cfg.wheelDelta = 4.0f;
  selectPlaneAndProbe(scene, cfg);
  EXPECT_EQ(scene.planeK, 4) << "stops at the top layer nz - 1";
  EXPECT_NEAR(cfg.zCrosssectionXY, 0.4, 1e-12);
  EXPECT_EQ(scene.planeI, 5);
  EXPECT_EQ(scene.hitDistanceXY, 1e10) << "picking is cleared for the next frame";
  scene.hitDistanceYZ = 50.0, scene.hitDistanceXY = 80.0;
  cfg.wheelDelta = 2.0f;
  selectPlaneAndProbe(scene, cfg);
  EXPECT_EQ(scene.planeI, 3) << "the YZ plane moves against the wheel";
  scene.hitDistanceYZ = 50.0;
  cfg.wheelDelta = 9.0f;
  selectPlaneAndProbe(scene, cfg);
  EXPECT_EQ(scene.planeI, 0);
  cfg.shiftDown = 0;
  scene.hitDistanceXY = 10.0;
  selectPlaneAndProbe(scene, cfg);
  EXPECT_EQ(scene.planeK, 4) << "without Shift the wheel is the camera's";
  scene.sceneScale = 100.0, scene.originX = 20, scene.originY = 10;
  cfg.leftClick = 1, cfg.shiftDown = 1, cfg.wheelDelta = 0.0f;
  for (int n = 0; n < 11; ++n) {
    scene.hitDistanceXY = 5.0;
    scene.pickXY = {20.0f + 50.0f, 10.0f + 20.0f, 10.0f};
    selectPlaneAndProbe(scene, cfg);
  }
  EXPECT_EQ(cfg.numProbes, 10);
  // World z runs down from the top layer.
  EXPECT_NEAR(std::hypot(cfg.probes[9].x - 0.5, cfg.probes[9].y - 0.2, cfg.probes[9].z - 0.3), 0.0, 1e-6);
  cfg.leftClick = 0, cfg.rightClick = 1;
  scene.hitDistanceXY = 1e10;  // no plane under the pointer
  selectPlaneAndProbe(scene, cfg);
  EXPECT_EQ(cfg.numProbes, 9);
  cfg.numProbes = 0;
  selectPlaneAndProbe(scene, cfg);
  EXPECT_EQ(cfg.numProbes, 0);
}

}  // namespace
