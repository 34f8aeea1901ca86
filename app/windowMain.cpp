// marvanesse: the window program. It takes no arguments. It brings up the
// window with the settings of the first pass and runs the driver; until the
// project screens exist the pass shows a start screen with the product name,
// the version and a pointer to marvanesse-batch, and ends with the window.
#include <cstdio>
#include <cstdlib>

#include "app/driver.h"
#include "app/meshMemory.h"
#include "layer/layer.h"

namespace {

constexpr int buttonTileCount = 20;  // cells of the button picture
constexpr int proceedTile = 3;       // tile of the "Proceed" button
constexpr int frameMs = 16;          // pause per frame of the start screen [ms]

// Closing the window ends the process at once, without teardown.
void endWithWindow() {
  marv::stopLayer();
  std::exit(0);
}

int startScreen(marv::driverState&, marv::appConfig& cfg) {
  using namespace marv;
  const int logo = makeFont("Times New Roman Bold", 56, 16, 18, -1, 0, 0, 0);
  const int plus = makeFont("Times New Roman Bold", 36, 16, 18, -1, 0, 0, 0);
  const int body = makeFont("Consolas", 20, 4, 18, -1, 0, 0, 0);
  const int tiny = makeFont("Consolas", 14, 5, 18, -1, 0, 0, 0);
  int tiles[buttonTileCount];
  loadImageSetResource(777, buttonTileCount, 10, 2, 64, 64, tiles);
  const std::uint32_t white = colour(255, 255, 255);
  const std::uint32_t navy = colour(20, 60, 120);
  for (;;) {
    setDrawTarget(backBuffer);
    clearDrawTarget();
    const int width = cfg.sceneWidth, height = cfg.sceneHeight;
    drawBox(0, 0, width, height, colour(0, 176, 240), 1);
    const int word = textWidthInFont(logo, "Marvanesse");
    const int plusWidth = textWidthInFont(plus, "+");
    const int x = (width - word - plusWidth) / 2;
    const int y = height / 2 - 90;
    drawText(x, y, "Marvanesse", white, logo, 0, 0);
    drawText(x + word, y - 8, "+", white, plus, 0, 0);
    const int versionWidth = textWidthInFont(tiny, "%s", cfg.version.c_str());
    drawTextFormat(x + word + plusWidth - versionWidth, y + 70, white, tiny, "%s", cfg.version.c_str());
    drawRoundedBoxF(140.0f, height / 2.0f + 20.0f, width - 140.0f, height / 2.0f + 110.0f, 12.0f, 12.0f, 8,
                    colour(255, 255, 255), 1, 1.0f);
    const char* hint1 = "The project screens are not built yet.";
    const char* hint2 = "Run a project with: marvanesse-batch PROJECT_DIR";
    drawText((width - textWidthInFont(body, "%s", hint1)) / 2, height / 2 + 36, hint1, navy, body, 0, 0);
    drawText((width - textWidthInFont(body, "%s", hint2)) / 2, height / 2 + 70, hint2, navy, body, 0, 0);
    drawImage(width - 64 - 24, height - 64 - 24, tiles[proceedTile], 1);
    present();
    waitMs(frameMs);
    if (processMessages() == -1) endWithWindow();
  }
}

}  // namespace

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

  passStages stages;
  stages.startScreen = startScreen;
  driverState state;
  return runDriver(stages, state);
}
