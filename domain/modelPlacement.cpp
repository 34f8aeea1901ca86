// Model placement operations on surfaces[7] of the domain.
#include "domain/modelPlacement.h"

#include <cmath>

namespace marv {

namespace {

constexpr int modelSurface = 7;  // the STL model's surface

void updateCentroids(bcSurface& model) {
  for (bcTriangle& t : model.triangles)
    for (int a = 0; a < 3; ++a)
      t.centroid[a] = static_cast<float>((t.vertex[0][a] + t.vertex[1][a] + t.vertex[2][a]) / 3.0);
}

// Applies map(x, y, z) to every vertex and normal, then the centroids.
template <class Map>
void mapModel(bcSurface& model, Map map) {
  for (bcTriangle& t : model.triangles) {
    for (auto& v : t.vertex) map(v[0], v[1], v[2]);
    map(t.normal[0], t.normal[1], t.normal[2]);
  }
  updateCentroids(model);
}

// Turns the model by 90 degrees about an axis through its centre: to the
// origin, rotate, back.
template <class Rotate>
void turnAboutCentre(bcSurface& model, Rotate rotate) {
  computeModelCentre(model);
  const float cx = model.centre[0], cy = model.centre[1], cz = model.centre[2];
  translateModel(model, -cx, -cy, cz);
  rotate(model);
  translateModel(model, cx, cy, -cz);
}

void addAngle(double& angle) {
  angle += 90.0;
  if (angle >= 360.0) angle -= 360.0;
}

}  // namespace

double unitFactor(int unitSTL) {
  constexpr double factors[5] = {1.0, 0.01, 0.001, 0.0254, 0.3048};
  return unitSTL >= 0 && unitSTL < 5 ? factors[unitSTL] : 0.0;
}

void translateModel(bcSurface& model, float a, float b, float c) {
  for (bcTriangle& t : model.triangles)
    for (auto& v : t.vertex) {
      v[0] += a;
      v[1] += b;
      v[2] -= c;
    }
  updateCentroids(model);
}

void scaleModel(bcSurface& model, float f) {
  for (bcTriangle& t : model.triangles)
    for (auto& v : t.vertex)
      for (float& x : v) x *= f;
  updateCentroids(model);
}

void mirrorModel(bcSurface& model) {
  float zmin = 1e8f, zmax = -1e8f;
  for (const bcTriangle& t : model.triangles)
    for (const auto& v : t.vertex) {
      zmin = std::fmin(zmin, v[2]);
      zmax = std::fmax(zmax, v[2]);
    }
  const float mid = static_cast<float>((zmax + zmin) * 0.5);
  for (bcTriangle& t : model.triangles) {
    for (auto& v : t.vertex) v[2] = zmin - (v[2] - mid);
    t.normal[2] = -t.normal[2];
  }
  updateCentroids(model);
}

// x' = x, y' = c y - s z, z' = -(s y + c z)
void rotateModelX(bcSurface& model, float angle) {
  const float r = static_cast<float>(angle * 0.017453293), s = std::sin(r), c = std::cos(r);
  mapModel(model, [&](float& x, float& y, float& z) {
    (void)x;
    const float y0 = y, z0 = z;
    y = c * y0 - s * z0;
    z = -(s * y0 + c * z0);
  });
}

// x' = c x + s z, y' = y, z' = -(-s x + c z)
void rotateModelY(bcSurface& model, float angle) {
  const float r = static_cast<float>(angle * 0.017453293), s = std::sin(r), c = std::cos(r);
  mapModel(model, [&](float& x, float& y, float& z) {
    (void)y;
    const float x0 = x, z0 = z;
    x = c * x0 + s * z0;
    z = -(-s * x0 + c * z0);
  });
}

// x' = c x - s y, y' = s x + c y, z' = -z
void rotateModelZ(bcSurface& model, float angle) {
  const float r = static_cast<float>(angle * 0.017453293), s = std::sin(r), c = std::cos(r);
  mapModel(model, [&](float& x, float& y, float& z) {
    const float x0 = x, y0 = y;
    x = c * x0 - s * y0;
    y = s * x0 + c * y0;
    z = -z;
  });
}

void computeModelCentre(bcSurface& model) {
  float sum[3] = {0.0f, 0.0f, 0.0f};
  for (const bcTriangle& t : model.triangles)
    for (const auto& v : t.vertex)
      for (int a = 0; a < 3; ++a) sum[a] += v[a];
  // An empty model has no centre; it stays at the origin.
  const double n = static_cast<double>(model.triangles.size());
  for (int a = 0; a < 3; ++a) model.centre[a] = n > 0 ? static_cast<float>(sum[a] / n / 3.0) : 0.0f;
}

void placeModelAtLoad(bcSurface& model, const appConfig& cfg) {
  if (cfg.coordSTL == 0) mirrorModel(model);
  if (cfg.unitSTL != 0) scaleModel(model, static_cast<float>(unitFactor(cfg.unitSTL)));
  if (cfg.xRotSTL != 0.0) rotateModelX(model, static_cast<float>(cfg.xRotSTL));
  if (cfg.yRotSTL != 0.0) rotateModelY(model, static_cast<float>(cfg.yRotSTL));
  if (cfg.zRotSTL != 0.0) rotateModelZ(model, static_cast<float>(cfg.zRotSTL));
  translateModel(model, static_cast<float>(cfg.xoffstSTL), static_cast<float>(cfg.yoffstSTL),
                 static_cast<float>(cfg.zoffstSTL));
}

void turnModelX(bcDomain& domain, appConfig& cfg) {
  if (cfg.stlPresent != 1) return;
  // Two calls, each mirroring z once: together a plain quarter turn.
  turnAboutCentre(domain.surfaces[modelSurface], [](bcSurface& m) {
    rotateModelX(m, -45.0f);
    rotateModelX(m, 45.0f);
  });
  addAngle(cfg.xRotSTL);
}

void turnModelY(bcDomain& domain, appConfig& cfg) {
  if (cfg.stlPresent != 1) return;
  turnAboutCentre(domain.surfaces[modelSurface], [](bcSurface& m) {
    rotateModelY(m, -45.0f);
    rotateModelY(m, 45.0f);
  });
  addAngle(cfg.yRotSTL);
}

void turnModelZ(bcDomain& domain, appConfig& cfg) {
  if (cfg.stlPresent != 1) return;
  turnAboutCentre(domain.surfaces[modelSurface], [](bcSurface& m) { rotateModelZ(m, 90.0f); });
  addAngle(cfg.zRotSTL);
}

void centreModel(bcDomain& domain, appConfig& cfg) {
  if (cfg.stlPresent != 1) return;
  bcSurface& model = domain.surfaces[modelSurface];
  computeModelCentre(model);
  const double a = 0.5 * cfg.lx - model.centre[0];
  const double b = 0.5 * cfg.ly - model.centre[1];
  const double c = -(0.5 * cfg.lz - model.centre[2]);
  cfg.stlDeltaX = a;
  cfg.stlDeltaY = b;
  cfg.stlDeltaZ = c;
  cfg.xoffstSTL += a;
  cfg.yoffstSTL += b;
  cfg.zoffstSTL += c;
  translateModel(model, static_cast<float>(a), static_cast<float>(b), static_cast<float>(c));
}

void rescaleModel(bcDomain& domain, appConfig& cfg) {
  if (cfg.stlPresent != 1) return;
  bcSurface& model = domain.surfaces[modelSurface];
  computeModelCentre(model);
  const float cx = model.centre[0], cy = model.centre[1], cz = model.centre[2];
  translateModel(model, -cx, -cy, cz);
  const double before = unitFactor(cfg.unitSTL);
  if (before != 0.0) {
    scaleModel(model, static_cast<float>(1.0 / before));
    cfg.xoffstSTL /= before;
    cfg.yoffstSTL /= before;
    cfg.zoffstSTL /= before;
  }
  cfg.unitSTL = cfg.unitSelector.selected;
  const double after = unitFactor(cfg.unitSTL);
  scaleModel(model, static_cast<float>(after));
  cfg.xoffstSTL *= after;
  cfg.yoffstSTL *= after;
  cfg.zoffstSTL *= after;
  translateModel(model, cx, cy, -cz);
}

}  // namespace marv
