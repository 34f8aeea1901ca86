// The synchronisation devices of a time step: the one parallel region, the
// barrier and the single section, over OpenMP.
//
// libgomp's barriers and its thread pool use futexes that ThreadSanitizer
// does not see, so a build with ThreadSanitizer would report every access
// ordered only by a barrier as a race. In such a build each device also
// tells the sanitizer the order it establishes (a release before, an acquire
// after, on one token); in every other build the annotations are empty.
#pragma once

#include <omp.h>

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
    const teamWork work = currentTeamWork;
    work.run(work.context, omp_get_thread_num());
    MARV_TEAM_RELEASE();
  }
  MARV_TEAM_ACQUIRE();
}

// All threads of the team wait for each other; what any thread did before
// is visible to all after.
inline void teamBarrier() {
  MARV_TEAM_RELEASE();
#pragma omp barrier
  MARV_TEAM_ACQUIRE();
}

// work() run by the first thread to arrive, then a barrier for all.
template <class Work>
void teamSingle(Work&& work) {
#pragma omp single nowait
  work();
  teamBarrier();
}

}  // namespace marv
