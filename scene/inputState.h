// Per-frame input: once at the head of every frame loop, handleFrameInput
// reads the keyboard and the mouse a single time into the frame's input
// fields of appConfig and into inputState, and then decides what the frame
// does from those fields alone. Returns -1 when the user ended the run, else 1.
#pragma once

#include <cstdint>

#include "app/appConfig.h"

namespace marv {

struct sceneView;

// Input tracking across frames, owned by the driver, reset with the pass.
struct inputState {
  int leftHeld = 0;                 // the left button was down in an earlier frame
  int leftPressX = 0;               // where it went down [px]
  int leftPressY = 0;               // [px]
  int rightHeld = 0;                // the right button was down in the last frame
  int rightLastX = 0;               // where it was in the last frame it was down [px]
  int rightLastY = 0;               // [px]
  int keyLatch = 0;                 // a shortcut acted and nothing was released since
  int stampMs = 0;                  // clock at the last reset [ms]
  std::uint8_t keyTable[256] = {};  // 1 while held, by key code
  sceneView* scene = nullptr;       // the picture whose camera Space resets; not owned, may be null
};

// Clears the tracking; the scene pointer survives.
void resetInputState(inputState& input);

// The pointer, wheel and buttons into appConfig. Always 1.
int readMouse(appConfig& cfg);

// Reads the frame's input and carries out the keyboard shortcuts. Keys that
// were already down within keyDelayMs of lastKeyMs (the key that closed a
// prompt or a screen) and keys typed into an active text field act as
// spent: they do nothing until released.
int handleFrameInput(inputState& input, appConfig& cfg);

}  // namespace marv
