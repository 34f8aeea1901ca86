// The colour scale: lookup, degenerate ranges, range scan; the 2D picture's cell slots and boundary cells.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "layer/layer.h"
#include "scene/colourScale.h"
#include "scene/contour2d.h"
#include "scene/quantities.h"

namespace {

using namespace marv;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

TEST(ColourIndex, EndsReversedEqualAndUndefinedRanges) {
  const struct {
    double value, lo, hi;
    int index;
    const char* what;
  } cases[] = {
      {2.0, 2.0, 6.0, 0, "low end"},
      {6.0, 2.0, 6.0, 31, "high end"},
      {-100.0, 2.0, 6.0, 0, "below the range: first colour"},
      {1e300, 2.0, 6.0, 31, "far above: last colour, no overflow"},
      {4.0, 2.0, 6.0, 15, "trunc(0.5 x 31)"},
      {2.0 + 4.0 * 30.999 / 31.0, 2.0, 6.0, 30, "just below an edge truncates"},
      {6.0, 6.0, 2.0, 0, "lo above hi runs backward"},
      {2.0, 6.0, 2.0, 31, "lo above hi runs backward"},
      {5.0, 3.0, 3.0, 31, "equal limits, above"},
      {1.0, 3.0, 3.0, 0, "equal limits, below"},
      {3.0, 3.0, 3.0, 0, "equal limits, the value itself"},
      {nan, 0.0, 1.0, 0, "NaN value"},
      {0.5, nan, 1.0, 0, "NaN limit"},
      {inf, 0.0, 1.0, 31, "infinity"},
      {-inf, 0.0, 1.0, 0, "minus infinity"},
  };
  for (const auto& c : cases) EXPECT_EQ(colourIndex(c.value, c.lo, c.hi), c.index) << c.what << " " << c.value;
  // Non-finite values have their own slot in the scene's table.
  EXPECT_EQ(colourSlot(nan, 0.0, 1.0), nonFiniteSlot);
  EXPECT_EQ(colourSlot(inf, 0.0, 1.0), nonFiniteSlot);
  EXPECT_EQ(colourSlot(0.75, 0.0, 1.0), 23);
}

TEST(ColourTable, TheUsersAlphaAndASlotForValuesThatAreNotFinite) {
  sceneView scene;
  appConfig cfg;
  cfg.bcAlphaUser = 77;
  fillColourTable(scene, cfg);
  EXPECT_EQ(scene.colourTableRgba[31].a, 77);
  EXPECT_EQ(scene.colourTable[nonFiniteSlot], colour(255, 0, 255)) << "a colour the scale never reaches";
  for (int i = 0; i < numColors; ++i) EXPECT_NE(scene.colourTable[i], scene.colourTable[nonFiniteSlot]);
}

TEST(RangeScan, FlatFieldsAreWidenedAndSolidsLeftOut) {
  ownedArray3d<double> field(3, 2, 1);
  ownedArray3d<int> solid(3, 2, 1);
  double lo = 0, hi = 0;
  // A negative flat value leaves the range reversed.
  for (const auto& [flat, low, high] : {std::tuple{5.0, 0.0, 5.0}, {0.0, -1.0, 0.0}, {-3.0, 0.0, -3.0}}) {
    fill<double>(field, flat);
    scanRange(field, solid, false, lo, hi);
    EXPECT_EQ(std::pair(lo, hi), std::pair(low, high)) << flat;
  }
  // A solid node's value counts only when solids are asked for.
  fill<double>(field, 1.0);
  field(2, 1, 0) = 40.0;
  field(0, 0, 0) = -2.0;
  solid(2, 1, 0) = 9;
  scanRange(field, solid, false, lo, hi);
  EXPECT_EQ(hi, 1.0);
  scanRange(field, solid, true, lo, hi);
  EXPECT_EQ(std::pair(lo, hi), std::pair(-2.0, 40.0));
  // Diverged nodes never stretch the range.
  fill<int>(solid, 0);
  field(1, 0, 0) = nan;
  field(1, 1, 0) = inf;
  field(2, 0, 0) = -inf;
  scanRange(field, solid, false, lo, hi);
  EXPECT_EQ(std::pair(lo, hi), std::pair(-2.0, 40.0));
}

TEST(ContourCells, RowSlotsAgreeWithTheScalarLookup) {
  // Cell means on and beside the slot boundaries, out of the range and not finite.
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

TEST(ContourCells, BoundaryCellsFollowChangedFlags) {
  // Four by four nodes, cells 10 pixels apart; y of the picture runs down.
  appConfig cfg;
  sceneView scene;
  ownedArray3d<int> flags(4, 4, 1);
  cfg.nx = cfg.ny = 4, cfg.nz = 1;
  cfg.pixelX = {0.5f, 10.5f, 20.5f, 30.5f};
  cfg.pixelY = {30.5f, 20.5f, 10.5f, 0.5f};
  layOutCells(scene, cfg);
  setGraphicsMode(40, 40, 32, 60);
  startLayer();
  // Draws the cells of id 1: is pixel (x, y) covered?
  auto covered = [&](int x, int y) {
    setDrawTarget(backBuffer);
    setBackgroundColour(0, 0, 0, 255);
    clearDrawTarget();
    checkBoundaryFlags(scene, flags);
    drawBoundaryCells(scene, cfg, flags, 1, colour(160, 160, 160));
    int r = 0, g = 0, b = 0, a = 0;
    const int pixels = makePixelImage(40, 40);
    captureToPixelImage(0, 0, 40, 40, pixels);
    readPixel(pixels, x, y, &r, &g, &b, &a);
    deletePixelImage(pixels);
    return r == 160;
  };
  flags(1, 1, 0) = flags(2, 1, 0) = flags(1, 2, 0) = flags(2, 2, 0) = 1;
  // Cell (1, 1): pixels 10..20 across, 10..20 down.
  EXPECT_TRUE(covered(15, 15));
  EXPECT_FALSE(covered(25, 5));
  // The block moves to nodes 2..3: cell (2, 2) at pixels 20..30 by 0..10; cell (1, 1) loses a corner.
  flags(1, 1, 0) = flags(1, 2, 0) = flags(2, 1, 0) = 0;
  flags(3, 2, 0) = flags(2, 3, 0) = flags(3, 3, 0) = 1;
  EXPECT_FALSE(covered(15, 15)) << "the cells found for the old flags are gone";
  EXPECT_TRUE(covered(25, 5));
  stopLayer();
}

}  // namespace
