// The three-dimensional view: the world box of the domain, the camera with
// its snapping angles, and the frame's fixed objects (orientation axes, box
// outline, camera target marker).
#pragma once

#include "scene/sceneView.h"

namespace marv {

// World scale, origin, plane indices and the domain box of a 3D scene.
void layOutWorld(sceneView& scene, const appConfig& cfg);

// World position of a physical point [m].
vec3 worldPoint(const sceneView& scene, const appConfig& cfg, double x, double y, double z);

// The default view (or the one stored in viz.txt at the start of a run),
// given to the layer with the light. Clears resetCameraFlag's request.
void resetCamera(sceneView& scene, appConfig& cfg);

// Snaps an angle to 0, +-pi/2, +-pi within 0.05 (azimuth) or to 0 and the
// clamp values (elevation).
float snapAzimuth(float raw);
float snapElevation(float raw);

// Mouse drags and the wheel move the camera; the state goes to the viz.txt
// fields at the end.
void cameraInput(sceneView& scene, appConfig& cfg);

// The automatic turn of animationRotationFlag at step ts.
void animateCamera(sceneView& scene, appConfig& cfg);

void drawOrientationAxes(const sceneView& scene, const appConfig& cfg);
void drawOutline(const sceneView& scene);
void drawCameraTarget(const sceneView& scene, const appConfig& cfg);

}  // namespace marv
