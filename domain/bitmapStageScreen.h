// The bitmap colour stage on screen: each boundary bitmap is shown with the
// mesh over it and beside it the list of colours found, each with its
// stretch plane, mirror plane and inversion; the user accepts each bitmap,
// cancels, or presses into the picture for the 3D preview and comes back
// to the same bitmap.
#pragma once

#include <cstdint>
#include <vector>

#include "app/appConfig.h"
#include "app/screenKit.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "solver/fieldViews.h"

namespace marv {

// The stage's own state between its calls: the bitmap in hand survives a
// preview, as the handles do.
struct bitmapStageState {
  int plane = 0, slice = 0;
  std::vector<std::uint32_t> codes;  // the bitmap read at the mesh
  int image = -1;                    // the bitmap as loaded
  screenButton cancel, proceed;
  buttonTiles tiles;
  std::array<bool, maxColourSlots> swatchArmed{};  // a press on the swatch toggles once
  std::array<std::array<int, 3>, maxColourSlots> optionArmed{};
};

// Which of a row's three selectors.
enum colourSelector : int { selectStretch = 0, selectSymmetry = 1, selectInverse = 2 };

// Measures of the colour list from the text size; sets colourBarX.
void layoutColourList(appConfig& cfg);

// Screen centre of an option of a row's selector, and of a row's swatch,
// with the list scrolled by scroll pixels (-1: as it stands); false when
// the row is out of view.
bool colourOptionCentre(const appConfig& cfg, int row, int selector, int option, int& x, int& y, int scroll = -1);
bool colourSwatchCentre(const appConfig& cfg, int row, int& x, int& y, int scroll = -1);

// Pixels the list scrolls per notch of the wheel.
int colourListNotch(const appConfig& cfg);

// The choices of rows not yet shown come from bmp.txt's saved columns (by
// colour code, the last matching row winning); then every row's selected
// options go into StretchPlane, SymmetricPlane and InverseFlag.
void prepareRowChoices(appConfig& cfg);

// One frame of the stage for the bitmap in hand: 0 nothing decided, 1 the
// bitmap is accepted, -1 cancelled, 2 the user asks for the 3D preview.
int bitmapStageFrame(bitmapStageState& stage, appConfig& cfg, const screenInput& in);

// The stage: 1 every bitmap processed, 0 preview and come back, -1 cancelled.
int runBitmapStage(appConfig& cfg);

// The 3D preview while the left button stays down: the live picture drawn
// off-screen at the bitmap stage's size, shown with the plane's inset.
void runBitmapPreview(appConfig& cfg, sceneView& scene, inputState& input, fieldViews& views);

// The small orientation inset drawn over the preview for the plane in hand.
void drawStageInset(const appConfig& cfg);

}  // namespace marv
