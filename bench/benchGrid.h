// The grid and thread tiles of the solver benchmarks: n x n (x nz) nodes over
// a unit square or cube, tiles along the slowest axis split as a run splits
// them.
#pragma once

#include "app/appConfig.h"
#include "project/applyParameters.h"

namespace marvbench {

inline void setBenchGrid(marv::appConfig& cfg, int n, int nz, int threads) {
  cfg.nx = cfg.ny = n;
  cfg.nz = nz;
  cfg.dx = cfg.dy = 1.0 / (n - 1);
  cfg.dz = nz > 1 ? 1.0 / (nz - 1) : 1.0;
  cfg.lz = nz > 1 ? 1.0 : 0.0;
  cfg.xCoord.resize(n), cfg.yCoord.resize(n), cfg.zCoord.resize(nz);
  for (int i = 0; i < n; ++i) cfg.xCoord[i] = cfg.yCoord[i] = i * cfg.dx;
  for (int k = 0; k < nz; ++k) cfg.zCoord[k] = k * cfg.dz;
  cfg.numThreads = threads;
  cfg.npx = 1;
  cfg.npy = nz > 1 ? 1 : threads;
  cfg.npz = nz > 1 ? threads : 1;
  cfg.threadX.assign(threads, 0), cfg.threadY.assign(threads, 0), cfg.threadZ.assign(threads, 0);
  for (int t = 0; t < threads; ++t) (nz > 1 ? cfg.threadZ : cfg.threadY)[t] = t;
  marv::splitAxis(n, cfg.npx, cfg.threadX, threads, cfg.tileI0, cfg.tileI1);
  marv::splitAxis(n, cfg.npy, cfg.threadY, threads, cfg.tileJ0, cfg.tileJ1);
  marv::splitAxis(nz, cfg.npz, cfg.threadZ, threads, cfg.tileK0, cfg.tileK1);
}

}  // namespace marvbench
