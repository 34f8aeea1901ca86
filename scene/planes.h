// Cross-section planes of a 3D run: the shown quantity on up to three
// axis-aligned mesh layers, picked with Shift and the pointer, moved with
// the wheel; and the probes that a click drops on a plane or on the 2D
// picture, with their markers.
#pragma once

#include "scene/sceneView.h"

namespace marv {

enum planeKind : int { planeXY = 0, planeYZ = 1, planeXZ = 2 };

// One plane on its mesh layer, coloured cell by cell; with Shift held the
// pointer's ray is tested against its cells. Ghost solids and the plane's
// vectors follow when their flags are set.
void drawPlane(sceneView& scene, const appConfig& cfg, const fieldViews& views, planeKind kind);

// The plane nearest under the pointer while Shift is down: outlined,
// labelled, moved by the wheel; a left click drops a probe on it, a right
// click takes the newest probe away. Clears the frame's picking at the end.
void selectPlaneAndProbe(sceneView& scene, appConfig& cfg);

// The layer index after a wheel move of `notches`, kept within 0..n-1.
int movedPlaneIndex(int index, double notches, int n);

// Probe clicks on the 2D picture while Shift is down.
void probeClick2d(const sceneView& scene, appConfig& cfg);

// A marker at every probe: a box in 2D, a cube in 3D.
void drawProbes(const sceneView& scene, const appConfig& cfg);

}  // namespace marv
