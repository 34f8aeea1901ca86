// bcDomain: the boundary description of one case. It holds, on the solver's
// grid, the boundary type of every node (bcFlag), the image points of the
// immersed boundary, the prepared node lists that the boundary stage walks,
// and the surfaces and outlines that the scene draws.
//
// The driver constructs it once per pass (constructDomain), the domain stages
// fill it on the main thread, and during the run it is read-only: the solver
// threads read bcFlag, the image fields and the lists without locks. Every
// block is owned by its member and freed with the object; it is neither
// copied nor moved, since surfaces and outlines point at its grid block.
//
// bcFlag holds the boundary types of domain/boundaryTypes.h.
#pragma once

#include <array>
#include <vector>

#include "app/appConfig.h"
#include "common/array3d.h"
#include "domain/boundaryTypes.h"

namespace marv {

constexpr int noTriangle = -100000000;       // nearestTriangle: none was near
constexpr int behindTriangle = -1410065408;  // nearestTriangle: too far behind

// One triangle of a model or iso-surface: 15 floats.
struct bcTriangle {
  float vertex[3][3] = {};  // three vertices (x, y, z) [m]
  float centroid[3] = {};   // mean of the vertices [m]
  float normal[3] = {};     // unit normal
};

// The grid block that surfaces and outlines point at: node coordinates in
// float, owned by bcDomain.
struct bcGrid {
  const float* gridX = nullptr;  // nx coordinates [m]
  const float* gridY = nullptr;  // ny coordinates [m]
  const float* gridZ = nullptr;  // nz coordinates [m]
  int gridNx = 0;                // nodes along x
  int gridNy = 0;                // nodes along y
  int gridNz = 0;                // nodes along z
};

// A triangulated surface: the STL model (slot 7) or an iso-surface of a type
// mask, used in three dimensions.
struct bcSurface {
  float centre[3] = {};                   // model centre of the last rotation or centring [m]
  const bcGrid* grid = nullptr;           // not owned
  const array3d<float>* field = nullptr;  // field to polygonise, not owned
  std::vector<bcTriangle> triangles;      // owned, numTriangles of them
  int numTriangles = 0;                   // triangles in use
  double surfaceLevel = 0.0;              // iso-value used last
};

// Iso-lines of a type mask, used in two dimensions. Segment s runs from
// (segmentX[2s], segmentY[2s]) to (segmentX[2s+1], segmentY[2s+1]).
struct bcOutline {
  const array3d<float>* field = nullptr;  // not owned
  double outlineLevel = 0.0;              // iso-value
  const bcGrid* grid = nullptr;           // not owned
  int numSegments = 0;                    // segments in use
  std::vector<float> segmentX;            // 2*numSegments ends [m]
  std::vector<float> segmentY;            // [m]
};

// One node of a list: its indices, its boundary type (lists without a type
// hold the node's bcFlag), and its flat index, which the solver uses.
struct cellNode {
  int i = 0;  // node indices
  int j = 0;
  int k = 0;
  int type = 0;  // boundary type of the node
  int at = 0;    // flat index i + nx*j + nxy*k
};

// A node of an outer plane with its neighbour one layer in.
struct edgePair {
  int at = 0;                  // flat index of the target
  int from = 0;                // flat index of the source
  int i = 0, j = 0, k = 0;     // target indices
  int si = 0, sj = 0, sk = 0;  // source indices
};

using cellList = std::vector<cellNode>;  // entries in the order the builder gives
using pairList = std::vector<edgePair>;

struct bcDomain {
  bcDomain() = default;
  bcDomain(const bcDomain&) = delete;
  bcDomain& operator=(const bcDomain&) = delete;

  appConfig* cfg = nullptr;                        // the pass's record, not owned
  ownedArray3d<float> imageX, imageY, imageZ;      // image point of a boundary node [m]
  ownedArray3d<int> nearestTriangle;               // nearest STL triangle, build only
  cellList massfrCells;                            // fixed mass fraction, when speciesFlag
  cellList tempCells;                              // fixed temperature, when cmode = 1
  cellList ageWallCells;                           // age wall condition, when ageFlag
  cellList ageInletCells;                          // age reset, when ageFlag
  int scanStepTriangles = 10000;                   // progress refresh of the STL scans [triangles]
  int scanStepPlanes = 1000;                       // [planes]
  int scanStepExtents = 10000;                     // [extents]
  std::array<bcSurface, numColourTypes> surfaces;  // by type, three dimensions
  std::array<bcOutline, numColourTypes> outlines;  // by type, two dimensions
  float isoLevel = 0.8f;                           // inside threshold of a mask, iso-value
  std::vector<float> gridX, gridY, gridZ;          // node coordinates in float [m]
  bcGrid grid;                                     // points at gridX..gridZ
  ownedArray3d<int> bcFlag;                        // boundary type of every node
  ownedArray3d<int> solidMask;                     // bcFlag, flowing inlet nodes 0
  ownedArray3d<double> bcField;                    // sum of the type masks, k reversed
  int firstType = 1;                               // type loops run firstType..endType-1
  int endType = 9;
  std::array<ownedArray3d<float>, numColourTypes> typeMasks;  // fraction per type, slots 1..8
  cellList wallCells;                                         // no-slip nodes
  cellList faceWallCells;                                     // wall nodes on the outer planes, per face
  cellList inletCells;                                        // nodes with a prescribed velocity
  pairList edgePairs;                                         // outer-plane node and its inner neighbour
  cellList openCells;                                         // outer-plane nodes where flow may leave
};

// Allocates every field for the grid of cfg (all zero), the float copies of
// the coordinates and the type masks; clears all lists; keeps &cfg. Throws
// std::length_error when nx*ny*nz exceeds 32-bit indices.
void constructDomain(bcDomain& domain, appConfig& cfg);

}  // namespace marv
