// Grid arrays (views, size refusal, resize) and the derivative operator on fields with known derivatives.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "common/array3d.h"
#include "common/gradOperator.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

TEST(Array3d, EmptyForNonPositiveSizesIFastestViewsAndCountsBeyondThirtyTwoBitsRefused) {
  for (int bad : {0, -1}) {
    ownedArray3d<double> a(3, bad, 2), source(3, 3, 3);
    EXPECT_TRUE(a.data == nullptr && a.nx == 0 && a.nxy == 0) << " at size " << bad;
    fill(a, 1.0);
    copyFrom(a, source);  // walks nothing
  }
  for (int n : {1, 2, 7, 17}) {
    ownedArray3d<int> a(n, n + 1, 3);
    const array3d<int> view = a;
    for (int k = 0; k < 3; ++k)
      for (int j = 0; j <= n; ++j)
        for (int i = 0; i < n; ++i) view(i, j, k) = i + 100 * j + 10000 * k;
    for (int c = 0; c < a.count(); ++c)
      ASSERT_EQ(a.data[c], c % n + 100 * (c / n % (n + 1)) + 10000 * (c / (n * (n + 1))))
          << " at n=" << n << " c=" << c;
  }
  EXPECT_THROW(ownedArray3d<double>(65536, 65536, 1), std::length_error);
  EXPECT_EQ(checkedElementCount(46340, 46340, 1), 46340 * 46340);
  ownedArray3d<double> a(4, 3, 2);
  fill(a, 2.5);
  EXPECT_THROW(a.resize(100000, 100000, 1), std::length_error);
  a.resize(4, 3, 2);
  EXPECT_EQ(std::vector<double>(&a[0], &a[0] + a.count()), std::vector<double>(24, 2.5)) << "same sizes: kept";
  a.resize(3, 4, 2);
  EXPECT_EQ(std::vector<double>(&a[0], &a[0] + a.count()), std::vector<double>(24, 0.0)) << "other sizes: zeroed";
  a.resize(3, 0, 2);
  EXPECT_EQ(a.data, nullptr);
}

// q = x^2 + 3y - 2z: the central difference of a quadratic is exact, the
// one-sided ones at the ends give the slope of the end cell.
TEST(GradOperator, RowsReproduceKnownDerivativesAlongEveryLine) {
  for (int n : {1, 2, 3, 7, 16, 17, 65}) {
    appConfig cfg;
    testing::setGrid(cfg, n, 3, 4, 2.0, 1.0, 3.0);
    const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
    ownedArray3d<double> q(n, 3, 4), gx(n, 3, 4), gy(n, 3, 4), gz(n, 3, 4);
    for (int c = 0; c < q.count(); ++c) {
      const double x = cfg.xCoord[c % n], y = cfg.yCoord[c / n % 3], z = cfg.zCoord[c / (3 * n)];
      q[c] = x * x + 3.0 * y - 2.0 * z;
    }
    gradX(op, cfg, q, gx);
    gradY(op, cfg, q, gy);
    gradZ(op, cfg, q, gz);
    for (int c = 0; c < q.count(); ++c) {
      const int i = c % n;
      const double x = cfg.xCoord[i], h = cfg.dx;
      ASSERT_NEAR(gx[c],
                  n == 1       ? 0.0
                  : i == 0     ? h
                  : i == n - 1 ? 2.0 * x - h
                               : 2.0 * x,
                  1e-12)
          << " at n=" << n << " c=" << c;
      ASSERT_NEAR(gy[c], 3.0, 1e-12) << " at n=" << n << " c=" << c;
      ASSERT_NEAR(gz[c], -2.0, 1e-12) << " at n=" << n << " c=" << c;
    }
  }
}

TEST(GradOperator, FloatFormsRoundOnceAtTheStore) {
  appConfig cfg;
  testing::setGrid(cfg, 1, 3, 3, 1.0, 3.0, 3.0);  // dy = dz = 1.5
  const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  ownedArray3d<float> q(1, 3, 3), gy(1, 3, 3), gz(1, 3, 3);
  // Rounding each product to float first would end half a unit higher.
  const float a = 16777216.0f, b = 1.0f / 3.0f;
  for (int c = 0; c < 9; ++c) q[c] = (c % 3 == 2 || c / 3 == 2) ? a : b;
  gradYFloat(op, cfg, q, gy);
  gradZFloat(op, cfg, q, gz);
  const float expected = static_cast<float>((double(a) - double(b)) / 3.0);
  EXPECT_EQ(gy(0, 1, 0), expected);
  EXPECT_EQ(gz(0, 0, 1), expected);
}

}  // namespace
}  // namespace marv
