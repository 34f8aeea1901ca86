// Long run (label "long"): de Vahl Davis (1983) heated cavity, hot-wall Nusselt number at Ra 1e4 and 1e5.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/solver/cavityCase.h"

namespace marv {
namespace {

double publishedNusselt(const std::string& ra) {
  std::ifstream in(MARV_TEST_DATA "/devahldavis1983-nusselt.csv");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(ra + ",", 0) == 0) return std::stod(line.substr(ra.size() + 1));
  }
  return 0.0;
}

void verify(const std::string& raText, int n, double tolerance) {
  const double ra = std::stod(raText);
  testing::heatedCavity c(n, ra, 0.71, 1);
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
  std::printf("Ra %s on %d x %d: Nu %.4f, reference %.3f; steady at t = %.1f s after %d steps\n", raText.c_str(), n, n,
              nu, reference, settledAt, steps);
  EXPECT_GT(settledAt, 0.0) << "no steady state within the step limit";
  EXPECT_NEAR(nu, reference, tolerance * reference);
}

TEST(HeatedCavityVerification, Ra1e4) { verify("1e4", 65, 0.05); }
TEST(HeatedCavityVerification, Ra1e5) { verify("1e5", 97, 0.08); }

}  // namespace
}  // namespace marv
