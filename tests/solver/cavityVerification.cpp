// Verification against the lid-driven cavity of Ghia, Ghia and Shin (1982):
// 129 x 129 nodes, Re = 100 and Re = 1000, run to a steady state, centreline
// velocities compared with the published table (tests/data). A long run:
// CTest label "long", left out of the default suite. Its report goes to
// stdout; docs/verification.md records the figures.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/solver/cavityCase.h"

namespace marv {
namespace {

struct referencePoint {
  char quantity = 'u';  // u on x = 0.5, v on y = 0.5
  double x = 0.0, y = 0.0, value = 0.0;
};

std::vector<referencePoint> readGhia(int re) {
  std::ifstream in(MARV_TEST_DATA "/ghia1982-cavity.csv");
  std::vector<referencePoint> points;
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#' || line[0] == 'R') continue;
    std::stringstream fields(line);
    std::string reText, quantity, x, y, value;
    std::getline(fields, reText, ',');
    std::getline(fields, quantity, ',');
    std::getline(fields, x, ',');
    std::getline(fields, y, ',');
    std::getline(fields, value, ',');
    if (std::stoi(reText) != re) continue;
    points.push_back({quantity[0], std::stod(x), std::stod(y), std::stod(value)});
  }
  return points;
}

void verify(int re, double tolerance) {
  const int n = 129;
  testing::cavityCase c(n, re, 1);
  const auto start = std::chrono::steady_clock::now();
  // Steady when no velocity changes by more than 1e-6 of the lid speed per
  // unit of simulated time, measured over 200 steps.
  std::vector<double> previous(c.solver->ufld.count() * 2);
  double settledAt = -1.0;
  for (int block = 0; block < 2000 && settledAt < 0.0; ++block) {
    for (int n2 = 0; n2 < c.solver->ufld.count(); ++n2) {
      previous[2 * n2] = c.solver->ufld[n2];
      previous[2 * n2 + 1] = c.solver->vfld[n2];
    }
    const double t0 = c.cfg.time;
    for (int s = 0; s < 200; ++s) c.advance();
    double change = 0.0;
    for (int n2 = 0; n2 < c.solver->ufld.count(); ++n2)
      change = std::max({change, std::fabs(c.solver->ufld[n2] - previous[2 * n2]),
                         std::fabs(c.solver->vfld[n2] - previous[2 * n2 + 1])});
    if (change / (c.cfg.time - t0) < 1e-6) settledAt = c.cfg.time;
    if (block % 10 == 0) {
      std::printf("Re %d: t = %.2f s, step %d, largest change %.2e per s, sweeps %d\n", re, c.cfg.time, c.ts,
                  change / (c.cfg.time - t0), c.cfg.presIterations);
      std::fflush(stdout);
    }
  }
  const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  double worstU = 0.0, worstV = 0.0;
  for (const referencePoint& p : readGhia(re)) {
    const int i = static_cast<int>(std::lround(p.x * (n - 1)));
    const int j = static_cast<int>(std::lround(p.y * (n - 1)));
    const double value = p.quantity == 'u' ? c.solver->ufld(i, j, 0) : c.solver->vfld(i, j, 0);
    const double error = std::fabs(value - p.value);
    (p.quantity == 'u' ? worstU : worstV) = std::max(p.quantity == 'u' ? worstU : worstV, error);
    std::printf("Re %d %c at (%.4f, %.4f): computed %+.5f reference %+.5f\n", re, p.quantity, p.x, p.y, value, p.value);
  }
  std::printf("Re %d: largest deviation u %.4f, v %.4f; steady at t = %.2f s after %d steps; wall time %.1f s\n", re,
              worstU, worstV, settledAt, c.ts, wall);
  EXPECT_GT(settledAt, 0.0) << "no steady state within the step limit";
  EXPECT_LT(worstU, tolerance);
  EXPECT_LT(worstV, tolerance);
}

TEST(CavityVerification, Re100) { verify(100, 0.05); }
TEST(CavityVerification, Re1000) { verify(1000, 0.15); }

}  // namespace
}  // namespace marv
