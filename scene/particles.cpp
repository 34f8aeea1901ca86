// Tracer and contour particles. The pool is sized once, at the first update
// of a pass, and only rewritten after that; free slots are kept at twice
// the far corner of the mesh, where they sample no velocity.
#include "scene/particles.h"

#include <algorithm>
#include <cmath>

#include "domain/gridSampling.h"
#include "scene/camera3d.h"
#include "scene/colourScale.h"
#include "scene/flowLattice.h"

namespace marv {

namespace {

constexpr float slowShare = 0.009999999776482582f;  // of the speed range: below it a tracer is freed

struct emission {
  sceneView* scene;
  int dims;
  int cursor = 0;  // slots before it are known to be in use
  int placed = 0;
  int limit = 0;
};

void placeTracer(void* user, const std::array<double, 3>& at) {
  emission& e = *static_cast<emission*>(user);
  sceneView& scene = *e.scene;
  const int count = static_cast<int>(scene.particleState.size());
  if (e.placed >= e.limit) return;
  while (e.cursor < count && scene.particleState[e.cursor] != 1) ++e.cursor;
  if (e.cursor >= count) return;  // no free slot: the place is passed over
  scene.particlePosition[3 * e.cursor] = static_cast<float>(at[0]);
  scene.particlePosition[3 * e.cursor + 1] = static_cast<float>(at[1]);
  scene.particlePosition[3 * e.cursor + 2] = static_cast<float>(e.dims == 3 ? at[2] : 0.0);
  scene.particleState[e.cursor] = 0;
  ++e.placed;
}

bool fieldsFit(const sceneView& scene, const appConfig& cfg, const fieldViews& views, int dims) {
  if (scene.domain == nullptr) return false;
  const int count = cfg.nx * cfg.ny * std::max(cfg.nz, 1);
  const bool velocity = views[fieldU].data != nullptr && views[fieldU].count() == count &&
                        views[fieldV].data != nullptr && views[fieldV].count() == count &&
                        (dims == 2 || (views[fieldW].data != nullptr && views[fieldW].count() == count));
  return velocity && scene.domain->bcFlag.count() == count && static_cast<int>(cfg.xCoord.size()) >= cfg.nx &&
         static_cast<int>(cfg.yCoord.size()) >= cfg.ny && static_cast<int>(cfg.zCoord.size()) >= cfg.nz;
}

// Inlet nodes on the lattice that starts at index 0 on every axis.
int countSeeds(const appConfig& cfg, const array3d<int>& bcFlag, int dims) {
  const std::array<int, 3> s = latticeSteps(cfg);
  const int nz = dims == 3 ? cfg.nz : 1;
  int seeds = 0;
  for (int k = 0; k < nz; k += s[2])
    for (int j = 0; j < cfg.ny; j += s[1])
      for (int i = 0; i < cfg.nx; i += s[0]) seeds += isInletFlag(bcFlag(i, j, k));
  return seeds;
}

void setUpPool(sceneView& scene, const appConfig& cfg, int dims) {
  const int count = std::max(cfg.numTracerParticles, 0);
  const float far[3] = {static_cast<float>(2.0 * cfg.xCoord.back()), static_cast<float>(2.0 * cfg.yCoord.back()),
                        static_cast<float>(2.0 * cfg.zCoord.back())};
  scene.particlePosition.assign(3 * static_cast<std::size_t>(count), 0.0f);
  for (int n = 0; n < count; ++n)
    for (int a = 0; a < 3; ++a) scene.particlePosition[3 * n + a] = far[a];
  scene.particleSpeed.assign(count, 0.0);
  scene.particleState.assign(count, 0);
  scene.seedCount = countSeeds(cfg, scene.domain->bcFlag, dims);
  double vref = 0.0;
  for (int id = std::max(cfg.firstInletType, 0); id <= cfg.lastInletType && id < numColourTypes; ++id)
    vref = std::max({vref, std::fabs(cfg.bcU[id]), std::fabs(cfg.bcV[id]), std::fabs(cfg.bcW[id])});
  if (!(vref > 0.0)) vref = 1.0;
  const double span = cfg.lx + cfg.ly + (dims == 3 ? cfg.lz : 0.0);
  const double interval = span / vref / cfg.deltat / std::max(count, 1) * scene.seedCount;
  // A zero or broken time step would make the interval undefined: emit at
  // every chance instead.
  scene.emitInterval = std::isfinite(interval) ? static_cast<int>(std::clamp(interval, 0.0, 1e9)) : 0;
  scene.particlesReady = 1;
}

void emit(sceneView& scene, const appConfig& cfg, int dims) {
  const int count = static_cast<int>(scene.particleState.size());
  int free = 0;
  for (int s : scene.particleState) free += s == 1;
  if (free < count - 1 && free < scene.seedCount - 1) return;
  if (cfg.ts - scene.lastEmitStep <= scene.emitInterval) return;
  scene.lastEmitStep = cfg.ts;
  emission e{&scene, dims, 0, 0, count - 1};
  walkSeeds(cfg, scene.domain->bcFlag, dims, false, false, placeTracer, &e);
}

std::uint32_t objectColour(const sceneView& scene, const appConfig& cfg, double value, std::uint32_t plain) {
  if (cfg.nonBcObjectColorFlag != 1) return plain;
  return scene.colourTable[colourSlot(value, rangeLow(scene, cfg), rangeHigh(scene, cfg))];
}

}  // namespace

void advanceParticles(const appConfig& cfg, const flowSample& flow, int dims, double dt, double minSpeed,
                      double maxSpeed, int count, float* position, double* speed, int* state) {
  const double hi[3] = {cfg.xCoord.back(), cfg.yCoord.back(), dims == 3 ? cfg.zCoord.back() : 0.0};
  const double lo[3] = {cfg.xCoord.front(), cfg.yCoord.front(), dims == 3 ? cfg.zCoord.front() : 0.0};
  const double slow = minSpeed + slowShare * (maxSpeed - minSpeed);
  for (int n = 0; n < count; ++n) {
    float* p = position + 3 * n;
    double vel[3] = {0.0, 0.0, 0.0};
    if (dims == 2) {
      vel[0] = sampleFieldPlane(cfg, p[0], p[1], *flow.u);
      vel[1] = sampleFieldPlane(cfg, p[0], p[1], *flow.v);
    } else {
      vel[0] = sampleField(cfg, p[0], p[1], p[2], *flow.u);
      vel[1] = sampleField(cfg, p[0], p[1], p[2], *flow.v);
      vel[2] = sampleField(cfg, p[0], p[1], p[2], *flow.w);
    }
    bool outside = false;
    for (int a = 0; a < dims; ++a) {
      p[a] = static_cast<float>(p[a] + vel[a] * dt);
      outside = outside || !(p[a] > lo[a] && p[a] < hi[a]);
    }
    const double v = std::sqrt(vel[0] * vel[0] + vel[1] * vel[1] + vel[2] * vel[2]);
    if ((cfg.ts > 2 && v <= slow) || outside || !std::isfinite(v)) state[n] = 1, speed[n] = 0.0;
    if (state[n] != 1) speed[n] = v;
  }
}

void updateTracers(sceneView& scene, appConfig& cfg, const fieldViews& views) {
  const int dims = scene.is3d ? 3 : 2;
  if (!fieldsFit(scene, cfg, views, dims)) return;
  if (scene.particlesReady == 0) setUpPool(scene, cfg, dims);
  if (cfg.quitPromptFlag || cfg.showHelpShortcutFlag || cfg.inputBusy || cfg.panelBusy) return;
  if (cfg.ts < 10 || cfg.ts % 10 == 0) emit(scene, cfg, dims);
  const flowSample flow{&views[fieldU], &views[fieldV], &views[fieldW], nullptr};
  advanceParticles(cfg, flow, dims, cfg.deltat, scene.stats.minSpeed, scene.stats.maxSpeed,
                   static_cast<int>(scene.particleState.size()), scene.particlePosition.data(),
                   scene.particleSpeed.data(), scene.particleState.data());
}

void drawTracers(const sceneView& scene, const appConfig& cfg, const fieldViews& views) {
  const int count = static_cast<int>(scene.particleState.size());
  if (count == 0 || cfg.xCoord.empty() || cfg.yCoord.empty()) return;
  const array3d<double>& display = views[viewDisplay];
  const bool sampled = display.data != nullptr;
  const int ndiv = std::max(cfg.ndiv, 1);
  if (scene.is3d) {
    const float radius = static_cast<float>(ndiv * 0.5 * cfg.particleSize * scene.cellScale);
    const std::uint32_t plain = colour(scene.objectColourR, scene.objectColourG, scene.objectColourB);
    for (int n = 0; n < count; ++n) {
      if (scene.particleState[n] == 1) continue;
      const float* p = &scene.particlePosition[3 * n];
      const double value = sampled ? sampleField(cfg, p[0], p[1], p[2], display) : 0.0;
      const std::uint32_t c = objectColour(scene, cfg, value, plain);
      drawSphere3d(worldPoint(scene, cfg, p[0], p[1], p[2]), radius, cfg.particleDivNum, c, c, 1);
    }
    return;
  }
  const double s = cfg.pixPerMetre;
  const int radius = static_cast<int>(ndiv * cfg.particleSize * scene.cellScale);
  for (int n = 0; n < count; ++n) {
    if (scene.particleState[n] == 1) continue;
    const float* p = &scene.particlePosition[3 * n];
    const double value = sampled ? sampleFieldPlane(cfg, p[0], p[1], display) : 0.0;
    const std::uint32_t c = objectColour(scene, cfg, value, scene.colours.black);
    drawCircle(static_cast<int>((p[0] - cfg.xCoord[0]) * s + cfg.marginLeft + 0.5),
               static_cast<int>(s * cfg.ly - (p[1] - cfg.yCoord[0]) * s + cfg.marginTop + 0.5), radius, c, 1, 1);
  }
}

void drawContourSpheres(const sceneView& scene, const appConfig& cfg, const fieldViews& views) {
  const array3d<double>& display = views[viewDisplay];
  if (!scene.is3d || display.data == nullptr || display.count() != cfg.nx * cfg.ny * cfg.nz) return;
  latticeAxis ax, ay, az;
  if (!latticeAxes(cfg, ax, ay, az)) return;
  const double lo = rangeLow(scene, cfg), hi = rangeHigh(scene, cfg);
  const double size = std::max(cfg.ndiv, 1) * cfg.particleSize * scene.cellScale;
  const std::uint32_t plain = colour(scene.objectColourR, scene.objectColourG, scene.objectColourB);
  for (int k = az.first + az.step; k < cfg.nz - az.first - az.step; k += az.step)
    for (int j = ay.first + ay.step; j < cfg.ny - ay.first - ay.step; j += ay.step)
      for (int i = ax.first + ax.step; i < cfg.nx - ax.first - ax.step; i += ax.step) {
        const double c = std::clamp(display(i, j, k), lo, hi);
        const double t = hi > lo ? (c - lo) / (hi - lo) : 0.0;
        if (!(t > 0.0)) continue;  // a sphere of radius 0, or a value that is not a number
        const std::uint32_t diffuse =
            cfg.nonBcObjectColorFlag == 1 ? scene.colourTable[static_cast<int>(t * (numColors - 1))] : plain;
        drawSphere3d(
            worldPoint(scene, cfg, cfg.xCoord[i] + ax.shift, cfg.yCoord[j] + ay.shift, cfg.zCoord[k] + az.shift),
            static_cast<float>(size * std::sqrt(t)), cfg.particleDivNum, diffuse, scene.colours.white, 1);
      }
}

}  // namespace marv
