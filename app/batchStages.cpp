// Screens that accept at once, for runs without a window. The project folder
// given on the command line stands in for the project screens' choice.
#include "app/batchStages.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "app/runProgress.h"
#include "common/textNumbers.h"
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
  // Notes and warnings go with a run that goes on; only errors and
  // refusals count as the reason of an early end.
  if (line.rfind("[NOTE]", 0) != 0 && line.rfind("[WARNING]", 0) != 0) ++messagesShown;
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

// Why a list was refused where applyParameters itself says nothing: the
// window shows the list again, a script needs the reason.
std::string refusalReason(const parameterEditor& editor, int count) {
  if (count == 0) return "the file holds no parameter lines (it is empty or holds only comments)";
  for (const char* name : {"nx", "ny"}) {
    const int index = lookupParameter(name).index;
    const double v = index >= 0 && index < maxParameterEntries ? editor.transferTable[index] : notGiven;
    if (v == notGiven) return std::string("\"") + name + "\" is not given; a mesh needs at least 2 points along it";
    if (v < 2.0)
      return std::string("\"") + name + "\" is " + std::to_string(truncToInt(v)) +
             "; a mesh needs at least 2 points along it";
  }
  return "see the message above";
}

int parameterEditorScreen(parameterEditor& editor, appConfig& cfg) {
  const int count = readParameterFile(editor, cfg, "./input/param.txt");
  if (count < 0) {
    batchMessage(cfg, "cannot read input/param.txt in the project folder");
    return -1;
  }
  takeChoiceValues(editor);
  cfg.refuseOversizedMesh = 1;  // a script gets a refusal, not a machine that swaps or kills it
  const int before = messagesShown;
  const int result = acceptParameters(editor, cfg);
  if (result != 1 && messagesShown == before)
    batchMessage(cfg, ("the parameters of input/param.txt were refused: " + refusalReason(editor, count)).c_str());
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
// A bitmap that exists but cannot be read would leave its walls out of the
// run: the batch runner refuses the project instead of running without them.
int bitmapStage(appConfig& cfg) {
  cfg.progressToTerminal = options.quiet ? 0 : 1;
  int errors = 0;
  const int result = readBoundaryBitmaps(cfg, [&cfg, &errors](const std::string& text) {
    batchMessage(cfg, text.c_str());
    if (text.rfind("[ERROR]", 0) == 0) ++errors;
  });
  if (errors > 0) {
    batchMessage(cfg, "the project's boundary bitmaps could not all be read; the run would lack their walls");
    return -1;
  }
  return result;
}
int acceptPlacement(appConfig&, passObjects&) { return 1; }

}  // namespace

passStages batchStages(const batchOptions& given) {
  options = given;
  return {.startScreen = startScreen,
          .askExistingProjectPath = askExistingProjectPath,
          .sourceScreen = sourceScreen,
          .confirmScreen = confirmScreen,
          .parameterEditorScreen = parameterEditorScreen,
          .bitmapStage = bitmapStage,
          .placementStage = acceptPlacement,
          .showMessage = batchMessage,
          .runStep = runStep,
          .onePass = true,
          .writeHistory = false,
          .splash = false,
          .stopOnFault = true};
}

int batchMessageCount() { return messagesShown; }

}  // namespace marv
