// Construction of bcDomain: fields sized for the case, grid copies in float,
// and empty lists, surfaces and outlines.
#include "domain/bcDomain.h"

#include <algorithm>

namespace marv {

namespace {

// n coordinates in float; a coordinate table shorter than the axis leaves 0.
std::vector<float> floatCoordinates(const std::vector<double>& coordinates, int n) {
  std::vector<float> out(static_cast<std::size_t>(std::max(n, 0)), 0.0f);
  const std::size_t m = std::min(out.size(), coordinates.size());
  for (std::size_t c = 0; c < m; ++c) out[c] = static_cast<float>(coordinates[c]);
  return out;
}

}  // namespace

void constructDomain(bcDomain& d, appConfig& cfg) {
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  checkedElementCount(nx, ny, nz);  // refuse before anything is allocated
  d.cfg = &cfg;
  d.imageX = ownedArray3d<float>(nx, ny, nz);
  d.imageY = ownedArray3d<float>(nx, ny, nz);
  d.imageZ = ownedArray3d<float>(nx, ny, nz);
  d.nearestTriangle = ownedArray3d<int>(nx, ny, nz);

  for (cellList* list : {&d.massfrCells, &d.tempCells, &d.ageWallCells, &d.ageInletCells, &d.wallCells,
                         &d.faceWallCells, &d.inletCells, &d.openCells})
    list->clear();
  d.edgePairs.clear();

  d.scanStepTriangles = 10000;
  d.scanStepPlanes = 1000;
  d.scanStepExtents = 10000;
  d.isoLevel = 0.8f;

  d.gridX = floatCoordinates(cfg.xCoord, nx);
  d.gridY = floatCoordinates(cfg.yCoord, ny);
  d.gridZ = floatCoordinates(cfg.zCoord, nz);
  d.grid = bcGrid{d.gridX.data(), d.gridY.data(), d.gridZ.data(), nx, ny, nz};

  d.bcFlag = ownedArray3d<int>(nx, ny, nz);
  d.solidMask = ownedArray3d<int>(nx, ny, nz);
  d.bcField = ownedArray3d<double>(nx, ny, nz);

  d.firstType = 1;
  d.endType = 9;
  d.surfaces = {};
  d.outlines = {};
  d.typeMasks[0] = ownedArray3d<float>();
  for (int t = 1; t < numColourTypes; ++t) {
    d.typeMasks[t] = ownedArray3d<float>(nx, ny, nz);
    if (nz < 2)
      d.outlines[t].grid = &d.grid;
    else
      d.surfaces[t].grid = &d.grid;
  }
}

}  // namespace marv
