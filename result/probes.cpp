// Probe sampling, the probe files and the reader of a pass's start.
#include "result/probes.h"

#include <algorithm>

#include "domain/gridSampling.h"

namespace marv {

namespace {

double sampled(const appConfig& cfg, const array3d<double>& field, const probePoint& at) {
  if (field.data == nullptr) return 0.0;
  return sampleField(cfg, at.x, at.y, at.z, field);
}

bool probeStep(const appConfig& cfg) {
  if (cfg.ts > cfg.latts) return false;
  if (cfg.sts >= 1 && cfg.ts == cfg.sts) return false;
  if (cfg.probeRecordInterval <= 0) return false;
  return cfg.ts % cfg.probeRecordInterval == 0;
}

}  // namespace

std::string probeFilePath(int k) { return formatText("%s/probe_%03d_ascii.dat", "./dump/", k); }

const recordLayout& probeLayout() {
  static const recordLayout layout{{"ts", "time(s)", "x(m)", "y(m)", "z(m)", "rho(kg/m^3)", "u(m/s)", "v(m/s)",
                                    "w(m/s)", "T(K)", "massfr", "age(s)", "dP(Pa)"},
                                   13};
  return layout;
}

std::string probeHeadLine() {
  return formatText("%12s %12s %12s %12s %12s %12s %12s %12s %12s %12s %12s %12s %12s\n", "ts", "time(s)", "x(m)",
                    "y(m)", "z(m)", "rho(kg/m^3)", "u(m/s)", "v(m/s)", "w(m/s)", "T(K)", "massfr", "age(s)", "dP(Pa)");
}

std::string probeDataLine(const appConfig& cfg, const probePoint& at, const probeSample& s) {
  return formatText("%12d %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e %12.5e\n",
                    cfg.ts, cfg.time, static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(at.z),
                    s.rho, s.u, s.v, s.w, s.T, s.massfr, s.age, s.dP);
}

probeSample sampleProbe(const appConfig& cfg, const fieldViews& views, const probePoint& at) {
  probeSample s;
  s.rho = cfg.cmode == 1 ? sampled(cfg, views[fieldRho], at) : cfg.rhow;
  s.u = sampled(cfg, views[fieldU], at);
  s.v = sampled(cfg, views[fieldV], at);
  s.w = sampled(cfg, views[fieldW], at);
  s.T = cfg.cmode == 1 ? sampled(cfg, views[fieldT], at) : 0.0;
  s.massfr = sampled(cfg, views[fieldY], at);
  s.age = cfg.ageFlag ? sampled(cfg, views[fieldAge], at) : 0.0;
  s.dP = sampled(cfg, views[fieldP], at);
  return s;
}

void readProbeSetup(appConfig& cfg) {
  cfg.probes.fill(probePoint{});
  cfg.probeHeaderDone.fill(0);
  cfg.probeFileRefused.fill(0);
  // A hand-edited viz.txt may ask for more probes than the table holds.
  cfg.numProbes = std::clamp(cfg.numProbes, 0, maxProbes);
  for (int k = 0; k < cfg.numProbes; ++k) {
    std::vector<std::string> words;
    const int found = readRecordTail(cfg, probeFilePath(k), probeLayout(), words, cfg.probeFileRefused[k]);
    // The count drops to one below the index of the file that fails, as the
    // records of the last run were meant to be read.
    if (found != 1) {
      cfg.numProbes = std::max(k - 1, 0);
      break;
    }
    probePoint& p = cfg.probes[k];
    p.x = p.y = p.z = 0.0f;  // a file with only its head line
    if (!words.empty()) {
      double value = 0.0;
      p.x = recordNumber(words[2], value) ? static_cast<float>(value) : 0.0f;
      p.y = recordNumber(words[3], value) ? static_cast<float>(value) : 0.0f;
      p.z = recordNumber(words[4], value) ? static_cast<float>(value) : 0.0f;
    }
    // Written as !(inside) so that a NaN position drops out too. A flat case
    // takes any z, since it is set to 0 below.
    const bool insideZ = cfg.nz == 1 || (p.z >= 0.0f && p.z <= cfg.lz);
    const bool inside = p.x >= 0.0f && p.y >= 0.0f && p.x <= cfg.lx && p.y <= cfg.ly && insideZ;
    if (!inside) {
      p = probePoint{};
      cfg.numProbes = std::max(k - 1, 0);
    }
    if (cfg.nz == 1) p.z = 0.0f;
  }
}

bool writeProbes(appConfig& cfg, const fieldViews& views) {
  if (!probeStep(cfg)) return false;
  const int count = std::clamp(cfg.numProbes, 0, maxProbes);
  for (int k = 0; k < count; ++k) {
    int headerDone = cfg.probeHeaderDone[k];
    std::FILE* f =
        openRecordForLine(cfg, probeFilePath(k), probeLayout(), probeHeadLine(), headerDone, cfg.probeFileRefused[k]);
    cfg.probeHeaderDone[k] = static_cast<std::uint8_t>(headerDone);
    if (f == nullptr) continue;
    const probePoint& at = cfg.probes[k];
    finishRecordLine(f, probeDataLine(cfg, at, sampleProbe(cfg, views, at)));
  }
  return true;
}

std::vector<std::string> probeTextLines(const appConfig& cfg, const fieldViews& views) {
  std::vector<std::string> lines;
  const int count = std::clamp(cfg.numProbes, 0, maxProbes);
  for (int k = 0; k < count; ++k) {
    const probePoint& at = cfg.probes[k];
    const probeSample s = sampleProbe(cfg, views, at);
    std::string line = formatText("[Probe %d] (%.3e, %.3e, %.3e) (m) [u] %.3e [v] %.3e [w] %.3e (m/s) [dP] %.3e (Pa)",
                                  k, static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(at.z),
                                  s.u, s.v, s.w, s.dP);
    if (cfg.cmode == 1) line += formatText(" [T] %.3e (K)", s.T);
    lines.push_back(line);
  }
  return lines;
}

}  // namespace marv
