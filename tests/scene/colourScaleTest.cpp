// The colour scale: lookup at and beyond its limits, degenerate ranges, the three ramps, the range scan.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include "scene/colourScale.h"
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
  EXPECT_EQ(scene.colourTable[0], colour(0, 0, 255));
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

}  // namespace
