// The frame as the run loop sees it. The drawing itself belongs to the live
// picture; what the loop relies on already holds: drawEndMs is stamped when
// the frame is complete.
#include "scene/sceneView.h"

#include <algorithm>

#include "layer/layer.h"

namespace marv {

void constructScene(sceneView& scene, appConfig& cfg, bcDomain& domain) {
  scene.cfg = &cfg;
  scene.domain = &domain;
}

void setUpScene(sceneView&, appConfig&) {}

void drawFrame(sceneView& scene, appConfig& cfg, fieldViews& views, int) {
  // The statistics come first: the adaptive time step of the coming solve
  // is taken from this frame's peaks.
  scene.stats = scanVelocity(views[fieldU], views[fieldV], views[fieldW]);
  if (cfg.fixedDeltat == 0 && cfg.ts >= 10) cfg.deltat = adaptiveDeltat(cfg.cfl, cfg.dx, cfg.dy, scene.stats);
  cfg.maxCfl = cfg.deltat * std::max(scene.stats.peakU / cfg.dx, scene.stats.peakV / cfg.dy);
  cfg.drawEndMs = nowMs();
}

void destroyScene(sceneView& scene) { scene = sceneView{}; }

}  // namespace marv
