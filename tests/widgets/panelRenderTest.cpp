// The control panel drawn off-screen by the OpenGL backend: the panel at
// rest over a grey picture, written as PNG under the build folder for a
// person to look at, and its snapshot button leaving a JPEG in ./figs; and
// the list of shortcuts that the key H shows, measured and written as PNG.
#include <gtest/gtest.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

#include <filesystem>
#include <string>
#include <vector>

#include "app/fontSet.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "result/stepResults.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "scene/shortcutList.h"
#include "testSupport.h"
#include "widgets/controlPanel.h"

namespace {

using namespace marv;

constexpr int width = 1280;
constexpr int height = 720;

inputFrame at(int x, int y, int buttons = 0) {
  inputFrame f;
  f.mouseX = x;
  f.mouseY = y;
  f.buttons = buttons;
  return f;
}

// The back buffer as a PNG under the build folder.
void writePng(const char* name) {
  const int pixels = makePixelImage(width, height);
  captureToPixelImage(0, 0, width, height, pixels);
  std::vector<std::uint8_t> rgb;
  for (int py = 0; py < height; ++py)
    for (int px = 0; px < width; ++px) {
      int r = 0, g = 0, b = 0, a = 0;
      readPixel(pixels, px, py, &r, &g, &b, &a);
      rgb.insert(rgb.end(), {std::uint8_t(r), std::uint8_t(g), std::uint8_t(b)});
    }
  deletePixelImage(pixels);
  std::filesystem::create_directories(MARV_SCREENSHOT_DIR);
  const std::string png = std::string(MARV_SCREENSHOT_DIR) + "/" + name;
  EXPECT_NE(stbi_write_png(png.c_str(), width, height, 3, rgb.data(), width * 3), 0);
}

class panelRender : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(width, height, 32, 60);
    ASSERT_EQ(startLayer(), 0);
    ASSERT_EQ(layerDrawsPixels(), 1) << "no OpenGL renderer: install Mesa (scripts/install-deps.sh)";
    cfg.screenWidth = width;
    cfg.screenHeight = height;
    cfg.textHeight = 20;
    buildFonts(cfg);
    cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;
    resetInputState(input);
    constructControlPanel(panel, cfg);
    panel.slideMs = 1;
  }
  void TearDown() override {
    destroyControlPanel(panel);
    stopLayer();
  }
  // One frame as the run draws it: a grey picture, then the panel.
  void frame(const inputFrame& f) {
    setInputScript({f}, false);
    processMessages();
    handleFrameInput(input, cfg);
    setDrawTarget(backBuffer);
    setBackgroundColour(90, 100, 110, 255);
    clearDrawTarget();
    runControlPanel(panel, cfg);
    waitMs(2);
  }

  appConfig cfg;
  inputState input;
  controlPanel panel;
};

TEST_F(panelRender, thePanelAtRestAndItsSnapshot) {
  for (int i = 0; i < 10; ++i) frame(at(5, 5));
  ASSERT_EQ(cfg.panelBusy, 1);
  ASSERT_EQ(panel.slideY, 0);
  cfg.showVectorFlag = 1;
  cfg.dispQuantFlag = 5;
  // Hover the "Outline" button so that its caption shows.
  const int x = cfg.mediumSize + 1 * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2;
  const int y = cfg.mediumSize + 1 * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2;
  frame(at(x, y));

  // White body, sky frame, and the icons' blue over it.
  const int pixels = makePixelImage(width, height);
  captureToPixelImage(0, 0, width, height, pixels);
  int r = 0, g = 0, b = 0, a = 0;
  readPixel(pixels, 8, panel.panelHeight - 3, &r, &g, &b, &a);
  EXPECT_GT(r + g + b, 600) << "the body is white";
  readPixel(pixels, 600, panel.panelHeight + 40, &r, &g, &b, &a);
  EXPECT_LT(r + g + b, 400) << "the picture shows beyond the panel";
  deletePixelImage(pixels);
  writePng("controlPanel.png");

  // The snapshot button asks, the run loop saves.
  const auto folder = marvtest::scratchFolder("snapshot");
  marvtest::inFolder inside(folder);
  std::filesystem::create_directories("figs");
  const int sx = cfg.mediumSize + 11 * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2;
  const int sy = cfg.mediumSize + 2 * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2;
  frame(at(sx, sy));
  frame(at(sx, sy, mouseLeft));
  frame(at(sx, sy));
  ASSERT_EQ(cfg.snapshotRequested, 1);
  saveSnapshot(cfg);
  int jpegs = 0;
  for (const auto& entry : std::filesystem::directory_iterator("figs"))
    jpegs += entry.path().extension() == ".jpg" && entry.file_size() > 1000 ? 1 : 0;
  EXPECT_EQ(jpegs, 1);
}

TEST_F(panelRender, theShortcutListIsOneTallImageThatTheOverlayScrolls) {
  sceneView scene;
  cfg.domPixH = 600;
  preRenderHelpList(scene, cfg);
  // Gaps of 12 and 24 pixels at text gap 6; 2 headings, 31 entries of
  // which 14 have a second line, each 20 pixels high.
  const int y0 = 10 + 12;
  const int below = y0 + 2 * (20 + 24) + 31 * (20 + 12) + 14 * 20;
  EXPECT_EQ(scene.helpListHeight, below + 20 + 12);
  EXPECT_EQ(scene.helpViewHeight, 600) << "the domain's height limits the view";
  int w = 0, h = 0;
  imageSize(scene.helpImage, &w, &h);
  EXPECT_EQ(w, scene.helpWidth);
  EXPECT_EQ(h, scene.helpListHeight + y0);
  EXPECT_GT(w, 60 * textWidthInFont(cfg.fixedBold, "M")) << "as wide as its longest line";
  setDrawTarget(backBuffer);
  setBackgroundColour(90, 100, 110, 255);
  clearDrawTarget();
  drawImageRect(0, 0, 0, 0, std::min(w, width), std::min(h, height), scene.helpImage, 0, 0, 0);
  writePng("shortcutList.png");
  deleteImage(scene.helpImage);
}

}  // namespace
