// The frame of the screens: logo, proceed hint, backdrop, splash and the
// shared buttons.
//
// Sections: logo and hint | backdrop | splash | buttons
#include "app/screenFrame.h"

#include <algorithm>
#include <cmath>

#include "app/catalogue.h"
#include "app/fontSet.h"
#include "layer/layer.h"

namespace marv {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int hintHoldMs = 2500;      // the proceed hint stays this long [ms]
constexpr int hintFadeMsPerStep = 2;  // then loses one alpha step per 2 ms
constexpr int wobblePeriodMs = 5000;  // of the backdrop's up and down [ms]
constexpr int backdropAlpha = 40;     // of the backdrop's circles [0..255]
constexpr int backdropSegments = 32;  // of a circle

// ---------------------------------------------------------------- backdrop helpers

// The C library's classic generator, 0..32767, so that every pass draws the
// same backdrop.
int nextRandom(unsigned int& seed) {
  seed = seed * 1103515245u + 12345u;
  return static_cast<int>((seed / 65536u) % 32768u);
}

float randomIn(unsigned int& seed, double lo, double hi) {
  return static_cast<float>(lo + (hi - lo) * nextRandom(seed) / 32767.0);
}

float radiusOf(const appConfig& cfg, int layer) { return static_cast<float>(layer * 0.3 * cfg.textHeight); }

// A new height and swing, for the start and for each re-entry at the left.
void newSwing(backdropState& b, backdropCircle& c) {
  c.startY = randomIn(b.seed, 0.0, b.height);
  c.amplitude = randomIn(b.seed, -0.125 * b.height, 0.125 * b.height);
}

void makeBackdrop(appConfig& cfg) {
  backdropState& b = cfg.backdrop;
  imageSize(backBuffer, &b.width, &b.height);
  b.seed = 1;
  for (int i = 0; i < backdropCircles; ++i) {
    backdropCircle& c = b.circles[i];
    c.layer = i < backdropCircles - 1 ? 1 + i / backdropCirclesPerLayer : backdropLayers;
    c.x = randomIn(b.seed, 0.0, b.width);
    newSwing(b, c);
    c.phase = randomIn(b.seed, 0.0, 2.0 * pi);
  }
  b.startMs = b.lastMs = nowMs();
  b.made = 1;
}

}  // namespace

// ---------------------------------------------------------------- logo and hint

int drawLogo(appConfig& cfg, int x, int y, std::uint32_t textColour, std::uint32_t versionColour, int centred,
             const char* caption) {
  const int wordWidth = textWidthInFont(cfg.logoFont, "Marvanesse");
  const int plusWidth = textWidthInFont(cfg.logoPlusFont, "+");
  const int width = wordWidth + plusWidth;
  if (centred != 0 && centred != 1) return width;

  const int left = centred == 1 ? x - width / 2 : x;
  const int top = centred == 1 ? y - cfg.logoSize / 2 : y;
  if (caption != nullptr && caption[0] != '\0') {
    const int captionWidth = textWidthInFont(cfg.fontBody, "%s", caption);
    drawText(left + (wordWidth - captionWidth) / 2, top - cfg.textHeight - cfg.textGap, caption, textColour,
             cfg.fontBody, 0, 0);
  }
  drawText(left, top, "Marvanesse", textColour, cfg.logoFont, 0, 0);
  drawText(left + wordWidth, top - cfg.logoPlusSize / 5, "+", textColour, cfg.logoPlusFont, 0, 0);
  const int versionWidth = textWidthInFont(cfg.fixedTiny, "%s", cfg.version.c_str());
  drawText(left + width - versionWidth, top + cfg.logoSize, cfg.version.c_str(), versionColour, cfg.fixedTiny, 0, 0);
  return width;
}

void drawProceedHint(appConfig& cfg, int x, int y, int font, int lineHeight) {
  const int now = nowMs();
  if (cfg.proceedHintStartMs < 0) cfg.proceedHintStartMs = now;
  const int shown = now - cfg.proceedHintStartMs;
  const int alpha = shown <= hintHoldMs ? 255 : 255 - (shown - hintHoldMs) / hintFadeMsPerStep;
  if (alpha <= 0) return;
  const bool japanese = cfg.uiJapanese != 0;
  const std::string lines[2] = {catalogueText(34, japanese), catalogueText(35, japanese)};
  setBlend(1, alpha);
  for (int i = 0; i < 2; ++i) {
    const int w = textWidthInFont(font, "%s", lines[i].c_str());
    drawText(x - w, y + i * lineHeight, lines[i].c_str(), cfg.greyColour, font, 0, 0);
  }
  setBlend(0, 0);
}

// ---------------------------------------------------------------- backdrop

void drawBackdrop(appConfig& cfg, double speed) {
  backdropState& b = cfg.backdrop;
  if (!b.made) makeBackdrop(cfg);
  const int now = nowMs();
  const double step = std::max(0, now - b.lastMs);  // [ms] since the last frame
  b.lastMs = now;
  const double wobble = 2.0 * pi * (now - b.startMs) / wobblePeriodMs;
  const float middle = 0.5f * static_cast<float>(b.height);

  setBlend(1, backdropAlpha);
  for (int i = 0; i < backdropCircles; ++i) {
    backdropCircle& c = b.circles[i];
    const bool fast = i == backdropCircles - 1;
    const float r = radiusOf(cfg, c.layer);
    c.x += static_cast<float>((fast ? 4 : c.layer) * speed * step);
    if (c.x - 2.0f * r > static_cast<float>(b.width)) {
      c.x = -2.0f * r;
      newSwing(b, c);
    }
    float y = c.startY + 0.5f * c.amplitude * static_cast<float>(std::cos(c.phase + wobble));
    if (fast) y = middle + 0.3f * (y - middle);  // the fast one keeps near the middle
    drawCircleF(c.x, y, r, backdropSegments, fast ? cfg.panelColour : colourSky, 1, 1.0f);
  }
  setBlend(0, 0);
}

// ---------------------------------------------------------------- splash

void showSplash(appConfig& cfg) {
  clearDrawTarget();
  int width = 0, height = 0;
  imageSize(backBuffer, &width, &height);
  drawLogo(cfg, width / 2, height / 2, colourWhite, colourWhite, 1, nullptr);
  present();
  clearDrawTarget();
  waitMs(2 * cfg.keyDelayMs);
}

// ---------------------------------------------------------------- buttons

void freeButtonTiles(appConfig& cfg) {
  for (int& tile : cfg.buttonTiles) {
    deleteImage(tile);
    tile = 0;
  }
}

void setUpButtons(appConfig& cfg) {
  freeButtonTiles(cfg);
  int tiles[20];
  if (loadImageSetResource(777, cfg.buttonTileCount, cfg.buttonTilesAcross, cfg.buttonTilesDown, cfg.buttonTileSize,
                           cfg.buttonTileSize, tiles) == 0)
    for (int i = 0; i < cfg.buttonTileCount; ++i) cfg.buttonTiles[i] = tiles[i] > 0 ? tiles[i] : 0;

  const char* captions[13] = {"Up",   "Down", "Cancel",  "Proceed", "Add",     "Remove",   "Swap",
                              "Swap", "",     "Rot STL", "Rot STL", "Rot STL", "Centering"};
  for (int i = 0; i < 13; ++i) {
    imageButton& b = cfg.buttons[i];
    b = imageButton{};
    b.label = captions[i];
    b.width = b.height = cfg.buttonSize;
    b.pressShift = cfg.buttonSize / 20;
    b.labelKind = 1;
    b.imageFont = cfg.fontCaption;
    b.imageFontSize = cfg.captionSize;
    b.plainFont = cfg.fontCaption;
    b.plainFontSize = cfg.captionSize;
  }
}

int runAppButton(appConfig& cfg, int index, int x, int y, int state) {
  // Normal tile of each button; the spare one has none.
  constexpr int normalTile[13] = {0, 1, 2, 3, 4, 5, 6, 7, -1, 10, 11, 12, 13};
  constexpr int pressedTile = 19;
  if (index < 0 || index >= 13) return state;
  imageButton& b = cfg.buttons[index];
  const int result = runImageButton(b, x, y, 0, state, 0);
  const int tile = b.pressed ? pressedTile : normalTile[index];
  drawImageButton(b, tile >= 0 ? cfg.buttonTiles[tile] : 0);
  return result;
}

}  // namespace marv
