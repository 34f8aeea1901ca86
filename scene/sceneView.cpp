// The frame as the run loop sees it. The drawing itself belongs to the live
// picture; what the loop relies on already holds: drawEndMs is stamped when
// the frame is complete.
#include "scene/sceneView.h"

#include "layer/layer.h"

namespace marv {

void constructScene(sceneView& scene, appConfig& cfg, bcDomain& domain) {
  scene.cfg = &cfg;
  scene.domain = &domain;
}

void setUpScene(sceneView&, appConfig&) {}

void drawFrame(sceneView&, appConfig& cfg, fieldViews&, int) { cfg.drawEndMs = nowMs(); }

void destroyScene(sceneView& scene) { scene = sceneView{}; }

}  // namespace marv
