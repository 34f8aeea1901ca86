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
};

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
