// The 3D duct picture: scale colours on its three planes and the streamlines' plain colour, kept for a look.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "layer/layer.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;

using marvtest::picture;

using planesPicture = marvtest::offscreenPicture;

TEST_F(planesPicture, DuctShowsItsPlanesInScaleColoursAndItsStreamlines) {
  // The walls hidden, all three planes and the streamlines from the inlet shown.
  const int last = 20;
  const std::string n = std::to_string(last);
  const auto folder = marvtest::runExample(
      "duct3d", {{"latts", n}, {"nfig", n}, {"nfile", n}},
      "showBoundaryFlagUser 0\nshowCrosssectionXYFlag 1\nshowCrosssectionYZFlag 1\nshowCrosssectionXZFlag 1\n"
      "showStreamlineFlag 1\nshowCrosssectionVectorFlag 0\n");

  picture shot;
  char name[64];
  std::snprintf(name, sizeof name, "%08d.jpg", last);
  ASSERT_TRUE(shot.read((folder / "figs" / name).string()));
  std::filesystem::copy_file(folder / "figs" / name, std::filesystem::path(MARV_BUILD_DIR) / "duct3d-planes.jpg",
                             std::filesystem::copy_options::overwrite_existing);

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

}  // namespace
