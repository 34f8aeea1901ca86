// The STL scan of the 3D domain build: the placed model's triangles turned
// into a shell of surface nodes (type 7) with image points over a solid core
// (type 10 during the build), cut back to the model's real extent.
#pragma once

#include "app/appConfig.h"
#include "domain/bcDomain.h"

namespace marv {

// Working fields of the scan, released with it.
struct stlScanWork {
  ownedArray3d<float> distance;  // distance to the nearest centroid [m], 1e10 at the start
};

// Marks every node within scanningPixelWidthIBM nodes of a triangle's
// centroid with type 7 and the nearest triangle.
void scanTriangles(bcDomain& domain, appConfig& cfg, const bcSurface& model, stlScanWork& work);

// Decides for the marked nodes: fluid (0) on the outer side of their
// triangle, surface (7, with the image point mirrored across the triangle's
// plane) within a cell of it, solid (10) deeper inside.
void classifyNearNodes(bcDomain& domain, appConfig& cfg, const bcSurface& model);

// Clears marks (7 and 10) beyond the model's extent along every grid line.
void clipToExtents(bcDomain& domain, appConfig& cfg, const bcSurface& model);

// The three in order, when a model is present. The scan refreshes the
// progress line (row 1) about a hundred times from its triangle loops.
void scanModel(bcDomain& domain, appConfig& cfg);

// Refreshes of the progress line that scanModel makes; sets the scan's
// refresh steps in the domain.
int stlScanRefreshes(bcDomain& domain, const appConfig& cfg);

}  // namespace marv
