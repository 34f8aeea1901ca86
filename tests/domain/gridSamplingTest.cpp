// Grid sampling: linear fields exact, the far corner in the last cell with weight 1, points outside read 0.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "common/array3d.h"
#include "domain/gridSampling.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

double linear(double x, double y, double z) { return 1.5 + 2.0 * x - 3.0 * y + 0.5 * z; }

// A field that holds linear() at every node of cfg's grid.
template <class T>
ownedArray3d<T> linearField(const appConfig& cfg) {
  ownedArray3d<T> f(cfg.nx, cfg.ny, cfg.nz);
  for (int k = 0; k < cfg.nz; ++k)
    for (int j = 0; j < cfg.ny; ++j)
      for (int i = 0; i < cfg.nx; ++i) f(i, j, k) = T(linear(cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k]));
  return f;
}

TEST(GridSampling, LinearFieldsAreReproducedInsideAndAtTheFarCorner) {
  std::mt19937 random(5);
  for (int n : {2, 3, 7, 16, 17}) {
    for (int nz : {1, n}) {
      appConfig cfg;
      testing::setGrid(cfg, n, n + 1, nz, 2.0, 1.0, 3.0);
      const ownedArray3d<double> f = linearField<double>(cfg);
      const ownedArray3d<float> g = linearField<float>(cfg);
      std::uniform_real_distribution<double> ux(0.0, 2.0), uy(0.0, 1.0), uz(0.0, cfg.lz);
      for (int s = 0; s < 50; ++s) {
        const double x = ux(random), y = uy(random), z = uz(random);
        const double expected = linear(x, y, nz > 1 ? z : 0.0);
        ASSERT_NEAR(sampleField(cfg, x, y, z, f), expected, 1e-12) << " at n=" << n << " nz=" << nz << " s=" << s;
        ASSERT_NEAR(sampleFieldFloat(cfg, float(x), float(y), float(z), g),
                    linear(float(x), float(y), nz > 1 ? float(z) : 0.0f), 2e-5)
            << " at n=" << n << " nz=" << nz << " s=" << s;
        ASSERT_NEAR(sampleFieldPlane(cfg, x, y, f), linear(x, y, 0.0), 1e-12) << " at n=" << n << " s=" << s;
      }
      // The far corner lies in the last cell with weights 1.
      EXPECT_EQ(sampleField(cfg, 2.0, 1.0, cfg.lz, f), f(n - 1, n, nz - 1)) << " at n=" << n << " nz=" << nz;
    }
  }
}

TEST(GridSampling, PointsOutsideTheGridReadZeroAndLessThanACellBelowExtrapolates) {
  appConfig cfg;
  testing::setGrid(cfg, 5, 5, 5, 1.0, 1.0, 1.0);  // spacing 0.25
  const ownedArray3d<double> f = linearField<double>(cfg);
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (double far : {-0.25, 1.25, 1e300, -1e300, nan, inf}) {
    EXPECT_EQ(sampleField(cfg, far, 0.5, 0.5, f), 0.0) << " at x=" << far;
    EXPECT_EQ(sampleField(cfg, 0.5, far, 0.5, f), 0.0) << " at y=" << far;
    EXPECT_EQ(sampleField(cfg, 0.5, 0.5, far, f), 0.0) << " at z=" << far;
    if (far != -0.25) {
      EXPECT_EQ(sampleFieldPlane(cfg, far, 0.5, f), 0.0) << " at x=" << far;
    }
  }
  // Less than a cell below node 0 the first cell is extrapolated.
  EXPECT_NEAR(sampleField(cfg, -0.025, 0.5, 0.5, f), linear(-0.025, 0.5, 0.5), 1e-12);
  EXPECT_NEAR(sampleFieldPlane(cfg, -0.1, 0.5, f), linear(-0.1, 0.5, 0.0), 1e-12);
}

}  // namespace
}  // namespace marv
