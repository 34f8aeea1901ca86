// The rows of the pressure sweep: one stretch of a row relaxed in place in
// increasing i, in the instructions the host offers.
//
// Every node of a row depends on the node just updated before it (p-x), so
// the speed of a row is the speed of that chain. Both kernels first sum the
// terms that do not depend on p-x, which the loads of a row allow in any
// order, and then run the chain over a block of nodes at once:
//   - baseline (any x86-64): nodes in pairs, the second of a pair as
//     rax^2*west + (rax*rest0 + rest1), one multiply and one add per two
//     nodes on the chain;
//   - avx2Fma: nodes in blocks of four in one vector, the block's own
//     recurrence as a two-step prefix scan, and one fused multiply-add per
//     four nodes on the chain.
// The grouping changes rounding, not the iteration: every node still uses
// the new value of the node before it and the old values of the nodes after.
//
// Nodes that another thread may touch in the same sweep go through relaxed
// atomics (the shared stretches below); those stay scalar, since a vector
// load is not a whole-node atomic read.
#pragma once

#include <atomic>

namespace marv {

// The sweep's grid constants, relax folded into the neighbour weights.
struct sweepConstants {
  double rax = 0.0;    // relax*ax [1]
  double ray = 0.0;    // relax*ay [1]
  double raz = 0.0;    // relax*az, 0 in two dimensions [1]
  double relax = 0.0;  // omega over the sum of the stencil weights [m^2]
  double keep = 0.0;   // 1 - omega [1]
  int nx = 0;          // stride of j
  int nxy = 0;         // stride of k
};

// The instruction sets of the row kernels.
enum class sweepInstructions { baseline, avx2Fma };

// Whether the processor running the program can execute the kernel of set.
bool hostSupports(sweepInstructions set);
// The set the sweep uses: the best the host supports, unless chosen below.
sweepInstructions sweepInstructionsInUse();
// Chooses the set for all later sweeps (benchmarks and tests compare them);
// a set the host lacks gives baseline. Returns the set now in use. Not to be
// called while a step runs.
sweepInstructions useSweepInstructions(sweepInstructions set);

// A kernel: relaxes [c0, c1) of one row of p in increasing i, none of whose
// nodes another thread touches during the sweep; west holds p-x on entry and
// the last updated node on return.
using plainStretchFn = double (*)(double* p, const double* rhs, int c0, int c1, double west, const sweepConstants& s);
// The kernel of the set in use, for two or three dimensions.
plainStretchFn plainStretch(bool threeD);

// ---------------------------------------------------------------- scalar nodes, plain or shared

template <bool Shared>
inline double loadNode(double* p, int c) {
  if constexpr (Shared)
    return std::atomic_ref<double>(p[c]).load(std::memory_order_relaxed);
  else
    return p[c];
}

template <bool Shared>
inline void storeNode(double* p, int c, double value) {
  if constexpr (Shared)
    std::atomic_ref<double>(p[c]).store(value, std::memory_order_relaxed);
  else
    p[c] = value;
}

// The terms of the update of node c that do not depend on p-x:
//   relax*(ax*p+x + ay*(p+y + p-y) + az*(p+z + p-z) - rhs) + (1 - omega)*p
template <bool ThreeD, bool Shared>
inline double restOf(double* p, const double* rhs, int c, const sweepConstants& s) {
  double rest = s.rax * loadNode<Shared>(p, c + 1) +
                s.ray * (loadNode<Shared>(p, c + s.nx) + loadNode<Shared>(p, c - s.nx)) - s.relax * rhs[c] +
                s.keep * p[c];
  if constexpr (ThreeD) rest += s.raz * (loadNode<Shared>(p, c + s.nxy) + loadNode<Shared>(p, c - s.nxy));
  return rest;
}

// The baseline stretch [c0, c1): p = rax*west + rest, nodes in pairs.
template <bool ThreeD, bool Shared>
inline double sweepStretch(double* p, const double* rhs, int c0, int c1, double west, const sweepConstants& s) {
  const double rax = s.rax, rax2 = s.rax * s.rax;
  int c = c0;
  for (; c + 1 < c1; c += 2) {
    const double rest0 = restOf<ThreeD, Shared>(p, rhs, c, s);
    const double rest1 = restOf<ThreeD, Shared>(p, rhs, c + 1, s);
    const double first = rax * west + rest0;
    west = rax2 * west + (rax * rest0 + rest1);
    storeNode<Shared>(p, c, first);
    storeNode<Shared>(p, c + 1, west);
  }
  if (c < c1) {
    west = rax * west + restOf<ThreeD, Shared>(p, rhs, c, s);
    storeNode<Shared>(p, c, west);
  }
  return west;
}

}  // namespace marv
