// Per-frame input through the headless backend: fields, clicks, drags, and the latch of one action per key press.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "screenScript.h"

namespace {

using namespace marv;

using marvtest::frameAt;

class frameInput : public ::testing::Test {
 protected:
  void SetUp() override {
    resetInputState(input);
    cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;  // no screen has just ended
  }
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
  step(frameAt(50, 40, mouseLeft));
  step(frameAt(60, 40, mouseLeft));
  EXPECT_EQ(cfg.leftDrag, 1);
  EXPECT_EQ(cfg.leftClick, 0);
  step(frameAt(50, 40, mouseLeft));
  step(frameAt(50, 40));
  EXPECT_EQ(cfg.leftClick, 1) << "away and back to the pressed pixel is a click";
  step(frameAt(50, 40));
  EXPECT_EQ(cfg.leftClick, 0) << "only in the frame of the release";
  step(frameAt(50, 40, mouseLeft));
  step(frameAt(51, 40));
  EXPECT_EQ(cfg.leftClick, 0) << "one pixel off is no click";
  step(frameAt(10, 10, mouseRight));
  step(frameAt(20, 20, mouseRight));
  EXPECT_EQ(cfg.rightDrag, 1);
  step(frameAt(20, 20));
  EXPECT_EQ(cfg.rightClick, 1) << "a right drag that stops before the release counts";
  step(frameAt(5, 5, mouseRight));
  step(frameAt(6, 5));
  EXPECT_EQ(cfg.rightClick, 0);
}

TEST_F(frameInput, fieldsTellModifiersWheelAndWhetherThePointerIsOnTheScreen) {
  inputFrame f = frameAt(0, 30, mouseLeft | mouseRight, {keyRightShift});
  f.wheel = -2;
  // Shift makes a left drag a pick; x = 0 is off-screen; a modifier holds the run; help takes plain keys.
  auto fields = [&] {
    return std::vector<double>{double(cfg.shiftDown), double(cfg.ctrlDown),     double(cfg.leftDrag),
                               double(cfg.rightDrag), double(cfg.plainKeys),    double(cfg.inputBusy),
                               cfg.wheelDelta,        double(cfg.mouseInScreen)};
  };
  step(f);
  EXPECT_EQ(fields(), (std::vector<double>{1, 0, 0, 1, 0, 1, -2, 0}));
  step(frameAt(1, 1, 0, {keyLeftCtrl}));
  EXPECT_EQ(fields(), (std::vector<double>{0, 1, 0, 0, 0, 1, 0, 1}));
  EXPECT_EQ(cfg.mouseXPrev * 1000 + cfg.mouseYPrev, 30);
  step(frameAt(cfg.screenWidth, 5));
  EXPECT_EQ(fields(), (std::vector<double>{0, 0, 0, 0, 1, 0, 0, 0}));
  cfg.showHelpShortcutFlag = 1;
  step(frameAt(5, 5));
  EXPECT_EQ(cfg.plainKeys, 0);
}

struct shortcutRow {
  const char* what;
  std::vector<int> keys;
  int appConfig::*flag;
  int before, after;
  int cmode = 1, nz = 10;
};

class shortcuts : public frameInput {
 public:
  int press(std::vector<int> keys) {
    step(frameAt(5, 5));
    const int r = step(frameAt(5, 5, 0, std::move(keys)));
    step(frameAt(5, 5));
    return r;
  }
};

TEST_F(shortcuts, eachRowChangesItsFlag) {
  const shortcutRow rows[] = {
      {"1 thermo", {key1}, &appConfig::dispQuantFlag, 5, 1},
      {"1 constant density", {keyPad1}, &appConfig::dispQuantFlag, 5, 0, 0},
      {"4 in 3D", {key4}, &appConfig::dispQuantFlag, 5, 4},
      {"4 in 2D", {key4}, &appConfig::dispQuantFlag, 5, 0, 1, 1},
      {"6 constant density", {key6}, &appConfig::dispQuantFlag, 5, 0, 0},
      {"7", {keyPad7}, &appConfig::dispQuantFlag, 5, 7},
      {"Shift 9", {keyLeftShift, key9}, &appConfig::dispQuantFlag, 5, 10},
      {"0", {keyPad0}, &appConfig::dispQuantFlag, 5, 0},
      {"A", {keyA}, &appConfig::showOrientationAxesFlag, 1, 0},
      {"Shift A is spent", {keyLeftShift, keyA}, &appConfig::showOrientationAxesFlag, 1, 1},
      {"B", {keyB}, &appConfig::showBoundaryFlagBlue, 0, 1},
      {"Shift B", {keyRightShift, keyB}, &appConfig::showGhostSolidFlag, 0, 1},
      {"Shift B leaves blue", {keyRightShift, keyB}, &appConfig::showBoundaryFlagBlue, 0, 0},
      {"C", {keyC}, &appConfig::showQColorOnBoundaryFlag, 0, 1},
      {"Shift C", {keyLeftShift, keyC}, &appConfig::nonBcObjectColorFlag, 1, 0},
      {"G", {keyG}, &appConfig::showBoundaryFlagGreen, 0, 1},
      {"H", {keyH}, &appConfig::showHelpShortcutFlag, 0, 1},
      {"I", {keyI}, &appConfig::showIsoSurfacesFlag, 0, 1},
      {"K", {keyK}, &appConfig::showBoundaryFlagBlack, 0, 1},
      {"Ctrl K is spent", {keyLeftCtrl, keyK}, &appConfig::showBoundaryFlagBlack, 0, 0},
      {"L on", {keyL}, &appConfig::showStreamlineFlag, 0, 1},
      {"Shift L on", {keyLeftShift, keyL}, &appConfig::showStreamlineFlag, 0, 2},
      {"Shift L off", {keyLeftShift, keyL}, &appConfig::showStreamlineFlag, 1, 0},
      {"O", {keyO}, &appConfig::showOutlineFlag, 1, 0},
      {"P", {keyP}, &appConfig::showTracerParticleFlag, 0, 1},
      {"Shift P", {keyLeftShift, keyP}, &appConfig::showContourPaticlesFlag, 0, 1},
      {"R", {keyR}, &appConfig::showBoundaryFlagRed, 0, 1},
      {"S", {keyS}, &appConfig::showBoundaryFlagSTL, 1, 0},
      {"T", {keyT}, &appConfig::showCameraTargetFlag, 0, 1},
      {"V", {keyV}, &appConfig::showVectorFlag, 0, 1},
      {"Shift V", {keyLeftShift, keyV}, &appConfig::showCrosssectionVectorFlag, 1, 0},
      {"Ctrl V", {keyLeftCtrl, keyV}, &appConfig::showCorrVectorFlag, 0, 1},
      {"Shift Ctrl V is not Ctrl V", {keyLeftShift, keyLeftCtrl, keyV}, &appConfig::showCorrVectorFlag, 0, 0},
      {"Shift Ctrl V is Shift V", {keyLeftShift, keyLeftCtrl, keyV}, &appConfig::showCrosssectionVectorFlag, 0, 1},
      {"W", {keyW}, &appConfig::showBoundaryFlagUser, 1, 0},
      {"X Y", {keyX, keyY}, &appConfig::showCrosssectionXYFlag, 1, 0},
      {"Z X", {keyZ, keyX}, &appConfig::showCrosssectionXZFlag, 0, 1},
      {"X Y Z is XY", {keyX, keyY, keyZ}, &appConfig::showCrosssectionXYFlag, 0, 1},
      {"X alone", {keyX}, &appConfig::showCrosssectionXZFlag, 0, 0},
      {"Enter", {keyEnter}, &appConfig::quitPromptFlag, 1, 0},
  };
  for (const shortcutRow& row : rows) {
    SCOPED_TRACE(row.what);
    cfg = appConfig{};
    cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;
    cfg.cmode = row.cmode, cfg.nz = row.nz, cfg.*row.flag = row.before;
    resetInputState(input);
    EXPECT_EQ(press(row.keys), 1);
    EXPECT_EQ(cfg.*row.flag, row.after);
  }
}

TEST_F(shortcuts, aPressActsOnceAndOnlyWhereARowActedAndQuitNeedsThePrompt) {
  EXPECT_EQ(step(frameAt(5, 5, 0, {keyQ})), 1) << "Q without the prompt does nothing";
  EXPECT_EQ(step(frameAt(5, 5, 0, {keyQ, keyEsc})), 1);
  EXPECT_EQ(cfg.quitPromptFlag, 0) << "Q set the latch: Esc goes down unheard";
  step(frameAt(5, 5));
  cfg.showHelpShortcutFlag = 1;
  step(frameAt(5, 5, 0, {keyEsc}));
  EXPECT_EQ(cfg.quitPromptFlag, 0) << "Esc with the help list open does nothing";
  cfg.showHelpShortcutFlag = 0;
  step(frameAt(5, 5));
  step(frameAt(5, 5, 0, {keyEsc}));
  EXPECT_EQ(cfg.quitPromptFlag, 1);
  EXPECT_EQ(step(frameAt(5, 5, 0, {keyEsc, keyQ})), 1) << "still latched by Esc";
  step(frameAt(5, 5));
  EXPECT_EQ(step(frameAt(5, 5, 0, {keyQ})), -1);
  cfg.quitPromptFlag = 0, cfg.quitConfirmed = 1;
  EXPECT_EQ(step(frameAt(5, 5)), 1) << "a confirmation without the prompt ends nothing";
  cfg.quitPromptFlag = 1;
  EXPECT_EQ(step(frameAt(5, 5)), -1);
  cfg.quitPromptFlag = 0;
  step(frameAt(5, 5, 0, {key2}));
  step(frameAt(5, 5, 0, {key2, key3}));
  EXPECT_EQ(cfg.dispQuantFlag, 2) << "3 under a held 2: nothing was released";
  step(frameAt(5, 5));
  step(frameAt(5, 5, 0, {keyF}));
  step(frameAt(5, 5, 0, {keyF, key3}));
  EXPECT_EQ(cfg.dispQuantFlag, 3) << "F is no shortcut and set no latch";
  // The Esc that cancelled a prompt is still down when the run resumes.
  step(frameAt(5, 5));
  cfg.lastKeyMs = nowMs();
  step(frameAt(5, 5, 0, {keyEsc}));
  cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;
  step(frameAt(5, 5, 0, {keyEsc}));
  EXPECT_EQ(cfg.quitPromptFlag, 0) << "spent until released";
  press({keyEsc});
  EXPECT_EQ(cfg.quitPromptFlag, 1);
  // Typing into a field is no shortcut.
  const int field = makeTextInput(40, 1, 0, 0, 0, 0);
  activateTextInput(field);
  cfg.showVectorFlag = 0;
  inputFrame typing = frameAt(5, 5, 0, {keyV});
  typing.typed = "v";
  step(frameAt(5, 5));
  step(typing);
  EXPECT_EQ(cfg.showVectorFlag, 0);
  deleteTextInput(field);
}

TEST_F(shortcuts, spaceAsksTheSceneForTheDefaultViewAndTheWheelZoomsOnlyWithPlainKeys) {
  sceneView scene;
  input.scene = &scene;
  resetInputState(input);
  ASSERT_EQ(input.scene, &scene) << "the pass keeps its scene across the reset";
  press({keyLeftShift, keySpace});
  EXPECT_EQ(scene.resetCameraFlag, 0) << "plain only";
  press({keySpace});
  EXPECT_EQ(scene.resetCameraFlag, 1);
  step(frameAt(5, 5, 0, {keyLeftCtrl}));
  EXPECT_EQ(scene.plainKeys, 0);
  step(frameAt(5, 5));
  EXPECT_EQ(scene.plainKeys, 1);
}

}  // namespace
