// The lattice of mesh points on which every flow object stands: the mesh
// thinned by ndiv, about the same distance in metres along each axis, and
// centred in the domain when the thinning does not divide the mesh evenly.
#pragma once

#include <array>

#include "app/appConfig.h"

namespace marv {

struct latticeAxis {
  int step = 1;        // mesh points between lattice points, at least 1
  int first = 0;       // first lattice index, half the remainder
  double shift = 0.0;  // offset of a lattice position from its node [m]
};

// Steps along x, y and z: ndiv along x, the others scaled by the spacings.
inline std::array<int, 3> latticeSteps(const appConfig& cfg) {
  const int sx = cfg.ndiv > 1 ? cfg.ndiv : 1;
  auto scaled = [&](double spacing) {
    const int s = spacing > 0.0 ? static_cast<int>(sx * cfg.dx / spacing + 0.5) : sx;
    return s > 1 ? s : 1;
  };
  return {sx, scaled(cfg.dy), scaled(cfg.dz)};
}

// One axis of n points, spacing h and step s.
inline latticeAxis makeLatticeAxis(int n, int step, double h) {
  latticeAxis a;
  a.step = step > 1 ? step : 1;
  const int r = n > 1 ? (n - 1) % a.step : 0;
  a.first = r / 2;
  a.shift = r * 0.5 * h - a.first * h;
  return a;
}

// The lattice's three axes over a 3D mesh; false when the node coordinates
// do not cover the mesh.
inline bool latticeAxes(const appConfig& cfg, latticeAxis& ax, latticeAxis& ay, latticeAxis& az) {
  if (static_cast<int>(cfg.xCoord.size()) < cfg.nx || static_cast<int>(cfg.yCoord.size()) < cfg.ny ||
      static_cast<int>(cfg.zCoord.size()) < cfg.nz)
    return false;
  const std::array<int, 3> steps = latticeSteps(cfg);
  ax = makeLatticeAxis(cfg.nx, steps[0], cfg.dx), ay = makeLatticeAxis(cfg.ny, steps[1], cfg.dy);
  az = makeLatticeAxis(cfg.nz, steps[2], cfg.dz);
  return true;
}

}  // namespace marv
