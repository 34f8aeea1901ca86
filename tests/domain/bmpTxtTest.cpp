// bmp.txt: the written layout, the round trip, and files that are missing, short, damaged or binary.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <tuple>

#include "domain/bmpTxt.h"
#include "testSupport.h"

namespace marv {
namespace {

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

// Binary bytes, overlong words and lines, and nonsense numbers are read
// without overrun (the sanitizer builds watch) into defined values.
TEST_F(BmpTxt, BinaryHugeAndNonsenseFilesLeaveDefinedValues) {
  std::mt19937 random(17);
  std::string binary(20000, '\0');
  for (char& ch : binary) ch = static_cast<char>(random());
  const std::string nonsense =
      "header\n" + std::string(5000, '7') + " nan -inf 1e999 -1e999 0x10 12abc\n" + std::string(100000, ' ') + "-5";
  for (const std::string& text : {binary, nonsense, std::string("\n\n\n"), std::string(300000, 'x')}) {
    spit(text);
    appConfig back = marked();
    readBmpTxt(back, path);
    EXPECT_LE(back.numRemovedColors, 50);
  }
}

}  // namespace
}  // namespace marv
