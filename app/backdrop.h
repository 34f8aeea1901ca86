// The moving backdrop of the project screens: circles in three layers that
// drift to the right and wobble up and down, and one faster circle of its
// own colour. Its values are made once per pass, from the pass's first
// drawing on; drawBackdrop (screenFrame.h) moves and draws them.
#pragma once

#include <array>

namespace marv {

constexpr int backdropLayers = 3;                                              // layers of circles
constexpr int backdropCirclesPerLayer = 49;                                    // circles of a layer
constexpr int backdropCircles = backdropLayers * backdropCirclesPerLayer + 1;  // and the fast one, last

struct backdropCircle {
  int layer = 1;           // 1..3; the size and speed factor
  float x = 0.0f;          // current left-to-right place of the centre [px]
  float startY = 0.0f;     // height the wobble swings about [px]
  float amplitude = 0.0f;  // full swing, signed [px]
  float phase = 0.0f;      // of the wobble [rad]
};

struct backdropState {
  int made = 0;               // 1 once the circles exist
  int startMs = 0;            // clock of the motion [ms]
  int lastMs = 0;             // last drawing [ms]
  unsigned int seed = 1;      // pseudo-random generator, 0..32767 per draw
  int width = 0, height = 0;  // window the circles were made for [px]
  std::array<backdropCircle, backdropCircles> circles{};
};

}  // namespace marv
