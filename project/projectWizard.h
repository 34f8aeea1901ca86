// The project screens: the start screen (new project, load, load in
// Analysis mode, or the last project), the source screen of a new project
// (where its input files come from) and the confirmation screen, at whose
// end the project folder exists with input, figs and dump, and is the
// working directory. A project is a folder with these three sub-folders.
#pragma once

#include <cstdint>
#include <string>

#include "app/appConfig.h"
#include "app/screenKit.h"

namespace marv {

// Asks the user for a file (or, with folder set, a folder) through the
// desktop's dialog or the program's own chooser; "" when cancelled.
using fileAsker = std::string (*)(appConfig& cfg, const std::string& title, bool saving);

struct projectWizard {
  std::string paramFilePath;  // the project's parameter file, or the file the user picked
  std::string inputDir;       // the project's input folder, with a closing "/"
  std::string sourceDir;      // where a new project copies its input files from, closing "/"
  std::string projectDir;     // the project folder, closing "/"
  std::uint8_t newProject = 0;
  std::string* chosenFilePath = nullptr;  // the driver's buffer
  std::string* startDirectory = nullptr;  // the driver's buffer
  std::string sourceText;                 // the final source folder, as the confirmation shows it
  std::string message;                    // the last message shown
  fileAsker askFile = nullptr;            // file dialog of the source screen
  int listLeft = 0, listTop = 0;          // [px]
  // Click state of the screens' rows and buttons.
  rowButton newRow, loadRow, analysisRow, lastRow;
  screenButton cancel, proceed;
  bool sourceArmed = false;  // the source box was under an up button
  buttonTiles tiles;
};

void constructWizard(projectWizard& wizard, appConfig& cfg, std::string& chosenFilePath, std::string& startDirectory);
void destroyWizard(projectWizard& wizard);

// A copy of path with each "\" made "/": paths are shown in this form.
std::string displayPath(const std::string& path);

// path up to and including its last separator; "" when it has none.
std::string folderOf(const std::string& path);

// Fills paramFilePath, inputDir and projectDir from a folder to create
// (isNew) or from any file in an existing project's input folder; a folder
// that holds input/param.txt counts as that file. Returns the project name,
// the last component of the project folder.
std::string projectFromPath(projectWizard& wizard, const std::string& path, bool isNew);

// The confirmation's work: a new project's folder is made (refused when it
// exists or cannot be made), absProjPath set and the working directory
// changed to it, input, figs and dump made, and for a new project the
// bitmaps, bc.stl and param.txt copied from sourceDir. Returns 1 or -1 with
// the reason in wizard.message.
int openProjectFolder(projectWizard& wizard, appConfig& cfg);

// Per frame of each screen: 0 while undecided, else the screen's result.
int startScreenFrame(projectWizard& wizard, appConfig& cfg, const screenInput& in);
int sourceScreenFrame(projectWizard& wizard, appConfig& cfg, const screenInput& in, const std::string& dropped);
int confirmScreenFrame(projectWizard& wizard, appConfig& cfg, const screenInput& in);

// The screens: 1..4 or -1 for the start screen, 1 or -1 for the others.
int runStartScreen(projectWizard& wizard, appConfig& cfg);
int runSourceScreen(projectWizard& wizard, appConfig& cfg);
int runConfirmScreen(projectWizard& wizard, appConfig& cfg);

}  // namespace marv
