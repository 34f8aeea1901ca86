// The main driver's passes and the run loop. Every stage is called in the
// order of a pass; stages report through their results and appConfig only.
#include "app/driver.h"

#include <unistd.h>

#include <climits>
#include <cmath>
#include <cstdio>

#include "app/fontSet.h"
#include "app/menuCommands.h"
#include "domain/bcDomain.h"
#include "domain/bitmapDomain.h"
#include "domain/bmpTxt.h"
#include "domain/prepareInputs.h"
#include "layer/layer.h"
#include "project/historyFile.h"
#include "project/parameterFile.h"
#include "project/parameterTable.h"
#include "project/vizFile.h"
#include "result/dumpFiles.h"
#include "result/forceRecord.h"
#include "result/frameRecords.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"
#include "result/stepResults.h"
#include "scene/inputState.h"
#include "scene/velocityStatistics.h"
#include "widgets/controlPanel.h"

namespace marv {

namespace {

constexpr int frameWaitMs = 0;  // wait at the end of each frame: none, the loops only yield

// Fetch order of the views after a solver is built: always, then by mode.
constexpr int alwaysViews[] = {fieldU, fieldV, fieldW, fieldP, fieldY, fieldConvX, fieldConvY, fieldConvZ, fieldDivU};

std::string currentDirectory() {
  char buffer[4096];
  return getcwd(buffer, sizeof buffer) ? std::string(buffer) : std::string();
}

// The presentation rule: about 30 updates per second, every frame while
// something holds the run.
bool presentThisStep(const appConfig& cfg) {
  if (cfg.quitPromptFlag == 1 || cfg.showHelpShortcutFlag == 1 || cfg.inputBusy == 1 || cfg.panelBusy == 1) return true;
  const double q = 33.0 / cfg.stepMsSmoothed;
  if (!(q < 2147483648.0 && q > -2147483649.0)) return false;  // infinite or out of range: negative
  const int interval = static_cast<int>(q);
  if (interval == 0) return true;
  return interval > 0 && cfg.ts % interval == 0;
}

bool running(const appConfig& cfg) {
  return cfg.quitPromptFlag == 0 && cfg.showHelpShortcutFlag == 0 && cfg.inputBusy == 0 && cfg.panelBusy == 0 &&
         cfg.analysisMode == 0;
}

// Marks the run as diverged at the first frame whose velocity peaks are not
// finite; true while it is.
bool noteDivergence(appConfig& cfg, const velocityStatistics& stats) {
  if (cfg.diverged == 0 && !peaksFinite(stats)) {
    cfg.diverged = 1;
    cfg.divergedStep = cfg.ts;
    cfg.divergedTime = cfg.time;
  }
  return cfg.diverged != 0;
}

// The run (step 23 of a pass). Returns -1 when the window was closed.
int runLoop(const passStages& stages, driverState& state, appConfig& cfg, sceneView& scene, inputState& input,
            controlPanel& panel, bcDomain& domain) {
  if (cfg.analysisMode) {
    cfg.ts = cfg.latts > INT_MAX - 100 ? INT_MAX : cfg.latts + 100;
    cfg.analysisDirection = -1;
  }
  for (;;) {
    if (!cfg.analysisMode) {
      if (cfg.sts != 0 && readDump(cfg, state.views, cfg.sts) == -1) return 0;
    } else {
      const int target = nearestDump(cfg.ts, cfg.latts, cfg.analysisDirection);
      cfg.sts = target;
      cfg.analysisDirection = 0;
      if (readDump(cfg, state.views, target) == -1) return 0;
    }
    cfg.solveStartMs = cfg.solveEndMs = nowMs();

    for (cfg.ts = cfg.sts;; ++cfg.ts) {
      if (cfg.ts > cfg.latts) break;
      const int inputResult = handleFrameInput(input, cfg);
      // The frame measures the force and heat loss that writeStepResults
      // records below; without a picture only its numbers are taken.
      if (stages.drawPicture) {
        drawFrame(scene, cfg, state.views, 1);
      } else {
        frameNumbers(scene, cfg, state.views);
        computeRecordValues(cfg, domain, state.views);
      }
      if (noteDivergence(cfg, scene.stats) && stages.stopOnFault && !cfg.analysisMode) {
        // Nothing of this step is written: the last dump on disk is the
        // last good state of the flow.
        char text[160];
        std::snprintf(text, sizeof text, "the flow diverged at step %d, t = %e s: lower cfl or deltat",
                      cfg.divergedStep, cfg.divergedTime);
        if (stages.showMessage) stages.showMessage(cfg, text);
        if (stages.runStep) stages.runStep(cfg, true);
        return 0;
      }
      runControlPanel(panel, cfg);
      if (cfg.snapshotRequested) {
        if (cfg.ts <= cfg.latts) saveSnapshot(cfg);
        cfg.snapshotRequested = 0;
      }
      const bool stepping = running(cfg);
      // The boundary field goes into view 8, from where the dump stores it.
      const array3d<double>& display = state.views[viewBc];
      if (stepping && display.data != nullptr && display.count() == domain.bcField.count())
        copyFrom(display, static_cast<const array3d<double>&>(domain.bcField));
      if (!writeStepResults(cfg, state.views) && stages.stopOnFault) {
        if (stages.runStep) stages.runStep(cfg, true);
        return 0;
      }
      if (presentThisStep(cfg)) present();
      clearDrawTarget();
      cfg.solveStartMs = nowMs();
      if (stepping) {
        if (state.solver) state.solver->step();
        cfg.time += cfg.deltat;
        ++state.stepsTaken;
      } else {
        --cfg.ts;  // the same step comes again
      }
      cfg.solveEndMs = nowMs();
      if (stages.runStep) stages.runStep(cfg, false);
      waitMs(frameWaitMs);
      if (processMessages() == -1) return -1;
      if (inputResult == -1) break;
      if (cfg.analysisMode && cfg.analysisDirection != 0) {
        cfg.ts = cfg.sts;
        break;
      }
      if (cfg.ts == INT_MAX) break;  // latts at the top of the range: nothing lies beyond
    }
    if (stages.runStep) stages.runStep(cfg, true);
    waitMs(1);
    if (processMessages() == -1) return -1;
    if (!(cfg.analysisMode && cfg.analysisDirection != 0)) return 1;
  }
}

// Fetches the views of the new solver, null for those its mode lacks.
void fetchViews(driverState& state, const appConfig& cfg) {
  state.views = fieldViews{};
  if (!state.solver) return;
  for (int index : alwaysViews) state.views[index] = *state.solver->field(index);
  if (cfg.cmode == 1) {
    state.views[fieldRho] = *state.solver->field(fieldRho);
    state.views[fieldT] = *state.solver->field(fieldT);
  }
  if (cfg.ageFlag) state.views[fieldAge] = *state.solver->field(fieldAge);
}

}  // namespace

int runPass(const passStages& stages, driverState& state) {
  state.solver.reset();
  state.views = fieldViews{};
  state.windowTitle = state.productName;
  state.statusText = "This shows current status of the software!";
  setDrawTarget(backBuffer);
  state.newProjectRequest = 0;
  state.analysisRequest = 0;
  state.chosenFilePath.clear();

  appConfig cfg;
  constructAppConfig(cfg, state.firstPass != 0 && stages.splash, stages.writeHistory);
  cfg.showMessage = stages.showMessage;
  state.firstPass = 0;
  state.windowTitle += " (" + cfg.version + ")";
  setWindowText(state.windowTitle.c_str());
  state.startDirectory = currentDirectory();
  setWindowMenu(101);
  localiseMenu(cfg.menuJapanese, cfg.uiJapanese);

  int outcome = 0;
  auto endPass = [&](int result) {
    destroyAppConfig(cfg);
    if (!state.startDirectory.empty() && chdir(state.startDirectory.c_str()) != 0) {
      std::fprintf(stderr, "marvanesse: cannot return to %s\n", state.startDirectory.c_str());
    }
    return result;
  };

  // Project choice.
  for (;;) {
    const int r = stages.startScreen ? stages.startScreen(state, cfg) : 3;
    if (r == -1) return endPass(0);
    if (r == 2) {
      if (stages.askNewProjectPath && stages.askNewProjectPath(state) == 0) {
        state.newProjectRequest = 1;
        state.analysisRequest = 0;
        break;
      }
      continue;
    }
    if (r == 3 || r == 4) {
      if (!stages.askExistingProjectPath || stages.askExistingProjectPath(state) == 0) {
        state.newProjectRequest = 0;
        state.analysisRequest = r == 4 ? 1 : 0;
        break;
      }
      continue;
    }
    break;
  }
  cfg.lastKeyMs = nowMs();
  for (int id : {40006, 40009, 40010}) setMenuItemEnabled(id, 0);
  cfg.analysisMode = state.analysisRequest;

  if (stages.sourceScreen && stages.sourceScreen(state, cfg) != 1) return endPass(0);
  if (stages.confirmScreen && stages.confirmScreen(state, cfg) != 1) return endPass(0);
  if (stages.writeHistory) syncHistory(cfg, 1, state.startDirectory);
  removeDumpLeftovers();

  state.titleProjectName = cfg.projectName;
  state.windowTitle += " | " + state.titleProjectName;
  state.windowTitle += cfg.analysisMode ? " | Analysis Mode" : " | Simulation Mode";
  setWindowText(state.windowTitle.c_str());

  parameterEditor editor;
  resetParameterEditor(editor);
  const int edited = stages.parameterEditorScreen ? stages.parameterEditorScreen(editor, cfg) : -1;
  if (edited != 1) return endPass(0);

  bcDomain domain;
  constructDomain(domain, cfg);
  sceneView scene;
  constructScene(scene, cfg, domain);
  scene.windowTitle = &state.windowTitle;
  inputState input;
  input.scene = &scene;
  resetInputState(input);
  // The choices of the records come back from the tails of the record files.
  readProbeSetup(cfg);
  readForceSetup(cfg);
  readHeatLossSetup(cfg);

  // Bitmap and solver cycle.
  int r = 0;
  for (;;) {
    r = stages.bitmapStage ? stages.bitmapStage(cfg) : 1;
    if (r == -1) {
      destroyScene(scene);
      return endPass(0);
    }
    if (r == 1) {
      // The window takes the run's size, centred where the bitmap stage stood.
      int x = 0, y = 0;
      windowPosition(&x, &y);
      setGraphicsMode(cfg.screenWidth, cfg.screenHeight, 32, 60);
      const int cx = x + (cfg.colourBarX + cfg.bitmapScreenWidth) / 2, cy = y + cfg.bitmapScreenHeight / 2;
      setWindowPosition(cx - cfg.screenWidth / 2, cy - cfg.screenHeight / 2);
      setDrawTarget(backBuffer);
      present();
      clearDrawTarget();
      buildFonts(cfg);
    }
    state.solver = makeSolver(cfg, domain);
    fetchViews(state, cfg);
    prepareFromInputs(domain, cfg);
    setUpScene(scene, cfg);
    if (r != 0) break;
    // The preview, while the button is held; then the same bitmap again.
    if (stages.bitmapPreview) {
      passObjects objects{&domain, &scene, &input, nullptr, &state.views};
      stages.bitmapPreview(cfg, objects);
    }
    state.solver.reset();
    state.views = fieldViews{};
  }

  controlPanel panel;
  panel.scene = &scene;
  constructControlPanel(panel, cfg);
  writeBmpTxt(cfg);
  syncViz(cfg, 1);
  passObjects objects{&domain, &scene, &input, &panel, &state.views};
  const int placed = stages.placementStage ? stages.placementStage(cfg, objects) : 1;
  if (placed == 1) {
    if (!cfg.analysisMode) {
      // The placement values go back into the list: offsets and angles by
      // "%e", the unit by "%i".
      for (int i = 0; i < editor.count; ++i) {
        parameterEntry& e = editor.entries[i];
        const bool placement = (e.index >= paramXoffstSTL && e.index <= paramZoffstSTL) ||
                               (e.index >= paramUnitSTL && e.index <= paramZRotSTL);
        if (!placement) continue;
        char text[64];
        if (e.index == paramUnitSTL)
          std::snprintf(text, sizeof text, "%i", cfg.unitSTL);
        else
          std::snprintf(text, sizeof text, "%e", parameterFieldValue(cfg, e.index));
        e.value = text;
      }
      std::string losses;
      reportParameterWrite(cfg, writeParameterFile(editor, cfg.version, &losses), losses);
    }
    // Final domain construction: boundary types, image points, node lists.
    if (cfg.nz == 1)
      build2D(domain, cfg);
    else
      build3D(domain, cfg);
    state.stepsTaken = 0;
    const int ran = runLoop(stages, state, cfg, scene, input, panel, domain);
    state.endTime = cfg.time;
    if (ran == -1) return -1;
    outcome = ran;
  }
  destroyControlPanel(panel);
  destroyScene(scene);
  return endPass(outcome);
}

int runDriver(const passStages& stages, driverState& state) {
  for (;;) {
    const int result = runPass(stages, state);
    if (result == -1) {
      stopLayer();
      return 0;
    }
    if (result == 1)
      ++state.runsCompleted;
    else
      ++state.refusals;
    if (stages.onePass || state.startDirectory.empty()) {
      stopLayer();
      return result == 1 ? 0 : 1;
    }
  }
}

}  // namespace marv
