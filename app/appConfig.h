// appConfig: the one central record of a pass. The driver builds a fresh one
// at the head of every pass and destroys it at the end; nearly every function
// takes it by reference. Parameters keep the names they have in param.txt,
// display settings the names of their viz.txt keys.
//
// Sections: identity and mode | gas constants | per-colour tables |
// parameters | derived grid and screen | threads | display (viz.txt) |
// layout | run state | colour and bitmap tables | records | timing and input
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "app/backdrop.h"
#include "app/choiceGroup.h"
#include "widgets/imageButton.h"

namespace marv {

constexpr double notGiven = -123456.0;   // a number field that no file set
constexpr double dashValue = -246912.0;  // the value "-": free, no constraint
constexpr int numColourTypes = 9;        // boundary types 0..8 with tables
constexpr int maxColourSlots = 51;       // colour list limit, presets 0..7
constexpr int maxBitmapSlices = 10;      // slices per bitmap plane
constexpr const char* programVersion = "2021R3.0";
constexpr const char* productWord = "Marvanesse+";

struct appConfig;
using messageSink = void (*)(appConfig& cfg, const char* text);  // shows one message with OK

// One row of the bitmap stage's colour list: its swatch and the removal mark.
struct colourRow {
  int x = 0, y = 0, width = 0, height = 0;  // swatch rectangle [px]
  int keep = 1;                             // 0: the colour is to be removed
  int hover = 0;                            // 1 while the mouse rests on the swatch, button up
};

struct appConfig {
  // ---------------------------------------------------------------- identity and mode
  std::string version = programVersion;  // program version text
  int langFlag = 0;                      // 0 automatic, 1 English, other Japanese
  int uiJapanese = 0;                    // screens in Japanese
  int menuJapanese = 0;                  // menu captions in Japanese
  std::string footerText;                // notice at the foot of the project screens
  int footerWidth = 0;                   // its width in the small font [px]
  std::string projectName;               // name of the open project
  std::uint8_t analysisMode = 0;         // 1: replay dumps, never step
  int analysisDirection = 0;             // -1 previous dump, +1 next, 0 stay
  messageSink showMessage = nullptr;     // dialog with one OK button; set by the driver

  // ---------------------------------------------------------------- gas constants
  double molarMass = 0.02897;      // [kg/mol]
  double gasConstant = 8.3144598;  // [J/(mol K)]

  // ---------------------------------------------------------------- per-colour tables, index = boundary type
  int firstInletType = 2;
  int lastInletType = 6;
  std::array<const char*, numColourTypes> bcTypeNames{"Free",   "Black", "Blue", "Red",       "Green",
                                                      "Yellow", "Cyan",  "STL",  "Non-Preset"};
  std::array<double, numColourTypes> bcU{};       // velocity or dashValue [m/s]
  std::array<double, numColourTypes> bcV{};       // [m/s]
  std::array<double, numColourTypes> bcW{};       // [m/s]
  std::array<double, numColourTypes> bcTemp{};    // temperature or dashValue [K]
  std::array<double, numColourTypes> bcMassfr{};  // mass fraction or dashValue
  std::array<double, numColourTypes> bcAge{};     // age value, 0 for every type [s]
  std::array<double, numColourTypes> bcFixU{};    // 1.0 imposed, 0.0 free
  std::array<double, numColourTypes> bcFixV{};
  std::array<double, numColourTypes> bcFixW{};
  std::array<std::uint8_t, numColourTypes> bcFixTemp{};    // 1 temperature imposed
  std::array<std::uint8_t, numColourTypes> bcFixMassfr{};  // 1 mass fraction imposed
  std::array<std::uint8_t, numColourTypes> bcNoFlow{};     // 1 inflow colour with zero velocity
  std::array<int, 10> bcTypePresent{};                     // type t occurs in the case
  double massfrwallk = 0.0;                                // mass fraction of Black walls
  double massfrwall = 0.0;                                 // mass fraction of Non-Preset walls
  double massfrwallSTL = 0.0;                              // mass fraction of the STL surface
  int speciesFlag = 0;                                     // 1 when a species mass fraction is simulated

  // ---------------------------------------------------------------- parameters (param.txt)
  int cmode = 0;                                                            // 0 constant density, 1 thermo-fluid
  int ibm = 1;                                                              // immersed boundary on
  int domx = 1024;                                                          // nominal screen width [px]
  int parallel = 0;                                                         // level of parallelism 0..4
  int nprocs = 0;                                                           // threads asked for, 0 none
  int npx = 0;                                                              // tiles along x
  int npy = 0;                                                              // tiles along y
  int npz = 0;                                                              // tiles along z
  int nx = 1;                                                               // mesh points along x
  int ny = 1;                                                               // mesh points along y
  int nz = 1;                                                               // mesh points along z
  double lx = 1.0;                                                          // domain size [m]
  double ly = 1.0;                                                          // [m]
  double lz = 1.0;                                                          // [m]
  double deltat = 0.0;                                                      // time step [s]
  int sts = 0;                                                              // start step
  int latts = 300;                                                          // end step
  double cfl = 0.25;                                                        // target Courant number
  int nfil = 0;                                                             // filter interval [steps]
  double wfil = 0.0;                                                        // filter weight
  int npfil = 0;                                                            // pressure filter interval [steps]
  double wpfil = 0.0;                                                       // pressure filter weight
  double omega = 1.8;                                                       // over-relaxation factor
  double peps = 1.0e-6;                                                     // pressure tolerance
  int loopmax = 1000;                                                       // pressure sweep limit
  double presw = 100000.0;                                                  // mean pressure [Pa]
  double uinw = 0.0, vinw = 0.0, winw = 0.0;                                // initial velocity [m/s]
  double rhow = 1.0;                                                        // density [kg/m^3]
  double tempw = 300.0;                                                     // initial temperature [K]
  double massfrw = 0.0;                                                     // initial mass fraction
  double uinb = 0.0, vinb = 0.0, winb = 0.0, tempb = 300.0, massfrb = 0.0;  // Blue inflow
  double uinr = 0.0, vinr = 0.0, winr = 0.0, tempr = 300.0, massfrr = 0.0;  // Red inflow
  double uing = 0.0, ving = 0.0, wing = 0.0, tempg = 300.0, massfrg = 0.0;  // Green inflow
  double uiny = 0.0, viny = 0.0, winy = 0.0, tempy = 300.0, massfry = 0.0;  // Yellow inflow
  double uinc = 0.0, vinc = 0.0, winc = 0.0, tempc = 300.0, massfrc = 0.0;  // Cyan inflow
  double tempwallk = 300.0;                                                 // Black wall temperature [K]
  double tempwall = 300.0;                                                  // Non-Preset wall temperature [K]
  double tempwallSTL = 300.0;                                               // STL wall temperature [K]
  double xoffstSTL = 0.0, yoffstSTL = 0.0, zoffstSTL = 0.0;                 // model offset [m]
  int normVecDirSTL = 0;                                                    // 1: model normals point inward
  int coordSTL = 0;                                                         // 1: model in left-handed coordinates
  int unitSTL = 0;                                                          // model unit: m, cm, mm, inch, ft
  double xRotSTL = 0.0, yRotSTL = 0.0, zRotSTL = 0.0;                       // model rotation [deg]
  double mu = 1.0e-5;                                                       // dynamic viscosity [kg/(m s)]
  double pr = 0.7;                                                          // Prandtl number
  double sc = 1.0;                                                          // Schmidt number
  double cs = 0.17;                                                         // Smagorinsky constant, dashValue when off
  double sct = 0.7;                 // turbulent Schmidt number, dashValue when off
  int nfig = 1000;                  // image interval [steps]
  int nfile = 1000;                 // dump interval [steps]
  int ndiv = 4;                     // display sampling interval [nodes]
  double gfx = 0.0;                 // body force [m/s^2]
  double gfy = 0.0;                 // [m/s^2]
  float presRelax = 1.0f;           // pressure evolution relaxation
  int openPresFlag = 0;             // 1: Dirichlet pressure on open faces
  std::uint8_t presAdjustFlag = 1;  // 1: hold the mean pressure at presw
  double wfilWallBC = 0.25;         // wall construction filter weight
  int inumColorsThresMax = 10;      // colour purge threshold
  int mLoopMax = 7;                 // mask filter passes
  float bcFactor = 0.95f;           // boundary build factor
  std::uint8_t ageFlag = 0;         // 1: simulate the age variable

  // ---------------------------------------------------------------- derived grid and screen
  double dx = 1.0, dy = 1.0, dz = 1.0;         // mesh spacing [m]
  int ndivX = 4, ndivY = 4, ndivZ = 4;         // display sampling per axis [nodes]
  std::vector<double> xCoord, yCoord, zCoord;  // node coordinates [m]
  std::vector<float> pixelX, pixelY, pixelZ;   // node screen positions [px]
  int pixPerCell = 0;                          // [px]
  double pixPerMetre = 0.0;                    // [px/m]
  int domPixX = 0, domPixY = 0, domPixZ = 0;   // domain on screen [px]
  int domPixW = 0, domPixH = 0;                // drawn domain area [px]
  int bitmapScreenWidth = 0;                   // bitmap stage window [px]
  int bitmapScreenHeight = 0;                  // [px]

  // ---------------------------------------------------------------- threads
  int maxThreads = 1;                                               // what the runtime offers
  int numThreads = 1;                                               // threads of the solver
  std::vector<int> threadX, threadY, threadZ;                       // tile coordinates per thread
  std::vector<int> tileI0, tileI1, tileJ0, tileJ1, tileK0, tileK1;  // tile ranges per thread

  // ---------------------------------------------------------------- display (viz.txt)
  std::uint8_t useLightingFlag = 0;
  std::uint8_t polygonFrames = 1;
  int showOutlineFlag = 1;
  int showOrientationAxesFlag = 1;
  int showCameraTargetFlag = 0;
  int showBoundaryFlagUser = 1;
  int showBoundaryFlagBlack = 0;
  int showBoundaryFlagBlue = 0;
  int showBoundaryFlagRed = 0;
  int showBoundaryFlagGreen = 0;
  int showBoundaryFlagMagenta = 0;
  int showBoundaryFlagCyan = 0;
  int showBoundaryFlagSTL = 1;
  int showQColorOnBoundaryFlag = 0;
  int showVectorFlag = 0;
  int showCorrVectorFlag = 0;
  double CorrVectorThres = 0.99;
  double miniVecSizeScaling = 0.2;
  int showTracerParticleFlag = 0;
  int numTracerParticles = 2000;
  int showContourPaticlesFlag = 0;
  double particleSize = 0.1;
  int particleDivNum = 8;
  int showStreamlineFlag = 0;
  float streamLineThickness = 0.0f;
  int nLoopStreamline = 1;
  int minMaxFlag = 0;
  int scanningPixelWidthIBM = 5;
  int showGhostSolidFlag = 0;
  int nonBcObjectColorFlag = 0;
  int nonBcObjectColorR = 15;
  int nonBcObjectColorG = 200;
  int nonBcObjectColorB = 230;
  int showIsoSurfacesFlag = 0;
  int showCrosssectionXYFlag = 1;
  double zCrosssectionXY = 0.0;  // [m]
  int showCrosssectionYZFlag = 0;
  double xCrosssectionYZ = 0.0;  // [m]
  int showCrosssectionXZFlag = 0;
  double yCrosssectionXZ = 0.0;  // [m]
  int showCrosssectionVectorFlag = 1;
  int showHelpShortcutFlag = 0;
  int dispQuantFlag = 5;
  int animationRotationFlag = 0;
  int ndivDrawMeshForGraphic = 0;
  int bcAlphaSTL = 255;
  int bcAlphaUser = 255;
  int bcAlphaK = 130;
  std::uint8_t manualMinFlag = 0;
  double manualMinValue = 0.0;
  std::uint8_t manualMaxFlag = 0;
  double manualMaxValue = 0.0;
  float cameraTheta0 = 0.0f;
  float CameraTheta1 = 0.0f;
  float cameraRadius = 0.0f;
  float cameraPosX = 0.0f, cameraPosY = 0.0f, cameraPosZ = 0.0f;
  float cameraTargetX = 0.0f, cameraTargetY = 0.0f, cameraTargetZ = 0.0f;
  float cameraPerspectiveDeg = 60.0f;  // [deg]
  int probeRecordInterval = 10;        // [steps]
  int numProbes = 0;
  int forceRecInterval = 10;  // [steps]
  std::uint8_t showForce = 0;
  int numRecForce = 0;
  int heatLossRecInterval = 10;  // [steps]
  std::uint8_t showHeatLoss = 0;
  int numRecHeatLoss = 0;

  // ---------------------------------------------------------------- layout (from textHeight)
  int textHeight = 20;                                                       // [px]
  int textGap = 6;                                                           // [px]
  int buttonSize = 64;                                                       // [px]
  int startWidth = 1080, startHeight = 560;                                  // project screens [px]
  int sceneWidth = 1080, sceneHeight = 560;                                  // [px]
  int screenWidth = 1080, screenHeight = 560;                                // run window [px]
  int marginLeft = 10, marginRight = 10, marginTop = 10, marginBottom = 21;  // [px]
  int bitmapGap = 5;                                                         // [px]
  int bottomStrip = 63;                                                      // [px]
  int colourBarX = 320;                                                      // [px]
  int listGap = 3;                                                           // [px]
  int cancelX = 0, cancelY = 0, proceedX = 0, proceedY = 0;                  // default button places [px]
  choiceGroup unitSelector;                                                  // m, cm, mm, inch, feet

  // ---------------------------------------------------------------- fonts (made by buildFonts; -1 not made)
  int fontThickness = 4;
  int logoSize = 0, logoPlusSize = 0, smallSize = 0, mediumSize = 0;  // [px]
  int titleSize = 0, captionSize = 0, tinySize = 0;                   // [px]
  int fontBody = -1, fontBold = -1, fontTiny = -1, fontCaption = -1, fontHeading = -1, fontTitle = -1;
  int fixedBold = -1, fixedCaption = -1, fixedTiny = -1, fixedHeading = -1, fixedTitle = -1, fixedBody = -1;
  int fixedSmall = -1, logoFont = -1, logoPlusFont = -1;
  int fixedInput = -1;  // the same handle as fixedHeading

  // ---------------------------------------------------------------- screen frame (pictures, buttons, backdrop)
  std::uint32_t panelColour = packedColour(41, 57, 85);  // dark blue of panels, thumbs and strips
  std::uint32_t greyColour = packedColour(80, 80, 80);   // grey of frame texts
  int buttonTileSize = 64;                               // cell of the button picture [px]
  int buttonTilesAcross = 10, buttonTilesDown = 2;       // cells of the button picture
  int buttonTileCount = 20;                              // tile 19 is the pressed look of all buttons
  std::array<int, 20> buttonTiles{};                     // image handles, 0 until loaded
  std::array<imageButton, 13> buttons{};                 // Up, Down, Cancel, Proceed, Add, Remove, ... (screenFrame)
  int proceedHintStartMs = -1;                           // first showing of the proceed hint, -1 not yet [ms]
  backdropState backdrop;                                // circles of the project screens' backdrop

  // ---------------------------------------------------------------- run state
  double time = 0.0;               // simulated time [s]
  int fixedDeltat = 0;             // 1: deltat given, never adapted
  int ts = 0;                      // step counter
  double presResidual = -1.0e10;   // last pressure change
  int presIterations = 0;          // sweeps of the last step
  double maxCfl = 0.0;             // Courant number of the last frame
  std::string absProjPath = "./";  // last project (.history)

  // ---------------------------------------------------------------- colour and bitmap tables
  int iNumBcColor = 8;  // colour list entries in use
  std::array<std::uint32_t, maxColourSlots> ColorsCodes{};
  std::array<int, maxColourSlots> R{}, G{}, B{};
  std::array<int, maxColourSlots> colorPoints{};
  std::array<int, maxColourSlots> StretchPlane{}, SymmetricPlane{}, InverseFlag{};
  std::array<std::uint32_t, maxColourSlots> savedColorsCodes{};
  std::array<int, maxColourSlots> savedStretchPlane{}, savedSymmetricPlane{}, savedInverseFlag{};
  std::array<std::uint32_t, maxColourSlots> RemovedColorCodes{};
  int numRemovedColors = 0;                                   // entries of RemovedColorCodes in use, at most 50
  std::array<choiceGroup, maxColourSlots> stretchSelectors;   // "XY" "YZ" "ZX" "OFF"
  std::array<choiceGroup, maxColourSlots> symmetrySelectors;  // "XY" "YZ" "ZX" "OFF"
  std::array<choiceGroup, maxColourSlots> inverseSelectors;   // "ON" "OFF"
  std::vector<std::int32_t> bitmapXY, bitmapYZ, bitmapZX;     // colour codes, 10 slices each
  std::array<colourRow, maxColourSlots> colorRows;            // on-screen rows of the colour list
  std::vector<int> colorInBitmap = std::vector<int>(maxColourSlots * maxBitmapSlices * 3, 0);  // (c*10+b)*3+plane
  int stageInterrupted = 0;                                  // 1 while the bitmap stage is away for a preview
  int stagePlane = 0, stageSlice = 0;                        // where the bitmap stage resumes
  int progressTotal = 0;                                     // refreshes of the progress line to come
  int progressCount = 0;                                     // refreshes done
  int progressRows = 3;                                      // bars of the progress line
  int progressToTerminal = 0;                                // 1: the progress line also goes to stderr
  int stlPresent = 0;                                        // 1 when bc.stl was loaded
  double stlDeltaX = 0.0, stlDeltaY = 0.0, stlDeltaZ = 0.0;  // model move asked for this frame [m]

  // ---------------------------------------------------------------- records (force, heat loss)
  std::array<int, numColourTypes> forceRecFlag{};     // colour takes part in force.txt
  std::array<int, numColourTypes> heatLossRecFlag{};  // colour takes part in heatLoss.txt
  std::array<double, numColourTypes> forceValues{};   // last force per colour [N]
  std::array<double, numColourTypes> heatValues{};    // last heat loss per colour [W]

  // ---------------------------------------------------------------- timing and input
  double stepMsSmoothed = 0.0;                          // smoothed time per step [ms]
  int solveStartMs = 0, solveEndMs = 0, drawEndMs = 0;  // [ms]
  int lastKeyMs = 0;                                    // debounce stamp [ms]
  int keyDelayMs = 400;                                 // [ms]
  int quitPromptFlag = 0;
  int quitConfirmed = 0;
  int inputBusy = 0;
  int panelBusy = 0;
  int snapshotRequested = 0;
  // The frame's input, rewritten by handleFrameInput at the head of each frame.
  int mouseX = 0, mouseY = 0;                  // pointer in the client area [px]
  int mouseXPrev = 0, mouseYPrev = 0;          // pointer of the previous frame [px]
  float wheelDelta = 0.0f;                     // wheel notches since the last frame, signed
  std::uint8_t mouseLeft = 0, mouseRight = 0;  // button held
  std::uint8_t shiftDown = 0, ctrlDown = 0;    // left or right Shift, Ctrl held
  std::uint8_t mouseInScreen = 0;              // 1 <= mouseX < screenWidth and 1 <= mouseY < screenHeight
  int leftDrag = 0, rightDrag = 0;             // camera drags in force
  int plainKeys = 0;                           // neither Shift nor Ctrl held, help list closed
  int leftClick = 0, rightClick = 0;           // a click ended in this frame
};

// Builds the record of a pass: every default, the history file read from the
// working directory, and the layout from the text size.
void constructAppConfig(appConfig& cfg, bool firstPass, bool useHistory = true);

// Frees what the pass allocated in the record; nothing is used after it.
void destroyAppConfig(appConfig& cfg);

// Layout values that follow from textHeight.
void computeLayout(appConfig& cfg);

}  // namespace marv
