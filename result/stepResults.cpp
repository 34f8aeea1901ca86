// What a step of the run writes, and the restart read.
#include "result/stepResults.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>

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
// A project folder without its figs folder gets one rather than losing the
// picture.
int saveScreen(const appConfig& cfg, const char* path) {
  std::error_code ignored;
  std::filesystem::create_directories("./figs", ignored);
  errno = 0;  // what the write leaves in errno names its failure
  return saveScreenJpeg(0, 0, cfg.screenWidth - 1, cfg.screenHeight - cfg.textHeight - cfg.textGap, path, 80, 1);
}

}  // namespace

bool saveSnapshot(appConfig& cfg) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y%m%d_%H.%M.%S", &local);
  char path[96];
  std::snprintf(path, sizeof path, "./figs/snapshot_%08d_%s.jpg", cfg.ts, stamp);
  if (saveScreen(cfg, path) == 0 || !layerDrawsPixels()) return true;
  reportWriteFailure(cfg, std::string(path) + ": " + std::strerror(errno != 0 ? errno : EIO));
  return false;
}

bool writeStepResults(appConfig& cfg, fieldViews& views) {
  if (cfg.ts > cfg.latts) return true;
  if (cfg.sts >= 1 && cfg.ts == cfg.sts) return true;
  // Analysis mode shows stored dumps: it never writes over them.
  if (cfg.analysisMode) return true;
  std::string failure;
  const bool probeLines = writeProbes(cfg, views);
  const bool forceLine = writeForce(cfg);
  const bool heatLine = writeHeatLoss(cfg);
  const bool ends = cfg.ts == 0 || cfg.ts == cfg.latts;
  if (ends || onInterval(cfg.ts, cfg.nfig) || onInterval(cfg.ts, cfg.nfile) || probeLines || forceLine || heatLine) {
    if (!syncViz(cfg, 1)) failure = "./input/viz.txt: " + std::string(std::strerror(errno));
  }
  if (ends || onInterval(cfg.ts, cfg.nfig)) {
    char path[64];
    std::snprintf(path, sizeof path, "./figs/%08d.jpg", cfg.ts);
    // Without a renderer there is no picture to save, which is no failure.
    if (saveScreen(cfg, path) != 0 && layerDrawsPixels() && failure.empty())
      failure = std::string(path) + ": " + std::strerror(errno != 0 ? errno : EIO);
  }
  if (ends || onInterval(cfg.ts, cfg.nfile)) {
    std::string why;
    if (!writeDump(cfg, views, &why) && failure.empty()) failure = why;
  }
  if (failure.empty()) return true;
  reportWriteFailure(cfg, failure);
  return false;
}

void reportWriteFailure(appConfig& cfg, const std::string& failure) {
  // A held step writes again in every frame: its failure is told once.
  if (cfg.writeFailedStep == cfg.ts) return;
  cfg.writeFailedStep = cfg.ts;
  char head[96];
  std::snprintf(head, sizeof head, "[ERROR] The results of step %d could not be written: ", cfg.ts);
  const std::string text = head + failure;
  if (cfg.showMessage)
    cfg.showMessage(cfg, text.c_str());
  else
    std::fprintf(stderr, "%s\n", text.c_str());
}

int readDump(appConfig& cfg, fieldViews& views, int step) { return readDumpFields(cfg, views, step); }

}  // namespace marv
