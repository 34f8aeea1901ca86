// Probes: up to ten fixed points whose flow state is written to
// ./dump//probe_NNN_ascii.dat every probeRecordInterval steps. A pass finds
// the probes of the last run again in the last line of each file.
#pragma once

#include <string>
#include <vector>

#include "app/appConfig.h"
#include "result/recordFiles.h"
#include "solver/fieldViews.h"

namespace marv {

// The flow state at one point, interpolated on the grid.
struct probeSample {
  double rho = 0.0;                  // density, the constant rhow without a density field [kg/m^3]
  double u = 0.0, v = 0.0, w = 0.0;  // [m/s]
  double T = 0.0;                    // temperature, 0 without a temperature field [K]
  double massfr = 0.0;               // species mass fraction
  double age = 0.0;                  // age, 0 without ageFlag [s]
  double dP = 0.0;                   // the pressure field as the solver holds it [Pa]
};

std::string probeFilePath(int k);  // "./dump//probe_%03d_ascii.dat"
const recordLayout& probeLayout();
std::string probeHeadLine();
std::string probeDataLine(const appConfig& cfg, const probePoint& at, const probeSample& s);

// Trilinear samples of the fields at the probe's position.
probeSample sampleProbe(const appConfig& cfg, const fieldViews& views, const probePoint& at);

// Start of a pass: positions from the last line of each probe file, count
// cut at the first missing, foreign or out-of-domain file.
void readProbeSetup(appConfig& cfg);

// The probe lines of step ts; true when ts is a probe step, also with no
// probes at all.
bool writeProbes(appConfig& cfg, const fieldViews& views);

// One text line per probe for the screen: position and the sampled state.
std::vector<std::string> probeTextLines(const appConfig& cfg, const fieldViews& views);

}  // namespace marv
