// BMP loaded, stretched, copied and read back: built against both backends, which must agree pixel for pixel.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "domain/bitmapColours.h"
#include "layer/layer.h"
#include "tests/domain/bitmapTestSupport.h"

namespace {

using namespace marv;

using marvtest::rgb;

// A BMP of the pixels (rows top-down) named for the process: both backends' builds may run at once.
std::string writeBmp(const std::string& name, int width, int height, const std::vector<rgb>& pixels) {
  const std::string path = ::testing::TempDir() + std::to_string(getpid()) + name;
  marvtest::writeBmp(path, width, height, [&](int x, int y) { return pixels[y * width + x]; });
  return path;
}

rgb pixelAt(int handle, int x, int y) {
  rgb p;
  readPixel(handle, x, y, &p.r, &p.g, &p.b, nullptr);
  return p;
}

// A 3 x 2 picture; the top left pixel is magenta, the colour keyed out below.
const std::vector<rgb> picture = {{255, 0, 255}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}, {0, 255, 255}, {90, 60, 30}};

TEST(pixelPath, bitmapStretchedIntoAnOffscreenImageReadsBackByThePixel) {
  ASSERT_EQ(startLayer(), 0);
  const std::string path = writeBmp("marv_pixel_path.bmp", 3, 2, picture);
  const int image = loadImage(path.c_str(), 1);
  ASSERT_GT(image, 0);
  const int target = makeOffscreenImage(6, 4, 0);
  ASSERT_EQ(setDrawTarget(target), 0);
  setBackgroundColour(9, 9, 9, 0);
  clearDrawTarget();
  drawImageStretched(0, 0, 6, 4, image, 0);
  const int pixels = makePixelImage(6, 4);
  ASSERT_EQ(captureToPixelImage(0, 0, 6, 4, pixels), 0);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 6; ++x) {
      const rgb want = picture[(y / 2) * 3 + x / 2], got = pixelAt(pixels, x, y);
      EXPECT_EQ(colorCode(got.r, got.g, got.b), colorCode(want.r, want.g, want.b)) << "at x=" << x << " y=" << y;
    }
  // Colour codes at the points after a drawing, against the expected colours.
  const rgb bg{9, 9, 9}, blue{0, 0, 255}, green{0, 255, 0}, brown{90, 60, 30}, yellow{255, 255, 0}, box{200, 100, 50};
  const auto check = [&](const char* what, const std::function<void()>& draw,
                         std::vector<std::pair<std::pair<int, int>, rgb>> expected) {
    clearDrawTarget();
    draw();
    captureToPixelImage(0, 0, 6, 4, pixels);
    for (const auto& [at, want] : expected) {
      const rgb got = pixelAt(pixels, at.first, at.second);
      EXPECT_EQ(colorCode(got.r, got.g, got.b), colorCode(want.r, want.g, want.b))
          << what << " at " << at.first << "," << at.second;
    }
  };
  // A part of the picture, mirrored across, at its own size.
  check("part", [&] { drawImageRect(1, 1, 1, 0, 2, 2, image, 0, 1, 0); },
        {{{1, 1}, blue}, {{2, 1}, green}, {{1, 2}, brown}, {{0, 0}, bg}, {{3, 1}, bg}});
  // Corners right to left mirror the picture.
  check("mirrored", [&] { drawImageStretched(6, 0, 0, 4, image, 0); }, {{{0, 0}, blue}, {{5, 3}, yellow}});
  // A box covers x1..x2-1, and a copy of the target keeps it.
  const int copy = makeImage(6, 4, 1);
  clearDrawTarget();
  drawBox(4, 0, 6, 2, colour(200, 100, 50), 1);
  ASSERT_EQ(captureScreen(0, 0, 6, 4, copy), 0);
  check("copied box", [&] { drawImage(0, 0, copy, 0); }, {{{4, 0}, box}, {{5, 1}, box}, {{3, 0}, bg}, {{4, 2}, bg}});
  // With a colour key, the keyed pixels of a picture loaded later are not drawn.
  setTransparentColour(255, 0, 255);
  const int keyed = loadImage(path.c_str(), 1);
  check("keyed", [&] { drawImage(0, 0, keyed, 1); }, {{{0, 0}, bg}, {{1, 0}, green}});
  drawImage(0, 0, keyed, 0);
  captureToPixelImage(0, 0, 6, 4, pixels);
  EXPECT_NE(pixelAt(pixels, 0, 0).r, 9) << "drawn opaque without the transparent flag";
  setDrawTarget(backBuffer);
  for (int handle : {image, keyed, target, copy}) deleteImage(handle);
  deletePixelImage(pixels);
  std::remove(path.c_str());
}

}  // namespace
