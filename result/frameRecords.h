// What the frame computes for the records: the force and heat loss of each
// recorded boundary colour and of the colour under the mouse, left in
// forceValues and heatValues of appConfig for writeStepResults, and the text
// that shows them. The scene finds the hovered colour and draws; the numbers
// and the record tables are kept here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "app/appConfig.h"
#include "domain/bcDomain.h"
#include "solver/fieldViews.h"

namespace marv {

// A colour whose records are kept: 1..8, not an inflow that blows.
bool recordableColour(const appConfig& cfg, const bcDomain& domain, int colour);

// What one frame measured for the colour under the mouse.
struct shownRecord {
  int colour = -1;                   // the hovered colour that was measured; -1 none
  std::array<float, 3> force{};      // its force [N]
  double heat = 0.0;                 // its heat loss
  bool forceRecorded = false;        // its force is recorded (after this frame's click)
  bool heatRecorded = false;         // its heat loss is recorded
  std::uint32_t forceEvaluated = 0;  // bit c: the force of colour c was computed this frame
};

// One frame of the record tables, after heatFluxField: the hovered colour
// (-1 for none) is measured whether it is recorded or not, and a click on it
// toggles forceRecordOn and copies it to heatRecordOn, so that one click
// governs both records; every other colour is measured only where it is
// recorded. Inflows that blow are passed over. Then numRecForce and
// numRecHeatLoss follow the flags, and a colour not recorded keeps zeros.
shownRecord updateRecordValues(appConfig& cfg, const bcDomain& domain, const fieldViews& views, int hovered,
                               bool click);

// The frame's numbers without a picture (no colour under the mouse): with
// showForce or showHeatLoss on, the heat flux field into the work views
// (scratch fieldConvY, flux fieldConvZ), then the recorded colours' values.
// Views 9 and 10 are free between the frame and the next solve.
void computeRecordValues(appConfig& cfg, const bcDomain& domain, const fieldViews& views);

// Longest notice, with room to spare: three forces, a heat flux and both
// record marks come to about 170 characters.
constexpr std::size_t noticeTextSize = 320;

// The notice for the hovered colour into out: "[Fx] .. (N) [Fy] .. (N) [Fz]
// .. (N)" with "[*] Rec. to ./dump/force.txt" when its force is recorded,
// and the heat-flux part when heat loss is shown. Empty when the force is
// exactly 0. Nothing is allocated. Returns the length written.
std::size_t writeForceHeatNotice(char* out, std::size_t size, const appConfig& cfg, const shownRecord& shown);

// The same as a string, with the flags of colour as they stand in cfg.
std::string forceHeatNotice(const appConfig& cfg, int colour, const std::array<float, 3>& force, double heat);

// One line per recorded colour with its last values, for the screen.
std::vector<std::string> recordTextLines(const appConfig& cfg);

}  // namespace marv
