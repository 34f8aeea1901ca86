// What every full-window screen of a pass shares: one reading of the mouse
// and keys per frame, the click rule of picture buttons and list rows, the
// button tiles, the debounce of Enter, and the end of a frame. The screens
// keep their behaviour in functions over these records, so that it can be
// driven by scripted input with no window.
#pragma once

#include <array>
#include <string>

#include "app/appConfig.h"
#include "widgets/textBox.h"

namespace marv {

// The input of one frame.
struct screenInput {
  int mouseX = 0, mouseY = 0;  // [px]
  bool left = false;           // left button held
  bool right = false;          // right button held
  int wheel = 0;               // notches since the last frame
  bool enter = false, esc = false;
  bool up = false, down = false, pageUp = false, pageDown = false, home = false, end = false;
  bool arrowLeft = false, arrowRight = false;
  int now = 0;  // [ms]
};

// Reads the layer once: mouse, buttons, wheel (cleared), keys, clock.
screenInput readScreenInput();

// A square picture button. It fires on a release at the very pixel of its
// press, and only for a press that began on it with the button up before.
struct screenButton {
  int x = 0, y = 0, size = 64;  // [px]
  bool hover = false;
  bool armed = false;
  bool pressed = false;
  int pressX = 0, pressY = 0;
};

// One frame of a button placed at (x, y): true in the frame of its click.
bool clickButton(screenButton& button, int x, int y, int size, const screenInput& in);

// A row that acts as a button: armed while the mouse stands on it with the
// button up, fires when the button goes down on an armed row; leaving
// disarms it, so a press that began elsewhere never counts.
struct rowButton {
  bool armed = false;
};
bool rowFires(rowButton& row, bool inside, bool buttonDown);

// Button tiles, cut from the program's picture of 10 by 2 cells.
enum buttonTile : int {
  tileUp = 0,
  tileDown = 1,
  tileCancel = 2,
  tileProceed = 3,
  tileAdd = 4,
  tileRemove = 5,
  tileSwapUp = 6,
  tileSwapDown = 7,
  tileRotX = 10,
  tileRotY = 11,
  tileRotZ = 12,
  tileCentre = 13,
  tilePressed = 19,
};
struct buttonTiles {
  std::array<int, 20> handles{};
  bool loaded = false;
};
void loadButtonTiles(buttonTiles& tiles);
void freeButtonTiles(buttonTiles& tiles);

// Draws a button with its tile (the pressed tile while pressed) and, while
// the mouse stands on it, its caption below it.
void drawScreenButton(const screenButton& button, const buttonTiles& tiles, int tile, const char* caption, int font);

// Enter counts only when more than keyDelayMs passed since lastKeyMs.
bool enterAfterDebounce(const appConfig& cfg, const screenInput& in);

// Makes plain fonts for the screens when the pass has none yet.
void ensureScreenFonts(appConfig& cfg);

// A text of the catalogue in the language of the screens.
std::string screenText(const appConfig& cfg, int number);

// endScreenFrame, which ends each frame of a screen, is the text box's: a
// blocking box runs its frames the same way.

// A modal message with one OK button, drawn over the current screen until
// OK, Enter or Esc.
void showScreenMessage(appConfig& cfg, const std::string& text);

}  // namespace marv
