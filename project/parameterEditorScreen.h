// The parameter editor's screen: the list of param.txt in a scrolling
// window, edited in place, reordered, extended and shortened, then accepted
// (written through a temporary file and a rename, then applied) or
// cancelled (the file stays byte for byte). A value that is not a number is
// refused with a message and never stored.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "app/screenKit.h"
#include "project/parameterEditor.h"

namespace marv {

// Everything the screen keeps between frames.
struct editorScreen {
  parameterEditor* editor = nullptr;
  int selected = 1;          // the row with the input focus
  int previousSelected = 0;  // the row selected before
  int hovered = 0;           // the row under the mouse
  int hoverStamp = 0;        // when hovered last changed [ms]
  int scrollY = 0;           // pixels hidden above the view
  int visibleRows = 1;
  int listTop = 0, listHeight = 0, listWidth = 0;  // [px]
  bool scrollToSelection = false;                  // a key or click moved the selection
  std::string liveText;                            // the text being typed into the selected row
  int inputHandle = -1;                            // the layer's field behind liveText
  std::string message;                             // the last refusal, shown at the foot
  int messageStamp = 0;                            // [ms]
  // Key and button repeat.
  int keyHeld = 0;
  int repeatDivisor = 1;
  int keyStamp = 0;
  int lastActionMs = -100000;
  bool mouseOnButtons = false;
  screenButton up, down, swapUp, swapDown, add, remove, cancel, proceed;
  buttonTiles tiles;
  // Answers of the two questions; the screen asks through these so that a
  // test can answer without a dialog.
  bool (*confirmRemove)(editorScreen& screen, appConfig& cfg) = nullptr;
  std::string (*askNewName)(editorScreen& screen, appConfig& cfg) = nullptr;  // "" cancels
};

// The value filter: blanks and thousands commas dropped, then the text must
// be a whole finite number, or "-" where a parameter takes the dash. Returns
// false and leaves out untouched when it is not.
bool filterValue(const parameterEntry& entry, const std::string& text, std::string& out);

// Takes text into a row's value through the filter. On refusal the row
// keeps its value and screen.message says why; returns false.
bool commitRow(editorScreen& screen, int row, const std::string& text);

// Exchanges two entries, all but their list positions.
void swapEntries(parameterEditor& editor, int a, int b);

// List operations on the selected row; each returns false when it did
// nothing (no room, the only row, the edge of the list).
bool moveSelection(editorScreen& screen, int delta);
bool swapWithAbove(editorScreen& screen);
bool swapWithBelow(editorScreen& screen);
bool removeSelected(editorScreen& screen);
bool addAtSelected(editorScreen& screen, const std::string& name);

// Greys the rows that the others make irrelevant and numbers the rest.
void updateEnabledStates(parameterEditor& editor);

// The scroll position kept within the list.
void limitScroll(editorScreen& screen, const appConfig& cfg);

// Set-up: reads ./input/param.txt (message 45 and -1 when it cannot).
int startEditorScreen(editorScreen& screen, parameterEditor& editor, appConfig& cfg);

// One frame: 0 nothing decided, 1 accepted, -1 cancelled.
int editorFrame(editorScreen& screen, appConfig& cfg, const screenInput& in);

// Acceptance: choices stored, the file written (not in Analysis mode), the
// list applied. Returns 1, or -1 when something was refused.
int acceptEditor(editorScreen& screen, appConfig& cfg);

// The whole screen: 1 accepted, -1 cancelled, refused or no file.
int runParameterEditor(parameterEditor& editor, appConfig& cfg);

// The same with a screen record of the caller's, whose two question hooks
// it keeps.
int runEditorScreen(editorScreen& screen, parameterEditor& editor, appConfig& cfg);

void destroyEditorScreen(editorScreen& screen);

}  // namespace marv
