// The control panel's per-frame step: the corner mark and the quick
// snapshot while it is closed; the slide, the flag buttons, the quantity
// group and the scale-limit prompts while it is open.
#include "widgets/controlPanel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/catalogue.h"
#include "layer/layer.h"
#include "project/vizFile.h"
#include "scene/sceneView.h"

namespace marv {

namespace {

constexpr int iconResource = 555;   // sheet of 10 by 10 cells
constexpr int arrowResource = 550;  // 3 tall cells
constexpr int backResource = 999;
constexpr int iconCellSize = 64;                     // [px]
constexpr int arrowWidth = 64, arrowHeight = 192;    // [px]
constexpr int cornerCell = 30, shadowCell = 31;      // the corner mark, the buttons' shadow
constexpr int minScaleText = 43, maxScaleText = 44;  // catalogue texts of the prompts

// What a button of the panel changes.
enum class action {
  wholeFlag,    // an int flag of appConfig, 0 or 1
  byteFlag,     // a byte flag of appConfig
  resetCamera,  // the scene's request for the default view; never stays on
  lighting,     // useLightingFlag, turning the triangle edges the other way
  minScale,
  maxScale,
  autoScale,
  quantity,  // one of the radio group: dispQuantFlag = value
  snapshot,
};

struct buttonRow {
  const char* label;
  int cell;
  int row, column;
  action kind;
  int appConfig::*whole = nullptr;
  std::uint8_t appConfig::*byte = nullptr;
  int value = 0;  // quantity of a radio button
};

constexpr buttonRow whole(const char* label, int cell, int row, int column, int appConfig::*flag) {
  return {label, cell, row, column, action::wholeFlag, flag, nullptr, 0};
}
constexpr buttonRow byte(const char* label, int cell, int row, int column, std::uint8_t appConfig::*flag) {
  return {label, cell, row, column, action::byteFlag, nullptr, flag, 0};
}
constexpr buttonRow special(const char* label, int cell, int row, int column, action kind, int value = 0) {
  return {label, cell, row, column, kind, nullptr, nullptr, value};
}

// Row by row, left to right: the order in which the buttons are run.
constexpr buttonRow table[panelButtonCount] = {
    whole("Velocity vector", 1, 1, 0, &appConfig::showVectorFlag),
    whole("Uncorrelated velocity vector", 22, 1, 1, &appConfig::showCorrVectorFlag),
    whole("Stream line", 2, 1, 2, &appConfig::showStreamlineFlag),
    whole("Tracer particle", 3, 1, 3, &appConfig::showTracerParticleFlag),
    whole("Particle contour", 0, 1, 4, &appConfig::showContourPaticlesFlag),
    whole("XY plane", 4, 1, 5, &appConfig::showCrosssectionXYFlag),
    whole("YZ plane", 5, 1, 6, &appConfig::showCrosssectionYZFlag),
    whole("XZ plane", 6, 1, 7, &appConfig::showCrosssectionXZFlag),
    whole("Color object", 8, 1, 8, &appConfig::nonBcObjectColorFlag),
    whole("Color boundary", 9, 1, 9, &appConfig::showQColorOnBoundaryFlag),
    whole("STL BC", 10, 1, 13, &appConfig::showBoundaryFlagSTL),
    whole("Non-preset BC", 11, 1, 14, &appConfig::showBoundaryFlagUser),
    whole("Black BC", 12, 1, 15, &appConfig::showBoundaryFlagBlack),
    whole("Orientation axes", 7, 2, 0, &appConfig::showOrientationAxesFlag),
    whole("Outline", 20, 2, 1, &appConfig::showOutlineFlag),
    whole("Camera target", 25, 2, 2, &appConfig::showCameraTargetFlag),
    special("Reset camera", 18, 2, 3, action::resetCamera),
    special("Lighting", 28, 2, 4, action::lighting),
    byte("Poly-frames", 29, 2, 5, &appConfig::polygonFrames),
    whole("Immersed BC", 24, 2, 6, &appConfig::showGhostSolidFlag),
    whole("Scaling incl. solid region", 23, 2, 7, &appConfig::minMaxFlag),
    whole("Shortcut key list", 26, 2, 8, &appConfig::showHelpShortcutFlag),
    whole("Pause simulation", 21, 2, 9, &appConfig::quitPromptFlag),
    special("Min scale", 32, 2, 10, action::minScale),
    special("Max scale", 33, 2, 11, action::maxScale),
    special("Auto scale", 34, 2, 12, action::autoScale),
    whole("Blue BC", 13, 2, 13, &appConfig::showBoundaryFlagBlue),
    whole("Red BC", 14, 2, 14, &appConfig::showBoundaryFlagRed),
    whole("Green BC", 15, 2, 15, &appConfig::showBoundaryFlagGreen),
    special("Density", 40, 3, 0, action::quantity, 1),
    special("U", 41, 3, 1, action::quantity, 2),
    special("V", 42, 3, 2, action::quantity, 3),
    special("W", 43, 3, 3, action::quantity, 4),
    special("|U|", 44, 3, 4, action::quantity, 5),
    special("Temperature", 45, 3, 5, action::quantity, 6),
    special("Mass fraction", 46, 3, 6, action::quantity, 7),
    special("p-p0", 47, 3, 7, action::quantity, 8),
    special("Age variable", 50, 3, 8, action::quantity, 11),
    byte("Force", 48, 3, 9, &appConfig::showForce),
    byte("Heat loss", 49, 3, 10, &appConfig::showHeatLoss),
    special("Snapshot", 27, 3, 11, action::snapshot),
    whole("Yellow BC", 16, 3, 14, &appConfig::showBoundaryFlagMagenta),
    whole("Cyan BC", 17, 3, 15, &appConfig::showBoundaryFlagCyan),
};

constexpr int snapshotIndex = 40;
static_assert(table[snapshotIndex].kind == action::snapshot);

int on(int value) { return value != 0 ? 1 : 0; }

void setUpPanelButton(imageButton& b, const appConfig& cfg, const char* label, int shadow) {
  b.width = b.height = cfg.buttonSize;
  b.labelKind = 1;
  b.label = label;
  b.shadowImage = shadow;
  b.pressShift = cfg.buttonSize / 20;
  b.shadowOffset = static_cast<int>(1.5 * b.pressShift);
  b.imageFont = b.plainFont = cfg.fixedCaption;
  b.imageFontSize = b.plainFontSize = cfg.captionSize;
  b.state = 0;
}

void setUpArrow(imageButton& b, const appConfig& cfg, const char* label, int shadow) {
  setUpPanelButton(b, cfg, label, shadow);
  b.width = arrowWidth;
  b.height = arrowHeight;
  b.labelKind = 2;
  b.pressShift = (arrowWidth + arrowHeight) / 40;
  b.shadowOffset = static_cast<int>(1.5 * b.pressShift);
}

int buttonX(const controlPanel& p, int column) { return p.cellGap + column * (p.cellGap + p.cellSize); }

int buttonY(const controlPanel& p, const appConfig& cfg, int row) {
  return p.slideY + cfg.mediumSize + (row - 1) * (p.cellGap + p.cellSize);
}

// The prompt of a scale limit, blocking. Returns 1 with the value read, or
// 0 when the user cancelled.
int askScaleLimit(controlPanel& p, appConfig& cfg, int text, double& value) {
  const std::string prompt = catalogueText(text, cfg.uiJapanese != 0);
  const int answer = showTextBox(p.inputBox, prompt.c_str(), 0, 0);
  // The Enter or Esc that closed the prompt is still down: it must not act
  // as a shortcut in the next frame.
  cfg.lastKeyMs = nowMs();
  char typed[textBoxInputLength + 1] = {};
  getTextInput(typed, sizeof typed, p.inputBox.inputHandle);
  setTextInput("", p.inputBox.inputHandle);
  if (answer != 1) return 0;
  value = scaleLimitOf(typed);
  return 1;
}

// One frame of the open panel. Returns 1 while the pointer stays on it.
int runPanelStep(controlPanel& p, appConfig& cfg) {
  const int now = nowMs();
  const double t = std::clamp(static_cast<double>(p.panelNowMs - p.openedMs) / p.slideMs, 0.0, 1.0);
  p.panelNowMs = now;
  p.slideY = static_cast<int>(-std::sqrt(1.0 - t) * p.panelHeight);

  // Back, white body, sky frame, grey top line.
  setBlend(1, 128);
  drawImageStretched(p.frameWidth + 1, p.slideY, p.panelWidth + p.shadowSize, p.slideY + p.shadowSize + p.panelHeight,
                     p.backImage, 1);
  setBlend(0, 0);
  drawBox(p.frameWidth + 1, p.slideY, p.panelWidth, p.slideY + p.panelHeight, colourWhite, 1);
  drawBoxF(static_cast<float>(p.frameWidth + 1), static_cast<float>(p.slideY - p.frameWidth),
           static_cast<float>(p.panelWidth), static_cast<float>(p.slideY + p.panelHeight), colourSky, 0,
           static_cast<float>(p.frameWidth));
  drawLine(1, 0, p.panelWidth, 0, colourGrey, 1);

  // Flag buttons; the quantity group waits for step two.
  for (int i = 0; i < panelButtonCount; ++i) {
    const buttonRow& r = table[i];
    imageButton& b = p.buttons[i];
    const int x = buttonX(p, r.column), y = buttonY(p, cfg, r.row);
    const int icon = p.icons[r.cell];
    switch (r.kind) {
      case action::wholeFlag: cfg.*r.whole = runImageButton(b, x, y, icon, on(cfg.*r.whole), 1); break;
      case action::byteFlag:
        cfg.*r.byte = static_cast<std::uint8_t>(runImageButton(b, x, y, icon, on(cfg.*r.byte), 1));
        break;
      case action::resetCamera: {
        const int reset = runImageButton(b, x, y, icon, 0, 1);
        if (p.scene != nullptr && reset == 1) p.scene->resetCameraFlag = 1;
        break;
      }
      case action::lighting: {
        const int before = on(cfg.useLightingFlag);
        const int after = runImageButton(b, x, y, icon, before, 1);
        if (after != before) cfg.polygonFrames = after == 1 ? 0 : 1;
        cfg.useLightingFlag = static_cast<std::uint8_t>(after);
        break;
      }
      case action::minScale: runImageButton(b, x, y, icon, on(cfg.manualMinFlag), 1); break;
      case action::maxScale: runImageButton(b, x, y, icon, on(cfg.manualMaxFlag), 1); break;
      case action::autoScale: runImageButton(b, x, y, icon, 0, 1); break;
      case action::quantity: runImageButton(b, x, y, icon, cfg.dispQuantFlag == r.value ? 1 : 0, 0); break;
      case action::snapshot: cfg.snapshotRequested = runImageButton(b, x, y, icon, on(cfg.snapshotRequested), 1); break;
    }
  }

  // The quantity group: a click on another quantity selects it, a click on
  // the selected one keeps it, the age variable only where the run has it.
  int q = cfg.dispQuantFlag;
  for (int i = 0; i < panelButtonCount; ++i) {
    const buttonRow& r = table[i];
    if (r.kind != action::quantity) continue;
    const bool clicked = p.buttons[i].state == 1 && cfg.dispQuantFlag != r.value;
    if (clicked && (r.value != 11 || cfg.ageFlag)) q = r.value;
  }
  for (int i = 0; i < panelButtonCount; ++i) {
    const buttonRow& r = table[i];
    if (r.kind != action::quantity) continue;
    p.buttons[i].state = r.value == q ? 1 : 0;
    drawImageButton(p.buttons[i], p.icons[r.cell]);
  }
  cfg.dispQuantFlag = q;

  // A blocking prompt stands on a copy of this frame.
  deleteImage(p.inputBox.backdrop);
  p.inputBox.backdrop = makeImage(cfg.screenWidth, cfg.screenHeight, 1);
  captureScreen(0, 0, cfg.screenWidth, cfg.screenHeight, p.inputBox.backdrop);

  // Scale limits: the button on with no limit asks for one; the button off
  // drops it. A cancelled prompt leaves the limit off, and the next frame
  // takes the button out again.
  for (int i = 0; i < panelButtonCount; ++i) {
    const buttonRow& r = table[i];
    if (r.kind != action::minScale && r.kind != action::maxScale) continue;
    const bool isMin = r.kind == action::minScale;
    std::uint8_t& flag = isMin ? cfg.manualMinFlag : cfg.manualMaxFlag;
    double& value = isMin ? cfg.manualMinValue : cfg.manualMaxValue;
    if (p.buttons[i].state == 1 && flag == 0) {
      if (askScaleLimit(p, cfg, isMin ? minScaleText : maxScaleText, value) == 1) flag = 1;
    } else if (p.buttons[i].state == 0 && flag == 1) {
      flag = 0;
    }
  }
  for (int i = 0; i < panelButtonCount; ++i)
    if (table[i].kind == action::autoScale && p.buttons[i].state == 1) cfg.manualMinFlag = cfg.manualMaxFlag = 0;

  if (cfg.mouseX >= 1 && cfg.mouseX <= p.panelWidth && cfg.mouseY >= 0 && cfg.mouseY <= p.panelHeight) return 1;
  // The pointer has left: the panel closes at once and the settings are kept.
  if (cfg.ts >= 1) syncViz(cfg, 1);
  return 0;
}

}  // namespace

double scaleLimitOf(const char* text) {
  std::string kept;
  for (const char* c = text; c != nullptr && *c != '\0'; ++c)
    if ((*c >= '0' && *c <= '9') || *c == '+' || *c == '-' || *c == '.' || *c == 'E' || *c == 'e') kept += *c;
  return std::strtod(kept.c_str(), nullptr);
}

panelButtonPlace panelButtonAt(int index) {
  if (index < 0 || index >= panelButtonCount) return {"", 0, 0, 0};
  const buttonRow& r = table[index];
  return {r.label, r.cell, r.row, r.column};
}

void constructControlPanel(controlPanel& panel, appConfig& cfg) {
  sceneView* scene = panel.scene;
  destroyControlPanel(panel);
  panel.scene = scene;
  controlPanel& p = panel;
  p.triggerWidth = p.triggerHeight = cfg.buttonSize;
  p.panelWidth = 16 * (cfg.mediumSize + cfg.buttonSize) + cfg.mediumSize;
  p.panelHeight = 3 * (cfg.mediumSize + cfg.buttonSize) + cfg.mediumSize;
  p.cellSize = cfg.buttonSize;
  p.cellGap = cfg.mediumSize;
  p.frameWidth = cfg.textGap / 2;
  p.shadowSize = static_cast<int>(2.5 * cfg.textGap);
  p.slideY = -p.panelHeight;
  p.openedMs = p.panelNowMs = nowMs();

  int cells[panelIconCount] = {};
  if (loadImageSetResource(iconResource, panelIconCount, 10, 10, iconCellSize, iconCellSize, cells) == 0)
    for (int i = 0; i < panelIconCount; ++i) p.icons[i] = cells[i] > 0 ? cells[i] : 0;
  int arrows[panelArrowCount] = {};
  if (loadImageSetResource(arrowResource, panelArrowCount, 3, 1, arrowWidth, arrowHeight, arrows) == 0)
    for (int i = 0; i < panelArrowCount; ++i) p.arrows[i] = arrows[i] > 0 ? arrows[i] : 0;
  const int back = loadImageResource(backResource);
  p.backImage = back > 0 ? back : 0;

  p.inputBox = makeTextBox(cfg.textHeight, cfg.fontBody);
  setTextBoxButtons(p.inputBox, 5);
  p.inputBox.hasInput = 1;
  for (imageButton* b :
       {&p.inputBox.okButton, &p.inputBox.cancelButton, &p.inputBox.nextButton, &p.inputBox.prevButton}) {
    b->imageFont = b->plainFont = cfg.fixedTiny;
    b->imageFontSize = b->plainFontSize = cfg.tinySize;
  }

  for (int i = 0; i < panelButtonCount; ++i) setUpPanelButton(p.buttons[i], cfg, table[i].label, p.icons[shadowCell]);
  setUpArrow(p.prevButton, cfg, "Prev", p.arrows[2]);
  setUpArrow(p.nextButton, cfg, "Next", p.arrows[2]);
}

void runControlPanel(controlPanel& p, appConfig& cfg) {
  if (cfg.analysisMode) {
    const int y = static_cast<int>((cfg.screenHeight - arrowHeight) * 0.5);
    if (runImageButton(p.prevButton, 2 * cfg.textGap, y, p.arrows[0], 0, 1) == 1) cfg.analysisDirection = -1;
    if (runImageButton(p.nextButton, cfg.screenWidth - arrowWidth - 2 * cfg.textGap, y, p.arrows[1], 0, 1) == 1)
      cfg.analysisDirection = 1;
  }
  if (cfg.panelBusy == 0) {
    p.openedMs = nowMs();
    if (windowActive() && cfg.mouseInScreen) {
      drawImageStretched(cfg.textGap, cfg.textGap, cfg.textGap + cfg.buttonSize, cfg.textGap + cfg.buttonSize,
                         p.icons[cornerCell], 1);
      cfg.snapshotRequested = runImageButton(p.buttons[snapshotIndex], p.triggerWidth + 2 * cfg.textGap, cfg.textGap,
                                             p.icons[table[snapshotIndex].cell], 0, 1);
    }
    if (windowActive() && cfg.mouseX >= 1 && cfg.mouseX <= p.triggerWidth && cfg.mouseY >= 1 &&
        cfg.mouseY <= p.triggerHeight)
      cfg.panelBusy = 1;
    if (cfg.panelBusy == 0) return;
  }
  cfg.panelBusy = runPanelStep(p, cfg);
}

void destroyControlPanel(controlPanel& panel) {
  for (int& icon : panel.icons) deleteImage(icon);
  for (int& arrow : panel.arrows) deleteImage(arrow);
  deleteImage(panel.backImage);
  deleteImage(panel.inputBox.backdrop);
  panel.inputBox.backdrop = 0;
  destroyTextBox(panel.inputBox);
  panel = controlPanel{};
}

}  // namespace marv
