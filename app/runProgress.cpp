// The run's progress line for marvanesse-batch.
#include "app/runProgress.h"

#include <unistd.h>

#include <algorithm>

namespace marv {

void startProgress(runProgress& progress, std::FILE* out, int nowMs) {
  progress.out = out;
  progress.terminal = out != nullptr && isatty(fileno(out));
  progress.startMs = nowMs;
  progress.startStep = -1;
  progress.lastMs = -1;
  progress.intervalMs = progress.terminal ? 250 : 5000;
}

void formatProgress(char* buffer, int size, const appConfig& cfg, int step, double stepsPerSecond) {
  const int left = std::max(0, cfg.latts - step);
  char eta[32] = "--";
  if (stepsPerSecond > 0.0) {
    const long seconds = static_cast<long>(left / stepsPerSecond + 0.5);
    std::snprintf(eta, sizeof eta, "%ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60, seconds % 60);
  }
  // A diverged flow has no residual worth showing: the line says what
  // happened instead of numbers that look like a converged step.
  if (cfg.diverged) {
    std::snprintf(buffer, static_cast<std::size_t>(size), "step %d/%d  t=%.6e s  DIVERGED at step %d", step, cfg.latts,
                  cfg.time, cfg.divergedStep);
    return;
  }
  std::snprintf(buffer, static_cast<std::size_t>(size),
                "step %d/%d  t=%.6e s  dt=%.3e s  residual=%.3e  sweeps=%d  %.1f steps/s  left %s", step, cfg.latts,
                cfg.time, cfg.deltat, cfg.presResidual, cfg.presIterations, stepsPerSecond, eta);
}

void reportProgress(runProgress& progress, const appConfig& cfg, int nowMs, bool final) {
  if (progress.out == nullptr) return;
  if (progress.startStep < 0) {
    progress.startStep = cfg.ts;
    progress.startMs = nowMs;
  }
  if (!final && progress.lastMs >= 0 && nowMs - progress.lastMs < progress.intervalMs) return;
  progress.lastMs = nowMs;
  const double seconds = (nowMs - progress.startMs) / 1000.0;
  // The loop has moved past the last step when it reports the end.
  const int step = final ? cfg.ts - 1 : cfg.ts;
  const double rate = seconds > 0.0 ? (step - progress.startStep) / seconds : 0.0;
  char line[256];
  formatProgress(line, sizeof line, cfg, step, rate);
  if (progress.terminal)
    std::fprintf(progress.out, "\r%s\033[K%s", line, final ? "\n" : "");
  else
    std::fprintf(progress.out, "%s\n", line);
  std::fflush(progress.out);
}

}  // namespace marv
