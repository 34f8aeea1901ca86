// What a step of the run writes, and the restart read.
#include "result/stepResults.h"

#include <cstdio>
#include <ctime>

#include "layer/layer.h"
#include "project/vizFile.h"
#include "result/dumpFiles.h"
#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"

namespace marv {

namespace {

// An interval of 0 or below turns its output off; step 0 and the last step
// are covered by their own tests.
bool onInterval(int ts, int interval) { return interval > 0 && ts % interval == 0; }

// The saved rectangle leaves out the status strip at the foot of the window.
int saveScreen(const appConfig& cfg, const char* path) {
  return saveScreenJpeg(0, 0, cfg.screenWidth - 1, cfg.screenHeight - cfg.textHeight - cfg.textGap, path, 80, 1);
}

}  // namespace

void saveSnapshot(const appConfig& cfg) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y%m%d_%H.%M.%S", &local);
  char path[96];
  std::snprintf(path, sizeof path, "./figs/snapshot_%08d_%s.jpg", cfg.ts, stamp);
  saveScreen(cfg, path);
}

void writeStepResults(appConfig& cfg, fieldViews& views) {
  if (cfg.ts > cfg.latts) return;
  if (cfg.sts >= 1 && cfg.ts == cfg.sts) return;
  // Analysis mode shows stored dumps: it never writes over them.
  if (cfg.analysisMode) return;
  const bool probeLines = writeProbes(cfg, views);
  const bool forceLine = writeForce(cfg);
  const bool heatLine = writeHeatLoss(cfg);
  const bool ends = cfg.ts == 0 || cfg.ts == cfg.latts;
  if (ends || onInterval(cfg.ts, cfg.nfig) || onInterval(cfg.ts, cfg.nfile) || probeLines || forceLine || heatLine)
    syncViz(cfg, 1);
  if (ends || onInterval(cfg.ts, cfg.nfig)) {
    char path[64];
    std::snprintf(path, sizeof path, "./figs/%08d.jpg", cfg.ts);
    saveScreen(cfg, path);
  }
  if (!ends && !onInterval(cfg.ts, cfg.nfile)) return;
  writeDump(cfg, views);
}

int readDump(appConfig& cfg, fieldViews& views, int step) { return readDumpFields(cfg, views, step); }

}  // namespace marv
