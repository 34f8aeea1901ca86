// The force report, mouse scripted: body marked magenta, then green once clicked; notice beside the mouse.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/batchStages.h"
#include "app/driver.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/savedPicture.h"
#include "screenScript.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

passObjects* pass = nullptr;  // the running pass, for the colours' places on the screen
int body = 0, inlet = 0;      // the colours clicked
int cycle = 0, mouseX = 0, mouseY = 0, bodyX = 0, bodyY = 0;

int keepPass(appConfig&, passObjects& objects) {
  pass = &objects;
  return 1;
}

// Where the mouse shows a colour: mean screen position of its triangles (3D), its node nearest its mean (2D).
void aimAt(const appConfig& cfg, int colour) {
  const sceneView& scene = *pass->scene;
  const array3d<int>& flags = pass->domain->bcFlag;
  double sx = 0.0, sy = 0.0;
  int n = 0;
  if (scene.is3d) {
    const bcSurface& s = pass->domain->surfaces[colour];
    const float k = static_cast<float>(scene.sceneScale);
    for (int t = 0; t < s.numTriangles; ++t, ++n) {
      const float* c = s.triangles[t].centroid;
      const vec3 at = worldToScreen({c[0] * k + scene.originX, c[1] * k + scene.originY, c[2] * k});
      sx += at.x, sy += at.y;
    }
    mouseX = static_cast<int>(sx / n), mouseY = static_cast<int>(sy / n);
    return;
  }
  for (int j = 0; j < cfg.ny; ++j)
    for (int i = 0; i < cfg.nx; ++i)
      if (flags(i, j, 0) == colour) sx += cfg.pixelX[i], sy += cfg.pixelY[j], ++n;
  double best = 1e30;
  for (int j = 0; j < cfg.ny; ++j)
    for (int i = 0; i < cfg.nx; ++i) {
      const double d = std::hypot(cfg.pixelX[i] - sx / n, cfg.pixelY[j] - sy / n);
      if (flags(i, j, 0) == colour && d < best)
        best = d, mouseX = static_cast<int>(cfg.pixelX[i]), mouseY = static_cast<int>(cfg.pixelY[j]);
    }
}

// After each cycle: checks, then the next frame. Clicks show at release: 7 body, 12 inlet, 15 body again.
void followPlan(appConfig& cfg, bool final) {
  if (final) return;
  const std::string notice = pass->scene->scratchText;
  SCOPED_TRACE(cycle);
  if (cycle == 4) {
    EXPECT_EQ(notice.rfind("[Fx] ", 0), 0u) << notice;
    EXPECT_EQ(notice.find_first_of("*H"), std::string::npos) << "not recorded; no heat in a constant-density run";
    EXPECT_EQ(cfg.showHeatLoss, 0);
  }
  if (cycle == 7) {
    EXPECT_EQ(cfg.forceRecordOn[body] + cfg.heatRecordOn[body], 2) << "one click governs both records";
    EXPECT_EQ(cfg.numRecForce + cfg.numRecHeatLoss, 2);
    EXPECT_TRUE(notice.ends_with(" [*] Rec. to ./dump/force.txt")) << notice;
  }
  if (cycle == 12 && inlet) {
    EXPECT_EQ(notice + std::to_string(cfg.forceRecordOn[inlet]), "0") << "a blowing inlet stays out";
  }
  if (cycle == 15 && inlet) {
    EXPECT_EQ(cfg.forceRecordOn[body] + cfg.heatRecordOn[body] + cfg.numRecForce, 0) << "the second click";
  }
  ++cycle;
  const bool onInlet = inlet && cycle >= 10 && cycle <= 12;
  aimAt(cfg, onInlet ? inlet : body);
  if (!onInlet) bodyX = mouseX, bodyY = mouseY;
  const bool down = cycle == 6 || ((cycle == 11 || cycle == 14) && inlet);
  setInputScript({marvtest::frameAt(mouseX, mouseY, down ? mouseLeft : 0)}, false);
}

// Share of the pixels of a rectangle within 60 of the colour in every channel.
double share(const marvtest::picture& p, int x0, int y0, int x1, int y1, int r, int g, int b) {
  int hits = 0, all = 0;
  for (int y = std::max(y0, 0); y < std::min(y1, p.height); ++y)
    for (int x = std::max(x0, 0); x < std::min(x1, p.width); ++x, ++all) {
      const unsigned char* c = p.at(x, y);
      hits += std::abs(c[0] - r) < 60 && std::abs(c[1] - g) < 60 && std::abs(c[2] - b) < 60;
    }
  return all ? static_cast<double>(hits) / all : 0.0;
}

void runExample(const char* example, int bodyColour, int inletColour) {
  const fs::path folder = marvtest::copyExample(example);
  marvtest::setParameters(folder, {{"latts", "14"}, {"nfig", "4"}, {"nfile", "4"}});
  // Heat loss falls back without thermo; the channel's walls hidden, else hovered before the sphere.
  std::ofstream(folder / "input" / "viz.txt", std::ios::app) << "showForce 1\nshowHeatLoss 1\nshowBoundaryFlagUser 0\n";
  passStages stages = batchStages({.projectDir = folder.string(), .quiet = true});
  stages.placementStage = keepPass;
  stages.runStep = followPlan;
  body = bodyColour, inlet = inletColour, cycle = 0;
  driverState state;
  ASSERT_EQ(runDriver(stages, state), 0);
  mouseX = bodyX, mouseY = bodyY;
  for (const char* step : {"00000004", "00000008"}) {
    SCOPED_TRACE(step);
    marvtest::picture shot;
    ASSERT_TRUE(shot.read((folder / "figs" / (std::string(step) + ".jpg")).string()));
    const std::string kept = (fs::path(MARV_BUILD_DIR) / (std::string(example) + "-force-" + step + ".png")).string();
    EXPECT_NE(stbi_write_png(kept.c_str(), shot.width, shot.height, 3, shot.rgb.data(), shot.width * 3), 0) << kept;
    const int r = step[7] == '8' ? 0 : 255;  // green once recorded, magenta before
    EXPECT_GT(share(shot, mouseX - 30, mouseY - 20, mouseX, mouseY + 20, r, 255 - r, r), 0.05) << "the body marked";
    EXPECT_EQ(share(shot, mouseX - 30, mouseY - 20, mouseX, mouseY + 20, 255 - r, r, 255 - r), 0.0);
    EXPECT_EQ(share(shot, mouseX / 2 - 15, mouseY - 15, mouseX / 2 + 15, mouseY + 15, r, 255 - r, r), 0.0)
        << "the fluid is not marked";
    EXPECT_GT(share(shot, mouseX + 8, mouseY + 8, mouseX + 400, mouseY + 20, 0, 180, 255), 0.8) << "the notice";
  }
  fs::remove_all(folder);
}

using forcePicture = marvtest::offscreenPicture;

TEST_F(forcePicture, cylinderClicksSwitchItsRecordsAndItsMarkButNotTheBlowingInlets) { runExample("cylinder2d", 1, 2); }
TEST_F(forcePicture, sphereUnderTheMouseIsMarkedAndRecordedByAClick) { runExample("sphere3d", 7, 0); }

}  // namespace
