// Record files on disk: exact columns, choices found again in their tails, half-written and foreign files.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <vector>

#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"
#include "result/recordFiles.h"
#include "testGrid.h"
#include "testSupport.h"

namespace marv {
namespace {

int messages = 0;
std::string lastMessage;
void countMessage(appConfig&, const char* text) {
  ++messages;
  lastMessage = text;
}

struct recordFolder {
  std::filesystem::path folder = marvtest::scratchFolder("records");
  marvtest::inFolder here{folder};
  appConfig cfg;
  recordFolder() {
    std::filesystem::create_directories("dump");
    testing::setGrid(cfg, 11, 11, 1, 1.0, 1.0);
    cfg.showMessage = countMessage;
    cfg.latts = 1000;
    messages = 0;
  }
};

// A data line as the program writes it, with the step and probe position,
// of a still fluid of density 1 (rhow) without fields.
std::string probeLine(int ts, double x, double y, double z) {
  appConfig cfg;
  cfg.ts = ts;
  cfg.time = ts * 0.01;
  probeSample still;
  still.rho = 1.0;
  return probeDataLine(cfg, probePoint{float(x), float(y), float(z)}, still);
}

TEST(RecordFiles, ColumnsAreThoseOfTheFileFormats) {
  appConfig cfg;
  cfg.ts = 120, cfg.time = 0.5;
  cfg.forceRecordOn[1] = 1;
  cfg.forceValues[1] = {1.5f, -2.0f, 0.0f};
  const std::string head = forceHeadLine(cfg), data = forceDataLine(cfg);
  EXPECT_EQ(head.substr(0, 44), "          ts      time(s)        Black_flag ");
  EXPECT_NE(head.find("  Non-Preset_flag        Black_Fx(N)        Black_Fy(N) "), std::string::npos) << head;
  EXPECT_EQ(data.substr(0, 44), "         120  5.00000e-01                 1 ");
  EXPECT_NE(data.find("                0        1.50000e+00       -2.00000e+00 "), std::string::npos) << data;
  std::istringstream columns(data);
  int count = 0;
  for (std::string w; columns >> w;) ++count;
  EXPECT_EQ(count, 34);

  cfg.heatRecordOn[8] = 1, cfg.heatValues[8] = 3.25;
  EXPECT_NE(
      heatLossHeadLine(cfg).find("        Cyan_flag          STL_flag   Non-Preset_flag        Black_heatLoss(W/m^2) "),
      std::string::npos);
  EXPECT_EQ(heatLossDataLine(cfg).substr(heatLossDataLine(cfg).size() - 20), "       3.25000e+00 \n");
  EXPECT_EQ(probeHeadLine(),
            "          ts      time(s)         x(m)         y(m)         z(m)  rho(kg/m^3)       u(m/s)       v(m/s)"
            "       w(m/s)         T(K)       massfr       age(s)       dP(Pa)\n");
  EXPECT_EQ(probeFilePath(7), "./dump//probe_007_ascii.dat");
}

TEST(RecordFiles, ProbeSetupComesFromTheLastWholeLine) {
  recordFolder f;
  const std::string head = probeHeadLine();
  marvtest::writeText(probeFilePath(0), head + probeLine(0, 0.1, 0.2, 0.5) + probeLine(10, 0.3, 0.4, 0.5));
  // Killed while writing: the last line stops half way.
  marvtest::writeText(probeFilePath(1), head + probeLine(10, 0.6, 0.7, 0.0) + probeLine(20, 0.9, 0.9, 0).substr(0, 40));
  marvtest::writeText(probeFilePath(2), head);
  f.cfg.numProbes = 3;
  readProbeSetup(f.cfg);
  // Two dimensions: z is 0; a file with its head line only gives 0; probe 3 stays unset.
  EXPECT_EQ(f.cfg.numProbes, 3);
  EXPECT_EQ((std::vector<float>{f.cfg.probes[0].x, f.cfg.probes[0].y, f.cfg.probes[0].z, f.cfg.probes[1].x,
                                f.cfg.probes[2].x, f.cfg.probes[3].x}),
            (std::vector<float>{0.3f, 0.4f, 0.0f, 0.6f, 0.0f, -1.0f}));
  EXPECT_EQ(messages, 0);

  // A missing file in the middle, and a count beyond the table.
  std::filesystem::remove(probeFilePath(1));
  f.cfg.numProbes = 3;
  readProbeSetup(f.cfg);
  EXPECT_EQ(f.cfg.numProbes, 0) << "one below the missing file's index";
  f.cfg.numProbes = 50;
  marvtest::writeText(probeFilePath(1), head + probeLine(10, 0.6, 0.7, 0.0));
  readProbeSetup(f.cfg);
  EXPECT_EQ(f.cfg.numProbes, 2) << "the table holds ten; file 3 is missing";

  // A last position outside the domain drops the probe.
  marvtest::writeText(probeFilePath(2), head + probeLine(0, 0.5, 0.5, 0.0) + probeLine(10, 1.5, 0.5, 0.0));
  f.cfg.numProbes = 3;
  readProbeSetup(f.cfg);
  EXPECT_EQ(f.cfg.numProbes, 1);
  EXPECT_EQ(f.cfg.probes[2].x, -1.0f);
}

TEST(RecordFiles, ForeignFilesGiveAMessageAndAreNeverWritten) {
  recordFolder f;
  const std::string foreign = "my notes\n1 2 3\n";
  marvtest::writeText(probeFilePath(0), foreign);
  const std::string binary("\177ELF\0\0binary", 11);
  marvtest::writeText(forceFilePath, binary);
  marvtest::writeText(heatLossFilePath, heatLossHeadLine(f.cfg) + "          10  1.0 0 0 0\n");
  f.cfg.numProbes = 1;
  f.cfg.showForce = f.cfg.showHeatLoss = 1;
  f.cfg.numRecForce = f.cfg.numRecHeatLoss = 2;
  readProbeSetup(f.cfg);
  readForceSetup(f.cfg);
  readHeatLossSetup(f.cfg);
  EXPECT_EQ(messages, 3);
  EXPECT_NE(lastMessage.find("./dump/heatLoss.txt is not a record file"), std::string::npos) << lastMessage;
  EXPECT_EQ(f.cfg.numRecForce + f.cfg.numRecHeatLoss + f.cfg.numProbes, 0);

  // The user goes on recording in the window: still nothing touches them,
  // neither a new start at step 0 nor an append later.
  f.cfg.numProbes = 1, f.cfg.probes[0] = {0.5f, 0.5f, 0.0f};
  f.cfg.numRecForce = f.cfg.numRecHeatLoss = 1;
  f.cfg.forceRecordOn[1] = f.cfg.heatRecordOn[1] = 1;
  f.cfg.cmode = 1;
  fieldViews none{};
  for (int ts : {0, 10}) {
    f.cfg.ts = ts;
    EXPECT_TRUE(writeProbes(f.cfg, none));
    EXPECT_FALSE(writeForce(f.cfg));
    EXPECT_FALSE(writeHeatLoss(f.cfg));
  }
  EXPECT_EQ(marvtest::readText(probeFilePath(0)), foreign);
  EXPECT_EQ(marvtest::readText(forceFilePath), binary);
  EXPECT_EQ(messages, 3) << "one message per file and pass";
}

TEST(RecordFiles, ForceFlagsComeFromTheLastWholeLine) {
  recordFolder f;
  appConfig writer;
  writer.forceRecordOn[1] = writer.forceRecordOn[8] = 1;
  std::string text = forceHeadLine(writer) + forceDataLine(writer);
  writer.forceRecordOn[8] = 0, writer.forceRecordOn[3] = 1, writer.ts = 10;
  text += forceDataLine(writer);
  writer.forceRecordOn[5] = 1, writer.ts = 20;
  const std::string half = forceDataLine(writer).substr(0, 100);
  marvtest::writeText(forceFilePath, text + half);
  f.cfg.showForce = 1, f.cfg.numRecForce = 1;
  readForceSetup(f.cfg);
  EXPECT_EQ(f.cfg.numRecForce, 2);
  EXPECT_EQ((std::vector<int>{f.cfg.forceRecordOn[1], f.cfg.forceRecordOn[3], f.cfg.forceRecordOn[5],
                              f.cfg.forceRecordOn[8]}),
            (std::vector<int>{1, 1, 0, 0}))
      << "the half line does not count";
  EXPECT_EQ(messages, 0);

  // Without showForce in viz.txt the file is not consulted; a missing file
  // clears the count.
  appConfig off;
  off.numRecForce = 3;
  readForceSetup(off);
  EXPECT_EQ(off.forceRecordOn[1], 0);
  std::filesystem::remove(forceFilePath);
  f.cfg.numRecForce = 2;
  readForceSetup(f.cfg);
  EXPECT_EQ(f.cfg.numRecForce, 0);
}

// A restart continuing the records line for line is checked on whole runs;
// here the start of a new run (sts 0) over an old file.
TEST(RecordFiles, ANewRunStartsTheFileAnewAndAHeldStepAppends) {
  recordFolder f;
  const std::string head = probeHeadLine();
  marvtest::writeText(probeFilePath(0), head + probeLine(0, 0.5, 0.5, 0.0) + probeLine(10, 0.5, 0.5, 0.0));
  f.cfg.numProbes = 1;
  readProbeSetup(f.cfg);
  ASSERT_EQ(f.cfg.numProbes, 1);
  fieldViews none{};
  writeProbes(f.cfg, none);
  writeProbes(f.cfg, none);
  EXPECT_EQ(marvtest::readText(probeFilePath(0)), head + probeLine(0, 0.5, 0.5, 0.0) + probeLine(0, 0.5, 0.5, 0.0));
}

}  // namespace
}  // namespace marv
