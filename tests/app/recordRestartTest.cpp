// Record files of a thermo cavity run by the batch driver: a restart continues every one line for line.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

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
  const std::string force = marvtest::readText(whole / "dump" / "force.txt");
  ASSERT_EQ(std::count(force.begin(), force.end(), '\n'), 1 + 9) << "head line and steps 0, 5 .. 40";
  EXPECT_EQ(force.find("      Black_flag "), force.rfind("      Black_flag ")) << "one head line";
  const std::string heat = marvtest::readText(whole / "dump" / "heatLoss.txt");
  EXPECT_NE(heat.find("\n          40 "), std::string::npos);

  // Stopped at step 20, dying while writing step 25, and continued from dump 20: the half lines go.
  const fs::path split = recordingProject();
  runSteps(split, 0, 20, 20);
  for (const char* name : recordFiles) {
    const std::string expected = marvtest::readText(whole / "dump" / name);
    const std::size_t at = expected.find("\n          25 ");
    ASSERT_NE(at, std::string::npos) << name;
    ASSERT_EQ(marvtest::readText(split / "dump" / name), expected.substr(0, at + 1)) << name;
    marvtest::writeText(split / "dump" / name, expected.substr(0, at + 30));
  }
  runSteps(split, 20, 40, 20);
  // Run past step 20, then restarted from dump 20 to redo the rest.
  const fs::path redo = recordingProject();
  runSteps(redo, 0, 40, 20);
  runSteps(redo, 20, 40, 20);
  for (const char* name : recordFiles) {
    const std::string expected = marvtest::readText(whole / "dump" / name);
    EXPECT_EQ(marvtest::readText(split / "dump" / name), expected) << name;
    EXPECT_EQ(marvtest::readText(redo / "dump" / name), expected) << name;
  }
  EXPECT_TRUE(fs::exists(redo / "dump" / "force.txt.cut")) << "the abandoned lines are kept beside";
  for (const fs::path& folder : {whole, split, redo}) fs::remove_all(folder);
}

}  // namespace
}  // namespace marv
