// Record files of a thermo cavity run by the batch driver: a restart continues every one line for line.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "batchRun.h"
#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"
#include "testSupport.h"

namespace marv {
namespace {

namespace fs = std::filesystem;

// The thermo example recording from step 0: probes at two points, both walls' force and heat loss.
fs::path recordingProject() {
  const fs::path folder = marvtest::copyExample("thermo2d");
  marvtest::writeText(folder / "input" / "param.txt",
                      "001:sts 0\n" + marvtest::readText(folder / "input" / "param.txt"));
  marvtest::setParameters(folder, {{"nx", "21"}, {"ny", "21"}, {"deltat", "0.002"}, {"nfig", "0"}});
  std::ofstream(folder / "input" / "viz.txt", std::ios::app)
      << "probeRecordInterval 5\nnumProbes 2\nforceRecInterval 5\nshowForce 1\nnumRecForce 2\n"
         "heatLossRecInterval 5\nshowHeatLoss 1\nnumRecHeatLoss 2\n";
  // The choices as the window leaves them: the last line of each file.
  appConfig seed;
  seed.forceRecordOn[1] = seed.forceRecordOn[8] = 1;
  seed.heatRecordOn[1] = seed.heatRecordOn[8] = 1;
  marvtest::writeText(folder / "dump" / "force.txt", forceHeadLine(seed) + forceDataLine(seed));
  marvtest::writeText(folder / "dump" / "heatLoss.txt", heatLossHeadLine(seed) + heatLossDataLine(seed));
  const probeSample still;
  marvtest::writeText(folder / "dump" / "probe_000_ascii.dat",
                      probeHeadLine() + probeDataLine(seed, probePoint{0.02f, 0.05f, 0.0f}, still));
  marvtest::writeText(folder / "dump" / "probe_001_ascii.dat",
                      probeHeadLine() + probeDataLine(seed, probePoint{0.073f, 0.031f, 0.0f}, still));
  return folder;
}

void runSteps(const fs::path& folder, int sts, int latts, int nfile) {
  marvtest::setParameters(
      folder, {{"sts", std::to_string(sts)}, {"latts", std::to_string(latts)}, {"nfile", std::to_string(nfile)}});
  driverState state;
  ASSERT_EQ(marvtest::runBatch(folder, state), 0);
  ASSERT_EQ(state.stepsTaken, latts - sts + 1);
}

const char* const recordFiles[] = {"force.txt", "heatLoss.txt", "probe_000_ascii.dat", "probe_001_ascii.dat"};

TEST(RecordRestart, RecordsContinueLineForLineAsAnUninterruptedRun) {
  const fs::path whole = recordingProject();
  runSteps(whole, 0, 40, 20);
  std::vector<std::string> expected;
  for (const char* name : recordFiles) expected.push_back(marvtest::readText(whole / "dump" / name));
  ASSERT_EQ(std::count(expected[0].begin(), expected[0].end(), '\n'), 1 + 9) << "head line and steps 0, 5 .. 40";
  EXPECT_EQ(expected[0].find("      Black_flag "), expected[0].rfind("      Black_flag ")) << "one head line";
  EXPECT_NE(expected[1].find("\n          40 "), std::string::npos);
  // Stopped at step 20, dying while writing step 25, and continued from dump 20: the half lines go.
  const fs::path split = recordingProject();
  runSteps(split, 0, 20, 20);
  for (int n = 0; n < 4; ++n) {
    const std::size_t at = expected[n].find("\n          25 ");
    ASSERT_NE(at, std::string::npos) << recordFiles[n];
    ASSERT_EQ(marvtest::readText(split / "dump" / recordFiles[n]), expected[n].substr(0, at + 1)) << recordFiles[n];
    marvtest::writeText(split / "dump" / recordFiles[n], expected[n].substr(0, at + 30));
  }
  runSteps(split, 20, 40, 20);
  // The whole run restarted from dump 20 to redo the rest.
  runSteps(whole, 20, 40, 20);
  for (int n = 0; n < 4; ++n) {
    EXPECT_EQ(marvtest::readText(split / "dump" / recordFiles[n]), expected[n]) << recordFiles[n];
    EXPECT_EQ(marvtest::readText(whole / "dump" / recordFiles[n]), expected[n]) << recordFiles[n];
  }
  EXPECT_TRUE(fs::exists(whole / "dump" / "force.txt.cut")) << "the abandoned lines are kept beside";
  for (const fs::path& folder : {whole, split}) fs::remove_all(folder);
}

}  // namespace
}  // namespace marv
