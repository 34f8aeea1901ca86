// sceneView: the display object that redraws the whole picture once per pass
// of the run loop. Until the live picture is built it draws nothing and only
// stamps the end of drawing, which the step timing reads.
#pragma once

#include "app/appConfig.h"
#include "domain/bcDomain.h"
#include "scene/velocityStatistics.h"
#include "solver/fieldViews.h"

namespace marv {

struct sceneView {
  appConfig* cfg = nullptr;    // the pass's record, not owned
  bcDomain* domain = nullptr;  // not owned
  velocityStatistics stats;    // of the last frame
};

void constructScene(sceneView& scene, appConfig& cfg, bcDomain& domain);
void setUpScene(sceneView& scene, appConfig& cfg);
// mode -1 bitmap preview, 0 placement, 1 run
void drawFrame(sceneView& scene, appConfig& cfg, fieldViews& views, int mode);
void destroyScene(sceneView& scene);

}  // namespace marv
