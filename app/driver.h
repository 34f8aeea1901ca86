// The main driver: owns every long-lived object and runs one pass after
// another: project choice, parameters, bitmap stage, domain, placement, run,
// teardown. The screens a pass shows come from a stage table, so that the
// window program and the batch runner share every step in between.
#pragma once

#include <memory>
#include <string>

#include "app/appConfig.h"
#include "project/parameterEditor.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "solver/solverCommon.h"
#include "widgets/controlPanel.h"

namespace marv {

// State that outlives a pass.
struct driverState {
  int firstPass = 1;
  std::string productName = productWord;
  std::string windowTitle;
  std::string statusText;
  std::string titleProjectName = "projName";
  std::string startDirectory;  // working directory when the pass began
  std::string chosenFilePath;  // path from a dialog or the project screens
  std::uint8_t newProjectRequest = 0;
  std::uint8_t analysisRequest = 0;
  std::unique_ptr<solverCommon> solver;  // the last pass's solver, destroyed at the next
  fieldViews views{};                    // header copies of the solver's fields
  int runsCompleted = 0;                 // passes whose run loop ended
  int stepsTaken = 0;                    // solver steps of the last run
  double endTime = 0.0;                  // simulated time at the end of the last run [s]
  int refusals = 0;                      // passes that a stage ended early
};

// The objects of a pass that the later stages draw with and act on.
struct passObjects {
  bcDomain* domain = nullptr;
  sceneView* scene = nullptr;
  inputState* input = nullptr;
  controlPanel* panel = nullptr;
  fieldViews* views = nullptr;
};

// The screens of a pass. Each returns the stage's result as the driver
// expects it; a null entry accepts at once.
struct passStages {
  int (*startScreen)(driverState&, appConfig&) = nullptr;                // 2 new, 3 load, 4 analysis, -1 back
  int (*askNewProjectPath)(driverState&) = nullptr;                      // 0 chosen, -1 cancelled
  int (*askExistingProjectPath)(driverState&) = nullptr;                 // 0 chosen, -1 cancelled
  int (*sourceScreen)(driverState&, appConfig&) = nullptr;               // 1 go on
  int (*confirmScreen)(driverState&, appConfig&) = nullptr;              // 1: in the project folder
  int (*parameterEditorScreen)(parameterEditor&, appConfig&) = nullptr;  // 1 accepted
  int (*bitmapStage)(appConfig&) = nullptr;                              // 1 done, 0 preview, -1 cancelled
  void (*bitmapPreview)(appConfig&, passObjects&) = nullptr;             // shown after a result 0
  int (*placementStage)(appConfig&, passObjects&) = nullptr;             // 1 proceed, -1 cancel
  messageSink showMessage = nullptr;                                     // dialog with OK
  void (*runStep)(appConfig&, bool final) = nullptr;  // after each cycle of the run loop; may end the run
  bool onePass = false;                               // stop after the first pass (batch)
  bool writeHistory = true;                           // read and write .history in the start directory
  bool splash = true;                                 // show the splash in the first pass
  bool stopOnFault = false;                           // a diverged flow or a failed write ends the run as refused
  bool drawPicture = true;                            // false: the run computes the frame's numbers but draws nothing
};

// Runs passes until the window closes (or, with onePass, after one pass).
// Returns the process's exit status.
int runDriver(const passStages& stages, driverState& state);

// One pass. Returns 1 when its run ended, 0 when a stage ended it early, -1
// when the window was closed.
int runPass(const passStages& stages, driverState& state);

}  // namespace marv
