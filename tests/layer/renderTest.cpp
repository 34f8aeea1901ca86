// The OpenGL backend checked by the pixel on whatever OpenGL the machine has (Mesa through EGL in CI): shapes,
// text, targets, the compact recordings against the plain calls, and the menu bar.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "layer/glCore.h"
#include "layer/layer.h"
#include "layer/menuDraw.h"
#include "renderSupport.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;

struct rgba {
  int r = 0, g = 0, b = 0, a = 0;
};

class offscreenRender : public marvtest::offscreenSuite<160, 120> {
 protected:
  void SetUp() override {
    offscreenSuite::SetUp();
    setBackgroundColour(0, 0, 0, 255);
    setZBuffer(0);
    setZWrite(0);
    setLighting(0);
    clearDrawTarget();
  }
  rgba at(int x, int y) {
    const std::vector<std::uint8_t> p = marvtest::grabPixels(x, y, x + 1, y + 1);
    return {p[0], p[1], p[2], p[3]};
  }
  rgba at(const vec3& world) {
    const vec3 s = worldToScreen(world);
    return at(static_cast<int>(s.x), static_cast<int>(s.y));
  }
  // Red channel of the whole target, by row.
  std::vector<int> reds() {
    const std::vector<std::uint8_t> p = marvtest::grabPixels(0, 0, width, height);
    std::vector<int> out(p.size() / 4);
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = p[4 * i];
    return out;
  }
};

TEST_F(offscreenRender, framesAndLinesLieOnTheOutermostPixels) {
  drawBox(30, 30, 40, 36, colour(0, 255, 0), 0);
  drawLine(50, 60, 70, 60, colour(0, 0, 255), 1);
  const struct {
    int x, y, g, b;
  } expected[] = {{30, 30, 255, 0}, {39, 35, 255, 0}, {35, 33, 0, 0}, {40, 33, 0, 0},
                  {50, 60, 0, 255}, {69, 60, 0, 255}, {60, 61, 0, 0}};
  for (const auto& e : expected) {
    SCOPED_TRACE(std::to_string(e.x) + "," + std::to_string(e.y));
    EXPECT_EQ(at(e.x, e.y).g, e.g);
    EXPECT_EQ(at(e.x, e.y).b, e.b);
  }
}

TEST_F(offscreenRender, floatShapesFadeTheirEdgesButKeepTheirArea) {
  drawBoxF(10.0f, 10.0f, 20.0f, 20.0f, colour(255, 255, 255), 1, 1.0f);
  EXPECT_EQ((std::vector{at(10, 10).r, at(19, 19).r, at(20, 15).r, at(9, 15).r}), (std::vector{255, 255, 0, 0}))
      << "a box on whole pixels keeps hard edges";
  clearDrawTarget();
  drawCircleF(80.0f, 60.0f, 20.3f, 64, colour(255, 255, 255), 1, 1.0f);
  int partial = 0;
  double area = 0.0;
  for (int r : reds()) {
    partial += r > 20 && r < 235;
    area += r / 255.0;
  }
  EXPECT_GT(partial, 40) << "the rim is anti-aliased";
  EXPECT_NEAR(area, 3.14159 * 20.3 * 20.3, 25.0) << "and the disc keeps its area";
  // Three pixels wide about y = 100.5: rows 99, 100 and 101. Off the pixel
  // grid, about y = 101, the edge rows share the colour.
  clearDrawTarget();
  drawLineF(10.0f, 100.5f, 150.0f, 100.5f, colour(0, 255, 0), 3.0f);
  EXPECT_EQ((std::vector{at(80, 98).g / 10, at(80, 99).g, at(80, 100).g, at(80, 101).g, at(80, 102).g / 10}),
            (std::vector{0, 255, 255, 255, 0}));
  clearDrawTarget();
  drawLineF(10.0f, 101.0f, 150.0f, 101.0f, colour(0, 255, 0), 3.0f);
  EXPECT_EQ((std::vector{(at(80, 99).g + 20) / 40, at(80, 100).g, (at(80, 102).g + 20) / 40}),
            (std::vector{3, 255, 3}));
}

TEST_F(offscreenRender, offScreenCoordinatesAreClippedNotRefused) {
  EXPECT_EQ((std::vector{drawBox(-1000000, -50, 5, 1000000, colour(255, 255, 255), 1),
                         drawLine(-500, 100, 100000, 100, colour(255, 0, 0), 1),
                         drawCircle(-20, -20, 40, colour(0, 255, 0), 1, 1)}),
            (std::vector{0, 0, 0}));
  EXPECT_EQ((std::vector{at(0, height - 1).r, at(4, 50).r, at(5, 50).r, at(width - 1, 100).r, at(10, 2).g}),
            (std::vector{255, 255, 0, 255, 255}));
  // Corners at the ends of int's range draw, copy and read nothing, safely.
  const int big = 2147483647, small = -2147483647 - 1;
  const int picture = makeImage(8, 8, 0), pixels = makePixelImage(8, 8);
  EXPECT_EQ((std::vector{
                drawImage(big, big, picture, 0), drawImageRect(big, small, big, small, big, big, picture, 0, 1, 1),
                drawBox(small, small, big, big, colour(0, 0, 255), 0), captureScreen(small, small, big, big, picture),
                captureToPixelImage(small, small, big, big, pixels)}),
            (std::vector{0, 0, 0, 0, 0}));
  deleteImage(picture);
  // A copy of a rectangle partly off the target keeps each pixel's place.
  clearDrawTarget();
  drawBox(0, 0, 4, 4, colour(255, 0, 0), 1);
  ASSERT_EQ(captureToPixelImage(-3, -3, 5, 5, pixels), 0);
  int r = 0, beside = 0;
  readPixel(pixels, 3, 3, &r, nullptr, nullptr, nullptr);
  readPixel(pixels, 2, 2, &beside, nullptr, nullptr, nullptr);
  EXPECT_EQ(std::pair(r, beside), std::pair(255, 0)) << "target pixel (0, 0) lies at (3, 3) of the copy";
  EXPECT_NE(readPixel(pixels, 8, 0, &r, nullptr, nullptr, nullptr), 0);
  deletePixelImage(pixels);
}

TEST_F(offscreenRender, alphaBlendMixesByTheAmount) {
  drawBox(0, 0, 20, 20, colour(0, 0, 255), 1);
  setBlend(1, 128);
  drawBox(0, 0, 20, 20, colour(255, 0, 0), 1);
  setBlend(0, 0);
  EXPECT_NEAR(at(10, 10).r, 128, 2);
  EXPECT_NEAR(at(10, 10).b, 127, 2);
  drawBox(0, 0, 20, 20, colour(0, 255, 0), 1);
  EXPECT_EQ(at(10, 10).r * 1000 + at(10, 10).g, 255) << "mode 0 draws opaque again";
}

TEST_F(offscreenRender, litSphereIsBrighterTowardTheLight) {
  setZBuffer(1);
  setZWrite(1);
  setLighting(1);
  setCamera({80, 60, -120}, {80, 60, 0}, {0, 1, 0});  // the sphere spans about 70 pixels
  setPerspective(1.0471976f);
  setPointLight({-400, 60, -100}, 10000.0f, 1.0f, 0.0f, 0.0f);  // far to the left
  drawSphere3d({80, 60, 0}, 40.0f, 32, colour(200, 200, 200), colour(0, 0, 0), 1);
  const vec3 centre = worldToScreen({80, 60, 0});
  const int cx = static_cast<int>(centre.x), cy = static_cast<int>(centre.y);
  const rgba left = at(cx - 20, cy), right = at(cx + 20, cy);
  EXPECT_GT(left.r, right.r + 40) << "left " << left.r << " right " << right.r;
  EXPECT_GT(right.r, 0) << "the far side still gets the ambient share";
  EXPECT_EQ(at(2, 2).r, 0);
}

TEST_F(offscreenRender, trianglesKeepTheCameraTheyWereRecordedUnderAndTheNearerOneWins) {
  setZBuffer(1);
  setZWrite(1);
  setCamera({80, 60, -300}, {80, 60, 0}, {0, 1, 0});
  setPerspective(1.0f);
  // The near red triangle first, then the far blue one over the same pixels.
  drawTriangle3d({40, 20, -10}, {120, 20, -10}, {80, 100, -10}, colour(255, 0, 0), 1);
  drawTriangle3d({40, 20, 50}, {120, 20, 50}, {80, 100, 50}, colour(0, 0, 255), 1);
  const vec3 redPart = worldToScreen({80, 30, -10});
  // The second camera looks far to the left, where only the small green
  // triangle lies (nearer than the red one's depth); under the other camera either one would be off-screen.
  setCamera({-400, 60, -300}, {-400, 60, 0}, {0, 1, 0});
  drawTriangle3d({-405, 50, -100}, {-395, 50, -100}, {-400, 60, -100}, colour(0, 255, 0), 1);
  const rgba red = at(static_cast<int>(redPart.x), static_cast<int>(redPart.y));
  EXPECT_EQ((std::vector{at(vec3{-400, 53, -100}).g, red.r, red.b}), (std::vector{255, 255, 0}));
}

TEST_F(offscreenRender, textStaysWithinItsWidthAndRunsDownWhenVertical) {
  const int font = makeFont("Consolas", 20, 4, 18, -1, 0, 0, 0);
  const int w = textWidthInFont(font, "Marvanesse+");
  drawText(5, 5, "Marvanesse+", colour(255, 255, 255), font, 0, 0);
  int lit = 0, beyond = 0;
  const std::vector<int> red = reds();
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < width; ++x)
      if (red[y * width + x] > 128) (x < 5 + w + 2 ? lit : beyond)++;
  EXPECT_GT(lit, 50);
  EXPECT_EQ(beyond, 0) << "the text stays within its width";
  clearDrawTarget();
  drawText(70, 0, "MMMM", colour(255, 255, 255), font, 0, 1);
  int top = height, bottom = -1, left = width, right = -1;
  int i = 0;
  for (int r : reds()) {
    const int x = i % width, y = i++ / width;
    if (r < 128) continue;
    top = std::min(top, y), bottom = std::max(bottom, y), left = std::min(left, x), right = std::max(right, x);
  }
  EXPECT_GT(bottom - top, 3 * (right - left)) << "taller than wide";
  EXPECT_TRUE(left >= 70 && right <= 90) << left << ".." << right;
  deleteFont(font);
  EXPECT_EQ(drawText(5, 60, "default", colour(255, 255, 255), font, 0, 0), 0) << "a deleted font falls back";
  EXPECT_GT(textWidthInFont(-1, "%s", "\xff\xfe\xc3"), 0) << "bytes that do not decode still show";
  EXPECT_EQ(drawText(5, 90, "\xe6\x96", colour(255, 255, 255), -1, 0, 0), 0) << "a cut character";
}

TEST_F(offscreenRender, handlesNeverMadeOrFailedDoNothing) {
  const int failed = loadImage("/no/such/picture.bmp", 0);
  int w = 1, h = 1, none[2] = {5, 5};
  // Braced lists run in order: 0 for deletes of nothing, non-zero for use of a failed handle.
  EXPECT_EQ((std::vector<int>{deleteImage(-1), deleteImage(0), deleteImage(12345), deleteFont(-1),
                              deletePixelImage(777), deleteTextInput(-3), failed < 0, drawImage(0, 0, failed, 1) != 0,
                              drawImageStretched(0, 0, 10, 10, failed, 0) != 0, setDrawTarget(failed) != 0,
                              captureScreen(0, 0, 10, 10, failed) != 0,
                              readPixel(failed, 0, 0, nullptr, nullptr, nullptr, nullptr) != 0,
                              imageSize(failed, &w, &h) != 0, w, at(10, 10).r}),
            (std::vector{0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 0, 0}));
  const int made = makeImage(4, 4, 0);
  EXPECT_GT(made, 0) << "handles start at 1, so a field still holding 0 names nothing";
  deleteImage(0);
  EXPECT_EQ(imageSize(made, &w, &h), 0) << "deleting 0 left the live image alone";
  deleteImage(made);
  EXPECT_EQ(drawImage(0, 0, made, 0), -1) << "a deleted image is gone";
  EXPECT_TRUE(makeOffscreenImage(0, 10, 0) < 0 && makeImage(100000, 10, 0) < 0 && loadImageResource(12) < 0);
  EXPECT_NE(loadImageSetResource(12, 2, 2, 1, 8, 8, none), 0);
  EXPECT_EQ(none[0], -1);
}

TEST_F(offscreenRender, aClearKeepsWhatAnotherTargetAlreadyTookFromIt) {
  const int picture = makeOffscreenImage(20, 20, 0);
  setDrawTarget(picture);
  drawBox(0, 0, 20, 20, colour(255, 0, 0), 1);
  setDrawTarget(backBuffer);
  drawImage(0, 0, picture, 0);  // takes the red picture
  setDrawTarget(picture);
  clearDrawTarget();  // black again, after the copy above
  drawBox(0, 0, 20, 20, colour(0, 255, 0), 1);
  setDrawTarget(backBuffer);
  drawImage(40, 0, picture, 0);  // takes the green one
  EXPECT_EQ((std::vector{at(10, 10).r, at(10, 10).g, at(50, 10).g}), (std::vector{255, 0, 255}));
  deleteImage(picture);
}

TEST_F(offscreenRender, primitivesShareDrawCallsAndAFrameNobodyReadsIsNeverRasterised) {
  at(0, 0);  // reading pixels rasterises what is pending
  const int before = drawCallCount();
  for (int i = 0; i < 20000; ++i) drawBox(i % width, i % height, i % width + 1, i % height + 1, colour(1, 2, 3), 1);
  for (int i = 0; i < 20000; ++i) drawTriangle3d({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, colour(1, 2, 3), 1);
  for (const int blend : {0, 1, 0}) {
    setBlend(blend, 100);
    drawBox(0, 0, 1, 1, colour(9, 9, 9), 1);
  }
  at(0, 0);
  EXPECT_EQ(drawCallCount() - before, 5) << "the boxes, the 3D triangles, and a new call at each blend change";
  const int idle = drawCallCount();
  for (int frame = 0; frame < 5; ++frame) {
    for (int i = 0; i < 1000; ++i) drawBox(i % width, 0, i % width + 1, 10, colour(255, 0, 0), 1);
    drawLine(0, 50, 100, 50, colour(0, 255, 0), 1);
    present();  // off-screen: nobody looks
    clearDrawTarget();
  }
  drawBox(0, 0, 10, 10, colour(0, 0, 255), 1);
  EXPECT_EQ(drawCallCount(), idle) << "cleared frames cost no draw call";
  EXPECT_EQ(at(5, 5).b * 1000 + at(50, 50).g, 255000) << "the frame still pending is there, the cleared ones gone";
  EXPECT_EQ(drawCallCount() - idle, 1);
}

TEST_F(offscreenRender, screenJpegHasTheRectangleSizeAndHalvedChroma) {
  drawBox(0, 0, width, height, colour(255, 128, 0), 1);
  const std::string path = ::testing::TempDir() + "marv_layer_shot.jpg";
  ASSERT_EQ(saveScreenJpeg(10, 5, 89, 44, path.c_str(), 80, 1), 0);  // odd sizes under halved chroma
  marvtest::picture shot;
  ASSERT_TRUE(shot.read(path));
  EXPECT_EQ(std::pair(shot.width, shot.height), std::pair(79, 39));
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(shot.at(0, 0)[c], (std::array{255, 128, 0}[c]), 6) << "channel " << c;
  // The first component's sampling in the frame header: 2 across, 1 down.
  const std::string bytes = marvtest::readText(path);
  EXPECT_EQ(bytes.substr(bytes.find("\xff\xc0") + 11, 1), "\x21");
  std::remove(path.c_str());
  EXPECT_NE(saveScreenJpeg(0, 0, 10, 10, "/no/such/folder/shot.jpg", 80, 1), 0);
  EXPECT_NE(saveScreenJpeg(200, 200, 300, 300, path.c_str(), 80, 1), 0) << "nothing of the target inside";
}

// The compact ways of recording a frame draw the same pixels as the plain calls they stand for.
class recordedShapes : public marvtest::offscreenSuite<96, 48> {
 protected:
  // The red, green and blue of one drawing on a grey background.
  std::vector<std::uint8_t> picture(const std::function<void()>& draw) {
    setBackgroundColour(90, 90, 90, 255);
    clearDrawTarget();
    draw();
    setBlend(0, 0);
    std::vector<std::uint8_t> p = marvtest::grabPixels(0, 0, width, height);
    for (std::size_t i = 3; i < p.size(); i += 4) p[i] = 0;
    return p;
  }
  // Pixels with a channel more than the tolerance apart.
  static int differing(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b, int tolerance = 0) {
    int n = 0;
    for (std::size_t i = 0; i < a.size(); i += 4)
      n += std::abs(a[i] - b[i]) > tolerance || std::abs(a[i + 1] - b[i + 1]) > tolerance ||
           std::abs(a[i + 2] - b[i + 2]) > tolerance;
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
    int tolerance = 0;
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
  // An edged text is the text over its eight shifted copies in the edge colour, drawn as one pass of their combined
  // coverage: their blends rounded once instead of eight times.
  cases.push_back({"edged text", [&] { drawText(4, 12, text, colour(0, 0, 0), -1, colour(255, 255, 255), 0); },
                   [&] {
                     for (int dy = -1; dy <= 1; ++dy)
                       for (int dx = -1; dx <= 1; ++dx)
                         if (dx != 0 || dy != 0) drawText(4 + dx, 12 + dy, text, colour(255, 255, 255), -1, 0, 0);
                     drawText(4, 12, text, colour(0, 0, 0), -1, 0, 0);
                   },
                   2});
  for (const float thickness : {1.0f, 3.0f})
    cases.push_back({"segment list", [&, thickness] { drawLinesF(xy.data(), 4, yellow, thickness); },
                     [&, thickness] {
                       for (int m = 0; m < 4; ++m)
                         drawLineF(xy[4 * m], xy[4 * m + 1], xy[4 * m + 2], xy[4 * m + 3], yellow, thickness);
                     }});
  const std::vector<std::uint8_t> empty = picture([] {});
  for (const drawing& d : cases) {
    const std::vector<std::uint8_t> expected = picture(d.plain);
    EXPECT_EQ(differing(picture(d.recorded), expected, d.tolerance), 0) << d.what;
    EXPECT_GT(differing(expected, empty), 50) << d.what << " draws something";
  }
}

// The menu bar over a black picture: a greyed item looks grey, an open menu covers the picture below.
class menuDrawing : public marvtest::offscreenSuite<400, 240> {};

TEST_F(menuDrawing, greyedItemsAreDrawnGreyAndTheOpenMenuCoversThePicture) {
  menu::menuModel m = menu::mainMenu();
  m.shown = true;
  m.measure = menu::menuTextWidth;
  m.canvasWidth = width;
  menu::setItemEnabled(m, menu::commandNewProject, false);
  menu::keyPressed(m, 0, 'F', true);
  setBackgroundColour(0, 0, 0, 255);
  clearDrawTarget();
  menu::drawMenu(m);
  // Darkest red in an item: text leaves dark pixels, a greyed caption only mid-grey ones.
  const menu::rect list = menu::openListRect(m);
  const auto darkest = [&](int item) {
    const menu::rect r = menu::itemRect(m, 0, item, list.x1, list.y1);
    const std::vector<std::uint8_t> p = marvtest::grabPixels(r.x1, r.y1, r.x2, r.y2);
    int least = 255;
    for (std::size_t i = 0; i < p.size(); i += 4) least = std::min<int>(least, p[i]);
    return least;
  };
  EXPECT_LT(darkest(3), 90) << "an enabled caption is dark";
  EXPECT_GT(darkest(0), 120) << "a greyed caption is light grey";
  EXPECT_GT(marvtest::grabPixels((list.x1 + list.x2) / 2, list.y2 - 2, (list.x1 + list.x2) / 2 + 1, list.y2 - 1)[0],
            200)
      << "the menu's back hides the black picture";
  EXPECT_EQ(marvtest::grabPixels(list.x2 + 40, list.y2 - 2, list.x2 + 41, list.y2 - 1)[0], 0)
      << "beside the menu the picture shows";
}

// A long run of boxes is painted on the processor and drawn as one picture; a short one goes through the
// rasteriser. Both must leave the pixels a painter would: later boxes over earlier ones, uncovered pixels untouched,
// boxes clipped at the edges, and what is drawn after the run on top of it.
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
  // Bands reaching the ends of int's range, as a caller's unclipped corners may.
  boxes.push_back({INT_MIN, 30, INT_MAX, 33, 9, 200, 9});
  boxes.push_back({50, INT_MIN, 53, INT_MAX, 200, 9, 9});
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
    for (int y = std::max(b.y1, 0); y < std::min(b.y2, h); ++y)
      for (int x = std::max(b.x1, 0); x < std::min(b.x2, w); ++x) put(x, y, b.r, b.g, b.b);
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
  std::vector<int> probes;
  for (const auto& [x, y] : {std::pair{3, 20}, {4, 8}, {59, 39}, {60, 39}, {30, 40}})
    probes.insert(probes.end(), &px[(y * width + x) * 4], &px[(y * width + x) * 4 + 3]);
  EXPECT_EQ(probes, (std::vector<int>{0, 255, 0, 48, 100, 7, 234, 100, 7, 0, 255, 0, 0, 255, 0}));
}

}  // namespace
