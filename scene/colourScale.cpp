// The colour scale: three linear ramps over 0..765, the lookup and the bar.
#include "scene/colourScale.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace marv {

void scaleColour(int i, int& r, int& g, int& b) {
  const int c = static_cast<int>(static_cast<double>(i) / (numColors - 1) * 765.0);
  if (c < 256) {
    r = 0, g = c, b = 255;
  } else if (c <= 510) {
    r = c - 255, g = 255, b = 510 - c;
  } else {
    r = 255, g = 765 - c, b = 0;
  }
}

void fillColourTable(sceneView& scene, const appConfig& cfg) {
  for (int i = 0; i < numColors; ++i) {
    int r = 0, g = 0, b = 0;
    scaleColour(i, r, g, b);
    scene.colourTable[i] = colour(r, g, b);
    scene.colourTableRgba[i] = makeColourRgba(r, g, b, cfg.bcAlphaUser);
  }
  // A diverged value shows in magenta, which the scale never reaches.
  scene.colourTable[nonFiniteSlot] = colour(255, 0, 255);
  scene.colourTableRgba[nonFiniteSlot] = makeColourRgba(255, 0, 255, cfg.bcAlphaUser);
}

int colourBarWidth() { return 4 * textWidth("%.6e", 0.0); }

void drawColourBar(const sceneView& scene, const appConfig& cfg, int barX, int barY, int barWidth) {
  const sceneColours& c = scene.colours;
  const int h = cfg.textHeight;
  drawLine(barX - 1, barY, barX - 1, barY + h, c.white, 1);
  drawLine(barX + barWidth, barY, barX + barWidth, barY + h, c.white, 1);
  const double last = barWidth > 1 ? barWidth - 1 : 1;
  // A white column one pixel taller at each end behind each coloured
  // column; the columns do not overlap, so all the white goes first as one
  // box, and the coloured columns follow as rows of one-pixel boxes that
  // the layer joins where the colour stays the same.
  if (barWidth > 0) drawBox(barX, barY - 1, barX + barWidth, barY + h + 1, c.white, 1);
  constexpr int chunk = 256;  // columns of one call
  int x1[chunk], x2[chunk];
  std::uint32_t colours[chunk];
  for (int from = 0; from < barWidth; from += chunk) {
    const int n = std::min(chunk, barWidth - from);
    for (int k = 0; k < n; ++k) {
      const int x = from + k;
      int index = static_cast<int>(x / last * (numColors - 1));
      index = index < 0 ? 0 : (index > numColors - 1 ? numColors - 1 : index);
      x1[k] = barX + x, x2[k] = barX + x + 1, colours[k] = scene.colourTable[index];
    }
    drawBoxRow(x1, x2, barY, barY + h, colours, n);
  }
  const double lo = rangeLow(scene, cfg), hi = rangeHigh(scene, cfg);
  const std::uint32_t ink = lo > hi ? c.red : c.black;
  const int y = barY + h + cfg.textGap / 2;
  char text[64];
  std::snprintf(text, sizeof text, "%.4e", lo);
  drawText(barX, y, text, ink, -1, c.white, 0);
  std::snprintf(text, sizeof text, "%.4e", hi);
  drawText(barX + barWidth - textWidth("%s", text), y, text, ink, -1, c.white, 0);
  std::snprintf(text, sizeof text, "%.4e", (lo + hi) / 2.0);
  drawText(barX + (barWidth - textWidth("%s", text)) / 2, y, text, ink, -1, c.white, 0);
}

}  // namespace marv
