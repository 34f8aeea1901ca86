// The frame's part of the force and heat-loss records.
#include "result/frameRecords.h"

#include <algorithm>
#include <cstdio>

#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/recordFiles.h"

namespace marv {

bool recordableColour(const appConfig& cfg, const bcDomain& domain, int colour) {
  if (colour < domain.firstType || colour >= domain.endType || colour < 1 || colour >= numColourTypes) return false;
  const bool inlet = colour >= cfg.firstInletType && colour <= cfg.lastInletType;
  return !(inlet && cfg.bcNoFlow[colour] == 0);
}

namespace {

bool hasForceField(const fieldViews& views) { return views[fieldP].data != nullptr; }
bool hasHeatField(const appConfig& cfg, const fieldViews& views) {
  return cfg.showHeatLoss != 0 && views[fieldT].data != nullptr;
}

std::array<float, 3> forceOf(const appConfig& cfg, const bcDomain& domain, const fieldViews& views, int c) {
  return cfg.nz == 1 ? outlineForce(cfg, views[fieldP], domain.outlines[c])
                     : surfaceForce(cfg, views[fieldP], domain.surfaces[c], c);
}

double heatOf(const appConfig& cfg, const bcDomain& domain, const fieldViews& views, int c) {
  return cfg.nz == 1 ? outlineHeatLoss(cfg, views[fieldT], domain.outlines[c])
                     : surfaceHeatLoss(cfg, views[fieldT], domain.surfaces[c], c);
}

// Appends to out[0..size) what printf makes of format; the text is cut at
// the end of the buffer.
template <typename... Args>
std::size_t append(char* out, std::size_t size, std::size_t used, const char* format, Args... args) {
  if (used + 1 >= size) return used;
  const int n = std::snprintf(out + used, size - used, format, args...);
  if (n < 0) return used;
  return std::min(used + static_cast<std::size_t>(n), size - 1);
}

}  // namespace

shownRecord updateRecordValues(appConfig& cfg, const bcDomain& domain, const fieldViews& views, int hovered,
                               bool click) {
  shownRecord shown;
  const bool force = hasForceField(views), heat = hasHeatField(cfg, views);
  for (int c = 1; c < numColourTypes; ++c) {
    if (!recordableColour(cfg, domain, c)) continue;
    if (c == hovered) {
      if (click) cfg.forceRecordOn[c] = cfg.forceRecordOn[c] ? 0 : 1;
      cfg.heatRecordOn[c] = cfg.forceRecordOn[c];
      shown.colour = c;
      shown.forceRecorded = cfg.forceRecordOn[c] != 0;
      shown.heatRecorded = cfg.heatRecordOn[c] != 0;
      if (force) {
        cfg.forceValues[c] = shown.force = forceOf(cfg, domain, views, c);
        shown.forceEvaluated |= 1u << c;
      }
      if (heat) cfg.heatValues[c] = shown.heat = heatOf(cfg, domain, views, c);
      continue;
    }
    if (cfg.forceRecordOn[c] && force) {
      cfg.forceValues[c] = forceOf(cfg, domain, views, c);
      shown.forceEvaluated |= 1u << c;
    }
    if (cfg.heatRecordOn[c] && heat) cfg.heatValues[c] = heatOf(cfg, domain, views, c);
  }
  cfg.numRecForce = cfg.numRecHeatLoss = 0;
  for (int c = domain.firstType; c < domain.endType && c < numColourTypes; ++c) {
    if (c < 0) continue;
    if (cfg.forceRecordOn[c])
      ++cfg.numRecForce;
    else
      cfg.forceValues[c] = {};
    if (cfg.heatRecordOn[c])
      ++cfg.numRecHeatLoss;
    else
      cfg.heatValues[c] = 0.0;
  }
  return shown;
}

void computeRecordValues(appConfig& cfg, const bcDomain& domain, const fieldViews& views) {
  if (cfg.showForce == 0 && cfg.showHeatLoss == 0) return;
  // The node field is what the picture shows; it also switches heat loss
  // off outside a thermo-fluid run.
  heatFluxField(cfg, views[fieldT], views[fieldConvY], views[fieldConvZ]);
  updateRecordValues(cfg, domain, views, -1, false);
}

std::size_t writeForceHeatNotice(char* out, std::size_t size, const appConfig& cfg, const shownRecord& shown) {
  if (out == nullptr || size == 0) return 0;
  out[0] = '\0';
  const std::array<float, 3>& f = shown.force;
  if (shown.colour < 1 || shown.colour >= numColourTypes) return 0;
  if (f[0] == 0.0f && f[1] == 0.0f && f[2] == 0.0f) return 0;
  std::size_t used = 0;
  if (cfg.showForce) {
    used = append(out, size, used, "[Fx] %.3e (N) [Fy] %.3e (N) [Fz] %.3e (N)", static_cast<double>(f[0]),
                  static_cast<double>(f[1]), static_cast<double>(f[2]));
    if (shown.forceRecorded) used = append(out, size, used, "%s", " [*] Rec. to ./dump/force.txt");
  }
  if (cfg.showHeatLoss) {
    used = append(out, size, used, " [HFlux] %.3e (W/m^2)", shown.heat);
    if (shown.heatRecorded) used = append(out, size, used, "%s", " [*] Rec. to ./dump/heatLoss.txt");
  }
  return used;
}

std::string forceHeatNotice(const appConfig& cfg, int colour, const std::array<float, 3>& f, double heat) {
  if (colour < 1 || colour >= numColourTypes) return std::string();
  shownRecord shown;
  shown.colour = colour;
  shown.force = f;
  shown.heat = heat;
  shown.forceRecorded = cfg.forceRecordOn[colour] != 0;
  shown.heatRecorded = cfg.heatRecordOn[colour] != 0;
  char text[noticeTextSize];
  writeForceHeatNotice(text, sizeof text, cfg, shown);
  return text;
}

std::vector<std::string> recordTextLines(const appConfig& cfg) {
  std::vector<std::string> lines;
  for (int c = 1; c < numColourTypes; ++c) {
    if (!cfg.forceRecordOn[c] && !cfg.heatRecordOn[c]) continue;
    std::string line = formatText("[%s]", cfg.bcTypeNames[c]);
    const std::array<float, 3>& f = cfg.forceValues[c];
    if (cfg.showForce && cfg.forceRecordOn[c])
      line += formatText(" [Fx] %.3e (N) [Fy] %.3e (N) [Fz] %.3e (N)", static_cast<double>(f[0]),
                         static_cast<double>(f[1]), static_cast<double>(f[2]));
    if (cfg.showHeatLoss && cfg.heatRecordOn[c]) line += formatText(" [HFlux] %.3e (W/m^2)", cfg.heatValues[c]);
    lines.push_back(line);
  }
  return lines;
}

}  // namespace marv
