// The window program's stages. The wizard lives for one pass: it is made
// anew by the start screen at the head of each pass.
#include "app/windowStages.h"

#include <unistd.h>

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
          .showMessage = showMessage};
}

}  // namespace marv
