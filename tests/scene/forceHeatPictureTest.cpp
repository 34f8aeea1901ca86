// The force report on the saved pictures of two bundled examples, on the
// off-screen OpenGL backend: the mouse rests on the body (the cylinder in 2D,
// the model sphere in 3D) and clicks it after step 4. The picture of step 4
// marks the body in magenta, that of step 8 in green, and both show the
// notice in its sky-blue box beside the mouse. The pictures are kept as
// <example>-force-<step>.ppm in the build folder.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "app/batchStages.h"
#include "app/driver.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

passObjects* pass = nullptr;  // the running pass, for the body's place on the screen
int body = 0;                 // the body's colour
int cycles = 0, mouseX = 0, mouseY = 0;

int keepPass(appConfig&, passObjects& objects) {
  pass = &objects;
  return 1;
}

// After each cycle: the mouse onto the middle of the body as drawn, pressed
// in cycle 6 and released in cycle 7.
void restOnBody(appConfig& cfg, bool final) {
  if (final) return;
  double sx = 0.0, sy = 0.0;
  int n = 0;
  if (pass->scene->is3d) {
    const bcSurface& s = pass->domain->surfaces[body];
    const double k = pass->scene->sceneScale;
    for (int t = 0; t < s.numTriangles; ++t, ++n) {
      const float* c = s.triangles[t].centroid;
      const vec3 at =
          worldToScreen({static_cast<float>(c[0] * k + pass->scene->originX),
                         static_cast<float>(c[1] * k + pass->scene->originY), static_cast<float>(c[2] * k)});
      sx += at.x, sy += at.y;
    }
  } else {
    for (int j = 0; j < cfg.ny; ++j)
      for (int i = 0; i < cfg.nx; ++i)
        if (pass->domain->bcFlag(i, j, 0) == body) sx += cfg.pixelX[i], sy += cfg.pixelY[j], ++n;
  }
  mouseX = static_cast<int>(sx / n), mouseY = static_cast<int>(sy / n);
  inputFrame f;
  f.mouseX = mouseX, f.mouseY = mouseY;
  f.buttons = ++cycles == 6 ? mouseLeft : 0;
  setInputScript({f}, false);
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

void runExample(const char* example, int colour) {
  setGraphicsMode(400, 200, 32, 60);
  ASSERT_EQ(startLayer(), 0);
  ASSERT_EQ(layerDrawsPixels(), 1) << "no OpenGL renderer: install Mesa (scripts/install-deps.sh)";
  const fs::path folder = marvtest::scratchFolder("forcePicture");
  fs::copy(fs::path(MARV_EXAMPLES_DIR) / example / "input", folder / "input");
  fs::create_directories(folder / "figs"), fs::create_directories(folder / "dump");
  std::istringstream lines(marvtest::readText(folder / "input" / "param.txt"));
  std::string param, line;
  while (std::getline(lines, line)) {
    const std::string key = line.substr(0, line.find(' '));
    const std::size_t colon = key.find(':') + 1;
    if (key.compare(colon, std::string::npos, "latts") == 0) line = key + " 8";
    if (key.compare(colon, std::string::npos, "nfig") == 0) line = key + " 4";
    if (key.compare(colon, std::string::npos, "nfile") == 0) line = key + " 0";
    param += line + "\n";
  }
  marvtest::writeText(folder / "input" / "param.txt", param);
  // The channel's walls stay hidden: in front of the sphere they would be
  // hovered first.
  std::ofstream(folder / "input" / "viz.txt", std::ios::app) << "showForce 1\nshowBoundaryFlagUser 0\n";
  batchOptions options;
  options.projectDir = folder.string();
  options.quiet = true;
  passStages stages = batchStages(options);
  stages.placementStage = keepPass;
  stages.runStep = restOnBody;
  body = colour, cycles = 0;
  driverState state;
  ASSERT_EQ(runDriver(stages, state), 0);
  stopLayer();

  const int textHeight = 20;
  for (const char* step : {"00000004", "00000008"}) {
    SCOPED_TRACE(step);
    marvtest::picture shot;
    ASSERT_TRUE(shot.read((folder / "figs" / (std::string(step) + ".jpg")).string()));
    std::ofstream(fs::path(MARV_BUILD_DIR) / (std::string(example) + "-force-" + step + ".ppm"), std::ios::binary)
        << "P6\n"
        << shot.width << " " << shot.height << "\n255\n"
        << std::string(shot.rgb.begin(), shot.rgb.end());
    const bool recorded = step[7] == '8';
    const int r = recorded ? 0 : 255, b = recorded ? 0 : 255;
    // Around the mouse but left of the notice: the body's marks.
    EXPECT_GT(share(shot, mouseX - 30, mouseY - 20, mouseX, mouseY + 20, r, 255 - r, b), 0.05);
    EXPECT_EQ(share(shot, mouseX - 30, mouseY - 20, mouseX, mouseY + 20, 255 - r, r, 255 - b), 0.0);
    EXPECT_EQ(share(shot, mouseX / 2 - 15, mouseY - 15, mouseX / 2 + 15, mouseY + 15, r, 255 - r, b), 0.0)
        << "the fluid is not marked";
    EXPECT_GT(share(shot, mouseX + 8, mouseY + 8, mouseX + 20 * textHeight, mouseY + 20, 0, 180, 255), 0.8)
        << "the notice's back";
  }
  fs::remove_all(folder);
}

TEST(forcePicture, cylinderMarkedMagentaThenGreenAfterAClick) { runExample("cylinder2d", 1); }
TEST(forcePicture, sphereMarkedMagentaThenGreenAfterAClick) { runExample("sphere3d", 7); }

}  // namespace
