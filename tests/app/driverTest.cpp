// The driver's pass without a screen: the step count, param.txt rewritten, passes that end early and their status.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "batchRun.h"
#include "project/parameterFile.h"
#include "testSupport.h"

namespace {

struct batchRun {
  int status = 0;
  marv::driverState state;
  std::string paramAfter;
};

batchRun runProject(const std::string& paramText, bool analysis = false, bool withParam = true) {
  auto folder = marvtest::scratchFolder("driver");
  if (withParam) marvtest::writeText(folder / "input" / "param.txt", paramText);
  batchRun run;
  const auto before = std::filesystem::current_path();
  run.status = marvtest::runBatch(folder, run.state, analysis);
  EXPECT_EQ(std::filesystem::current_path(), before) << "a pass ends in its start folder";
  run.paramAfter = marvtest::readText(folder / "input" / "param.txt");
  std::filesystem::remove_all(folder);
  return run;
}

TEST(Driver, RunsFromStartStepToEndStepInclusiveAndRewritesParamTxtInItsOwnFormat) {
  for (int latts : {-1, 0, 17}) {
    SCOPED_TRACE(latts);
    const batchRun run =
        runProject("// mine\n1:nx 5\n2:ny 5\n3:cmode 1.7\n4:deltat 0.5\n5:latts " + std::to_string(latts) + "\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.state.stepsTaken, latts + 1);
    if (latts >= 0) {
      EXPECT_DOUBLE_EQ(run.state.endTime, 0.5 * (latts + 1));
    }
    EXPECT_TRUE(run.paramAfter.starts_with("//======"));
    EXPECT_NE(run.paramAfter.find("003:cmode                                   1  // "), std::string::npos)
        << "a choice is written as its option number";
    EXPECT_EQ(run.paramAfter.find("// mine"), std::string::npos);
  }
}

TEST(Driver, EarlyEndsGiveNonZeroStatus) {
  EXPECT_NE(runProject("", false, false).status, 0) << "no param.txt";
  EXPECT_NE(runProject("1:nx 5\n2:ny 5\n3:sts 10\n").status, 0) << "no restart dump";
  EXPECT_NE(runProject("1:nx 5\n2:ny 5\n", true).status, 0) << "no dump to show";
  marv::driverState state;
  EXPECT_NE(marvtest::runBatch("/nonexistent/project", state), 0);
}

}  // namespace
