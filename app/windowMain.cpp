// marvanesse: the window program. It takes no arguments. It brings up the
// window with the settings of the first pass and runs the driver with the
// window's screens: the project choice, the parameter editor, the bitmap
// stage, the placement and the live run, pass after pass until the window
// closes. The menu bar's commands reach the driver's state from inside
// processMessages.
#include "app/driver.h"
#include "app/menuCommands.h"
#include "app/meshMemory.h"
#include "app/windowStages.h"
#include "layer/layer.h"

int main() {
  marv::endOnAllocationFailure("marvanesse");
  using namespace marv;
  setLogging(0);
  setTextCodePage(932);
  setWindowedMode(1);
  setWindowIcon(444);
  setGraphicsMode(1080, 560, 32, 60);
  setResizable(1, 1);
  setRunWhileInactive(1);
  setAllowSecondInstance(1);
  setWindowText(productWord);
  setBackgroundColour(0, 176, 240, 0);
  setSystemKeysOff(1, nullptr);
  if (startLayer() != 0) return -1;
  setDrawTarget(backBuffer);

  driverState state;
  const passStages stages = windowStages();
  static menuHook hook;
  hook.state = &state;
  hook.message = menuMessageBox;
  hook.dialog = menuFileDialog;
  installMenuHook(hook);
  return runDriver(stages, state);
}
