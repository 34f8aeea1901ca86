// The status numbers: the exact panel and title lines, the remaining time, the smoothed step time.
#include <gtest/gtest.h>

#include <tuple>

#include "scene/statusPanel.h"

namespace {

using namespace marv;

std::tuple<int, int, int> hms(const remainingTime& t) { return {t.hours, t.minutes, t.seconds}; }

TEST(StatusText, PanelLinesKeepTheirColumns) {
  char line[512];
  formatStatusLine1(line, sizeof line, "|U| (m/s)", 12, 3, 2, 1, 1);
  EXPECT_STREQ(line, "*|U| (m/s)    | CPU:     12+3    ms/step | PL: 02-01-01");
  formatStatusLine1(line, sizeof line, "div(U) x dt and more", 1234567, 12345, 10, 2, 3);
  EXPECT_STREQ(line, "*div(U) x dt and more | CPU: 1234567+12345 ms/step | PL: 10-02-03") << "long texts only push";
  formatStatusLine2(line, sizeof line, 1.5, 42, 7, 1.25e-6);
  EXPECT_STREQ(line, "1.5000e+00 s | 000042 steps | 007 iters | 1.250e-06 er");
  formatStatusLine2(line, sizeof line, 0.0, 1234567, 1000, -1.0e10);
  EXPECT_STREQ(line, "0.0000e+00 s | 1234567 steps | 1000 iters | -1.000e+10 er");
}

TEST(StatusText, TitleLineAndRemainingTime) {
  const remainingTime left = timeLeft(1000, 0, 3723);  // 3723 s
  EXPECT_EQ(hms(left), std::tuple(1, 2, 3));
  char line[1024];
  formatTitleLine(line, sizeof line, "Marvanesse+ (2021R3.0) | cyl | Simulation Mode", 1.0e-3, 0.25, 3723, left);
  EXPECT_STREQ(line,
               "Marvanesse+ (2021R3.0) | cyl | Simulation Mode | dt:1.00e-03 s | max{CFL}:0.25 | CPU:3723 ms | "
               "Remaining:01h:02m:03s");

  EXPECT_EQ(hms(timeLeft(10, 12, 1000)), std::tuple(0, 0, -2)) << "two steps beyond the end";

  // 3e9 ms does not fit the 32-bit product: it wraps to -1294967296 ms.
  EXPECT_EQ(hms(timeLeft(3000000, 0, 1000)), std::tuple(-359, (-1294967 % 3600) / 60, -1294967 % 60));
}

TEST(StatusText, StepTimeIsSmoothedOnlyWhileRunning) {
  appConfig cfg;
  cfg.sts = 100;
  cfg.solveStartMs = 1000, cfg.solveEndMs = 1030, cfg.drawEndMs = 1040;  // 30 + 10 ms
  cfg.stepMsSmoothed = 5.0;
  cfg.ts = 101;
  smoothStepTime(cfg);
  EXPECT_EQ(cfg.stepMsSmoothed, 40.0) << "the first step after the start takes the raw sum";
  cfg.ts = 102;
  cfg.solveEndMs = 1009, cfg.drawEndMs = 1010;  // 9 + 1 ms
  smoothStepTime(cfg);
  EXPECT_DOUBLE_EQ(cfg.stepMsSmoothed, (20.0 * 40.0 + 10.0) / 21.0);
  const double before = cfg.stepMsSmoothed;
  for (int* held : {&cfg.quitPromptFlag, &cfg.showHelpShortcutFlag, &cfg.inputBusy, &cfg.panelBusy}) {
    *held = 1;
    smoothStepTime(cfg);
    EXPECT_EQ(cfg.stepMsSmoothed, before);
    *held = 0;
  }
}

}  // namespace
