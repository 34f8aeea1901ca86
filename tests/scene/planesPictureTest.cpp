// The 3D duct and sphere pictures: scale colours on their three planes and the streamlines' plain colour, kept as PNG.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "layer/layer.h"
#include "renderSupport.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;

using marvtest::picture;

using planesPicture = marvtest::offscreenPicture;

// The walls hidden, all three planes and the streamlines from the inlet
// shown; the picture is kept as a PNG in the build folder to look at. A run
// ends the layer, so each example has a test of its own.
void checkPlanesPicture(const char* example) {
  {
    const int last = 20;
    const std::string n = std::to_string(last);
    const auto folder = marvtest::runExample(
        example, {{"latts", n}, {"nfig", n}, {"nfile", n}},
        "showBoundaryFlagUser 0\nshowBoundaryFlagBlack 0\nshowCrosssectionXYFlag 1\nshowCrosssectionYZFlag 1\n"
        "showCrosssectionXZFlag 1\nshowStreamlineFlag 1\nshowCrosssectionVectorFlag 0\n");

    picture shot;
    char name[64];
    std::snprintf(name, sizeof name, "%08d.jpg", last);
    ASSERT_TRUE(shot.read((folder / "figs" / name).string()));
    const std::string kept = (std::filesystem::path(MARV_BUILD_DIR) / (std::string(example) + "-planes.png")).string();
    EXPECT_NE(stbi_write_png(kept.c_str(), shot.width, shot.height, 3, shot.rgb.data(), shot.width * 3), 0) << kept;

    // Scale colours are saturated (one channel near 255, another near 0);
    // the streamlines' plain colour is (15, 200, 230). Both away from the
    // status band at the bottom.
    int scale = 0, lineInk = 0;
    for (int y = 0; y < shot.height * 2 / 3; ++y)
      for (int x = 0; x < shot.width; ++x) {
        const unsigned char* c = &shot.rgb[(static_cast<std::size_t>(y) * shot.width + x) * 3];
        const int hi = std::max({c[0], c[1], c[2]}), lo = std::min({c[0], c[1], c[2]});
        scale += hi > 230 && lo < 40;
        lineInk += std::abs(c[0] - 15) < 40 && std::abs(c[1] - 200) < 40 && std::abs(c[2] - 230) < 40;
      }
    EXPECT_GT(scale, shot.width * shot.height / 10) << "the planes cover much of the picture";
    EXPECT_GT(lineInk, 100) << "streamlines drawn";
  }
}

TEST_F(planesPicture, DuctShowsItsPlanesInScaleColoursAndItsStreamlines) { checkPlanesPicture("duct3d"); }
TEST_F(planesPicture, SphereShowsItsPlanesInScaleColoursAndItsStreamlines) { checkPlanesPicture("sphere3d"); }

}  // namespace
