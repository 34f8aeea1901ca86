// The lid-driven cavity end to end, as docs/verification.md runs it: 129 x
// 129 nodes, Re 100, cfl 0.15, peps 1e-9, adaptive step from the frame's
// velocity peaks, to t = 20 s (past the steady state at 14 s). It prints,
// per run, the wall time, the steps, the mean sweeps per step, the load
// average and the largest deviation of the centreline velocities from
// Ghia, Ghia and Shin (1982), so that a faster setting can be checked for
// accuracy in the same line.
//
// Usage: cavityRunBench [threads=1] [repeats=3] [omega=1.8] [peps=1e-9]
//                       [cfl=0.15] [end=20] [kernel=best|baseline|avx2]
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "solver/sweepRows.h"
#include "tests/solver/cavityCase.h"

namespace {

using namespace marv;

double loadAverage() {
  double load[1] = {0.0};
  return getloadavg(load, 1) == 1 ? load[0] : -1.0;
}

}  // namespace

int main(int argc, char** argv) {
  auto arg = [&](int n, double fallback) { return argc > n ? std::atof(argv[n]) : fallback; };
  const int threads = static_cast<int>(arg(1, 1));
  const int repeats = static_cast<int>(arg(2, 3));
  const double omega = arg(3, 1.8), peps = arg(4, 1e-9), cfl = arg(5, 0.15), end = arg(6, 20.0);
  const std::string kernel = argc > 7 ? argv[7] : "best";
  if (kernel == "baseline") useSweepInstructions(sweepInstructions::baseline);
  if (kernel == "avx2") useSweepInstructions(sweepInstructions::avx2Fma);
  const char* kernelName = sweepInstructionsInUse() == sweepInstructions::avx2Fma ? "avx2Fma" : "baseline";
  const int n = 129, re = 100;
  const std::vector<testing::ghiaPoint> reference = testing::readGhia(MARV_BENCH_DATA "/ghia1982-cavity.csv", re);
  for (int run = 1; run <= repeats; ++run) {
    testing::cavityCase c(n, re, threads);
    c.cfg.peps = peps;
    c.cfg.cfl = cfl;
    c.cfg.omega = omega;
    const double load = loadAverage();
    long sweeps = 0;
    const auto start = std::chrono::steady_clock::now();
    while (c.cfg.time < end) {
      c.advance();
      sweeps += std::min(c.cfg.presIterations + 1, c.cfg.loopmax);  // sweep numbers count from 0
    }
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    double worstU = 0.0, worstV = 0.0;
    for (const testing::ghiaPoint& p : reference) {
      const int i = static_cast<int>(std::lround(p.x * (n - 1)));
      const int j = static_cast<int>(std::lround(p.y * (n - 1)));
      const double value = p.quantity == 'u' ? c.solver->ufld(i, j, 0) : c.solver->vfld(i, j, 0);
      double& worst = p.quantity == 'u' ? worstU : worstV;
      worst = std::max(worst, std::fabs(value - p.value));
    }
    std::printf(
        "cavity run %d: threads %d kernel %s omega %g peps %g cfl %g: t = %.1f s in %d steps, %.1f sweeps per step, "
        "wall %.2f s, load average %.2f, deviation from Ghia u %.4f v %.4f\n",
        run, threads, kernelName, omega, peps, cfl, c.cfg.time, c.ts, double(sweeps) / c.ts, wall, load, worstU,
        worstV);
    std::fflush(stdout);
  }
  return 0;
}
