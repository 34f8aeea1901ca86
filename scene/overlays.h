// What stands over the picture: the scrolling help list and the band of
// placement mode with its pulsing dot.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// The help list as a window on its pre-rendered image, with its scroll bar;
// the wheel scrolls it while no modifier key is held.
void drawHelpList(sceneView& scene, const appConfig& cfg);

// The band at the foot of placement mode with its text and the pulsing dot.
void drawPlacementBand(const sceneView& scene, const appConfig& cfg, const char* text);

}  // namespace marv
