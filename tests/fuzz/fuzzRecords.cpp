// The record files a restarted run reads back: a probe file, force.txt and
// heatLoss.txt. The first byte picks the file and whether the run restarts;
// the rest is the file. The setup readers take it, and a restarted run's
// first write cuts the file at its restart step.
#include <filesystem>

#include "common/array3d.h"
#include "result/forceRecord.h"
#include "result/heatLossRecord.h"
#include "result/probes.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const int pick = data[0] % 3;
  const bool restart = (data[0] / 3) % 2 == 1;
  marvfuzz::workFolder();
  std::error_code ignored;
  for (const char* name : {"dump/probe_000_ascii.dat", "dump/force.txt", "dump/heatLoss.txt"})
    std::filesystem::remove(name, ignored);
  const char* path = pick == 0 ? "dump/probe_000_ascii.dat" : pick == 1 ? "dump/force.txt" : "dump/heatLoss.txt";
  marvfuzz::writeInput(path, data + 1, size - 1);

  marv::appConfig cfg;
  cfg.nx = cfg.ny = 5;
  cfg.lx = cfg.ly = 1.0;
  cfg.dx = cfg.dy = 0.25;
  cfg.sts = restart ? 20 : 0;
  cfg.ts = cfg.sts + 1;
  cfg.latts = 100;
  cfg.numProbes = 1;
  cfg.probeRecordInterval = cfg.forceRecInterval = cfg.heatLossRecInterval = 1;
  marv::readProbeSetup(cfg);
  marv::readForceSetup(cfg);
  marv::readHeatLossSetup(cfg);
  marv::writeForce(cfg);
  marv::writeHeatLoss(cfg);
  return 0;
}
