// The control panel played through the input script: corner, every button's flag, prompts, snapshot, arrows, viz.txt.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "testSupport.h"
#include "tests/widgets/panelSupport.h"

namespace {

using namespace marv;

using marvtest::pointer;

class panelRun : public ::testing::Test, protected marvtest::panelDriver {
 protected:
  void SetUp() override {
    setGraphicsMode(1280, 720, 32, 60);
    cfg.mediumSize = 10;
    start();
  }
  void TearDown() override {
    destroyControlPanel(panel);
    stopLayer();
  }
  // The centre of button i of the panel at rest.
  int centreX(int i) const { return centre(panelButtonAt(i).column); }
  int centreY(int i) const { return centre(panelButtonAt(i).row - 1); }
  void clickButton(const std::string& label) { click(centreX(indexOf(label)), centreY(indexOf(label))); }
  int indexOf(const std::string& label) const {
    int i = 0;
    while (i < panelButtonCount - 1 && label != panelButtonAt(i).label) ++i;
    EXPECT_EQ(label, panelButtonAt(i).label);
    return i;
  }
};

// Leaving saves viz.txt, once the run has stepped.
TEST_F(panelRun, theCornerOpensItTheRunIsHeldAndLeavingClosesItAndSavesTheView) {
  marvtest::inFolder inside(marvtest::scratchFolder("panel"));
  std::filesystem::create_directories("input");
  frame(pointer(cfg.buttonSize + 1, 1));
  EXPECT_EQ(cfg.panelBusy, 0) << "just beside the corner";
  frame(pointer(cfg.buttonSize, cfg.buttonSize));
  EXPECT_EQ(cfg.panelBusy, 1);
  open();
  EXPECT_EQ(std::pair(panel.panelWidth, panel.panelHeight), std::pair(16 * (10 + 64) + 10, 3 * (10 + 64) + 10));
  frame(pointer(panel.panelWidth, panel.panelHeight));
  EXPECT_EQ(cfg.panelBusy, 1) << "the far corner is still on the panel";
  frame(pointer(panel.panelWidth + 1, 100));
  EXPECT_EQ(cfg.panelBusy, 0);
  EXPECT_FALSE(std::filesystem::exists("input/viz.txt")) << "no save at step 0";
  cfg.ts = 1;
  open();
  clickButton("Velocity vector");
  frame(pointer(600, 600));
  EXPECT_NE(marvtest::readText("input/viz.txt").find("\nshowVectorFlag" + std::string(27, ' ') + "1\n"),
            std::string::npos);
}

TEST_F(panelRun, eachFlagButtonTurnsItsFlagOverAndBackAndTheRadioGroupPicksOneQuantity) {
  // The on/off buttons and their flags, in the same order.
  std::vector<std::string> labels;
  std::istringstream list(
      "Velocity vector|Uncorrelated velocity vector|Stream line|Tracer particle|Particle contour|XY plane|YZ plane|"
      "XZ plane|Color object|Color boundary|STL BC|Non-preset BC|Black BC|Orientation axes|Outline|Camera target|"
      "Immersed BC|Scaling incl. solid region|Shortcut key list|Pause simulation|Blue BC|Red BC|Green BC|Yellow BC|"
      "Cyan BC|Poly-frames|Force|Heat loss");
  for (std::string label; std::getline(list, label, '|');) labels.push_back(label);
  using c = appConfig;
  int c::*const flags[] = {&c::showVectorFlag,           &c::showCorrVectorFlag,      &c::showStreamlineFlag,
                           &c::showTracerParticleFlag,   &c::showContourPaticlesFlag, &c::showCrosssectionXYFlag,
                           &c::showCrosssectionYZFlag,   &c::showCrosssectionXZFlag,  &c::nonBcObjectColorFlag,
                           &c::showQColorOnBoundaryFlag, &c::showBoundaryFlagSTL,     &c::showBoundaryFlagUser,
                           &c::showBoundaryFlagBlack,    &c::showOrientationAxesFlag, &c::showOutlineFlag,
                           &c::showCameraTargetFlag,     &c::showGhostSolidFlag,      &c::minMaxFlag,
                           &c::showHelpShortcutFlag,     &c::quitPromptFlag,          &c::showBoundaryFlagBlue,
                           &c::showBoundaryFlagRed,      &c::showBoundaryFlagGreen,   &c::showBoundaryFlagMagenta,
                           &c::showBoundaryFlagCyan};
  std::uint8_t c::*const byteFlags[] = {&c::polygonFrames, &c::showForce, &c::showHeatLoss};
  open();
  // Two clicks: over and back, the panel staying open.
  const auto twice = [&](const std::string& label, const std::function<int()>& value) {
    const int before = value();
    clickButton(label);
    const int once = value();
    clickButton(label);
    EXPECT_EQ(std::vector<int>({once, value(), cfg.panelBusy}), std::vector<int>({before == 0, before != 0, 1}))
        << label;
  };
  for (int n = 0; n < 25; ++n) twice(labels[n], [&] { return cfg.*flags[n]; });
  for (int n = 0; n < 3; ++n) twice(labels[25 + n], [&] { return int(cfg.*byteFlags[n]); });
  // Shift + L's streamlines from mesh points show as on, and go to 1.
  cfg.showStreamlineFlag = 2;
  frame(pointer(5, 5));
  EXPECT_EQ(cfg.showStreamlineFlag, 1);
  // The quantities: another button selects, the selected one stays, the age variable only in a run that has it.
  const std::pair<const char*, int> quantities[] = {
      {"Density", 1}, {"U", 2}, {"V", 3}, {"W", 4}, {"|U|", 5}, {"Temperature", 6}, {"Mass fraction", 7}, {"p-p0", 8}};
  for (const auto& [label, value] : quantities) {
    clickButton(label);
    EXPECT_EQ(cfg.dispQuantFlag, value) << label;
  }
  clickButton("p-p0");
  EXPECT_EQ(cfg.dispQuantFlag, 8) << "a click on the selected quantity keeps it";
  clickButton("Age variable");
  EXPECT_EQ(cfg.dispQuantFlag * 10 + panel.buttons[indexOf("Age variable")].state, 80) << "no age variable in this run";
  cfg.ageFlag = 1;
  clickButton("Age variable");
  EXPECT_EQ(cfg.dispQuantFlag, 11);
  for (const auto& [label, value] : quantities) EXPECT_EQ(panel.buttons[indexOf(label)].state, 0) << label;
}

TEST_F(panelRun, lightingTurnsTheEdgesTheOtherWayAndResetIsAOneShot) {
  open();
  cfg.useLightingFlag = 0;
  cfg.polygonFrames = 1;
  // Lighting turns the edges the other way; the edges can then be changed by themselves.
  std::vector<int> seen;
  for (const char* label : {"Lighting", "Poly-frames", "Lighting"}) {
    clickButton(label);
    seen.insert(seen.end(), {int(cfg.useLightingFlag), int(cfg.polygonFrames)});
  }
  EXPECT_EQ(seen, (std::vector<int>{1, 0, 1, 1, 0, 1}));
  const int reset = indexOf("Reset camera");
  clickButton("Reset camera");
  EXPECT_EQ(scene.resetCameraFlag * 10 + panel.buttons[reset].state, 11) << "on in the frame of the click";
  scene.resetCameraFlag = 0;  // the frame acts on it
  frame(pointer(centreX(reset), centreY(reset)));
  EXPECT_EQ(panel.buttons[reset].state, 0) << "never stays on";
  cfg.manualMinFlag = cfg.manualMaxFlag = 1;
  clickButton("Auto scale");
  EXPECT_EQ(cfg.manualMinFlag + cfg.manualMaxFlag, 0);
}

TEST_F(panelRun, scaleLimitPromptsKeepOnlyTheNumberAndCancelLeavesTheLimitOff) {
  EXPECT_EQ((std::vector{scaleLimitOf(" -2.5e-3 K"), scaleLimitOf("abc"), scaleLimitOf("")}),
            (std::vector{-2.5e-3, 0.0, 0.0}));
  // Button, typed text, closing key, then the limit's flag and value.
  const std::tuple<const char*, const char*, int, int, double> answers[] = {{"Min scale", "1.5x", keyEnter, 1, 1.5},
                                                                            {"Max scale", "abc", keyEnter, 1, 0.0},
                                                                            {"Max scale", "7", keyEsc, 0, -1.0}};
  open();
  for (const auto& [label, text, key, flag, value] : answers) {
    SCOPED_TRACE(std::string(label) + " " + text);
    const bool isMin = std::string(label) == "Min scale";
    cfg.manualMinFlag = cfg.manualMaxFlag = 0;
    cfg.manualMinValue = cfg.manualMaxValue = -1.0;
    const int i = indexOf(label), x = centreX(i), y = centreY(i);
    // The click's release opens the prompt, which plays the frames after it
    // in its own loop. Enter is seen by the field as it goes down, Esc only
    // while held; a last Esc ends a prompt that missed its answer.
    inputFrame typed = pointer(x, y), ended = pointer(x, y), giveUp = marvtest::holding(keyEsc, x, y);
    typed.typed = text;
    (key == keyEnter ? ended.keysTapped : ended.keysHeld) = {key};
    setInputScript({pointer(x, y), pointer(x, y, true), pointer(x, y), typed, ended, pointer(x, y), giveUp}, false);
    for (int f = 0; f < 3; ++f) {
      processMessages();
      handleFrameInput(input, cfg);
      runControlPanel(panel, cfg);
    }
    EXPECT_EQ(isMin ? cfg.manualMinFlag : cfg.manualMaxFlag, flag);
    EXPECT_DOUBLE_EQ(isMin ? cfg.manualMinValue : cfg.manualMaxValue, value);
    frame(pointer(x, y));
    EXPECT_EQ(panel.buttons[i].state, flag) << "a cancelled prompt takes the button out";
    frame(pointer(x, y));
    EXPECT_EQ(cfg.quitPromptFlag, 0) << "the key that closed the prompt is no shortcut afterwards";
  }
}

// Beside the closed panel: the quick snapshot and, in Analysis mode, the arrows.
TEST_F(panelRun, theQuickSnapshotAsksForOnePictureAndAnalysisArrowsStepBackAndForth) {
  const int x = panel.triggerWidth + 2 * cfg.textGap + cfg.buttonSize / 2, y = cfg.textGap + cfg.buttonSize / 2;
  click(x, y);
  EXPECT_EQ(cfg.snapshotRequested * 10 + cfg.panelBusy, 10) << "the button lies beside the corner that opens the panel";
  cfg.snapshotRequested = 0;  // the driver saves and clears
  frame(pointer(x, y));
  EXPECT_EQ(cfg.snapshotRequested, 0);
  const int arrowY = (cfg.screenHeight - 192) / 2 + 96, back = 2 * cfg.textGap + 32;
  std::vector<int> directions;
  for (const int mode : {1, 0}) {
    cfg.analysisMode = mode;
    cfg.analysisDirection = 0;
    click(back, arrowY);
    directions.push_back(cfg.analysisDirection);
    click(cfg.screenWidth - 64 - 2 * cfg.textGap + 32, arrowY);
    directions.push_back(cfg.analysisDirection);
  }
  EXPECT_EQ(directions, (std::vector<int>{-1, 1, 0, 0})) << "no arrows outside Analysis mode";
}

}  // namespace
