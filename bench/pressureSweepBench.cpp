// Speed of the pressure sweep, the hot loop of the program, against the
// machine's memory bandwidth. For a 2D grid of 1025 x 1025 and a 3D grid of
// 129 x 129 x 129, with 1 and 2 threads, it reports sweeps and node updates
// per second and the fraction of the memory roofline that the sweep reaches.
// The roofline comes from a STREAM triad measured in the same run with the
// same thread count: bandwidth / bytesPerNode node updates per second.
//
// Byte model of one node update: the sweep streams rhs (8 B read) and p (8 B
// read, 8 B written back); the neighbours in j and k were brought in by the
// rows before and stay in cache (three rows in 2D, three planes of 129 x 129
// in 3D). The test pass every 20th sweep adds 24 B per node, 1.2 B per sweep
// on average, which the model leaves out.
#include <benchmark/benchmark.h>
#include <omp.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <vector>

#include "domain/bcDomain.h"
#include "solver/solverCommon.h"

namespace marv {
namespace {

constexpr double bytesPerNode = 24.0;  // rhs read, p read and written [B]
constexpr int sweepsPerStep = 20;      // one convergence test per 20 sweeps, as in a step

// Best of several STREAM triads a = b + s*c over arrays far larger than the
// caches, in bytes per second counted as STREAM does (3 x 8 B per element).
double triadBandwidth(int threads) {
  static std::map<int, double> measured;
  if (auto found = measured.find(threads); found != measured.end()) return found->second;
  const long n = 1L << 24;  // 128 MiB per array
  std::unique_ptr<double[]> a(new double[n]), b(new double[n]), c(new double[n]);
  double* pa = a.get();
  double* pb = b.get();
  double* pc = c.get();
#pragma omp parallel for num_threads(threads) schedule(static)
  for (long i = 0; i < n; ++i) pa[i] = 0.0, pb[i] = 1.0, pc[i] = 2.0;  // first touch by the thread that uses it
  double best = 1e30;
  for (int repeat = 0; repeat < 8; ++repeat) {
    const auto start = std::chrono::steady_clock::now();
    const double s = 3.0;
#pragma omp parallel for num_threads(threads) schedule(static)
    for (long i = 0; i < n; ++i) pa[i] = pb[i] + s * pc[i];
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    best = std::min(best, took.count());
    benchmark::DoNotOptimize(pa[repeat]);
  }
  return measured[threads] = 3.0 * 8.0 * n / best;
}

// A solver whose step is 20 pressure sweeps with a barrier after each, the
// 20th with its test pass: the steady state of the pressure iteration.
class sweepOnly : public solverCommon {
 public:
  using solverCommon::solverCommon;
  void step() override {
    runStep([&](int t) {
      for (int sweep = 1; sweep <= sweepsPerStep; ++sweep) {
        sorSweep(pfld, tau11, divU, t, sweep);
        teamBarrier();
      }
    });
  }
};

struct sweepCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<sweepOnly> solver;
  sweepCase(int n, int nz, int threads) {
    cfg.nx = cfg.ny = n;
    cfg.nz = nz;
    cfg.dx = cfg.dy = 1.0 / (n - 1);
    cfg.dz = nz > 1 ? 1.0 / (nz - 1) : 1.0;
    cfg.omega = 1.8;
    // Tiles as the default layout makes them: y halves in 2D, z halves in 3D.
    const int npy = nz == 1 ? threads : 1, npz = nz == 1 ? 1 : threads;
    cfg.numThreads = threads;
    cfg.npx = 1, cfg.npy = npy, cfg.npz = npz;
    for (int t = 0; t < threads; ++t) {
      const int py = nz == 1 ? t : 0, pz = nz == 1 ? 0 : t;
      cfg.threadX.push_back(0), cfg.threadY.push_back(py), cfg.threadZ.push_back(pz);
      cfg.tileI0.push_back(0), cfg.tileI1.push_back(n);
      cfg.tileJ0.push_back(py * (n / npy)), cfg.tileJ1.push_back(py == npy - 1 ? n : (py + 1) * (n / npy));
      cfg.tileK0.push_back(pz * (nz / npz)), cfg.tileK1.push_back(pz == npz - 1 ? nz : (pz + 1) * (nz / npz));
    }
    solver = std::make_unique<sweepOnly>(cfg, domain);
    for (int c = 0; c < solver->tau11.count(); ++c) solver->tau11[c] = 1.0;
  }
};

void reportSweep(benchmark::State& state, int n, int nz) {
  const int threads = static_cast<int>(state.range(0));
  sweepCase c(n, nz, threads);
  const double interior = double(n - 2) * (n - 2) * (nz > 1 ? nz - 2 : 1);
  const auto start = std::chrono::steady_clock::now();
  for (auto _ : state) c.solver->step();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const double sweeps = double(state.iterations()) * sweepsPerStep;
  const double nodeRate = sweeps * interior / took.count();
  const double bandwidth = triadBandwidth(threads);
  state.counters["sweeps_per_s"] = sweeps / took.count();
  state.counters["node_updates_per_s"] = nodeRate;
  state.counters["triad_GB_per_s"] = bandwidth * 1e-9;
  state.counters["roofline_node_updates_per_s"] = bandwidth / bytesPerNode;
  state.counters["roofline_fraction"] = nodeRate / (bandwidth / bytesPerNode);
}

void BM_StreamTriad(benchmark::State& state) {
  const int threads = static_cast<int>(state.range(0));
  double bandwidth = 0.0;
  for (auto _ : state) bandwidth = triadBandwidth(threads);
  state.counters["triad_GB_per_s"] = bandwidth * 1e-9;
}

void BM_Sweep2D_1025(benchmark::State& state) { reportSweep(state, 1025, 1); }
void BM_Sweep3D_129(benchmark::State& state) { reportSweep(state, 129, 129); }

BENCHMARK(BM_StreamTriad)->Arg(1)->Arg(2)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Sweep2D_1025)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Sweep3D_129)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace marv

BENCHMARK_MAIN();
