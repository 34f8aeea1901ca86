// Interpolation of grid fields at arbitrary points: trilinear inside the
// grid, 0 for a point outside it. Used by the immersed boundary (image
// points), the display, the domain build and the dump reader.
//
// Cell search: the index along an axis is trunc((x - first coordinate) /
// spacing); a point whose index falls outside 0..n-1 samples as 0, so a point
// less than one cell below the first node still blends the first cell, with
// a negative weight. The last node uses the last cell, with weight 1. An axis
// of a single node samples that node (weight 0); two-dimensional fields use
// plane k = 0 only.
#pragma once

#include "app/appConfig.h"
#include "common/array3d.h"

namespace marv {

// field at (x, y, z) [m] on the grid of cfg (xCoord.., dx..).
double sampleField(const appConfig& cfg, double x, double y, double z, const array3d<double>& field);

// The same in float arithmetic after the cell search.
float sampleFieldFloat(const appConfig& cfg, float x, float y, float z, const array3d<float>& field);

// Plane k = 0 at (x, y), with the cell index rounded to the nearest node:
// a point up to half a cell below node i blends cell i with a negative
// weight.
double sampleFieldPlane(const appConfig& cfg, double x, double y, const array3d<double>& field);

// field on a grid given by its coordinate arrays (nx, ny, nz long); the
// spacing of an axis is (last - first)/max(1, n - 1), and an axis whose
// spacing is not above 0 samples its first node.
double sampleFieldOnGrid(double x, double y, double z, const array3d<double>& field, const double* xs, const double* ys,
                         const double* zs, int nx, int ny, int nz);

}  // namespace marv
