// Boundary pictures of the 3D scene. A surface is one draw call for its
// vertex array, rebuilt in place every frame; the array is only reallocated
// when the surface's triangle count changes (the model was moved or
// re-scanned), which does not happen while a run steps.
#include "scene/boundaries3d.h"

#include <cmath>

#include "domain/gridSampling.h"
#include "scene/camera3d.h"
#include "scene/colourScale.h"

namespace marv {

void setBoundaryLook(sceneView& scene, const appConfig& cfg) {
  const colourRgba white = makeColourRgba(255, 255, 255, 255);
  for (int id = 0; id < numColourTypes; ++id) {
    scene.boundarySpecular[id] = white;
    if (id == 1)
      scene.boundaryDiffuse[id] = makeColourRgba(150, 150, 150, cfg.bcAlphaK);
    else if (id >= cfg.firstInletType && id <= cfg.lastInletType)
      scene.boundaryDiffuse[id] = makeColourRgba(cfg.R[id], cfg.G[id], cfg.B[id], cfg.bcAlphaUser);
    else
      scene.boundaryDiffuse[id] = makeColourRgba(150, 150, 150, cfg.bcAlphaUser);
  }
}

void sizeBoundaryVertices(sceneView& scene, const bcDomain& domain) {
  for (int id = 0; id < numColourTypes; ++id) {
    const int want = 3 * domain.surfaces[id].numTriangles;
    if (scene.boundaryVertexCount[id] == want) continue;
    vertex3d blank;
    blank.diffuse = scene.boundaryDiffuse[id];
    blank.specular = scene.boundarySpecular[id];
    scene.boundaryVertices[id].assign(want, blank);
    scene.boundaryVertexCount[id] = want;
  }
}

namespace {

void drawSurface(sceneView& scene, const appConfig& cfg, const array3d<double>& field, int colourMode, int id) {
  const bcSurface& surface = scene.domain->surfaces[id];
  const int triangles = std::min(surface.numTriangles, static_cast<int>(surface.triangles.size()));
  if (scene.boundaryVertexCount[id] != 3 * triangles) sizeBoundaryVertices(scene, *scene.domain);
  if (triangles == 0) return;
  std::vector<vertex3d>& v = scene.boundaryVertices[id];
  const float s = static_cast<float>(scene.sceneScale);
  const float ox = static_cast<float>(scene.originX), oy = static_cast<float>(scene.originY);
  const double lo = rangeLow(scene, cfg), hi = rangeHigh(scene, cfg);
  const double zTop = cfg.zCoord.empty() ? 0.0 : cfg.zCoord.back();
  const colourRgba white = makeColourRgba(255, 255, 255, 255);
  const bool sampled = colourMode == 1 && field.data != nullptr;
  for (int t = 0; t < triangles; ++t) {
    const bcTriangle& tri = surface.triangles[t];
    colourRgba diffuse = scene.boundaryDiffuse[id], specular = scene.boundarySpecular[id];
    if (sampled) {
      const double value = sampleField(cfg, tri.centroid[0], tri.centroid[1], zTop - tri.centroid[2], field);
      diffuse = scene.colourTableRgba[colourSlot(value, lo, hi)];
      specular = white;
    }
    for (int c = 0; c < 3; ++c) {
      vertex3d& d = v[3 * t + c];
      d.position = {tri.vertex[c][0] * s + ox, tri.vertex[c][1] * s + oy, tri.vertex[c][2] * s};
      d.normal = {tri.normal[0], tri.normal[1], tri.normal[2]};
      d.diffuse = diffuse;
      d.specular = specular;
    }
  }
  if (cfg.polygonFrames)
    for (int t = 0; t < triangles; ++t) {
      const vertex3d* p = &v[3 * t];
      drawLine3d(p[0].position, p[1].position, scene.colours.charcoal);
      drawLine3d(p[1].position, p[2].position, scene.colours.charcoal);
      drawLine3d(p[2].position, p[0].position, scene.colours.charcoal);
    }
  drawPolygons3d(v.data(), triangles, noTexture, 1);
}

// A surface in its own colours is made only when the picture is rasterised;
// in the quantity's colours it reads the display view, which is reused
// before the picture is saved, so it is made at once.
struct laterSurface {
  sceneView* scene;
  const appConfig* cfg;
  int id;
};

void drawLaterSurface(const void* context) {
  const laterSurface& l = *static_cast<const laterSurface*>(context);
  drawSurface(*l.scene, *l.cfg, array3d<double>{}, 0, l.id);
}

}  // namespace

void drawBoundaryPolygons(sceneView& scene, const appConfig& cfg, const array3d<double>& field, int colourMode,
                          int id) {
  if (scene.domain == nullptr || id < 0 || id >= numColourTypes) return;
  if (colourMode == 1) return drawSurface(scene, cfg, field, colourMode, id);
  const laterSurface l{&scene, &cfg, id};
  drawLater(drawLaterSurface, &l, sizeof l);
}

void drawMeshLines(const sceneView& scene, const appConfig& cfg) {
  const int n = cfg.ndivDrawMeshForGraphic;
  if (n <= 0 || cfg.xCoord.empty() || cfg.yCoord.empty() || cfg.zCoord.empty()) return;
  const std::vector<double>&x = cfg.xCoord, &y = cfg.yCoord, &z = cfg.zCoord;
  const std::uint32_t ink = scene.colours.darkGrey;
  for (int k = 0; k < cfg.nz; k += n)
    for (int j = 0; j < cfg.ny; j += n)
      drawLine3d(worldPoint(scene, cfg, x.front(), y[j], z[k]), worldPoint(scene, cfg, x.back(), y[j], z[k]), ink);
  for (int k = 0; k < cfg.nz; k += n)
    for (int i = 0; i < cfg.nx; i += n)
      drawLine3d(worldPoint(scene, cfg, x[i], y.front(), z[k]), worldPoint(scene, cfg, x[i], y.back(), z[k]), ink);
  for (int j = 0; j < cfg.ny; j += n)
    for (int i = 0; i < cfg.nx; i += n)
      drawLine3d(worldPoint(scene, cfg, x[i], y[j], z.front()), worldPoint(scene, cfg, x[i], y[j], z.back()), ink);
}

void drawPlacementFloor(sceneView& scene, const appConfig& cfg) {
  const auto& c = scene.boxCorners;
  auto mid = [&](int a, int b) { return vec3{(c[a].x + c[b].x) / 2, (c[a].y + c[b].y) / 2, (c[a].z + c[b].z) / 2}; };
  vec3 corner[4];
  vec3 normal;
  if (cfg.stagePlane == 1) {
    corner[0] = mid(0, 1), corner[1] = mid(4, 5), corner[2] = mid(6, 7), corner[3] = mid(2, 3);
    const float shift = 0.35f * static_cast<float>(scene.boxX1 - scene.boxX0);
    for (vec3& p : corner) p.x -= shift;
    normal = {1.0f, 0.0f, -0.5f};
  } else if (cfg.stagePlane == 2) {
    corner[0] = mid(4, 7), corner[1] = mid(5, 6), corner[2] = mid(1, 2), corner[3] = mid(0, 3);
    const float shift = 0.3f * static_cast<float>(scene.boxY1 - scene.boxY0);
    for (vec3& p : corner) p.y -= shift;
    normal = {0.5f, 1.0f, -1.0f};
  } else {
    corner[0] = mid(0, 4), corner[1] = mid(1, 5), corner[2] = mid(2, 6), corner[3] = mid(3, 7);
    const float shift = 0.1f * static_cast<float>(scene.boxZ1 - scene.boxZ0);
    for (vec3& p : corner) p.z -= shift;
    normal = {0.0f, 0.0f, -1.0f};
  }
  const float us[4] = {0, 1, 1, 0}, vs[4] = {0, 0, 1, 1};
  for (int i = 0; i < 4; ++i) {
    vertex3d& q = scene.floorQuad[i];
    q.position = corner[i];
    q.normal = normal;
    q.diffuse = makeColourRgba(255, 255, 255, 255);
    q.specular = makeColourRgba(0, 0, 0, 0);
    q.u = us[i], q.v = vs[i];
  }
  drawIndexedPolygons3d(scene.floorQuad.data(), 4, scene.floorIndices.data(), 2,
                        scene.planeTexture >= 0 ? scene.planeTexture : noTexture, 0);
  for (int i = 0; i < 4; ++i) drawLine3d(corner[i], corner[(i + 1) % 4], scene.colours.grey);
}

void drawPulsingDot(float x, float y, float radius) {
  const int c = static_cast<int>(std::cos(nowMs() * 6.283184 / 1000.0) * 127.5 + 127.5);
  drawCircleF(x, y, radius, 16, colour(255, c, c), 1, 1.0f);
}

}  // namespace marv
