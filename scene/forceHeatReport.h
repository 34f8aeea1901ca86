// The force and heat-loss report of a run frame: the boundary colour under
// the mouse is measured and shown in the notice beside the mouse, a left
// click on it switches its force and heat-loss records on or off together,
// and every colour whose force the frame measures is marked on the picture,
// green when it is recorded and magenta when it is not. The numbers and the
// record tables are those of result/frameRecords.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// Distance from the camera to where the mouse ray meets the surface, taken at
// the first triangle in list order that the ray meets (not the nearest one);
// 0 when the ray misses or the surface is empty. Triangles with two equal
// vertices do not count. Three-dimensional scenes only.
double surfaceRayDistance(const sceneView& scene, const appConfig& cfg, const bcSurface& surface);

// The boundary colour under the mouse, -1 for none. In two dimensions the
// node under the mouse (limited to the mesh) decides; in three the shown
// boundary surface that the mouse ray meets nearest to the camera.
int hoveredColour(const sceneView& scene, const appConfig& cfg);

// Marks colour on the picture: in two dimensions a triangle in every fourth
// cell (odd i and j) whose four nodes all have the colour, in three every
// sixth triangle of its surface.
void drawRecordHighlight(const sceneView& scene, const appConfig& cfg, int colour, bool recorded);

// The frame's report, after heatFluxField: record tables, values, highlight
// and the notice (in scene.scratchText, shown through noticeBox without
// waiting). No notice while the hovered colour's force is exactly 0.
void forceHeatReport(sceneView& scene, appConfig& cfg, const fieldViews& views);

}  // namespace marv
