// The frame's part of the force and heat-loss records.
#include "result/frameRecords.h"

#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/recordFiles.h"

namespace marv {

bool recordableColour(const appConfig& cfg, const bcDomain& domain, int colour) {
  if (colour < domain.firstType || colour >= domain.endType || colour < 1 || colour >= numColourTypes) return false;
  const bool inlet = colour >= cfg.firstInletType && colour <= cfg.lastInletType;
  return !(inlet && cfg.bcNoFlow[colour] == 0);
}

void computeRecordValues(appConfig& cfg, const bcDomain& domain, const fieldViews& views) {
  if (cfg.showForce == 0 && cfg.showHeatLoss == 0) return;
  // The node field is what the picture shows; it also switches heat loss
  // off outside a thermo-fluid run.
  heatFluxField(cfg, views[fieldT], views[fieldConvY], views[fieldConvZ]);
  const bool flat = cfg.nz == 1;
  for (int c = 1; c < numColourTypes; ++c) {
    if (!recordableColour(cfg, domain, c)) continue;
    if (cfg.forceRecordOn[c] && views[fieldP].data != nullptr)
      cfg.forceValues[c] = flat ? outlineForce(cfg, views[fieldP], domain.outlines[c])
                                : surfaceForce(cfg, views[fieldP], domain.surfaces[c], c);
    if (cfg.heatRecordOn[c] && cfg.showHeatLoss)
      cfg.heatValues[c] = flat ? outlineHeatLoss(cfg, views[fieldT], domain.outlines[c])
                               : surfaceHeatLoss(cfg, views[fieldT], domain.surfaces[c], c);
  }
  cfg.numRecForce = cfg.numRecHeatLoss = 0;
  for (int c = domain.firstType; c < domain.endType && c < numColourTypes; ++c) {
    if (cfg.forceRecordOn[c])
      ++cfg.numRecForce;
    else
      cfg.forceValues[c] = {};
    if (cfg.heatRecordOn[c])
      ++cfg.numRecHeatLoss;
    else
      cfg.heatValues[c] = 0.0;
  }
}

std::string forceHeatNotice(const appConfig& cfg, int colour, const std::array<float, 3>& f, double heat) {
  if (colour < 1 || colour >= numColourTypes) return std::string();
  if (f[0] == 0.0f && f[1] == 0.0f && f[2] == 0.0f) return std::string();
  std::string text;
  if (cfg.showForce) {
    text = formatText("[Fx] %.3e (N) [Fy] %.3e (N) [Fz] %.3e (N)", static_cast<double>(f[0]), static_cast<double>(f[1]),
                      static_cast<double>(f[2]));
    if (cfg.forceRecordOn[colour]) text = formatText("%s [*] Rec. to ./dump/force.txt", text.c_str());
  }
  if (cfg.showHeatLoss) {
    text = formatText("%s [HFlux] %.3e (W/m^2)", text.c_str(), heat);
    if (cfg.heatRecordOn[colour]) text = formatText("%s [*] Rec. to ./dump/heatLoss.txt", text.c_str());
  }
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
