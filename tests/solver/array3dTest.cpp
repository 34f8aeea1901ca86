// Grid arrays: ownership and views, the size refusal, the bulk operations,
// and the derivative operator against fields with known derivatives.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "solver/array3d.h"
#include "solver/gradOperator.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

TEST(Array3d, NonPositiveSizesGiveAnEmptyArrayOnWhichBulkOperationsDoNothing) {
  for (int bad : {0, -1, -7}) {
    ownedArray3d<double> a(3, bad, 2);
    EXPECT_EQ(a.data, nullptr) << " at size " << bad;
    EXPECT_EQ(a.nx + a.ny + a.nz + a.nxy, 0) << " at size " << bad;
    fill(a, 1.0);
    ownedArray3d<double> source(3, 3, 3);
    copyFrom(a, source);  // would crash on a null block if it walked anything
  }
}

TEST(Array3d, ElementsAreZeroContiguousIFastestAndViewsAlias) {
  for (int n : {1, 2, 3, 7, 16, 17}) {
    ownedArray3d<int> a(n, n + 1, 3);
    ASSERT_EQ(a.nxy, n * (n + 1));
    for (int c = 0; c < a.count(); ++c) ASSERT_EQ(a[c], 0) << " at c=" << c;
    const array3d<int> view = a;  // a header copy: same block
    for (int k = 0; k < 3; ++k)
      for (int j = 0; j <= n; ++j)
        for (int i = 0; i < n; ++i) view(i, j, k) = i + 100 * j + 10000 * k;
    for (int c = 0; c < a.count(); ++c) {
      const int i = c % n, j = (c / n) % (n + 1), k = c / (n * (n + 1));
      ASSERT_EQ(a.data[c], i + 100 * j + 10000 * k) << " at n=" << n << " c=" << c;
    }
  }
}

TEST(Array3d, CountsBeyondThirtyTwoBitsAreRefusedBeforeAllocation) {
  EXPECT_THROW(ownedArray3d<double>(65536, 65536, 1), std::length_error);
  EXPECT_THROW(ownedArray3d<double>(2000, 2000, 2000), std::length_error);
  EXPECT_THROW(ownedArray3d<int>(2147483647, 2, 1), std::length_error);
  EXPECT_EQ(checkedElementCount(46340, 46340, 1), 46340 * 46340);
  try {
    checkedElementCount(2000, 2000, 2000);
  } catch (const std::length_error& e) {
    EXPECT_NE(std::string(e.what()).find("2000 x 2000 x 2000"), std::string::npos) << e.what();
  }
  // A refused resize leaves the array as it was.
  ownedArray3d<double> a(2, 2, 2);
  a(1, 1, 1) = 5.0;
  EXPECT_THROW(a.resize(100000, 100000, 1), std::length_error);
  EXPECT_EQ(a(1, 1, 1), 5.0);
}

TEST(Array3d, ResizeKeepsContentsOnlyForTheSameSizes) {
  ownedArray3d<double> a(4, 3, 2);
  fill(a, 2.5);
  a.resize(4, 3, 2);
  for (int c = 0; c < a.count(); ++c) ASSERT_EQ(a[c], 2.5) << " at c=" << c;
  a.resize(3, 4, 2);  // same count, other sizes: zeros
  ASSERT_EQ(a.nx, 3);
  for (int c = 0; c < a.count(); ++c) ASSERT_EQ(a[c], 0.0) << " at c=" << c;
  a.resize(3, 0, 2);
  EXPECT_EQ(a.data, nullptr);
  EXPECT_EQ(a.nxy, 0);
}

TEST(Array3d, MovingAnOwnerMovesTheBlockAndViewsStayValid) {
  ownedArray3d<double> a(5, 1, 1);
  a[4] = 7.0;
  const array3d<double> view = a;
  ownedArray3d<double> b(std::move(a));
  EXPECT_EQ(a.data, nullptr);
  EXPECT_EQ(b.data, view.data);
  EXPECT_EQ(view[4], 7.0);
}

TEST(Array3d, ProductAndSumWalkTheWholeBlock) {
  ownedArray3d<double> a(7, 3, 2), x(7, 3, 2), y(7, 3, 2);
  for (int c = 0; c < a.count(); ++c) x[c] = c, y[c] = 0.5 * c + 1.0;
  setProduct(a, x, y);
  add(a, x);
  for (int c = 0; c < a.count(); ++c) EXPECT_EQ(a[c], c * (0.5 * c + 1.0) + c) << " at c=" << c;
}

// q = x^2 + 3y - 2z: the central difference of a quadratic is exact, the
// one-sided ones at the ends give the slope of the end cell.
TEST(GradOperator, RowsReproduceKnownDerivativesAlongEveryLine) {
  for (int n : {2, 3, 7, 16, 17, 65}) {
    appConfig cfg;
    testing::setGrid(cfg, n, 3, 4, 2.0, 1.0, 3.0);
    const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
    ownedArray3d<double> q(n, 3, 4), gx(n, 3, 4), gy(n, 3, 4), gz(n, 3, 4);
    for (int k = 0; k < 4; ++k)
      for (int j = 0; j < 3; ++j)
        for (int i = 0; i < n; ++i) {
          const double x = cfg.xCoord[i], y = cfg.yCoord[j], z = cfg.zCoord[k];
          q(i, j, k) = x * x + 3.0 * y - 2.0 * z;
        }
    gradX(op, cfg, q, gx);
    gradY(op, cfg, q, gy);
    gradZ(op, cfg, q, gz);
    const double h = cfg.dx;
    for (int k = 0; k < 4; ++k)
      for (int j = 0; j < 3; ++j)
        for (int i = 0; i < n; ++i) {
          const double x = cfg.xCoord[i];
          const double expected = i == 0 ? h : i == n - 1 ? 2.0 * x - h : 2.0 * x;
          ASSERT_NEAR(gx(i, j, k), expected, 1e-12) << " at n=" << n << " i=" << i << " j=" << j << " k=" << k;
          ASSERT_NEAR(gy(i, j, k), 3.0, 1e-12) << " at n=" << n << " i=" << i << " j=" << j << " k=" << k;
          ASSERT_NEAR(gz(i, j, k), -2.0, 1e-12) << " at n=" << n << " i=" << i << " j=" << j << " k=" << k;
        }
  }
}

TEST(GradOperator, SingleNodeXLineGivesZerosAndTwoNodeLineGivesEqualOneSidedValues) {
  appConfig cfg;
  testing::setGrid(cfg, 1, 2, 1);
  const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  ownedArray3d<double> q(1, 2, 1), out(1, 2, 1);
  fill(out, 9.0);
  q[0] = 1.0, q[1] = 4.0;
  gradX(op, cfg, q, out);
  EXPECT_EQ(out[0], 0.0);
  EXPECT_EQ(out[1], 0.0);
  gradY(op, cfg, q, out);  // ny = 2, dy = 1: both ends (4 - 1)/1
  EXPECT_EQ(out[0], 3.0);
  EXPECT_EQ(out[1], 3.0);
}

TEST(GradOperator, DestinationIsIndexedWithItsOwnStrides) {
  appConfig cfg;
  testing::setGrid(cfg, 3, 3, 1, 2.0, 2.0);
  const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  ownedArray3d<double> q(3, 3, 1), out(5, 3, 1);  // wider destination
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) q(i, j, 0) = 2.0 * i;
  fill(out, -1.0);
  gradX(op, cfg, q, out);
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(out(i, j, 0), 2.0) << " at i=" << i << " j=" << j;
    for (int i = 3; i < 5; ++i) EXPECT_EQ(out(i, j, 0), -1.0) << " untouched at i=" << i << " j=" << j;
  }
}

TEST(GradOperator, FloatFormsRoundOnceAtTheStore) {
  appConfig cfg;
  testing::setGrid(cfg, 1, 3, 3, 1.0, 3.0, 3.0);  // dy = dz = 1.5
  const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  ownedArray3d<float> q(1, 3, 3), gy(1, 3, 3), gz(1, 3, 3);
  // Values whose difference loses bits if each product were rounded to float.
  const float a = 16777216.0f, b = 1.0f / 3.0f;
  for (int k = 0; k < 3; ++k)
    for (int j = 0; j < 3; ++j) q(0, j, k) = (j == 2 || k == 2) ? a : b;
  gradYFloat(op, cfg, q, gy);
  gradZFloat(op, cfg, q, gz);
  const float expected = static_cast<float>((double(a) - double(b)) * (0.5 / 1.5));
  EXPECT_EQ(gy(0, 1, 0), expected);
  EXPECT_EQ(gz(0, 0, 1), expected);
}

}  // namespace
}  // namespace marv
