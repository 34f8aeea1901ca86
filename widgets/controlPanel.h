// controlPanel: the panel of 43 picture buttons that slides down from the
// top of the window while a run goes on, when the pointer touches the top
// left corner. It shows and changes the display flags that the keys change,
// picks the quantity, asks for colour-scale limits and takes a snapshot; in
// Analysis mode two tall arrows step through the dumps. While it is open it
// keeps panelBusy set, which holds the run. One call per frame, after the
// frame is drawn; it polls the mouse itself and keeps no callback.
#pragma once

#include <array>

#include "app/appConfig.h"
#include "widgets/imageButton.h"
#include "widgets/textBox.h"

namespace marv {

struct sceneView;

constexpr int panelButtonCount = 43;
constexpr int panelIconCount = 100;
constexpr int panelArrowCount = 3;

struct controlPanel {
  int triggerWidth = 0, triggerHeight = 0;              // the corner that opens the panel [px]
  int panelWidth = 0, panelHeight = 0;                  // [px]
  int slideY = 0;                                       // top of the panel in this frame, 0 or negative [px]
  int cellSize = 0, cellGap = 0;                        // [px]
  int frameWidth = 0, shadowSize = 0;                   // [px]
  int openedMs = 0, panelNowMs = 0;                     // stamps of the slide [ms]
  int slideMs = 200;                                    // [ms]
  int iconCount = panelIconCount;                       // cells of the icon sheet
  std::array<int, panelIconCount> icons{};              // image handles, 0 where a cell failed
  int backImage = 0;                                    // back picture of the panel
  textBox inputBox;                                     // prompt for the scale limits
  std::array<imageButton, panelButtonCount> buttons{};  // in the order of the panel's table
  int arrowCount = panelArrowCount;
  std::array<int, panelArrowCount> arrows{};  // left, right, their shadow
  imageButton prevButton, nextButton;         // Analysis mode
  sceneView* scene = nullptr;                 // whose camera "Reset camera" resets; not owned, may be null
};

// Builds the panel for the window and fonts of appConfig.
void constructControlPanel(controlPanel& panel, appConfig& cfg);

// Once per frame, after the frame is drawn: sets panelBusy, and may change
// display flags, snapshotRequested and analysisDirection.
void runControlPanel(controlPanel& panel, appConfig& cfg);

void destroyControlPanel(controlPanel& panel);

// What a scale-limit prompt's text means: only "+", "-", ".", digits, "E"
// and "e" are kept, and the rest is read as a number (0 when it is none).
double scaleLimitOf(const char* text);

// The panel's table, for those who test or draw it: label and icon cell of
// button i, and where it stands (row 1..3, column 0..15).
struct panelButtonPlace {
  const char* label;
  int cell;
  int row, column;
};
panelButtonPlace panelButtonAt(int index);

}  // namespace marv
