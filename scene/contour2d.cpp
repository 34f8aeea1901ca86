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
  scene.rowColours.assign(placed ? cx : 0, 0);
  scene.rowSlots.assign(placed ? cx : 0, 0);
  scene.boundaryCellsKnown.fill(false);  // the boxes follow the layout
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

namespace {

// What the cell rows of one frame are drawn from: the scene's copy of the
// quantity's values, kept until the frame is rasterised or cleared, and the
// colour range of the frame.
struct contourRows {
  sceneView* scene;
  const double* field;
  int nx, cx, cy;
  double lo, hi;
};

static_assert(sizeof(contourRows) <= drawLaterContextSize);

// The cells, a row at a time; cells of one colour side by side become one
// box. Made only when the picture's pixels are needed.
void drawContourRows(const void* context) {
  const contourRows& c = *static_cast<const contourRows*>(context);
  sceneView& scene = *c.scene;
  // The layout may have changed since the frame: only cells that are still there.
  const int cx = std::min(c.cx, static_cast<int>(scene.cellX0.size()));
  const int cy = std::min(c.cy, static_cast<int>(scene.cellY0.size()));
  if (static_cast<int>(scene.rowColours.size()) < cx) scene.rowColours.assign(cx, 0);
  if (static_cast<int>(scene.rowSlots.size()) < cx) scene.rowSlots.assign(cx, 0);
  std::uint32_t* colours = scene.rowColours.data();
  int* slots = scene.rowSlots.data();
  const std::uint32_t* table = scene.colourTable.data();
  for (int j = 0; j < cy; ++j) {
    const double* row0 = c.field + static_cast<long>(j) * c.nx;
    const double* row1 = row0 + c.nx;
    cellColourSlots(row0, row1, cx, c.lo, c.hi, slots);
    for (int i = 0; i < cx; ++i) colours[i] = table[slots[i]];
    drawBoxRow(scene.cellX0.data(), scene.cellX1.data(), scene.cellY0[j], scene.cellY1[j], colours, cx);
  }
}

}  // namespace

void drawContour2d(sceneView& scene, const appConfig& cfg, const array3d<double>& field) {
  if (cfg.dispQuantFlag == 0) return;
  const int cx = static_cast<int>(scene.cellX0.size()), cy = static_cast<int>(scene.cellY0.size());
  if (field.data != nullptr && field.nx >= cx + 1 && field.ny >= cy + 1) {
    // A frame nobody sees costs no colouring: the rows are made when the
    // picture is presented, saved or read.
    const std::size_t used = static_cast<std::size_t>(field.nx) * (cy + 1);
    if (scene.contourValues.size() < used) scene.contourValues.resize(used);
    std::copy(field.data, field.data + used, scene.contourValues.data());
    const contourRows rows{
        &scene, scene.contourValues.data(), field.nx, cx, cy, rangeLow(scene, cfg), rangeHigh(scene, cfg)};
    drawLater(drawContourRows, &rows, sizeof rows);
  }
  drawBox(cfg.marginLeft - 1, cfg.marginTop - 1, cfg.marginLeft + cfg.domPixW + 2, cfg.marginTop + cfg.domPixH + 2,
          scene.colours.black, 0);
}

void cellColourSlots(const double* row0, const double* row1, int n, double lo, double hi, int* slots) {
  const double span = hi - lo, top = numColors - 1;
  // colourSlot without branches, so that the loop is vectorised: the
  // quotient is limited to 0..31 (NaN to 0) before the conversion, and a
  // non-finite mean, whose difference with itself is not 0, takes the slot
  // of its own.
  for (int i = 0; i < n; ++i) {
    const double mean = (row0[i] + row0[i + 1] + row1[i] + row1[i + 1]) / 4.0;
    const double q = (mean - lo) / span * top;
    const double limited = q >= 0.0 ? (q < top ? q : top) : 0.0;
    slots[i] = mean - mean == 0.0 ? static_cast<int>(limited) : nonFiniteSlot;
  }
}

namespace {

// The boxes of the cells of type id, in drawing order.
void findBoundaryCells(const sceneView& scene, const array3d<int>& bcFlag, int id, std::vector<int>& boxes) {
  boxes.clear();
  const int cx = static_cast<int>(scene.cellX0.size()), cy = static_cast<int>(scene.cellY0.size());
  if (bcFlag.data == nullptr || bcFlag.nx < cx + 1 || bcFlag.ny < cy + 1 || cx == 0) return;
  const int nx = bcFlag.nx;
  auto flag = [&](int i, int j) { return bcFlag.data[i + nx * j]; };
  auto box = [&](int i, int j) {
    boxes.insert(boxes.end(), {scene.cellX0[i], scene.cellY0[j], scene.cellX1[i], scene.cellY1[j]});
  };
  for (int j = 0; j < cy; ++j)
    for (int i = 0; i < cx; ++i) {
      const bool all =
          (flag(i, j) == id) & (flag(i + 1, j) == id) & (flag(i, j + 1) == id) & (flag(i + 1, j + 1) == id);
      if (all) box(i, j);
    }
  // A wall one node thick on the border has no cell with four corners: the
  // border cells take it from their two border corners.
  for (int i = 0; i < cx; ++i) {
    if (flag(i, 0) == id && flag(i + 1, 0) == id) box(i, 0);
    if (cy > 0 && flag(i, cy) == id && flag(i + 1, cy) == id) box(i, cy - 1);
  }
  for (int j = 0; j < cy; ++j) {
    if (flag(0, j) == id && flag(0, j + 1) == id) box(0, j);
    if (flag(cx, j) == id && flag(cx, j + 1) == id) box(cx - 1, j);
  }
}

std::size_t flagCount(const array3d<int>& bcFlag) {
  if (bcFlag.data == nullptr || bcFlag.nx <= 0 || bcFlag.ny <= 0 || bcFlag.nz <= 0) return 0;
  return static_cast<std::size_t>(bcFlag.nx) * bcFlag.ny * bcFlag.nz;
}

}  // namespace

void checkBoundaryFlags(sceneView& scene, const array3d<int>& bcFlag) {
  const std::size_t n = flagCount(bcFlag);
  std::vector<int>& seen = scene.boundaryFlagsSeen;
  if (seen.size() == n && (n == 0 || std::equal(seen.begin(), seen.end(), bcFlag.data))) return;
  seen.assign(bcFlag.data, bcFlag.data + n);
  scene.boundaryCellsKnown.fill(false);
}

void drawBoundaryCells(sceneView& scene, const appConfig& cfg, const array3d<int>& bcFlag, int id, std::uint32_t fill) {
  (void)cfg;
  if (id < 0 || id >= numColourTypes) {
    std::vector<int> boxes;  // a type without a colour of its own: not kept
    findBoundaryCells(scene, bcFlag, id, boxes);
    for (std::size_t b = 0; b + 3 < boxes.size(); b += 4)
      drawBox(boxes[b], boxes[b + 1], boxes[b + 2], boxes[b + 3], fill, 1);
    return;
  }
  if (scene.boundaryFlagsSeen.size() != flagCount(bcFlag)) checkBoundaryFlags(scene, bcFlag);
  std::vector<int>& boxes = scene.boundaryCellBoxes[id];
  if (!scene.boundaryCellsKnown[id]) {
    findBoundaryCells(scene, bcFlag, id, boxes);
    scene.boundaryCellsKnown[id] = true;
  }
  for (std::size_t b = 0; b + 3 < boxes.size(); b += 4)
    drawBox(boxes[b], boxes[b + 1], boxes[b + 2], boxes[b + 3], fill, 1);
}

void drawBoundaryOutline(sceneView& scene, const appConfig& cfg, const bcOutline& outline) {
  if (cfg.xCoord.empty() || cfg.yCoord.empty()) return;
  const double x0 = cfg.xCoord[0], y0 = cfg.yCoord[0], s = cfg.pixPerMetre;
  const double top = s * cfg.ly + cfg.marginTop + 0.5, left = cfg.marginLeft + 0.5;
  const int n = std::min(outline.numSegments, static_cast<int>(outline.segmentX.size() / 2));
  if (n <= 0) return;
  std::vector<float>& xy = scene.outlinePoints;
  if (xy.size() < 4 * static_cast<std::size_t>(n)) xy.resize(4 * static_cast<std::size_t>(n));
  for (int e = 0; e < 2 * n; ++e) {
    xy[2 * e] = static_cast<float>((outline.segmentX[e] - x0) * s + left);
    xy[2 * e + 1] = static_cast<float>(top - (outline.segmentY[e] - y0) * s);
  }
  drawLinesF(xy.data(), n, colour(0, 0, 0), 1.0f);
}

}  // namespace marv
