// The two-dimensional picture: one flat-coloured box per mesh cell.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// Pixel bounds of the cells from the node positions pixelX, pixelY: cell
// (i, j) covers trunc(pixelX[i]) .. trunc(pixelX[i+1]) + 1 across and
// trunc(pixelY[j+1]) .. trunc(pixelY[j]) + 1 down.
void layOutCells(sceneView& scene, const appConfig& cfg);

// The cells of plane k = 0 in the colour of the mean of their four corners,
// then the frame round the domain. Nothing with quantity 0; only the frame
// for a mesh of one row of nodes.
void drawContour2d(sceneView& scene, const appConfig& cfg, const array3d<double>& field);

// Colour slots of a row of n cells between the node rows row0 and row1
// (n + 1 nodes each): colourSlot of the mean of each cell's four corners.
void cellColourSlots(const double* row0, const double* row1, int n, double lo, double hi, int* slots);

// Forgets the boundary cells found so far when bcFlag differs from the
// flags they were found for.
void checkBoundaryFlags(sceneView& scene, const array3d<int>& bcFlag);

// The cells of one boundary type: those whose four corners all have it, and
// on the mesh's border those whose two border corners have it. Found once
// per id for the flags of checkBoundaryFlags.
void drawBoundaryCells(sceneView& scene, const appConfig& cfg, const array3d<int>& bcFlag, int id, std::uint32_t fill);

// One iso-line of a type mask in black, all its segments in one call.
void drawBoundaryOutline(sceneView& scene, const appConfig& cfg, const bcOutline& outline);

}  // namespace marv
