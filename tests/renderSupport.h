// Off-screen render helpers: a suite fixture on the OpenGL backend, a rectangle's pixels, PNG and JPEG files.
#pragma once

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "layer/layer.h"

namespace marvtest {

template <int W, int H>
class offscreenSuite : public ::testing::Test {
 protected:
  static constexpr int width = W;
  static constexpr int height = H;
  static void SetUpTestSuite() {
    marv::setGraphicsMode(W, H, 32, 60);
    ASSERT_EQ(marv::startLayer(), 0);
  }
  static void TearDownTestSuite() { marv::stopLayer(); }
  void SetUp() override {
    ASSERT_EQ(marv::layerDrawsPixels(), 1) << "no OpenGL renderer: install Mesa (scripts/install-deps.sh)";
    marv::setDrawTarget(marv::backBuffer);
    marv::setBlend(0, 0);
  }
};

// r g b a of the rectangle x1..x2-1, y1..y2-1 of the draw target, by row.
inline std::vector<std::uint8_t> grabPixels(int x1, int y1, int x2, int y2) {
  const int pixels = marv::makePixelImage(x2 - x1, y2 - y1);
  marv::captureToPixelImage(x1, y1, x2, y2, pixels);
  std::vector<std::uint8_t> out;
  for (int y = 0; y < y2 - y1; ++y)
    for (int x = 0; x < x2 - x1; ++x) {
      int r = 0, g = 0, b = 0, a = 0;
      marv::readPixel(pixels, x, y, &r, &g, &b, &a);
      out.insert(out.end(), {std::uint8_t(r), std::uint8_t(g), std::uint8_t(b), 255});
    }
  marv::deletePixelImage(pixels);
  return out;
}

// The top left w x h of the back buffer as folder/name.
inline void writePng(const std::filesystem::path& folder, const std::string& name, int w, int h) {
  marv::setDrawTarget(marv::backBuffer);
  const std::vector<std::uint8_t> rgba = grabPixels(0, 0, w, h);
  std::filesystem::create_directories(folder);
  const std::string path = (folder / name).string();
  EXPECT_NE(stbi_write_png(path.c_str(), w, h, 4, rgba.data(), w * 4), 0) << path;
}

}  // namespace marvtest
