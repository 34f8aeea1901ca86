// What every screen stands in: the product word with its version (drawLogo),
// the proceed hint at the foot of a screen, the moving backdrop of the
// project screens, the splash of the first pass, and the thirteen picture
// buttons that the screens share, with their tiles.
#pragma once

#include <cstdint>

#include "app/appConfig.h"

namespace marv {

// The thirteen shared buttons of appConfig::buttons.
enum appButton : int {
  buttonUp = 0,
  buttonDown = 1,
  buttonCancel = 2,
  buttonProceed = 3,
  buttonAdd = 4,
  buttonRemove = 5,
  buttonSwapUp = 6,    // move an entry up
  buttonSwapDown = 7,  // move an entry down
  buttonSpare = 8,     // no caption, never placed
  buttonRotX = 9,      // the three model rotations
  buttonRotY = 10,
  buttonRotZ = 11,
  buttonCentering = 12,
};

// The product word "Marvanesse" in logoFont with a raised "+" in
// logoPlusFont behind it and the version below its right end in fixedTiny.
// centred 1: the pair is centred on (x, y); 0: (x, y) is its top left
// corner; any other value draws nothing. A caption, when not null, stands
// centred above the word. Returns the width of the two words [px].
int drawLogo(appConfig& cfg, int x, int y, std::uint32_t textColour, std::uint32_t versionColour, int centred,
             const char* caption);

// Texts 34 and 35 in two lines whose right ends stand at x, the first line's
// top at y, lineHeight apart, in `font`. They stay for 2500 ms after their
// first showing in the pass and then fade out by one alpha step per 2 ms.
void drawProceedHint(appConfig& cfg, int x, int y, int font, int lineHeight);

// Moves the backdrop's circles on and draws them over the whole window;
// `speed` is the slowest layer's speed [px/ms], 0.03 on the project screens.
void drawBackdrop(appConfig& cfg, double speed);

// The first pass's splash: the logo centred in the window, shown for
// 2 x keyDelayMs. Closing the window ends the process.
void showSplash(appConfig& cfg);

// Loads the button tiles (picture 777) and sets up the thirteen buttons at
// buttonSize; any tiles loaded before are freed.
void setUpButtons(appConfig& cfg);

// Runs button `index` of the thirteen at (x, y), drawn with its own tile, or
// the common pressed tile while a press is under way. Returns the new state.
int runAppButton(appConfig& cfg, int index, int x, int y, int state);

// Frees the button tiles.
void freeButtonTiles(appConfig& cfg);

}  // namespace marv
