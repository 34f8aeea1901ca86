// The row kernels of the pressure sweep and the choice among them at run
// time. The program is built for the x86-64 baseline, so that one package
// runs on any such processor; the AVX2/FMA kernel is compiled for those
// instructions alone (a target attribute) and chosen once, on the first
// sweep, when the processor reports both.
#include "solver/sweepRows.h"

#include <atomic>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace marv {

namespace {

template <bool ThreeD>
double baselineStretch(const sweepRow& r, int i0, int i1, double west, const sweepConstants& s) {
  return sweepStretch<ThreeD, false>(r, i0, i1, west, s);
}

#if defined(__x86_64__)
// Blocks of four nodes i..i+3 in one vector. With a = rax and r_m the rest
// of node i+m, the block's new values are
//   p_m = a^(m+1)*west + sum over l <= m of a^(m-l)*r_l,
// the sum a prefix scan of r in two steps (shift by one lane with weight a,
// then by two with a^2), the first term one multiply-add with west. The
// chain from block to block is west' = a^4*west + scan_3, a scalar fused
// multiply-add: lane 3 of the vector computes the same operation on the same
// operands, so the stored node and the carried west are the same number.
// The loads of a block (in up to node i+4, the neighbour rows, rhs) all
// come before its store, so when out is in they see old values at and after
// i and the block before's new values at i-1.
template <bool ThreeD>
__attribute__((target("avx2,fma"))) double avx2FmaStretch(const sweepRow& r, int i0, int i1, double west,
                                                          const sweepConstants& s) {
  const double a = s.rax, a2 = a * a, a3 = a2 * a, a4 = a2 * a2;
  const __m256d rax = _mm256_set1_pd(a), ray = _mm256_set1_pd(s.ray), raz = _mm256_set1_pd(s.raz);
  const __m256d negRelax = _mm256_set1_pd(-s.relax), keep = _mm256_set1_pd(s.keep);
  const __m256d shift1 = _mm256_setr_pd(0.0, a, a, a), shift2 = _mm256_setr_pd(0.0, 0.0, a2, a2);
  const __m256d powers = _mm256_setr_pd(a, a2, a3, a4);
  const double *const in = r.in, *const rhs = r.rhs, *const north = r.north, *const south = r.south;
  const double *const up = r.up, *const down = r.down;
  double* const out = r.out;
  // west lives in the low lane of a vector, so that the chain is the fused
  // multiply-add alone.
  __m128d chain = _mm_set_sd(west);
  const __m128d a4Low = _mm_set_sd(a4);
  int i = i0;
  for (; i + 4 <= i1; i += 4) {
    __m256d rest = _mm256_mul_pd(negRelax, _mm256_loadu_pd(rhs + i));
    rest = _mm256_fmadd_pd(keep, _mm256_loadu_pd(in + i), rest);
    rest = _mm256_fmadd_pd(ray, _mm256_add_pd(_mm256_loadu_pd(north + i), _mm256_loadu_pd(south + i)), rest);
    if constexpr (ThreeD)
      rest = _mm256_fmadd_pd(raz, _mm256_add_pd(_mm256_loadu_pd(up + i), _mm256_loadu_pd(down + i)), rest);
    rest = _mm256_fmadd_pd(rax, _mm256_loadu_pd(in + i + 1), rest);
    // Lanes (r0, r1 + a r0, r2 + a r1, r3 + a r2), then plus a^2 times lanes 0, 1 shifted by two.
    rest = _mm256_fmadd_pd(shift1, _mm256_permute4x64_pd(rest, 0x90), rest);
    rest = _mm256_fmadd_pd(shift2, _mm256_permute4x64_pd(rest, 0x40), rest);
    _mm256_storeu_pd(out + i, _mm256_fmadd_pd(_mm256_broadcastsd_pd(chain), powers, rest));
    chain = _mm_fmadd_sd(chain, a4Low, _mm256_castpd256_pd128(_mm256_permute4x64_pd(rest, 0xff)));
  }
  west = _mm_cvtsd_f64(chain);
  for (; i < i1; ++i) {
    double rest = s.ray * (north[i] + south[i]) - s.relax * rhs[i] + s.keep * in[i] + s.rax * in[i + 1];
    if constexpr (ThreeD) rest += s.raz * (up[i] + down[i]);
    west = a * west + rest;
    out[i] = west;
  }
  return west;
}
#endif

// The set in use; -1 until the first sweep chooses. Every thread of a team
// reads it at each sweep, and the first sweeps of a team may all choose at
// once (the same value), hence atomic.
std::atomic<int> chosenSet{-1};

sweepInstructions bestOnHost() {
  return hostSupports(sweepInstructions::avx2Fma) ? sweepInstructions::avx2Fma : sweepInstructions::baseline;
}

}  // namespace

bool hostSupports(sweepInstructions set) {
  if (set == sweepInstructions::baseline) return true;
#if defined(__x86_64__)
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
#else
  return false;
#endif
}

sweepInstructions sweepInstructionsInUse() {
  int set = chosenSet.load(std::memory_order_relaxed);
  if (set < 0) {
    set = static_cast<int>(bestOnHost());
    chosenSet.store(set, std::memory_order_relaxed);
  }
  return static_cast<sweepInstructions>(set);
}

sweepInstructions useSweepInstructions(sweepInstructions set) {
  const sweepInstructions chosen = hostSupports(set) ? set : sweepInstructions::baseline;
  chosenSet.store(static_cast<int>(chosen), std::memory_order_relaxed);
  return chosen;
}

rowKernelFn rowKernel(bool threeD) {
#if defined(__x86_64__)
  if (sweepInstructionsInUse() == sweepInstructions::avx2Fma)
    return threeD ? avx2FmaStretch<true> : avx2FmaStretch<false>;
#endif
  return threeD ? baselineStretch<true> : baselineStretch<false>;
}

}  // namespace marv
