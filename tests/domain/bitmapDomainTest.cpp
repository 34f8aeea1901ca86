// From slices to the boundary: stretch rules, mirror before invert, the mask filter, image points.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <tuple>

#include "bitmapTestSupport.h"
#include "domain/bitmapColours.h"
#include "domain/bitmapDomain.h"
#include "domain/bitmapReading.h"
#include "domain/prepareInputs.h"

namespace {

using namespace marv;
using body = std::function<bool(int, int, int)>;

// A case with one extra colour (list index 8) whose views are the silhouettes
// of the given shapes (none where a shape is empty), and the domain constructed.
struct viewCase {
  appConfig cfg;
  bcDomain domain;
  static constexpr int c = 8;

  viewCase(int nx, int ny, int nz, const body& xy, const body& yz = {}, const body& zx = {}) {
    marvtest::setBitmapCase(cfg, nx, ny, nz);
    setPresetColours(cfg);
    cfg.iNumBcColor = 9;
    cfg.ColorsCodes[c] = colorCode(128, 128, 0);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
          if (xy && xy(i, j, k)) cfg.bitmapXY[sliceIndex(nx, ny, 0, i, j)] = c;
          if (yz && yz(i, j, k)) cfg.bitmapYZ[sliceIndex(nz, ny, 0, k, j)] = c;
          if (zx && zx(i, j, k)) cfg.bitmapZX[sliceIndex(nx, nz, 0, i, k)] = c;
        }
    for (int p = 0; p < 3; ++p) inBitmap(cfg, c, 0, p) = p == 0 ? bool(xy) : p == 1 ? bool(yz) : bool(zx);
    constructDomain(domain, cfg);
  }

  void expectLabels(const body& want, const char* what) {
    int wrong = 0;
    for (int k = 0; k < cfg.nz; ++k)
      for (int j = 0; j < cfg.ny; ++j)
        for (int i = 0; i < cfg.nx; ++i)
          if ((domain.bcFlag(i, j, k) == c) != want(i, j, k) && ++wrong <= 5)
            ADD_FAILURE() << what << ": label " << domain.bcFlag(i, j, k) << " at i=" << i << " j=" << j << " k=" << k;
    EXPECT_EQ(wrong, 0) << what;
  }
};

TEST(stretchColors, eachRuleRebuildsAPyramidFromItsThreeSilhouettes) {
  // Half-width 0, 0, 1, 1, 2, 2, 3, 3, 4 along the growth axis, square
  // sections about the centre node 4: no two silhouettes make it by
  // intersection alone.
  auto w = [](int s) { return s / 2; };
  const body alongZ = [&](int i, int j, int k) { return std::abs(i - 4) <= w(k) && std::abs(j - 4) <= w(k); };
  const body alongX = [&](int i, int j, int k) { return std::abs(j - 4) <= w(i) && std::abs(k - 4) <= w(i); };
  const body alongY = [&](int i, int j, int k) { return std::abs(i - 4) <= w(j) && std::abs(k - 4) <= w(j); };
  const struct {
    int rule;
    const body* shape;
    const char* name;
  } cases[] = {
      {0, &alongZ, "XY section along z"}, {1, &alongX, "YZ section along x"}, {2, &alongY, "ZX section along y"}};
  for (const auto& t : cases) {
    viewCase v(9, 9, 9, *t.shape, *t.shape, *t.shape);
    v.cfg.StretchPlane[viewCase::c] = t.rule;
    stretchColors(v.cfg, v.domain);
    v.expectLabels(*t.shape, t.name);
  }
}

TEST(stretchColors, offRuleGivesPrismsAndTheirIntersection) {
  const body disc = [](int i, int j, int) { return (i - 3) * (i - 3) + (j - 3) * (j - 3) <= 4; };
  viewCase prism(7, 7, 5, disc);
  stretchColors(prism.cfg, prism.domain);
  prism.expectLabels(disc, "an XY view alone fills the whole depth");

  // XY: x in 1..3; ZX: x in 2..5 and z in 1..2. The body is x in 2..3,
  // z in 1..2, every y.
  viewCase both(
      7, 4, 5, [](int i, int, int) { return i >= 1 && i <= 3; }, {},
      [](int i, int, int k) { return i >= 2 && i <= 5 && k >= 1 && k <= 2; });
  stretchColors(both.cfg, both.domain);
  both.expectLabels([](int i, int, int k) { return i >= 2 && i <= 3 && k >= 1 && k <= 2; }, "two prisms");

  // Two dimensions: the label is the slice.
  const body blob = [](int i, int j, int) { return i * j % 3 == 1; };
  viewCase flat(6, 5, 1, blob);
  stretchColors(flat.cfg, flat.domain);
  flat.expectLabels(blob, "two dimensions");
}

TEST(prepareFromInputs, mirrorsEveryColourBeforeInvertingAny) {
  // A block at the left, mirrored across x and inverted: fluid is only
  // where the block and its mirror stood.
  const body block = [](int i, int j, int) { return i <= 2 && j >= 3 && j <= 5; };
  viewCase v(12, 9, 1, block);
  v.cfg.SymmetricPlane[viewCase::c] = 1;
  v.cfg.InverseFlag[viewCase::c] = 0;
  prepareFromInputs(v.domain, v.cfg);
  v.expectLabels([&](int i, int j, int k) { return !block(i, j, k) && !block(11 - i, j, k); }, "mirror, invert");
  EXPECT_GT(v.domain.typeMasks[8](6, 0, 0), 0.9f) << "the inverted colour fills the mask";
  EXPECT_GT(v.domain.bcField(6, 0, 0), 0.9) << "bcField sums the masks";
  EXPECT_LT(v.domain.typeMasks[8](1, 4, 0), 0.1f);
  EXPECT_GT(v.domain.outlines[8].numSegments, 0) << "the outline is drawn from the mask";

  // A preview leaves everything as it was.
  viewCase p(12, 9, 1, block);
  p.cfg.stageInterrupted = 1;
  prepareFromInputs(p.domain, p.cfg);
  EXPECT_EQ(p.domain.bcFlag(1, 4, 0), 0);
}

TEST(filterMask, keepsConstantsSpreadsSymmetricallyAndWeightZeroIsIdentity) {
  for (int nz : {1, 2, 5}) {
    ownedArray3d<float> f(7, 6, nz), s(7, 6, nz);
    fill(static_cast<const array3d<float>&>(f), 0.7f);
    filterMask(f, s, 0.6);
    for (int n = 0; n < f.count(); ++n) ASSERT_NEAR(f[n], 0.7f, 1e-6f) << "nz=" << nz << " at n=" << n;

    fill(static_cast<const array3d<float>&>(f), 0.0f);
    const int kc = nz / 2;
    f(3, 3, kc) = 1.0f;
    filterMask(f, s, 1.0);
    // Per axis 1/4, 1/2, 1/4: the product in every direction, alike on both sides.
    const double axisZ = nz == 1 ? 1.0 : (nz == 2 ? 1.5 / 2.5 : 0.5);
    for (const auto& [i, j, w] :
         {std::tuple{3, 3, 0.25}, {2, 3, 0.125}, {4, 3, 0.125}, {3, 2, 0.125}, {3, 4, 0.125}, {4, 2, 0.0625}})
      EXPECT_NEAR(f(i, j, kc), w * axisZ, 1e-6) << "nz=" << nz << " at " << i << "," << j;

    fill(static_cast<const array3d<float>&>(f), 0.0f);
    f(0, 0, 0) = 1.0f;
    filterMask(f, s, 0.0);
    EXPECT_EQ(f(0, 0, 0) - f(1, 0, 0), 1.0f) << "weight 0, nz=" << nz;
  }
}

TEST(classifyMask, imagePointsMirrorNodesAcrossASphereWithinACell) {
  appConfig cfg;
  marvtest::setBitmapCase(cfg, 25, 23, 21, 1.2, 1.1, 1.0);
  bcDomain domain;
  constructDomain(domain, cfg);
  // A mask that falls linearly through the level on a sphere of radius R
  // about (xc, yc, zc) in the bitmaps' z; the solver sees it at lz - zc.
  const double xc = 0.55, yc = 0.52, zc = 0.43, R = 0.3, h = cfg.dx;
  array3d<float>& m = domain.typeMasks[1];
  for (int k = 0; k < 21; ++k)
    for (int j = 0; j < 23; ++j)
      for (int i = 0; i < 25; ++i) {
        const double r = std::hypot(cfg.xCoord[i] - xc, cfg.yCoord[j] - yc, cfg.zCoord[k] - zc);
        m(i, j, k) = static_cast<float>(std::clamp(0.8 + 0.1 * (R - r) / h, 0.0, 1.0));
      }
  classifyMask(cfg, domain, 1);
  int surface = 0, deep = 0;
  for (int k = 0; k < 21; ++k)
    for (int j = 0; j < 23; ++j)
      for (int i = 0; i < 25; ++i) {
        const double p[3] = {cfg.xCoord[i], cfg.yCoord[j], cfg.zCoord[k]};
        const double r = std::hypot(p[0] - xc, p[1] - yc, p[2] - (cfg.lz - zc));
        const int flag = domain.bcFlag(i, j, k);
        SCOPED_TRACE(::testing::Message() << i << "," << j << "," << k);
        EXPECT_TRUE(r <= R + 0.01 * h || flag == 0) << "outside, flag " << flag;
        if (flag == solidType) {
          ++deep;
          EXPECT_LT(r, R - 1.5 * h) << "deep";
          EXPECT_FLOAT_EQ(domain.imageX(i, j, k), 2.4f);
        }
        if (flag != 1) continue;
        ++surface;
        const double q[3] = {domain.imageX(i, j, k), domain.imageY(i, j, k), domain.imageZ(i, j, k)};
        const double rq = std::hypot(q[0] - xc, q[1] - yc, q[2] - (cfg.lz - zc));
        EXPECT_NEAR(rq, 2 * R - r, 0.45 * h) << "mirror across the surface";
        const double d = std::hypot(q[0] - p[0], q[1] - p[1], q[2] - p[2]);
        // Along the radius: the offset is parallel to p - centre.
        const double c[3] = {p[0] - xc, p[1] - yc, p[2] - (cfg.lz - zc)};
        const double cosine = ((q[0] - p[0]) * c[0] + (q[1] - p[1]) * c[1] + (q[2] - p[2]) * c[2]) / (d * r);
        EXPECT_GT(cosine, 0.97) << "outward along the normal";
      }
  EXPECT_GT(surface, 300);
  EXPECT_GT(deep, 50);

  // The same body in an inlet colour: the same skin, and 11 behind it with
  // no image point.
  bcDomain inlet;
  constructDomain(inlet, cfg);
  copyFrom(static_cast<const array3d<float>&>(inlet.typeMasks[2]), static_cast<const array3d<float>&>(m));
  classifyMask(cfg, inlet, 2);
  for (int n = 0; n < m.count(); ++n) {
    const int was = domain.bcFlag[n], now = inlet.bcFlag[n];
    ASSERT_EQ(now, was == solidType ? inletBodyType : (was == 1 ? 2 : 0)) << "at n=" << n;
    ASSERT_TRUE(now != inletBodyType || inlet.imageX[n] == 0.0f) << "no image point at n=" << n;
  }
}

}  // namespace
