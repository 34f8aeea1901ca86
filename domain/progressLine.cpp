// The progress line of domain construction. The window shows three bars;
// with progressToTerminal (the batch runner) the percentage also goes to
// stderr, once per whole per cent and only for grids large enough that the
// build takes a while.
#include "domain/progressLine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "layer/layer.h"

namespace marv {

namespace {

constexpr long long terminalNodes = 200000;  // smallest grid whose build is reported on the terminal [nodes]

const char* const rowFormats[3] = {"[%d] bmp/stl to polygon %.3d/100", "[%d] bc from stl        %.3d/100",
                                   "[%d] bc from bitmap     %.3d/100"};

int lastTerminalRow = -1;      // what the terminal line showed last
int lastTerminalPercent = -1;  // [%]

}  // namespace

void letWindowRun() {
  if (processMessages() == -1) {
    stopLayer();
    std::exit(0);
  }
}

void showProgress(appConfig& cfg, int row) {
  const int percent =
      std::clamp(static_cast<int>(std::min(100.0, 100.0 * cfg.progressCount / std::max(1, cfg.progressTotal))), 0, 100);
  // Screen sizes can stand at the ends of the 32-bit range for an extreme
  // domain: the layout is worked out in 64 bits and kept to a drawable range.
  auto fit = [](long long v) { return static_cast<int>(std::clamp(v, -(1LL << 24), 1LL << 24)); };
  const long long h = std::clamp(cfg.textHeight, 1, 1 << 16);
  const int rows = std::clamp(cfg.progressRows, 1, 3);
  const long long width = fit(cfg.sceneWidth);
  const long long height = fit(cfg.sceneHeight);
  const int left = fit(cfg.marginLeft);
  const long long barWidth = std::max(1LL, width - fit(cfg.marginLeft) - fit(cfg.marginRight));
  const long long top = (height - (rows * h + (rows - 1) * 2 * h)) / 2;
  for (int r = 0; r < rows; ++r) {
    const int value = r < row ? 100 : (r > row ? 0 : percent);
    const int y = fit(top + r * 3 * h);
    const int bottom = fit(top + r * 3 * h + h);
    drawBox(left, y, fit(left + barWidth), bottom, colour(220, 220, 220), 1);
    drawBox(left, y, fit(left + barWidth * value / 100), bottom, colour(90, 160, 230), 1);
    char text[64];
    std::snprintf(text, sizeof text, rowFormats[r], r + 1, value);
    drawText(fit((width - textWidth("%s", text)) / 2), y, text, colour(0, 0, 0), -1, 0, 0);
  }
  const long long nodes = static_cast<long long>(cfg.nx) * cfg.ny * cfg.nz;
  if (cfg.progressToTerminal != 0 && nodes >= terminalNodes &&
      (row != lastTerminalRow || percent != lastTerminalPercent)) {
    if (lastTerminalRow >= 0 && row != lastTerminalRow && lastTerminalPercent < 100) std::fputc('\n', stderr);
    std::fputc('\r', stderr);
    std::fprintf(stderr, rowFormats[std::clamp(row, 0, 2)], row + 1, percent);
    if (percent >= 100) std::fprintf(stderr, "\n");
    lastTerminalRow = row;
    lastTerminalPercent = percent;
  }
  if (cfg.progressCount < 2147483647) cfg.progressCount += 1;
  present();
  clearDrawTarget();
  letWindowRun();
}

}  // namespace marv
