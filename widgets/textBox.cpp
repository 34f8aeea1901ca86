// textBox: construction and layout, line breaking, measuring, and the frame
// of showTextBox (look, back, frame, text, input, buttons, answer).
//
// Sections: construction and layout | line breaking | measuring | showing
#include "widgets/textBox.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "layer/layer.h"

namespace marv {

namespace {

constexpr int iconResource = 888;  // strip of the ten box icons
constexpr int iconCells = 10;      // cells of the strip
constexpr int iconCell = 64;       // cell size in the picture [px]
constexpr double pi = 3.14159265358979323846;

int utf8Length(unsigned char lead) {
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  return 1;  // a stray continuation or invalid byte stands alone
}

// Bytes of the character at pos, never past the end of the text.
int charLength(const char* text, int pos, int length) {
  const int n = utf8Length(static_cast<unsigned char>(text[pos]));
  return pos + n > length ? length - pos : n;
}

bool startsWith(const char* text, int pos, int length, const char* mark) {
  const int n = static_cast<int>(std::strlen(mark));
  return pos + n <= length && std::memcmp(text + pos, mark, n) == 0;
}

// The four buttons get their common look; labels follow the button set.
void setUpButton(imageButton& b, const textBox& box, const char* label) {
  b.width = b.height = box.iconSize;
  b.labelKind = 2;
  b.label = label;
  b.shadowImage = box.icons[8];
  b.pressShift = box.iconSize / 20;
  b.shadowOffset = static_cast<int>(1.5 * b.pressShift);
  b.imageFont = box.font;
  b.imageFontSize = box.fontSize;
  b.plainFont = box.font;
  b.plainFontSize = box.fontSize;
  b.state = 0;
}

}  // namespace

// ---------------------------------------------------------------- construction and layout

textBox makeTextBox(int fontSize, int font) {
  textBox box;
  box.fontSize = fontSize;
  box.font = font;
  // The input takes any UTF-8 text: Japanese typed through an input method
  // reaches the caller, which decides what it accepts.
  box.inputHandle = makeTextInput(textBoxInputLength, 0, 0, 0, 0, 0);
  layoutTextBox(box);
  return box;
}

void layoutTextBox(textBox& box) {
  box.lineGap = static_cast<int>(0.3 * box.fontSize);
  box.padding = static_cast<int>(1.5 * box.fontSize);
  const int c = textWidthInFont(box.font, "a");
  imageSize(backBuffer, &box.windowWidth, &box.windowHeight);
  box.placed = 0;
  box.boxWidth = 50 * c;
  box.boxHeight = box.windowHeight / 3;
  box.boxX = (box.windowWidth - box.boxWidth) / 2;
  box.boxY = (box.windowHeight - box.boxHeight) / 2;

  for (int& icon : box.icons) {
    deleteImage(icon);
    icon = 0;
  }
  int cells[iconCells];
  if (loadImageSetResource(iconResource, iconCells, iconCells, 1, iconCell, iconCell, cells) == 0)
    for (int i = 0; i < iconCells; ++i) box.icons[i] = cells[i] > 0 ? cells[i] : 0;
  setUpButton(box.nextButton, box, "Next");
  setUpButton(box.prevButton, box, "Prev");
  setUpButton(box.okButton, box, "Yes");
  setUpButton(box.cancelButton, box, "No");
}

void setTextBoxButtons(textBox& box, int kind) {
  switch (kind) {
    case 5:
      box.okButton.label = "OK";
      box.cancelButton.label = "Cancel";
      box.buttonSet = 4;
      break;
    case 6:
      box.okButton.label = "OK";
      box.buttonSet = 5;
      break;
    case 8:
      box.prevButton.label = "Return";
      box.buttonSet = 2;
      break;
    default: box.buttonSet = 0; break;
  }
}

void endScreenFrame() {
  present();
  clearDrawTarget();
  waitMs(1);
  if (processMessages() == -1) {
    stopLayer();
    std::exit(0);
  }
}

void destroyTextBox(textBox& box) {
  for (int& icon : box.icons) {
    deleteImage(icon);
    icon = 0;
  }
  deleteTextInput(box.inputHandle);
  box.inputHandle = -1;
}

// ---------------------------------------------------------------- line breaking

int breakLine(const char* text, int start, int charsPerLine, bool doubleByte) {
  const int length = text ? static_cast<int>(std::strlen(text)) : 0;
  const char* openMark = doubleByte ? "\xEF\xBC\xBB" : "[";   // ［ starts a new line
  const char* headMark = doubleByte ? "\xE3\x80\x90" : "**";  // 【 a heading stands alone
  const char* tailMark = doubleByte ? "\xE3\x80\x91" : "**";  // 】
  const int tailLength = static_cast<int>(std::strlen(tailMark));
  int lastSpace = start;
  bool inHead = false;
  int columns = 0;
  for (int pos = std::max(start, 0);;) {
    if (pos >= length) return length - 1;
    const int step = charLength(text, pos, length);
    if (text[pos] == '\n') return pos;  // a line break of the text ends the line
    if (!doubleByte && text[pos] == ' ') lastSpace = pos;
    if (pos != start && startsWith(text, pos, length, openMark)) return pos - 1;
    if (startsWith(text, pos, length, headMark)) {
      if (pos != start && (doubleByte || !inHead)) return pos - 1;
      if (!doubleByte && pos == start) inHead = true;
    }
    if (pos != start && startsWith(text, pos, length, tailMark)) return pos + tailLength - 1;
    columns += step == 1 ? 1 : 2;
    if (pos != start && columns > charsPerLine) {
      if (doubleByte || lastSpace == start) return pos - 1;  // a word too long for the line is cut
      return lastSpace;                                      // words wrap at a blank
    }
    pos += step;
  }
}

// ---------------------------------------------------------------- measuring

void measureTextBox(textBox& box, const char* text) {
  if (text == nullptr) text = "";
  const int length = static_cast<int>(std::strlen(text));
  const int c = std::max(1, textWidthInFont(box.font, box.doubleByte ? "\xE3\x81\x82" : "a"));  // あ or a
  box.charsPerLine = (box.boxWidth - 2 * box.padding) / c;
  if (box.doubleByte) box.charsPerLine *= 2;  // full-width characters take two columns

  box.lineCount = 0;
  for (int start = 0;;) {
    const int end = breakLine(text, start, box.charsPerLine, box.doubleByte != 0);
    ++box.lineCount;
    if (end >= length - 1) break;
    start = end + 1;
  }

  box.boxHeight = (box.fontSize + box.lineGap) * box.lineCount + 2 * box.padding;
  if (box.buttonSet != 0) box.boxHeight += box.iconSize + box.gap;
  box.inputWidth = 2 * box.boxWidth / 3;
  box.inputHeight = box.fontSize + box.gap;
  if (box.hasInput) box.boxHeight += box.inputHeight + 2 * box.gap;

  if (box.placed == 0) {
    box.boxY = (box.windowHeight - box.boxHeight) / 2;
  } else if (box.positionMode == 0) {
    box.offsetY = -box.boxHeight;
  } else {
    int mx = 0, my = 0;
    mousePosition(&mx, &my);
    box.offsetX = mx - box.boxX + 5;
    box.offsetY = my - box.boxY + 5;
  }

  box.inputX = (box.boxWidth - box.inputWidth) / 2 + box.offsetX + box.boxX;
  box.inputY = box.buttonY =
      (box.fontSize + box.lineGap) * box.lineCount + box.boxY + box.gap + box.padding + box.offsetY;
  if (box.hasInput) box.buttonY += box.inputHeight + 2 * box.gap;

  if (box.positionMode == 1 && box.boxHeight + box.gap + box.offsetY + box.boxY > box.windowHeight) {
    // The box flips above the mouse.
    box.offsetY -= box.boxHeight;
    box.inputY -= box.boxHeight;
    box.buttonY -= box.boxHeight;
  }
}

// ---------------------------------------------------------------- showing

namespace {

void setLook(textBox& box) {
  box.frameColour = colourSky;
  box.bodyColour = box.textColour;
  box.backColour = colourWhite;
  box.backAlpha = 0;
  switch (box.frameKind) {
    case 0: {
      // A red frame that pulses once per second.
      const int c = 180 - static_cast<int>((std::cos(nowMs() * 2.0 * pi / 1000.0) + 1.0) * 90.0);
      box.frameColour = colour(255, c, c);
      break;
    }
    case 1:
      box.bodyColour = colourWhite;
      box.backColour = colourSky;
      break;
    case 3:
      box.backAlpha = 128;
      box.frameColour = 0;
      break;
    case 4: box.backColour = box.frameColour = 0; break;
    case 5:
      box.bodyColour = colour(252, 252, 252);
      box.backColour = box.frameColour = 0;
      break;
    default: break;
  }
}

void drawBack(const textBox& box, int x, int y) {
  if (box.backAlpha != 0) {
    setBlend(1, box.backAlpha);
    drawBox(x, y, x + box.boxWidth, y + box.boxHeight, box.backColour, 1);
    setBlend(0, 0);
  } else if (box.backColour != 0) {
    setBlend(1, 128);
    if (box.icons[9] > 0)
      drawImageStretched(x, y, x + box.boxWidth + box.gap, y + box.boxHeight + box.gap, box.icons[9], 1);
    setBlend(0, 0);
    drawBox(x, y, x + box.boxWidth, y + box.boxHeight, box.backColour, 1);
  }
  if (box.frameColour != 0)
    drawBoxF(static_cast<float>(x), static_cast<float>(y), static_cast<float>(x + box.boxWidth),
             static_cast<float>(y + box.boxHeight), box.frameColour, 0, static_cast<float>(box.gap));
}

void drawLines(const textBox& box, const char* text, int x, int y) {
  const int length = static_cast<int>(std::strlen(text));
  std::string line;
  for (int start = 0, n = 0; n < box.lineCount && start < length; ++n) {
    const int end = breakLine(text, start, box.charsPerLine, box.doubleByte != 0);
    line.assign(text + start, static_cast<std::size_t>(end - start + 1));
    if (!line.empty() && line.back() == '\n') line.pop_back();
    drawText(x, (box.fontSize + box.lineGap) * n + y, line.c_str(), box.bodyColour, box.font, 0, 0);
    start = end + 1;
  }
}

// The buttons of the set, side by side, centred in the box; the answer
// they give in this frame.
int runButtons(textBox& box, int x) {
  const int pair = 2 * box.iconSize + box.gap;
  const int left = x + (box.boxWidth - pair) / 2;
  const int single = x + (box.boxWidth - box.iconSize) / 2;
  const int y = box.buttonY;
  switch (box.buttonSet) {
    case 1: {
      const int prev = runImageButton(box.prevButton, left, y, box.icons[0], 0, 1);
      const int next = runImageButton(box.nextButton, left + box.iconSize + box.gap, y, box.icons[1], 0, 1);
      return next - prev;
    }
    case 4: {
      const int ok = runImageButton(box.okButton, left, y, box.icons[2], 0, 1);
      const int cancel = runImageButton(box.cancelButton, left + box.iconSize + box.gap, y, box.icons[3], 0, 1);
      return ok - cancel;
    }
    case 2: return -runImageButton(box.prevButton, single, y, box.icons[0], 0, 1);
    case 5: return runImageButton(box.okButton, single, y, box.icons[2], 0, 1);
    default: return -1;
  }
}

}  // namespace

int showTextBox(textBox& box, const char* text, int nonBlocking, int restoreInput) {
  if (text == nullptr) text = "";
  box.doubleByte = static_cast<unsigned char>(text[0]) >= 0x80 ? 1 : 0;
  box.charBytes = text[0] ? utf8Length(static_cast<unsigned char>(text[0])) : 1;
  measureTextBox(box, text);
  box.entered = 0;

  int result = 0;
  for (;;) {
    setLook(box);
    const int x = box.boxX + box.offsetX, y = box.boxY + box.offsetY;
    int mx = 0, my = 0;
    mousePosition(&mx, &my);
    box.hover = std::abs(mx - (x + box.boxWidth / 2)) <= box.boxWidth / 2 &&
                std::abs(my - (y + box.boxHeight / 2)) <= box.boxHeight / 2;

    if (box.backdrop > 0) drawImage(0, 0, box.backdrop, 0);
    drawBack(box, x, y);
    drawLines(box, text, x + box.padding, y + box.padding);

    if (box.hasInput) {
      // Once per showing: a box shown frame by frame (non-blocking) keeps
      // its input active, so that an Enter between two frames is seen.
      if (!box.inputActive) {
        activateTextInput(box.inputHandle);
        box.inputActive = 1;
      }
      setTextInputClip(box.inputX, box.inputY, box.inputX + box.inputWidth - 3, box.inputY + box.inputHeight - 3,
                       box.inputHandle);
      drawTextInput(box.inputX, box.inputY, box.inputHandle, 1);
      if (textInputState(box.inputHandle) == 1) box.entered = 1;
      const int bottom = box.inputY + box.inputHeight;
      drawLine(box.inputX, box.inputY, box.inputX, bottom, colourGrey, 1);
      drawLine(box.inputX, bottom, box.inputX + box.inputWidth, bottom, colourGrey, 1);
    }

    result = runButtons(box, x);
    if (keyDown(keyEnter)) {
      result = 1;
      break;
    }
    // Esc answers like the box's negative button, where it has one, but
    // not the Esc that opened the box: that one must go up first.
    if (!keyDown(keyEsc)) box.escArmed = 1;
    if (keyDown(keyEsc) && box.escArmed && (box.buttonSet == 1 || box.buttonSet == 2 || box.buttonSet == 4)) {
      box.escArmed = 0;
      result = -1;
      break;
    }
    if (box.entered && result == 0) result = 1;  // Enter in the input, whatever became of the key
    if (result != 0) break;
    if (nonBlocking) return 0;

    endScreenFrame();
  }

  box.hover = 0;
  box.inputActive = 0;
  if (box.hasInput && restoreInput != 0) activateTextInput(restoreInput);
  return result;
}

}  // namespace marv
