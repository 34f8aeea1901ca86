// Cross-section planes. A plane always lies on a mesh layer, so its cells
// are the mesh's own cells and nothing is interpolated across layers. The
// pointer's ray is only tested while Shift is held: picking is the one use
// of the hit points, and the test costs two triangle intersections a cell.
#include "scene/planes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "domain/gridSampling.h"
#include "scene/camera3d.h"
#include "scene/colourScale.h"
#include "scene/flowLattice.h"

namespace marv {

namespace {

constexpr float headAngle = 0.6283185482025146f;  // rad between a vector's shaft and a head stroke
constexpr double nothingHit = 1e10;

// The axes of a plane: a and b in the plane, n along its normal (0 x, 1 y,
// 2 z), and the mesh layer it lies on.
struct planeAxes {
  int a = 0, b = 1, n = 2, layer = 0;
};

planeAxes axesOf(const sceneView& scene, planeKind kind) {
  if (kind == planeYZ) return {1, 2, 0, scene.planeI};
  if (kind == planeXZ) return {0, 2, 1, scene.planeJ};
  return {0, 1, 2, scene.planeK};
}

struct meshView {
  const std::vector<double>* coord[3];
  int n[3];
  double h[3];
};

meshView meshOf(const appConfig& cfg) {
  return {{&cfg.xCoord, &cfg.yCoord, &cfg.zCoord}, {cfg.nx, cfg.ny, cfg.nz}, {cfg.dx, cfg.dy, cfg.dz}};
}

// Node (a, b) of a plane as mesh indices i, j, k.
std::array<int, 3> nodeOf(const planeAxes& p, int a, int b) {
  std::array<int, 3> ijk{};
  ijk[p.a] = a, ijk[p.b] = b, ijk[p.n] = p.layer;
  return ijk;
}

vec3 worldOf(const sceneView& scene, const appConfig& cfg, const double m[3]) {
  return worldPoint(scene, cfg, m[0], m[1], m[2]);
}

double& hitDistanceOf(sceneView& scene, planeKind kind) {
  return kind == planeXY ? scene.hitDistanceXY : (kind == planeYZ ? scene.hitDistanceYZ : scene.hitDistanceXZ);
}

vec3& pickOf(sceneView& scene, planeKind kind) {
  return kind == planeXY ? scene.pickXY : (kind == planeYZ ? scene.pickYZ : scene.pickXZ);
}

float distance(vec3 p, vec3 q) {
  const float x = p.x - q.x, y = p.y - q.y, z = p.z - q.z;
  return std::sqrt(x * x + y * y + z * z);
}

void drawGhostSolids(const sceneView& scene, const appConfig& cfg, const planeAxes& p, const meshView& mesh,
                     const array3d<int>& bcFlag) {
  const float radius = static_cast<float>(scene.cellScale * 0.2);
  for (int b = 0; b < mesh.n[p.b]; ++b)
    for (int a = 0; a < mesh.n[p.a]; ++a) {
      const std::array<int, 3> ijk = nodeOf(p, a, b);
      const int flag = bcFlag(ijk[0], ijk[1], ijk[2]);
      if (flag < 1) continue;
      const std::uint32_t c =
          flag == 9 ? scene.colours.darkGrey : (flag == 11 ? scene.colours.black : scene.colours.white);
      const double m[3] = {(*mesh.coord[0])[ijk[0]], (*mesh.coord[1])[ijk[1]], (*mesh.coord[2])[ijk[2]]};
      drawSphere3d(worldOf(scene, cfg, m), radius, 2, c, c, 1);
    }
}

// The in-plane velocity as arrows at the centres of the lattice cells.
void drawPlaneVectors(const sceneView& scene, const appConfig& cfg, const fieldViews& views, const planeAxes& p,
                      const meshView& mesh, const array3d<int>& bcFlag) {
  const std::array<int, 3> steps = latticeSteps(cfg);
  const array3d<double>* velocity[3] = {&views[fieldU], &views[fieldV], &views[fieldW]};
  const array3d<double>& va = *velocity[p.a];
  const array3d<double>& vb = *velocity[p.b];
  if (va.data == nullptr || vb.data == nullptr) return;
  const int na = mesh.n[p.a], nb = mesh.n[p.b];
  const int sa = steps[p.a], sb = steps[p.b];
  const int oa = ((na - 1) % sa) / 2, ob = ((nb - 1) % sb) / 2;
  const double h = std::sqrt(mesh.h[p.a] * mesh.h[p.a] + mesh.h[p.b] * mesh.h[p.b]);
  const double maxSpeed = scene.stats.maxSpeed, minSpeed = scene.stats.minSpeed;
  const double s = cfg.miniVecSizeScaling;
  const double spread = maxSpeed - minSpeed;
  const double strokeFloor = std::max(h * 3.0 / std::max(cfg.pixPerCell, 1), h * 0.25);
  const float ca = std::cos(headAngle), sn = std::sin(headAngle);
  // Drawn twice, a little off the plane on either side, so that both faces
  // show them.
  const float offsets[2] = {-0.2f, 0.4f};
  for (int b = ob; b < nb - std::max(ob, 1); b += sb)
    for (int a = oa; a < na - std::max(oa, 1); a += sa) {
      const std::array<int, 3> ijk = nodeOf(p, a, b);
      const int flag = bcFlag(ijk[0], ijk[1], ijk[2]);
      if (flag == 1 || flag == 9) continue;
      double centre[3] = {(*mesh.coord[0])[ijk[0]], (*mesh.coord[1])[ijk[1]], (*mesh.coord[2])[ijk[2]]};
      centre[p.a] += 0.5 * mesh.h[p.a];
      centre[p.b] += 0.5 * mesh.h[p.b];
      const double ua = sampleField(cfg, centre[0], centre[1], centre[2], va);
      const double ub = sampleField(cfg, centre[0], centre[1], centre[2], vb);
      const double m = std::sqrt(ua * ua + ub * ub);
      if (!(m / maxSpeed >= 1e-5)) continue;  // at rest, or not a number
      const double length = spread > 0.0 ? (m - minSpeed) * (1.0 - s) / spread + s : 1.0;
      const double ea = ua / m * length * cfg.ndiv * 0.5 * h, eb = ub / m * length * cfg.ndiv * 0.5 * h;
      // Head strokes in the plane's own coordinates [m].
      const double da = -2.0 * ea, db = -2.0 * eb;
      double h1a = (da * ca - db * sn) * 0.25, h1b = (da * sn + db * ca) * 0.25;
      double h2a = (da * ca + db * sn) * 0.25, h2b = (-da * sn + db * ca) * 0.25;
      const double stroke = std::sqrt(h1a * h1a + h1b * h1b);
      if (stroke < h * 0.5 && stroke > 0.0) {
        const double k = strokeFloor / stroke;
        h1a *= k, h1b *= k, h2a *= k, h2b *= k;
      }
      double tail[3] = {centre[0], centre[1], centre[2]}, head[3] = {centre[0], centre[1], centre[2]};
      tail[p.a] -= ea, tail[p.b] -= eb, head[p.a] += ea, head[p.b] += eb;
      double s1[3] = {head[0], head[1], head[2]}, s2[3] = {head[0], head[1], head[2]};
      s1[p.a] += h1a, s1[p.b] += h1b, s2[p.a] += h2a, s2[p.b] += h2b;
      for (float off : offsets) {
        vec3 w[4] = {worldOf(scene, cfg, tail), worldOf(scene, cfg, head), worldOf(scene, cfg, s1),
                     worldOf(scene, cfg, s2)};
        for (vec3& q : w) (p.n == 0 ? q.x : (p.n == 1 ? q.y : q.z)) += off;
        drawLine3d(w[0], w[1], scene.colours.black);
        drawLine3d(w[2], w[1], scene.colours.black);
        drawLine3d(w[3], w[1], scene.colours.black);
      }
    }
}

// The rectangle of a plane as four capsules.
void outlinePlane(const sceneView& scene, const appConfig& cfg, const planeAxes& p, const meshView& mesh, float r) {
  const int na = mesh.n[p.a], nb = mesh.n[p.b];
  vec3 corner[4];
  const int ends[4][2] = {{0, 0}, {na - 1, 0}, {na - 1, nb - 1}, {0, nb - 1}};
  for (int c = 0; c < 4; ++c) {
    const std::array<int, 3> ijk = nodeOf(p, ends[c][0], ends[c][1]);
    const double m[3] = {(*mesh.coord[0])[ijk[0]], (*mesh.coord[1])[ijk[1]], (*mesh.coord[2])[ijk[2]]};
    corner[c] = worldOf(scene, cfg, m);
  }
  for (int c = 0; c < 4; ++c)
    drawCapsule3d(corner[c], corner[(c + 1) % 4], r, 8, scene.colours.magenta, scene.colours.magenta, 1);
}

bool meshReady(const appConfig& cfg) {
  return cfg.nx >= 2 && cfg.ny >= 2 && cfg.nz >= 2 && static_cast<int>(cfg.xCoord.size()) >= cfg.nx &&
         static_cast<int>(cfg.yCoord.size()) >= cfg.ny && static_cast<int>(cfg.zCoord.size()) >= cfg.nz;
}

bool fits(const array3d<double>& f, const appConfig& cfg) {
  return f.data != nullptr && f.nx == cfg.nx && f.ny == cfg.ny && f.nz == cfg.nz;
}

void addProbe(appConfig& cfg, double x, double y, double z) {
  if (cfg.numProbes < 0 || cfg.numProbes >= maxProbes) return;
  cfg.probes[cfg.numProbes] = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
  cfg.numProbes += 1;
}

void dropNewestProbe(appConfig& cfg) {
  if (cfg.numProbes >= 1) cfg.numProbes -= 1;
}

}  // namespace

int movedPlaneIndex(int index, double notches, int n) {
  const double moved = std::clamp(index + notches, 0.0, static_cast<double>(std::max(n - 1, 0)));
  return static_cast<int>(moved);
}

void drawPlane(sceneView& scene, const appConfig& cfg, const fieldViews& views, planeKind kind) {
  if (!meshReady(cfg) || scene.domain == nullptr) return;
  const array3d<double>& field = views[viewDisplay];
  const array3d<int>& bcFlag = scene.domain->bcFlag;
  if (!fits(field, cfg) || bcFlag.data == nullptr || bcFlag.count() != field.count()) return;
  const meshView mesh = meshOf(cfg);
  planeAxes p = axesOf(scene, kind);
  p.layer = std::clamp(p.layer, 0, mesh.n[p.n] - 1);
  const double lo = rangeLow(scene, cfg), hi = rangeHigh(scene, cfg);
  const bool picking = cfg.shiftDown != 0;
  if (picking) {
    scene.mouseRayNear = screenToWorld({static_cast<float>(cfg.mouseX), static_cast<float>(cfg.mouseY), 0.0f});
    scene.mouseRayFar = screenToWorld({static_cast<float>(cfg.mouseX), static_cast<float>(cfg.mouseY), 1.0f});
  }
  double& hitDistance = hitDistanceOf(scene, kind);
  vec3& pick = pickOf(scene, kind);
  const int na = mesh.n[p.a], nb = mesh.n[p.b];
  const std::vector<double>& ca = *mesh.coord[p.a];
  const std::vector<double>& cb = *mesh.coord[p.b];
  double m[3];
  m[p.n] = (*mesh.coord[p.n])[p.layer];
  for (int b = 0; b + 1 < nb; ++b) {
    // Along a row the cell's right edge is the next cell's left edge: its
    // two corners and their values are found once.
    m[p.a] = ca[0], m[p.b] = cb[b];
    vec3 p00 = worldOf(scene, cfg, m);
    m[p.b] = cb[b + 1];
    vec3 p01 = worldOf(scene, cfg, m);
    std::array<int, 3> n00 = nodeOf(p, 0, b), n01 = nodeOf(p, 0, b + 1);
    double f00 = field(n00[0], n00[1], n00[2]), f01 = field(n01[0], n01[1], n01[2]);
    for (int a = 0; a + 1 < na; ++a) {
      const std::array<int, 3> n10 = nodeOf(p, a + 1, b), n11 = nodeOf(p, a + 1, b + 1);
      const double f10 = field(n10[0], n10[1], n10[2]), f11 = field(n11[0], n11[1], n11[2]);
      const double mean = (f00 + f10 + f11 + f01) / 4.0;
      const std::uint32_t c = scene.colourTable[colourSlot(mean, lo, hi)];
      m[p.a] = ca[a + 1], m[p.b] = cb[b];
      const vec3 p10 = worldOf(scene, cfg, m);
      m[p.b] = cb[b + 1];
      const vec3 p11 = worldOf(scene, cfg, m);
      if (picking) {
        // The triangles share the diagonal (a, b)-(a+1, b+1); a later hit
        // overrides an earlier one.
        const hitResult first = lineTriangleHit(scene.mouseRayNear, scene.mouseRayFar, p00, p10, p11);
        const hitResult second = lineTriangleHit(scene.mouseRayNear, scene.mouseRayFar, p00, p11, p01);
        for (const hitResult& hit : {first, second})
          if (hit.hit) {
            hitDistance = distance(hit.point, scene.cameraPosition);
            pick = hit.point;
          }
      }
      drawTriangle3d(p00, p10, p11, c, 1);
      drawTriangle3d(p00, p11, p01, c, 1);
      p00 = p10, p01 = p11, f00 = f10, f01 = f11;
    }
  }
  if (cfg.showGhostSolidFlag == 1) drawGhostSolids(scene, cfg, p, mesh, bcFlag);
  if (cfg.showCrosssectionVectorFlag == 1) drawPlaneVectors(scene, cfg, views, p, mesh, bcFlag);
}

void selectPlaneAndProbe(sceneView& scene, appConfig& cfg) {
  const double dXY = scene.hitDistanceXY, dYZ = scene.hitDistanceYZ, dXZ = scene.hitDistanceXZ;
  if (cfg.shiftDown == 1 && meshReady(cfg)) {
    // The strictly nearest plane; a tie selects none.
    scene.selectedXY = dXY < nothingHit && dXY < dYZ && dXY < dXZ;
    scene.selectedYZ = dYZ < nothingHit && dYZ < dXY && dYZ < dXZ;
    scene.selectedXZ = dXZ < nothingHit && dXZ < dXY && dXZ < dYZ;
    const meshView mesh = meshOf(cfg);
    const float r = static_cast<float>(std::cbrt(cfg.lx * cfg.ly * cfg.lz) / 50.0 * scene.sceneScale);
    char label[96] = "";
    if (scene.selectedXY) {
      outlinePlane(scene, cfg, axesOf(scene, planeXY), mesh, r);
      std::snprintf(label, sizeof label, "XY plane position [k] %.4d [z] %.3e (m)", scene.planeK,
                    cfg.zCoord[std::clamp(scene.planeK, 0, cfg.nz - 1)]);
    } else if (scene.selectedYZ) {
      outlinePlane(scene, cfg, axesOf(scene, planeYZ), mesh, r);
      std::snprintf(label, sizeof label, "YZ plane position [i] %.4d [x] %.3e (m)", scene.planeI,
                    cfg.xCoord[std::clamp(scene.planeI, 0, cfg.nx - 1)]);
    } else if (scene.selectedXZ) {
      outlinePlane(scene, cfg, axesOf(scene, planeXZ), mesh, r);
      std::snprintf(label, sizeof label, "ZX plane position [j] %.4d [y] %.3e (m)", scene.planeJ,
                    cfg.yCoord[std::clamp(scene.planeJ, 0, cfg.ny - 1)]);
    }
    if (label[0] != '\0')
      drawText(cfg.marginLeft, cfg.marginTop, label, scene.colours.white, cfg.fontBody, scene.colours.black, 0);

    const double w = cfg.wheelDelta;
    if (w != 0.0) {
      // The XY plane follows the wheel; the others move against it, so
      // that all three go the same way on the screen.
      if (scene.selectedXY) {
        scene.planeK = movedPlaneIndex(scene.planeK, w, cfg.nz);
        cfg.zCrosssectionXY = scene.planeK * cfg.dz + cfg.zCoord[0];
      } else if (scene.selectedYZ) {
        scene.planeI = movedPlaneIndex(scene.planeI, -w, cfg.nx);
        cfg.xCrosssectionYZ = scene.planeI * cfg.dx + cfg.xCoord[0];
      } else if (scene.selectedXZ) {
        scene.planeJ = movedPlaneIndex(scene.planeJ, -w, cfg.ny);
        cfg.yCrosssectionXZ = scene.planeJ * cfg.dy + cfg.yCoord[0];
      }
    }
    if (cfg.leftClick == 1 && (scene.selectedXY || scene.selectedYZ || scene.selectedXZ)) {
      const vec3 at = scene.selectedXY ? scene.pickXY : (scene.selectedYZ ? scene.pickYZ : scene.pickXZ);
      const double s = scene.sceneScale;
      addProbe(cfg, (at.x - scene.originX) / s + cfg.xCoord[0], (at.y - scene.originY) / s + cfg.yCoord[0],
               cfg.zCoord[cfg.nz - 1] - at.z / s);
    }
    if (cfg.rightClick == 1) dropNewestProbe(cfg);
  }
  scene.selectedXY = scene.selectedYZ = scene.selectedXZ = 0;
  scene.hitDistanceXY = scene.hitDistanceYZ = scene.hitDistanceXZ = nothingHit;
}

void probeClick2d(const sceneView& scene, appConfig& cfg) {
  if (cfg.nz != 1 || cfg.shiftDown != 1) return;
  if (static_cast<int>(cfg.pixelX.size()) < cfg.nx || static_cast<int>(cfg.pixelY.size()) < cfg.ny) return;
  if (cfg.nx < 1 || cfg.ny < 1 || cfg.xCoord.empty() || cfg.yCoord.empty()) return;
  const float c = 2.0f * cfg.ndiv;
  const float x0 = static_cast<int>(cfg.pixelX[0]) + c, y0 = static_cast<int>(cfg.pixelY[cfg.ny - 1]) + c;
  const float x1 = static_cast<int>(cfg.pixelX[cfg.nx - 1]) - c + 1, y1 = static_cast<int>(cfg.pixelY[0]) - c + 1;
  drawBoxF(x0, y0, x1, y1, scene.colours.magenta, 0, 20.0f);
  drawBoxF(x0 - 10, y0 - 10, x1 + 10, y1 + 10, scene.colours.black, 0, 1.0f);
  drawBoxF(x0 + 10, y0 + 10, x1 - 10, y1 - 10, scene.colours.black, 0, 1.0f);
  if (cfg.leftClick == 1 && cfg.pixPerMetre > 0.0)
    addProbe(cfg, (cfg.mouseX - cfg.marginLeft - 0.5) / cfg.pixPerMetre + cfg.xCoord[0],
             cfg.ly - (cfg.mouseY - cfg.marginTop - 0.5) / cfg.pixPerMetre + cfg.yCoord[0], 0.0);
  if (cfg.rightClick == 1) dropNewestProbe(cfg);
}

void drawProbes(const sceneView& scene, const appConfig& cfg) {
  if (cfg.xCoord.empty() || cfg.yCoord.empty()) return;
  const int count = std::clamp(cfg.numProbes, 0, maxProbes);
  const double d = (cfg.lx + cfg.ly + cfg.lz) * 0.5 * scene.sceneScale / 100.0;
  for (int n = 0; n < count; ++n) {
    const probePoint& probe = cfg.probes[n];
    if (scene.is3d) {
      const vec3 c = worldPoint(scene, cfg, probe.x, probe.y, probe.z);
      const float e = static_cast<float>(d);
      drawCube3d({c.x - e, c.y - e, c.z - e}, {c.x + e, c.y + e, c.z + e}, scene.colours.magenta, scene.colours.magenta,
                 1);
    } else {
      const double s = cfg.pixPerMetre;
      const double cx = (probe.x - cfg.xCoord[0]) * s + cfg.marginLeft + 0.5;
      const double cy = s * cfg.ly - (probe.y - cfg.yCoord[0]) * s + cfg.marginTop + 0.5;
      const float l = static_cast<float>(cx - d), t = static_cast<float>(cy - d);
      const float r = static_cast<float>(cx + d), b = static_cast<float>(cy + d);
      drawBoxF(l, t, r, b, scene.colours.magenta, 1, 1.0f);
      drawBoxF(l, t, r, b, scene.colours.black, 0, 1.0f);
    }
  }
}

}  // namespace marv
