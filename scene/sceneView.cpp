// The frame: the drawing order of every pass, for the preview of the bitmap
// stage (mode -1), placement (mode 0) and the run (mode 1).
#include "scene/sceneView.h"
#include "scene/shortcutList.h"

#include <algorithm>

#include "app/catalogue.h"
#include "app/fontSet.h"
#include "scene/boundaries3d.h"
#include "scene/camera3d.h"
#include "scene/colourScale.h"
#include "scene/contour2d.h"
#include "scene/frameHooks.h"
#include "scene/overlays.h"
#include "scene/quantities.h"
#include "scene/statusPanel.h"

namespace marv {

namespace {

constexpr int quitText = 42;         // catalogue: the quit question
constexpr int placement3dText = 51;  // catalogue: the band of 3D placement
constexpr int placement2dText = 52;  // catalogue: the band of 2D placement

std::uint32_t ownColour(const appConfig& cfg, int id) { return colour(cfg.R[id], cfg.G[id], cfg.B[id]); }

// The boundary cells of a 2D picture: in placement every colour of the
// bitmap table, in a run as the show flags say; then the outlines.
void drawBoundaries2d(sceneView& scene, const appConfig& cfg, bool placement) {
  const array3d<int>& flags = scene.domain->bcFlag;
  checkBoundaryFlags(scene, flags);
  if (placement || cfg.showBoundaryFlagUser == 1) drawBoundaryCells(scene, cfg, flags, 8, scene.colours.lightGrey);
  if (placement || cfg.showBoundaryFlagBlack == 1) drawBoundaryCells(scene, cfg, flags, 1, scene.colours.grey);
  for (int id = cfg.firstInletType; id <= cfg.lastInletType; ++id)
    if (placement || boundaryShown(cfg, id) == 1) drawBoundaryCells(scene, cfg, flags, id, ownColour(cfg, id));
  if (!placement && !cfg.polygonFrames) return;
  for (int id = scene.domain->firstType; id < scene.domain->endType && id < numColourTypes; ++id)
    if (cfg.bcTypePresent[id]) drawBoundaryOutline(scene, cfg, scene.domain->outlines[id]);
}

void drawRun3d(sceneView& scene, appConfig& cfg, fieldViews& views) {
  cameraInput(scene, cfg);
  animateCamera(scene, cfg);
  if (cfg.showOrientationAxesFlag == 1) drawOrientationAxes(scene, cfg);
  if (cfg.showOutlineFlag == 1) drawOutline(scene);
  if (cfg.showVectorFlag == 1 || cfg.showCorrVectorFlag == 1) drawFlowVectors3d(scene, cfg, views);
  if (cfg.showStreamlineFlag != 0) drawStreamlines3d(scene, cfg, views);
  if (cfg.showContourPaticlesFlag == 1) drawContourParticles(scene, cfg, views);
  drawPlanes(scene, cfg, views);
  selectPlanesAndProbes(scene, cfg, views);
  if (cfg.showCameraTargetFlag == 1) drawCameraTarget(scene, cfg);
  if (scene.particlesActive == 1 && !cfg.analysisMode) updateParticles(scene, cfg, views);
  if (cfg.showTracerParticleFlag == 1 && !cfg.analysisMode) drawParticles(scene, cfg, views);
  for (int id = 0; id < numColourTypes; ++id)
    if (boundaryShown(cfg, id) == 1)
      drawBoundaryPolygons(scene, cfg, views[viewDisplay], cfg.showQColorOnBoundaryFlag, id);
  drawMeshLines(scene, cfg);
  if (scene.resetCameraFlag == 1) resetCamera(scene, cfg);
}

void drawRun2d(sceneView& scene, appConfig& cfg, fieldViews& views) {
  drawContour2d(scene, cfg, views[viewDisplay]);
  if (cfg.showVectorFlag == 1) drawFlowVectors2d(scene, cfg, views);
  if (cfg.showStreamlineFlag != 0) drawStreamlines2d(scene, cfg, views);
  if (scene.particlesActive == 1 && !cfg.analysisMode) updateParticles(scene, cfg, views);
  if (cfg.showTracerParticleFlag == 1 && !cfg.analysisMode) drawParticles(scene, cfg, views);
  drawBoundaries2d(scene, cfg, false);
  takeProbeClicks2d(scene, cfg, views);
}

void drawPlacement(sceneView& scene, appConfig& cfg, fieldViews& views) {
  scene.placementFlag = 1;
  if (scene.is3d) {
    cameraInput(scene, cfg);
    drawOrientationAxes(scene, cfg);
    drawOutline(scene);
    for (int id = 0; id < numColourTypes; ++id)
      if (cfg.bcTypePresent[id]) drawBoundaryPolygons(scene, cfg, views[viewDisplay], 0, id);
    if (cfg.stlPresent) drawModelHandle(scene, cfg);
    if (scene.resetCameraFlag == 1) resetCamera(scene, cfg);
  } else {
    drawBoundaries2d(scene, cfg, true);
  }
  cfg.drawEndMs = nowMs();
  drawPlacementBand(scene, cfg, scene.is3d ? scene.placementText3d.c_str() : scene.placementText2d.c_str());
}

}  // namespace

sceneColours makeSceneColours() {
  sceneColours c;
  c.black = colour(0, 0, 0), c.white = colour(255, 255, 255), c.lightGrey = colour(200, 200, 200);
  c.grey = colour(160, 160, 160), c.darkGrey = colour(100, 100, 100), c.charcoal = colour(50, 50, 50);
  c.red = colour(255, 0, 0), c.softRed = colour(255, 51, 51), c.green = colour(0, 255, 0);
  c.navy = colour(0, 0, 200), c.magenta = colour(255, 0, 255), c.sky = colour(0, 180, 255);
  return c;
}

int boundaryShown(const appConfig& cfg, int id) {
  switch (id) {
    case 1: return cfg.showBoundaryFlagBlack;
    case 2: return cfg.showBoundaryFlagBlue;
    case 3: return cfg.showBoundaryFlagRed;
    case 4: return cfg.showBoundaryFlagGreen;
    case 5: return cfg.showBoundaryFlagMagenta;
    case 6: return cfg.showBoundaryFlagCyan;
    case 7: return cfg.showBoundaryFlagSTL;
    case 8: return cfg.showBoundaryFlagUser;
    default: return 0;
  }
}

double rangeLow(const sceneView& scene, const appConfig& cfg) {
  return cfg.manualMinFlag ? cfg.manualMinValue : scene.valueMin;
}

double rangeHigh(const sceneView& scene, const appConfig& cfg) {
  return cfg.manualMaxFlag ? cfg.manualMaxValue : scene.valueMax;
}

void constructScene(sceneView& scene, appConfig& cfg, bcDomain& domain) {
  // The driver hands over a fresh record; a pass builds it once.
  scene.cfg = &cfg;
  scene.domain = &domain;
  scene.grad = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  scene.colours = makeSceneColours();
  scene.is3d = cfg.nx >= 2 && cfg.ny >= 2 && cfg.nz >= 2 ? 1 : 0;
  scene.outlineColour = colour(10, 10, 10);
  scene.originColour = colour(255, 255, 10);
  scene.objectColourR = cfg.nonBcObjectColorR;
  scene.objectColourG = cfg.nonBcObjectColorG;
  scene.objectColourB = cfg.nonBcObjectColorB;
  cfg.stepMsSmoothed = 0.0;
  scene.sceneScale = cfg.lx > 0.0 ? cfg.sceneWidth / cfg.lx : 1.0;
  scene.cellScale = cfg.nx > 0 ? static_cast<double>(cfg.sceneWidth) / cfg.nx : 1.0;
  if (scene.is3d) {
    setZBuffer(1);
    setZWrite(1);
    setLighting(1);
    layOutWorld(scene, cfg);
    resetCamera(scene, cfg);
  }
  fillColourTable(scene, cfg);
}

void setUpScene(sceneView& scene, appConfig& cfg) {
  buildFonts(cfg);
  const bool japanese = cfg.uiJapanese != 0;
  scene.promptText = catalogueText(quitText, japanese);
  scene.placementText3d = catalogueText(placement3dText, japanese);
  scene.placementText2d = catalogueText(placement2dText, japanese);
  destroyTextBox(scene.promptBox);
  scene.promptBox = makeTextBox(cfg.textHeight, cfg.fontBody);
  setTextBoxButtons(scene.promptBox, 5);
  // The notice hangs beside the mouse, 21 text heights wide, with no buttons.
  destroyTextBox(scene.noticeBox);
  scene.noticeBox = makeTextBox(cfg.textHeight, cfg.fixedBold);
  setTextBoxButtons(scene.noticeBox, 0);
  scene.noticeBox.placed = 1;
  scene.noticeBox.positionMode = 1;
  scene.noticeBox.frameKind = 1;
  scene.noticeBox.boxX = 0;
  scene.noticeBox.boxWidth = 21 * cfg.textHeight;
  scene.noticeBox.boxHeight = 10 * cfg.textHeight;
  scene.grad = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  layOutCells(scene, cfg);
  preRenderHelpList(scene, cfg);
  if (scene.is3d) {
    setZBuffer(1);
    setZWrite(1);
    setLighting(cfg.useLightingFlag);
    scene.lightingApplied = cfg.useLightingFlag;
    layOutWorld(scene, cfg);
    resetCamera(scene, cfg);
    setBoundaryLook(scene, cfg);
    if (scene.domain != nullptr) sizeBoundaryVertices(scene, *scene.domain);
  }
  setTextInputFont(cfg.fixedBold);
}

void frameNumbers(sceneView& scene, appConfig& cfg, fieldViews& views) {
  extractQuantity(scene, cfg, views);
  // The statistics come first: the adaptive time step of the coming solve
  // is taken from this frame's peaks.
  if (cfg.fixedDeltat == 0 && cfg.ts >= 10) cfg.deltat = adaptiveDeltat(cfg.cfl, cfg.dx, cfg.dy, scene.stats);
  cfg.maxCfl = cfg.deltat * std::max(scene.stats.peakU / cfg.dx, scene.stats.peakV / cfg.dy);
}

void drawFrame(sceneView& scene, appConfig& cfg, fieldViews& views, int mode) {
  frameNumbers(scene, cfg, views);
  if (scene.particlesActive == 0 && cfg.showTracerParticleFlag) scene.particlesActive = 1;
  if (scene.is3d && cfg.useLightingFlag != scene.lightingApplied) {
    setLighting(cfg.useLightingFlag);
    scene.lightingApplied = cfg.useLightingFlag;
  }
  if (scene.domain == nullptr) {
    cfg.drawEndMs = nowMs();
    return;
  }
  if (mode == -1) {
    if (scene.is3d) {
      cameraInput(scene, cfg);
      drawOrientationAxes(scene, cfg);
      drawOutline(scene);
      drawPlacementFloor(scene, cfg);
    }
    cfg.drawEndMs = nowMs();
  } else if (mode == 0) {
    drawPlacement(scene, cfg, views);
  } else {
    if (scene.is3d)
      drawRun3d(scene, cfg, views);
    else
      drawRun2d(scene, cfg, views);
    if (cfg.showForce || cfg.showHeatLoss) reportForceAndHeat(scene, cfg, views);
    drawProbeMarkers(scene, cfg, views);
    cfg.drawEndMs = nowMs();
    drawStatus(scene, cfg);
  }
  if (cfg.quitPromptFlag == 1) {
    const int answer = showTextBox(scene.promptBox, scene.promptText.c_str(), 1, 0);
    if (answer == 1) cfg.quitConfirmed = 1;
    if (answer == -1) cfg.quitPromptFlag = 0;
  }
  if (cfg.showHelpShortcutFlag == 1) drawHelpList(scene, cfg);
}

void destroyScene(sceneView& scene) {
  finishLaterDrawings();  // the contour rows left for the picture read the scene
  deleteImage(scene.helpImage);
  scene.helpImage = -1;
  destroyTextBox(scene.promptBox);
  destroyTextBox(scene.noticeBox);
  for (std::vector<vertex3d>& v : scene.boundaryVertices) std::vector<vertex3d>().swap(v);
  scene.boundaryVertexCount = {};
  scene.cellX0.clear(), scene.cellX1.clear(), scene.cellY0.clear(), scene.cellY1.clear();
  scene.cfg = nullptr;
  scene.domain = nullptr;
}

}  // namespace marv
