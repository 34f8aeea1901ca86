// An appConfig with a uniform grid and hand-made tiles, independent of the parameter checks and the thread count.
#pragma once

#include <tuple>
#include <vector>

#include "app/appConfig.h"
#include "project/applyParameters.h"

namespace marv::testing {

// Grid of nx*ny*nz nodes over lx*ly*lz [m] with spacings and coordinates; nz = 1: 2D (lz 0, dz 1).
inline void setGrid(appConfig& cfg, int nx, int ny, int nz, double lx = 1.0, double ly = 1.0, double lz = 1.0) {
  cfg.nx = nx, cfg.ny = ny, cfg.nz = nz;
  cfg.lx = lx, cfg.ly = ly, cfg.lz = nz > 1 ? lz : 0.0;
  cfg.dx = nx > 1 ? lx / (nx - 1) : 1.0, cfg.dy = ny > 1 ? ly / (ny - 1) : 1.0, cfg.dz = nz > 1 ? lz / (nz - 1) : 1.0;
  for (auto [coord, n, d] :
       {std::tuple{&cfg.xCoord, nx, cfg.dx}, {&cfg.yCoord, ny, cfg.dy}, {&cfg.zCoord, nz, cfg.dz}}) {
    coord->assign(n, 0.0);
    for (int i = 0; i < n; ++i) (*coord)[i] = i * d;
  }
}

// Tiles npx*npy*npz, one per thread, split as the program splits them;
// threads numbered x fastest, then y.
inline void setTiles(appConfig& cfg, int npx, int npy, int npz) {
  const int n = npx * npy * npz;
  cfg.npx = npx, cfg.npy = npy, cfg.npz = npz, cfg.numThreads = n;
  for (auto* v : {&cfg.threadX, &cfg.threadY, &cfg.threadZ}) v->assign(n, 0);
  for (int t = 0; t < n; ++t) {
    cfg.threadX[t] = t % npx;
    cfg.threadY[t] = (t / npx) % npy;
    cfg.threadZ[t] = t / (npx * npy);
  }
  splitAxis(cfg.nx, npx, cfg.threadX, n, cfg.tileI0, cfg.tileI1);
  splitAxis(cfg.ny, npy, cfg.threadY, n, cfg.tileJ0, cfg.tileJ1);
  splitAxis(cfg.nz, npz, cfg.threadZ, n, cfg.tileK0, cfg.tileK1);
}

}  // namespace marv::testing
