// The field table of a solver by name, and the twelve header copies (views)
// of it that the driver hands to the display and the dump writer.
//
// Indices 8 to 11 are scratch fields of a step: the display may overwrite
// them between steps, and the driver copies the boundary field into view 8
// so that the dump stores it as bc.raw.
#pragma once

#include <array>

#include "common/array3d.h"

namespace marv {

enum fieldIndex : int {
  fieldRho = 0,     // density (thermo-fluid solver only) [kg/m^3]
  fieldU = 1,       // velocity x [m/s]
  fieldV = 2,       // velocity y [m/s]
  fieldW = 3,       // velocity z [m/s]
  fieldP = 4,       // pressure [Pa]
  fieldT = 5,       // temperature (thermo-fluid solver only) [K]
  fieldY = 6,       // mass fraction
  fieldAge = 7,     // age of the fluid (only with ageFlag) [s]
  fieldConvX = 8,   // scratch; view 8 carries the boundary field between steps
  fieldConvY = 9,   // scratch
  fieldConvZ = 10,  // scratch
  fieldDivU = 11,   // scratch
  fieldTau11 = 12,  // first of the six sub-grid stresses, never fetched
};

constexpr int viewCount = 12;       // views the driver keeps
constexpr int viewBc = fieldConvX;  // where the boundary field rides to the dump

using fieldViews = std::array<array3d<double>, viewCount>;

}  // namespace marv
