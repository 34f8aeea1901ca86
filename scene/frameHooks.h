// The objects of a frame that the scene calls in their place of the drawing
// order but does not draw itself: flow objects (vectors, streamlines,
// particles), cross-section planes, probes, the model's move handle and the
// force and heat-loss report. Each is one call, handed on to the file of
// its concept (planes, flowVectors, streamlines, particles, modelHandle).
#pragma once

#include "scene/sceneView.h"

namespace marv {

// 3D run frame, after the outline.
void drawFlowVectors3d(sceneView& scene, appConfig& cfg, fieldViews& views);
void drawStreamlines3d(sceneView& scene, appConfig& cfg, fieldViews& views);
void drawContourParticles(sceneView& scene, appConfig& cfg, fieldViews& views);
void drawPlanes(sceneView& scene, appConfig& cfg, fieldViews& views);  // XY, YZ, XZ as flagged
void selectPlanesAndProbes(sceneView& scene, appConfig& cfg, fieldViews& views);

// Particles, both scene kinds: moved (not in Analysis mode) and drawn.
void updateParticles(sceneView& scene, appConfig& cfg, fieldViews& views);
void drawParticles(sceneView& scene, appConfig& cfg, fieldViews& views);

// 2D run frame, after the contour and after the boundaries.
void drawFlowVectors2d(sceneView& scene, appConfig& cfg, fieldViews& views);
void drawStreamlines2d(sceneView& scene, appConfig& cfg, fieldViews& views);
void takeProbeClicks2d(sceneView& scene, appConfig& cfg, fieldViews& views);

// Both scene kinds, before drawEndMs: the heat flux, force and heat-loss
// values (into forceValues and heatValues of appConfig) and their report,
// then the probe markers.
void reportForceAndHeat(sceneView& scene, appConfig& cfg, fieldViews& views);
void drawProbeMarkers(sceneView& scene, appConfig& cfg, fieldViews& views);

// Placement mode, 3D: the model's move handle.
void drawModelHandle(sceneView& scene, appConfig& cfg);

}  // namespace marv
