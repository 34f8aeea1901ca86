// The placement screen's buttons act on the model and the parameters at once; the handle raises zoffstSTL.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <tuple>

#include "domain/bcDomain.h"
#include "domain/placementScreen.h"
#include "layer/layer.h"

namespace {

using namespace marv;

bcTriangle triangle(std::initializer_list<float> v) {
  bcTriangle t;
  std::copy(v.begin(), v.end(), &t.vertex[0][0]);
  t.normal[2] = 1.0f;
  return t;
}

struct placementCase {
  appConfig cfg;
  bcDomain domain;
  placementState state;
  placementCase() {
    constructAppConfig(cfg, false, false);
    cfg.screenWidth = 900, cfg.screenHeight = 600, cfg.stlPresent = 1;
    cfg.lx = 2.0, cfg.ly = 1.0, cfg.lz = 4.0;
    // Two triangles with their vertex mean at (0.5, 0.5, 1).
    domain.surfaces[7].triangles = {triangle({0, 0, 1, 1, 0, 1, 1, 1, 1}), triangle({0, 0, 1, 1, 1, 1, 0, 1, 1})};
  }
  // A whole click at (x, y): rest, press, release; the result of each frame.
  int click(int x, int y) {
    int outcome = 0;
    for (int phase = 0; phase < 3; ++phase) {
      screenInput in;
      in.mouseX = x, in.mouseY = y, in.left = phase == 1;
      outcome = placementControls(state, domain, cfg, in);
      if (outcome != 0) break;
    }
    return outcome;
  }
  float vertex(int t, int v, int k) const { return domain.surfaces[7].triangles[t].vertex[v][k]; }
};

TEST(PlacementButtons, RotateCentreAndEndTheLoop) {
  placementCase c;
  const placementLayout l = layoutPlacement(c.cfg);

  // "Rot STL" about x: a quarter turn about the model's centre, y' - cy = z - cz.
  EXPECT_EQ(c.click(l.rotX[0] + 10, l.y + 10), 0);
  EXPECT_DOUBLE_EQ(c.cfg.xRotSTL, 90.0);
  EXPECT_NEAR(c.vertex(0, 0, 1), 0.5f, 1e-5) << "the flat model now stands along y";
  EXPECT_NEAR(c.vertex(0, 2, 2), 0.5f, 1e-5);
  for (int i = 0; i < 3; ++i) c.click(l.rotX[0] + 10, l.y + 10);
  EXPECT_DOUBLE_EQ(c.cfg.xRotSTL, 0.0) << "four turns come back to the start";

  // "Centering": the centre goes to (lx/2, ly/2, lz/2), the offsets follow.
  c.click(l.centreX + 10, l.y + 10);
  EXPECT_EQ(std::tuple(c.cfg.xoffstSTL, c.cfg.yoffstSTL, c.cfg.zoffstSTL), std::tuple(0.5, 0.0, -1.0));
  EXPECT_NEAR(c.vertex(0, 0, 0), 0.5f, 1e-5);
  EXPECT_NEAR(c.vertex(0, 0, 2), 2.0f, 1e-5);

  // A press beside a button dragged onto it does nothing.
  for (const auto& [x, y, down] :
       {std::tuple{1, 1, true}, {l.rotX[1] + 10, l.y + 10, true}, {l.rotX[1] + 10, l.y + 10, false}}) {
    screenInput in;
    in.mouseX = x, in.mouseY = y, in.left = down;
    placementControls(c.state, c.domain, c.cfg, in);
  }
  EXPECT_DOUBLE_EQ(c.cfg.yRotSTL, 0.0);

  EXPECT_EQ(c.click(l.cancelX + 10, l.y + 10), -1);
  EXPECT_EQ(c.click(l.proceedX + 10, l.y + 10), 1);
}

TEST(PlacementButtons, UnitSelectorRescalesAboutTheCentreAndKeepsOffsetsInTheFileUnit) {
  placementCase c;
  c.cfg.unitSTL = 0;
  c.cfg.unitSelector.selected = 0;
  c.cfg.xoffstSTL = 0.3;
  int x = 0, y = 0;
  unitOptionCentre(c.cfg, 2, x, y);  // mm
  c.click(x, y);
  EXPECT_EQ(c.cfg.unitSTL, 2);
  EXPECT_NEAR(c.cfg.xoffstSTL, 0.0003, 1e-12);
  EXPECT_NEAR(c.vertex(0, 1, 0) - c.vertex(0, 0, 0), 0.001f, 1e-7) << "one file unit is now a millimetre";
  EXPECT_NEAR(c.vertex(0, 0, 0), 0.4995f, 1e-5) << "scaled about the centre";
  unitOptionCentre(c.cfg, 0, x, y);
  c.click(x, y);
  EXPECT_EQ(c.cfg.unitSTL, 0);
  EXPECT_NEAR(c.cfg.xoffstSTL, 0.3, 1e-9);
  EXPECT_NEAR(c.vertex(0, 1, 0), 1.0f, 1e-4) << "back and forth restores the model";
}

TEST(PlacementDrag, ANegativeZMoveRaisesTheOffsetAndMovesTheModelWithTheMouse) {
  placementCase c;
  c.cfg.stlDeltaX = 0.25;
  c.cfg.stlDeltaY = 0.0;
  c.cfg.stlDeltaZ = -0.5;
  applyDragMove(c.domain, c.cfg);
  EXPECT_DOUBLE_EQ(c.cfg.xoffstSTL, 0.25);
  EXPECT_DOUBLE_EQ(c.cfg.zoffstSTL, 0.5);
  EXPECT_NEAR(c.vertex(0, 0, 0), 0.25f, 1e-6);
  EXPECT_NEAR(c.vertex(0, 0, 2), 0.5f, 1e-6) << "z runs opposite in the model's own coordinates";
}

}  // namespace
