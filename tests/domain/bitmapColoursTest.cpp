// The bitmap colour list (counting, purge, removed colours, a full list) and its bmp.txt, whole bitmaps at the mesh,
// extreme sizes.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "bitmapTestSupport.h"
#include "domain/bitmapColours.h"
#include "domain/bitmapReading.h"
#include "domain/bmpTxt.h"
#include "domain/progressLine.h"
#include "layer/layer.h"
#include "project/applyParameters.h"
#include "testSupport.h"
#include "tests/testGrid.h"

namespace {

using namespace marv;
using marvtest::rgb;

const std::uint32_t white = colorCode(255, 255, 255), black = colorCode(0, 0, 0);
const std::uint32_t olive = colorCode(128, 128, 0), pink = colorCode(255, 128, 128);

// A bitmap read at the mesh: `count` nodes of colour, the rest white.
std::vector<std::uint32_t> nodes(int total, std::vector<std::pair<std::uint32_t, int>> colours) {
  std::vector<std::uint32_t> codes(total, white);
  int at = 0;
  for (auto [code, count] : colours)
    for (int n = 0; n < count; ++n) codes[at++] = code;
  return codes;
}

appConfig freshList() {
  appConfig cfg;
  setPresetColours(cfg);
  return cfg;
}

TEST(bitmapColours, purgeDropsColoursBelowTheThresholdAndKeepsThoseAtIt) {
  appConfig cfg = freshList();
  countColours(cfg, nodes(100, {{olive, 10}, {pink, 9}, {black, 1}}), 10, 10);
  ASSERT_EQ(cfg.iNumBcColor, 9) << "pink (9 points) falls below the floor of 10";
  EXPECT_EQ(cfg.ColorsCodes[8], olive) << "olive has exactly 10 points: the test is strict";
  EXPECT_EQ(cfg.colorPoints[1], 1) << "a preset stays however rare";
  EXPECT_EQ(cfg.colorPoints[0], 80);
  EXPECT_EQ(cfg.numRemovedColors, 0) << "a rare colour is not a removed colour";

  // 200000 nodes at 10 per 10000: the threshold is 200.
  appConfig big = freshList();
  countColours(big, nodes(200000, {{olive, 200}, {pink, 199}}), 400, 500);
  ASSERT_EQ(big.iNumBcColor, 9);
  EXPECT_EQ(big.ColorsCodes[8], olive);
}

TEST(bitmapColours, removedColourIsRememberedOnceAndDroppedInTheNextPass) {
  appConfig cfg = freshList();
  countColours(cfg, nodes(100, {{olive, 20}, {pink, 30}}), 10, 10);
  ASSERT_EQ(cfg.iNumBcColor, 10);
  ASSERT_EQ(cfg.ColorsCodes[8], olive);
  cfg.colorRows[8].keep = 0;  // the user clicks olive's swatch
  cfg.stretchSelectors[9].selected = 1;
  purgeColors(cfg, 0);
  ASSERT_EQ(cfg.iNumBcColor, 9);
  EXPECT_EQ(cfg.ColorsCodes[8], pink) << "pink moved down";
  EXPECT_EQ(cfg.stretchSelectors[8].selected, 1) << "its choice moved with it";
  EXPECT_EQ(cfg.ColorsCodes[9], 0u) << "the freed entry is reset";
  EXPECT_EQ(cfg.colorRows[9].keep, 1);
  ASSERT_EQ(cfg.numRemovedColors, 1);
  EXPECT_EQ(cfg.RemovedColorCodes[0], olive);

  // The next slice holds olive again: it is counted, marked and dropped,
  // without a second entry in the removed list.
  countColours(cfg, nodes(100, {{olive, 50}}), 10, 10);
  EXPECT_EQ(findColour(cfg, olive), -1);
  EXPECT_EQ(cfg.numRemovedColors, 1);

  // A new pass with the removed list of bmp.txt drops it while counting.
  appConfig next = freshList();
  next.RemovedColorCodes[0] = olive;
  next.numRemovedColors = 1;
  countColours(next, nodes(100, {{olive, 50}, {pink, 20}}), 10, 10);
  EXPECT_EQ(findColour(next, olive), -1);
  EXPECT_EQ(findColour(next, pink), 8);
}

TEST(bitmapColours, fullListPurgesBeforeTakingANewColour) {
  appConfig cfg = freshList();
  // 43 rare colours fill the list to 51 entries; the 44th arrives last.
  std::vector<std::uint32_t> codes;
  for (int c = 0; c < 43; ++c) codes.push_back(colorCode(10, 20, c));
  for (int n = 0; n < 20; ++n) codes.push_back(olive);
  countColours(cfg, codes, static_cast<int>(codes.size()), 1);
  EXPECT_EQ(cfg.iNumBcColor, 9) << "the rare colours went, olive came in after the purge";
  EXPECT_EQ(cfg.ColorsCodes[8], olive);
  EXPECT_EQ(cfg.colorPoints[8], 20);
}

class bitmapFiles : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(startLayer(), 0); }
  marvtest::inFolder here{marvtest::scratchFolder("bitmaps")};
  std::vector<std::string> said;
  std::function<void(const std::string&)> say = [this](const std::string& s) { said.push_back(s); };
};

TEST_F(bitmapFiles, anyPictureSizeFillsTheMeshOnePixelPerNode) {
  for (int nx : {2, 3, 7, 17}) {
    appConfig cfg;
    marvtest::setBitmapCase(cfg, nx, 5, 1, 1.0, 1.0, 1.0, 6);
    // Left half black, a blue top row, of a size unrelated to the mesh.
    marvtest::writeBmp("input/bcXY0.bmp", 37, 11, [](int x, int y) {
      if (y < 2) return rgb{0, 0, 255};
      return x < 18 ? rgb{0, 0, 0} : rgb{};
    });
    EXPECT_EQ(readBoundaryBitmaps(cfg, say), 1);
    EXPECT_TRUE(said.empty()) << (said.empty() ? "" : said[0]);
    for (int j = 0; j < 5; ++j)
      for (int i = 0; i < nx; ++i) {
        const double x = cfg.xCoord[i];
        const int want = j == 4 ? 2 : (x < 0.45 ? 1 : (x > 0.55 ? 0 : -1));
        if (want < 0) continue;  // the node on the picture's middle line may go either way
        EXPECT_EQ(cfg.bitmapXY[sliceIndex(nx, 5, 0, i, j)], want) << "nx=" << nx << " at i=" << i << " j=" << j;
      }
    EXPECT_EQ(cfg.bcTypePresent[1] * 100 + cfg.bcTypePresent[2] * 10 + cfg.bcTypePresent[3], 110)
        << "Black, Blue, no Red";
    EXPECT_EQ(cfg.iNumBcColor, 8);
  }
}

TEST_F(bitmapFiles, threePlanesAndSlicesWithGapsAndAntiAliasedEdges) {
  appConfig cfg;
  marvtest::setBitmapCase(cfg, 9, 5, 7, 2.0, 1.0, 1.5, 4);
  // XY slice 2 only; YZ slice 0 with a one-pixel grey seam (rare colour);
  // ZX slice 9.
  marvtest::writeBmp("input/bcXY2.bmp", 32, 16, [](int x, int) { return x < 8 ? rgb{128, 128, 0} : rgb{}; });
  marvtest::writeBmp("input/bcYZ0.bmp", 24, 16, [](int x, int y) {
    if (x == 12 && y == 5) return rgb{200, 200, 201};
    return y >= 8 ? rgb{128, 128, 0} : rgb{};
  });
  marvtest::writeBmp("input/bcZX9.bmp", 32, 24, [](int, int y) { return y < 12 ? rgb{255, 0, 0} : rgb{}; });
  readBoundaryBitmaps(cfg, say);
  EXPECT_EQ(findColour(cfg, colorCode(200, 200, 201)), -1) << "a seam of a few nodes is purged";
  ASSERT_EQ(cfg.iNumBcColor, 9);
  EXPECT_EQ(cfg.ColorsCodes[8], colorCode(128, 128, 0));
  // Slices present; YZ has z across and y up (lower half olive), ZX x across and z up (upper half red).
  EXPECT_EQ((std::vector<int>{inBitmap(cfg, 8, 2, planeXY), inBitmap(cfg, 8, 0, planeYZ), inBitmap(cfg, 3, 9, planeZX),
                              inBitmap(cfg, 8, 0, planeXY), cfg.bitmapYZ[sliceIndex(7, 5, 0, 3, 0)],
                              cfg.bitmapYZ[sliceIndex(7, 5, 0, 3, 4)], cfg.bitmapZX[sliceIndex(9, 7, 9, 4, 6)],
                              cfg.bitmapZX[sliceIndex(9, 7, 9, 4, 0)]}),
            (std::vector<int>{1, 1, 1, 0, 8, 0, 3, 0}));
}

TEST_F(bitmapFiles, missingDamagedAndHugeFilesAreSkipped) {
  appConfig cfg;
  marvtest::setBitmapCase(cfg, 5, 5, 3);
  // Nothing at all: the presets alone, no message.
  EXPECT_EQ(readBoundaryBitmaps(cfg, say), 1);
  EXPECT_EQ(cfg.iNumBcColor, 8);
  EXPECT_TRUE(said.empty());

  marvtest::writeBmp("input/bcXY0.bmp", 40, 40, [](int, int) { return rgb{0, 0, 0}; });
  const std::string whole = marvtest::readText("input/bcXY0.bmp");
  std::string huge = whole.substr(0, 54);  // a header that claims 20000 x 20000 pixels
  for (int at : {18, 22}) huge.replace(at, 4, std::string("\x20\x4e\0\0", 4));
  const std::pair<const char*, std::string> unreadable[] = {{"input/bcXY1.bmp", whole.substr(0, 70)},  // truncated
                                                            {"input/bcXY2.bmp", std::string(500, '\xff')},
                                                            {"input/bcXY3.bmp", ""},
                                                            {"input/bcYZ0.bmp", "P3\n1 1\n255\n0 0 255\n"},
                                                            {"input/bcZX0.bmp", huge + std::string(4096, '\0')}};
  for (const auto& [name, bytes] : unreadable) marvtest::writeText(name, bytes);
  // Whatever the extension says, the content decides: a binary PNM of one
  // blue pixel is a picture.
  marvtest::writeText("input/bcYZ1.bmp", std::string("P6\n1 1\n255\n") + std::string("\0\0\xff", 3));
  // One pixel, of a colour of its own: it fills the whole plane.
  marvtest::writeBmp("input/bcZX1.bmp", 1, 1, [](int, int) { return rgb{0, 255, 0}; });
  said.clear();
  EXPECT_EQ(readBoundaryBitmaps(cfg, say), 1);
  EXPECT_EQ(said.size(), 5u) << "one message per file that exists but cannot be read";
  for (const std::string& s : said) EXPECT_NE(s.find("cannot be read"), std::string::npos) << s;
  EXPECT_EQ(cfg.bitmapXY[sliceIndex(5, 5, 0, 2, 2)], 1) << "the good file is read";
  EXPECT_EQ(inBitmap(cfg, 1, 1, planeXY), 0) << "the truncated one leaves its slice empty";
  EXPECT_EQ(cfg.bitmapZX[sliceIndex(5, 3, 1, 4, 2)], 4) << "one green pixel covers the plane";
  EXPECT_EQ(cfg.bitmapYZ[sliceIndex(3, 5, 1, 1, 4)], 2) << "the PNM is read";
}

// A colour list with distinct values in every column and row.
appConfig filled() {
  appConfig cfg;
  for (int c = 0; c < maxColourSlots; ++c) {
    cfg.ColorsCodes[c] = 0xFF000000u + 65536u * c + 3u * c;
    cfg.StretchPlane[c] = c % 4, cfg.SymmetricPlane[c] = (c + 1) % 4, cfg.InverseFlag[c] = c % 2;
    cfg.R[c] = c, cfg.G[c] = 0, cfg.B[c] = 3 * c;
    cfg.RemovedColorCodes[c] = c < 5 ? 0xFF000000u + c : 0u;
  }
  cfg.R[7] = cfg.G[7] = cfg.B[7] = -1;
  return cfg;
}

// A record whose saved columns hold markers that no file writes.
appConfig marked() {
  appConfig cfg;
  cfg.savedColorsCodes.fill(77u);
  cfg.savedStretchPlane.fill(-5), cfg.savedSymmetricPlane.fill(-5), cfg.savedInverseFlag.fill(-5);
  cfg.RemovedColorCodes.fill(88u);
  cfg.numRemovedColors = -3;
  return cfg;
}

struct BmpTxt : ::testing::Test {
  std::filesystem::path dir = marvtest::scratchFolder("bmp");
  std::string path = (dir / "bmp.txt").string();
  void TearDown() override { std::filesystem::remove_all(dir); }
  std::string slurp() const { return marvtest::readText(path); }
  void spit(const std::string& text) const { marvtest::writeText(path, text); }
};

TEST_F(BmpTxt, WritesTheExactLayoutAndReadsBackTheSavedColumns) {
  const appConfig source = filled();
  ASSERT_TRUE(writeBmpTxt(source, path));
  EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));
  const std::string text = slurp();
  const char* expectedLines[] = {
      "iNumBcColor  ColorsCodes[]  StretchPlane[]  SymmetricPlane[]  InverseFlag  R[]   G[]   B[]\n",
      "\n 0           4278190080     0               1                 0              0     0     0\n",
      "\n 7           4278648853     3               0                 1             -1    -1    -1\n",
      "\niNumBcColor  RemovedColorCodes\n 0        4278190080\n",
      "\n50                 0\n/*-----------------------------------------------------*/\n"};
  for (const char* line : expectedLines) EXPECT_NE(text.find(line), std::string::npos) << line;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + 51 + 1 + 51 + 1);

  appConfig back = marked();
  readBmpTxt(back, path);
  EXPECT_EQ(std::tie(back.savedColorsCodes, back.savedStretchPlane, back.savedSymmetricPlane, back.savedInverseFlag,
                     back.RemovedColorCodes),
            std::tie(source.ColorsCodes, source.StretchPlane, source.SymmetricPlane, source.InverseFlag,
                     source.RemovedColorCodes));
  EXPECT_EQ(back.numRemovedColors, 5);

  // Unused removed rows written as all ones count as fifty.
  appConfig ones = filled();
  ones.RemovedColorCodes.fill(4294967295u);
  ASSERT_TRUE(writeBmpTxt(ones, path));
  readBmpTxt(back, path);
  EXPECT_EQ(back.numRemovedColors, 50);
  EXPECT_EQ(back.RemovedColorCodes[50], 4294967295u);

  // A missing file changes nothing; an unwritable path fails quietly.
  appConfig untouched = marked();
  readBmpTxt(untouched, (dir / "absent.txt").string());
  EXPECT_EQ(untouched.savedColorsCodes[0], 77u);
  EXPECT_FALSE(writeBmpTxt(source, (dir / "no" / "bmp.txt").string()));
}

// Cut the file at many points: each colour row is taken whole or left as it
// was, and the rows taken are a prefix.
TEST_F(BmpTxt, ShortFilesTakeOnlyWholeRowsAndLeaveTheRestUnchanged) {
  const appConfig source = filled();
  ASSERT_TRUE(writeBmpTxt(source, path));
  const std::string full = slurp();
  for (std::size_t cut = 0; cut <= full.size(); cut += 37) {
    spit(full.substr(0, cut));
    appConfig back = marked();
    readBmpTxt(back, path);
    // Rows taken whole, then untouched ones.
    int taken = 0;
    while (taken < maxColourSlots && back.savedColorsCodes[taken] == source.ColorsCodes[taken] &&
           back.savedInverseFlag[taken] == source.InverseFlag[taken])
      ++taken;
    for (int c = taken; c < maxColourSlots; ++c)
      ASSERT_EQ(std::tuple(back.savedColorsCodes[c], back.savedStretchPlane[c], back.savedSymmetricPlane[c],
                           back.savedInverseFlag[c]),
                std::tuple(77u, -5, -5, -5))
          << "cut " << cut << " row " << c;
    EXPECT_TRUE(cut >= full.find("RemovedColorCodes") || back.numRemovedColors == -3) << "cut " << cut;
  }
}

TEST(ExtremeValues, BitmapPlaneGeometryOfAHugeDomainStaysBounded) {
  for (const double lx : {1e300, 1e-300, 1e38, 1.0}) {
    appConfig cfg;
    marv::testing::setGrid(cfg, 9, 7, 1, lx, 1.0);
    cfg.pixPerMetre = 100.0 / cfg.dx;
    cfg.domPixX = cfg.bitmapScreenWidth = INT_MAX, cfg.domPixY = 700, cfg.bitmapScreenHeight = INT_MIN;
    const planeGeometry g = makePlaneGeometry(cfg, planeXY);
    ASSERT_EQ(g.across, 9) << lx;
    std::vector<long long> all{g.ox, g.oy};
    all.insert(all.end(), g.px.begin(), g.px.end());
    all.insert(all.end(), g.py.begin(), g.py.end());
    for (long long p : all) EXPECT_LE(std::abs(p), 1LL << 26) << lx;
    std::vector<std::uint32_t> codes;
    const int image = makeImage(4, 4, 0);
    EXPECT_TRUE(lx < 1e6 || readImageAtMesh(cfg, planeXY, image, codes) == -1) << "no image that large is made";
    deleteImage(image);
  }
}

TEST(ExtremeValues, ProgressLineWithSizesAndCountsAtTheLimit) {
  appConfig cfg;
  marv::testing::setGrid(cfg, 5, 5, 1);
  for (const int size : {INT_MAX, INT_MIN, 0}) {
    cfg.sceneWidth = cfg.sceneHeight = size;
    cfg.progressTotal = 3, cfg.progressCount = INT_MAX;
    showProgress(cfg, 1);
    EXPECT_EQ(cfg.progressCount, INT_MAX) << "the count saturates";
    cfg.progressTotal = -5, cfg.progressCount = -7;
    showProgress(cfg, 2);
  }
}

}  // namespace
