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

// Filters of the shared input, fed by the window's events and by the input
// script alike: true when the menu took the event, which then never reaches
// the screens. Positions are back buffer pixels, the bar lying above it at
// negative y. A button's release always goes on to the screens as well, so
// that no button stays held there.
bool takesPointer(int x, int y);
bool takesButton(int bit, bool down);  // at the last pointer position
bool takesKey(int code, bool down);    // Alt is the key table's 56 or 184
bool takesText();                      // typed text while a menu is open, or of a key it took

}  // namespace marv::menu
