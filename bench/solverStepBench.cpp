// Time per step of the constant-density solver: a 2D lid-driven cavity of
// 513 x 513 nodes and a 3D box of 129^3 nodes with a moving lid and the
// sub-grid model on, with 1 and 2 threads. The pressure iteration is held to
// a fixed number of sweeps per step (loopmax with an unreachable peps), so
// that every step does the same work; node updates per second count the
// nodes of the grid once per step.
#include <benchmark/benchmark.h>

#include <memory>

#include "bench/benchGrid.h"
#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "project/applyParameters.h"
#include "solver/incompSolver.h"

namespace {

using namespace marv;

struct benchCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<incompSolver> solver;

  benchCase(int n, int nz, int threads) {
    marvbench::setBenchGrid(cfg, n, nz, threads);
    cfg.ibm = 0;
    cfg.mu = 1e-3;
    cfg.uinb = 1.0;
    cfg.cs = nz > 1 ? 0.17 : dashValue;
    cfg.peps = 0.0;  // never met: every step runs loopmax sweeps
    cfg.loopmax = 20;
    cfg.deltat = 0.2 * cfg.dx;
    setColourTables(cfg);
    cfg.bcTypePresent = {0, 1, 1, 0, 0, 0, 0, 0, 0, 0};
    constructDomain(domain, cfg);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
          const bool lid = j == n - 1;
          const bool wall = i == 0 || i == n - 1 || j == 0 || (nz > 1 && (k == 0 || k == nz - 1));
          domain.bcFlag(i, j, k) = lid ? 2 : (wall ? 1 : 0);
        }
    buildNodeLists(domain, cfg);
    solver = std::make_unique<incompSolver>(cfg, domain);
    setInitialFields(*solver);
  }
};

void solverStep(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const int nz = static_cast<int>(state.range(1));
  const int threads = static_cast<int>(state.range(2));
  benchCase c(n, nz, threads);
  for (int s = 0; s < 3; ++s) c.solver->step();  // past the start-up
  for (auto _ : state) c.solver->step();
  const double nodes = static_cast<double>(n) * n * nz;
  state.counters["steps/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["node updates/s"] =
      benchmark::Counter(nodes * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["sweeps/step"] = c.cfg.loopmax;
}

BENCHMARK(solverStep)
    ->ArgNames({"n", "nz", "threads"})
    ->Args({513, 1, 1})
    ->Args({513, 1, 2})
    ->Args({129, 129, 1})
    ->Args({129, 129, 2})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
