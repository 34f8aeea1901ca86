// viz.txt keys, their fields and kinds, the reader and the writer.
#include "project/vizFile.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "common/textNumbers.h"

namespace marv {

namespace {

enum vizKind { vizFlag, vizInt, vizReal, vizFloat };

struct vizField {
  std::uint8_t appConfig::*flag = nullptr;
  int appConfig::*whole = nullptr;
  double appConfig::*real = nullptr;
  float appConfig::*single = nullptr;
};

struct vizKey {
  const char* name;
  vizKind kind;
  vizField field;
};

// clang-format off
const vizKey vizKeys[numVizKeys] = {
    {"useLightingFlag", vizFlag, {.flag = &appConfig::useLightingFlag}},  // 0
    {"polygonFrames", vizFlag, {.flag = &appConfig::polygonFrames}},  // 1
    {"showOutlineFlag", vizInt, {.whole = &appConfig::showOutlineFlag}},  // 2
    {"showOrientationAxesFlag", vizInt, {.whole = &appConfig::showOrientationAxesFlag}},  // 3
    {"showCameraTargetFlag", vizInt, {.whole = &appConfig::showCameraTargetFlag}},  // 4
    {"showBoundaryFlagUser", vizInt, {.whole = &appConfig::showBoundaryFlagUser}},  // 5
    {"showBoundaryFlagBlack", vizInt, {.whole = &appConfig::showBoundaryFlagBlack}},  // 6
    {"showBoundaryFlagBlue", vizInt, {.whole = &appConfig::showBoundaryFlagBlue}},  // 7
    {"showBoundaryFlagRed", vizInt, {.whole = &appConfig::showBoundaryFlagRed}},  // 8
    {"showBoundaryFlagGreen", vizInt, {.whole = &appConfig::showBoundaryFlagGreen}},  // 9
    {"showBoundaryFlagMagenta", vizInt, {.whole = &appConfig::showBoundaryFlagMagenta}},  // 10
    {"showBoundaryFlagCyan", vizInt, {.whole = &appConfig::showBoundaryFlagCyan}},  // 11
    {"showBoundaryFlagSTL", vizInt, {.whole = &appConfig::showBoundaryFlagSTL}},  // 12
    {"showQColorOnBoundaryFlag", vizInt, {.whole = &appConfig::showQColorOnBoundaryFlag}},  // 13
    {"showVectorFlag", vizInt, {.whole = &appConfig::showVectorFlag}},  // 14
    {"showCorrVectorFlag", vizInt, {.whole = &appConfig::showCorrVectorFlag}},  // 15
    {"CorrVectorThres", vizReal, {.real = &appConfig::CorrVectorThres}},  // 16
    {"miniVecSizeScaling", vizReal, {.real = &appConfig::miniVecSizeScaling}},  // 17
    {"showTracerParticleFlag", vizInt, {.whole = &appConfig::showTracerParticleFlag}},  // 18
    {"numTracerParticles", vizInt, {.whole = &appConfig::numTracerParticles}},  // 19
    {"showContourPaticlesFlag", vizInt, {.whole = &appConfig::showContourPaticlesFlag}},  // 20
    {"particleSize", vizReal, {.real = &appConfig::particleSize}},  // 21
    {"particleDivNum", vizInt, {.whole = &appConfig::particleDivNum}},  // 22
    {"showStreamlineFlag", vizInt, {.whole = &appConfig::showStreamlineFlag}},  // 23
    {"streamLineThickness", vizFloat, {.single = &appConfig::streamLineThickness}},  // 24
    {"nLoopStreamline", vizInt, {.whole = &appConfig::nLoopStreamline}},  // 25
    {"minMaxFlag", vizInt, {.whole = &appConfig::minMaxFlag}},  // 26
    {"scanningPixelWidthIBM", vizInt, {.whole = &appConfig::scanningPixelWidthIBM}},  // 27
    {"showGhostSolidFlag", vizInt, {.whole = &appConfig::showGhostSolidFlag}},  // 28
    {"nonBcObjectColorFlag", vizInt, {.whole = &appConfig::nonBcObjectColorFlag}},  // 29
    {"nonBcObjectColorR", vizInt, {.whole = &appConfig::nonBcObjectColorR}},  // 30
    {"nonBcObjectColorG", vizInt, {.whole = &appConfig::nonBcObjectColorG}},  // 31
    {"nonBcObjectColorB", vizInt, {.whole = &appConfig::nonBcObjectColorB}},  // 32
    {"showIsoSurfacesFlag", vizInt, {.whole = &appConfig::showIsoSurfacesFlag}},  // 33
    {"showCrosssectionXYFlag", vizInt, {.whole = &appConfig::showCrosssectionXYFlag}},  // 34
    {"zCrosssectionXY", vizReal, {.real = &appConfig::zCrosssectionXY}},  // 35
    {"showCrosssectionYZFlag", vizInt, {.whole = &appConfig::showCrosssectionYZFlag}},  // 36
    {"xCrosssectionYZ", vizReal, {.real = &appConfig::xCrosssectionYZ}},  // 37
    {"showCrosssectionXZFlag", vizInt, {.whole = &appConfig::showCrosssectionXZFlag}},  // 38
    {"yCrosssectionXZ", vizReal, {.real = &appConfig::yCrosssectionXZ}},  // 39
    {"showCrosssectionVectorFlag", vizInt, {.whole = &appConfig::showCrosssectionVectorFlag}},  // 40
    {"showHelpShortcutFlag", vizInt, {.whole = &appConfig::showHelpShortcutFlag}},  // 41
    {"dispQuantFlag", vizInt, {.whole = &appConfig::dispQuantFlag}},  // 42
    {"animationRotationFlag", vizInt, {.whole = &appConfig::animationRotationFlag}},  // 43
    {"ndivDrawMeshForGraphic", vizInt, {.whole = &appConfig::ndivDrawMeshForGraphic}},  // 44
    {"bcAlphaSTL", vizInt, {.whole = &appConfig::bcAlphaSTL}},  // 45
    {"bcAlphaUser", vizInt, {.whole = &appConfig::bcAlphaUser}},  // 46
    {"bcAlphaK", vizInt, {.whole = &appConfig::bcAlphaK}},  // 47
    {"manualMinFlag", vizFlag, {.flag = &appConfig::manualMinFlag}},  // 48
    {"manualMinValue", vizReal, {.real = &appConfig::manualMinValue}},  // 49
    {"manualMaxFlag", vizFlag, {.flag = &appConfig::manualMaxFlag}},  // 50
    {"manualMaxValue", vizReal, {.real = &appConfig::manualMaxValue}},  // 51
    {"cameraTheta0", vizFloat, {.single = &appConfig::cameraTheta0}},  // 52
    {"CameraTheta1", vizFloat, {.single = &appConfig::CameraTheta1}},  // 53
    {"cameraRadius", vizFloat, {.single = &appConfig::cameraRadius}},  // 54
    {"cameraPosX", vizFloat, {.single = &appConfig::cameraPosX}},  // 55
    {"cameraPosY", vizFloat, {.single = &appConfig::cameraPosY}},  // 56
    {"cameraPosZ", vizFloat, {.single = &appConfig::cameraPosZ}},  // 57
    {"cameraTargetX", vizFloat, {.single = &appConfig::cameraTargetX}},  // 58
    {"cameraTargetY", vizFloat, {.single = &appConfig::cameraTargetY}},  // 59
    {"cameraTargetZ", vizFloat, {.single = &appConfig::cameraTargetZ}},  // 60
    {"cameraPerspectiveDeg", vizFloat, {.single = &appConfig::cameraPerspectiveDeg}},  // 61
    {"probeRecordInterval", vizInt, {.whole = &appConfig::probeRecordInterval}},  // 62
    {"numProbes", vizInt, {.whole = &appConfig::numProbes}},  // 63
    {"forceRecInterval", vizInt, {.whole = &appConfig::forceRecInterval}},  // 64
    {"showForce", vizFlag, {.flag = &appConfig::showForce}},  // 65
    {"numRecForce", vizInt, {.whole = &appConfig::numRecForce}},  // 66
    {"heatLossRecInterval", vizInt, {.whole = &appConfig::heatLossRecInterval}},  // 67
    {"showHeatLoss", vizFlag, {.flag = &appConfig::showHeatLoss}},  // 68
    {"numRecHeatLoss", vizInt, {.whole = &appConfig::numRecHeatLoss}},  // 69
};
// clang-format on

constexpr int particleDivNumKey = 22;
constexpr int animationRotationKey = 43;

double fieldValue(const appConfig& cfg, const vizKey& key) {
  switch (key.kind) {
    case vizFlag: return cfg.*key.field.flag;
    case vizInt: return cfg.*key.field.whole;
    case vizReal: return cfg.*key.field.real;
    case vizFloat: return cfg.*key.field.single;
  }
  return 0.0;
}

void setField(appConfig& cfg, const vizKey& key, double value) {
  switch (key.kind) {
    case vizFlag: cfg.*key.field.flag = value != 0.0 ? 1 : 0; break;
    case vizInt: cfg.*key.field.whole = truncToInt(value); break;
    case vizReal: cfg.*key.field.real = value; break;
    case vizFloat: cfg.*key.field.single = narrowToFloat(value); break;
  }
}

}  // namespace

const char* vizKeyName(int number) { return number >= 0 && number < numVizKeys ? vizKeys[number].name : "NA"; }

// An unknown key is the table's end.
static_assert(unknownVizKey == numVizKeys);

parameterEntry lookupVizKey(const std::string& name) {
  parameterEntry e;
  e.name = name;
  e.index = findName(name, vizKeys, numVizKeys, [](const vizKey& key) { return key.name; });
  e.valueType = e.index < numVizKeys && (vizKeys[e.index].kind == vizReal || vizKeys[e.index].kind == vizFloat) ? 1 : 0;
  return e;
}

std::string formatVizLine(int number, double value) {
  char line[128];
  const bool real =
      number >= 0 && number < numVizKeys && (vizKeys[number].kind == vizReal || vizKeys[number].kind == vizFloat);
  if (real)
    std::snprintf(line, sizeof line, "%-40s %.8e", vizKeyName(number), value);
  else
    std::snprintf(line, sizeof line, "%-40s %d", vizKeyName(number), truncToInt(value));
  return line;
}

std::string formatVizFile(const appConfig& cfg) {
  std::string text;
  for (int n = 0; n < numVizKeys; ++n) {
    text += formatVizLine(n, fieldValue(cfg, vizKeys[n])) + "\n";
    // particleDivNum stands a second time before ndivDrawMeshForGraphic.
    if (n == animationRotationKey)
      text += formatVizLine(particleDivNumKey, fieldValue(cfg, vizKeys[particleDivNumKey])) + "\n";
  }
  return text;
}

bool syncViz(appConfig& cfg, int write) {
  const char* path = "./input/viz.txt";
  if (write == 1) return replaceFileAtomically(path, formatVizFile(cfg));
  std::FILE* f = std::fopen(path, "rb");
  if (f == nullptr) return true;
  std::array<double, 100> transfer;
  transfer.fill(notGiven);
  tokenReader reader{f};
  std::string key, value;
  for (int n = 0; n < 100 && nextToken(reader, key); ++n) {
    if (!nextToken(reader, value)) break;
    const int index = lookupVizKey(key).index;
    transfer[index] = parseNumber(value);
  }
  std::fclose(f);
  for (int n = 0; n < numVizKeys; ++n) {
    if (transfer[n] != notGiven) setField(cfg, vizKeys[n], transfer[n]);
  }
  cfg.zCrosssectionXY = std::clamp(cfg.zCrosssectionXY, 0.0, cfg.lz);
  cfg.xCrosssectionYZ = std::clamp(cfg.xCrosssectionYZ, 0.0, cfg.lx);
  cfg.yCrosssectionXZ = std::clamp(cfg.yCrosssectionXZ, 0.0, cfg.ly);
  return true;
}

}  // namespace marv
