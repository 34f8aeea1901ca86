// Per-frame input. The layer is read once, at the head of the frame; every
// decision below works on the fields that reading filled, so that a frame
// sees one consistent state of keyboard and mouse.
#include "scene/inputState.h"

#include "layer/layer.h"
#include "scene/sceneView.h"

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

void toggle(int& flag) { flag = flag == 0 ? 1 : 0; }

// The quantity keys, top row and keypad alike; -1 when none is held.
int quantityKey(const inputState& input) {
  static constexpr int top[10] = {key0, key1, key2, key3, key4, key5, key6, key7, key8, key9};
  static constexpr int pad[10] = {keyPad0, keyPad1, keyPad2, keyPad3, keyPad4,
                                  keyPad5, keyPad6, keyPad7, keyPad8, keyPad9};
  for (int digit = 1; digit <= 10; ++digit) {
    const int d = digit % 10;  // 1 .. 9, then 0: the order the rows are tested in
    if (held(input, top[d]) || held(input, pad[d])) return d;
  }
  return -1;
}

// The quantity a digit selects, or 0 where the run has no such field.
int quantityOfDigit(int digit, const appConfig& cfg) {
  switch (digit) {
    case 1: return cfg.cmode != 0 ? 1 : 0;
    case 4: return cfg.nz == 1 ? 0 : 4;
    case 6: return cfg.cmode == 0 ? 0 : 6;
    case 9: return cfg.shiftDown ? 10 : 9;
    default: return digit;
  }
}

// The letters that toggle one flag, plain only: the flag, or null.
int* plainToggle(const inputState& input, appConfig& cfg) {
  struct row {
    int key;
    int appConfig::*flag;
  };
  static constexpr row rows[] = {
      {keyG, &appConfig::showBoundaryFlagGreen}, {keyH, &appConfig::showHelpShortcutFlag},
      {keyI, &appConfig::showIsoSurfacesFlag},   {keyK, &appConfig::showBoundaryFlagBlack},
      {keyR, &appConfig::showBoundaryFlagRed},   {keyS, &appConfig::showBoundaryFlagSTL},
      {keyT, &appConfig::showCameraTargetFlag},
  };
  for (const row& r : rows)
    if (held(input, r.key)) return &(cfg.*(r.flag));
  return nullptr;
}

// The first row of the key table whose key is held acts. Returns -1 when
// the run ends, 1 when a row matched (acting or not), 0 when none did.
// Rows marked plain match with Shift or Ctrl too, but then do nothing.
int shortcut(inputState& input, appConfig& cfg) {
  const bool plain = !cfg.shiftDown && !cfg.ctrlDown;
  const int digit = quantityKey(input);
  if (digit >= 0) {
    cfg.dispQuantFlag = quantityOfDigit(digit, cfg);
    return 1;
  }
  // Letters in the order of the table: A B C G H I K L O P Q R S T V W.
  if (held(input, keyA)) {
    if (plain) toggle(cfg.showOrientationAxesFlag);
    return 1;
  }
  if (held(input, keyB)) {
    toggle(cfg.shiftDown ? cfg.showGhostSolidFlag : cfg.showBoundaryFlagBlue);
    return 1;
  }
  if (held(input, keyC)) {
    toggle(cfg.shiftDown ? cfg.nonBcObjectColorFlag : cfg.showQColorOnBoundaryFlag);
    return 1;
  }
  for (const int key : {keyG, keyH, keyI, keyK}) {
    if (!held(input, key)) continue;
    if (plain) toggle(*plainToggle(input, cfg));
    return 1;
  }
  if (held(input, keyL)) {
    cfg.showStreamlineFlag = (cfg.showStreamlineFlag == 0 ? 1 : 0) * (cfg.shiftDown ? 2 : 1);
    return 1;
  }
  if (held(input, keyO)) {
    if (plain) toggle(cfg.showOutlineFlag);
    return 1;
  }
  if (held(input, keyP)) {
    toggle(cfg.shiftDown ? cfg.showContourPaticlesFlag : cfg.showTracerParticleFlag);
    return 1;
  }
  if (held(input, keyQ)) return cfg.quitPromptFlag == 1 ? -1 : 1;
  for (const int key : {keyR, keyS, keyT}) {
    if (!held(input, key)) continue;
    if (plain) toggle(*plainToggle(input, cfg));
    return 1;
  }
  if (held(input, keyV)) {
    if (cfg.shiftDown)
      toggle(cfg.showCrosssectionVectorFlag);
    else if (cfg.ctrlDown)
      toggle(cfg.showCorrVectorFlag);
    else
      toggle(cfg.showVectorFlag);
    return 1;
  }
  if (held(input, keyW)) {
    if (plain) toggle(cfg.showBoundaryFlagUser);
    return 1;
  }
  // Planes by pairs: X alone matches nothing, so the pair acts when its
  // second key goes down.
  const bool x = held(input, keyX), y = held(input, keyY), z = held(input, keyZ);
  int* plane = nullptr;
  if (x && y)
    plane = &cfg.showCrosssectionXYFlag;
  else if (y && z)
    plane = &cfg.showCrosssectionYZFlag;
  else if (x && z)
    plane = &cfg.showCrosssectionXZFlag;
  if (plane != nullptr) {
    if (plain) toggle(*plane);
    return 1;
  }
  if (held(input, keySpace)) {
    if (plain && input.scene != nullptr) toggle(input.scene->resetCameraFlag);
    return 1;
  }
  if (held(input, keyEsc)) {
    if (cfg.showHelpShortcutFlag == 0) {
      // The prompt opens under this Esc, which must not cancel it at once.
      if (cfg.quitPromptFlag == 0 && input.scene != nullptr) input.scene->promptBox.escArmed = 0;
      cfg.quitPromptFlag = 1;
    }
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
  sceneView* scene = input.scene;
  input = inputState{};
  input.scene = scene;
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
  if (input.scene != nullptr) input.scene->plainKeys = cfg.plainKeys;

  if (cfg.quitPromptFlag == 1 && cfg.quitConfirmed == 1) return -1;
  if (anyKeyDown(7) == 0) {
    input.keyLatch = 0;
    return 1;
  }
  if (input.keyLatch) return 1;
  // A key still down from a prompt or a screen that has just ended, or one
  // typed into a text field, is spent until it is released.
  if (textInputActive() == 1 || nowMs() - cfg.lastKeyMs < cfg.keyDelayMs) {
    input.keyLatch = 1;
    return 1;
  }
  const int acted = shortcut(input, cfg);
  if (acted == -1) return -1;
  if (acted == 1) input.keyLatch = 1;
  return 1;
}

}  // namespace marv
