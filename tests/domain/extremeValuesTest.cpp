// Domain stages at the ends of their ranges stay defined (the sanitizer build checks overflow) and bounded.
#include <gtest/gtest.h>

#include <climits>

#include "domain/bitmapColours.h"
#include "domain/bitmapReading.h"
#include "domain/progressLine.h"
#include "layer/layer.h"
#include "project/applyParameters.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

TEST(ExtremeValues, BitmapPlaneGeometryOfAHugeDomainStaysBounded) {
  for (const double lx : {1e300, 1e-300, 1e38, 1.0}) {
    appConfig cfg;
    testing::setGrid(cfg, 9, 7, 1, lx, 1.0);
    cfg.pixPerMetre = 100.0 / cfg.dx;
    cfg.domPixX = INT_MAX;
    cfg.domPixY = 700;
    cfg.bitmapScreenWidth = INT_MAX;
    cfg.bitmapScreenHeight = INT_MIN;
    const planeGeometry g = makePlaneGeometry(cfg, planeXY);
    ASSERT_EQ(g.across, 9) << lx;
    for (int p : g.px) EXPECT_LE(std::abs(static_cast<long long>(p)), 1LL << 26) << lx;
    for (int p : g.py) EXPECT_LE(std::abs(static_cast<long long>(p)), 1LL << 26) << lx;
    EXPECT_LE(std::abs(static_cast<long long>(g.ox)), 1LL << 26);
    EXPECT_LE(std::abs(static_cast<long long>(g.oy)), 1LL << 26);
    std::vector<std::uint32_t> codes;
    const int image = makeImage(4, 4, 0);
    if (lx > 1e6) {
      EXPECT_EQ(readImageAtMesh(cfg, planeXY, image, codes), -1) << "no image that large is made";
    }
    deleteImage(image);
  }
}

TEST(ExtremeValues, ProgressLineWithSizesAndCountsAtTheLimit) {
  appConfig cfg;
  testing::setGrid(cfg, 5, 5, 1);
  for (const int size : {INT_MAX, INT_MIN, 0}) {
    cfg.sceneWidth = cfg.sceneHeight = size;
    cfg.progressTotal = 3;
    cfg.progressCount = INT_MAX;
    showProgress(cfg, 1);
    EXPECT_EQ(cfg.progressCount, INT_MAX) << "the count saturates";
    cfg.progressTotal = -5;
    cfg.progressCount = -7;
    showProgress(cfg, 2);
  }
}

}  // namespace
}  // namespace marv
