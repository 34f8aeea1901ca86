// Per-frame input through the headless backend: the frame's fields, clicks
// and drags, and the key latch that lets a shortcut act once per press.
#include <gtest/gtest.h>

#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/inputState.h"

namespace {

using namespace marv;

inputFrame at(int x, int y, int buttons = 0, std::vector<int> keys = {}) {
  inputFrame f;
  f.mouseX = x;
  f.mouseY = y;
  f.buttons = buttons;
  f.keysHeld = std::move(keys);
  return f;
}

class frameInput : public ::testing::Test {
 protected:
  void SetUp() override { resetInputState(input); }
  void TearDown() override { stopLayer(); }
  // Delivers the frame and runs handleFrameInput on it.
  int step(const inputFrame& f) {
    setInputScript({f}, false);
    processMessages();
    return handleFrameInput(input, cfg);
  }
  inputState input;
  appConfig cfg;
};

TEST_F(frameInput, clicksNeedTheReleaseWhereThePressWasForLeftAndTheLastHeldPlaceForRight) {
  step(at(50, 40, mouseLeft));
  step(at(60, 40, mouseLeft));
  EXPECT_EQ(cfg.leftDrag, 1);
  EXPECT_EQ(cfg.leftClick, 0);
  step(at(50, 40, mouseLeft));
  step(at(50, 40));
  EXPECT_EQ(cfg.leftClick, 1) << "away and back to the pressed pixel is a click";
  step(at(50, 40));
  EXPECT_EQ(cfg.leftClick, 0) << "only in the frame of the release";
  step(at(50, 40, mouseLeft));
  step(at(51, 40));
  EXPECT_EQ(cfg.leftClick, 0) << "one pixel off is no click";

  step(at(10, 10, mouseRight));
  step(at(20, 20, mouseRight));
  EXPECT_EQ(cfg.rightDrag, 1);
  step(at(20, 20));
  EXPECT_EQ(cfg.rightClick, 1) << "a right drag that stops before the release counts";
  step(at(5, 5, mouseRight));
  step(at(6, 5));
  EXPECT_EQ(cfg.rightClick, 0);
}

TEST_F(frameInput, fieldsTellModifiersWheelAndWhetherThePointerIsOnTheScreen) {
  inputFrame f = at(0, 30, mouseLeft | mouseRight, {keyRightShift});
  f.wheel = -2;
  step(f);
  EXPECT_EQ(cfg.shiftDown, 1);
  EXPECT_EQ(cfg.ctrlDown, 0);
  EXPECT_EQ(cfg.leftDrag, 0) << "Shift turns the left drag into a pick";
  EXPECT_EQ(cfg.rightDrag, 1);
  EXPECT_EQ(cfg.plainKeys, 0);
  EXPECT_EQ(cfg.inputBusy, 1);
  EXPECT_EQ(cfg.wheelDelta, -2.0f);
  EXPECT_EQ(cfg.mouseInScreen, 0) << "x = 0 is outside";

  step(at(1, 1, 0, {keyLeftCtrl}));
  EXPECT_EQ(cfg.wheelDelta, 0.0f) << "each frame takes the notches since the last";
  EXPECT_EQ(cfg.mouseXPrev, 0);
  EXPECT_EQ(cfg.mouseYPrev, 30);
  EXPECT_EQ(cfg.mouseInScreen, 1);
  EXPECT_EQ(cfg.ctrlDown, 1);
  EXPECT_EQ(cfg.inputBusy, 1) << "a modifier alone holds the run";

  step(at(cfg.screenWidth, 5));
  EXPECT_EQ(cfg.mouseInScreen, 0);
  EXPECT_EQ(cfg.plainKeys, 1);
  EXPECT_EQ(cfg.inputBusy, 0);
  cfg.showHelpShortcutFlag = 1;
  step(at(5, 5));
  EXPECT_EQ(cfg.plainKeys, 0) << "the help list takes the plain keys";
}

TEST_F(frameInput, aShortcutActsOncePerPressAndQuitNeedsThePrompt) {
  EXPECT_EQ(step(at(5, 5, 0, {keyQ})), 1) << "Q without the prompt does nothing";
  EXPECT_EQ(step(at(5, 5, 0, {keyQ, keyEsc})), 1);
  EXPECT_EQ(cfg.quitPromptFlag, 0) << "Q set the latch: Esc goes down unheard";
  step(at(5, 5));
  cfg.showHelpShortcutFlag = 1;
  step(at(5, 5, 0, {keyEsc}));
  EXPECT_EQ(cfg.quitPromptFlag, 0) << "Esc with the help list open does nothing";
  cfg.showHelpShortcutFlag = 0;
  step(at(5, 5));
  step(at(5, 5, 0, {keyEsc}));
  EXPECT_EQ(cfg.quitPromptFlag, 1);
  EXPECT_EQ(step(at(5, 5, 0, {keyEsc, keyQ})), 1) << "still latched by Esc";
  step(at(5, 5));
  EXPECT_EQ(step(at(5, 5, 0, {keyQ})), -1);

  step(at(5, 5));
  step(at(5, 5, 0, {keyEnter}));
  EXPECT_EQ(cfg.quitPromptFlag, 0);
  step(at(5, 5));
  step(at(5, 5, 0, {keyLeft}));
  EXPECT_EQ(cfg.analysisDirection, -1);
  cfg.quitConfirmed = 1;
  EXPECT_EQ(step(at(5, 5)), 1) << "a confirmation without the prompt ends nothing";
  cfg.quitPromptFlag = 1;
  EXPECT_EQ(step(at(5, 5)), -1);
}

}  // namespace
