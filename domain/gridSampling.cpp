// Grid sampling: one cell search per axis, then a blend of the eight (or
// four) corners. Every index is checked before it is used, so any point,
// NaN included, gives a defined result.
#include "domain/gridSampling.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace marv {

namespace {

// Lower and upper node of the cell that holds a point along one axis, and
// the weight of the upper node.
template <class R>
struct axisCell {
  int lo = 0;  // lower node
  int hi = 0;  // upper node
  R w = 0;     // weight of hi
  bool inside = false;
};

// Cell of position index v (already (x - first)/spacing, or rounded) on an
// axis of n nodes with coordinates c; the weight in arithmetic R.
template <class R, class C>
axisCell<R> cellOf(double v, R x, const C* c, int n) {
  axisCell<R> cell;
  const double t = std::trunc(v);
  if (n < 1 || !(t >= 0.0 && t <= n - 1)) return cell;  // also refuses NaN
  cell.inside = true;
  if (n < 2) return cell;
  cell.lo = std::min(static_cast<int>(t), n - 2);
  cell.hi = cell.lo + 1;
  cell.w = (x - R(c[cell.lo])) / (R(c[cell.hi]) - R(c[cell.lo]));
  return cell;
}

// (1-wz)*L + wz*U of the corners of cells cx, cy, cz.
template <class R, class T>
R blend(const array3d<T>& f, const axisCell<R>& cx, const axisCell<R>& cy, const axisCell<R>& cz) {
  auto plane = [&](int k) {
    const R f00 = R(f(cx.lo, cy.lo, k)), f10 = R(f(cx.hi, cy.lo, k));
    const R f01 = R(f(cx.lo, cy.hi, k)), f11 = R(f(cx.hi, cy.hi, k));
    return (R(1) - cy.w) * ((R(1) - cx.w) * f00 + cx.w * f10) + cy.w * ((R(1) - cx.w) * f01 + cx.w * f11);
  };
  const R lower = plane(cz.lo), upper = plane(cz.hi);
  return (R(1) - cz.w) * lower + cz.w * upper;
}

// Axis length usable with both the grid and its coordinate table.
int axisLength(int n, const std::vector<double>& coordinates) {
  return std::min(n, static_cast<int>(coordinates.size()));
}

template <class R, class T>
R sampleOnConfig(const appConfig& cfg, double x, double y, double z, const array3d<T>& field) {
  const int nx = axisLength(cfg.nx, cfg.xCoord), ny = axisLength(cfg.ny, cfg.yCoord);
  const int nz = axisLength(cfg.nz, cfg.zCoord);
  const axisCell<R> cx = cellOf<R>((x - cfg.xCoord.data()[0]) / cfg.dx, R(x), cfg.xCoord.data(), nx);
  const axisCell<R> cy = cellOf<R>((y - cfg.yCoord.data()[0]) / cfg.dy, R(y), cfg.yCoord.data(), ny);
  if (!cx.inside || !cy.inside || nz < 1) return R(0);
  const axisCell<R> cz = cellOf<R>((z - cfg.zCoord.data()[0]) / cfg.dz, R(z), cfg.zCoord.data(), nz);
  if (!cz.inside) return R(0);
  return blend(field, cx, cy, cz);
}

}  // namespace

double sampleField(const appConfig& cfg, double x, double y, double z, const array3d<double>& field) {
  if (cfg.xCoord.empty() || cfg.yCoord.empty() || cfg.zCoord.empty()) return 0.0;
  return sampleOnConfig<double>(cfg, x, y, z, field);
}

float sampleFieldFloat(const appConfig& cfg, float x, float y, float z, const array3d<float>& field) {
  if (cfg.xCoord.empty() || cfg.yCoord.empty() || cfg.zCoord.empty()) return 0.0f;
  return sampleOnConfig<float>(cfg, x, y, z, field);
}

double sampleFieldPlane(const appConfig& cfg, double x, double y, const array3d<double>& field) {
  if (cfg.xCoord.empty() || cfg.yCoord.empty()) return 0.0;
  const int nx = axisLength(cfg.nx, cfg.xCoord), ny = axisLength(cfg.ny, cfg.yCoord);
  const axisCell<double> cx = cellOf<double>((x - cfg.xCoord[0]) / cfg.dx + 0.5, x, cfg.xCoord.data(), nx);
  const axisCell<double> cy = cellOf<double>((y - cfg.yCoord[0]) / cfg.dy + 0.5, y, cfg.yCoord.data(), ny);
  if (!cx.inside || !cy.inside) return 0.0;
  return blend(field, cx, cy, axisCell<double>{0, 0, 0.0, true});
}

double sampleFieldOnGrid(double x, double y, double z, const array3d<double>& field, const double* xs, const double* ys,
                         const double* zs, int nx, int ny, int nz) {
  if (nx < 1 || ny < 1 || nz < 1) return 0.0;
  // Cell along an axis; a spacing not above 0 (a single node, or a table
  // that does not increase) pins the axis to its first node.
  auto axis = [](double p, const double* c, int n) {
    const double h = (c[n - 1] - c[0]) / std::max(1, n - 1);
    if (!(h > 0.0)) return axisCell<double>{0, 0, 0.0, true};
    return cellOf<double>((p - c[0]) / h, p, c, n);
  };
  const axisCell<double> cx = axis(x, xs, nx), cy = axis(y, ys, ny), cz = axis(z, zs, nz);
  if (!cx.inside || !cy.inside || !cz.inside) return 0.0;
  return blend(field, cx, cy, cz);
}

}  // namespace marv
