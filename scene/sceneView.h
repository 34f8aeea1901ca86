// sceneView: the display object that turns the current fields into one
// picture, redrawn from nothing once per pass of the driver's loops. It is
// built once per pass after bcDomain (constructScene), set up once the
// solver and the domain are ready and after every window size change
// (setUpScene), and drawn by drawFrame in the order that the run relies on:
// quantity and statistics, adaptive time step, the picture, status, prompt
// and help.
//
// Nothing of a frame is allocated while it is drawn: the scratch of the
// picture (boundary vertex arrays, text lines) is sized by setUpScene and
// only reused. The frame reads the fields through the driver's views; the
// four scratch views (8 to 11) are overwritten by it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "app/appConfig.h"
#include "common/gradOperator.h"
#include "domain/bcDomain.h"
#include "layer/layer.h"
#include "result/frameRecords.h"
#include "scene/velocityStatistics.h"
#include "solver/fieldViews.h"
#include "widgets/textBox.h"

namespace marv {

constexpr int numColors = 32;               // entries of the colour scale
constexpr int nonFiniteSlot = numColors;    // colour slot of a NaN or infinite value
constexpr int colourSlots = numColors + 1;  // the scale and the non-finite colour
constexpr int quantityLabelSize = 400;      // characters of the label buffer

// The named drawing colours of the picture.
struct sceneColours {
  std::uint32_t black = 0, white = 0, lightGrey = 0, grey = 0, darkGrey = 0, charcoal = 0;
  std::uint32_t red = 0, softRed = 0, green = 0, navy = 0, magenta = 0, sky = 0;
};
sceneColours makeSceneColours();

// The frame's scratch views: the shown quantity and three work fields.
constexpr int viewDisplay = fieldConvX;
constexpr int viewWorkA = fieldConvY;
constexpr int viewWorkB = fieldConvZ;
constexpr int viewWorkC = fieldDivU;

struct sceneView {
  appConfig* cfg = nullptr;    // the pass's record, not owned
  bcDomain* domain = nullptr;  // not owned
  gradOperator grad;           // derivatives of the quantities

  sceneColours colours;
  std::array<std::uint32_t, colourSlots> colourTable{};   // scale, then the non-finite colour
  std::array<colourRgba, colourSlots> colourTableRgba{};  // the same with alpha bcAlphaUser
  int is3d = 0;                                           // nx, ny and nz all at least 2

  // ---------------------------------------------------------------- quantity
  char quantityLabel[quantityLabelSize] = " ";  // label of the shown quantity
  double valueMax = -1e10, valueMin = 1e10;     // range of the shown quantity
  velocityStatistics stats;                     // of the last frame

  // ---------------------------------------------------------------- world and camera
  double sceneScale = 1.0;  // world units (pixels) per metre
  double cellScale = 1.0;   // world units per mesh cell
  double zoomStep = 1.0;    // camera radius change per wheel notch
  int originX = 0, originY = 0;
  double boxX0 = 0, boxX1 = 0, boxY0 = 0, boxY1 = 0, boxZ0 = 0, boxZ1 = 0;
  std::array<vec3, 8> boxCorners{};
  std::array<vertex3d, 4> floorQuad{};
  std::array<std::uint16_t, 6> floorIndices{0, 1, 2, 0, 2, 3};
  std::uint32_t outlineColour = 0;
  std::uint32_t originColour = 0;
  float azimuthRaw = 0, elevationRaw = 0, azimuth = 0, elevation = 0, cameraDistance = 1;
  vec3 cameraTarget, cameraPosition, cameraUp{0.0f, 1.0f, 0.0f}, cameraPivot;
  int lastMouseX = 0, lastMouseY = 0;  // mouse at the last frame, for drags [px]
  int planeK = 0, planeI = 0, planeJ = 0;
  // Plane picking of the frame: distance from the camera to the point under
  // the mouse on each plane (1e10 when the plane was not hit), that point,
  // and the plane chosen by it.
  double hitDistanceXY = 1e10, hitDistanceYZ = 1e10, hitDistanceXZ = 1e10;
  vec3 pickXY, pickYZ, pickXZ, mouseRayNear, mouseRayFar;
  int selectedXY = 0, selectedYZ = 0, selectedXZ = 0;
  int dragAxis = 0;  // bar of the model's move handle in use: 1 x, 2 y, 3 z, 0 none
  std::uint8_t lightingApplied = 1;
  int placementFlag = 0;    // set by the first placement frame
  int planeTexture = -1;    // floor texture of the preview, not owned
  int resetCameraFlag = 0;  // input asks for the default view
  int plainKeys = 1;        // no modifier held: the wheel zooms

  // ---------------------------------------------------------------- 2D picture
  std::vector<int> cellX0, cellX1;        // pixel columns of each column of cells, nx - 1 of them
  std::vector<int> cellY0, cellY1;        // pixel rows of each row of cells, ny - 1 of them (top, bottom)
  std::vector<std::uint32_t> rowColours;  // colours of one row of cells, nx - 1 of them, scratch of the frame
  std::vector<int> rowSlots;              // their colour table slots, the same
  // The quantity's values the contour of the pending frame is drawn from:
  // the display view is reused (for the boundary field) before the frame is
  // rasterised.
  std::vector<double> contourValues;
  // Boundary cells of each colour id as boxes x1 y1 x2 y2 [px], found once
  // for the flags kept in boundaryFlagsSeen: the domain does not change
  // while a run steps, the check costs one comparison a frame.
  std::vector<int> boundaryFlagsSeen;
  std::array<std::vector<int>, numColourTypes> boundaryCellBoxes;
  std::array<bool, numColourTypes> boundaryCellsKnown{};
  std::vector<float> outlinePoints;  // segment ends of one outline [px], scratch of the frame

  // ---------------------------------------------------------------- boundaries
  std::array<std::vector<vertex3d>, numColourTypes> boundaryVertices;  // three per triangle
  std::array<int, numColourTypes> boundaryVertexCount{};
  std::array<colourRgba, numColourTypes> boundaryDiffuse{};
  std::array<colourRgba, numColourTypes> boundarySpecular{};
  int objectColourR = 15, objectColourG = 200, objectColourB = 230;

  // ---------------------------------------------------------------- help overlay
  int helpOffset = 0, helpLeft = 0, helpTop = 0, helpWidth = 0, helpViewHeight = 0;
  int helpImage = -1, helpListHeight = 0, helpBarWidth = 6;
  int helpBarX = 0, helpThumbHeight = 0, helpThumbY = 0;

  // ---------------------------------------------------------------- particles (filled by the flow objects)
  int lastEmitStep = -10000, emitInterval = 50, particlesReady = 0, seedCount = 0, particlesActive = 0;
  std::vector<float> particlePosition;  // x, y, z of each tracer [m], sized once per pass
  std::vector<double> particleSpeed;    // [m/s]
  std::vector<int> particleState;       // 0 in use, 1 free

  // ---------------------------------------------------------------- text
  const std::string* windowTitle = nullptr;      // the driver's window title, not owned
  textBox promptBox;                             // the quit question with OK and Cancel
  textBox noticeBox;                             // the force and heat-loss notice beside the mouse
  char scratchText[noticeTextSize] = "";         // the notice of this frame; empty when none
  std::string promptText;                        // its text, in the language of the screens
  std::string placementText2d, placementText3d;  // the band of placement mode
  char statusLine1[512] = "";
  char statusLine2[512] = "";
  char titleLine[1024] = "";
};

void constructScene(sceneView& scene, appConfig& cfg, bcDomain& domain);
void setUpScene(sceneView& scene, appConfig& cfg);
// mode -1 bitmap preview, 0 placement, 1 run. Leaves the picture in the
// current draw target.
void drawFrame(sceneView& scene, appConfig& cfg, fieldViews& views, int mode);
// The head of every frame without its picture: the shown quantity with its
// range and statistics, the adaptive deltat and the Courant number.
void frameNumbers(sceneView& scene, appConfig& cfg, fieldViews& views);
void destroyScene(sceneView& scene);

// The viewing range: the manual limits where they are set, else the range
// of the shown quantity.
double rangeLow(const sceneView& scene, const appConfig& cfg);
double rangeHigh(const sceneView& scene, const appConfig& cfg);

// The show flag of boundary colour id (1 to 8; 0 for any other id).
int boundaryShown(const appConfig& cfg, int id);

}  // namespace marv
