// The bitmap colour stage on screen: choices reach the colour tables, a marked colour goes, Esc cancels.
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <utility>

#include "bitmapTestSupport.h"
#include "domain/bitmapColours.h"
#include "domain/bitmapStageScreen.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;
namespace fs = std::filesystem;

const marvtest::rgb white{}, red{255, 0, 0}, blue{0, 0, 255}, brown{100, 50, 20};

class bitmapStage : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories("input"); }
  marvtest::inFolder here{marvtest::scratchFolder("stage")};
  // A case of 21 x 21 (x nz) nodes, 25 pixels per cell.
  void makeCase(int nz) {
    constructAppConfig(cfg, false, false);
    marvtest::setBitmapCase(cfg, 21, 21, nz, 1.0, 1.0, 1.0, 25);
    cfg.screenWidth = cfg.bitmapScreenWidth;
    cfg.screenHeight = cfg.bitmapScreenHeight;
    cfg.lastKeyMs = nowMs() - 10000;
    ensureScreenFonts(cfg);
    layoutColourList(cfg);  // as the stage lays it out, so that the clicks land
    // Left third red, right third blue, a brown block in the middle, white elsewhere.
    marvtest::writeBmp("input/bcXY0.bmp", 60, 60, [](int x, int y) {
      if (x < 20) return red;
      if (x >= 40) return blue;
      if (y >= 20 && y < 40) return brown;
      return white;
    });
  }
  std::vector<inputFrame> clickOption(int row, int selector, int option, int scroll = 0) const {
    int x = 0, y = 0;
    EXPECT_TRUE(colourOptionCentre(cfg, row, selector, option, x, y, scroll)) << "row " << row << " is in view";
    return marvtest::click(x, y);
  }
  std::vector<inputFrame> clickProceed() const {
    const int x0 = static_cast<int>(cfg.bitmapScreenWidth - 2.8 * cfg.buttonSize);
    const int y0 = static_cast<int>(cfg.bitmapScreenHeight - 1.8 * cfg.buttonSize);
    return marvtest::click(x0 + cfg.buttonSize + cfg.textGap + 10, y0 + 10);
  }
  int run(std::vector<inputFrame> frames) {
    marvtest::scriptedRun script(std::move(frames));
    return runBitmapStage(cfg);
  }

  appConfig cfg;
};

TEST_F(bitmapStage, ChoicesOnTheListReachTheTables) {
  makeCase(1);
  std::vector<inputFrame> frames = clickOption(3, selectInverse, 0);  // red: inverted
  marvtest::append(frames, clickOption(2, selectStretch, 1));         // blue: stretched along YZ
  marvtest::append(frames, clickOption(2, selectSymmetry, 2));        // blue: mirrored on ZX
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);

  // Red is entry 3, blue entry 2; red's untouched stretch stays off (3).
  ASSERT_EQ(std::pair(findColour(cfg, colorCode(255, 0, 0)), findColour(cfg, colorCode(0, 0, 255))), std::pair(3, 2));
  EXPECT_EQ(std::tuple(cfg.InverseFlag[3], cfg.StretchPlane[2], cfg.SymmetricPlane[2], cfg.StretchPlane[3]),
            std::tuple(0, 1, 2, 3));
  EXPECT_GE(findColour(cfg, colorCode(100, 50, 20)), 8) << "a non-preset colour joins the list";
}

TEST_F(bitmapStage, AMarkedColourIsRemovedAndRemembered) {
  makeCase(1);
  const int notches = 8;
  inputFrame wheel;
  wheel.wheel = -notches;
  int x = 0, y = 0;
  ASSERT_TRUE(colourSwatchCentre(cfg, 8, x, y, notches * colourListNotch(cfg)));
  std::vector<inputFrame> frames = {wheel};
  marvtest::append(frames, marvtest::click(x, y));
  marvtest::append(frames, clickProceed());
  ASSERT_EQ(run(frames), 1);
  EXPECT_EQ(findColour(cfg, colorCode(100, 50, 20)), -1);
  ASSERT_EQ(cfg.numRemovedColors, 1);
  EXPECT_EQ(cfg.RemovedColorCodes[0], colorCode(100, 50, 20));
  EXPECT_EQ(cfg.bitmapXY[sliceIndex(21, 21, 0, 10, 10)], 0) << "its nodes fall to the free colour";
}

TEST_F(bitmapStage, EscCancelsAndACaseWithoutBitmapsPassesStraightThrough) {
  makeCase(1);
  EXPECT_EQ(run(marvtest::press(keyEsc)), -1);

  fs::remove("input/bcXY0.bmp");
  makeCase(1);
  fs::remove("input/bcXY0.bmp");
  EXPECT_EQ(runBitmapStage(cfg), 1) << "no frame is shown";
  EXPECT_EQ(cfg.iNumBcColor, 8);
}

}  // namespace
