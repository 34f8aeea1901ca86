// The window's one menu bar as both backends keep it: the model, where its
// chosen commands go, and the window's close request. Never seen above the
// layer; layer.h has the operations.
#pragma once

#include "layer/menuBar.h"

namespace marv::menu {

menuModel& windowMenu();

// Hands every chosen command to the receiver, oldest first. Called by the
// backends inside processMessages, after the window's events.
void deliverCommands();

// closeWindow was called since the layer started.
bool closeRequested();

// The layer stops: the menu, its receiver and the close request are forgotten.
void resetWindowMenu();

// Height of the bar above the back buffer [px]; 0 while no menu is shown.
int shownBarHeight();

}  // namespace marv::menu
