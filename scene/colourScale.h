// The colour scale of the picture: the 32-entry table from blue through cyan
// and green-yellow to red, the one lookup of a value in it, and the colour
// bar under the picture.
#pragma once

#include <cmath>

#include "scene/sceneView.h"

namespace marv {

// Index into the 32-entry table: trunc((value - lo)/(hi - lo) x 31), limited
// to 0..31. A value below the range takes 0, above it 31. Undefined
// quotients (NaN value or limits, hi = lo) take 0; an infinite quotient
// takes the end it points to.
inline int colourIndex(double value, double lo, double hi) {
  const double q = (value - lo) / (hi - lo) * (numColors - 1);
  // The comparisons are false for NaN, which so lands on 0; the value is
  // limited before the conversion, which would be undefined out of range.
  if (!(q >= 0.0)) return 0;
  if (q >= numColors - 1) return numColors - 1;
  return static_cast<int>(q);
}

// The slot of a value in the scene's table: colourIndex for a finite value,
// nonFiniteSlot for NaN and infinities, which have a colour of their own.
inline int colourSlot(double value, double lo, double hi) {
  return std::isfinite(value) ? colourIndex(value, lo, hi) : nonFiniteSlot;
}

// Red, green and blue of entry i of the table.
void scaleColour(int i, int& r, int& g, int& b);

// Fills colourTable and colourTableRgba (alpha bcAlphaUser) and the
// non-finite colour.
void fillColourTable(sceneView& scene, const appConfig& cfg);

// Width of the bar: four times the text "%.6e" of 0.0 in the default font.
int colourBarWidth();

// The bar at (barX, barY), barWidth wide and textHeight high, with its end
// marks and the three values lo, (lo + hi)/2 and hi under it.
void drawColourBar(const sceneView& scene, const appConfig& cfg, int barX, int barY, int barWidth);

}  // namespace marv
