// Construction of the record of a pass: defaults, the history file, languages
// and the layout rules that derive every screen size from the text height.
#include "app/appConfig.h"

#include <cstdlib>

#include "app/fontSet.h"
#include "app/screenFrame.h"
#include "layer/layer.h"
#include "project/historyFile.h"

namespace marv {

namespace {

constexpr int baseTextSize = 20;     // [px]
constexpr int smallestTextSize = 8;  // [px] below this the layout collapses
constexpr int largestTextSize = 96;  // [px]

// Resets the colour list to its eight presets and the saved choices to
// their defaults; the bitmap stage fills the rest.
void resetColourSlots(appConfig& cfg) {
  for (int s = 0; s < maxColourSlots; ++s) {
    cfg.ColorsCodes[s] = 0;
    cfg.R[s] = cfg.G[s] = cfg.B[s] = 255;
    cfg.colorPoints[s] = 0;
    cfg.StretchPlane[s] = 3;
    cfg.SymmetricPlane[s] = 3;
    cfg.InverseFlag[s] = 1;
    cfg.savedColorsCodes[s] = 0;
    cfg.savedStretchPlane[s] = 3;
    cfg.savedSymmetricPlane[s] = 3;
    cfg.savedInverseFlag[s] = 1;
    cfg.RemovedColorCodes[s] = 4294967295u;
  }
}

}  // namespace

void computeLayout(appConfig& cfg) {
  const int h = cfg.textHeight;
  cfg.buttonSize = 64 * h / 20;
  cfg.textGap = h / 3;
  cfg.sceneWidth = 54 * h;
  cfg.sceneHeight = 28 * h;
  cfg.startWidth = cfg.sceneWidth;
  cfg.startHeight = cfg.sceneHeight;
  cfg.marginLeft = cfg.marginRight = cfg.marginTop = h / 2;
  cfg.marginBottom = cfg.textGap / 4 + h;
  cfg.bitmapGap = 5;
  cfg.bottomStrip = cfg.textGap / 2 + 3 * h;
  cfg.colourBarX = 16 * h;
  cfg.listGap = cfg.textGap / 2;
}

void constructAppConfig(appConfig& cfg, bool firstPass, bool useHistory) {
  cfg = appConfig{};
  cfg.absProjPath = "./";
  cfg.projectName.clear();
  cfg.lastKeyMs = nowMs();

  if (firstPass) {
    // The splash, with fonts a size larger than the screens'.
    cfg.textHeight = static_cast<int>(1.4 * baseTextSize);
    buildFonts(cfg);
    showSplash(cfg);
    if (processMessages() == -1) {
      stopLayer();
      std::exit(0);
    }
  }

  cfg.textHeight = baseTextSize;
  cfg.startWidth = 1080;
  cfg.startHeight = 560;
  if (useHistory) syncHistory(cfg, 0, "");
  if (cfg.textHeight < smallestTextSize || cfg.textHeight > largestTextSize) cfg.textHeight = baseTextSize;

  // Languages: this build has no localised system string, so the system
  // counts as English and only langFlag can ask for Japanese.
  const bool systemIsJapanese = false;
  cfg.uiJapanese = cfg.langFlag == 0 ? systemIsJapanese : (cfg.langFlag == 1 ? 0 : 1);
  cfg.menuJapanese = cfg.langFlag == 1 ? 0 : systemIsJapanese;
  buildFonts(cfg);

  computeLayout(cfg);
  cfg.footerText = "Marvanesse+ " + cfg.version + " - open-source flow simulation";
  cfg.footerWidth = textWidthInFont(cfg.fixedSmall, "%s", cfg.footerText.c_str());

  for (int s = 0; s < maxColourSlots; ++s) {
    setChoices(cfg.stretchSelectors[s], {"XY", "YZ", "ZX", "OFF"}, 3);
    setChoices(cfg.symmetrySelectors[s], {"XY", "YZ", "ZX", "OFF"}, 3);
    setChoices(cfg.inverseSelectors[s], {"ON", "OFF"}, 1);
  }
  resetColourSlots(cfg);
  setChoices(cfg.unitSelector, {"m", "cm", "mm", "inch", "feet"}, 0);

  setGraphicsMode(cfg.sceneWidth, cfg.sceneHeight, 32, 60);
  setWindowedMode(1);
  setResizable(1, 1);
  setRunWhileInactive(1);
  setBackgroundColour(255, 255, 255, 0);
  setDrawTarget(backBuffer);

  // The new graphics mode may have dropped the fonts: make them again, and
  // give the text input fields theirs.
  buildFonts(cfg);
  setTextInputFont(cfg.fixedInput);

  cfg.cancelX = static_cast<int>(cfg.startWidth - 2.8 * cfg.buttonSize);
  cfg.cancelY = static_cast<int>(cfg.startHeight - 1.8 * cfg.buttonSize);
  cfg.proceedX = cfg.cancelX + cfg.buttonSize + cfg.textGap;
  cfg.proceedY = cfg.cancelY;
  setUpButtons(cfg);
}

void destroyAppConfig(appConfig& cfg) {
  deleteFonts(cfg);
  freeButtonTiles(cfg);
  cfg = appConfig{};
}

}  // namespace marv
