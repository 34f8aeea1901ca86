// The off-screen backend without OpenGL (EGL pointed at no vendor): one notice, then headless behaviour.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "layer/layer.h"

namespace {

using namespace marv;

TEST(withoutOpenGl, theLayerStartsAndGoesOnWithoutPixels) {
  ::testing::internal::CaptureStderr();
  ASSERT_EQ(startLayer(), 0);
  const std::string said = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("pictures are skipped"), std::string::npos) << said;
  EXPECT_EQ(layerDrawsPixels(), 0);
  const int target = makeOffscreenImage(64, 32, 0);
  ASSERT_GT(target, 0);
  // Braced lists run in order: target, clear, box, sphere, text, present, and no draw call made.
  EXPECT_EQ((std::vector<int>{setDrawTarget(target), clearDrawTarget(), drawBox(0, 0, 10, 10, colour(255, 0, 0), 1),
                              drawSphere3d({0, 0, 0}, 5.0f, 8, colour(1, 2, 3), 0, 1),
                              drawText(0, 0, "text", colour(255, 255, 255), -1, 0, 0), present(), drawCallCount()}),
            std::vector<int>(7, 0));
  int w = 0, h = 0, r = 7;
  const int pixels = makePixelImage(4, 4);
  const std::string path = ::testing::TempDir() + "marv_never.jpg";
  // Sizes and widths as ever; copies read black; no JPEG without pixels.
  EXPECT_EQ(
      (std::vector<int>{imageSize(target, &w, &h), w, textWidthInFont(-1, "%s", ""),
                        captureToPixelImage(0, 0, 4, 4, pixels), readPixel(pixels, 1, 1, &r, nullptr, nullptr, nullptr),
                        r, saveScreenJpeg(0, 0, 4, 4, path.c_str(), 80, 1)}),
      (std::vector<int>{0, 64, 0, 0, 0, 0, -1}));
  EXPECT_GT(textWidthInFont(-1, "text"), 0) << "widths come from the font files";
  EXPECT_GE(worldToScreen({0, 0, 0}).z, 0.0f) << "the camera still converts points";
  EXPECT_EQ(stopLayer(), 0);
}

}  // namespace
