// The window program's stages. The wizard lives for one pass: it is made
// anew by the start screen at the head of each pass.
#include "app/windowStages.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

#include "app/fileChooser.h"
#include "app/menuCommands.h"
#include "app/screenKit.h"
#include "domain/bitmapStageScreen.h"
#include "domain/placementScreen.h"
#include "project/parameterEditorScreen.h"
#include "project/projectWizard.h"

namespace marv {

namespace {

projectWizard wizard;
appConfig* passConfig = nullptr;  // the record of the pass, for the dialogs

std::string askFile(appConfig& cfg, const std::string& title, bool saving) {
  return askPathInWindow(cfg, title, saving);
}

int startScreen(driverState& state, appConfig& cfg) {
  destroyWizard(wizard);
  constructWizard(wizard, cfg, state.chosenFilePath, state.startDirectory);
  wizard.askFile = askFile;
  passConfig = &cfg;
  return runStartScreen(wizard, cfg);
}

// A dialog changes nothing of the working directory here, but the pass
// must go on from the start directory whatever the chooser did.
int askPath(driverState& state, int title, bool saving) {
  if (passConfig == nullptr) return -1;
  state.chosenFilePath = askPathInWindow(*passConfig, screenText(*passConfig, title), saving);
  if (!state.startDirectory.empty() && chdir(state.startDirectory.c_str()) != 0) state.chosenFilePath.clear();
  return state.chosenFilePath.empty() ? -1 : 0;
}

int askNewProjectPath(driverState& state) { return askPath(state, 13, true); }
int askExistingProjectPath(driverState& state) { return askPath(state, 12, false); }

int sourceScreen(driverState& state, appConfig& cfg) {
  wizard.newProject = state.newProjectRequest;
  return runSourceScreen(wizard, cfg);
}

int confirmScreen(driverState&, appConfig& cfg) { return runConfirmScreen(wizard, cfg); }

void preview(appConfig& cfg, passObjects& objects) {
  runBitmapPreview(cfg, *objects.scene, *objects.input, *objects.views);
}

int placement(appConfig& cfg, passObjects& objects) {
  return runPlacement(cfg, *objects.domain, *objects.scene, *objects.input, *objects.panel, *objects.views);
}

void showMessage(appConfig& cfg, const char* text) { showScreenMessage(cfg, text ? text : ""); }

// The pace of a run, told on the program's output when the run ends: steps
// per second of the window as it runs, with the frames it presented. Timed
// from the end of the first cycle, so that start-up is not counted.
struct runPace {
  int cycles = 0;                             // cycles of the run loop so far
  int firstMs = 0, lastMs = 0;                // clock at the end of the first and the last cycle [ms]
  double firstCpu = 0.0, lastCpu = 0.0;       // process CPU time at the same moments [s]
  long long firstFrames = 0, lastFrames = 0;  // frames presented at the same moments
};
runPace pace;

double processCpuSeconds() {
  rusage use{};
  getrusage(RUSAGE_SELF, &use);
  return static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) +
         static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec) * 1e-6;
}

void runStep(appConfig& cfg, bool final) {
  (void)cfg;
  if (!final) {
    runPace& p = pace;
    p.lastMs = nowMs(), p.lastCpu = processCpuSeconds(), p.lastFrames = presentedFrames();
    if (p.cycles++ == 0) p.firstMs = p.lastMs, p.firstCpu = p.lastCpu, p.firstFrames = p.lastFrames;
    return;
  }
  const int steps = pace.cycles - 1;
  const double seconds = (pace.lastMs - pace.firstMs) / 1000.0, cpu = pace.lastCpu - pace.firstCpu;
  const long long frames = pace.lastFrames - pace.firstFrames;
  if (steps > 0 && seconds > 0.0) {
    std::printf("run pace: %d steps in %.2f s, %.1f steps/s, process CPU %.2f s; %lld frames presented, %.1f/s\n",
                steps, seconds, steps / seconds, cpu, frames, static_cast<double>(frames) / seconds);
    std::fflush(stdout);
  }
  pace = runPace{};
}

}  // namespace

int menuFileDialog(const fileDialogRequest& request, std::string& path) {
  if (passConfig == nullptr) return -2;
  path = askPathInWindow(*passConfig, request.title, request.save);
  return path.empty() ? -1 : 0;
}

passStages windowStages() {
  return {.startScreen = startScreen,
          .askNewProjectPath = askNewProjectPath,
          .askExistingProjectPath = askExistingProjectPath,
          .sourceScreen = sourceScreen,
          .confirmScreen = confirmScreen,
          .parameterEditorScreen = runParameterEditor,
          .bitmapStage = runBitmapStage,
          .bitmapPreview = preview,
          .placementStage = placement,
          .showMessage = showMessage,
          .runStep = runStep};
}

}  // namespace marv
