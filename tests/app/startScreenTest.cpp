// The window program's start screen, stepped frame by frame through the
// headless backend with scripted input, as its loop steps it.
#include <gtest/gtest.h>

#include <vector>

#include "app/startScreen.h"
#include "layer/inputScript.h"
#include "layer/layer.h"

namespace {

using namespace marv;

// Runs the screen as its loop does (frame, messages) until it ends or the
// window closes; returns what each frame returned.
std::vector<int> play(appConfig& cfg, std::vector<inputFrame> script) {
  startScreen screen;
  openStartScreen(screen, cfg);
  setInputScript(std::move(script), true);
  std::vector<int> results;
  for (;;) {
    results.push_back(startScreenFrame(screen, cfg));
    if (results.back() != 0 || processMessages() == -1) break;
  }
  closeStartScreen(screen);
  while (processMessages() != -1) {
  }  // the rest of the script, so that nothing stays held
  return results;
}

inputFrame pointer(int x, int y, int buttons = 0) {
  inputFrame f;
  f.mouseX = x;
  f.mouseY = y;
  f.buttons = buttons;
  return f;
}

class startScreenFrames : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(cfg.sceneWidth, cfg.sceneHeight, 32, 60);
    ASSERT_EQ(startLayer(), 0);
  }
  void TearDown() override { stopLayer(); }
  appConfig cfg;
  // The middle of "Proceed": a 64-pixel tile 24 pixels in from the bottom right corner.
  int buttonX = cfg.sceneWidth - 24 - 32;
  int buttonY = cfg.sceneHeight - 24 - 32;
};

TEST_F(startScreenFrames, proceedFiresWhenTheButtonGoesDownAfterTheMouseRestedOnIt) {
  const std::vector<int> results = play(cfg, {pointer(10, 10, mouseLeft),            // press elsewhere
                                              pointer(buttonX, buttonY, mouseLeft),  // dragged onto it
                                              pointer(buttonX, buttonY),             // released: rests on it
                                              pointer(buttonX, buttonY, mouseLeft)});
  EXPECT_EQ(results, (std::vector<int>{0, 0, 0, 0, 1})) << "frame k sees the script's frame k-1";

  // The button is drawn where it is hit: its tile covers the background there.
  const int pixels = makePixelImage(1, 1);
  captureToPixelImage(buttonX, buttonY, buttonX + 1, buttonY + 1, pixels);
  int r = 0, g = 0, b = 0;
  readPixel(pixels, 0, 0, &r, &g, &b, nullptr);
  EXPECT_FALSE(r == 0 && g == 176 && b == 240) << "the tile is drawn over the button's middle";
  captureToPixelImage(buttonX - 40, buttonY, buttonX - 39, buttonY + 1, pixels);
  readPixel(pixels, 0, 0, &r, &g, &b, nullptr);
  EXPECT_TRUE(r == 0 && g == 176 && b == 240) << "left of the tile is the background";
  deletePixelImage(pixels);
}

TEST_F(startScreenFrames, aPressBesideTheButtonOrAClosedWindowDoesNothing) {
  const std::vector<int> results =
      play(cfg, {pointer(buttonX - 33, buttonY), pointer(buttonX - 33, buttonY, mouseLeft), pointer(buttonX, buttonY)});
  EXPECT_EQ(results, (std::vector<int>{0, 0, 0, 0})) << "the screen stays until the window closes";
}

TEST_F(startScreenFrames, escLeavesAndEnterProceedsOnlyAfterTheKeyDelay) {
  inputFrame esc;
  esc.keysHeld = {keyEsc};
  EXPECT_EQ(play(cfg, {esc}), (std::vector<int>{0, -1}));

  inputFrame enter;
  enter.keysHeld = {keyEnter};
  cfg.lastKeyMs = nowMs();
  EXPECT_EQ(play(cfg, {enter, enter}), (std::vector<int>{0, 0, 0})) << "Enter right after a key counts for nothing";
  cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;
  EXPECT_EQ(play(cfg, {enter}), (std::vector<int>{0, 1}));
  EXPECT_GE(cfg.lastKeyMs, nowMs() - 100) << "leaving stamps the key clock";
}

}  // namespace
