// A long run of boxes is painted on the processor and drawn as one picture; a short one goes through the
// rasteriser. Both must leave the pixels a painter would: later boxes over earlier ones, uncovered pixels untouched,
// boxes clipped at the edges, and what is drawn after the run on top of it.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/renderSupport.h"

namespace {

using namespace marv;

class boxSheet : public marvtest::offscreenSuite<64, 48> {};

struct box {
  int x1, y1, x2, y2;
  std::uint8_t r, g, b;
};

// Boxes scattered with gaps and overlaps, some reaching past the target.
std::vector<box> scatteredBoxes(int n) {
  std::vector<box> boxes;
  unsigned seed = 12345;
  auto next = [&](int range) {
    seed = seed * 1103515245u + 12345u;
    return static_cast<int>((seed >> 16) % static_cast<unsigned>(range));
  };
  for (int i = 0; i < n; ++i) {
    const int x = next(80) - 8, y = next(64) - 8;
    boxes.push_back({x, y, x + 1 + next(14), y + 1 + next(9), std::uint8_t(next(256)), std::uint8_t(next(256)),
                     std::uint8_t(next(256))});
  }
  return boxes;
}

// The expected picture: grey background, the boxes in order, then a red line along row 20.
std::vector<std::uint8_t> painted(const std::vector<box>& boxes, int w, int h) {
  std::vector<std::uint8_t> px(static_cast<std::size_t>(w) * h * 4);
  auto put = [&](int x, int y, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    if (x < 0 || y < 0 || x >= w || y >= h) return;
    std::uint8_t* p = &px[(static_cast<std::size_t>(y) * w + x) * 4];
    p[0] = r, p[1] = g, p[2] = b, p[3] = 255;
  };
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) put(x, y, 40, 40, 40);
  for (const box& b : boxes)
    for (int y = b.y1; y < b.y2; ++y)
      for (int x = b.x1; x < b.x2; ++x) put(x, y, b.r, b.g, b.b);
  for (int x = 0; x < w; ++x) put(x, 20, 255, 0, 0);
  return px;
}

TEST_F(boxSheet, longAndShortRunsPaintAsThePainterWould) {
  for (int n : {5, 40, 400}) {
    SCOPED_TRACE(n);
    const std::vector<box> boxes = scatteredBoxes(n);
    setBackgroundColour(40, 40, 40, 0);
    clearDrawTarget();
    for (const box& b : boxes) drawBox(b.x1, b.y1, b.x2, b.y2, colour(b.r, b.g, b.b), 1);
    drawLine(0, 20, width, 20, colour(255, 0, 0), 1);
    EXPECT_EQ(marvtest::grabPixels(0, 0, width, height), painted(boxes, width, height));
  }
}

TEST_F(boxSheet, aRunThatCoversItsRectangleHidesWhatIsBeneath) {
  setBackgroundColour(0, 0, 255, 0);
  clearDrawTarget();
  drawBox(0, 0, width, height, colour(0, 255, 0), 1);
  std::vector<box> rows;
  for (int y = 8; y < 40; ++y) rows.push_back({4, y, 60, y + 1, std::uint8_t(y * 6), 100, 7});
  for (const box& b : rows) drawBox(b.x1, b.y1, b.x2, b.y2, colour(b.r, b.g, b.b), 1);
  const std::vector<std::uint8_t> px = marvtest::grabPixels(0, 0, width, height);
  auto at = [&](int x, int y) {
    return std::vector<std::uint8_t>(&px[(y * width + x) * 4], &px[(y * width + x) * 4 + 3]);
  };
  EXPECT_EQ(at(3, 20), (std::vector<std::uint8_t>{0, 255, 0}));
  EXPECT_EQ(at(4, 8), (std::vector<std::uint8_t>{48, 100, 7}));
  EXPECT_EQ(at(59, 39), (std::vector<std::uint8_t>{234, 100, 7}));
  EXPECT_EQ(at(60, 39), (std::vector<std::uint8_t>{0, 255, 0}));
  EXPECT_EQ(at(30, 40), (std::vector<std::uint8_t>{0, 255, 0}));
}

}  // namespace
