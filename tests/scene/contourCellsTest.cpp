// The 2D picture's cells: the row colouring gives each cell the slot that
// colourSlot gives the mean of its corners, special values included; the
// boundary cells, found once, follow the flags when they change.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "layer/layer.h"
#include "scene/colourScale.h"
#include "scene/contour2d.h"

namespace {

using namespace marv;

TEST(ContourCells, RowSlotsAgreeWithTheScalarLookup) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
  // Corner values whose cell means fall on and beside the slot boundaries,
  // below and above the range, and on non-finite values.
  std::vector<double> means;
  for (int k = 0; k <= 31; ++k) means.insert(means.end(), {k / 31.0, std::nextafter(k / 31.0, -1.0)});
  means.insert(means.end(), {-0.5, 1.5, 1e300, -1e300, inf, -inf, nan, 0.999999});
  const int n = static_cast<int>(means.size());
  // Each value in all four corners of a one-cell row.
  std::vector<double> row0(n + 1), row1(n + 1);
  for (const auto& range : std::vector<std::pair<double, double>>{{0.0, 1.0}, {-2.0, 3.0}, {0.5, 0.5}, {1.0, 0.0}})
    for (int i = 0; i < n; ++i) {
      row0.assign(n + 1, 0.0), row1.assign(n + 1, 0.0);
      row0[i] = row0[i + 1] = row1[i] = row1[i + 1] = means[i];
      int slot = -1;
      cellColourSlots(row0.data() + i, row1.data() + i, 1, range.first, range.second, &slot);
      EXPECT_EQ(slot, colourSlot((means[i] + means[i] + means[i] + means[i]) / 4.0, range.first, range.second))
          << "mean " << means[i] << " range " << range.first << ".." << range.second;
    }
  // A whole row at once: the vectorised loop gives the same as cell by cell.
  std::vector<double> a(n + 1), b(n + 1);
  for (int i = 0; i <= n; ++i) a[i] = std::sin(i * 0.7) * 2.0, b[i] = std::cos(i * 1.3);
  a[5] = nan, b[9] = inf;
  std::vector<int> slots(n);
  cellColourSlots(a.data(), b.data(), n, -1.0, 1.5, slots.data());
  for (int i = 0; i < n; ++i)
    EXPECT_EQ(slots[i], colourSlot((a[i] + a[i + 1] + b[i] + b[i + 1]) / 4.0, -1.0, 1.5)) << "cell " << i;
}

// Four by four nodes, cells 10 pixels apart; y of the picture runs down.
struct cellPicture {
  appConfig cfg;
  sceneView scene;
  ownedArray3d<int> flags{4, 4, 1};
  int pixels = -1;

  cellPicture() {
    cfg.nx = cfg.ny = 4, cfg.nz = 1;
    cfg.pixelX = {0.5f, 10.5f, 20.5f, 30.5f};
    cfg.pixelY = {30.5f, 20.5f, 10.5f, 0.5f};
    layOutCells(scene, cfg);
    setGraphicsMode(40, 40, 32, 60);
    startLayer();
    pixels = makePixelImage(40, 40);
  }
  ~cellPicture() {
    deletePixelImage(pixels);
    stopLayer();
  }
  void set(int i, int j, int id) { flags(i, j, 0) = id; }
  // Draws the cells of id 1 and tells whether pixel (x, y) is covered.
  bool covered(int x, int y) {
    setDrawTarget(backBuffer);
    setBackgroundColour(0, 0, 0, 255);
    clearDrawTarget();
    checkBoundaryFlags(scene, flags);
    drawBoundaryCells(scene, cfg, flags, 1, colour(160, 160, 160));
    captureToPixelImage(0, 0, 40, 40, pixels);
    int r = 0, g = 0, b = 0, a = 0;
    readPixel(pixels, x, y, &r, &g, &b, &a);
    return r == 160;
  }
};

TEST(ContourCells, BoundaryCellsFollowChangedFlags) {
  cellPicture p;
  for (int j = 1; j <= 2; ++j)
    for (int i = 1; i <= 2; ++i) p.set(i, j, 1);
  // Cell (1, 1): pixels 10..20 across, 10..20 down.
  EXPECT_TRUE(p.covered(15, 15));
  EXPECT_FALSE(p.covered(25, 5));
  // The block moves up and right to nodes 2..3: cell (2, 2), pixels 20..30
  // across and 0..10 down; cell (1, 1) loses a corner.
  p.set(1, 1, 0), p.set(1, 2, 0), p.set(2, 1, 0);
  p.set(3, 2, 1), p.set(2, 3, 1), p.set(3, 3, 1);
  EXPECT_FALSE(p.covered(15, 15)) << "the cells found for the old flags are gone";
  EXPECT_TRUE(p.covered(25, 5));
}

}  // namespace
