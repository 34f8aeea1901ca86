// The lattice of mesh points on which every flow object stands: the mesh
// thinned by ndiv, about the same distance in metres along each axis, and
// centred in the domain when the thinning does not divide the mesh evenly.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "app/appConfig.h"
#include "common/array3d.h"

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

// Reading the velocity at a flow object's place. The three components
// share the point, so the cell that holds it is found once and blended
// three times, where three calls of sampleField would search it three
// times. The search and the arithmetic are those of sampleField
// (sampleFieldPlane with the position rounded to the nearest node), so
// that what is drawn is the same to the last bit.

// The cell that holds a point x along one axis of n >= 2 nodes, given its
// position in cells, (x - first node) / spacing: the nodes lo and hi = lo +
// 1 and the weight of hi. A position off the mesh, or not a number, is
// outside.
struct axisSpot {
  int lo = 0, hi = 0;
  double w = 0.0;
  bool inside = false;
};

inline axisSpot spotOn(double x, double cells, const double* coord, int n) {
  axisSpot s;
  const double t = std::trunc(cells);
  if (!(t >= 0.0 && t <= n - 1)) return s;
  s.inside = true;
  s.lo = std::min(static_cast<int>(t), n - 2);
  s.hi = s.lo + 1;
  s.w = (x - coord[s.lo]) / (coord[s.hi] - coord[s.lo]);
  return s;
}

// Trilinear blend of a field over the cell at[0..2]; a 2D cell has at[2] =
// plane 0 with weight 0.
inline double blendAt(const array3d<double>& f, const axisSpot at[3]) {
  const axisSpot &x = at[0], &y = at[1], &z = at[2];
  auto plane = [&](int k) {
    const double f00 = f(x.lo, y.lo, k), f10 = f(x.hi, y.lo, k);
    const double f01 = f(x.lo, y.hi, k), f11 = f(x.hi, y.hi, k);
    return (1.0 - y.w) * ((1.0 - x.w) * f00 + x.w * f10) + y.w * ((1.0 - x.w) * f01 + x.w * f11);
  };
  const double lower = plane(z.lo), upper = plane(z.hi);
  return (1.0 - z.w) * lower + z.w * upper;
}

}  // namespace marv
