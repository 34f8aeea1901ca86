// The force and heat-loss report of a run frame.
#include "scene/forceHeatReport.h"

#include <algorithm>
#include <cmath>

#include "result/frameRecords.h"
#include "scene/sceneView.h"

namespace marv {

namespace {

constexpr double noSurfaceHit = 1e10;  // start of the nearest-surface search

bool sameVertex(vec3 a, vec3 b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// A surface vertex at its world position: the surfaces already hold the
// world's mirrored z.
vec3 worldVertex(const sceneView& scene, const float* v) {
  const float s = static_cast<float>(scene.sceneScale);
  return {v[0] * s + static_cast<float>(scene.originX), v[1] * s + static_cast<float>(scene.originY), v[2] * s};
}

int usedTriangles(const bcSurface& surface) {
  return std::min(surface.numTriangles, static_cast<int>(surface.triangles.size()));
}

bool meshLaidOut(const appConfig& cfg) {
  return cfg.nx >= 1 && cfg.ny >= 1 && static_cast<int>(cfg.xCoord.size()) >= cfg.nx &&
         static_cast<int>(cfg.yCoord.size()) >= cfg.ny && static_cast<int>(cfg.pixelX.size()) >= cfg.nx &&
         static_cast<int>(cfg.pixelY.size()) >= cfg.ny;
}

bool flagsFit(const array3d<int>& flags, const appConfig& cfg) {
  return flags.data != nullptr && flags.count() == cfg.nx * cfg.ny * cfg.nz;
}

int hoveredColour2d(const sceneView& scene, const appConfig& cfg) {
  const array3d<int>& flags = scene.domain->bcFlag;
  if (!meshLaidOut(cfg) || !flagsFit(flags, cfg) || !(cfg.pixPerMetre > 0.0) || !(cfg.dx > 0.0) || !(cfg.dy > 0.0))
    return -1;
  const double x0 = cfg.xCoord[0], y0 = cfg.yCoord[0];
  const double x = (cfg.mouseX - cfg.marginLeft - 0.5) / cfg.pixPerMetre + x0;
  const double y = cfg.ly - (cfg.mouseY - cfg.marginTop - 0.5) / cfg.pixPerMetre + y0;
  // Truncation toward zero, then limited to the mesh; far off values are
  // limited before the conversion so that it stays defined.
  const double fi = std::clamp((x - x0) / cfg.dx + 0.5, -1.0, static_cast<double>(cfg.nx));
  const double fj = std::clamp((y - y0) / cfg.dy + 0.5, -1.0, static_cast<double>(cfg.ny));
  const int i = std::clamp(static_cast<int>(fi), 0, cfg.nx - 1);
  const int j = std::clamp(static_cast<int>(fj), 0, cfg.ny - 1);
  return flags(i, j, 0);
}

int hoveredColour3d(const sceneView& scene, const appConfig& cfg) {
  const bcDomain& domain = *scene.domain;
  double nearest = noSurfaceHit;
  int hovered = -1;
  for (int c = std::max(domain.firstType, 0); c < domain.endType && c < numColourTypes; ++c) {
    if (boundaryShown(cfg, c) != 1) continue;
    const double d = surfaceRayDistance(scene, cfg, domain.surfaces[c]);
    if (d > 0.0 && d < nearest) {
      nearest = d;
      hovered = c;
    }
  }
  return hovered;
}

void highlight2d(const sceneView& scene, const appConfig& cfg, int colour, std::uint32_t paint) {
  const array3d<int>& flags = scene.domain->bcFlag;
  if (!meshLaidOut(cfg) || !flagsFit(flags, cfg)) return;
  for (int j = 1; j < cfg.ny - 1; j += 2)
    for (int i = 1; i < cfg.nx - 1; i += 2) {
      if (flags(i, j, 0) != colour || flags(i + 1, j, 0) != colour || flags(i, j + 1, 0) != colour ||
          flags(i + 1, j + 1, 0) != colour)
        continue;
      drawTriangle(static_cast<int>(cfg.pixelX[i]), static_cast<int>(cfg.pixelY[j + 1]),
                   static_cast<int>(cfg.pixelX[i + 1]), static_cast<int>(cfg.pixelY[j + 1]),
                   static_cast<int>(cfg.pixelX[i + 1]), static_cast<int>(cfg.pixelY[j]), paint, 1);
    }
}

void highlight3d(const sceneView& scene, int colour, std::uint32_t paint) {
  const bcSurface& surface = scene.domain->surfaces[colour];
  const int triangles = usedTriangles(surface);
  for (int t = 0; t < triangles; t += 6) {
    const bcTriangle& tri = surface.triangles[t];
    drawTriangle3d(worldVertex(scene, tri.vertex[0]), worldVertex(scene, tri.vertex[1]),
                   worldVertex(scene, tri.vertex[2]), paint, 1);
  }
}

}  // namespace

double surfaceRayDistance(const sceneView& scene, const appConfig& cfg, const bcSurface& surface) {
  const int triangles = usedTriangles(surface);
  if (triangles == 0) return 0.0;
  const float mx = static_cast<float>(cfg.mouseX), my = static_cast<float>(cfg.mouseY);
  const vec3 rayNear = screenToWorld({mx, my, 0.0f});
  const vec3 rayFar = screenToWorld({mx, my, 1.0f});
  for (int t = 0; t < triangles; ++t) {
    const bcTriangle& tri = surface.triangles[t];
    const vec3 a = worldVertex(scene, tri.vertex[0]);
    const vec3 b = worldVertex(scene, tri.vertex[1]);
    const vec3 c = worldVertex(scene, tri.vertex[2]);
    if (sameVertex(a, b) || sameVertex(b, c) || sameVertex(a, c)) continue;
    const hitResult hit = lineTriangleHit(rayNear, rayFar, a, b, c);
    if (hit.hit != 1) continue;
    const double dx = static_cast<double>(hit.point.x) - scene.cameraPosition.x;
    const double dy = static_cast<double>(hit.point.y) - scene.cameraPosition.y;
    const double dz = static_cast<double>(hit.point.z) - scene.cameraPosition.z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  }
  return 0.0;
}

int hoveredColour(const sceneView& scene, const appConfig& cfg) {
  if (scene.domain == nullptr) return -1;
  return scene.is3d ? hoveredColour3d(scene, cfg) : hoveredColour2d(scene, cfg);
}

void drawRecordHighlight(const sceneView& scene, const appConfig& cfg, int colour, bool recorded) {
  if (scene.domain == nullptr || colour < 1 || colour >= numColourTypes) return;
  const std::uint32_t paint = recorded ? scene.colours.green : scene.colours.magenta;
  if (scene.is3d)
    highlight3d(scene, colour, paint);
  else
    highlight2d(scene, cfg, colour, paint);
}

void forceHeatReport(sceneView& scene, appConfig& cfg, const fieldViews& views) {
  scene.scratchText[0] = '\0';
  if (scene.domain == nullptr) return;
  const int hovered = hoveredColour(scene, cfg);
  const shownRecord shown = updateRecordValues(cfg, *scene.domain, views, hovered, cfg.leftClick == 1);
  for (int c = 1; c < numColourTypes; ++c)
    if (shown.forceEvaluated & (1u << c))
      drawRecordHighlight(scene, cfg, c, cfg.forceRecordOn[c] || cfg.heatRecordOn[c]);
  if (writeForceHeatNotice(scene.scratchText, sizeof scene.scratchText, cfg, shown) == 0) return;
  scene.noticeBox.frameKind = 1;
  showTextBox(scene.noticeBox, scene.scratchText, 1, 0);
}

}  // namespace marv
