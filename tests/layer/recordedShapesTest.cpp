// The compact ways of recording a frame draw the same pixels as the plain
// calls they stand for: a row of boxes with same-colour neighbours joined
// (with and without blending), an edged text laid out once, and a list of
// smoothed segments. Each case draws both ways into two off-screen images
// and compares them pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <vector>

#include "layer/layer.h"

namespace {

using namespace marv;

constexpr int width = 96;
constexpr int height = 48;

class recordedShapes : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    setGraphicsMode(width, height, 32, 60);
    ASSERT_EQ(startLayer(), 0);
  }
  static void TearDownTestSuite() { stopLayer(); }

  void SetUp() override { ASSERT_EQ(layerDrawsPixels(), 1) << "no OpenGL renderer"; }

  // The pixels of one drawing on a grey background, read back.
  std::vector<int> picture(const std::function<void()>& draw) {
    const int target = makeOffscreenImage(width, height, 0);
    const int pixels = makePixelImage(width, height);
    setDrawTarget(target);
    setBackgroundColour(90, 90, 90, 255);
    clearDrawTarget();
    setBlend(0, 0);
    draw();
    captureToPixelImage(0, 0, width, height, pixels);
    std::vector<int> out;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        int r = 0, g = 0, b = 0, a = 0;
        readPixel(pixels, x, y, &r, &g, &b, &a);
        out.insert(out.end(), {r, g, b});
      }
    setBlend(0, 0);
    setDrawTarget(backBuffer);
    deletePixelImage(pixels);
    deleteImage(target);
    return out;
  }

  static int differing(const std::vector<int>& a, const std::vector<int>& b) {
    int n = 0;
    for (std::size_t i = 0; i < a.size() && i < b.size(); i += 3)
      n += a[i] != b[i] || a[i + 1] != b[i + 1] || a[i + 2] != b[i + 2];
    return n;
  }
};

TEST_F(recordedShapes, boxRowDrawsWhatItsBoxesDrawWithAndWithoutBlending) {
  // Cells that overlap their right neighbour by one column, as the contour's
  // do; runs of one colour, a reversed box and an empty one in between.
  const std::uint32_t red = colour(220, 30, 30), blue = colour(30, 30, 220);
  const std::vector<int> x1{2, 9, 16, 23, 30, 44, 40, 51, 58, 58};
  const std::vector<int> x2{10, 17, 24, 31, 38, 41, 52, 59, 66, 58};
  const std::vector<std::uint32_t> colours{red, red, blue, red, red, red, red, blue, blue, red};
  const int n = static_cast<int>(x1.size());
  for (const int blend : {0, 1}) {
    auto row = [&] {
      setBlend(blend, 128);
      drawBoxRow(x1.data(), x2.data(), 30, 8, colours.data(), n);
    };
    auto boxes = [&] {
      setBlend(blend, 128);
      for (int i = 0; i < n; ++i) drawBox(x1[i], 8, x2[i], 30, colours[i], 1);
    };
    const std::vector<int> expected = picture(boxes);
    EXPECT_EQ(differing(picture(row), expected), 0) << "blend " << blend;
    // The drawing is not empty: the row covers what it should.
    EXPECT_NE(differing(expected, picture([] {})), 0);
  }
}

TEST_F(recordedShapes, edgedTextIsTheTextOverItsEightShiftedCopies) {
  const std::uint32_t ink = colour(0, 0, 0), edge = colour(255, 255, 255);
  const char* text = "*|U| 1.5e-03 s";
  auto edged = [&] { drawText(4, 12, text, ink, -1, edge, 0); };
  auto copies = [&] {
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx)
        if (dx != 0 || dy != 0) drawText(4 + dx, 12 + dy, text, edge, -1, 0, 0);
    drawText(4, 12, text, ink, -1, 0, 0);
  };
  // The edge is one pass of the eight copies' combined coverage: their blends rounded once instead of eight times.
  const std::vector<int> expected = picture(copies), got = picture(edged);
  int largest = 0;
  for (std::size_t i = 0; i < got.size() && i < expected.size(); ++i)
    largest = std::max(largest, std::abs(got[i] - expected[i]));
  EXPECT_LE(largest, 2);
  EXPECT_GT(differing(expected, picture([] {})), 50);
}

TEST_F(recordedShapes, segmentListDrawsWhatItsSegmentsDraw) {
  // Slanted, axis-aligned, a point (nothing drawn) and a thick one.
  const std::vector<float> xy{3.5f,  4.0f,  40.2f, 30.7f, 50.0f, 10.0f, 90.0f, 10.0f,
                              60.0f, 40.0f, 60.0f, 40.0f, 70.0f, 20.0f, 80.5f, 44.0f};
  const int n = static_cast<int>(xy.size()) / 4;
  for (const float thickness : {1.0f, 3.0f}) {
    const std::uint32_t ink = colour(250, 250, 0);
    auto list = [&] { drawLinesF(xy.data(), n, ink, thickness); };
    auto single = [&] {
      for (int m = 0; m < n; ++m) drawLineF(xy[4 * m], xy[4 * m + 1], xy[4 * m + 2], xy[4 * m + 3], ink, thickness);
    };
    const std::vector<int> expected = picture(single);
    EXPECT_EQ(differing(picture(list), expected), 0) << "thickness " << thickness;
    EXPECT_GT(differing(expected, picture([] {})), 60);
  }
}

}  // namespace
