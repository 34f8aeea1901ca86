// The frame's numbers without a screen: quantities, statistics, time step, divergence, the status texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "domain/bcDomain.h"
#include "scene/quantities.h"
#include "scene/sceneView.h"
#include "scene/statusPanel.h"
#include "scene/velocityStatistics.h"
#include "testGrid.h"

namespace {

using namespace marv;

// A 2D case of nx x ny nodes over 1 x 1 m with its own fields and views.
struct smallCase {
  appConfig cfg;
  bcDomain domain;
  sceneView scene;
  ownedArray3d<double> u, v, w, p, y, display, a, b, c, rho, t;
  fieldViews views{};
  smallCase(int nx, int ny, bool thermo = false) {
    marv::testing::setGrid(cfg, nx, ny, 1);
    constructDomain(domain, cfg);
    for (auto* f : {&u, &v, &w, &p, &y, &display, &a, &b, &c}) *f = ownedArray3d<double>(nx, ny, 1);
    views[fieldU] = u, views[fieldV] = v, views[fieldW] = w, views[fieldP] = p, views[fieldY] = y;
    views[viewDisplay] = display, views[viewWorkA] = a, views[viewWorkB] = b, views[viewWorkC] = c;
    if (thermo) {
      cfg.cmode = 1;
      rho = ownedArray3d<double>(nx, ny, 1);
      t = ownedArray3d<double>(nx, ny, 1);
      views[fieldRho] = rho, views[fieldT] = t;
    }
    constructScene(scene, cfg, domain);
  }
  // fn(i, j, x, y) on every node.
  template <class F>
  void each(F fn) {
    for (int j = 0; j < cfg.ny; ++j)
      for (int i = 0; i < cfg.nx; ++i) fn(i, j, cfg.xCoord[i], cfg.yCoord[j]);
  }
  void show(int quantity) {
    cfg.dispQuantFlag = quantity;
    extractQuantity(scene, cfg, views);
  }
};

TEST(FrameQuantities, SecondInvariantOfASolidRotationAndAPureStrain) {
  // u = -w0 y, v = w0 x: Q = 0.5 w0^2 everywhere, one-sided differences included (linear fields).
  smallCase k(9, 7);
  k.each([&](int i, int j, double x, double y) { k.u(i, j, 0) = -3.0 * y, k.v(i, j, 0) = 3.0 * x; });
  k.show(9);
  EXPECT_STREQ(k.scene.quantityLabel, "Q (1/s)");
  EXPECT_NEAR(k.display(4, 3, 0), 4.5, 1e-9);
  EXPECT_NEAR(k.display(0, 6, 0), 4.5, 1e-9);
  // A pure strain u = x, v = -y has Q = 0.5 (u_x v_y) = -0.5: cut to 0.
  k.each([&](int i, int j, double x, double y) { k.u(i, j, 0) = x, k.v(i, j, 0) = -y; });
  k.show(9);
  EXPECT_EQ(k.display(4, 3, 0), 0.0);
}

TEST(FrameQuantities, DivergenceTimesTheStepInBothModes) {
  smallCase k(6, 5);
  k.cfg.deltat = 0.01;
  k.each([&](int i, int j, double x, double y) { k.u(i, j, 0) = 2.0 * x, k.v(i, j, 0) = 0.5 * y; });
  k.show(10);
  EXPECT_NEAR(k.display(3, 2, 0), 2.5 * 0.01, 1e-12);
  // Thermo-fluid: the mass flux over the mean density. rho = 2 + x with u = 1: d(rho u)/dx = 1, over rhow = 4.
  smallCase m(6, 5, true);
  m.cfg.deltat = 0.1, m.cfg.rhow = 4.0;
  m.each([&](int i, int j, double x, double) { m.rho(i, j, 0) = 2.0 + x, m.u(i, j, 0) = 1.0; });
  m.show(10);
  EXPECT_NEAR(m.display(2, 2, 0), 0.1 / 4.0, 1e-12);
}

TEST(FrameQuantities, CopiesAndFallBacks) {
  smallCase k(4, 4);
  fill<double>(k.p, 7.0);
  k.p(1, 1, 0) = 9.0;
  k.show(8);
  EXPECT_EQ(k.display(1, 1, 0), 9.0);
  EXPECT_EQ(std::pair(k.scene.valueMin, k.scene.valueMax), std::pair(7.0, 9.0));
  // Density in a constant-density run: speed from the next frame on, and this frame keeps the range it had.
  k.show(1);
  EXPECT_EQ(k.cfg.dispQuantFlag, 5);
  EXPECT_EQ(k.scene.valueMax, 9.0);
  fill<double>(k.u, 3.0);
  fill<double>(k.v, 4.0);
  k.show(5);
  EXPECT_EQ(k.display(2, 3, 0), 5.0);
  k.show(42);
  EXPECT_STREQ(k.scene.quantityLabel, " ") << "an unknown quantity shows nothing";
  EXPECT_EQ(k.display(2, 3, 0), 0.0);
}

TEST(FrameTimeStep, AdaptiveDeltatFromTheFramesPeaks) {
  smallCase k(5, 5);  // dx = dy = 0.25
  k.cfg.cfl = 0.3, k.cfg.deltat = 0.123;
  fill<double>(k.u, 1.0);
  k.u(2, 2, 0) = -2.0;  // peakU 2 by magnitude
  k.v(1, 3, 0) = 0.5;
  k.cfg.ts = 9;
  drawFrame(k.scene, k.cfg, k.views, 1);
  EXPECT_EQ(k.cfg.deltat, 0.123) << "the first ten steps keep the step of the parameters";
  EXPECT_NEAR(k.cfg.maxCfl, 0.123 * std::max(2.0 / 0.25, 0.5 / 0.25), 1e-12);
  k.cfg.ts = 10;
  drawFrame(k.scene, k.cfg, k.views, 1);
  EXPECT_NEAR(k.cfg.deltat, 0.3 * std::min(0.25 / 2.0, 0.25 / 0.5), 1e-12);
  EXPECT_NEAR(k.cfg.maxCfl, 0.3, 1e-12) << "the step meets the target Courant number";
  k.cfg.fixedDeltat = 1, k.cfg.deltat = 0.5;
  drawFrame(k.scene, k.cfg, k.views, 1);
  EXPECT_EQ(k.cfg.deltat, 0.5) << "a given deltat is never adapted";
}

TEST(FrameTimeStep, ADivergedFieldKeepsTheNumbersFinite) {
  smallCase k(5, 5);
  k.cfg.cfl = 0.25, k.cfg.ts = 50;
  fill<double>(k.u, 1.0);
  k.u(1, 1, 0) = std::numeric_limits<double>::quiet_NaN();
  k.v(3, 3, 0) = std::numeric_limits<double>::infinity();
  drawFrame(k.scene, k.cfg, k.views, 1);
  EXPECT_NEAR(k.cfg.deltat, 0.25 * 0.25 / 1.0, 1e-12) << "the diverged nodes are left out of the peaks";
  EXPECT_EQ(k.scene.stats.nonFiniteNodes, 2) << "yet the run can tell that it diverged";
  EXPECT_TRUE(std::isfinite(k.cfg.maxCfl));
  // Nothing finite at all: the frame still draws and the step stays a number.
  fill<double>(k.u, std::numeric_limits<double>::quiet_NaN());
  drawFrame(k.scene, k.cfg, k.views, 1);
  EXPECT_TRUE(std::isfinite(k.cfg.deltat));
}

TEST(VelocityStatistics, PeaksStillFluidRoundingAndValuesThatAreNotFinite) {
  ownedArray3d<double> u(3, 2, 1), v(3, 2, 1), w;
  u(0, 0, 0) = -4.0;
  u(2, 1, 0) = 3.0;
  v(1, 1, 0) = 0.5;
  const marv::velocityStatistics s = marv::scanVelocity(u, v, w);
  // The negative extreme counts by magnitude; an empty w counts as 0.
  EXPECT_EQ((std::vector<double>{s.peakU, s.peakV, s.peakW, s.maxSpeed, s.minSpeed}),
            (std::vector<double>{4.0, 0.5, 0.0, 4.0, 0.0}));
  ownedArray3d<double> still(4, 4, 4);
  EXPECT_DOUBLE_EQ(marv::adaptiveDeltat(0.25, 0.1, 0.2, marv::scanVelocity(still, still, still)), 2500.0)
      << "still fluid";
  ownedArray3d<double> one(1, 1, 1);
  one(0, 0, 0) = 1.0 + 1e-12;
  EXPECT_EQ(marv::scanVelocity(one, one, one).peakU, 1.0) << "values are rounded to single precision";
  // max and min pass over NaN, so one NaN among calm values would otherwise look like a calm field.
  for (double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300}) {
    for (int component = 0; component < 3; ++component) {
      ownedArray3d<double> u(4, 3, 2), v(4, 3, 2), w(4, 3, 2);
      u(1, 1, 1) = 2.0;
      ownedArray3d<double>* fields[] = {&u, &v, &w};
      (*fields[component])(3, 2, 1) = bad;
      const marv::velocityStatistics s = marv::scanVelocity(u, v, w);
      EXPECT_FALSE(marv::peaksFinite(s)) << bad << " in component " << component;
    }
  }
}

// The statistics node by node, as the header defines them: values below 1e-18 count as 0, everything in single
// precision, nodes with a component that is not finite left out.
std::vector<double> plainStatistics(const std::vector<double>& u, const std::vector<double>& v,
                                    const std::vector<double>& w) {
  auto rounded = [](double x) { return static_cast<float>(std::fabs(x) < 1e-18 ? 0.0 : x); };
  float hiS = -1e20f, loS = 1e20f, hi[3] = {-1e20f, -1e20f, -1e20f}, lo[3] = {1e20f, 1e20f, 1e20f};
  int left = 0;
  for (std::size_t n = 0; n < u.size(); ++n) {
    const float c[3] = {rounded(u[n]), rounded(v[n]), w.empty() ? 0.0f : rounded(w[n])};
    if (!std::isfinite(c[0]) || !std::isfinite(c[1]) || !std::isfinite(c[2])) {
      ++left;
      continue;
    }
    const float speed2 = c[0] * c[0] + c[1] * c[1] + c[2] * c[2];
    hiS = std::max(hiS, speed2), loS = std::min(loS, speed2);
    for (int m = 0; m < 3; ++m) hi[m] = std::max(hi[m], c[m]), lo[m] = std::min(lo[m], c[m]);
  }
  if (left == static_cast<int>(u.size())) return {0, 0, 0, 0, 0, 0, 0, 0, double(left)};  // nothing to measure
  double maxSpeed = std::sqrt(double(hiS)), minSpeed = std::sqrt(double(loS));
  if (maxSpeed == minSpeed) minSpeed = 0.5 * maxSpeed;
  return {maxSpeed, minSpeed, hi[0], lo[0], hi[1], lo[1], hi[2], lo[2], double(left)};
}

// The scan takes nodes eight at a time and the rest one by one: every length, with and without w, a node that is
// not finite in either part, tiny values and zeros of both signs must give the statistics of the plain definition.
TEST(VelocityStatistics, EveryLengthAndEveryPositionOfABadNodeGiveThePlainStatistics) {
  const double pool[] = {0.75, -2.5, 1e-19, -0.0, 0.0, 3.25e-3, -1e-18, 7.0, -7.0, 2e-20, 1.0 + 1e-12, -0.125, 5e30};
  for (int count = 1; count <= 13; ++count)
    for (bool withW : {true, false})
      for (int badAt = -1; badAt < count; ++badAt) {
        ownedArray3d<double> u(count, 1, 1), v(count, 1, 1), w(withW ? count : 0, 1, 1);
        std::vector<double> pu(count), pv(count), pw(withW ? count : 0);
        for (int n = 0; n < count; ++n) {
          pu[n] = u(n, 0, 0) = pool[(3 * n + count) % 13];
          pv[n] = v(n, 0, 0) = pool[(5 * n + 1) % 13];
          if (withW) pw[n] = w(n, 0, 0) = pool[(7 * n + 2) % 13];
        }
        if (badAt >= 0) pv[badAt] = v(badAt, 0, 0) = badAt % 2 ? std::nan("") : -HUGE_VAL;
        const marv::velocityStatistics s = marv::scanVelocity(u, v, w);
        const std::vector<double> scanned = {
            s.maxSpeed, s.minSpeed, s.maxU, s.minU, s.maxV, s.minV, s.maxW, s.minW, double(s.nonFiniteNodes)};
        ASSERT_EQ(scanned, plainStatistics(pu, pv, pw)) << count << " nodes, w " << withW << ", bad at " << badAt;
      }
}

std::tuple<int, int, int> hms(const remainingTime& t) { return {t.hours, t.minutes, t.seconds}; }

TEST(StatusText, PanelAndTitleLinesKeepTheirColumnsAndTheRemainingTime) {
  char line[1024];
  formatStatusLine1(line, sizeof line, "|U| (m/s)", 12, 3, 2, 1, 1);
  EXPECT_STREQ(line, "*|U| (m/s)    | CPU:     12+3    ms/step | PL: 02-01-01");
  formatStatusLine1(line, sizeof line, "div(U) x dt and more", 1234567, 12345, 10, 2, 3);
  EXPECT_STREQ(line, "*div(U) x dt and more | CPU: 1234567+12345 ms/step | PL: 10-02-03") << "long texts only push";
  formatStatusLine2(line, sizeof line, 1.5, 42, 7, 1.25e-6);
  EXPECT_STREQ(line, "1.5000e+00 s | 000042 steps | 007 iters | 1.250e-06 er");
  formatStatusLine2(line, sizeof line, 0.0, 1234567, 1000, -1.0e10);
  EXPECT_STREQ(line, "0.0000e+00 s | 1234567 steps | 1000 iters | -1.000e+10 er");
  const remainingTime left = timeLeft(1000, 0, 3723);  // 3723 s
  EXPECT_EQ(hms(left), std::tuple(1, 2, 3));
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
  cfg.sts = 100, cfg.ts = 101, cfg.stepMsSmoothed = 5.0;
  cfg.solveStartMs = 1000, cfg.solveEndMs = 1030, cfg.drawEndMs = 1040;  // 30 + 10 ms
  smoothStepTime(cfg);
  EXPECT_EQ(cfg.stepMsSmoothed, 40.0) << "the first step after the start takes the raw sum";
  cfg.ts = 102, cfg.solveEndMs = 1009, cfg.drawEndMs = 1010;  // 9 + 1 ms
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
