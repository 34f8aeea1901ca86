// The STL scan of the 3D build: a sphere of about 100,000 triangles on a
// 128^3 grid, with the default scan half-width of 5 nodes. The scan costs
// T (2w)^3 distance computations whatever the grid, plus the passes over the
// grid of the classification and the clipping.
#include <benchmark/benchmark.h>

#include <cmath>

#include "domain/stlScan.h"

namespace {

using namespace marv;

bcSurface sphere(double c, double r, int rings, int segments) {
  constexpr double pi = 3.14159265358979323846;
  bcSurface s;
  auto at = [&](int ring, int seg, float out[3]) {
    const double theta = pi * ring / rings, phi = 2.0 * pi * seg / segments;
    out[0] = static_cast<float>(c + r * std::sin(theta) * std::cos(phi));
    out[1] = static_cast<float>(c + r * std::sin(theta) * std::sin(phi));
    out[2] = static_cast<float>(c + r * std::cos(theta));
  };
  for (int ring = 0; ring < rings; ++ring)
    for (int seg = 0; seg < segments; ++seg) {
      for (int half = 0; half < 2; ++half) {
        if ((half == 0 && ring == 0) || (half == 1 && ring == rings - 1)) continue;
        bcTriangle t;
        if (half == 0) {
          at(ring, seg, t.vertex[0]), at(ring + 1, seg, t.vertex[1]), at(ring, seg + 1, t.vertex[2]);
        } else {
          at(ring + 1, seg, t.vertex[0]), at(ring + 1, seg + 1, t.vertex[1]), at(ring, seg + 1, t.vertex[2]);
        }
        double len = 0.0;
        for (int a = 0; a < 3; ++a) {
          t.centroid[a] = (t.vertex[0][a] + t.vertex[1][a] + t.vertex[2][a]) / 3.0f;
          t.normal[a] = static_cast<float>(t.centroid[a] - c);
          len += t.normal[a] * t.normal[a];
        }
        for (float& n : t.normal) n = static_cast<float>(n / std::sqrt(len));
        s.triangles.push_back(t);
      }
    }
  s.numTriangles = static_cast<int>(s.triangles.size());
  return s;
}

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
  domain.surfaces[7] = sphere(0.5, 0.3, 224, 224);  // 99,904 triangles
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
