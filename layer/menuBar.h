// The window's menu bar, drawn by the program itself: this desktop's windows
// have no menu of their own. The model holds the menus, their captions and
// greyed items, and what the user has open; the functions below take the
// window's pointer and key events and say whether the menu used them, so
// that a click or a key meant for the menu never reaches the screens.
//
// Coordinates are those of the menu canvas: the bar covers 0 <= y <
// barHeight above the back buffer, which starts at y = barHeight. Menus drop
// down over the back buffer.
#pragma once

#include <string>
#include <vector>

namespace marv::menu {

constexpr int mainMenuId = 101;  // the program's only menu resource

// Command ids of the program's menu.
enum commandId : int {
  commandNewProject = 40006,
  commandOpenSimulation = 40009,
  commandOpenAnalysis = 40010,
  commandExit = 40012,
  commandHelpParameters = 40013,
  commandHelpInterface = 40014,
  commandHelpUpdates = 40015,
  commandHelpExamples = 40016,
};

struct menuItem {
  int id = 0;           // command id; 0 for a separator or a submenu head
  std::string caption;  // UTF-8; "&" marks the access letter
  bool enabled = true;  // false: greyed, cannot be chosen
  bool separator = false;
  int submenu = -1;  // index into menuModel::lists for a submenu head
};

struct menuList {
  std::vector<menuItem> items;
};

struct menuHead {
  std::string caption;  // of the bar item
  int list = -1;        // the menu it opens
};

struct rect {
  int x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // covers x1..x2-1, y1..y2-1
  bool contains(int x, int y) const { return x >= x1 && x < x2 && y >= y1 && y < y2; }
};

// Measures a caption as drawn (without the "&") [px].
using textMeasure = int (*)(const char* utf8);

struct menuModel {
  bool shown = false;           // a menu was set on the window
  std::vector<menuHead> bar;    // left to right
  std::vector<menuList> lists;  // menus and submenus
  // What is open: a bar menu, perhaps one submenu of it, and the highlighted
  // item of each (-1 none).
  int openHead = -1;
  int hotItem = -1;
  int openSub = -1;  // item of the open menu whose submenu is open
  int hotSubItem = -1;
  bool pressedInMenu = false;  // the left button went down on the bar or a menu
  std::vector<int> chosen;     // commands chosen and not yet taken, oldest first
  // Layout, from the measure and the sizes below.
  textMeasure measure = nullptr;
  int barHeight = 24;  // [px]
  int itemHeight = 24;
  int separatorHeight = 9;
  int canvasWidth = 1080;
};

// The program's menu 101 with its English captions, nothing open.
menuModel mainMenu();

// Geometry, from the captions and the sizes of the model.
rect barRect(const menuModel& m);
rect headRect(const menuModel& m, int head);
rect listRect(const menuModel& m, int list, int x, int y);  // a menu whose top left corner is (x, y)
rect itemRect(const menuModel& m, int list, int item, int x, int y);
rect openListRect(const menuModel& m);  // of the open bar menu; empty when none
rect openSubRect(const menuModel& m);   // of the open submenu; empty when none

// Captions and greying. An id of no item changes nothing and returns false.
bool setItemCaption(menuModel& m, int id, const std::string& caption);
bool setHeadCaption(menuModel& m, int head, int item, const std::string& caption);  // item -1: the bar item
bool setItemEnabled(menuModel& m, int id, bool enabled);
const menuItem* findItem(const menuModel& m, int id);

// The access letter of a caption, upper case, or 0.
char accessLetter(const std::string& caption);
// The caption without its "&" and the byte offset of the underlined letter (-1 none).
std::string visibleCaption(const std::string& caption, int* underline);

// Events. Each returns true when the menu used it.
bool pointerMoved(menuModel& m, int x, int y);
bool leftButton(menuModel& m, int x, int y, bool down);
// A key went down: a key code of the layer's table, or a letter 'A'..'Z'
// with altHeld for Alt+letter. Keys never pass while a menu is open.
bool keyPressed(menuModel& m, int code, char letter, bool altHeld);
// The window lost the focus: everything closes.
void closeAll(menuModel& m);

bool isOpen(const menuModel& m);

// The oldest chosen command, or 0.
int takeCommand(menuModel& m);

}  // namespace marv::menu
