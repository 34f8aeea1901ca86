// Pictures off-screen: colour bar, a saved cylinder image against its dump, the duct's planes and streamlines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "layer/layer.h"
#include "scene/colourScale.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;

// The scale's colour k of 0..31: blue, cyan, green-yellow, red in three ramps over 0..765.
void expectedColour(int k, int rgb[3]) {
  const int c = static_cast<int>(k / 31.0 * 765.0);
  if (c < 256)
    rgb[0] = 0, rgb[1] = c, rgb[2] = 255;
  else if (c <= 510)
    rgb[0] = c - 255, rgb[1] = 255, rgb[2] = 510 - c;
  else
    rgb[0] = 255, rgb[1] = 765 - c, rgb[2] = 0;
}

// The count doubles of a dump file, or nothing when it holds another number of bytes.
std::vector<double> readRaw(const std::filesystem::path& path, std::size_t count) {
  const std::string bytes = marvtest::readText(path);
  std::vector<double> values(bytes.size() == count * sizeof(double) ? count : 0);
  std::memcpy(values.data(), bytes.data(), values.size() * sizeof(double));
  return values;
}

using pictureRender = marvtest::offscreenPicture;

TEST_F(pictureRender, ColourBarRunsFromBlueToRedBetweenWhiteMarks) {
  sceneView scene;
  appConfig cfg;
  scene.colours = makeSceneColours();
  fillColourTable(scene, cfg);
  scene.valueMin = 0.0, scene.valueMax = 1.0;
  setBackgroundColour(0, 0, 0, 255);
  setDrawTarget(backBuffer);
  clearDrawTarget();
  drawColourBar(scene, cfg, 40, 50, 320);
  const std::vector<std::uint8_t> rgba = marvtest::grabPixels(0, 0, 400, 200);
  auto pixel = [&](int x, int y) {
    const std::uint8_t* c = &rgba[(y * 400 + x) * 4];
    return std::vector<int>{c[0], c[1], c[2]};
  };
  const std::vector<int> white{255, 255, 255};
  EXPECT_EQ(pixel(40, 60), (std::vector<int>{0, 0, 255})) << "first column: first colour";
  EXPECT_EQ(pixel(359, 60), (std::vector<int>{255, 0, 0})) << "last column: last colour";
  EXPECT_EQ(pixel(200, 60), (std::vector<int>{115, 255, 140})) << "column 160: entry trunc(160/319 x 31) = 15";
  EXPECT_EQ(pixel(39, 60), white) << "white end mark left";
  EXPECT_EQ(pixel(360, 60), white) << "white end mark right";
  EXPECT_EQ(pixel(100, 49), white) << "a white rim above";
  int ink = 0;  // the numbers under the bar
  for (int y = 72; y < 100; ++y)
    for (int x = 40; x < 360; ++x) ink += pixel(x, y)[0] > 128;
  EXPECT_GT(ink, 100);
}

TEST_F(pictureRender, SavedImageOfARunMatchesItsDump) {
  // Image and dump of one step on a fixed range; domx fixes the layout whatever the example shows.
  const double lo = 0.0, hi = 1.6;
  const auto folder =
      marvtest::runExample("cylinder2d", {{"latts", "30"}, {"nfig", "30"}, {"nfile", "30"}, {"domx", "720"}},
                           "dispQuantFlag 5\nmanualMinFlag 1\nmanualMinValue 0\nmanualMaxFlag 1\nmanualMaxValue 1.6\n");
  marvtest::picture shot;
  const std::string name = "00000030";
  ASSERT_TRUE(shot.read((folder / "figs" / (name + ".jpg")).string()));
  const int nx = 241, ny = 61;
  const std::vector<double> u = readRaw(folder / "dump" / name / "ufld.raw", nx * ny);
  const std::vector<double> v = readRaw(folder / "dump" / name / "vfld.raw", nx * ny);
  const std::vector<double> bc = readRaw(folder / "dump" / name / "bc.raw", nx * ny);
  ASSERT_FALSE(u.empty() || v.empty() || bc.empty());
  // 2D layout: 720/241 = 2 pixels a cell, 120 pixels a metre; margins 10 left, 30 on top.
  const double perMetre = 2.0 / (4.0 / 240.0);
  auto pixelX = [&](int i) { return static_cast<int>(i * (4.0 / 240.0) * perMetre + 10 + 0.5); };
  auto pixelY = [&](int j) { return static_cast<int>(perMetre * 1.0 - j * (1.0 / 60.0) * perMetre + 30 + 0.5); };
  EXPECT_EQ(shot.width, 500 - 1) << "the saved rectangle: the screen less its last column";
  auto speed = [&](int i, int j) { return std::hypot(u[i + nx * j], v[i + nx * j]); };
  auto meanSpeed = [&](int i, int j) {
    return (speed(i, j) + speed(i + 1, j) + speed(i, j + 1) + speed(i + 1, j + 1)) / 4.0;
  };
  auto cellIndex = [&](int i, int j) {
    const double q = (meanSpeed(i, j) - lo) / (hi - lo) * 31.0;
    return static_cast<int>(q < 0.0 ? 0.0 : (q > 31.0 ? 31.0 : q));
  };
  int compared = 0, matched = 0;
  for (int j = 2; j < ny - 3; ++j)
    for (int i = 2; i < nx - 3; ++i) {
      // Cells in a plain patch away from boundaries, where JPEG chroma halving smears nothing in.
      bool plain = true;
      for (int dj = -1; dj <= 1; ++dj)
        for (int di = -2; di <= 2; ++di)
          plain = plain && cellIndex(i + di, j + dj) == cellIndex(i, j) && bc[i + di + nx * (j + dj)] == 0.0;
      if (!plain) continue;
      int want[3];
      expectedColour(cellIndex(i, j), want);
      const unsigned char* got = shot.at(pixelX(i) + 1, pixelY(j + 1) + 1);
      ++compared;
      matched +=
          std::abs(got[0] - want[0]) <= 24 && std::abs(got[1] - want[1]) <= 24 && std::abs(got[2] - want[2]) <= 24;
    }
  EXPECT_GT(compared, 1000);
  EXPECT_GE(matched, compared * 98 / 100) << matched << " of " << compared << " cells in their colour";
  // The outline: the first node inside the wall on the middle row is where the black iso-line crosses.
  const int jc = ny / 2;
  int inside = -1;
  for (int i = 1; i < nx / 2 && inside < 0; ++i)
    if (bc[i + nx * jc] >= 0.8) inside = i;
  ASSERT_GT(inside, 0) << "the cylinder lies in the left half";
  int darkest = 255 * 3;
  for (int x = pixelX(inside - 1) - 1; x <= pixelX(inside) + 1; ++x) {
    const unsigned char* p = shot.at(x, pixelY(jc));
    darkest = std::min(darkest, p[0] + p[1] + p[2]);
  }
  EXPECT_LT(darkest, 200) << "a dark outline where the wall begins";
  std::filesystem::remove_all(folder);
}

TEST_F(pictureRender, DuctShowsItsPlanesInScaleColoursAndItsStreamlines) {
  // The walls hidden, the three planes and the streamlines from the inlet shown.
  const auto folder = marvtest::runExample(
      "duct3d", {{"latts", "20"}, {"nfig", "20"}, {"nfile", "20"}},
      "showBoundaryFlagUser 0\nshowBoundaryFlagBlack 0\nshowCrosssectionXYFlag 1\nshowCrosssectionYZFlag 1\n"
      "showCrosssectionXZFlag 1\nshowStreamlineFlag 1\nshowCrosssectionVectorFlag 0\n");
  marvtest::picture shot;
  ASSERT_TRUE(shot.read((folder / "figs" / "00000020.jpg").string()));
  const std::string kept = (std::filesystem::path(MARV_BUILD_DIR) / "duct3d-planes.png").string();
  EXPECT_NE(stbi_write_png(kept.c_str(), shot.width, shot.height, 3, shot.rgb.data(), shot.width * 3), 0) << kept;
  // Scale colours are saturated; streamlines are (15, 200, 230). Both above the status band.
  int scale = 0, lineInk = 0;
  for (int y = 0; y < shot.height * 2 / 3; ++y)
    for (int x = 0; x < shot.width; ++x) {
      const unsigned char* c = shot.at(x, y);
      const int most = std::max({c[0], c[1], c[2]}), least = std::min({c[0], c[1], c[2]});
      scale += most > 230 && least < 40;
      lineInk += std::abs(c[0] - 15) < 40 && std::abs(c[1] - 200) < 40 && std::abs(c[2] - 230) < 40;
    }
  EXPECT_GT(scale, shot.width * shot.height / 10) << "the planes cover much of the picture";
  EXPECT_GT(lineInk, 100) << "streamlines drawn";
  std::filesystem::remove_all(folder);
}

}  // namespace
