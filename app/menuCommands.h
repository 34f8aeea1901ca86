// The window's File and Help menus as the program answers them: captions in
// the user's language, the commands (new project, open in Simulation or
// Analysis mode, exit, the help pages), the two file dialogs that ask for a
// project, and the help pages opened in the user's web browser.
#pragma once

#include <string>

#include "app/driver.h"

namespace marv {

// Sets the menu's captions from the catalogue (texts 0 to 8, 10 and 11) in
// English or Japanese, and the language of the help pages.
void localiseMenu(int menuJapanese, int pagesJapanese);

// A file dialog as the desktop's dialog program shows it.
struct fileDialogRequest {
  bool save = false;         // asks for a new name rather than an existing file
  std::string title;         // UTF-8
  bool inputFilter = false;  // offers "Input files" (*.txt, *.bmp, *.stl) and "All files"
};

// Shows a dialog; 0 and the path when the user chose one, -1 when cancelled,
// -2 when no dialog program could be started. It may change the working
// directory, as dialogs elsewhere do.
using fileDialogRunner = int (*)(const fileDialogRequest& request, std::string& path);

// What the menu's commands work with.
struct menuHook {
  driverState* state = nullptr;                 // request flags and chosenFilePath
  fileDialogRunner dialog = nullptr;            // null: zenity, else kdialog
  void (*message)(const char* text) = nullptr;  // tells the user; null: standard error
  const char* pageOpener = "xdg-open";          // program that opens a page in the browser
};

// Tells the user in a message box with OK, over whatever screen is up; for
// menuHook::message in the window program.
void menuMessageBox(const char* text);

// Makes `hook` the receiver of the window's menu commands.
void installMenuHook(menuHook& hook);

// One menu command, as the layer hands it over.
void windowHook(int commandId, void* hook);

// The dialogs: both clear chosenFilePath first; 0 when a path is in it,
// else -1. After an accepted dialog the working directory is the start
// directory again; without a start directory askExistingProjectPath refuses.
int askNewProjectPath(menuHook& hook);
int askExistingProjectPath(menuHook& hook);

// The help page of a command: its file name, or null for other commands.
const char* helpPageName(int commandId, bool japanese);

// Opens the page in the browser. Returns 0, or -1 with the reason in
// `failure` when the page is missing or the opener could not show it.
int openHelpPage(int commandId, bool japanese, const char* opener, std::string& failure);

}  // namespace marv
