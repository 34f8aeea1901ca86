// Boundary pictures of a 3D scene: the surfaces of the colour types as
// polygon lists, the mesh lines, the floor of the preview and the pulsing
// dot of placement mode.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// Appearance of each type's polygons: black walls grey with alpha bcAlphaK,
// inflow colours their own colour, STL and other walls grey, alpha bcAlphaUser.
void setBoundaryLook(sceneView& scene, const appConfig& cfg);

// Sizes the vertex arrays to the surfaces as they stand (three vertices per
// triangle); a frame then only refills them.
void sizeBoundaryVertices(sceneView& scene, const bcDomain& domain);

// One type's surface: positions and normals refreshed, coloured by the shown
// quantity (colourMode 1) or plain, edges when polygonFrames is set.
void drawBoundaryPolygons(sceneView& scene, const appConfig& cfg, const array3d<double>& field, int colourMode, int id);

void drawMeshLines(const sceneView& scene, const appConfig& cfg);
void drawPlacementFloor(sceneView& scene, const appConfig& cfg);
void drawPulsingDot(float x, float y, float radius);

}  // namespace marv
