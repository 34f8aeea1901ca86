// The placement loop and its buttons.
#include "domain/placementScreen.h"

#include <cstdlib>

#include "domain/modelPlacement.h"
#include "layer/layer.h"
#include "result/stepResults.h"

namespace marv {

namespace {

constexpr int modelSurface = 7;  // the STL type's surface

int unitStep(const appConfig& cfg) {
  return cfg.textHeight / 3 * 2 + cfg.textGap + textWidthInFont(cfg.fixedCaption, "inch");
}

}  // namespace

placementLayout layoutPlacement(const appConfig& cfg) {
  placementLayout l;
  const int b = cfg.buttonSize, g = cfg.textGap;
  l.size = b;
  l.cancelX = static_cast<int>(cfg.screenWidth - 2.8 * b);
  l.y = static_cast<int>(cfg.screenHeight - 1.8 * b);
  l.proceedX = l.cancelX + b + g;
  l.rotX[0] = l.cancelX - 3 * b - 5 * g;
  l.rotX[1] = l.cancelX - 2 * b - 4 * g;
  l.rotX[2] = l.cancelX - b - 3 * g;
  l.centreX = l.cancelX - 4 * b - 6 * g;
  l.unitX = l.rotX[0];
  l.unitY = l.y - cfg.textHeight - 2 * g;
  return l;
}

void unitOptionCentre(const appConfig& cfg, int option, int& x, int& y) {
  const placementLayout l = layoutPlacement(cfg);
  x = l.unitX + option * unitStep(cfg) + cfg.textHeight / 3;
  y = l.unitY + cfg.textHeight / 2;
}

void applyDragMove(bcDomain& domain, appConfig& cfg) {
  cfg.stlDeltaZ = -cfg.stlDeltaZ;
  cfg.xoffstSTL += cfg.stlDeltaX;
  cfg.yoffstSTL += cfg.stlDeltaY;
  cfg.zoffstSTL += cfg.stlDeltaZ;
  translateModel(domain.surfaces[modelSurface], static_cast<float>(cfg.stlDeltaX), static_cast<float>(cfg.stlDeltaY),
                 static_cast<float>(cfg.stlDeltaZ));
}

int placementControls(placementState& st, bcDomain& domain, appConfig& cfg, const screenInput& in) {
  const placementLayout l = layoutPlacement(cfg);
  if (cfg.stlPresent) {
    // The unit selector: a click on an option changes the unit at once.
    const int radius = cfg.textHeight / 3;
    for (int o = 0; o < cfg.unitSelector.count; ++o) {
      int cx = 0, cy = 0;
      unitOptionCentre(cfg, o, cx, cy);
      const bool under = std::abs(in.mouseX - cx) <= radius + 2 && std::abs(in.mouseY - cy) <= radius + 2;
      if (under && !in.left) st.unitArmed = o + 1;
      if (under && in.left && st.unitArmed == o + 1) {
        cfg.unitSelector.selected = o;
        st.unitArmed = 0;
      }
      drawCircle(cx, cy, radius, colour(0, 120, 200), cfg.unitSelector.selected == o ? 1 : 0, 2);
      drawText(cx + radius + 2, l.unitY, cfg.unitSelector.labels[o].c_str(), colour(50, 50, 50), cfg.fixedCaption, 0,
               0);
    }
    if (cfg.unitSelector.selected != cfg.unitSTL) rescaleModel(domain, cfg);
  }
  const bool cancel = clickButton(st.cancel, l.cancelX, l.y, l.size, in);
  const bool proceed = clickButton(st.proceed, l.proceedX, l.y, l.size, in);
  drawScreenButton(st.cancel, st.tiles, tileCancel, "Cancel", cfg.fontCaption);
  drawScreenButton(st.proceed, st.tiles, tileProceed, "Proceed", cfg.fontCaption);
  const int outcome = proceed ? 1 : (cancel ? -1 : 0);
  if (cfg.stlPresent) {
    const int tiles[3] = {tileRotX, tileRotY, tileRotZ};
    void (*turns[3])(bcDomain&, appConfig&) = {turnModelX, turnModelY, turnModelZ};
    for (int axis = 0; axis < 3; ++axis) {
      if (clickButton(st.rot[axis], l.rotX[axis], l.y, l.size, in)) turns[axis](domain, cfg);
      drawScreenButton(st.rot[axis], st.tiles, tiles[axis], "Rot STL", cfg.fontCaption);
    }
    if (clickButton(st.centre, l.centreX, l.y, l.size, in)) centreModel(domain, cfg);
    drawScreenButton(st.centre, st.tiles, tileCentre, "Centering", cfg.fontCaption);
  }
  return outcome;
}

int runPlacement(appConfig& cfg, bcDomain& domain, sceneView& scene, inputState& input, controlPanel& panel,
                 fieldViews& views) {
  placementState st;
  loadButtonTiles(st.tiles);
  cfg.unitSelector.selected = cfg.unitSTL;
  int outcome = 0;
  // A press that began on the screen before does not count here.
  while (outcome == 0) {
    setDrawTarget(backBuffer);
    cfg.solveStartMs = cfg.solveEndMs = nowMs();
    handleFrameInput(input, cfg);
    drawFrame(scene, cfg, views, 0);
    if (cfg.stlPresent) applyDragMove(domain, cfg);
    runControlPanel(panel, cfg);
    if (cfg.snapshotRequested && cfg.ts <= cfg.latts) saveSnapshot(cfg);
    const screenInput in = readScreenInput();
    outcome = placementControls(st, domain, cfg, in);
    endScreenFrame();
    if (keyDown(keyEsc)) outcome = -1;
    if (keyDown(keyEnter) && nowMs() - cfg.lastKeyMs > cfg.keyDelayMs) outcome = 1;
  }
  cfg.lastKeyMs = nowMs();
  freeButtonTiles(st.tiles);
  return outcome;
}

}  // namespace marv
