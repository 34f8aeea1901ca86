// A run restarted from a dump leaves the same last dump, byte for byte, as the run that never stopped.
#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <string>

#include "batchRun.h"
#include "testSupport.h"

namespace {

namespace fs = std::filesystem;

// Runs an example's project in folder from sts to latts; the lines go behind
// the example's own, where a later line of a name wins.
marv::driverState run(const char* example, const fs::path& folder, const std::string& lines) {
  const fs::path param = folder / "input" / "param.txt";
  if (!fs::exists(param))
    fs::copy(fs::path(MARV_TEST_DATA) / ".." / ".." / "examples" / example / "input", param.parent_path());
  marvtest::writeText(param, marvtest::readText(param) + "\n" + lines);
  marv::driverState state;
  EXPECT_EQ(marvtest::runBatch(folder, state), 0) << folder << " " << lines;
  return state;
}

void expectRestartContinues(const char* example, const std::string& extra, std::initializer_list<const char*> files) {
  const fs::path whole = marvtest::scratchFolder(std::string("restart-") + example),
                 parts = marvtest::scratchFolder(std::string("restart-") + example);
  EXPECT_EQ(run(example, whole, extra + "990:sts 0\n991:latts 30\n").stepsTaken, 31);
  run(example, parts, extra + "990:sts 0\n991:latts 20\n");
  EXPECT_EQ(run(example, parts, "990:sts 10\n991:latts 30\n").stepsTaken, 21) << "the restart runs steps 10 to 30";
  for (const char* name : files) {
    const std::string a = marvtest::readText(whole / "dump" / "00000030" / name);
    EXPECT_FALSE(a.empty()) << example << " " << name;
    EXPECT_TRUE(a == marvtest::readText(parts / "dump" / "00000030" / name)) << example << " " << name << " differs";
  }
  fs::remove_all(whole);
  fs::remove_all(parts);
}

TEST(Restart, AdaptiveConstantDensityRunContinuesBitForBit) {
  expectRestartContinues("cavity2d", "992:parallel 0\n993:nfile 10\n994:nfig 0\n",
                         {"ufld.raw", "vfld.raw", "pfld.raw"});
}

// With deltat given, the restart keeps the parameter's step instead of the
// seven digits of info.txt, so that the time runs on exactly; the step here
// has more digits than info.txt keeps.
TEST(Restart, FixedStepVariableDensityRunContinuesBitForBit) {
  expectRestartContinues("thermo2d", "992:parallel 0\n993:nfile 10\n994:nfig 0\n995:deltat 4.87654321e-4\n",
                         {"ufld.raw", "vfld.raw", "pfld.raw", "rfld.raw", "tfld.raw", "info.txt"});
}

}  // namespace
