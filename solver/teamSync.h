// The synchronisation devices of a time step: the one parallel region, the
// barrier and the single section, over OpenMP.
//
// The barrier is the program's own. A pressure sweep of a 129 x 129 tile
// takes some ten microseconds, and the team may meet after every one, so
// the barrier must hand over in well under a microsecond: a waiting thread spins
// on the release count with the processor's pause hint, some thousands of
// rounds (tens to hundreds of microseconds, by processor: longer spins did
// better than shorter ones on a loaded machine); then it yields its core
// for a while (the thread it waits for may have been descheduled); only
// then does it sleep on the count (a futex). Its order is that of std::atomic operations, which
// ThreadSanitizer sees.
//
// libgomp's thread pool uses futexes that ThreadSanitizer does not see, so a
// build with ThreadSanitizer would report every access ordered only by the
// start or the end of a region as a race. In such a build the region also
// tells the sanitizer the order it establishes (a release before, an acquire
// after, on one token); in every other build the annotations are empty.
#pragma once

#include <omp.h>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <thread>
#include <type_traits>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#define MARV_TEAM_RELEASE() __tsan_release(&marv::teamToken)
#define MARV_TEAM_ACQUIRE() __tsan_acquire(&marv::teamToken)
#else
#define MARV_TEAM_RELEASE() ((void)0)
#define MARV_TEAM_ACQUIRE() ((void)0)
#endif

namespace marv {

inline char teamToken = 0;  // address the sanitizer annotations synchronise on

// The body of the running region, reached by the team through this record
// rather than through the region's captured locals: the compiler stores
// those into the fork's argument block after anything the master could
// announce to the sanitizer, so reading them would look unordered, while
// this record is written before the announcement.
struct teamWork {
  void (*run)(void* context, int thread) = nullptr;  // calls the body
  void* context = nullptr;                           // the body object
};
inline teamWork currentTeamWork;  // set by the master before each region

// The barrier's shared state: threads arrived at the present barrier, and
// the number of barriers completed, on one cache line of their own: the
// last to arrive then holds the line when it releases the others, and the
// release costs no second transfer between cores. Left at arrived = 0 by
// every completed barrier.
struct alignas(64) teamBarrierState {
  std::atomic<int> arrived{0};
  std::atomic<int> released{0};
  std::atomic<int> sleepers{0};  // threads asleep, or about to sleep, on released
};
inline teamBarrierState teamBarrierShared;
inline thread_local int teamSize = 1;  // threads of the running team, as each member sees it

// Waiting rounds of the barrier: spins with the pause hint, then yields.
constexpr int teamSpinRounds = 4000;
constexpr int teamYieldRounds = 200;

// Sleeps while *word == expected (the kernel checks, so a change just before
// the call is not missed), and wakes every sleeper on word.
inline void teamSleep(std::atomic<int>& word, int expected) {
  syscall(SYS_futex, reinterpret_cast<int*>(&word), FUTEX_WAIT_PRIVATE, expected, nullptr, nullptr, 0);
}
inline void teamWakeAll(std::atomic<int>& word) {
  syscall(SYS_futex, reinterpret_cast<int*>(&word), FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}

inline void teamPause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

// Runs body(t) once on each of n threads, t = 0..n-1, and returns when all
// are done. Everything before the call is visible to the body, everything
// the body did is visible after it. Regions do not nest.
template <class Body>
void runTeam(int n, Body&& body) {
  using bodyType = std::remove_reference_t<Body>;
  currentTeamWork = teamWork{[](void* context, int t) { (*static_cast<bodyType*>(context))(t); },
                             const_cast<void*>(static_cast<const void*>(&body))};
  MARV_TEAM_RELEASE();
#pragma omp parallel num_threads(n)
  {
    MARV_TEAM_ACQUIRE();
    teamSize = omp_get_num_threads();
    const teamWork work = currentTeamWork;
    work.run(work.context, omp_get_thread_num());
    teamSize = 1;  // a barrier outside a region has nobody to wait for
    MARV_TEAM_RELEASE();
  }
  MARV_TEAM_ACQUIRE();
}

// Returns once done(word) holds, word read with acquire order: spins with
// the pause hint, then yields, then sleeps on word. A sleeper announces
// itself in sleepers before its last look at word; whoever changes word
// must look for sleepers after its store, both in sequentially consistent
// order, so that either the sleeper sees the new value or the writer sees
// the sleeper (a release store followed by a plain load could be reordered,
// and a wake-up lost).
template <class Done>
void teamWaitUntil(std::atomic<int>& word, std::atomic<int>& sleepers, Done done) {
  for (int n = 0;; ++n) {
    if (done(word.load(std::memory_order_acquire))) return;
    if (n < teamSpinRounds) {
      teamPause();
    } else if (n < teamSpinRounds + teamYieldRounds) {
      std::this_thread::yield();
    } else {
      sleepers.fetch_add(1, std::memory_order_seq_cst);
      const int seen = word.load(std::memory_order_seq_cst);
      if (!done(seen)) teamSleep(word, seen);
      sleepers.fetch_sub(1, std::memory_order_relaxed);
    }
  }
}

// All threads of the team wait for each other; what any thread did before
// is visible to all after.
// The last to arrive resets the count and releases the others; the release
// count was read before arriving and cannot move until this thread has.
inline void teamBarrier() {
  if (teamSize <= 1) return;
  teamBarrierState& b = teamBarrierShared;
  const int round = b.released.load(std::memory_order_relaxed);
  if (b.arrived.fetch_add(1, std::memory_order_acq_rel) == teamSize - 1) {
    b.arrived.store(0, std::memory_order_relaxed);
    b.released.store(round + 1, std::memory_order_seq_cst);
    if (b.sleepers.load(std::memory_order_seq_cst) > 0) teamWakeAll(b.released);
    return;
  }
  teamWaitUntil(b.released, b.sleepers, [round](int seen) { return seen != round; });
}

// A count that one thread raises and others wait for: how far a thread has
// got through the sweeps of the pressure iteration. It sits on a cache line
// of its own, so that waiting on it does not disturb the owner's other work.
// A waiter spins, yields and sleeps as at the barrier (teamWaitUntil).
struct alignas(64) teamCount {
  std::atomic<int> value{0};
  std::atomic<int> sleepers{0};
};

// Publishes value (never lower than before, except when every thread that
// waits on c is known to be elsewhere, such as after a barrier) with
// everything the thread did before.
inline void teamRaise(teamCount& c, int value) {
  c.value.store(value, std::memory_order_seq_cst);
  if (c.sleepers.load(std::memory_order_seq_cst) > 0) teamWakeAll(c.value);
}

// Returns once c holds at least least; what its owner did before raising it
// that far is visible after.
inline void teamAwait(teamCount& c, int least) {
  teamWaitUntil(c.value, c.sleepers, [least](int seen) { return seen >= least; });
}

// work() run by the first thread to arrive, then a barrier for all.
template <class Work>
void teamSingle(Work&& work) {
#pragma omp single nowait
  work();
  teamBarrier();
}

}  // namespace marv
