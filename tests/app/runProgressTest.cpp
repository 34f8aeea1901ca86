// The batch runner's progress line: its fields, the time left, and the throttling of plain lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/runProgress.h"

namespace {

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
