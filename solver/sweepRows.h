// The rows of the pressure sweep: one stretch of a row relaxed in increasing
// i, in place or into a copy, in the instructions the host offers.
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
// Nodes that another thread may touch at the same time, with nothing to
// order the two accesses, are read and written through relaxed atomics,
// never by the vector kernel: a vector load is not a whole-node atomic read.
// The sweep either copies them first and gives the kernel the copies, or
// takes the scalar stretch below. Nodes whose accesses the threads' counts
// order are plain.
#pragma once

#include <atomic>

namespace marv {

// The sweep's constants, relax folded into the neighbour weights.
struct sweepConstants {
  double rax = 0.0;    // relax*ax [1]
  double ray = 0.0;    // relax*ay [1]
  double raz = 0.0;    // relax*az, 0 in two dimensions [1]
  double relax = 0.0;  // omega over the sum of the stencil weights [m^2]
  double keep = 0.0;   // 1 - omega [1]
};

// One row of the sweep: where its nodes and their neighbours are, each
// pointer indexed by i. The kernels read in (at i - 1 only through west, at
// i + 1 before node i + 1 is updated) and write the new values to out, which
// is in itself for a row relaxed in place. down and up are not read in two
// dimensions.
struct sweepRow {
  const double* in = nullptr;
  double* out = nullptr;
  const double* rhs = nullptr;
  const double* south = nullptr;  // row j - 1
  const double* north = nullptr;  // row j + 1
  const double* down = nullptr;   // row k - 1
  const double* up = nullptr;     // row k + 1
};

// The row at j, k of a grid with strides nx, nxy, relaxed in place.
inline sweepRow gridRow(double* p, const double* rhs, int j, int k, int nx, int nxy, bool threeD) {
  const long base = static_cast<long>(nx) * j + static_cast<long>(nxy) * k;
  sweepRow r;
  r.in = r.out = p + base;
  r.rhs = rhs + base;
  r.south = p + base - nx;
  r.north = p + base + nx;
  r.down = threeD ? p + base - nxy : r.in;
  r.up = threeD ? p + base + nxy : r.in;
  return r;
}

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

// A kernel: relaxes nodes [i0, i1) of row in increasing i, none of which,
// nor any of whose neighbours, another thread touches at the same time; west
// holds the new value of node i0 - 1 on entry and of node i1 - 1 on return.
using rowKernelFn = double (*)(const sweepRow& row, int i0, int i1, double west, const sweepConstants& s);
// The kernel of the set in use, for two or three dimensions.
rowKernelFn rowKernel(bool threeD);

// ---------------------------------------------------------------- scalar nodes, plain or shared

template <bool Shared>
inline double loadNode(const double* at) {
  if constexpr (Shared)
    return std::atomic_ref<double>(*const_cast<double*>(at)).load(std::memory_order_relaxed);
  else
    return *at;
}

template <bool Shared>
inline void storeNode(double* at, double value) {
  if constexpr (Shared)
    std::atomic_ref<double>(*at).store(value, std::memory_order_relaxed);
  else
    *at = value;
}

// The terms of the update of node i that do not depend on p-x:
//   relax*(ax*p+x + ay*(p+y + p-y) + az*(p+z + p-z) - rhs) + (1 - omega)*p
template <bool ThreeD, bool Shared>
inline double restOf(const sweepRow& r, int i, const sweepConstants& s) {
  double rest = s.rax * loadNode<Shared>(r.in + i + 1) +
                s.ray * (loadNode<Shared>(r.north + i) + loadNode<Shared>(r.south + i)) - s.relax * r.rhs[i] +
                s.keep * r.in[i];
  if constexpr (ThreeD) rest += s.raz * (loadNode<Shared>(r.up + i) + loadNode<Shared>(r.down + i));
  return rest;
}

// The baseline stretch [i0, i1): p = rax*west + rest, nodes in pairs. With
// Shared every neighbour is read, and every node written, through relaxed
// atomics.
template <bool ThreeD, bool Shared>
inline double sweepStretch(const sweepRow& r, int i0, int i1, double west, const sweepConstants& s) {
  const double rax = s.rax, rax2 = s.rax * s.rax;
  int i = i0;
  for (; i + 1 < i1; i += 2) {
    const double rest0 = restOf<ThreeD, Shared>(r, i, s);
    const double rest1 = restOf<ThreeD, Shared>(r, i + 1, s);
    const double first = rax * west + rest0;
    west = rax2 * west + (rax * rest0 + rest1);
    storeNode<Shared>(r.out + i, first);
    storeNode<Shared>(r.out + i + 1, west);
  }
  if (i < i1) {
    west = rax * west + restOf<ThreeD, Shared>(r, i, s);
    storeNode<Shared>(r.out + i, west);
  }
  return west;
}

}  // namespace marv
