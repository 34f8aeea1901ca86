// Long runs (label "long"): Ghia, Ghia and Shin (1982) cavity centrelines at Re 100 and 1000 on 129 x 129 nodes;
// de Vahl Davis (1983) heated cavity, hot-wall Nusselt number at Ra 1e4 and 1e5.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "tests/solver/cavityCase.h"

namespace marv {
namespace {

double seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Velocities along the two centrelines, u on x = 0.5 then v on y = 0.5.
std::vector<double> centrelines(const testing::cavityCase& c) {
  const int n = c.cfg.nx, mid = n / 2;
  std::vector<double> values;
  for (int j = 0; j < n; ++j) values.push_back(c.solver->ufld(mid, j, 0));
  for (int i = 0; i < n; ++i) values.push_back(c.solver->vfld(i, mid, 0));
  return values;
}

void verifyLid(int re, double cfl, double tolerance) {
  const int n = 129;
  testing::cavityCase c(n, re, 1);
  c.cfg.peps = 1e-9;  // pressure changes below 1e-4 Pa, against pressures of order 1 Pa
  // The adaptive step follows the convective limit cfl h/U only; at Re 100
  // on this mesh the explicit viscous limit h^2/(4 nu) = 1.5e-3 s lies below
  // 0.25 h/U = 2.0e-3 s, so this case runs at a smaller cfl.
  c.cfg.cfl = cfl;
  const auto start = std::chrono::steady_clock::now();
  // Steady when no centreline velocity changes by more than 1e-4 of the lid
  // speed per second of simulated time, measured over one second.
  double settledAt = -1.0;
  std::vector<double> previous = centrelines(c);
  while (c.cfg.time < 400.0 && settledAt < 0.0) {
    const double t0 = c.cfg.time;
    while (c.cfg.time < t0 + 1.0) c.advance();
    const std::vector<double> now = centrelines(c);
    double change = 0.0;
    for (std::size_t m = 0; m < now.size(); ++m) change = std::max(change, std::fabs(now[m] - previous[m]));
    change /= c.cfg.time - t0;
    previous = now;
    if (change < 1e-4) settledAt = c.cfg.time;
  }
  double worstU = 0.0, worstV = 0.0;
  for (const testing::ghiaPoint& p : testing::readGhia(MARV_TEST_DATA "/ghia1982-cavity.csv", re)) {
    const int i = static_cast<int>(std::lround(p.x * (n - 1)));
    const int j = static_cast<int>(std::lround(p.y * (n - 1)));
    const double value = p.quantity == 'u' ? c.solver->ufld(i, j, 0) : c.solver->vfld(i, j, 0);
    double& worst = p.quantity == 'u' ? worstU : worstV;
    worst = std::max(worst, std::fabs(value - p.value));
  }
  std::printf("Re %d: largest deviation u %.4f, v %.4f; steady at t = %.1f s after %d steps; wall time %.1f s\n", re,
              worstU, worstV, settledAt, c.ts, seconds(start));
  EXPECT_GT(settledAt, 0.0) << "no steady state within 400 s";
  EXPECT_LT(worstU, tolerance);
  EXPECT_LT(worstV, tolerance);
}

TEST(CavityVerification, Re100) { verifyLid(100, 0.15, 0.05); }
TEST(CavityVerification, Re1000) { verifyLid(1000, 0.25, 0.15); }

double publishedNusselt(const std::string& ra) {
  std::ifstream in(MARV_TEST_DATA "/devahldavis1983-nusselt.csv");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(ra + ",", 0) == 0) return std::stod(line.substr(ra.size() + 1));
  }
  return 0.0;
}

void verifyHeated(const std::string& raText, int n, double tolerance) {
  const double ra = std::stod(raText);
  testing::heatedCavity c(n, ra, 0.71, 1);
  const auto start = std::chrono::steady_clock::now();
  // Steady when the Nusselt number changes by less than 1e-5 over one tenth
  // of the thermal diffusion time L^2/alpha.
  const double alpha = c.cfg.mu / c.cfg.rhow / c.cfg.pr;
  const int block = static_cast<int>(0.1 / alpha / c.cfg.deltat) + 1;
  double nu = c.hotWallNusselt(), settledAt = -1.0;
  int steps = 0;
  for (int b = 0; b < 200 && settledAt < 0.0; ++b) {
    for (int s = 0; s < block; ++s) c.advance();
    steps += block;
    const double next = c.hotWallNusselt();
    if (std::fabs(next - nu) < 1e-5 * next) settledAt = c.cfg.time;
    nu = next;
  }
  const double reference = publishedNusselt(raText);
  std::printf(
      "Ra %s on %d x %d: Nu %.4f, reference %.3f, deviation %.1f %%; steady at t = %.1f s after %d steps; "
      "wall time %.1f s\n",
      raText.c_str(), n, n, nu, reference, 100.0 * (nu - reference) / reference, settledAt, steps, seconds(start));
  EXPECT_GT(settledAt, 0.0) << "no steady state within the step limit";
  EXPECT_NEAR(nu, reference, tolerance * reference);
}

TEST(HeatedCavityVerification, Ra1e4) { verifyHeated("1e4", 65, 0.05); }
TEST(HeatedCavityVerification, Ra1e5) { verifyHeated("1e5", 97, 0.08); }

}  // namespace
}  // namespace marv
