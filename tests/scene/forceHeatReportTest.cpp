// The force and heat-loss report of a run frame through the headless
// backend: the colour under the scripted mouse is measured and shown, a click
// switches both of its records on or off, and inflows that blow stay out.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "domain/polygonise.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/frameHooks.h"
#include "scene/inputState.h"
#include "testGrid.h"

namespace marv {
namespace {

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// A 21 x 21 mesh over 1 m x 1 m, 200 pixels a metre (10 a cell), margins 10
// left and 30 on top: node (i, j) lies under pixel (10 + 10 i, 230 - 10 j).
// Colour 1 is a square body on nodes 8..12, colour 2 an inflow square on
// nodes 2..5. The pressure rises along x, so the body feels a force -x.
class report2d : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(400, 300, 32, 60);
    ASSERT_EQ(startLayer(), 0);
    testing::setGrid(cfg, 21, 21, 1);
    cfg.pixPerMetre = 200.0, cfg.marginLeft = 10, cfg.marginTop = 30;
    cfg.pixelX.assign(21, 0.0f), cfg.pixelY.assign(21, 0.0f);
    for (int n = 0; n < 21; ++n) {
      cfg.pixelX[n] = static_cast<float>(10.5 + 10.0 * n);
      cfg.pixelY[n] = static_cast<float>(230.5 - 10.0 * n);
    }
    cfg.showForce = 1;
    cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;
    constructDomain(domain, cfg);
    paint(1, 8, 12);
    paint(2, 2, 5);
    constructScene(scene, cfg, domain);
    setUpScene(scene, cfg);
    resetInputState(input);
    for (ownedArray3d<double>* f : {&p, &T, &workA, &workB}) *f = ownedArray3d<double>(21, 21, 1);
    for (int j = 0; j < 21; ++j)
      for (int i = 0; i < 21; ++i) p(i, j, 0) = 100.0 * cfg.xCoord[i];
    views[fieldP] = p, views[fieldT] = T, views[viewWorkA] = workA, views[viewWorkB] = workB;
  }
  void TearDown() override {
    destroyScene(scene);
    stopLayer();
  }
  // Colour c on the nodes lo..hi in i and j: flags, mask and outline.
  void paint(int c, int lo, int hi) {
    domain.typeMasks[c] = ownedArray3d<float>(21, 21, 1);
    for (int j = lo; j <= hi; ++j)
      for (int i = lo; i <= hi; ++i) domain.typeMasks[c](i, j, 0) = 1.0f, domain.bcFlag(i, j, 0) = c;
    domain.outlines[c].field = &domain.typeMasks[c];
    ASSERT_EQ(polygoniseOutline(domain.outlines[c], domain.isoLevel), 0);
  }
  // One frame with the mouse over node (i, j): the input, then the report.
  std::string frameAt(int i, int j, int buttons = 0) {
    inputFrame f;
    f.mouseX = 10 + 10 * i, f.mouseY = 230 - 10 * j, f.buttons = buttons;
    setInputScript({f}, false);
    processMessages();
    handleFrameInput(input, cfg);
    reportForceAndHeat(scene, cfg, views);
    return scene.scratchText;
  }
  // A click as a hand makes it: a frame up (a click shows only in the frame
  // of its release and stands while the button goes down again), one down,
  // the release.
  std::string clickAt(int i, int j) {
    frameAt(i, j);
    frameAt(i, j, mouseLeft);
    return frameAt(i, j);
  }

  appConfig cfg;
  bcDomain domain;
  sceneView scene;
  inputState input;
  ownedArray3d<double> p, T, workA, workB;
  fieldViews views{};
};

TEST_F(report2d, hoverShowsTheForceAndEachClickSwitchesBothRecords) {
  // Body edge 4 cells plus 0.2 cell beyond each side, corners cut by 0.2 x
  // 0.2 cell triangles: the force is -100 Pa/m times that area.
  const double h = 0.05, side = 4.4 * h, area = side * side - 2.0 * (0.2 * h) * (0.2 * h);
  cfg.showHeatLoss = 1;  // a constant-density run: the heat-loss display falls back
  const std::string hovered = frameAt(10, 10);
  EXPECT_EQ(cfg.showHeatLoss, 0);
  EXPECT_EQ(hovered.rfind("[Fx] -4.8", 0), 0u) << hovered;
  EXPECT_TRUE(contains(hovered, " (N) [Fz] 0.000e+00 (N)")) << hovered;
  EXPECT_FALSE(contains(hovered, "[*]")) << hovered;
  EXPECT_FALSE(contains(hovered, "HFlux")) << hovered;
  EXPECT_EQ(cfg.forceValues[1][0], 0.0f) << "measured for the notice, not kept: not recorded";

  const std::string recorded = clickAt(10, 10);
  EXPECT_EQ(cfg.forceRecordOn[1], 1);
  EXPECT_EQ(cfg.heatRecordOn[1], 1) << "one click governs both records";
  EXPECT_EQ(cfg.numRecForce, 1);
  EXPECT_EQ(cfg.numRecHeatLoss, 1);
  EXPECT_NEAR(cfg.forceValues[1][0], -100.0 * area, 1e-3);
  EXPECT_EQ(recorded, hovered + " [*] Rec. to ./dump/force.txt");

  EXPECT_EQ(frameAt(15, 15), "") << "fluid under the mouse: no notice";
  EXPECT_EQ(cfg.forceRecordOn[1], 1);
  EXPECT_NEAR(cfg.forceValues[1][0], -100.0 * area, 1e-3) << "a recorded colour is measured unhovered";

  EXPECT_EQ(clickAt(9, 11), hovered) << "a second click on the body clears both";
  EXPECT_EQ(cfg.forceRecordOn[1], 0);
  EXPECT_EQ(cfg.heatRecordOn[1], 0);
  EXPECT_EQ(cfg.numRecForce + cfg.numRecHeatLoss, 0);
  EXPECT_EQ(cfg.forceValues[1][0], 0.0f);
}

TEST_F(report2d, anInflowThatBlowsIsNeitherShownNorRecordedButOneStandingStillIs) {
  cfg.bcNoFlow[2] = 0;
  EXPECT_EQ(clickAt(3, 3), "");
  EXPECT_EQ(cfg.forceRecordOn[2], 0);
  EXPECT_EQ(cfg.numRecForce, 0);
  cfg.bcNoFlow[2] = 1;  // all three velocities zero: a wall
  EXPECT_EQ(clickAt(3, 3).rfind("[Fx] -", 0), 0u);
  EXPECT_EQ(cfg.forceRecordOn[2], 1);
}

TEST_F(report2d, aWallWithNoForceButAHeatFlowShowsNoNoticeYetRecordsItsHeat) {
  cfg.cmode = 1;
  cfg.showHeatLoss = 1;
  for (int j = 0; j < 21; ++j)
    for (int i = 0; i < 21; ++i) {
      p(i, j, 0) = 0.0;
      const double r2 = std::pow(cfg.xCoord[i] - 0.5, 2) + std::pow(cfg.yCoord[j] - 0.5, 2);
      T(i, j, 0) = 300.0 + 100.0 * std::exp(-r2 / 0.02);  // a hot body in cooler air
    }
  EXPECT_EQ(clickAt(10, 10), "");
  EXPECT_EQ(cfg.showHeatLoss, 1) << "a thermo-fluid run keeps heat loss on";
  EXPECT_EQ(cfg.heatRecordOn[1], 1);
  EXPECT_GT(cfg.heatValues[1], 0.0) << "the hot body gives heat to the air";
  EXPECT_EQ(cfg.forceValues[1], (std::array<float, 3>{0.0f, 0.0f, 0.0f}));
}

}  // namespace
}  // namespace marv
