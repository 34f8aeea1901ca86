// Overlays of the frame.
#include "scene/overlays.h"

#include <algorithm>
#include <cstring>

#include "scene/boundaries3d.h"

namespace marv {

void drawHelpList(sceneView& scene, const appConfig& cfg) {
  const int list = scene.helpListHeight, view = scene.helpViewHeight;
  int offset = scene.helpOffset;
  if (scene.plainKeys == 0) offset = static_cast<int>(scene.helpOffset - cfg.wheelDelta * 20.0);
  scene.helpOffset = std::clamp(offset, 0, std::max(list - view, 0));
  scene.helpBarX = scene.helpLeft - 3 + scene.helpWidth - scene.helpBarWidth;
  const float share = list > 0 ? std::min(1.0f, static_cast<float>(view) / static_cast<float>(list)) : 1.0f;
  scene.helpThumbHeight = static_cast<int>(share * static_cast<float>(view)) - 2;
  scene.helpThumbY =
      list > view
          ? static_cast<int>(static_cast<double>(view - scene.helpThumbHeight - 2) * scene.helpOffset / (list - view)) +
                scene.helpTop + 1
          : scene.helpTop + 1;
  const sceneColours& c = scene.colours;
  setBlend(1, 210);
  drawImageRect(scene.helpLeft, scene.helpTop, 0, scene.helpOffset, scene.helpWidth, view, scene.helpImage, 0, 0, 0);
  drawBox(scene.helpBarX - 2, scene.helpTop, scene.helpBarX + scene.helpBarWidth + 2, scene.helpTop + view, c.white, 1);
  drawBox(scene.helpBarX, scene.helpThumbY, scene.helpBarX + scene.helpBarWidth,
          scene.helpThumbY + scene.helpThumbHeight, c.black, 1);
  setBlend(0, 0);
  drawBoxF(static_cast<float>(scene.helpLeft - 1), static_cast<float>(scene.helpTop - 1),
           static_cast<float>(scene.helpLeft + scene.helpWidth + 1), static_cast<float>(scene.helpTop + view + 1),
           c.black, 0, 2.0f);
}

void drawPlacementBand(const sceneView& scene, const appConfig& cfg, const char* text) {
  drawBox(0, cfg.screenHeight - cfg.marginBottom, cfg.colourBarX + cfg.sceneWidth, cfg.screenHeight, colour(41, 57, 85),
          1);  // the panel colour
  const int w = textWidthInFont(cfg.fontBody, "%s", text);
  const int x = (cfg.sceneWidth - w) / 2;
  const int y = cfg.screenHeight - (cfg.marginBottom - cfg.textHeight) / 2 - cfg.textHeight;
  drawText(x, y, text, scene.colours.white, cfg.fontBody, 0, 0);
  drawPulsingDot(static_cast<float>(x - cfg.textHeight / 2),
                 static_cast<float>(cfg.screenHeight - cfg.textHeight / 2 - (cfg.marginBottom - cfg.textHeight) / 2),
                 static_cast<float>(cfg.textHeight / 2 - 4));
}

}  // namespace marv
