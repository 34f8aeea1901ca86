// marvanesse: the window program. It takes no arguments. It brings up the
// window with the settings of the first pass and runs the driver with the
// window's screens: the project choice, the parameter editor, the bitmap
// stage, the placement and the live run, pass after pass until the window
// closes. The menu bar's commands reach the driver's state from inside
// processMessages.
#include <unistd.h>

#include <cstdlib>

#include "app/driver.h"
#include "app/menuCommands.h"
#include "app/meshMemory.h"
#include "app/windowStages.h"
#include "layer/layer.h"

namespace {

// How long an idle solver thread spins before it sleeps, in pause rounds
// (about 15 ns each here, so some 0.3 ms): longer than the frame between two
// steps, shorter than a presented picture.
constexpr const char* idleSpinRounds = "20000";

// Between two steps the solver's idle threads wait in the OpenMP runtime,
// which spins them for several milliseconds before they sleep. In the window
// that spin takes a core from the rasteriser whenever a picture is presented
// (docs/performance.md, "Rasterising only what is seen"). The runtime reads
// its spin from the environment while the program is loaded, before main,
// so the program starts itself once more with it set, unless the user chose
// a wait of their own (GOMP_SPINCOUNT or OMP_WAIT_POLICY).
void restartWithShortIdleSpin(char** argv) {
  if (std::getenv("GOMP_SPINCOUNT") != nullptr || std::getenv("OMP_WAIT_POLICY") != nullptr) return;
  if (setenv("GOMP_SPINCOUNT", idleSpinRounds, 1) != 0) return;
  execv("/proc/self/exe", argv);  // returns only when it fails: then the program goes on as it is
}

}  // namespace

int main(int, char** argv) {
  restartWithShortIdleSpin(argv);
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
