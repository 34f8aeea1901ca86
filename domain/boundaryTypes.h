// Boundary types: the value of bcFlag at a node, and the index of the
// per-type tables of appConfig (bcU, bcV, bcW, bcTemp, bcMassfr, bcFix*,
// bcNoFlow). Types 0 to 8 are also the colour slots of the preset and
// chosen colours; 2 to 6 are the inlet colours, a wall when all three of
// their velocities are zero.
#pragma once

namespace marv {

constexpr int fluidType = 0;       // Free: a fluid node
constexpr int blackType = 1;       // Black wall
constexpr int blueType = 2;        // first inlet colour
constexpr int redType = 3;         // inlet colour
constexpr int greenType = 4;       // inlet colour
constexpr int yellowType = 5;      // inlet colour
constexpr int cyanType = 6;        // last inlet colour
constexpr int stlType = 7;         // surface node of the STL model
constexpr int nonPresetType = 8;   // wall of any other colour
constexpr int solidType = 9;       // solid node behind a wall surface
constexpr int stlSolidType = 10;   // solid inside the STL model, during the build only
constexpr int inletBodyType = 11;  // inside an inlet-coloured body

constexpr bool isInletType(int t) { return t >= blueType && t <= cyanType; }

}  // namespace marv
