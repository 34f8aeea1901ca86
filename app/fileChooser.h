// Choosing a file or a new folder: the desktop's own dialog where the
// session has one (zenity or kdialog), else a chooser drawn in the window
// with the program's buttons, which works on a bare X server: a list of the
// folder's sub-folders and input files, a path field that takes a typed
// path, and Up, Open and Cancel.
#pragma once

#include <string>
#include <vector>

#include "app/appConfig.h"

namespace marv {

// "" when cancelled. saving asks for a new path (a project folder to make).
std::string askPathInWindow(appConfig& cfg, const std::string& title, bool saving);

// What the in-program chooser lists of a folder: sub-folders first, then
// the files whose names end in .txt, .bmp or .stl, each sorted by name,
// hidden entries left out. Folder names end in "/".
std::vector<std::string> listChoosable(const std::string& folder);

// What a typed or picked path stands for: for opening, a project folder
// (one with input/param.txt) stands for that file and an existing file for
// itself; for saving, any path whose folder exists. "" when neither.
std::string resolveChosenPath(const std::string& path, bool saving);

// Whether a program is on the PATH.
bool programAvailable(const char* name);

}  // namespace marv
