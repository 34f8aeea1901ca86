// Screens that accept at once, for runs without a window. The project folder
// given on the command line stands in for the project screens' choice.
#include "app/batchStages.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "app/runProgress.h"
#include "domain/bitmapReading.h"
#include "layer/layer.h"
#include "project/parameterFile.h"

namespace marv {

namespace {

batchOptions options;
int messagesShown = 0;

void batchMessage(appConfig&, const char* text) {
  // One line: line ends inside a message become blanks.
  std::string line = text ? text : "";
  for (char& c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  std::fprintf(stderr, "marvanesse-batch: %s\n", line.c_str());
  ++messagesShown;
}

int startScreen(driverState&, appConfig&) { return options.analysis ? 4 : 3; }

int askExistingProjectPath(driverState& state) {
  state.chosenFilePath = options.projectDir;
  return 0;
}

int sourceScreen(driverState&, appConfig&) { return 1; }

int confirmScreen(driverState& state, appConfig& cfg) {
  if (chdir(state.chosenFilePath.c_str()) != 0) {
    const std::string text = "cannot open the project folder \"" + state.chosenFilePath + "\": " + std::strerror(errno);
    batchMessage(cfg, text.c_str());
    return -1;
  }
  char buffer[4096];
  cfg.absProjPath = getcwd(buffer, sizeof buffer) ? std::string(buffer) : state.chosenFilePath;
  const std::size_t slash = cfg.absProjPath.find_last_of('/');
  cfg.projectName = slash == std::string::npos ? cfg.absProjPath : cfg.absProjPath.substr(slash + 1);
  return 1;
}

int parameterEditorScreen(parameterEditor& editor, appConfig& cfg) {
  const int count = readParameterFile(editor, cfg, "./input/param.txt");
  if (count < 0) {
    batchMessage(cfg, "cannot read input/param.txt in the project folder");
    return -1;
  }
  takeChoiceValues(editor);
  const int before = messagesShown;
  const int result = acceptParameters(editor, cfg);
  if (result != 1 && messagesShown == before) batchMessage(cfg, "the parameters of input/param.txt were refused");
  return result;
}

runProgress progress;

// Without a window nobody can page through the dumps: Analysis mode reports
// the dump it loaded and ends the run.
void reportDump(appConfig& cfg) {
  std::printf("Analysis: dump %08d loaded: time %e s, deltat %e s, mesh %d x %d x %d, cmode %d\n", cfg.sts, cfg.time,
              cfg.deltat, cfg.nx, cfg.ny, cfg.nz, cfg.cmode);
  std::fflush(stdout);
  cfg.quitPromptFlag = 1;  // as if the user had asked to quit and said OK
  cfg.quitConfirmed = 1;
}

void runStep(appConfig& cfg, bool final) {
  if (cfg.analysisMode) {
    if (!final && !cfg.quitConfirmed) reportDump(cfg);
    return;
  }
  if (options.quiet) return;
  if (progress.out == nullptr) startProgress(progress, stdout, nowMs());
  reportProgress(progress, cfg, nowMs(), final);
  if (final) progress = runProgress{};
}

// The bitmap stage without its screen: every bitmap is read and its colours
// taken with the choices saved in bmp.txt, as if Enter were pressed at once.
int bitmapStage(appConfig& cfg) {
  cfg.progressToTerminal = options.quiet ? 0 : 1;
  return readBoundaryBitmaps(cfg, [&cfg](const std::string& text) { batchMessage(cfg, text.c_str()); });
}
int acceptPlacement(driverState&, appConfig&) { return 1; }

}  // namespace

passStages batchStages(const batchOptions& given) {
  options = given;
  passStages stages;
  stages.startScreen = startScreen;
  stages.askExistingProjectPath = askExistingProjectPath;
  stages.sourceScreen = sourceScreen;
  stages.confirmScreen = confirmScreen;
  stages.parameterEditorScreen = parameterEditorScreen;
  stages.bitmapStage = bitmapStage;
  stages.placementStage = acceptPlacement;
  stages.showMessage = batchMessage;
  stages.runStep = runStep;
  stages.onePass = true;
  stages.writeHistory = false;
  stages.splash = false;
  return stages;
}

int batchMessageCount() { return messagesShown; }

}  // namespace marv
