// The two-dimensional picture and its boundaries. The cell loop runs over
// every cell with no test of node type: the colour comes from a table slot,
// non-finite means included.
#include "scene/contour2d.h"

#include <algorithm>

#include "scene/colourScale.h"

namespace marv {

void layOutCells(sceneView& scene, const appConfig& cfg) {
  const int cx = cfg.nx > 1 ? cfg.nx - 1 : 0, cy = cfg.ny > 1 ? cfg.ny - 1 : 0;
  const bool placed = static_cast<int>(cfg.pixelX.size()) >= cfg.nx && static_cast<int>(cfg.pixelY.size()) >= cfg.ny;
  scene.cellX0.assign(placed ? cx : 0, 0);
  scene.cellX1.assign(placed ? cx : 0, 0);
  scene.cellY0.assign(placed ? cy : 0, 0);
  scene.cellY1.assign(placed ? cy : 0, 0);
  if (!placed) return;
  for (int i = 0; i < cx; ++i) {
    scene.cellX0[i] = static_cast<int>(cfg.pixelX[i]);
    scene.cellX1[i] = static_cast<int>(cfg.pixelX[i + 1]) + 1;
  }
  for (int j = 0; j < cy; ++j) {
    scene.cellY0[j] = static_cast<int>(cfg.pixelY[j + 1]);
    scene.cellY1[j] = static_cast<int>(cfg.pixelY[j]) + 1;
  }
}

void drawContour2d(const sceneView& scene, const appConfig& cfg, const array3d<double>& field) {
  if (cfg.dispQuantFlag == 0) return;
  const int cx = static_cast<int>(scene.cellX0.size()), cy = static_cast<int>(scene.cellY0.size());
  if (field.data != nullptr && field.nx >= cx + 1 && field.ny >= cy + 1) {
    const double lo = rangeLow(scene, cfg), hi = rangeHigh(scene, cfg);
    const int nx = field.nx;
    for (int j = 0; j < cy; ++j) {
      const double* row0 = field.data + static_cast<long>(j) * nx;
      const double* row1 = row0 + nx;
      const int y0 = scene.cellY0[j], y1 = scene.cellY1[j];
      for (int i = 0; i < cx; ++i) {
        const double mean = (row0[i] + row0[i + 1] + row1[i] + row1[i + 1]) / 4.0;
        drawBox(scene.cellX0[i], y0, scene.cellX1[i], y1, scene.colourTable[colourSlot(mean, lo, hi)], 1);
      }
    }
  }
  drawBox(cfg.marginLeft - 1, cfg.marginTop - 1, cfg.marginLeft + cfg.domPixW + 2, cfg.marginTop + cfg.domPixH + 2,
          scene.colours.black, 0);
}

void drawBoundaryCells(const sceneView& scene, const appConfig& cfg, const array3d<int>& bcFlag, int id,
                       std::uint32_t fill) {
  const int cx = static_cast<int>(scene.cellX0.size()), cy = static_cast<int>(scene.cellY0.size());
  if (bcFlag.data == nullptr || bcFlag.nx < cx + 1 || bcFlag.ny < cy + 1 || cx == 0) return;
  const int nx = bcFlag.nx;
  auto flag = [&](int i, int j) { return bcFlag.data[i + nx * j]; };
  for (int j = 0; j < cy; ++j)
    for (int i = 0; i < cx; ++i) {
      const bool all =
          (flag(i, j) == id) & (flag(i + 1, j) == id) & (flag(i, j + 1) == id) & (flag(i + 1, j + 1) == id);
      if (all) drawBox(scene.cellX0[i], scene.cellY0[j], scene.cellX1[i], scene.cellY1[j], fill, 1);
    }
  // A wall one node thick on the border has no cell with four corners: the
  // border cells take it from their two border corners.
  for (int i = 0; i < cx; ++i) {
    if (flag(i, 0) == id && flag(i + 1, 0) == id)
      drawBox(scene.cellX0[i], scene.cellY0[0], scene.cellX1[i], scene.cellY1[0], fill, 1);
    if (cy > 0 && flag(i, cy) == id && flag(i + 1, cy) == id)
      drawBox(scene.cellX0[i], scene.cellY0[cy - 1], scene.cellX1[i], scene.cellY1[cy - 1], fill, 1);
  }
  for (int j = 0; j < cy; ++j) {
    if (flag(0, j) == id && flag(0, j + 1) == id)
      drawBox(scene.cellX0[0], scene.cellY0[j], scene.cellX1[0], scene.cellY1[j], fill, 1);
    if (flag(cx, j) == id && flag(cx, j + 1) == id)
      drawBox(scene.cellX0[cx - 1], scene.cellY0[j], scene.cellX1[cx - 1], scene.cellY1[j], fill, 1);
  }
  (void)cfg;
}

void drawBoundaryOutline(const appConfig& cfg, const bcOutline& outline) {
  if (cfg.xCoord.empty() || cfg.yCoord.empty()) return;
  const double x0 = cfg.xCoord[0], y0 = cfg.yCoord[0], s = cfg.pixPerMetre;
  const double top = s * cfg.ly + cfg.marginTop + 0.5, left = cfg.marginLeft + 0.5;
  const int n = std::min(outline.numSegments, static_cast<int>(outline.segmentX.size() / 2));
  const std::uint32_t ink = colour(0, 0, 0);
  for (int m = 0; m < n; ++m) {
    const double xa = (outline.segmentX[2 * m] - x0) * s + left, ya = top - (outline.segmentY[2 * m] - y0) * s;
    const double xb = (outline.segmentX[2 * m + 1] - x0) * s + left, yb = top - (outline.segmentY[2 * m + 1] - y0) * s;
    drawLineF(static_cast<float>(xa), static_cast<float>(ya), static_cast<float>(xb), static_cast<float>(yb), ink,
              1.0f);
  }
}

}  // namespace marv
