// viz.txt and .history: exact formats, round trips, the readers' rules and damaged files.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "project/historyFile.h"
#include "project/vizFile.h"
#include "testSupport.h"

namespace {

using marv::appConfig;

int countLines(const std::string& text) {
  int n = 0;
  for (char c : text) n += c == '\n';
  return n;
}

TEST(VizFile, WritesSeventyOneLinesWithTheRepeatedKey) {
  appConfig cfg;
  cfg.particleDivNum = 12;
  const std::string text = marv::formatVizFile(cfg);
  EXPECT_EQ(countLines(text), 71);
  // particleDivNum twice, the second time after animationRotationFlag.
  const std::string key = "\nparticleDivNum                           12\n";
  const std::size_t first = text.find(key), second = text.find(key, first + 1);
  ASSERT_NE(second, std::string::npos);
  EXPECT_EQ(text.find(key, second + 1), std::string::npos);
  EXPECT_EQ(text.rfind('\n', second - 1), text.rfind("\nanimationRotationFlag", second));
  EXPECT_EQ(marv::formatVizLine(16, 0.99), "CorrVectorThres                          9.90000000e-01");
  EXPECT_EQ(marv::formatVizLine(2, 1.9), "showOutlineFlag                          1");
}

// A domain of 2 x 1 x 1, against which the cross-sections are limited.
appConfig domain() {
  appConfig cfg;
  cfg.lx = 2.0;
  cfg.ly = cfg.lz = 1.0;
  return cfg;
}

TEST(VizFile, RoundTripAndReaderRules) {
  marvtest::inFolder here(marvtest::scratchFolder("viz"));
  std::filesystem::create_directory("input");
  appConfig written = domain();
  written.cameraRadius = 123.5f;
  written.manualMaxValue = -3.25e-7;
  marv::syncViz(written, 1);
  EXPECT_FALSE(std::filesystem::exists("input/viz.txt.tmp"));
  appConfig read = domain();
  marv::syncViz(read, 0);
  EXPECT_EQ(marv::formatVizFile(read), marv::formatVizFile(written)) << "every key, at full precision";
  // Later key wins, unknown keys are read over, flags take any non-zero,
  // cross-sections are limited to the domain.
  marvtest::writeText("input/viz.txt",
                      "numProbes 3\nbogusKey 9\nNUMPROBES 5\npolygonFrames 0.5\nzCrosssectionXY 5\n"
                      "xCrosssectionYZ -1\nyCrosssectionXZ 0.5\n");
  appConfig cfg = domain();
  marv::syncViz(cfg, 0);
  EXPECT_EQ((std::vector<double>{double(cfg.numProbes), double(cfg.polygonFrames), cfg.zCrosssectionXY,
                                 cfg.xCrosssectionYZ, cfg.yCrosssectionXZ}),
            (std::vector<double>{5, 1, 1.0, 0.0, 0.5}));
  EXPECT_EQ(marv::formatVizFile(cfg).find("bogusKey"), std::string::npos);
}

// Noise is the fuzz target's; these are the values at the ends of the number types.
TEST(VizFile, MissingFilesLeaveDefaultsAndExtremeValuesSaturate) {
  marvtest::inFolder here(marvtest::scratchFolder("vizbad"));
  appConfig cfg;
  marv::syncViz(cfg, 0);
  EXPECT_EQ(marv::formatVizFile(cfg), marv::formatVizFile(appConfig{}));
  std::filesystem::create_directory("input");
  marvtest::writeText("input/viz.txt", "numProbes 1e300\nshowForce nan\ncameraRadius 1e300\n");
  appConfig huge;
  marv::syncViz(huge, 0);
  EXPECT_EQ(countLines(marv::formatVizFile(huge)), 71);
  EXPECT_EQ(huge.numProbes, 2147483647) << "whole numbers saturate";
  EXPECT_EQ(huge.showForce, 0) << "nan reads as 0";
}

TEST(HistoryFile, WritesDefaultsWhenMissingReadsBackAndCutsAPathAtItsBlank) {
  const auto folder = marvtest::scratchFolder("history");
  marvtest::inFolder here(folder);
  appConfig cfg;
  marv::syncHistory(cfg, 0, "");
  const auto line = [](const char* key, const std::string& value) {
    return key + std::string(41 - std::string(key).size(), ' ') + value + "\n";
  };
  EXPECT_EQ(marvtest::readText(".history"),
            line("fontSize", "20") + line("langFlag", "0") + line("absProjPath", "./" + std::string(38, ' ')));
  for (const char* path : {"/home/user/cases/pipe", "/home/user/my cases/pipe"}) {
    cfg.textHeight = 28;
    cfg.langFlag = 1;
    cfg.absProjPath = path;
    marv::syncHistory(cfg, 1, folder.string());
    appConfig back;
    marv::syncHistory(back, 0, "");
    EXPECT_EQ(std::to_string(back.textHeight) + " " + std::to_string(back.langFlag) + " " + back.absProjPath,
              "28 1 " + std::string(path).substr(0, std::string(path).find(' ')));
  }
}

}  // namespace
