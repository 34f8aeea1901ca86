// Velocity vectors on the flow lattice: flat arrows over the 2D picture,
// cones in 3D, and in 3D the vectors that are not parallel to the inflow.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// One 2D arrow in pixels: shaft from tail to head, two head strokes that
// end at the head.
struct arrow2d {
  float tailX = 0, tailY = 0, headX = 0, headY = 0;
  float stroke1X = 0, stroke1Y = 0, stroke2X = 0, stroke2Y = 0;
};

// The arrow of velocity (u, v) centred at (cx, cy) on the screen (y down);
// false when the velocity is too small to show (or not a number).
bool makeArrow2d(double u, double v, double minSpeed, double maxSpeed, int ndiv, int pixPerCell, double cx, double cy,
                 arrow2d& arrow);

// Correlation of the absolute components of a sample with those of the
// inflow; not a number when either has no spread.
double inflowCorrelation(const double sample[3], const double inflow[3]);

void drawVectors2d(const sceneView& scene, const appConfig& cfg, const fieldViews& views);
// uncorrelated: only the vectors whose correlation with the inflow is not
// above CorrVectorThres.
void drawVectors3d(const sceneView& scene, const appConfig& cfg, const fieldViews& views, bool uncorrelated);

}  // namespace marv
