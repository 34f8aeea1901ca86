// inputState: what the keyboard and mouse did this frame, and the frame's
// reaction. Returns 1 normally, -1 when the user ended the run.
#pragma once

#include "app/appConfig.h"

namespace marv {

struct inputState {
  int lastMouseX = 0;  // [px]
  int lastMouseY = 0;  // [px]
  int stampMs = 0;     // clock at the last reset [ms]
};

void resetInputState(inputState& input);
int handleFrameInput(inputState& input, appConfig& cfg);

}  // namespace marv
