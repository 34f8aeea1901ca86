// The status panel and the title line.
#include "scene/statusPanel.h"

#include <cstdio>

#include "scene/colourScale.h"

namespace marv {

// The status formats are the program's own texts and stay as they are,
// although their "0" flags have no effect next to a precision.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"

void formatStatusLine1(char* out, std::size_t size, const char* label, int solveMs, int drawMs, int npx, int npy,
                       int npz) {
  std::snprintf(out, size, "*%-12s | CPU: %6d+%-4d ms/step | PL: %0.2d-%0.2d-%0.2d", label, solveMs, drawMs, npx, npy,
                npz);
}

void formatStatusLine2(char* out, std::size_t size, double time, int ts, int iterations, double residual) {
  std::snprintf(out, size, "%.4e s | %0.6d steps | %.3d iters | %.3e er", time, ts, iterations, residual);
}

#pragma GCC diagnostic pop

remainingTime timeLeft(int latts, int ts, int cpuMs) {
  // The product wraps as a 32-bit integer does; it is only shown.
  const auto steps = static_cast<unsigned>(latts - ts);
  const int product = static_cast<int>(steps * static_cast<unsigned>(cpuMs));
  const double remaining = product / 1000.0;
  const int t = static_cast<int>(remaining);
  remainingTime left;
  left.hours = static_cast<int>(remaining / 3600.0);
  left.minutes = (t % 3600) / 60;
  left.seconds = t % 60;
  return left;
}

void formatTitleLine(char* out, std::size_t size, const char* title, double deltat, double maxCfl, int cpuMs,
                     const remainingTime& left) {
  std::snprintf(out, size, "%s | dt:%.2e s | max{CFL}:%.2f | CPU:%d ms | Remaining:%02dh:%02dm:%02ds", title, deltat,
                maxCfl, cpuMs, left.hours, left.minutes, left.seconds);
}

void smoothStepTime(appConfig& cfg) {
  const double solveMs = cfg.solveEndMs - cfg.solveStartMs;
  const double drawMs = cfg.drawEndMs - cfg.solveEndMs;
  const bool held = cfg.quitPromptFlag || cfg.showHelpShortcutFlag || cfg.inputBusy || cfg.panelBusy;
  if (cfg.ts == cfg.sts + 1)
    cfg.stepMsSmoothed = solveMs + drawMs;
  else if (!held)
    cfg.stepMsSmoothed = (20.0 * cfg.stepMsSmoothed + solveMs + drawMs) / 21.0;
}

void drawStatus(sceneView& scene, appConfig& cfg) {
  const sceneColours& c = scene.colours;
  const int gap = cfg.textGap / 2;
  const int barWidth = colourBarWidth();
  const int starWidth = textWidthInFont(cfg.fixedBold, "*");
  formatStatusLine2(scene.statusLine2, sizeof scene.statusLine2, cfg.time, cfg.ts, cfg.presIterations,
                    cfg.presResidual);
  const int total = 10 * gap + textWidthInFont(cfg.fixedBold, "%s", scene.statusLine2) + barWidth;
  const int barX = (cfg.domPixW - total) / 2 + cfg.textHeight / 2;
  const int barY = cfg.domPixH + cfg.marginTop + 4 * gap;

  setBlend(1, 128);
  drawBox(barX - cfg.textGap, barY - cfg.textGap, barX + total + cfg.textGap, cfg.screenHeight, c.white, 1);
  drawBox(0, 0, cfg.screenWidth, cfg.captionSize + 1, c.white, 1);
  setBlend(0, 0);
  drawColourBar(scene, cfg, barX, barY, barWidth);

  const int solveMs = cfg.solveEndMs - cfg.solveStartMs;
  const int drawMs = cfg.drawEndMs - cfg.solveEndMs;
  formatStatusLine1(scene.statusLine1, sizeof scene.statusLine1, scene.quantityLabel, solveMs, drawMs, cfg.npx, cfg.npy,
                    cfg.npz);
  const int textX = barX + barWidth + 10 * gap;
  drawText(textX - starWidth, barY, scene.statusLine1, c.black, cfg.fixedBold, c.white, 0);
  drawText(textX, barY + cfg.textHeight + gap, scene.statusLine2, c.black, cfg.fixedBold, c.white, 0);

  smoothStepTime(cfg);
  const int cpu = static_cast<int>(cfg.stepMsSmoothed);
  const remainingTime left = timeLeft(cfg.latts, cfg.ts, cpu);
  formatTitleLine(scene.titleLine, sizeof scene.titleLine, scene.windowTitle ? scene.windowTitle->c_str() : "",
                  cfg.deltat, cfg.maxCfl, cpu, left);
  const int titleWidth = textWidthInFont(cfg.fontCaption, "%s", scene.titleLine);
  drawText(static_cast<int>((cfg.screenWidth - titleWidth) * 0.5), 0, scene.titleLine, c.black, cfg.fontCaption, 0, 0);
}

}  // namespace marv
