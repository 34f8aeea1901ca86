// The shared parts of the full-window screens.
#include "app/screenKit.h"

#include <cstdlib>
#include <cstring>

#include "app/catalogue.h"
#include "layer/layer.h"

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

void endScreenFrame() {
  present();
  clearDrawTarget();
  waitMs(1);
  if (processMessages() == -1) {
    stopLayer();
    std::exit(0);
  }
}

void showScreenMessage(appConfig& cfg, const std::string& text) {
  ensureScreenFonts(cfg);
  buttonTiles tiles;
  loadButtonTiles(tiles);
  screenButton ok;
  int w = 0, h = 0;
  // What stands on the screen now is the back of the box.
  const int width = cfg.screenWidth > 0 ? cfg.screenWidth : 1080;
  const int height = cfg.screenHeight > 0 ? cfg.screenHeight : 560;
  const int backdrop = makeImage(width, height, 1);
  captureScreen(0, 0, width, height, backdrop);
  imageSize(backdrop, &w, &h);
  const int lineHeight = cfg.textHeight + cfg.textGap;
  const int boxW = width * 2 / 3, boxX = (width - boxW) / 2;
  // Lines broken at blanks to fit the box.
  std::string lines[8];
  int count = 0;
  {
    const int chars = std::max(10, (boxW - 2 * lineHeight) / std::max(1, textWidthInFont(cfg.fontBody, "a")));
    std::string rest = text;
    while (!rest.empty() && count < 8) {
      std::size_t cut = rest.size();
      if (static_cast<int>(cut) > chars) {
        cut = rest.rfind(' ', chars);
        if (cut == std::string::npos || cut == 0) cut = chars;
      }
      lines[count++] = rest.substr(0, cut);
      rest = cut < rest.size() ? rest.substr(cut + (rest[cut] == ' ' ? 1 : 0)) : std::string();
    }
  }
  const int boxH = count * lineHeight + 2 * lineHeight + cfg.buttonSize;
  const int boxY = (height - boxH) / 2;
  const int start = nowMs();
  for (;;) {
    const screenInput in = readScreenInput();
    if (backdrop >= 0) drawImage(0, 0, backdrop, 0);
    drawBox(boxX, boxY, boxX + boxW, boxY + boxH, colour(255, 255, 255), 1);
    drawBoxF(static_cast<float>(boxX), static_cast<float>(boxY), static_cast<float>(boxX + boxW),
             static_cast<float>(boxY + boxH), colour(255, 120, 120), 0, 6.0f);
    for (int i = 0; i < count; ++i)
      drawText(boxX + lineHeight, boxY + lineHeight + i * lineHeight, lines[i].c_str(), colour(0, 0, 0), cfg.fontBody,
               0, 0);
    const int bx = boxX + (boxW - cfg.buttonSize) / 2, by = boxY + boxH - cfg.buttonSize - lineHeight / 2;
    const bool clicked = clickButton(ok, bx, by, cfg.buttonSize, in);
    drawScreenButton(ok, tiles, tileProceed, "OK", cfg.fontCaption);
    const bool keyed = (in.enter || in.esc) && in.now - start > cfg.keyDelayMs;
    endScreenFrame();
    if (clicked || keyed) break;
  }
  cfg.lastKeyMs = nowMs();
  deleteImage(backdrop);
  freeButtonTiles(tiles);
}

}  // namespace marv
