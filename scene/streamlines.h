// Streamlines: rebuilt from nothing every frame from seeds on the flow
// lattice (inlet nodes, or every interior lattice point), each integrated
// with steps in proportion to the local speed.
#pragma once

#include <array>

#include "scene/sceneView.h"

namespace marv {

// What a line reads: the velocity components (w unused in 2D) and the solid
// mask, non-zero at nodes that no line may enter.
struct flowSample {
  const array3d<double>* u = nullptr;
  const array3d<double>* v = nullptr;
  const array3d<double>* w = nullptr;
  const array3d<int>* solid = nullptr;
};

// Receives each step of a line, from p to q [m].
using streamlineStep = void (*)(void* user, const double p[3], const double q[3]);

// One line from seed [m] in 2 or 3 dimensions; returns the steps taken. A
// line stops in still water (speed below 1% of vmax), when a step would
// leave the mesh or reach a solid node, when the velocity is not a number,
// and after maxSteps steps. A seed outside the mesh gives no line.
int traceStreamline(const appConfig& cfg, const flowSample& flow, std::array<double, 3> seed, int dims,
                    double stepLength, double vmax, int maxSteps, streamlineStep onStep, void* user);

// The frame's lines, in pixels (2D) or in the 3D world.
void drawStreamlines2d(sceneView& scene, const appConfig& cfg, const fieldViews& views);
void drawStreamlines3d(sceneView& scene, const appConfig& cfg, const fieldViews& views);

// Receives each seed place [m].
using seedVisit = void (*)(void* user, const std::array<double, 3>& at);

// The seed places of the lattice in their fixed order: the inlet nodes on
// the x faces, the y faces, (the z faces,) then the interior lattice points
// (every one when allInterior, else the inlet nodes). edgeTests keeps the
// face sweeps off the shared edges and the interior off the faces. Returns
// the number of places visited.
int walkSeeds(const appConfig& cfg, const array3d<int>& bcFlag, int dims, bool allInterior, bool edgeTests,
              seedVisit visit, void* user);

// Node (i, j, k) feeds the flow objects: a Blue or Red boundary node.
inline bool isInletFlag(int flag) { return flag == 2 || flag == 3; }

}  // namespace marv
