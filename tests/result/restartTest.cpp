// A run restarted from a dump leaves the same last dump, byte for byte, as the run that never stopped.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "batchRun.h"
#include "testSupport.h"

namespace {

namespace fs = std::filesystem;

// Copies an example into a scratch project; the extra lines go behind the
// example's own, where a later line of a name wins.
fs::path project(const char* example, const std::string& extra) {
  const fs::path folder = marvtest::scratchFolder(std::string("restart-") + example);
  fs::copy(fs::path(MARV_TEST_DATA) / ".." / ".." / "examples" / example / "input", folder / "input");
  const fs::path param = folder / "input" / "param.txt";
  marvtest::writeText(param, marvtest::readText(param) + "\n" + extra);
  return folder;
}

// One pass of the driver over the project, from sts to latts.
marv::driverState run(const fs::path& folder, int sts, int latts) {
  const fs::path param = folder / "input" / "param.txt";
  std::string text = marvtest::readText(param);
  text += "\n990:sts " + std::to_string(sts) + "\n991:latts " + std::to_string(latts) + "\n";
  marvtest::writeText(param, text);
  marv::driverState state;
  EXPECT_EQ(marvtest::runBatch(folder, state), 0) << folder << " from " << sts;
  return state;
}

std::string dumpFile(const fs::path& folder, int step, const char* name) {
  char dir[16];
  std::snprintf(dir, sizeof dir, "%08d", step);
  return marvtest::readText(folder / "dump" / dir / name);
}

void expectRestartContinues(const char* example, const std::string& extra, std::initializer_list<const char*> fields,
                            bool sameInfo) {
  const fs::path whole = project(example, extra), parts = project(example, extra);
  EXPECT_EQ(run(whole, 0, 30).stepsTaken, 31);
  run(parts, 0, 20);
  EXPECT_EQ(run(parts, 10, 30).stepsTaken, 21) << "the restart runs steps 10 to 30";
  for (const char* name : fields) {
    const std::string a = dumpFile(whole, 30, name), b = dumpFile(parts, 30, name);
    EXPECT_FALSE(a.empty()) << example << " " << name;
    EXPECT_TRUE(a == b) << example << " " << name << " differs after the restart";
  }
  if (sameInfo) {
    EXPECT_EQ(dumpFile(whole, 30, "info.txt"), dumpFile(parts, 30, "info.txt")) << example;
  }
  fs::remove_all(whole);
  fs::remove_all(parts);
}

TEST(Restart, AdaptiveConstantDensityRunContinuesBitForBit) {
  expectRestartContinues("cavity2d", "992:parallel 0\n993:nfile 10\n994:nfig 0\n", {"ufld.raw", "vfld.raw", "pfld.raw"},
                         false);
}

// With deltat given, the restart keeps the parameter's step instead of the
// seven digits of info.txt, so that the time runs on exactly; the step here
// has more digits than info.txt keeps.
TEST(Restart, FixedStepVariableDensityRunContinuesBitForBit) {
  expectRestartContinues("thermo2d", "992:parallel 0\n993:nfile 10\n994:nfig 0\n995:deltat 4.87654321e-4\n",
                         {"ufld.raw", "vfld.raw", "pfld.raw", "rfld.raw", "tfld.raw"}, true);
}

}  // namespace
