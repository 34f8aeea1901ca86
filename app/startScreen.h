// The window program's start screen, as it stands until the project screens
// exist: the product name, the version, a pointer to marvanesse-batch and a
// "Proceed" button. A per-frame function: the loop around it presents,
// waits and handles the window's messages, so that a test can step it.
#pragma once

#include "app/appConfig.h"

namespace marv {

constexpr int startTileCount = 20;  // cells of the button picture

struct startScreen {
  int logoFont = -1;               // the product name
  int plusFont = -1;               // its "+"
  int bodyFont = -1;               // the hints
  int tinyFont = -1;               // the version
  int tiles[startTileCount] = {};  // button tiles
  int proceed[4] = {0, 0, 0, 0};   // x1 y1 x2 y2 of the "Proceed" button [px]
  bool proceedArmed = false;       // the pointer rests on "Proceed" with the button up
};

void openStartScreen(startScreen& screen, const appConfig& cfg);
void closeStartScreen(startScreen& screen);

// Draws one frame and reads the frame's input. Returns 0 while the screen
// stays, 1 for "Proceed" (pressed, or Enter after the key delay), -1 for Esc.
// "Proceed" fires when the button goes down on it, and only if the pointer
// rested on it with the button up before, so a press that began elsewhere
// does not count.
int startScreenFrame(startScreen& screen, appConfig& cfg);

}  // namespace marv
