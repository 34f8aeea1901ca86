// Solver test set-ups: a pressure-only solver, an open box, the lid-driven cavity (short check, Ghia et al. run)
// and the heated cavity, all built by hand.
#pragma once

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "project/applyParameters.h"
#include "scene/velocityStatistics.h"
#include "solver/incompSolver.h"
#include "solver/incompSolverThermo.h"
#include "tests/testGrid.h"

namespace marv::testing {

// A solver whose step is the pressure iteration alone.
class pressureOnly : public solverCommon {
 public:
  using solverCommon::solverCommon;
  void step() override {
    runStep([&](int t) { solvePressure(t); });
  }
};

// nx x ny x nz fluid nodes over 1 m, no walls (the outer planes only copy
// their inner neighbours), threads tiles along z (along y with nz = 1).
// cmode 1 makes it a gas at rhow; call start() after changing the domain.
template <class solverType>
struct openBox {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<solverType> solver;
  openBox(int nx, int ny, int nz, int cmode = 0, int threads = 1) {
    testing::setGrid(cfg, nx, ny, nz);
    testing::setTiles(cfg, 1, nz == 1 ? threads : 1, nz == 1 ? 1 : threads);
    cfg.cmode = cmode, cfg.ibm = 0, cfg.mu = 1e-3, cfg.deltat = 1e-3;
    if (cmode) cfg.rhow = cfg.presw * cfg.molarMass / cfg.gasConstant / cfg.tempw;
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    constructDomain(domain, cfg);
    start();
  }
  void start() {
    buildNodeLists(domain, cfg);
    solver = std::make_unique<solverType>(cfg, domain);
  }
};

struct cavityCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<incompSolver> solver;
  int ts = 0;  // steps taken

  // n x n nodes, lid speed 1 m/s, Reynolds number re (rho = 1, L = 1), threads tiles along y.
  cavityCase(int n, double re, int threads = 1) {
    setGrid(cfg, n, n, 1);
    setTiles(cfg, 1, threads, 1);
    cfg.ibm = 0, cfg.rhow = 1.0, cfg.mu = 1.0 / re, cfg.cs = dashValue, cfg.uinb = 1.0, cfg.vinb = 0.0;
    // The pressure change is measured against presw (1e5 Pa): a cavity whose
    // pressures are of order rho U^2 = 1 Pa needs a tight tolerance.
    cfg.peps = 1e-10, cfg.loopmax = 2000;
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 1, 0, 0, 0, 0, 0, 0, 0};
    const double h = cfg.dx;
    cfg.deltat = 0.5 * std::min(cfg.cfl * h / 1.0, 0.5 * cfg.cfl * h * h / (cfg.mu / cfg.rhow));
    constructDomain(domain, cfg);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) domain.bcFlag(i, j, 0) = i == 0 || i == n - 1 || j == 0 ? 1 : j == n - 1 ? 2 : 0;
    buildNodeLists(domain, cfg);
    buildSolidMask(domain, cfg);
    solver = std::make_unique<incompSolver>(cfg, domain);
    setInitialFields(*solver);
  }

  // One cycle of the run loop: the frame's adaptive step from step 10 on,
  // then the solve.
  void advance() {
    if (ts >= 10)
      cfg.deltat = adaptiveDeltat(cfg.cfl, cfg.dx, cfg.dy, scanVelocity(solver->ufld, solver->vfld, solver->wfld));
    solver->step();
    cfg.time += cfg.deltat;
    ++ts;
  }

  // Largest |divergence| over the core: three cells from the walls and a
  // sixth of the width below the lid, away from the corner singularities.
  double maxDivergence() const {
    const int n = cfg.nx;
    double worst = 0.0;
    for (int j = 3; j < n - 1 - n / 6; ++j)
      for (int i = 3; i < n - 3; ++i) {
        const double d = (solver->ufld(i + 1, j, 0) - solver->ufld(i - 1, j, 0)) * 0.5 / cfg.dx +
                         (solver->vfld(i, j + 1, 0) - solver->vfld(i, j - 1, 0)) * 0.5 / cfg.dy;
        worst = std::max(worst, std::fabs(d));
      }
    return worst;
  }
};

// One point of the published centre-line profiles of the cavity.
struct ghiaPoint {
  char quantity = 'u';  // u on x = 0.5, v on y = 0.5
  double x = 0.0, y = 0.0, value = 0.0;
};

// The points of one Reynolds number from the reference table (csv: Re,
// quantity, x, y, value; comment lines start with '#').
inline std::vector<ghiaPoint> readGhia(const std::string& csv, int re) {
  std::ifstream in(csv);
  std::vector<ghiaPoint> points;
  std::string line;
  while (std::getline(in, line)) {
    ghiaPoint p;
    int r = 0;
    if (std::sscanf(line.c_str(), "%d,%c,%lf,%lf,%lf", &r, &p.quantity, &p.x, &p.y, &p.value) == 5 && r == re)
      points.push_back(p);
  }
  return points;
}

struct heatedCavity {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<incompSolverThermo> solver;
  double hot = 303.0, cold = 297.0;  // wall temperatures [K]

  // n x n nodes over a 1 m square at Rayleigh number ra and Prandtl number
  // pr, with a fixed time step; threads tiles along y.
  heatedCavity(int n, double ra, double pr, int threads = 1) {
    setGrid(cfg, n, n, 1);
    setTiles(cfg, 1, threads, 1);
    cfg.cmode = 1, cfg.ibm = 0, cfg.pr = pr, cfg.cs = dashValue, cfg.gfy = -9.8;
    cfg.tempw = 0.5 * (hot + cold);
    cfg.rhow = cfg.presw * cfg.molarMass / cfg.gasConstant / cfg.tempw;
    // Ra = g beta dT L^3 / (nu alpha) with beta = 1/T0 and alpha = nu/Pr.
    const double gBetaDt = 9.8 * (hot - cold) / cfg.tempw;
    const double nu = std::sqrt(gBetaDt * pr / ra);
    cfg.mu = nu * cfg.rhow, cfg.tempwallk = hot, cfg.tempwall = cold;
    cfg.uinb = cfg.vinb = cfg.winb = 0.0, cfg.tempb = 0.0;  // adiabatic
    cfg.peps = 1e-11, cfg.loopmax = 4000;
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 1, 0, 0, 0, 0, 0, 1, 0};
    const double h = cfg.dx, alpha = nu / pr;
    cfg.deltat = 0.2 * h * h / std::max(nu, alpha), cfg.fixedDeltat = 1;
    constructDomain(domain, cfg);
    for (int j = 0; j < n; ++j)  // hot Black left, cold Non-Preset right, adiabatic Blue top and bottom
      for (int i = 0; i < n; ++i) domain.bcFlag(i, j, 0) = i == 0 ? 1 : i == n - 1 ? 8 : j == 0 || j == n - 1 ? 2 : 0;
    buildNodeLists(domain, cfg);
    buildSolidMask(domain, cfg);
    solver = std::make_unique<incompSolverThermo>(cfg, domain);
  }

  void advance() {
    solver->step();
    cfg.time += cfg.deltat;
  }

  // Average Nusselt number of the hot wall: -L/dT times the mean of dT/dx
  // at x = 0, the derivative one-sided of second order, averaged over the
  // wall by the trapezoidal rule.
  double hotWallNusselt() const {
    const int n = cfg.nx;
    double sum = 0.0;
    for (int j = 0; j < n; ++j) {
      const double dTdx =
          (-3.0 * solver->tfld(0, j, 0) + 4.0 * solver->tfld(1, j, 0) - solver->tfld(2, j, 0)) / (2.0 * cfg.dx);
      sum += (j == 0 || j == n - 1 ? 0.5 : 1.0) * dTdx;
    }
    return -sum / (n - 1) * cfg.lx / (hot - cold);
  }
};

}  // namespace marv::testing
