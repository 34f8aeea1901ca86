// The shown quantity: the eleven scalars that a picture can show, taken from
// the solver's fields at the head of every frame, and their range.
#pragma once

#include "scene/sceneView.h"

namespace marv {

// Label of quantity q (dispQuantFlag); " " for 0 and for unknown values.
const char* quantityLabelOf(int q);

// Velocity statistics, then the display view filled with the selected
// quantity and its label, then valueMin and valueMax. The work views 9 to 11
// are scratch. Selecting density or temperature in a run that has no such
// field switches dispQuantFlag to speed and keeps the old range.
void extractQuantity(sceneView& scene, appConfig& cfg, fieldViews& views);

// The range of field over all nodes (countSolid) or over the nodes whose
// solidMask is 0; non-finite values never count. A flat range is widened:
// to 0..v for a value v, to -1..0 for 0.
void scanRange(const array3d<double>& field, const array3d<int>& solidMask, bool countSolid, double& lo, double& hi);

}  // namespace marv
