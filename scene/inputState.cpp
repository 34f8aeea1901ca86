// Per-frame input. The layer is read once, at the head of the frame; every
// decision below works on the fields that reading filled, so that a frame
// sees one consistent state of keyboard and mouse.
#include "scene/inputState.h"

#include "layer/layer.h"

namespace marv {

namespace {

bool held(const inputState& input, int code) { return input.keyTable[code] != 0; }

// Left click: shows in the frame of the release, and only when the release
// is where the press was.
void trackLeft(inputState& input, appConfig& cfg) {
  if (!cfg.mouseLeft) {
    cfg.leftClick = input.leftHeld == 1 && cfg.mouseX == input.leftPressX && cfg.mouseY == input.leftPressY ? 1 : 0;
    input.leftHeld = 0;
  } else if (input.leftHeld == 0) {
    input.leftHeld = 1;
    input.leftPressX = cfg.mouseX;
    input.leftPressY = cfg.mouseY;
  }
}

// Right click: the release is compared with the last frame the button was
// down, so a drag that stops before the release still counts.
void trackRight(inputState& input, appConfig& cfg) {
  if (!cfg.mouseRight) {
    cfg.rightClick = input.rightHeld == 1 && cfg.mouseX == input.rightLastX && cfg.mouseY == input.rightLastY ? 1 : 0;
    input.rightHeld = 0;
  } else {
    input.rightHeld = 1;
    input.rightLastX = cfg.mouseX;
    input.rightLastY = cfg.mouseY;
  }
}

// The shortcuts that steer the run, in the order they are tested. Returns
// -1 when the run ends, 1 when a row acted, 0 when none matched.
int shortcut(const inputState& input, appConfig& cfg) {
  if (held(input, keyQ)) return cfg.quitPromptFlag == 1 ? -1 : 1;
  if (held(input, keyEsc)) {
    if (cfg.showHelpShortcutFlag == 0) cfg.quitPromptFlag = 1;
    return 1;
  }
  if (held(input, keyEnter)) {
    if (cfg.quitPromptFlag == 1) cfg.quitPromptFlag = 0;
    return 1;
  }
  if (held(input, keyRight)) {
    cfg.analysisDirection = 1;
    return 1;
  }
  if (held(input, keyLeft)) {
    cfg.analysisDirection = -1;
    return 1;
  }
  return 0;
}

}  // namespace

void resetInputState(inputState& input) {
  input = inputState{};
  input.stampMs = nowMs();
}

int readMouse(appConfig& cfg) {
  cfg.mouseXPrev = cfg.mouseX;
  cfg.mouseYPrev = cfg.mouseY;
  mousePosition(&cfg.mouseX, &cfg.mouseY);
  cfg.wheelDelta = static_cast<float>(mouseWheel(1));
  const int buttons = mouseButtons();
  cfg.mouseLeft = (buttons & mouseLeft) != 0;
  cfg.mouseRight = (buttons & mouseRight) != 0;
  cfg.mouseInScreen =
      cfg.mouseX >= 1 && cfg.mouseX < cfg.screenWidth && cfg.mouseY >= 1 && cfg.mouseY < cfg.screenHeight;
  return 1;
}

int handleFrameInput(inputState& input, appConfig& cfg) {
  readKeyboard(input.keyTable);
  readMouse(cfg);

  cfg.leftDrag = cfg.rightDrag = cfg.plainKeys = cfg.inputBusy = 0;
  cfg.shiftDown = held(input, keyLeftShift) || held(input, keyRightShift);
  cfg.ctrlDown = held(input, keyLeftCtrl) || held(input, keyRightCtrl);
  if (cfg.shiftDown || cfg.ctrlDown) cfg.inputBusy = 1;
  if (!cfg.shiftDown && !cfg.ctrlDown && cfg.showHelpShortcutFlag != 1) cfg.plainKeys = 1;
  if (cfg.mouseLeft) {
    cfg.leftDrag = cfg.shiftDown ? 0 : 1;
    cfg.inputBusy = 1;
  }
  if (cfg.mouseRight) {
    cfg.rightDrag = 1;
    cfg.inputBusy = 1;
  }
  trackLeft(input, cfg);
  trackRight(input, cfg);

  if (cfg.quitPromptFlag == 1 && cfg.quitConfirmed == 1) return -1;
  bool anyHeld = cfg.mouseLeft || cfg.mouseRight;
  for (const std::uint8_t k : input.keyTable) anyHeld = anyHeld || k != 0;
  if (!anyHeld) {
    input.keyLatch = 0;
    return 1;
  }
  if (input.keyLatch) return 1;
  const int acted = shortcut(input, cfg);
  if (acted == -1) return -1;
  if (acted == 1) input.keyLatch = 1;
  return 1;
}

}  // namespace marv
