// Pressure force on outlines and surfaces, and force.txt.
#include "result/forceRecord.h"

#include <algorithm>
#include <cmath>

#include "domain/gridSampling.h"
#include "result/colourRecordFile.h"

namespace marv {

namespace {

// Physical height of a surface point held in the world's mirrored z.
double physicalZ(const appConfig& cfg, float worldZ) {
  const double top = cfg.zCoord.empty() ? 0.0 : cfg.zCoord.back();
  return top - static_cast<double>(worldZ);
}

}  // namespace

forceVector outlineForce(const appConfig& cfg, const array3d<double>& p, const bcOutline& outline) {
  float sx = 0.0f, sy = 0.0f;
  const int count = std::min<int>(outline.numSegments, static_cast<int>(outline.segmentX.size() / 2));
  for (int s = 0; s < count; ++s) {
    const float x1 = outline.segmentX[2 * s], x2 = outline.segmentX[2 * s + 1];
    const float y1 = outline.segmentY[2 * s], y2 = outline.segmentY[2 * s + 1];
    const float l = std::sqrt((y2 - y1) * (y2 - y1) + (x2 - x1) * (x2 - x1));
    if (!(l > 0.0f)) continue;  // a segment of no length has no normal
    const float nx = -(y2 - y1) / l, ny = (x2 - x1) / l;
    const auto P = static_cast<float>(sampleField(cfg, (x1 + x2) / 2.0f, (y1 + y2) / 2.0f, 0.0, p));
    sx += P * l * nx;
    sy += P * l * ny;
  }
  return {0.0f - sx, 0.0f - sy, 0.0f};  // 0 - s: no negative zero in the file
}

forceVector surfaceForce(const appConfig& cfg, const array3d<double>& p, const bcSurface& surface, int colour) {
  const float outward = colour == stlType ? 1.0f : -1.0f;
  float sx = 0.0f, sy = 0.0f, sz = 0.0f;
  const int count = std::min<int>(surface.numTriangles, static_cast<int>(surface.triangles.size()));
  for (int t = 0; t < count; ++t) {
    const bcTriangle& tri = surface.triangles[t];
    float e[3], f[3];
    for (int c = 0; c < 3; ++c) {
      e[c] = tri.vertex[1][c] - tri.vertex[0][c];
      f[c] = tri.vertex[2][c] - tri.vertex[0][c];
    }
    const float ee = e[0] * e[0] + e[1] * e[1] + e[2] * e[2];
    const float ff = f[0] * f[0] + f[1] * f[1] + f[2] * f[2];
    const float ef = e[0] * f[0] + e[1] * f[1] + e[2] * f[2];
    const float area = 0.5f * std::sqrt(std::max(0.0f, ee * ff - ef * ef));
    const auto P =
        static_cast<float>(sampleField(cfg, tri.centroid[0], tri.centroid[1], physicalZ(cfg, tri.centroid[2]), p));
    const float weight = outward * P * area;
    sx += weight * tri.normal[0];
    sy += weight * tri.normal[1];
    // The normal's z is mirrored with the surface; taken back like the height.
    sz -= weight * tri.normal[2];
  }
  return {0.0f - sx, 0.0f - sy, 0.0f - sz};
}

const recordLayout& forceLayout(const appConfig& cfg) {
  static const recordLayout layout = colourRecordLayout(cfg, {"Fx(N)", "Fy(N)", "Fz(N)"});
  return layout;
}

std::string forceHeadLine(const appConfig& cfg) { return colourHeadLine(cfg, {"Fx(N)", "Fy(N)", "Fz(N)"}); }

std::string forceDataLine(const appConfig& cfg) {
  double values[3 * (lastRecordedColour - firstRecordedColour + 1)];
  for (int c = firstRecordedColour; c <= lastRecordedColour; ++c)
    for (int a = 0; a < 3; ++a) values[3 * (c - firstRecordedColour) + a] = cfg.forceValues[c][a];
  return colourDataLine(cfg, cfg.forceRecordOn, values, 3);
}

void readForceSetup(appConfig& cfg) {
  readColourSetup(cfg, forceFilePath, forceLayout(cfg), cfg.showForce, cfg.forceRecordOn, cfg.numRecForce,
                  cfg.forceHeaderDone, cfg.forceFileRefused);
}

bool writeForce(appConfig& cfg) {
  if (!colourRecordStep(cfg, cfg.forceRecInterval, cfg.showForce, cfg.numRecForce)) return false;
  std::FILE* f = openRecordForLine(cfg, forceFilePath, forceLayout(cfg), forceHeadLine(cfg), cfg.forceHeaderDone,
                                   cfg.forceFileRefused);
  if (f == nullptr) return false;
  finishRecordLine(f, forceDataLine(cfg));
  return true;
}

}  // namespace marv
