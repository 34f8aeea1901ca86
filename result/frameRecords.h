// What the frame computes for the records: the force and heat loss of each
// recorded boundary colour, left in forceValues and heatValues of appConfig
// for writeStepResults, and the text that shows them.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/appConfig.h"
#include "domain/bcDomain.h"
#include "solver/fieldViews.h"

namespace marv {

// A colour whose records are kept: 1..8, not an inflow that blows.
bool recordableColour(const appConfig& cfg, const bcDomain& domain, int colour);

// With showForce or showHeatLoss on: the heat flux field into the work
// views (scratch fieldConvY, flux fieldConvZ) for the picture, then the
// force and heat loss
// of every recorded colour; the counts numRecForce and numRecHeatLoss follow
// the flags, and a colour not recorded keeps zeros. Views 9 and 10 are free
// between the frame and the next solve.
void computeRecordValues(appConfig& cfg, const bcDomain& domain, const fieldViews& views);

// The notice for the hovered colour with the force and heat loss computed
// for it this frame: "[Fx] .. (N) [Fy] .. (N) [Fz] .. (N)" with "[*] Rec. to
// ./dump/force.txt" when its force is recorded, and the heat-flux part when
// heat loss is shown. Empty when the force is exactly 0.
std::string forceHeatNotice(const appConfig& cfg, int colour, const std::array<float, 3>& force, double heat);

// One line per recorded colour with its last values, for the screen.
std::vector<std::string> recordTextLines(const appConfig& cfg);

}  // namespace marv
