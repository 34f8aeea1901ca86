// The start screen's frame: place, hit-test, behaviour, draw, result.
#include "app/startScreen.h"

#include "layer/layer.h"

namespace marv {

namespace {

constexpr int proceedTile = 3;  // tile of the "Proceed" button
constexpr int tileSide = 64;    // [px]
constexpr int cornerGap = 24;   // "Proceed" from the bottom right corner [px]

bool inside(const int box[4], int x, int y) { return x >= box[0] && x < box[2] && y >= box[1] && y < box[3]; }

void drawStartScreen(const startScreen& s, const appConfig& cfg) {
  const int width = cfg.sceneWidth, height = cfg.sceneHeight;
  const std::uint32_t white = colour(255, 255, 255);
  const std::uint32_t navy = colour(20, 60, 120);
  drawBox(0, 0, width, height, colour(0, 176, 240), 1);
  const int word = textWidthInFont(s.logoFont, "Marvanesse");
  const int plusWidth = textWidthInFont(s.plusFont, "+");
  const int x = (width - word - plusWidth) / 2;
  const int y = height / 2 - 90;
  drawText(x, y, "Marvanesse", white, s.logoFont, 0, 0);
  drawText(x + word, y - 8, "+", white, s.plusFont, 0, 0);
  const int versionWidth = textWidthInFont(s.tinyFont, "%s", cfg.version.c_str());
  drawTextFormat(x + word + plusWidth - versionWidth, y + 70, white, s.tinyFont, "%s", cfg.version.c_str());
  drawRoundedBoxF(140.0f, height / 2.0f + 20.0f, width - 140.0f, height / 2.0f + 110.0f, 12.0f, 12.0f, 8, white, 1,
                  1.0f);
  const char* hint1 = "The project screens are not built yet.";
  const char* hint2 = "Run a project with: marvanesse-batch PROJECT_DIR";
  drawText((width - textWidthInFont(s.bodyFont, "%s", hint1)) / 2, height / 2 + 36, hint1, navy, s.bodyFont, 0, 0);
  drawText((width - textWidthInFont(s.bodyFont, "%s", hint2)) / 2, height / 2 + 70, hint2, navy, s.bodyFont, 0, 0);
  drawImage(s.proceed[0], s.proceed[1], s.tiles[proceedTile], 1);
}

}  // namespace

void openStartScreen(startScreen& s, const appConfig&) {
  s = startScreen{};
  s.logoFont = makeFont("Times New Roman Bold", 56, 16, 18, -1, 0, 0, 0);
  s.plusFont = makeFont("Times New Roman Bold", 36, 16, 18, -1, 0, 0, 0);
  s.bodyFont = makeFont("Consolas", 20, 4, 18, -1, 0, 0, 0);
  s.tinyFont = makeFont("Consolas", 14, 5, 18, -1, 0, 0, 0);
  loadImageSetResource(777, startTileCount, 10, 2, tileSide, tileSide, s.tiles);
}

void closeStartScreen(startScreen& s) {
  for (const int font : {s.logoFont, s.plusFont, s.bodyFont, s.tinyFont}) deleteFont(font);
  for (const int tile : s.tiles) deleteImage(tile);
  s = startScreen{};
}

int startScreenFrame(startScreen& s, appConfig& cfg) {
  // Place.
  s.proceed[0] = cfg.sceneWidth - tileSide - cornerGap;
  s.proceed[1] = cfg.sceneHeight - tileSide - cornerGap;
  s.proceed[2] = s.proceed[0] + tileSide;
  s.proceed[3] = s.proceed[1] + tileSide;
  // Hit-test and behaviour, on the input of this frame.
  int mx = 0, my = 0;
  mousePosition(&mx, &my);
  const bool down = (mouseButtons() & mouseLeft) != 0;
  const bool over = inside(s.proceed, mx, my);
  const bool pressed = over && down && s.proceedArmed;
  s.proceedArmed = over && !down;
  const bool enter = keyDown(keyEnter) && nowMs() - cfg.lastKeyMs > cfg.keyDelayMs;
  const bool esc = keyDown(keyEsc);
  // Draw.
  setDrawTarget(backBuffer);
  clearDrawTarget();
  drawStartScreen(s, cfg);
  // Result.
  const int result = pressed || enter ? 1 : esc ? -1 : 0;
  if (result != 0) cfg.lastKeyMs = nowMs();
  return result;
}

}  // namespace marv
