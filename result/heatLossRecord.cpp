// Wall heat flux, heat loss on outlines and surfaces, and heatLoss.txt.
#include "result/heatLossRecord.h"

#include <algorithm>
#include <cmath>

#include "common/gradOperator.h"
#include "domain/bcDomain.h"
#include "domain/gridSampling.h"
#include "result/colourRecordFile.h"

namespace marv {

namespace {

void addSquare(const array3d<double>& sum, const array3d<double>& term) {
  const int n = sum.count();
  for (int m = 0; m < n; ++m) sum[m] += term[m] * term[m];
}

}  // namespace

double specificHeat(double T) {
  if (T >= 590.0)
    return 928.911894 + 0.0897769 * T + 0.00032460657 * T * T - 2.62542e-7 * T * T * T + 5.99901e-11 * T * T * T * T;
  return 1022.5294853 - 0.1758625 * T + 0.0004020605 * T * T - 4.8640623e-8 * T * T * T;
}

void heatFluxField(appConfig& cfg, const array3d<double>& temperature, const array3d<double>& scratch,
                   const array3d<double>& flux) {
  if (flux.data == nullptr) return;
  if (cfg.showHeatLoss == 0 || cfg.cmode != 1 || temperature.data == nullptr || scratch.data == nullptr) {
    fill(flux, 0.0);
    cfg.showHeatLoss = 0;
    return;
  }
  const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  fill(flux, 0.0);
  gradX(op, cfg, temperature, scratch);
  addSquare(flux, scratch);
  if (cfg.ny > 1) {
    gradY(op, cfg, temperature, scratch);
    addSquare(flux, scratch);
  }
  if (cfg.nz > 1) {
    gradZ(op, cfg, temperature, scratch);
    addSquare(flux, scratch);
  }
  const double conduction = cfg.mu / cfg.pr;
  const int n = flux.count();
  for (int m = 0; m < n; ++m) flux[m] = std::sqrt(flux[m]) * specificHeat(temperature[m]) * conduction;
}

namespace {

// -k dT/dn at point m (physical) with unit normal n into the fluid, spacing h.
double wallFlux(const appConfig& cfg, const array3d<double>& T, const double m[3], const double n[3], double h) {
  double T0 = 0.0, T1 = 0.0, T2 = 0.0;
  T0 = sampleField(cfg, m[0], m[1], m[2], T);
  T1 = sampleField(cfg, m[0] + h * n[0], m[1] + h * n[1], m[2] + h * n[2], T);
  T2 = sampleField(cfg, m[0] + 2 * h * n[0], m[1] + 2 * h * n[1], m[2] + 2 * h * n[2], T);
  const double slope = (-3.0 * T0 + 4.0 * T1 - T2) / (2.0 * h);
  return -specificHeat(T0) * cfg.mu / cfg.pr * slope;
}

}  // namespace

double outlineHeatLoss(const appConfig& cfg, const array3d<double>& temperature, const bcOutline& outline) {
  if (temperature.data == nullptr) return 0.0;
  const double h = std::min(cfg.dx, cfg.dy);
  double sum = 0.0;
  const int count = std::min<int>(outline.numSegments, static_cast<int>(outline.segmentX.size() / 2));
  for (int s = 0; s < count; ++s) {
    const double x1 = outline.segmentX[2 * s], x2 = outline.segmentX[2 * s + 1];
    const double y1 = outline.segmentY[2 * s], y2 = outline.segmentY[2 * s + 1];
    const double l = std::sqrt((y2 - y1) * (y2 - y1) + (x2 - x1) * (x2 - x1));
    if (!(l > 0.0)) continue;
    const double m[3] = {(x1 + x2) / 2.0, (y1 + y2) / 2.0, 0.0};
    const double n[3] = {-(y2 - y1) / l, (x2 - x1) / l, 0.0};
    sum += wallFlux(cfg, temperature, m, n, h) * l;
  }
  return sum;
}

double surfaceHeatLoss(const appConfig& cfg, const array3d<double>& temperature, const bcSurface& surface, int colour) {
  if (temperature.data == nullptr) return 0.0;
  const double outward = colour == stlType ? 1.0 : -1.0;
  const double h = std::min({cfg.dx, cfg.dy, cfg.dz});
  const double top = cfg.zCoord.empty() ? 0.0 : cfg.zCoord.back();
  double sum = 0.0;
  const int count = std::min<int>(surface.numTriangles, static_cast<int>(surface.triangles.size()));
  for (int t = 0; t < count; ++t) {
    const bcTriangle& tri = surface.triangles[t];
    double e[3], f[3];
    for (int c = 0; c < 3; ++c) {
      e[c] = static_cast<double>(tri.vertex[1][c]) - tri.vertex[0][c];
      f[c] = static_cast<double>(tri.vertex[2][c]) - tri.vertex[0][c];
    }
    const double ee = e[0] * e[0] + e[1] * e[1] + e[2] * e[2];
    const double ff = f[0] * f[0] + f[1] * f[1] + f[2] * f[2];
    const double ef = e[0] * f[0] + e[1] * f[1] + e[2] * f[2];
    const double area = 0.5 * std::sqrt(std::max(0.0, ee * ff - ef * ef));
    // Position and normal back from the world's mirrored z.
    const double m[3] = {tri.centroid[0], tri.centroid[1], top - tri.centroid[2]};
    const double n[3] = {outward * tri.normal[0], outward * tri.normal[1], -outward * tri.normal[2]};
    sum += wallFlux(cfg, temperature, m, n, h) * area;
  }
  return sum;
}

const recordLayout& heatLossLayout(const appConfig& cfg) {
  static const recordLayout layout = colourRecordLayout(cfg, {"heatLoss(W/m^2)"});
  return layout;
}

std::string heatLossHeadLine(const appConfig& cfg) { return colourHeadLine(cfg, {"heatLoss(W/m^2)"}); }

std::string heatLossDataLine(const appConfig& cfg) {
  return colourDataLine(cfg, cfg.heatRecordOn, &cfg.heatValues[firstRecordedColour], 1);
}

void readHeatLossSetup(appConfig& cfg) {
  readColourSetup(cfg, heatLossFilePath, heatLossLayout(cfg), cfg.showHeatLoss, cfg.heatRecordOn, cfg.numRecHeatLoss,
                  cfg.heatHeaderDone, cfg.heatFileRefused);
}

bool writeHeatLoss(appConfig& cfg) {
  if (!colourRecordStep(cfg, cfg.heatLossRecInterval, cfg.showHeatLoss, cfg.numRecHeatLoss)) return false;
  std::FILE* f = openRecordForLine(cfg, heatLossFilePath, heatLossLayout(cfg), heatLossHeadLine(cfg),
                                   cfg.heatHeaderDone, cfg.heatFileRefused);
  if (f == nullptr) return false;
  finishRecordLine(f, heatLossDataLine(cfg));
  return true;
}

}  // namespace marv
