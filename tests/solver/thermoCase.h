// The heated cavity built by hand (hot Black left, cold Non-Preset right, adiabatic Blue, gravity -y).
#pragma once

#include <cmath>
#include <memory>

#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "project/applyParameters.h"
#include "solver/incompSolverThermo.h"
#include "tests/testGrid.h"

namespace marv::testing {

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
    cfg.cmode = 1;
    cfg.ibm = 0;
    cfg.pr = pr;
    cfg.cs = dashValue;
    cfg.tempw = 0.5 * (hot + cold);
    cfg.rhow = cfg.presw * cfg.molarMass / cfg.gasConstant / cfg.tempw;
    cfg.gfy = -9.8;
    // Ra = g beta dT L^3 / (nu alpha) with beta = 1/T0 and alpha = nu/Pr.
    const double gBetaDt = 9.8 * (hot - cold) / cfg.tempw;
    const double nu = std::sqrt(gBetaDt * pr / ra);
    cfg.mu = nu * cfg.rhow;
    cfg.tempwallk = hot;
    cfg.tempwall = cold;
    cfg.uinb = cfg.vinb = cfg.winb = 0.0;
    cfg.tempb = 0.0;  // adiabatic
    cfg.peps = 1e-11;
    cfg.loopmax = 4000;
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 1, 0, 0, 0, 0, 0, 1, 0};
    const double h = cfg.dx, alpha = nu / pr;
    cfg.deltat = 0.2 * h * h / std::max(nu, alpha);
    cfg.fixedDeltat = 1;
    constructDomain(domain, cfg);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) {
        int type = 0;
        if (j == 0 || j == n - 1) type = 2;
        if (i == 0) type = 1;
        if (i == n - 1) type = 8;
        domain.bcFlag(i, j, 0) = type;
      }
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
    const double mean = sum / (n - 1);
    return -mean * cfg.lx / (hot - cold);
  }
};

}  // namespace marv::testing
