// Drawing of the window's menu bar with the layer's own primitives, into the
// current draw target, in menu canvas coordinates (see menuBar.h).
#pragma once

#include "layer/menuBar.h"

namespace marv::menu {

// The font of the menu, made on first use; the model's measure uses it.
int menuFont();
int menuTextWidth(const char* utf8);
void forgetMenuFont();  // the layer stopped: its fonts are gone

// The bar, and the open menu and submenu if any.
void drawMenu(const menuModel& m);

}  // namespace marv::menu
