// The stage table of the window program: the project screens, the parameter
// editor, the bitmap stage with its preview, and the model placement.
#pragma once

#include <string>

#include "app/driver.h"
#include "app/menuCommands.h"

namespace marv {

passStages windowStages();

// The menu's file dialog: the desktop's dialog program where there is one,
// else the chooser drawn in the window over the current pass's screen.
int menuFileDialog(const fileDialogRequest& request, std::string& path);

}  // namespace marv
