// The saved live picture of the cylinder example against a colour mapping of its dump, made from the raw files alone.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "layer/layer.h"
#include "renderSupport.h"
#include "scene/colourScale.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;

using marvtest::picture;

// The scale: blue, cyan, green-yellow, red in three ramps over 0..765.
void expectedColour(double value, double lo, double hi, int rgb[3]) {
  double q = (value - lo) / (hi - lo) * 31.0;
  q = q < 0.0 ? 0.0 : (q > 31.0 ? 31.0 : q);
  const int c = static_cast<int>(static_cast<int>(q) / 31.0 * 765.0);
  if (c < 256)
    rgb[0] = 0, rgb[1] = c, rgb[2] = 255;
  else if (c <= 510)
    rgb[0] = c - 255, rgb[1] = 255, rgb[2] = 510 - c;
  else
    rgb[0] = 255, rgb[1] = 765 - c, rgb[2] = 0;
}

std::vector<double> readRaw(const std::filesystem::path& path, std::size_t count) {
  std::vector<double> values(count, 0.0);
  std::ifstream in(path, std::ios::binary);
  in.read(reinterpret_cast<char*>(values.data()), static_cast<std::streamsize>(count * sizeof(double)));
  return in.gcount() == static_cast<std::streamsize>(count * sizeof(double)) ? values : std::vector<double>();
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
  // A short run that ends with an image and a dump of the same step, shown
  // on a fixed range so that the mapping needs no knowledge of solid nodes;
  // domx fixes the layout below, whatever the example shows.
  const int last = 30;
  const double lo = 0.0, hi = 1.6;
  std::ostringstream viz;
  viz << "dispQuantFlag 5\nmanualMinFlag 1\nmanualMinValue " << lo << "\nmanualMaxFlag 1\nmanualMaxValue " << hi
      << "\n";
  const std::string n = std::to_string(last);
  const auto folder =
      marvtest::runExample("cylinder2d", {{"latts", n}, {"nfig", n}, {"nfile", n}, {"domx", "720"}}, viz.str());

  picture shot;
  char name[64];
  std::snprintf(name, sizeof name, "%08d", last);
  ASSERT_TRUE(shot.read((folder / "figs" / (std::string(name) + ".jpg")).string()));
  const int nx = 241, ny = 61;
  const std::vector<double> u = readRaw(folder / "dump" / name / "ufld.raw", nx * ny);
  const std::vector<double> v = readRaw(folder / "dump" / name / "vfld.raw", nx * ny);
  const std::vector<double> bc = readRaw(folder / "dump" / name / "bc.raw", nx * ny);
  ASSERT_FALSE(u.empty());
  ASSERT_FALSE(bc.empty());

  // Layout of a 2D run: 720/241 = 2 pixels a cell, dx = 4/240 m, so 120
  // pixels a metre; margins 10 left and 3 x 10 on top (text height 20).
  const double perMetre = 2.0 / (4.0 / 240.0);
  auto pixelX = [&](int i) { return static_cast<int>(i * (4.0 / 240.0) * perMetre + 10 + 0.5); };
  auto pixelY = [&](int j) { return static_cast<int>(perMetre * 1.0 - j * (1.0 / 60.0) * perMetre + 30 + 0.5); };
  EXPECT_EQ(shot.width, 500 - 1) << "the saved rectangle: the screen less its last column";
  auto speed = [&](int i, int j) { return std::hypot(u[i + nx * j], v[i + nx * j]); };
  auto cellIndex = [&](int i, int j) {
    const double m = (speed(i, j) + speed(i + 1, j) + speed(i, j + 1) + speed(i + 1, j + 1)) / 4.0;
    double q = (m - lo) / (hi - lo) * 31.0;
    return static_cast<int>(q < 0.0 ? 0.0 : (q > 31.0 ? 31.0 : q));
  };
  int compared = 0, matched = 0;
  for (int j = 2; j < ny - 3; ++j)
    for (int i = 2; i < nx - 3; ++i) {
      // Cells in a patch of one colour away from any boundary, where the
      // JPEG's chroma halving does not smear an edge in.
      bool plain = true;
      for (int dj = -1; dj <= 1; ++dj)
        for (int di = -2; di <= 2; ++di)
          plain = plain && cellIndex(i + di, j + dj) == cellIndex(i, j) && bc[i + di + nx * (j + dj)] == 0.0;
      if (!plain) continue;
      const double m = (speed(i, j) + speed(i + 1, j) + speed(i, j + 1) + speed(i + 1, j + 1)) / 4.0;
      int want[3];
      expectedColour(m, lo, hi, want);
      const unsigned char* got = shot.at(pixelX(i) + 1, pixelY(j + 1) + 1);
      ++compared;
      matched +=
          std::abs(got[0] - want[0]) <= 24 && std::abs(got[1] - want[1]) <= 24 && std::abs(got[2] - want[2]) <= 24;
    }
  EXPECT_GT(compared, 1000);
  EXPECT_GE(matched, compared * 98 / 100) << matched << " of " << compared << " cells in their colour";

  // The cylinder's outline: along the row through its middle, the first
  // node inside the wall mask is where the black iso-line crosses.
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

}  // namespace
