// The driver's pass without a screen: step count, param.txt rewritten, early ends, the run from the keyboard.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "app/batchStages.h"
#include "app/driver.h"
#include "app/runProgress.h"
#include "batchRun.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using namespace marv;

struct cycleSeen {
  int ts;
  double time;
  int held;  // the quit prompt was up
  int sts;   // the dump shown in Analysis mode
};

std::vector<inputFrame> plan;  // one frame per cycle, then the window closes
std::vector<cycleSeen> seen;

void followPlan(appConfig& cfg, bool final) {
  if (final) return;
  if (seen.empty()) cfg.lastKeyMs = nowMs() - cfg.keyDelayMs - 1;  // the keys of the screens are long up
  seen.push_back({cfg.ts, cfg.time, cfg.quitPromptFlag, cfg.sts});
  inputFrame next = seen.size() <= plan.size() ? plan[seen.size() - 1] : inputFrame{};
  next.closeWindow = seen.size() > plan.size();
  setInputScript({next}, false);
}

inputFrame holding(std::vector<int> keys) { return marvtest::frameAt(300, 300, 0, std::move(keys)); }

std::vector<inputFrame> idle(int n) { return std::vector<inputFrame>(n, holding({})); }

// Idle frames, then each key held for a frame and followed by its idle frames.
std::vector<inputFrame> keyScript(int rest, std::initializer_list<std::pair<int, int>> keysAndRests) {
  std::vector<inputFrame> frames = idle(rest);
  for (auto [key, after] : keysAndRests) marvtest::append(frames, marvtest::join({{holding({key})}, idle(after)}));
  return frames;
}

int runWithPlan(const std::filesystem::path& folder, bool analysis, std::vector<inputFrame> frames,
                driverState& state) {
  plan = std::move(frames);
  seen.clear();
  passStages stages = batchStages({.projectDir = folder.string(), .analysis = analysis, .quiet = true});
  stages.runStep = followPlan;
  const int status = runDriver(stages, state);
  stopLayer();
  return status;
}

TEST(heldRun, theQuitPromptHoldsStepAndTimeUntilCancelledAndQEndsTheRun) {
  const auto folder = marvtest::scratchFolder("held");
  marvtest::writeText(folder / "input" / "param.txt", "1:nx 5\n2:ny 5\n3:latts 100000\n4:deltat 0.5\n");
  driverState state;
  runWithPlan(folder, false, keyScript(3, {{keyEsc, 8}, {keyEnter, 3}, {keyEsc, 1}, {keyQ, 5}}), state);
  // plan[i] is read in cycle i + 1: 0..3 step, 4 raises the prompt, 4..12 held, 13 cancels with Enter.
  ASSERT_EQ(seen.size(), 20u) << "no cycle after the one that saw Q";
  for (int c = 4; c <= 12; ++c) {
    SCOPED_TRACE(c);
    EXPECT_EQ(seen[c].held, 1);
    EXPECT_EQ(seen[c].time, 2.0) << "time stands while the prompt is up";
    EXPECT_EQ(seen[c].ts, seen[4].ts) << "and so does the step";
  }
  EXPECT_EQ(seen[13].held, 0) << "Enter cancelled the prompt";
  EXPECT_EQ(seen[13].time, 2.5) << "and the run went on";
  EXPECT_EQ(seen[13].ts, seen[4].ts + 1);
  // Esc again in cycle 17, Q in 19: the run ends there, far before latts.
  EXPECT_EQ(seen[18].held, 1);
  EXPECT_EQ(state.stepsTaken, 8);
  std::filesystem::remove_all(folder);
}

TEST(heldRun, analysisShowsTheNewestDumpAndItsArrowsStepWithoutWrappingAroundOrWriting) {
  const auto folder = marvtest::scratchFolder("stepping");
  marvtest::writeText(folder / "input" / "param.txt", "1:nx 5\n2:ny 5\n3:latts 25\n4:nfile 10\n5:deltat 0.1\n");
  driverState simulation;
  plan.clear();
  ASSERT_EQ(marvtest::runBatch(folder, simulation), 0);
  const auto stamp = std::filesystem::last_write_time(folder / "dump" / "00000025" / "ufld.raw");
  const std::string param = marvtest::readText(folder / "input" / "param.txt");
  driverState analysis;
  // Left four times, then right four times, two idle frames between.
  const std::pair<int, int> left{keyLeft, 2}, right{keyRight, 2};
  EXPECT_EQ(runWithPlan(folder, true, keyScript(2, {left, left, left, left, right, right, right, right}), analysis), 0);
  std::vector<int> shown;
  for (const cycleSeen& c : seen)
    if (shown.empty() || shown.back() != c.sts) shown.push_back(c.sts);
  EXPECT_EQ(shown, (std::vector<int>{25, 20, 10, 0, 10, 20, 25}))
      << "the newest first; left stops at the oldest and right at the newest";
  EXPECT_EQ(analysis.stepsTaken, 0);
  EXPECT_EQ(marvtest::readText(folder / "input" / "param.txt"), param) << "not rewritten";
  EXPECT_EQ(std::filesystem::last_write_time(folder / "dump" / "00000025" / "ufld.raw"), stamp);
  // Lower latts: the newest dump at or below latts + 99 is still found.
  marvtest::writeText(folder / "input" / "param.txt", "1:nx 5\n2:ny 5\n3:latts 0\n");
  EXPECT_EQ(runWithPlan(folder, true, {}, analysis), 0);
  std::filesystem::remove_all(folder);
}

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

std::string progressLine(const marv::appConfig& cfg, int ts, double rate) {
  char line[256];
  marv::formatProgress(line, sizeof line, cfg, ts, rate);
  return line;
}

TEST(RunProgress, LineCarriesStepTimeResidualRateAndTimeLeftButNoResidualOnceDiverged) {
  marv::appConfig cfg;
  cfg.latts = 1000, cfg.time = 0.5, cfg.deltat = 1e-3, cfg.presResidual = 2e-7, cfg.presIterations = 40;
  const std::string text = progressLine(cfg, 100, 10.0);
  for (const char* part : {"step 100/1000", "dt=1.000e-03", "residual=2.000e-07", "sweeps=40", "left 0:01:30"})
    EXPECT_NE(text.find(part), std::string::npos) << part << " (900 steps at 10 per second) in " << text;
  EXPECT_NE(progressLine(cfg, 100, 0.0).find("left --"), std::string::npos) << "no rate yet";
  cfg.presResidual = 0.0, cfg.presIterations = 0, cfg.diverged = 1, cfg.divergedStep = 37;
  const std::string diverged = progressLine(cfg, 36, 10.0);
  EXPECT_NE(diverged.find("DIVERGED at step 37"), std::string::npos) << diverged;
  for (const char* gone : {"residual", "sweeps"}) EXPECT_EQ(diverged.find(gone), std::string::npos) << diverged;
}

TEST(RunProgress, PlainLinesAreThrottledAndTheFinalOneAlwaysComes) {
  char* data = nullptr;
  std::size_t size = 0;
  std::FILE* out = open_memstream(&data, &size);
  marv::runProgress progress;
  marv::startProgress(progress, out, 0);
  EXPECT_FALSE(progress.terminal);
  marv::appConfig cfg;
  cfg.latts = 50;
  for (cfg.ts = 0; cfg.ts <= 50; ++cfg.ts) marv::reportProgress(progress, cfg, cfg.ts * 10, false);  // 10 ms a step
  marv::reportProgress(progress, cfg, 510, true);
  std::fclose(out);
  const std::string text(data, size);
  std::free(data);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << "first line, then the final one within the interval";
  EXPECT_NE(text.find("\nstep 50/50"), std::string::npos) << text;
}

}  // namespace
