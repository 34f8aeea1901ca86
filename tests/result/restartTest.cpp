// A run restarted from its dump continues as if it had never stopped: the
// fields at the end agree bit for bit with those of an uninterrupted run,
// for the constant- and the variable-density solver.
#include <gtest/gtest.h>

#include <filesystem>

#include "result/stepResults.h"
#include "scene/velocityStatistics.h"
#include "testSupport.h"
#include "tests/solver/cavityCase.h"
#include "tests/solver/thermoCase.h"

namespace marv {
namespace {

fieldViews viewsOf(solverCommon& s, const appConfig& cfg) {
  fieldViews v{};
  for (int i : {1, 2, 3, 4, 6, 8, 9, 10, 11}) v[i] = *s.field(i);
  if (cfg.cmode == 1) v[0] = *s.field(0), v[5] = *s.field(5);
  return v;
}

// Runs a case through the loop of the driver from sts to latts: results
// written before each solve, the adaptive step from step 10 on.
template <class Case>
void runLoop(Case& c, int sts, int latts) {
  fieldViews views = viewsOf(*c.solver, c.cfg);
  c.cfg.sts = sts;
  c.cfg.latts = latts;
  if (sts != 0) {
    ASSERT_EQ(readDump(c.cfg, views, sts), 1);
  }
  for (c.cfg.ts = sts; c.cfg.ts <= latts; ++c.cfg.ts) {
    if (!c.cfg.fixedDeltat && c.cfg.ts >= 10)
      c.cfg.deltat = adaptiveDeltat(c.cfg.cfl, c.cfg.dx, c.cfg.dy, scanVelocity(views[1], views[2], views[3]));
    writeStepResults(c.cfg, views);
    c.solver->step();
    c.cfg.time += c.cfg.deltat;
  }
}

template <class Case>
void expectSameFields(Case& a, Case& b) {
  for (int index : {0, 1, 2, 3, 4, 5, 6}) {
    const array3d<double>* fa = a.solver->field(index);
    const array3d<double>* fb = b.solver->field(index);
    if (fa == nullptr) continue;
    ASSERT_EQ(fa->count(), fb->count());
    for (int n = 0; n < fa->count(); ++n) ASSERT_EQ((*fa)[n], (*fb)[n]) << "field " << index << " at n=" << n;
  }
  EXPECT_NEAR(a.cfg.time, b.cfg.time, 1e-6 * a.cfg.time) << "info.txt keeps seven digits of the time";
}

TEST(Restart, ConstantDensityRunContinuesBitForBit) {
  auto folder = marvtest::scratchFolder("restart");
  marvtest::inFolder here(folder);
  std::filesystem::create_directories("dump"), std::filesystem::create_directories("input");
  testing::cavityCase whole(17, 100.0);
  whole.cfg.nfile = 10;
  runLoop(whole, 0, 30);

  std::filesystem::remove_all("dump");
  std::filesystem::create_directory("dump");
  testing::cavityCase first(17, 100.0);
  first.cfg.nfile = 10;
  runLoop(first, 0, 20);
  testing::cavityCase resumed(17, 100.0);
  resumed.cfg.nfile = 10;
  runLoop(resumed, 10, 30);
  expectSameFields(whole, resumed);
}

TEST(Restart, VariableDensityRunContinuesBitForBit) {
  auto folder = marvtest::scratchFolder("restartThermo");
  marvtest::inFolder here(folder);
  std::filesystem::create_directories("dump"), std::filesystem::create_directories("input");
  testing::heatedCavity whole(13, 1e4, 0.71);
  whole.cfg.nfile = 25;
  runLoop(whole, 0, 60);
  testing::heatedCavity first(13, 1e4, 0.71);
  first.cfg.nfile = 25;
  runLoop(first, 0, 50);
  testing::heatedCavity resumed(13, 1e4, 0.71);
  runLoop(resumed, 50, 60);
  expectSameFields(whole, resumed);
}

}  // namespace
}  // namespace marv
