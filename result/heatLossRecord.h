// Heat flux through a boundary colour and its record ./dump/heatLoss.txt:
// one line per heatLossRecInterval steps with the record flag and the heat
// loss of each colour 1..8. Only a thermo-fluid run (cmode 1) has one.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "domain/bcDomain.h"
#include "result/recordFiles.h"

namespace marv {

// Specific heat of air [J/(kg K)] at temperature T [K].
double specificHeat(double T);

// flux := |grad T| cp(T) mu / pr at every node [W/m^2], with the grid's
// first-derivative operator; scratch is overwritten. With showHeatLoss off or
// outside a thermo-fluid run flux is 0 and showHeatLoss goes off.
void heatFluxField(appConfig& cfg, const array3d<double>& temperature, const array3d<double>& scratch,
                   const array3d<double>& flux);

// Heat that a body gives to the fluid through an outline [W/m] (two
// dimensions) or a surface [W] (three): the sum over segments or triangles of
// -k dT/dn times length or area, with k = cp(T) mu / pr, n the normal into
// the fluid (as for the force: surfaces of colour 7 carry it, the masks'
// iso-surfaces carry its opposite) and dT/dn taken one-sided into the fluid,
// from T at the mid-point or centroid and one and two spacings out, of second
// order. A cold wall gives a negative value. The node field of heatFluxField
// is not used here: its central difference at a wall node reaches into the
// wall, whose temperature is the wall's, and sees about half the gradient.
double outlineHeatLoss(const appConfig& cfg, const array3d<double>& temperature, const bcOutline& outline);
double surfaceHeatLoss(const appConfig& cfg, const array3d<double>& temperature, const bcSurface& surface, int colour);

const char* const heatLossFilePath = "./dump/heatLoss.txt";
const recordLayout& heatLossLayout(const appConfig& cfg);
std::string heatLossHeadLine(const appConfig& cfg);
std::string heatLossDataLine(const appConfig& cfg);

// Start of a pass, when viz.txt says that heat loss was shown and recorded:
// the colour flags of the last line of heatLoss.txt.
void readHeatLossSetup(appConfig& cfg);

// The heat-loss line of step ts; true when one was written.
bool writeHeatLoss(appConfig& cfg);

}  // namespace marv
