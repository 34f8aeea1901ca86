// The STL scan of the 3D build: a sphere of about 100,000 triangles on a
// 128^3 grid, with the default scan half-width of 5 nodes. The scan costs
// T (2w)^3 distance computations whatever the grid, plus the passes over the
// grid of the classification and the clipping.
#include <benchmark/benchmark.h>

#include <cmath>

#include "domain/stlScan.h"
#include "tests/domain/sphereModel.h"

namespace {

using namespace marv;

void stlScan(benchmark::State& state) {
  appConfig cfg;
  const int n = 128;
  cfg.nx = cfg.ny = cfg.nz = n;
  cfg.lx = cfg.ly = cfg.lz = 1.0;
  cfg.dx = cfg.dy = cfg.dz = 1.0 / (n - 1);
  cfg.xCoord.resize(n), cfg.yCoord.resize(n), cfg.zCoord.resize(n);
  for (int i = 0; i < n; ++i) cfg.xCoord[i] = cfg.yCoord[i] = cfg.zCoord[i] = i * cfg.dx;
  cfg.stlPresent = 1;
  bcDomain domain;
  constructDomain(domain, cfg);
  domain.surfaces[7] = sphereModel(0.5, 0.5, 0.5, 0.3, 224, 224);  // 99,904 triangles
  for (auto _ : state) {
    fill<int>(domain.bcFlag, 0);
    fill<int>(domain.nearestTriangle, noTriangle);
    scanModel(domain, cfg);
  }
  state.counters["triangles"] = domain.surfaces[7].numTriangles;
  state.counters["triangles/s"] =
      benchmark::Counter(static_cast<double>(domain.surfaces[7].numTriangles) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate);
}

BENCHMARK(stlScan)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

}  // namespace

BENCHMARK_MAIN();
