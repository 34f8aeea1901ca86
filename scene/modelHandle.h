// The move handle of placement mode: three axis bars through the camera
// pivot that the user drags with Shift and the left button to move the STL
// model along one axis.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// Draws the bars, picks the one under the pointer and turns this frame's
// drag into stlDeltaX, stlDeltaY or stlDeltaZ (zeroed otherwise).
void drawStlHandle(sceneView& scene, appConfig& cfg);

// The signed move [m] of a drag of (mx, my) pixels along a bar whose ends
// stand at screen points a and b: the drag's length times spacing / 8, with
// the sign of the drag along the bar's direction on the screen.
double handleMove(double mx, double my, vec3 a, vec3 b, double spacing);

}  // namespace marv
