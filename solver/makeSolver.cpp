// Solver construction by cmode, with the initial fields of a fresh run.
#include "solver/incompSolver.h"
#include "solver/incompSolverThermo.h"

namespace marv {

std::unique_ptr<solverCommon> makeSolver(appConfig& cfg, bcDomain& domain) {
  if (cfg.cmode == 0) {
    auto solver = std::make_unique<incompSolver>(cfg, domain);
    setInitialFields(*solver);
    return solver;
  }
  if (cfg.cmode == 1) return std::make_unique<incompSolverThermo>(cfg, domain);
  return nullptr;
}

}  // namespace marv
