// incompSolverThermo: low-Mach variable-density flow (cmode 1). The density
// follows the temperature through the ideal gas law at the constant mean
// pressure presw, lagged by one step; pfld is the dynamic pressure only. A
// body force (gfx, gfy) acts as buoyancy relative to rhow. The scheme is that
// of the constant-density step with the density in the momentum, pressure
// and scalar equations, and a transport equation for the temperature.
#pragma once

#include "solver/solverCommon.h"

namespace marv {

class incompSolverThermo : public solverCommon {
 public:
  // Allocates the fields and sets the initial ones: velocity, temperature
  // and scalars of the initial field, the density from the temperature, and
  // the boundary operations once.
  incompSolverThermo(appConfig& cfg, bcDomain& domain);
  void step() override;

  // Velocity, temperature, mass fraction, pressure, mean removal, age, then
  // the density over t's tile.
  void thermoBoundaryStage(int t);

  ownedArray3d<double> rfld;  // density [kg/m^3]
  ownedArray3d<double> tfld;  // temperature [K]
  ownedArray3d<double> tRhs;  // time derivative of the temperature [K/s]
};

}  // namespace marv
