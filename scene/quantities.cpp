// The eleven quantities. Every scan runs serially over the whole grid, every
// frame, without a test of node type: solid nodes are left out of the range
// through a mask, not a branch.
#include "scene/quantities.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace marv {

namespace {

const char* const labels[] = {" ",     "RHO (kg/m^3)", "U (m/s)",     "V (m/s)", "W (m/s)",     "|U| (m/s)",
                              "T (K)", "MASSFR",       "P - P0 (Pa)", "Q (1/s)", "div(U) x dt", "AGE VAR (s)"};

bool empty(const array3d<double>& a) { return a.data == nullptr || a.count() == 0; }

// A flat range: 0..v for a value v, -1..0 for 0.
void widenFlatRange(double& bottom, double top) {
  if (top == bottom) bottom = top != 0.0 ? 0.0 : top - 1.0;
}

// out = a*b, node by node.
void product(const array3d<double>& out, const array3d<double>& a, const array3d<double>& b) {
  const int n = out.count();
  for (int m = 0; m < n; ++m) out.data[m] = a.data[m] * b.data[m];
}

// du/dx, dv/dy and dw/dz into a, b and c; a derivative across a grid of one
// layer is 0.
void diagonalGradients(const sceneView& scene, const appConfig& cfg, const array3d<double>& u, const array3d<double>& v,
                       const array3d<double>& w, const array3d<double>& a, const array3d<double>& b,
                       const array3d<double>& c) {
  gradX(scene.grad, cfg, u, a);
  if (cfg.ny > 1)
    gradY(scene.grad, cfg, v, b);
  else
    fill(b, 0.0);
  if (cfg.nz > 1)
    gradZ(scene.grad, cfg, w, c);
  else
    fill(c, 0.0);
}

// Second invariant of the velocity gradient, negative values cut to 0.
void secondInvariant(const sceneView& scene, const appConfig& cfg, const array3d<double>& out, const array3d<double>& u,
                     const array3d<double>& v, const array3d<double>& w, const array3d<double>& a,
                     const array3d<double>& b, const array3d<double>& c) {
  const int n = out.count();
  const bool hasY = cfg.ny > 1, hasZ = cfg.nz > 1;
  diagonalGradients(scene, cfg, u, v, w, a, b, c);
  for (int m = 0; m < n; ++m) {
    const double ux = a.data[m], vy = b.data[m], wz = c.data[m];
    c.data[m] = ux * vy + vy * wz + wz * ux;
  }
  if (hasZ) {
    gradX(scene.grad, cfg, w, a);
    gradZ(scene.grad, cfg, u, b);
    for (int m = 0; m < n; ++m) c.data[m] -= a.data[m] * b.data[m];
    if (hasY)
      gradY(scene.grad, cfg, w, a);
    else
      fill(a, 0.0);
    gradZ(scene.grad, cfg, v, b);
    for (int m = 0; m < n; ++m) c.data[m] -= a.data[m] * b.data[m];
  }
  gradX(scene.grad, cfg, v, a);
  if (hasY)
    gradY(scene.grad, cfg, u, b);
  else
    fill(b, 0.0);
  for (int m = 0; m < n; ++m) out.data[m] = std::max(0.0, 0.5 * (c.data[m] - a.data[m] * b.data[m]));
}

// Divergence times the time step; of the mass flux over the mean density in
// a thermo-fluid run.
void divergence(const sceneView& scene, const appConfig& cfg, const array3d<double>& out, const array3d<double>& rho,
                const array3d<double>& u, const array3d<double>& v, const array3d<double>& w, const array3d<double>& a,
                const array3d<double>& b, const array3d<double>& c) {
  const bool hasY = cfg.ny > 1, hasZ = cfg.nz > 1;
  const bool thermo = cfg.cmode != 0 && !empty(rho);
  double f = 1.0;
  if (thermo) {
    product(out, rho, u);
    gradX(scene.grad, cfg, out, a);
    product(out, rho, v);
    if (hasY)
      gradY(scene.grad, cfg, out, b);
    else
      fill(b, 0.0);
    product(out, rho, w);
    if (hasZ)
      gradZ(scene.grad, cfg, out, c);
    else
      fill(c, 0.0);
    f = 1.0 / cfg.rhow;
  } else {
    diagonalGradients(scene, cfg, u, v, w, a, b, c);
  }
  const double factor = cfg.deltat * f;
  const int n = out.count();
  for (int m = 0; m < n; ++m) out.data[m] = (a.data[m] + b.data[m] + c.data[m]) * factor;
}

// The range of valueAt(m) over n nodes, leaving out values that are not
// finite and, unless countSolid, solid nodes; a flat range is widened.
template <class valueFunction>
void rangeOf(int n, const array3d<int>& solidMask, bool countSolid, valueFunction valueAt, double& lo, double& hi) {
  const bool masked = !countSolid && solidMask.data != nullptr && solidMask.count() >= n;
  double top = -1e10, bottom = 1e10;
#pragma omp simd reduction(max : top) reduction(min : bottom)
  for (int m = 0; m < n; ++m) {
    const double value = valueAt(m);
    const bool counts = std::isfinite(value) && (!masked || solidMask.data[m] == 0);
    top = std::max(top, counts ? value : -1e300);
    bottom = std::min(bottom, counts ? value : 1e300);
  }
  widenFlatRange(bottom, top);
  lo = bottom;
  hi = top;
}

// Speed, the default quantity, in one pass with its range: the fields are
// read once for the statistics and once here, and the display field is
// written once and never read back.
void speedWithRange(const array3d<double>& out, const array3d<double>& u, const array3d<double>& v,
                    const array3d<double>& w, const array3d<int>& solidMask, bool countSolid, double& lo, double& hi) {
  const bool hasW = !empty(w);
  rangeOf(
      out.count(), solidMask, countSolid,
      [&](int m) {
        const double wm = hasW ? w.data[m] : 0.0;
        const double value = std::sqrt(u.data[m] * u.data[m] + v.data[m] * v.data[m] + wm * wm);
        out.data[m] = value;
        return value;
      },
      lo, hi);
}

}  // namespace

const char* quantityLabelOf(int q) { return q >= 0 && q <= 11 ? labels[q] : labels[0]; }

void scanRange(const array3d<double>& field, const array3d<int>& solidMask, bool countSolid, double& lo, double& hi) {
  rangeOf(
      field.count(), solidMask, countSolid, [&](int m) { return field.data[m]; }, lo, hi);
}

void extractQuantity(sceneView& scene, appConfig& cfg, fieldViews& views) {
  const array3d<double>& u = views[fieldU];
  const array3d<double>& v = views[fieldV];
  const array3d<double>& w = views[fieldW];
  const array3d<double>& out = views[viewDisplay];
  const array3d<int> noMask;
  const array3d<int>& solid = scene.domain ? static_cast<const array3d<int>&>(scene.domain->solidMask) : noMask;
  // Speed, the usual quantity, comes with the statistics in one pass.
  if (cfg.dispQuantFlag == 5 && !empty(out) &&
      scanVelocityWithSpeed(u, v, w, out, solid, cfg.minMaxFlag != 0, scene.stats, scene.valueMin, scene.valueMax)) {
    std::snprintf(scene.quantityLabel, sizeof scene.quantityLabel, "%s", quantityLabelOf(5));
    return;
  }
  scene.stats = scanVelocity(u, v, w);

  if (empty(out) || empty(u)) return;
  const array3d<double>& a = views[viewWorkA];
  const array3d<double>& b = views[viewWorkB];
  const array3d<double>& c = views[viewWorkC];
  const int n = out.count();
  int q = cfg.dispQuantFlag;
  // A field that the run does not have falls back to speed from the next
  // frame on; this frame keeps the range it had.
  if ((q == 1 && empty(views[fieldRho])) || (q == 6 && empty(views[fieldT]))) {
    cfg.dispQuantFlag = 5;
    return;
  }
  const array3d<double>* source = nullptr;
  switch (q) {
    case 1: source = &views[fieldRho]; break;
    case 2: source = &u; break;
    case 3: source = &v; break;
    case 4: source = &w; break;
    case 6: source = &views[fieldT]; break;
    case 7: source = &views[fieldY]; break;
    case 8: source = &views[fieldP]; break;
    case 11: source = &views[fieldAge]; break;
    default: break;
  }
  if (source != nullptr && empty(*source)) source = nullptr, q = 0;  // a field this run lacks shows as none
  std::snprintf(scene.quantityLabel, sizeof scene.quantityLabel, "%s", quantityLabelOf(q));
  if (q == 5 && source == nullptr) {
    speedWithRange(out, u, v, w, solid, cfg.minMaxFlag != 0, scene.valueMin, scene.valueMax);
    return;
  }
  if (source != nullptr) {
    std::memcpy(out.data, source->data, sizeof(double) * static_cast<std::size_t>(std::min(n, source->count())));
  } else if (q == 5) {
    const bool hasW = !empty(w);
    for (int m = 0; m < n; ++m) {
      const double wm = hasW ? w.data[m] : 0.0;
      out.data[m] = std::sqrt(u.data[m] * u.data[m] + v.data[m] * v.data[m] + wm * wm);
    }
  } else if (q == 9 && !empty(a) && !empty(b) && !empty(c)) {
    secondInvariant(scene, cfg, out, u, v, w, a, b, c);
  } else if (q == 10 && !empty(a) && !empty(b) && !empty(c)) {
    divergence(scene, cfg, out, views[fieldRho], u, v, w, a, b, c);
  } else {
    fill(out, 0.0);
  }
  scanRange(out, solid, cfg.minMaxFlag != 0, scene.valueMin, scene.valueMax);
}

}  // namespace marv
