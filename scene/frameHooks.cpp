// The frame's places for the flow objects, planes, probes, the model handle
// and the force and heat-loss report, each handed to the file of its concept;
// the report comes after the heat flux field.
#include "scene/frameHooks.h"

#include "result/heatLossRecord.h"
#include "scene/flowVectors.h"
#include "scene/forceHeatReport.h"
#include "scene/modelHandle.h"
#include "scene/particles.h"
#include "scene/planes.h"
#include "scene/streamlines.h"

namespace marv {

void drawFlowVectors3d(sceneView& scene, appConfig& cfg, fieldViews& views) {
  if (cfg.showVectorFlag == 1) drawVectors3d(scene, cfg, views, false);
  if (cfg.showCorrVectorFlag == 1) drawVectors3d(scene, cfg, views, true);
}
void drawStreamlines3d(sceneView& scene, appConfig& cfg, fieldViews& views) {
  drawStreamlines3d(scene, static_cast<const appConfig&>(cfg), static_cast<const fieldViews&>(views));
}
void drawContourParticles(sceneView& scene, appConfig& cfg, fieldViews& views) {
  drawContourSpheres(scene, cfg, views);
}
void drawPlanes(sceneView& scene, appConfig& cfg, fieldViews& views) {
  if (cfg.showCrosssectionXYFlag == 1) drawPlane(scene, cfg, views, planeXY);
  if (cfg.showCrosssectionYZFlag == 1) drawPlane(scene, cfg, views, planeYZ);
  if (cfg.showCrosssectionXZFlag == 1) drawPlane(scene, cfg, views, planeXZ);
}
void selectPlanesAndProbes(sceneView& scene, appConfig& cfg, fieldViews&) { selectPlaneAndProbe(scene, cfg); }
void updateParticles(sceneView& scene, appConfig& cfg, fieldViews& views) { updateTracers(scene, cfg, views); }
void drawParticles(sceneView& scene, appConfig& cfg, fieldViews& views) { drawTracers(scene, cfg, views); }
void drawFlowVectors2d(sceneView& scene, appConfig& cfg, fieldViews& views) { drawVectors2d(scene, cfg, views); }
void drawStreamlines2d(sceneView& scene, appConfig& cfg, fieldViews& views) {
  drawStreamlines2d(scene, static_cast<const appConfig&>(cfg), static_cast<const fieldViews&>(views));
}
void takeProbeClicks2d(sceneView& scene, appConfig& cfg, fieldViews&) { probeClick2d(scene, cfg); }
void reportForceAndHeat(sceneView& scene, appConfig& cfg, fieldViews& views) {
  heatFluxField(cfg, views[fieldT], views[viewWorkA], views[viewWorkB]);
  forceHeatReport(scene, cfg, views);
}
void drawProbeMarkers(sceneView& scene, appConfig& cfg, fieldViews&) { drawProbes(scene, cfg); }
void drawModelHandle(sceneView& scene, appConfig& cfg) { drawStlHandle(scene, cfg); }

}  // namespace marv
