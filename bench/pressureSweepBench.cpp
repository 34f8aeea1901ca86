// Speed of the pressure sweep, the hot loop of the program, against the two
// limits of the machine: memory bandwidth and the latency of the chain from
// node to node. For the 2D grids of 129 x 129 (the cavity) and 1025 x 1025
// and a 3D grid of 129 x 129 x 129, with 1 and 2 threads and each row kernel
// (0 baseline, 1 AVX2/FMA), it reports sweeps and node updates per second
// and the fraction of each limit that the sweep reaches:
//   - bandwidth: a STREAM triad measured in the same run with the same
//     thread count, over bytesPerNode node updates per second;
//   - latency: the chain of the kernel (a multiply and an add per two nodes,
//     or one fused multiply-add per four) timed alone, times the threads.
// BM_TeamBarrier times the barrier between sweeps on its own, the
// program's and OpenMP's.
//
// Byte model of one node update: the sweep streams rhs (8 B read) and p (8 B
// read, 8 B written back); the neighbours in j and k were brought in by the
// rows before and stay in cache (three rows in 2D, three planes of 129 x 129
// in 3D). The test pass every 20th sweep adds 24 B per node, 1.2 B per sweep
// on average, which the model leaves out.
#include <benchmark/benchmark.h>
#if defined(__x86_64__)
#include <immintrin.h>
#endif
#include <omp.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <vector>

#include "bench/benchGrid.h"
#include "domain/bcDomain.h"
#include "solver/solverCommon.h"
#include "solver/sweepRows.h"

namespace marv {
namespace {

constexpr double bytesPerNode = 24.0;                           // rhs read, p read and written [B]
constexpr int sweepsPerStep = 20;                               // one convergence test per 20 sweeps, as in a step
const sweepInstructions bestKernel = sweepInstructionsInUse();  // what a run would use

// The one-minute load average, printed beside each figure: the machine is
// shared, and a second thread only helps when a core is free for it.
double loadAverage() {
  double load[1] = {0.0};
  return getloadavg(load, 1) == 1 ? load[0] : -1.0;
}

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

// Seconds per link of each kernel's chain from node to node, measured as a
// long dependent chain of the same operations: west = a*west + b as a
// multiply and an add (baseline, one link per two nodes), or as a fused
// multiply-add (AVX2/FMA, one link per four nodes).
// The empty statements keep the values in registers and opaque, so that the
// loop can be neither folded nor given a memory round trip.
double baselineLink(long links) {
  double west = 0.5, a = 0.45, b = 0.01;
  asm volatile("" : "+x"(a), "+x"(b));
  for (long n = 0; n < links; ++n) {
    west = a * west + b;
    asm volatile("" : "+x"(west));
  }
  return west;
}

#if defined(__x86_64__)
__attribute__((target("fma"))) double fmaLink(long links) {
  __m128d west = _mm_set_sd(0.5), a = _mm_set_sd(0.45), b = _mm_set_sd(0.01);
  asm volatile("" : "+x"(a), "+x"(b));
  for (long n = 0; n < links; ++n) {
    west = _mm_fmadd_sd(west, a, b);
    asm volatile("" : "+x"(west));
  }
  return _mm_cvtsd_f64(west);
}
#endif

// Node updates per second that one thread's chain allows with kernel set.
double latencyLimit(sweepInstructions set) {
  static std::map<int, double> measured;
  if (auto found = measured.find(int(set)); found != measured.end()) return found->second;
  const long links = 50'000'000;
  // Timed in the thread's own processor time: a property of the core, which
  // a shared machine's other work would otherwise inflate.
  auto cpuSeconds = [] {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
  };
  double best = 1e30;
  for (int repeat = 0; repeat < 5; ++repeat) {
    const double start = cpuSeconds();
#if defined(__x86_64__)
    benchmark::DoNotOptimize(set == sweepInstructions::avx2Fma ? fmaLink(links) : baselineLink(links));
#else
    benchmark::DoNotOptimize(baselineLink(links));
#endif
    best = std::min(best, (cpuSeconds() - start) / double(links));
  }
  const double nodesPerLink = set == sweepInstructions::avx2Fma ? 4.0 : 2.0;
  return measured[int(set)] = nodesPerLink / best;
}

// A solver whose step is the program's pressure iteration held to 20
// sweeps (loopmax 20, peps 0): its start copies, the test after the first
// sweep, and the threads keeping pace with each other in between.
class sweepOnly : public solverCommon {
 public:
  using solverCommon::solverCommon;
  void step() override {
    runStep([&](int t) { solvePressure(t); });
  }
};

struct sweepCase {
  appConfig cfg;
  bcDomain domain;
  std::unique_ptr<sweepOnly> solver;
  sweepCase(int n, int nz, int threads) {
    marvbench::setBenchGrid(cfg, n, nz, threads);
    cfg.omega = 1.8;
    cfg.loopmax = sweepsPerStep, cfg.peps = 0.0;
    solver = std::make_unique<sweepOnly>(cfg, domain);
    for (int c = 0; c < solver->tau11.count(); ++c) solver->tau11[c] = 1.0;
  }
};

void reportSweep(benchmark::State& state, int n, int nz) {
  const int threads = static_cast<int>(state.range(0));
  const auto wanted = static_cast<sweepInstructions>(state.range(1));
  if (useSweepInstructions(wanted) != wanted) {
    state.SkipWithError("row kernel not supported by this processor");
    for (auto _ : state) {
    }
    return;
  }
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
  const double chain = latencyLimit(wanted) * threads;
  state.counters["latency_node_updates_per_s"] = chain;
  state.counters["latency_fraction"] = nodeRate / chain;
  state.counters["load_average"] = loadAverage();
  useSweepInstructions(bestKernel);
}

// Time per barrier of a team of two threads, 100000 barriers in a row with
// nothing between: the program's barrier (arg 0) or OpenMP's (arg 1).
void BM_TeamBarrier(benchmark::State& state) {
  const bool openmp = state.range(0) == 1;
  const int rounds = 100000;
  for (auto _ : state) {
    runTeam(2, [&](int) {
      for (int n = 0; n < rounds; ++n)
        if (openmp) {
#pragma omp barrier
        } else {
          teamBarrier();
        }
    });
  }
  state.counters["ns_per_barrier"] = benchmark::Counter(double(state.iterations()) * rounds,
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["load_average"] = loadAverage();
}

void BM_StreamTriad(benchmark::State& state) {
  const int threads = static_cast<int>(state.range(0));
  double bandwidth = 0.0;
  for (auto _ : state) bandwidth = triadBandwidth(threads);
  state.counters["triad_GB_per_s"] = bandwidth * 1e-9;
}

void BM_Sweep2D_129(benchmark::State& state) { reportSweep(state, 129, 1); }
void BM_Sweep2D_1025(benchmark::State& state) { reportSweep(state, 1025, 1); }
void BM_Sweep3D_129(benchmark::State& state) { reportSweep(state, 129, 129); }

// Arguments: threads, row kernel.
void sweepArgs(benchmark::internal::Benchmark* b) {
  b->ArgNames({"threads", "kernel"});
  for (int kernel : {0, 1})
    for (int threads : {1, 2}) b->Args({threads, kernel});
  b->UseRealTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_StreamTriad)->Arg(1)->Arg(2)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TeamBarrier)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Sweep2D_129)->Apply(sweepArgs);
BENCHMARK(BM_Sweep2D_1025)->Apply(sweepArgs);
BENCHMARK(BM_Sweep3D_129)->Apply(sweepArgs);

}  // namespace
}  // namespace marv

BENCHMARK_MAIN();
