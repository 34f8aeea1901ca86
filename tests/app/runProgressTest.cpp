// The batch runner's progress line: its fields, the time left, and the
// throttling of plain lines.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "app/runProgress.h"

namespace {

TEST(RunProgress, ADivergedRunShowsNoResidual) {
  marv::appConfig cfg;
  cfg.latts = 1000;
  cfg.presResidual = 0.0;
  cfg.presIterations = 0;
  cfg.diverged = 1;
  cfg.divergedStep = 37;
  char line[256];
  marv::formatProgress(line, sizeof line, cfg, 36, 10.0);
  const std::string text = line;
  EXPECT_NE(text.find("DIVERGED at step 37"), std::string::npos) << text;
  EXPECT_EQ(text.find("residual"), std::string::npos) << text;
  EXPECT_EQ(text.find("sweeps"), std::string::npos) << text;
}

TEST(RunProgress, LineCarriesStepTimeResidualRateAndTimeLeft) {
  marv::appConfig cfg;
  cfg.latts = 1000;
  cfg.time = 0.5;
  cfg.deltat = 1e-3;
  cfg.presResidual = 2e-7;
  cfg.presIterations = 40;
  char line[256];
  marv::formatProgress(line, sizeof line, cfg, 100, 10.0);
  const std::string text = line;
  EXPECT_NE(text.find("step 100/1000"), std::string::npos) << text;
  EXPECT_NE(text.find("dt=1.000e-03"), std::string::npos) << text;
  EXPECT_NE(text.find("residual=2.000e-07"), std::string::npos) << text;
  EXPECT_NE(text.find("sweeps=40"), std::string::npos) << text;
  EXPECT_NE(text.find("left 0:01:30"), std::string::npos) << "900 steps at 10 per second: " << text;
  marv::formatProgress(line, sizeof line, cfg, 100, 0.0);
  EXPECT_NE(std::string(line).find("left --"), std::string::npos) << "no rate yet";
}

TEST(RunProgress, PlainLinesAreThrottledAndTheFinalOneAlwaysComes) {
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  marv::runProgress progress;
  marv::startProgress(progress, out, 0);
  EXPECT_FALSE(progress.terminal);
  marv::appConfig cfg;
  cfg.latts = 50;
  for (int ts = 0; ts <= 50; ++ts) {
    cfg.ts = ts;
    marv::reportProgress(progress, cfg, ts * 10, false);  // 10 ms per step
  }
  cfg.ts = 51;
  marv::reportProgress(progress, cfg, 510, true);
  std::rewind(out);
  int lines = 0;
  std::string last;
  char buffer[512];
  while (std::fgets(buffer, sizeof buffer, out)) {
    ++lines;
    last = buffer;
  }
  std::fclose(out);
  EXPECT_EQ(lines, 2) << "first line, then the final one within the interval";
  EXPECT_EQ(last.rfind("step 50/50", 0), 0u) << last;
}

}  // namespace
