// bmp.txt: the written format, the round trip, and files that are missing,
// short, damaged or binary.
#include <gtest/gtest.h>

#include <unistd.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "domain/bmpTxt.h"

namespace marv {
namespace {

namespace fs = std::filesystem;

class BmpTxt : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() / ("marv_bmp_" + std::to_string(::getpid()) + "_" +
                                       ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(dir);
    path = (dir / "bmp.txt").string();
  }
  void TearDown() override { fs::remove_all(dir); }

  // A colour list with distinct values in every column and row.
  static appConfig filled() {
    appConfig cfg;
    for (int c = 0; c < maxColourSlots; ++c) {
      cfg.ColorsCodes[c] = 0xFF000000u + 65536u * c + 3u * c;
      cfg.StretchPlane[c] = c % 4;
      cfg.SymmetricPlane[c] = (c + 1) % 4;
      cfg.InverseFlag[c] = c % 2;
      cfg.R[c] = c, cfg.G[c] = 0, cfg.B[c] = 3 * c;
      cfg.RemovedColorCodes[c] = c < 5 ? 0xFF000000u + c : 0u;
    }
    cfg.R[7] = cfg.G[7] = cfg.B[7] = -1;
    return cfg;
  }
  // A record whose saved columns hold markers that no file writes.
  static appConfig marked() {
    appConfig cfg;
    cfg.savedColorsCodes.fill(77u);
    cfg.savedStretchPlane.fill(-5);
    cfg.savedSymmetricPlane.fill(-5);
    cfg.savedInverseFlag.fill(-5);
    cfg.RemovedColorCodes.fill(88u);
    cfg.numRemovedColors = -3;
    return cfg;
  }
  std::string slurp() const {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  void spit(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }

  fs::path dir;
  std::string path;
};

TEST_F(BmpTxt, WritesTheExactLayoutAndReadsBackTheSavedColumns) {
  const appConfig source = filled();
  ASSERT_TRUE(writeBmpTxt(source, path));
  EXPECT_FALSE(fs::exists(path + ".tmp"));
  const std::string text = slurp();
  std::istringstream lines(text);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "iNumBcColor  ColorsCodes[]  StretchPlane[]  SymmetricPlane[]  InverseFlag  R[]   G[]   B[]");
  std::getline(lines, line);
  EXPECT_EQ(line, " 0           4278190080     0               1                 0              0     0     0");
  for (int c = 1; c <= 7; ++c) std::getline(lines, line);
  EXPECT_EQ(line, " 7           4278648853     3               0                 1             -1    -1    -1");
  int rows = 0;
  for (lines.seekg(0); std::getline(lines, line);) ++rows;
  EXPECT_EQ(rows, 1 + 51 + 1 + 51 + 1);
  EXPECT_NE(text.find("\niNumBcColor  RemovedColorCodes\n 0        4278190080\n"), std::string::npos);
  const std::string tail = "50                 0\n/*-----------------------------------------------------*/\n";
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);

  appConfig back = marked();
  readBmpTxt(back, path);
  for (int c = 0; c < maxColourSlots; ++c) {
    EXPECT_EQ(back.savedColorsCodes[c], source.ColorsCodes[c]) << " at c=" << c;
    EXPECT_EQ(back.savedStretchPlane[c], source.StretchPlane[c]) << " at c=" << c;
    EXPECT_EQ(back.savedSymmetricPlane[c], source.SymmetricPlane[c]) << " at c=" << c;
    EXPECT_EQ(back.savedInverseFlag[c], source.InverseFlag[c]) << " at c=" << c;
    EXPECT_EQ(back.RemovedColorCodes[c], source.RemovedColorCodes[c]) << " at c=" << c;
  }
  EXPECT_EQ(back.numRemovedColors, 5);
  EXPECT_EQ(back.ColorsCodes, appConfig().ColorsCodes) << "the live list is not read";
}

TEST_F(BmpTxt, UnusedRemovedRowsOfAllOnesCountAsFifty) {
  appConfig source = filled();
  source.RemovedColorCodes.fill(4294967295u);
  ASSERT_TRUE(writeBmpTxt(source, path));
  appConfig back;
  readBmpTxt(back, path);
  EXPECT_EQ(back.numRemovedColors, 50);
  EXPECT_EQ(back.RemovedColorCodes[50], 4294967295u);
}

TEST_F(BmpTxt, MissingFileChangesNothingAndUnwritablePathFails) {
  appConfig cfg = marked();
  readBmpTxt(cfg, (dir / "absent.txt").string());
  EXPECT_EQ(cfg.savedColorsCodes[0], 77u);
  EXPECT_EQ(cfg.numRemovedColors, -3);
  EXPECT_FALSE(writeBmpTxt(filled(), (dir / "no" / "such" / "bmp.txt").string()));
}

// Cut the file at many points: every colour row is either taken whole or
// left as it was, and the rows taken are a prefix.
TEST_F(BmpTxt, ShortFilesTakeOnlyWholeRowsAndLeaveTheRestUnchanged) {
  const appConfig source = filled();
  ASSERT_TRUE(writeBmpTxt(source, path));
  const std::string full = slurp();
  for (std::size_t cut = 0; cut <= full.size(); cut += 37) {
    spit(full.substr(0, cut));
    appConfig back = marked();
    readBmpTxt(back, path);
    bool inPrefix = true;
    for (int c = 0; c < maxColourSlots; ++c) {
      const bool taken =
          back.savedColorsCodes[c] == source.ColorsCodes[c] && back.savedStretchPlane[c] == source.StretchPlane[c] &&
          back.savedSymmetricPlane[c] == source.SymmetricPlane[c] && back.savedInverseFlag[c] == source.InverseFlag[c];
      const bool untouched = back.savedColorsCodes[c] == 77u && back.savedStretchPlane[c] == -5 &&
                             back.savedSymmetricPlane[c] == -5 && back.savedInverseFlag[c] == -5;
      ASSERT_TRUE(taken || untouched) << " at cut=" << cut << " c=" << c;
      ASSERT_TRUE(inPrefix || untouched) << " row after an untouched row at cut=" << cut << " c=" << c;
      inPrefix = inPrefix && taken;
    }
    if (cut < full.find("RemovedColorCodes")) {
      EXPECT_EQ(back.RemovedColorCodes[0], 88u) << " at cut=" << cut;
      EXPECT_EQ(back.numRemovedColors, -3) << " at cut=" << cut;
    }
  }
}

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
    for (int c = 0; c < maxColourSlots; ++c) {
      EXPECT_LE(back.savedInverseFlag[c], 2147483647) << " at c=" << c;  // read without UB, any value
    }
    EXPECT_LE(back.numRemovedColors, 50);
  }
}

}  // namespace
}  // namespace marv
