// The shared parts of the full-window screens.
#include "app/screenKit.h"

#include <cstdlib>
#include <cstring>

#include "app/catalogue.h"
#include "layer/layer.h"
#include "widgets/textBox.h"

namespace marv {

screenInput readScreenInput() {
  screenInput in;
  mousePosition(&in.mouseX, &in.mouseY);
  const int buttons = mouseButtons();
  in.left = (buttons & mouseLeft) != 0;
  in.right = (buttons & mouseRight) != 0;
  in.wheel = mouseWheel(1);
  in.enter = keyDown(keyEnter) != 0;
  in.esc = keyDown(keyEsc) != 0;
  in.up = keyDown(keyArrowUp) != 0;
  in.down = keyDown(keyArrowDown) != 0;
  in.pageUp = keyDown(keyPageUp) != 0;
  in.pageDown = keyDown(keyPageDown) != 0;
  in.home = keyDown(keyHome) != 0;
  in.end = keyDown(keyEnd) != 0;
  in.arrowLeft = keyDown(keyLeft) != 0;
  in.arrowRight = keyDown(keyRight) != 0;
  in.now = nowMs();
  return in;
}

bool clickButton(screenButton& b, int x, int y, int size, const screenInput& in) {
  b.x = x;
  b.y = y;
  b.size = size;
  b.hover = in.mouseX >= x && in.mouseX < x + size && in.mouseY >= y && in.mouseY < y + size;
  if (!b.hover) {
    b.armed = false;
    b.pressed = false;
    return false;
  }
  if (!in.left && !b.pressed) {
    b.armed = true;
    return false;
  }
  if (in.left && b.armed && !b.pressed) {
    b.pressed = true;
    b.pressX = in.mouseX;
    b.pressY = in.mouseY;
    return false;
  }
  if (!in.left && b.pressed) {
    b.pressed = false;
    const bool same = in.mouseX == b.pressX && in.mouseY == b.pressY;
    b.armed = true;
    return same;
  }
  return false;
}

bool rowFires(rowButton& row, bool inside, bool buttonDown) {
  if (!inside) {
    row.armed = false;
    return false;
  }
  if (!buttonDown) {
    row.armed = true;
    return false;
  }
  if (row.armed) {
    row.armed = false;
    return true;
  }
  return false;
}

void loadButtonTiles(buttonTiles& tiles) {
  freeButtonTiles(tiles);
  tiles.handles.fill(-1);
  loadImageSetResource(777, 20, 10, 2, 64, 64, tiles.handles.data());
  tiles.loaded = true;
}

void freeButtonTiles(buttonTiles& tiles) {
  if (!tiles.loaded) return;
  for (int h : tiles.handles) deleteImage(h);
  tiles.handles.fill(-1);
  tiles.loaded = false;
}

void drawScreenButton(const screenButton& b, const buttonTiles& tiles, int tile, const char* caption, int font) {
  const int shift = b.pressed ? b.size / 20 : 0;
  const int image = tiles.handles[b.pressed ? tilePressed : tile];
  if (tiles.loaded && image >= 0) {
    drawImageStretched(b.x + shift, b.y + shift, b.x + b.size + shift, b.y + b.size + shift, image, 1);
  } else {
    drawBox(b.x + shift, b.y + shift, b.x + b.size + shift, b.y + b.size + shift, colour(160, 160, 160), 1);
  }
  if (b.hover) {
    setBlend(1, 16);
    drawBox(b.x, b.y, b.x + b.size, b.y + b.size, colour(0, 180, 255), 1);
    setBlend(0, 0);
    if (caption != nullptr && caption[0] != '\0')
      drawText(b.x, b.y + b.size + shift, caption, colour(50, 50, 50), font, 0, 0);
  }
}

bool enterAfterDebounce(const appConfig& cfg, const screenInput& in) {
  return in.enter && in.now - cfg.lastKeyMs > cfg.keyDelayMs;
}

void ensureScreenFonts(appConfig& cfg) {
  const int h = cfg.textHeight > 0 ? cfg.textHeight : 20;
  auto make = [](int& handle, const char* face, int size, int thickness) {
    if (handle < 0) handle = makeFont(face, size, thickness, 18, -1, 0, 0, 0);
  };
  make(cfg.fontBody, "Consolas", h, 4);
  make(cfg.fontBold, "Consolas", h, 6);
  make(cfg.fontTiny, "Consolas", h * 7 / 10, 5);
  make(cfg.fontCaption, "Consolas", h * 85 / 100, 5);
  make(cfg.fontHeading, "Consolas", h * 12 / 10, 6);
  make(cfg.fontTitle, "Consolas", h * 27 / 10, 10);
  make(cfg.fixedBold, "Consolas", h, 6);
  make(cfg.fixedCaption, "Consolas", h * 85 / 100, 5);
  make(cfg.fixedSmall, "Consolas Bold", h * 3 / 4, 4);
  make(cfg.fixedHeading, "Consolas", h * 12 / 10, 6);
  make(cfg.logoFont, "Times New Roman Bold", h * 5 / 2, 16);
  make(cfg.logoPlusFont, "Times New Roman Bold", h * 13 / 8, 16);
  if (cfg.fixedInput < 0) cfg.fixedInput = cfg.fixedHeading;
}

std::string screenText(const appConfig& cfg, int number) { return catalogueText(number, cfg.uiJapanese != 0); }

void showScreenMessage(appConfig& cfg, const std::string& text) {
  ensureScreenFonts(cfg);
  textBox box = makeTextBox(cfg.textHeight, cfg.fontBody);
  setTextBoxButtons(box, 6);
  // What stands on the screen now is the back of the box.
  int width = 0, height = 0;
  imageSize(backBuffer, &width, &height);
  if (width > 0 && height > 0) {
    box.backdrop = makeImage(width, height, 1);
    captureScreen(0, 0, width, height, box.backdrop);
  }
  showTextBox(box, text.c_str(), 0, 0);
  deleteImage(box.backdrop);
  box.backdrop = 0;
  destroyTextBox(box);
  cfg.lastKeyMs = nowMs();
}

}  // namespace marv
