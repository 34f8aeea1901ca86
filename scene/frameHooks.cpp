// Places of the frame kept for the display objects that are not drawn yet.
#include "scene/frameHooks.h"

namespace marv {

void drawFlowVectors3d(sceneView&, appConfig&, fieldViews&) {}
void drawStreamlines3d(sceneView&, appConfig&, fieldViews&) {}
void drawContourParticles(sceneView&, appConfig&, fieldViews&) {}
void drawPlanes(sceneView&, appConfig&, fieldViews&) {}
void selectPlanesAndProbes(sceneView&, appConfig&, fieldViews&) {}
void updateParticles(sceneView&, appConfig&, fieldViews&) {}
void drawParticles(sceneView&, appConfig&, fieldViews&) {}
void drawFlowVectors2d(sceneView&, appConfig&, fieldViews&) {}
void drawStreamlines2d(sceneView&, appConfig&, fieldViews&) {}
void takeProbeClicks2d(sceneView&, appConfig&, fieldViews&) {}
void reportForceAndHeat(sceneView&, appConfig&, fieldViews&) {}
void drawProbeMarkers(sceneView&, appConfig&, fieldViews&) {}
void drawModelHandle(sceneView&, appConfig&) {}

}  // namespace marv
