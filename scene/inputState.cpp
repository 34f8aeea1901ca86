// Per-frame input. The quit prompt's confirmation ends the run; the held
// states that stop stepping (mouse, Shift, Ctrl) are read from the layer.
#include "scene/inputState.h"

#include "layer/layer.h"

namespace marv {

void resetInputState(inputState& input) {
  input = inputState{};
  input.stampMs = nowMs();
}

int handleFrameInput(inputState&, appConfig& cfg) {
  const bool held = mouseButtons() != 0 || keyDown(keyLeftShift) || keyDown(keyRightShift) || keyDown(keyLeftCtrl) ||
                    keyDown(keyRightCtrl);
  cfg.inputBusy = held ? 1 : 0;
  if (keyDown(keyEsc) && cfg.showHelpShortcutFlag == 0) cfg.quitPromptFlag = 1;
  if (keyDown(keyEnter)) cfg.quitPromptFlag = 0;
  if (cfg.quitConfirmed || (cfg.quitPromptFlag && keyDown(keyQ))) return -1;
  return 1;
}

}  // namespace marv
