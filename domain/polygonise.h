// Drawable geometry of the type masks: iso-lines by marching squares over
// the plane k = 0 (two dimensions) and iso-surfaces by marching cubes (three
// dimensions), in the grid's coordinates.
#pragma once

#include "domain/bcDomain.h"

namespace marv {

// The standard marching-cubes tables: for each of the 256 corner states the
// cut edges (bit e for edge e), and up to five triangles as edge triples
// ending with -1.
extern const int cubeEdgeTable[256];
extern const int cubeTriangleTable[256][16];

// Fills outline's segments at level; -1 when its grid or field is missing.
int polygoniseOutline(bcOutline& outline, double level);

// Fills surface's triangles at level; -1 when its grid or field is missing.
int polygoniseSurface(bcSurface& surface, double level);

}  // namespace marv
