// The lid-driven cavity built by hand (Black walls, Blue lid along +x), for the short check and the Ghia et al. run.
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
#include "tests/testGrid.h"

namespace marv::testing {

struct cavityCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<incompSolver> solver;
  int ts = 0;  // steps taken

  // n x n nodes, lid speed lid [m/s], Reynolds number re (rho = 1, L = 1),
  // threads tiles along y. mirrored: the lid moves along -x.
  cavityCase(int n, double re, int threads = 1, bool mirrored = false) {
    setGrid(cfg, n, n, 1);
    setTiles(cfg, 1, threads, 1);
    cfg.ibm = 0;
    cfg.rhow = 1.0;
    cfg.mu = 1.0 / re;
    cfg.cs = dashValue;
    cfg.uinb = mirrored ? -1.0 : 1.0;
    cfg.vinb = 0.0;
    // The pressure change is measured against presw (1e5 Pa): a cavity whose
    // pressures are of order rho U^2 = 1 Pa needs a tight tolerance.
    cfg.peps = 1e-10;
    cfg.loopmax = 2000;
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 1, 0, 0, 0, 0, 0, 0, 0};
    const double h = cfg.dx;
    cfg.deltat = 0.5 * std::min(cfg.cfl * h / 1.0, 0.5 * cfg.cfl * h * h / (cfg.mu / cfg.rhow));
    constructDomain(domain, cfg);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) {
        const bool side = i == 0 || i == n - 1 || j == 0;
        domain.bcFlag(i, j, 0) = side ? 1 : (j == n - 1 ? 2 : 0);
      }
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

}  // namespace marv::testing
