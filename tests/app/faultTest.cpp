// Faults a user meets under the batch runner, each of which must end with a
// non-zero status and leave nothing wrong behind: a flow that diverges, a
// dump write that fails or is killed part-way.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/batchStages.h"
#include "app/driver.h"
#include "testSupport.h"

namespace {

namespace fs = std::filesystem;

// A copy of the lid-driven cavity example whose parameters are replaced by
// the given lines (the bitmap stays).
fs::path cavityProject(const std::string& name, const std::string& paramText) {
  const fs::path folder = marvtest::scratchFolder(name);
  fs::copy(fs::path(MARV_TEST_DATA) / ".." / ".." / "examples" / "cavity2d" / "input", folder / "input",
           fs::copy_options::recursive);
  marvtest::writeText(folder / "input" / "param.txt", paramText);
  return folder;
}

int runBatch(const fs::path& folder, marv::driverState& state) {
  marv::batchOptions options;
  options.projectDir = folder.string();
  options.quiet = true;
  return marv::runDriver(marv::batchStages(options), state);
}

std::vector<double> readDoubles(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::vector<double> values;
  double v = 0.0;
  while (in.read(reinterpret_cast<char*>(&v), sizeof v)) values.push_back(v);
  return values;
}

const char* cavityLines = "1:nx 33\n2:ny 33\n3:lx 1\n4:ly 1\n5:mu 0.01\n6:rhow 1\n7:uinb 1\n8:nfig 0\n";

TEST(Divergence, EndsBeforeTheLastStepAndKeepsOnlyFiniteDumps) {
  // A time step ten times the grid's convective limit blows up in a few steps.
  const fs::path folder =
      cavityProject("diverge", std::string(cavityLines) + "9:deltat 0.1\n10:latts 200\n11:nfile 2\n");
  marv::driverState state;
  EXPECT_NE(runBatch(folder, state), 0);
  EXPECT_GT(state.stepsTaken, 0);
  EXPECT_LT(state.stepsTaken, 201) << "the run stops when the flow diverges";
  EXPECT_FALSE(fs::exists(folder / "dump" / "00000200"));
  int dumps = 0;
  for (const auto& entry : fs::directory_iterator(folder / "dump")) {
    if (!entry.is_directory()) continue;
    ++dumps;
    for (const char* name : {"ufld.raw", "vfld.raw", "pfld.raw"}) {
      const std::vector<double> values = readDoubles(entry.path() / name);
      ASSERT_EQ(values.size(), 33u * 33u) << entry.path() << name;
      for (double v : values) ASSERT_TRUE(std::isfinite(v)) << entry.path() << "/" << name;
    }
  }
  EXPECT_GE(dumps, 1) << "the dump of step 0 stays";
  fs::remove_all(folder);
}

TEST(Divergence, AStableRunEndsNormally) {
  const fs::path folder = cavityProject("stable", std::string(cavityLines) + "9:latts 20\n10:nfile 10\n");
  marv::driverState state;
  EXPECT_EQ(runBatch(folder, state), 0);
  EXPECT_EQ(state.stepsTaken, 21);
  EXPECT_TRUE(fs::exists(folder / "dump" / "00000020" / "ufld.raw"));
  fs::remove_all(folder);
}

}  // namespace
