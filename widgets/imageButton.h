// imageButton: a picture button that is polled and drawn in one call each
// frame. It acts only on a release at the very pixel of the press, after the
// mouse came onto it with the button up, so that a drag that began
// elsewhere or wandered off never clicks it. It holds no callback: the caller
// reads the state that runImageButton returns.
#pragma once

#include <cstdint>

#include "widgets/widgetColours.h"

namespace marv {

struct imageButton {
  const char* label = nullptr;                   // caption, not owned; null for none
  int imageFontSize = 0;                         // caption under a picture button [px]
  int imageFont = -1;                            // its font
  int plainFontSize = 0;                         // caption of a button with no picture [px]
  int plainFont = -1;                            // its font
  int pressX = 0, pressY = 0;                    // mouse position at the press [px]
  int width = 64, height = 64;                   // [px]
  int x = 0, y = 0;                              // where it is drawn in this frame [px]
  int centreX = 0, centreY = 0;                  // its centre [px]
  int shadowX = 0, shadowY = 0;                  // where the shadow is drawn [px]
  int labelKind = 1;                             // 1 under the button, left-aligned; 2 centred on its lower edge
  int labelX = 0, labelY = 0, labelWidth = 0;    // last place of the caption [px]
  int shadowImage = 0;                           // image handle, 0 for none
  int shadowOffset = 0;                          // shadow's distance [px]
  int pressShift = 0;                            // how far the button sinks when pressed [px]
  std::uint32_t labelColour = colourCharcoal;    // caption of a picture button
  std::uint32_t plainLabelColour = colourBlack;  // caption of a plain button
  std::uint32_t tintColour = colourSky;          // hover and on tint
  std::uint32_t plainColour = colourGrey;        // body of a plain button
  std::uint8_t hover = 0;                        // the mouse is over it
  std::uint8_t armed = 0;                        // the mouse came over it with the left button up
  std::uint8_t down = 0;                         // the left button is down
  std::uint8_t pressed = 0;                      // a press is under way
  std::uint8_t state = 0;                        // 1 when on
  // Beyond the picture button proper, both off by default:
  std::uint8_t disabled = 0;  // 1: never hovers or presses, drawn faded
  int shortcutKey = 0;        // key code that clicks it when it goes down; 0 none
  std::uint8_t keyArmed = 0;  // the shortcut key was seen up since the last key click
};

// What the button sees of one frame's input.
struct buttonInput {
  int mouseX = 0, mouseY = 0;  // [px]
  bool leftDown = false;       // left mouse button held
  bool keyDown = false;        // the shortcut key held
};

// Places the button at (x, y), takes `state` and updates hover, press and
// state from one frame's input; no drawing, no layer call. Returns the new
// state: a click turns 0 into 1 and 1 into 0.
int updateImageButton(imageButton& button, int x, int y, int state, const buttonInput& input);

// The frame's call: reads the mouse (and the shortcut key), updates as
// above and, with drawNow = 1, draws with `image` (0 or a failed handle: a
// plain button). Returns the new state. Callers that want a one-shot pass 0
// as state each frame: the result is 1 in the frame of the click only.
int runImageButton(imageButton& button, int x, int y, int image, int state, int drawNow);

// Draws the button as the last update left it.
void drawImageButton(imageButton& button, int image);

}  // namespace marv
