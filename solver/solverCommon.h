// solverCommon: the base of the two flow solvers. It owns every field and
// publishes them through field(index); step() advances the flow by deltat.
#pragma once

#include <memory>

#include "app/appConfig.h"
#include "domain/bcDomain.h"
#include "solver/array3d.h"

namespace marv {

constexpr int numFieldViews = 12;  // views the driver keeps of the solver's fields

class solverCommon {
 public:
  virtual ~solverCommon() = default;
  virtual array3d<double>* field(int index) = 0;  // header of field table entry index
  virtual void step() = 0;                        // one time step of deltat
};

// The solver of cmode: incompSolver for 0, incompSolverThermo for 1; null
// while no solver of that mode exists in this build.
std::unique_ptr<solverCommon> makeSolver(appConfig& cfg, bcDomain& domain);

}  // namespace marv
