// Tracer particles, the one flow object with memory: a fixed pool that
// lives from frame to frame, filled from the inlet nodes of the lattice and
// moved by the solver's time step; and the contour particles, spheres on the
// lattice sized by the shown quantity.
#pragma once

#include "scene/sceneView.h"
#include "scene/streamlines.h"

namespace marv {

// Moves count tracers by velocity x dt in 2 or 3 dimensions and frees those
// that left the mesh or (after step 2) crawl below 1% of the speed range.
void advanceParticles(const appConfig& cfg, const flowSample& flow, int dims, double dt, double minSpeed,
                      double maxSpeed, int count, float* position, double* speed, int* state);

// The frame's update: sets the pool up at the first call, emits from the
// inlets every tenth step, then moves every tracer. Nothing moves while
// the run is held by a prompt, the help list or an open panel.
void updateTracers(sceneView& scene, appConfig& cfg, const fieldViews& views);

void drawTracers(const sceneView& scene, const appConfig& cfg, const fieldViews& views);

void drawContourSpheres(const sceneView& scene, const appConfig& cfg, const fieldViews& views);

}  // namespace marv
