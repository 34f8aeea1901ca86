// marvanesse: the window program. It takes no arguments. It brings up the
// window with the settings of the first pass and runs the driver; until the
// project screens exist the pass shows a stand-in start screen
// (app/startScreen.h), which leads to a new pass and so back to itself.
#include <cstdio>
#include <cstdlib>

#include "app/driver.h"
#include "app/startScreen.h"
#include "layer/layer.h"

namespace {

constexpr int frameMs = 16;  // pause per frame of the start screen [ms]

// Closing the window ends the process at once, without teardown.
void endWithWindow() {
  marv::stopLayer();
  std::exit(0);
}

// The start screen's loop: a frame, present, wait, the window's messages.
int runStartScreen(marv::driverState&, marv::appConfig& cfg) {
  using namespace marv;
  startScreen screen;
  openStartScreen(screen, cfg);
  for (;;) {
    const int result = startScreenFrame(screen, cfg);
    present();
    waitMs(frameMs);
    if (processMessages() == -1) endWithWindow();
    if (result != 0) {
      closeStartScreen(screen);
      // Nothing lies beyond this screen yet: either way a new pass shows it again.
      return -1;
    }
  }
}

}  // namespace

int main() {
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

  passStages stages;
  stages.startScreen = runStartScreen;
  driverState state;
  return runDriver(stages, state);
}
