// The compact ways of recording a frame draw the same pixels as the plain
// calls they stand for: a row of boxes with same-colour neighbours joined
// (with and without blending), an edged text laid out once, and a list of
// smoothed segments. Each case draws both ways into two off-screen images
// and compares them pixel by pixel.
#include <gtest/gtest.h>

#include <cstdint>
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

TEST_F(recordedShapes, eachCompactRecordingDrawsWhatItsPlainCallsDraw) {
  // Cells that overlap their right neighbour by one column, as the contour's
  // do; runs of one colour, a reversed box and an empty one in between.
  const std::uint32_t red = colour(220, 30, 30), blue = colour(30, 30, 220), yellow = colour(250, 250, 0);
  const std::vector<int> x1{2, 9, 16, 23, 30, 44, 40, 51, 58, 58}, x2{10, 17, 24, 31, 38, 41, 52, 59, 66, 58};
  const std::vector<std::uint32_t> colours{red, red, blue, red, red, red, red, blue, blue, red};
  const int n = static_cast<int>(x1.size());
  // Segments slanted, axis-aligned, a point (nothing drawn) and a thick one.
  const std::vector<float> xy{3.5f,  4.0f,  40.2f, 30.7f, 50.0f, 10.0f, 90.0f, 10.0f,
                              60.0f, 40.0f, 60.0f, 40.0f, 70.0f, 20.0f, 80.5f, 44.0f};
  const char* text = "*|U| 1.5e-03 s";
  struct drawing {
    const char* what;
    std::function<void()> recorded, plain;
  };
  std::vector<drawing> cases;
  for (const int blend : {0, 1})
    cases.push_back({"box row",
                     [&, blend] {
                       setBlend(blend, 128);
                       drawBoxRow(x1.data(), x2.data(), 30, 8, colours.data(), n);
                     },
                     [&, blend] {
                       setBlend(blend, 128);
                       for (int i = 0; i < n; ++i) drawBox(x1[i], 8, x2[i], 30, colours[i], 1);
                     }});
  // An edged text is the text over its eight shifted copies in the edge colour.
  cases.push_back({"edged text", [&] { drawText(4, 12, text, colour(0, 0, 0), -1, colour(255, 255, 255), 0); },
                   [&] {
                     for (int dy = -1; dy <= 1; ++dy)
                       for (int dx = -1; dx <= 1; ++dx)
                         if (dx != 0 || dy != 0) drawText(4 + dx, 12 + dy, text, colour(255, 255, 255), -1, 0, 0);
                     drawText(4, 12, text, colour(0, 0, 0), -1, 0, 0);
                   }});
  for (const float thickness : {1.0f, 3.0f})
    cases.push_back({"segment list", [&, thickness] { drawLinesF(xy.data(), 4, yellow, thickness); },
                     [&, thickness] {
                       for (int m = 0; m < 4; ++m)
                         drawLineF(xy[4 * m], xy[4 * m + 1], xy[4 * m + 2], xy[4 * m + 3], yellow, thickness);
                     }});
  const std::vector<int> empty = picture([] {});
  for (const drawing& d : cases) {
    const std::vector<int> expected = picture(d.plain);
    EXPECT_EQ(differing(picture(d.recorded), expected), 0) << d.what;
    EXPECT_GT(differing(expected, empty), 50) << d.what << " draws something";
  }
}

}  // namespace
