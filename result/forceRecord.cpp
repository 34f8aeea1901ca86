// Pressure force on outlines and surfaces, and force.txt.
#include "result/forceRecord.h"

#include <algorithm>
#include <cmath>

#include "domain/gridSampling.h"

namespace marv {

namespace {

constexpr int firstRecorded = 1;  // colour 0, free fluid, is never recorded
constexpr int lastRecorded = 8;

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
  static const recordLayout layout = [&cfg] {
    recordLayout made;
    made.headWords = {"ts", "time(s)"};
    for (int c = firstRecorded; c <= lastRecorded; ++c)
      made.headWords.push_back(formatText("%s_flag", cfg.bcTypeNames[c]));
    for (int c = firstRecorded; c <= lastRecorded; ++c)
      for (const char* axis : {"Fx", "Fy", "Fz"})
        made.headWords.push_back(formatText("%s_%s(N)", cfg.bcTypeNames[c], axis));
    made.columns = static_cast<int>(made.headWords.size());
    return made;
  }();
  return layout;
}

std::string forceHeadLine(const appConfig& cfg) {
  std::string line = formatText("%12s %12s ", "ts", "time(s)");
  for (int c = firstRecorded; c <= lastRecorded; ++c) line += formatText("%12s_flag ", cfg.bcTypeNames[c]);
  for (int c = firstRecorded; c <= lastRecorded; ++c) {
    line += formatText("%12s_Fx(N) ", cfg.bcTypeNames[c]);
    line += formatText("%12s_Fy(N) ", cfg.bcTypeNames[c]);
    line += formatText("%12s_Fz(N) ", cfg.bcTypeNames[c]);
  }
  return line + "\n";
}

std::string forceDataLine(const appConfig& cfg) {
  std::string line = formatText("%12d %12.5e ", cfg.ts, cfg.time);
  for (int c = firstRecorded; c <= lastRecorded; ++c) line += formatText("%17d ", cfg.forceRecordOn[c]);
  for (int c = firstRecorded; c <= lastRecorded; ++c)
    for (float value : cfg.forceValues[c]) line += formatText("%18.5e ", static_cast<double>(value));
  return line + "\n";
}

void readForceSetup(appConfig& cfg) {
  cfg.forceHeaderDone = 0;
  cfg.forceFileRefused = 0;
  if (cfg.numRecForce == 0 || cfg.showForce == 0) return;
  readColourFlags(cfg, forceFilePath, forceLayout(cfg), cfg.forceRecordOn, cfg.numRecForce, cfg.forceFileRefused);
}

bool writeForce(appConfig& cfg) {
  if (cfg.sts >= 1 && cfg.ts == cfg.sts) return false;
  if (cfg.forceRecInterval <= 0 || cfg.ts % cfg.forceRecInterval != 0) return false;
  if (cfg.showForce == 0 || cfg.numRecForce == 0) return false;
  std::FILE* f = openRecordForLine(cfg, forceFilePath, forceLayout(cfg), forceHeadLine(cfg), cfg.forceHeaderDone,
                                   cfg.forceFileRefused);
  if (f == nullptr) return false;
  finishRecordLine(f, forceDataLine(cfg));
  return true;
}

}  // namespace marv
