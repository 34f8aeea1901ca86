// The control panel played through the input script: corner, every button's flag, prompts, snapshot, arrows, viz.txt.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "screenScript.h"
#include "testSupport.h"
#include "widgets/controlPanel.h"

namespace {

using namespace marv;

using marvtest::pointer;

class panelRun : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(1280, 720, 32, 60);
    cfg.screenWidth = 1280;
    cfg.screenHeight = 720;
    cfg.mediumSize = 10;
    cfg.textHeight = 20;
    cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;
    resetInputState(input);
    panel.scene = &scene;
    constructControlPanel(panel, cfg);
    panel.slideMs = 1;  // the tests need the panel where it comes to rest
  }
  void TearDown() override {
    destroyControlPanel(panel);
    stopLayer();
  }

  // The driver's order for one frame: input, then the panel.
  void frame(const inputFrame& f) {
    setInputScript({f}, false);
    processMessages();
    handleFrameInput(input, cfg);
    runControlPanel(panel, cfg);
  }
  void open() {
    for (int i = 0; i < 50 && (cfg.panelBusy == 0 || panel.slideY != 0); ++i) {
      frame(pointer(5, 5));
      waitMs(2);
    }
    ASSERT_EQ(cfg.panelBusy, 1);
    ASSERT_EQ(panel.slideY, 0);
  }
  // The centre of button i of the panel at rest.
  int centreX(int i) const {
    return cfg.mediumSize + panelButtonAt(i).column * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2;
  }
  int centreY(int i) const {
    return cfg.mediumSize + (panelButtonAt(i).row - 1) * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2;
  }
  void click(int x, int y) {
    frame(pointer(x, y));
    frame(pointer(x, y, true));
    frame(pointer(x, y));
  }
  void clickButton(int i) { click(centreX(i), centreY(i)); }
  int indexOf(const std::string& label) const {
    for (int i = 0; i < panelButtonCount; ++i)
      if (label == panelButtonAt(i).label) return i;
    ADD_FAILURE() << "no button " << label;
    return 0;
  }

  appConfig cfg;
  inputState input;
  sceneView scene;
  controlPanel panel;
};

TEST_F(panelRun, theCornerOpensItTheRunIsHeldAndLeavingClosesIt) {
  frame(pointer(400, 400));
  EXPECT_EQ(cfg.panelBusy, 0);
  frame(pointer(cfg.buttonSize + 1, 1));
  EXPECT_EQ(cfg.panelBusy, 0) << "just beside the corner";
  frame(pointer(cfg.buttonSize, cfg.buttonSize));
  EXPECT_EQ(cfg.panelBusy, 1);
  EXPECT_LE(panel.slideY, 0);
  open();
  EXPECT_EQ(panel.panelWidth, 16 * (10 + 64) + 10);
  EXPECT_EQ(panel.panelHeight, 3 * (10 + 64) + 10);
  frame(pointer(panel.panelWidth, panel.panelHeight));
  EXPECT_EQ(cfg.panelBusy, 1) << "the far corner is still on the panel";
  frame(pointer(panel.panelWidth + 1, 100));
  EXPECT_EQ(cfg.panelBusy, 0);
}

TEST_F(panelRun, eachFlagButtonTurnsItsFlagOverAndBackAndTheRadioGroupPicksOneQuantity) {
  struct flagButton {
    const char* label;
    int appConfig::*whole;
    std::uint8_t appConfig::*byte;
  };
  const flagButton buttons[] = {
      {"Velocity vector", &appConfig::showVectorFlag, nullptr},
      {"Uncorrelated velocity vector", &appConfig::showCorrVectorFlag, nullptr},
      {"Stream line", &appConfig::showStreamlineFlag, nullptr},
      {"Tracer particle", &appConfig::showTracerParticleFlag, nullptr},
      {"Particle contour", &appConfig::showContourPaticlesFlag, nullptr},
      {"XY plane", &appConfig::showCrosssectionXYFlag, nullptr},
      {"YZ plane", &appConfig::showCrosssectionYZFlag, nullptr},
      {"XZ plane", &appConfig::showCrosssectionXZFlag, nullptr},
      {"Color object", &appConfig::nonBcObjectColorFlag, nullptr},
      {"Color boundary", &appConfig::showQColorOnBoundaryFlag, nullptr},
      {"STL BC", &appConfig::showBoundaryFlagSTL, nullptr},
      {"Non-preset BC", &appConfig::showBoundaryFlagUser, nullptr},
      {"Black BC", &appConfig::showBoundaryFlagBlack, nullptr},
      {"Orientation axes", &appConfig::showOrientationAxesFlag, nullptr},
      {"Outline", &appConfig::showOutlineFlag, nullptr},
      {"Camera target", &appConfig::showCameraTargetFlag, nullptr},
      {"Poly-frames", nullptr, &appConfig::polygonFrames},
      {"Immersed BC", &appConfig::showGhostSolidFlag, nullptr},
      {"Scaling incl. solid region", &appConfig::minMaxFlag, nullptr},
      {"Shortcut key list", &appConfig::showHelpShortcutFlag, nullptr},
      {"Pause simulation", &appConfig::quitPromptFlag, nullptr},
      {"Blue BC", &appConfig::showBoundaryFlagBlue, nullptr},
      {"Red BC", &appConfig::showBoundaryFlagRed, nullptr},
      {"Green BC", &appConfig::showBoundaryFlagGreen, nullptr},
      {"Force", nullptr, &appConfig::showForce},
      {"Heat loss", nullptr, &appConfig::showHeatLoss},
      {"Yellow BC", &appConfig::showBoundaryFlagMagenta, nullptr},
      {"Cyan BC", &appConfig::showBoundaryFlagCyan, nullptr},
  };
  open();
  for (const flagButton& b : buttons) {
    SCOPED_TRACE(b.label);
    const auto value = [&] { return b.whole ? cfg.*b.whole : cfg.*b.byte; };
    const int before = value();
    clickButton(indexOf(b.label));
    EXPECT_EQ(value(), before == 0 ? 1 : 0);
    clickButton(indexOf(b.label));
    EXPECT_EQ(value(), before == 0 ? 0 : 1);
    EXPECT_EQ(cfg.panelBusy, 1);
  }

  // Shift + L's streamlines from mesh points show as on, and go to 1.
  cfg.showStreamlineFlag = 2;
  frame(pointer(5, 5));
  EXPECT_EQ(cfg.showStreamlineFlag, 1);

  // The quantities: another button selects, the selected one stays, the
  // age variable only in a run that has it.
  const std::pair<const char*, int> quantities[] = {
      {"Density", 1}, {"U", 2}, {"V", 3}, {"W", 4}, {"|U|", 5}, {"Temperature", 6}, {"Mass fraction", 7}, {"p-p0", 8}};
  for (const auto& [label, value] : quantities) {
    clickButton(indexOf(label));
    EXPECT_EQ(cfg.dispQuantFlag, value) << label;
  }
  clickButton(indexOf("p-p0"));
  EXPECT_EQ(cfg.dispQuantFlag, 8) << "a click on the selected quantity keeps it";
  EXPECT_EQ(panel.buttons[indexOf("p-p0")].state, 1);
  clickButton(indexOf("Age variable"));
  EXPECT_EQ(cfg.dispQuantFlag, 8) << "no age variable in this run";
  EXPECT_EQ(panel.buttons[indexOf("Age variable")].state, 0);
  cfg.ageFlag = 1;
  clickButton(indexOf("Age variable"));
  EXPECT_EQ(cfg.dispQuantFlag, 11);
  for (const auto& [label, value] : quantities) EXPECT_EQ(panel.buttons[indexOf(label)].state, 0) << label;
}

TEST_F(panelRun, lightingTurnsTheEdgesTheOtherWayAndResetIsAOneShot) {
  open();
  cfg.useLightingFlag = 0;
  cfg.polygonFrames = 1;
  // Lighting turns the edges the other way; the edges can then be changed by themselves.
  const auto lightAndEdges = [&] { return std::pair{int(cfg.useLightingFlag), int(cfg.polygonFrames)}; };
  clickButton(indexOf("Lighting"));
  EXPECT_EQ(lightAndEdges(), std::pair(1, 0));
  clickButton(indexOf("Poly-frames"));
  EXPECT_EQ(lightAndEdges(), std::pair(1, 1));
  clickButton(indexOf("Lighting"));
  EXPECT_EQ(lightAndEdges(), std::pair(0, 1));

  clickButton(indexOf("Reset camera"));
  EXPECT_EQ(scene.resetCameraFlag, 1);
  EXPECT_EQ(panel.buttons[indexOf("Reset camera")].state, 1) << "in the frame of the click";
  scene.resetCameraFlag = 0;  // the frame acts on it
  frame(pointer(centreX(indexOf("Reset camera")), centreY(indexOf("Reset camera"))));
  EXPECT_EQ(panel.buttons[indexOf("Reset camera")].state, 0) << "never stays on";

  cfg.manualMinFlag = cfg.manualMaxFlag = 1;
  clickButton(indexOf("Auto scale"));
  EXPECT_EQ(cfg.manualMinFlag + cfg.manualMaxFlag, 0);
}

TEST_F(panelRun, theQuickSnapshotBesideTheClosedCornerAsksForOnePicture) {
  const int x = panel.triggerWidth + 2 * cfg.textGap + cfg.buttonSize / 2, y = cfg.textGap + cfg.buttonSize / 2;
  click(x, y);
  EXPECT_EQ(cfg.snapshotRequested, 1);
  EXPECT_EQ(cfg.panelBusy, 0) << "the button lies beside the corner that opens the panel";
  cfg.snapshotRequested = 0;  // the driver saves and clears
  frame(pointer(x, y));
  EXPECT_EQ(cfg.snapshotRequested, 0);
}

TEST_F(panelRun, scaleLimitPromptsKeepOnlyTheNumberAndCancelLeavesTheLimitOff) {
  EXPECT_DOUBLE_EQ(scaleLimitOf(" -2.5e-3 K"), -2.5e-3);
  struct answer {
    const char* label;
    const char* typed;
    int key;
    int flag;
    double value;
  };
  const answer answers[] = {
      {"Min scale", "1.5x", keyEnter, 1, 1.5},
      {"Max scale", "abc", keyEnter, 1, 0.0},
      {"Min scale", "", keyEnter, 1, 0.0},
      {"Max scale", "7", keyEsc, 0, -1.0},
  };
  open();
  for (const answer& a : answers) {
    SCOPED_TRACE(std::string(a.label) + " " + a.typed);
    const bool isMin = std::string(a.label) == "Min scale";
    cfg.manualMinFlag = cfg.manualMaxFlag = 0;
    cfg.manualMinValue = cfg.manualMaxValue = -1.0;
    const int i = indexOf(a.label);
    const int x = centreX(i), y = centreY(i);
    // The click's release opens the prompt, which then plays the frames
    // after it in its own loop.
    inputFrame typed = pointer(x, y);
    typed.typed = a.typed;
    inputFrame ended = pointer(x, y);
    // Enter is seen by the field as it goes down; Esc only while held.
    if (a.key == keyEnter)
      ended.keysTapped = {a.key};
    else
      ended.keysHeld = {a.key};
    inputFrame giveUp = pointer(x, y);  // ends a prompt that missed its answer, so that a fault fails and never hangs
    giveUp.keysHeld = {keyEsc};
    setInputScript({pointer(x, y), pointer(x, y, true), pointer(x, y), typed, ended, pointer(x, y), giveUp}, false);
    for (int f = 0; f < 3; ++f) {
      processMessages();
      handleFrameInput(input, cfg);
      runControlPanel(panel, cfg);
    }
    EXPECT_EQ(isMin ? cfg.manualMinFlag : cfg.manualMaxFlag, a.flag);
    EXPECT_DOUBLE_EQ(isMin ? cfg.manualMinValue : cfg.manualMaxValue, a.value);
    frame(pointer(x, y));
    EXPECT_EQ(panel.buttons[i].state, a.flag) << "a cancelled prompt takes the button out";
    // The key that closed the prompt is no shortcut afterwards.
    frame(pointer(x, y));
    EXPECT_EQ(cfg.quitPromptFlag, 0);
  }
}

TEST_F(panelRun, leavingThePanelSavesVizTxtOnceTheRunHasStepped) {
  marvtest::inFolder inside(marvtest::scratchFolder("panel"));
  std::filesystem::create_directories("input");
  cfg.ts = 0;
  open();
  clickButton(indexOf("Velocity vector"));
  frame(pointer(600, 600));
  EXPECT_FALSE(std::filesystem::exists("input/viz.txt")) << "no save at step 0";
  cfg.ts = 1;
  open();
  frame(pointer(600, 600));
  ASSERT_TRUE(std::filesystem::exists("input/viz.txt"));
  EXPECT_NE(marvtest::readText("input/viz.txt").find("showVectorFlag"), std::string::npos);
}

TEST_F(panelRun, analysisArrowsStepBackAndForth) {
  cfg.analysisMode = 1;
  const int y = (cfg.screenHeight - 192) / 2 + 96;
  click(2 * cfg.textGap + 32, y);
  EXPECT_EQ(cfg.analysisDirection, -1);
  click(cfg.screenWidth - 64 - 2 * cfg.textGap + 32, y);
  EXPECT_EQ(cfg.analysisDirection, 1);
  cfg.analysisMode = 0;
  cfg.analysisDirection = 0;
  click(2 * cfg.textGap + 32, y);
  EXPECT_EQ(cfg.analysisDirection, 0) << "no arrows outside Analysis mode";
}

}  // namespace
