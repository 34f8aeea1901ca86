// Velocity vectors. Both kinds stand on the lattice of the flow objects; an
// arrow's length grows from a fixed share at the slowest speed to the full
// lattice spacing at the fastest, so slow regions still show their
// direction.
#include "scene/flowVectors.h"

#include <algorithm>
#include <cmath>

#include "domain/gridSampling.h"
#include "scene/camera3d.h"
#include "scene/colourScale.h"
#include "scene/flowLattice.h"

namespace marv {

namespace {

constexpr double headAngle = 0.62831855;  // rad between the shaft and a head stroke

bool fits(const array3d<double>& f, int count) { return f.data != nullptr && f.count() == count; }

}  // namespace

bool makeArrow2d(double u, double v, double minSpeed, double maxSpeed, int ndiv, int pixPerCell, double cx, double cy,
                 arrow2d& arrow) {
  const double m = std::sqrt(u * u + v * v);
  if (!(m / maxSpeed >= 1e-5)) return false;
  const double spread = maxSpeed - minSpeed;
  const double length = spread > 0.0 ? (m - minSpeed) * 0.8 / spread + 0.2 : 1.0;
  const double ex = u / m * length * ndiv * pixPerCell * 0.5, ey = v / m * length * ndiv * pixPerCell * 0.5;
  const double tx = cx - ex, ty = cy + ey, hx = cx + ex, hy = cy - ey;
  const double dx = tx - hx, dy = ty - hy, c = std::cos(headAngle), s = std::sin(headAngle);
  double h1x = (dx * c - dy * s) * 0.25, h1y = (dx * s + dy * c) * 0.25;
  double h2x = (dx * c + dy * s) * 0.25, h2y = (-dx * s + dy * c) * 0.25;
  const double stroke = std::sqrt(h1x * h1x + h1y * h1y);
  if (stroke < pixPerCell * 0.5 && stroke > 0.0) {
    const double k = std::max(3.0, pixPerCell * 0.25) / stroke;
    h1x *= k, h1y *= k, h2x *= k, h2y *= k;
  }
  arrow = {static_cast<float>(tx),       static_cast<float>(ty),       static_cast<float>(hx),
           static_cast<float>(hy),       static_cast<float>(hx + h1x), static_cast<float>(hy + h1y),
           static_cast<float>(hx + h2x), static_cast<float>(hy + h2y)};
  return true;
}

double inflowCorrelation(const double sample[3], const double inflow[3]) {
  double a[3], b[3], ma = 0.0, mb = 0.0;
  for (int n = 0; n < 3; ++n) a[n] = std::fabs(sample[n]), b[n] = std::fabs(inflow[n]), ma += a[n], mb += b[n];
  ma /= 3.0, mb /= 3.0;
  double ab = 0.0, aa = 0.0, bb = 0.0;
  for (int n = 0; n < 3; ++n) {
    ab += (a[n] - ma) * (b[n] - mb);
    aa += (a[n] - ma) * (a[n] - ma);
    bb += (b[n] - mb) * (b[n] - mb);
  }
  return (ab / 3.0) / std::sqrt(aa / 3.0) / std::sqrt(bb / 3.0);
}

void drawVectors2d(const sceneView& scene, const appConfig& cfg, const fieldViews& views) {
  if (scene.domain == nullptr || cfg.nx < 2 || cfg.ny < 2) return;
  const int count = cfg.nx * cfg.ny;
  const array3d<int>& mask = scene.domain->solidMask;
  if (!fits(views[fieldU], count) || !fits(views[fieldV], count) || mask.data == nullptr || mask.count() != count)
    return;
  if (static_cast<int>(cfg.xCoord.size()) < cfg.nx || static_cast<int>(cfg.yCoord.size()) < cfg.ny ||
      static_cast<int>(cfg.pixelX.size()) < cfg.nx || static_cast<int>(cfg.pixelY.size()) < cfg.ny)
    return;
  const std::array<int, 3> steps = latticeSteps(cfg);
  const latticeAxis ax = makeLatticeAxis(cfg.nx, steps[0], cfg.dx), ay = makeLatticeAxis(cfg.ny, steps[1], cfg.dy);
  const double tx = cfg.dx > 0.0 ? ax.shift / cfg.dx : 0.0, ty = cfg.dy > 0.0 ? ay.shift / cfg.dy : 0.0;
  const double maxSpeed = scene.stats.maxSpeed, minSpeed = scene.stats.minSpeed;
  for (int j = ay.first; j < cfg.ny - ay.first - 1; j += ay.step)
    for (int i = ax.first; i < cfg.nx - ax.first - 1; i += ax.step) {
      const double x = cfg.xCoord[i] + ax.shift, y = cfg.yCoord[j] + ay.shift;
      const double u = sampleFieldPlane(cfg, x, y, views[fieldU]), v = sampleFieldPlane(cfg, x, y, views[fieldV]);
      auto solid = [&](int a, int b) { return mask(a, b, 0) != 0 ? 1.0 : 0.0; };
      const double w = (1 - tx) * (1 - ty) * solid(i, j) + tx * (1 - ty) * solid(i + 1, j) +
                       (1 - tx) * ty * solid(i, j + 1) + tx * ty * solid(i + 1, j + 1);
      if (cfg.minMaxFlag == 0 && w > 0.0) continue;
      const double cx = (cfg.pixelX[i] + cfg.pixelX[i + 1]) * 0.5, cy = (cfg.pixelY[j] + cfg.pixelY[j + 1]) * 0.5;
      arrow2d a;
      if (!makeArrow2d(u, v, minSpeed, maxSpeed, cfg.ndiv, cfg.pixPerCell, cx, cy, a)) continue;
      drawLineF(a.tailX, a.tailY, a.headX, a.headY, scene.colours.black, 1.0f);
      drawLineF(a.stroke1X, a.stroke1Y, a.headX, a.headY, scene.colours.black, 1.0f);
      drawLineF(a.stroke2X, a.stroke2Y, a.headX, a.headY, scene.colours.black, 1.0f);
    }
}

void drawVectors3d(const sceneView& scene, const appConfig& cfg, const fieldViews& views, bool uncorrelated) {
  if (scene.domain == nullptr || cfg.nx < 2 || cfg.ny < 2 || cfg.nz < 2) return;
  const int count = cfg.nx * cfg.ny * cfg.nz;
  const array3d<int>& bcFlag = scene.domain->bcFlag;
  const array3d<double>& display = views[viewDisplay];
  if (!fits(views[fieldU], count) || !fits(views[fieldV], count) || !fits(views[fieldW], count) ||
      !fits(display, count) || bcFlag.data == nullptr || bcFlag.count() != count)
    return;
  latticeAxis ax, ay, az;
  if (!latticeAxes(cfg, ax, ay, az)) return;
  const double h = std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy + cfg.dz * cfg.dz);
  const double maxSpeed = scene.stats.maxSpeed, minSpeed = scene.stats.minSpeed, s = cfg.miniVecSizeScaling;
  const double spread = maxSpeed - minSpeed;
  const double lo = rangeLow(scene, cfg), hi = rangeHigh(scene, cfg);
  const float radius = static_cast<float>(cfg.ndiv * scene.cellScale * 0.125);
  const int divisions = uncorrelated ? 4 : 2;
  const int inflowType = std::clamp(cfg.firstInletType, 0, numColourTypes - 1);
  const double inflow[3] = {cfg.bcU[inflowType], cfg.bcV[inflowType], cfg.bcW[inflowType]};
  const std::uint32_t plain = colour(scene.objectColourR, scene.objectColourG, scene.objectColourB);
  // The cell of a lattice place along z is found once per layer, along y
  // once per row; a place off the mesh reads 0, as in sampleField.
  const double x0 = cfg.xCoord[0], y0 = cfg.yCoord[0], z0 = cfg.zCoord[0];
  axisSpot at[3];
  for (int k = az.first; k < cfg.nz - az.first - 1; k += az.step) {
    const double z = cfg.zCoord[k] + az.shift;
    at[2] = spotOn(z, (z - z0) / cfg.dz, cfg.zCoord.data(), cfg.nz);
    for (int j = ay.first; j < cfg.ny - ay.first - 1; j += ay.step) {
      const double y = cfg.yCoord[j] + ay.shift;
      at[1] = spotOn(y, (y - y0) / cfg.dy, cfg.yCoord.data(), cfg.ny);
      for (int i = ax.first; i < cfg.nx - ax.first - 1; i += ax.step) {
        const int flag = bcFlag(i, j, k);
        if (flag == 1 || flag == 9) continue;
        const double x = cfg.xCoord[i] + ax.shift;
        at[0] = spotOn(x, (x - x0) / cfg.dx, cfg.xCoord.data(), cfg.nx);
        const bool inMesh = at[0].inside && at[1].inside && at[2].inside;
        const double vel[3] = {inMesh ? blendAt(views[fieldU], at) : 0.0, inMesh ? blendAt(views[fieldV], at) : 0.0,
                               inMesh ? blendAt(views[fieldW], at) : 0.0};
        const double m = std::sqrt(vel[0] * vel[0] + vel[1] * vel[1] + vel[2] * vel[2]);
        if (!(m / maxSpeed >= 1e-5f)) continue;
        // An undefined correlation (inflow with no spread) draws the vector.
        if (uncorrelated && inflowCorrelation(vel, inflow) > cfg.CorrVectorThres) continue;
        const double g = ((spread > 0.0 ? (m - minSpeed) * (1.0 - s) / spread : 1.0 - s) + s) / m * cfg.ndiv * h;
        const double ex = vel[0] * g / 2, ey = vel[1] * g / 2, ez = vel[2] * g / 2;
        const std::uint32_t c =
            cfg.nonBcObjectColorFlag == 1 ? scene.colourTable[colourSlot(display(i, j, k), lo, hi)] : plain;
        drawCone3d(worldPoint(scene, cfg, x + ex, y + ey, z + ez), worldPoint(scene, cfg, x - ex, y - ey, z - ez),
                   radius, divisions, c, c, 1);
      }
    }
  }
}

}  // namespace marv
