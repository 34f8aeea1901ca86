// The frame of the screens without a screen: the shared buttons with their
// tiles, a click on "Proceed" frame by frame, the width the logo reports, the backdrop's
// motion, and the pictures found from any working directory.
#include <gtest/gtest.h>

#include <set>

#include "app/fontSet.h"
#include "app/screenFrame.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "testSupport.h"

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

inputFrame mouse(int x, int y, bool down) {
  inputFrame f;
  f.mouseX = x;
  f.mouseY = y;
  f.buttons = down ? mouseLeft : 0;
  return f;
}

TEST_F(screenFrame, theButtonTilesAreTwentyPicturesAndTheButtonsTakeTheirSizeFromTheTextHeight) {
  std::set<int> tiles(cfg.buttonTiles.begin(), cfg.buttonTiles.end());
  EXPECT_EQ(tiles.size(), 20u);
  EXPECT_GT(*tiles.begin(), 0) << "every tile loaded";
  int w = 0, h = 0;
  imageSize(cfg.buttonTiles[19], &w, &h);
  EXPECT_EQ(w, 64);
  EXPECT_EQ(h, 64);
  EXPECT_STREQ(cfg.buttons[buttonProceed].label, "Proceed");
  EXPECT_STREQ(cfg.buttons[buttonCentering].label, "Centering");
  EXPECT_STREQ(cfg.buttons[buttonRotZ].label, "Rot STL");
  EXPECT_EQ(cfg.buttons[buttonCancel].width, 64);
  EXPECT_EQ(cfg.buttons[buttonCancel].pressShift, 3);

  cfg.textHeight = 30;
  computeLayout(cfg);
  setUpButtons(cfg);
  EXPECT_EQ(cfg.buttons[buttonUp].width, 96);
  EXPECT_EQ(cfg.buttons[buttonUp].pressShift, 4);
}

TEST_F(screenFrame, proceedClicksOnItsReleaseAndIsPressedWhileHeld) {
  const int x = 900, y = 440, cx = x + 32, cy = y + 32;
  setInputScript({mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx, cy, false), mouse(cx, cy, false)}, false);
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

TEST_F(screenFrame, theLogoReportsTheWidthOfItsTwoWordsWhateverItsPlacing) {
  const int width = drawLogo(cfg, 0, 0, colourBlack, colourBlack, 2, nullptr);
  EXPECT_GT(width, 10 * cfg.logoSize / 3) << "ten letters and a plus";
  EXPECT_EQ(drawLogo(cfg, 0, 0, colourBlack, colourBlack, -1, "caption"), width);
  EXPECT_EQ(drawLogo(cfg, 500, 200, colourBlack, colourBlack, 1, "caption"), width);
  cfg.textHeight = 40;
  buildFonts(cfg);
  EXPECT_NEAR(drawLogo(cfg, 0, 0, colourBlack, colourBlack, 2, nullptr), 2 * width, 0.1 * width)
      << "the logo grows with the text height";
}

TEST_F(screenFrame, theBackdropDriftsRightByLayerAndReentersAtTheLeft) {
  drawBackdrop(cfg, 0.03);
  ASSERT_EQ(cfg.backdrop.made, 1);
  const backdropState before = cfg.backdrop;
  for (const backdropCircle& c : before.circles) {
    EXPECT_GE(c.x, 0.0f);
    EXPECT_LE(c.x, 1080.0f);
    EXPECT_LE(std::abs(c.amplitude), 0.125f * 560 + 0.01f);
  }
  EXPECT_EQ(before.circles[0].layer, 1);
  EXPECT_EQ(before.circles[49].layer, 2);
  EXPECT_EQ(before.circles[146].layer, 3);
  // A second later each layer has moved layer x 30 pixels, the fast one 120;
  // a circle put beyond the right edge comes back left of the window.
  cfg.backdrop.lastMs -= 1000;
  cfg.backdrop.circles[5].x = 1080.0f + 2.0f * 6.0f + 1.0f;
  drawBackdrop(cfg, 0.03);
  int checked[4] = {};  // circles checked per layer, the fast one last
  for (int i = 0; i < backdropCircles; ++i) {
    if (i == 5) continue;
    const bool fast = i == backdropCircles - 1;
    const float expected = (fast ? 4 : before.circles[i].layer) * 0.03f * 1000.0f;
    if (before.circles[i].x + expected > 1000.0f) continue;  // may have wrapped
    EXPECT_NEAR(cfg.backdrop.circles[i].x - before.circles[i].x, expected, 1.0f) << "circle " << i;
    ++checked[fast ? 3 : before.circles[i].layer - 1];
  }
  EXPECT_GT(checked[0] * checked[1] * checked[2], 0) << "every layer was checked";
  EXPECT_LT(cfg.backdrop.circles[5].x, 0.0f);
}

TEST(programPictures, areFoundFromAnyWorkingDirectory) {
  const auto elsewhere = marvtest::scratchFolder("pictures");
  marvtest::inFolder inside(elsewhere);
  for (int id : {444, 550, 555, 777, 888, 999}) {
    const int image = loadImageResource(id);
    EXPECT_GT(image, 0) << "picture " << id;
    deleteImage(image);
  }
  EXPECT_LT(loadImageResource(123), 0) << "a picture the program does not have";
  stopLayer();
}

}  // namespace
