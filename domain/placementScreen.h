// Placing the STL model on screen before the run: the live picture with the
// buttons "Rot STL" (x, y, z), "Centering", the unit selector and the drag
// handle, and "Cancel" / "Proceed". The model operations themselves live in
// modelPlacement; this file lays out the buttons and runs the loop.
#pragma once

#include "app/appConfig.h"
#include "app/screenKit.h"
#include "domain/bcDomain.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "solver/fieldViews.h"
#include "widgets/controlPanel.h"

namespace marv {

struct placementLayout {
  int cancelX = 0, proceedX = 0, y = 0;  // [px]
  int rotX[3] = {0, 0, 0};               // the three "Rot STL" buttons [px]
  int centreX = 0;                       // "Centering" [px]
  int unitX = 0, unitY = 0;              // the unit selector [px]
  int size = 0;                          // button side [px]
};

placementLayout layoutPlacement(const appConfig& cfg);

// Screen centre of option o of the unit selector.
void unitOptionCentre(const appConfig& cfg, int option, int& x, int& y);

struct placementState {
  screenButton cancel, proceed, rot[3], centre;
  int unitArmed = 0;  // option + 1 under an up button
  buttonTiles tiles;
};

// The drag handle's move of this frame: its z is negated, added to the
// offsets, and the model is moved by it.
void applyDragMove(bcDomain& domain, appConfig& cfg);

// The buttons and the unit selector of one frame, after the picture: acts
// on the model at once and returns 1 proceed, -1 cancel, 0 neither.
int placementControls(placementState& state, bcDomain& domain, appConfig& cfg, const screenInput& in);

// The placement loop: 1 proceed, -1 cancel.
int runPlacement(appConfig& cfg, bcDomain& domain, sceneView& scene, inputState& input, controlPanel& panel,
                 fieldViews& views);

}  // namespace marv
