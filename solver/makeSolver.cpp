// Solver construction by cmode, with the initial fields of a fresh run.
#include "solver/incompSolver.h"

namespace marv {

std::unique_ptr<solverCommon> makeSolver(appConfig& cfg, bcDomain& domain) {
  if (cfg.cmode == 0) {
    auto solver = std::make_unique<incompSolver>(cfg, domain);
    setInitialFields(*solver);
    return solver;
  }
  return nullptr;
}

}  // namespace marv
