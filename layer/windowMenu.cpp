// The window's menu bar and its command receiver, shared by both backends.
#include "layer/windowMenu.h"

#include "layer/layer.h"

namespace marv {

namespace menu {

namespace {

struct windowMenuState {
  menuModel model = mainMenu();
  menuCommandReceiver receiver = nullptr;
  void* context = nullptr;
  bool closeRequested = false;
  int pointerX = -1;  // last pointer position, menu canvas [px]
  int pointerY = -1;
  bool keyTaken = false;  // the last key that went down was the menu's
};

// The letters of the layer's key table.
constexpr struct {
  int code;
  char letter;
} letterKeys[] = {{16, 'Q'}, {17, 'W'}, {18, 'E'}, {19, 'R'}, {20, 'T'}, {21, 'Y'}, {22, 'U'}, {23, 'I'}, {24, 'O'},
                  {25, 'P'}, {30, 'A'}, {31, 'S'}, {32, 'D'}, {33, 'F'}, {34, 'G'}, {35, 'H'}, {36, 'J'}, {37, 'K'},
                  {38, 'L'}, {44, 'Z'}, {45, 'X'}, {46, 'C'}, {47, 'V'}, {48, 'B'}, {49, 'N'}, {50, 'M'}};

char letterOf(int code) {
  for (const auto& k : letterKeys)
    if (k.code == code) return k.letter;
  return 0;
}

windowMenuState& state() {
  static windowMenuState s;
  return s;
}

}  // namespace

menuModel& windowMenu() { return state().model; }

void deliverCommands() {
  windowMenuState& s = state();
  for (int id = takeCommand(s.model); id != 0; id = takeCommand(s.model))
    if (s.receiver) s.receiver(id, s.context);
}

bool closeRequested() { return state().closeRequested; }

void resetWindowMenu() { state() = windowMenuState{}; }

int shownBarHeight() { return state().model.shown ? state().model.barHeight : 0; }

bool takesPointer(int x, int y) {
  windowMenuState& s = state();
  const int cy = y + shownBarHeight();
  // A pointer that did not move hovers nothing anew: the keyboard's choice
  // in an open menu stays.
  if (x == s.pointerX && cy == s.pointerY)
    return s.model.shown && (isOpen(s.model) || barRect(s.model).contains(x, cy));
  s.pointerX = x;
  s.pointerY = cy;
  return pointerMoved(s.model, s.pointerX, s.pointerY);
}

bool takesButton(int bit, bool down) {
  windowMenuState& s = state();
  if (!s.model.shown) return false;
  if (bit == mouseLeft) return leftButton(s.model, s.pointerX, s.pointerY, down);
  if (isOpen(s.model)) {
    if (down) closeAll(s.model);  // another button closes the menu, as a click outside does
    return true;
  }
  return barRect(s.model).contains(s.pointerX, s.pointerY);
}

bool takesKey(int code, bool down) {
  windowMenuState& s = state();
  if (!down) return false;
  const bool alt = keyDown(keyLeftAlt) || keyDown(keyRightAlt);
  s.keyTaken = keyPressed(s.model, code, letterOf(code), alt);
  return s.keyTaken;
}

bool takesText() { return state().keyTaken || isOpen(state().model); }

}  // namespace menu

int setWindowMenu(int id) {
  if (id != menu::mainMenuId) return -1;
  // The menu comes afresh, as loaded from the resources: every item enabled,
  // the English captions, nothing open. What the backend measured stays.
  menu::menuModel& m = menu::windowMenu();
  menu::menuModel fresh = menu::mainMenu();
  fresh.measure = m.measure;
  fresh.barHeight = m.barHeight;
  fresh.itemHeight = m.itemHeight;
  fresh.separatorHeight = m.separatorHeight;
  fresh.canvasWidth = m.canvasWidth;
  fresh.shown = true;
  m = fresh;
  return 0;
}

int setMenuItemEnabled(int id, int enable) {
  return menu::setItemEnabled(menu::windowMenu(), id, enable != 0) ? 0 : -1;
}

int setMenuItemText(int id, const char* text) {
  return menu::setItemCaption(menu::windowMenu(), id, text ? text : "") ? 0 : -1;
}

int setMenuHeadText(int head, int item, const char* text) {
  return menu::setHeadCaption(menu::windowMenu(), head, item, text ? text : "") ? 0 : -1;
}

int setMenuCommandReceiver(menuCommandReceiver receiver, void* context) {
  menu::state().receiver = receiver;
  menu::state().context = context;
  return 0;
}

int closeWindow() {
  menu::state().closeRequested = true;
  return 0;
}

int menuBarHeight() { return menu::shownBarHeight(); }

}  // namespace marv
