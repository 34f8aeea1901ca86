// The frame of the screens without a screen: a click on "Proceed" frame by
// frame.
#include <gtest/gtest.h>

#include "app/fontSet.h"
#include "app/screenFrame.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "screenScript.h"

namespace {

using namespace marv;

class screenFrame : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(1080, 560, 32, 60);
    computeLayout(cfg);
    buildFonts(cfg);
    setUpButtons(cfg);
  }
  void TearDown() override {
    freeButtonTiles(cfg);
    deleteFonts(cfg);
    stopLayer();
  }

  appConfig cfg;
};

TEST_F(screenFrame, proceedClicksOnItsReleaseAndIsPressedWhileHeld) {
  const int x = 900, y = 440, cx = x + 32, cy = y + 32;
  std::vector<inputFrame> frames = marvtest::click(cx, cy);
  frames.push_back(marvtest::pointer(cx, cy));
  setInputScript(frames, false);
  std::vector<int> results, pressed;
  while (inputScriptFramesLeft() > 0) {
    processMessages();
    results.push_back(runAppButton(cfg, buttonProceed, x, y, 0));
    pressed.push_back(cfg.buttons[buttonProceed].pressed);
  }
  EXPECT_EQ(results, (std::vector<int>{0, 0, 1, 0}));
  EXPECT_EQ(pressed, (std::vector<int>{0, 1, 0, 0}));
  EXPECT_EQ(runAppButton(cfg, 13, x, y, 1), 1) << "no such button: the state stays";
}

}  // namespace
