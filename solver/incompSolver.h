// incompSolver: constant-density incompressible flow (cmode 0). A step takes
// the divergence of the momentum equation, keeps the present velocity
// divergence as a source so that it is driven to zero over one deltat,
// solves for the new pressure and advances every field by forward Euler:
// first-order upwind convection, central viscous terms, static Smagorinsky
// stresses in 3D, and the species and age scalars.
#pragma once

#include "solver/solverCommon.h"

namespace marv {

class incompSolver : public solverCommon {
 public:
  incompSolver(appConfig& cfg, bcDomain& domain);
  void step() override;

  // The sub-steps of a step, each over thread t's range.
  void interiorTerms(int t);
  void faceTerms(int t);
  void stressDivergence(int t);
  void pressureRhs(int t);
  void pressureGradient(int t);
};

// The initial fields of a constant-density run: velocity, mass fraction and
// age of the initial field, zero pressure and derivatives, then the velocity,
// mass fraction and pressure boundary operations.
void setInitialFields(incompSolver& solver);

}  // namespace marv
