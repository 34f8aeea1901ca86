// Software fetches of cache lines ahead of their use: to read, or to own a
// line before writing it. A line another core has read since this core
// last wrote it is shared; writing it then waits for the other core to
// give its copy up. Fetching it to own it some rows ahead takes that wait
// off the loop. Where the processor has no such fetch (PREFETCHW), a fetch
// to own is an ordinary fetch.
#pragma once

#include <cstdint>

namespace marv {

// Whether the processor can fetch a line to own it; found once.
bool fetchesToOwn();

// Fetches the line at address to be read.
inline void fetchLine(const void* address) { __builtin_prefetch(address); }

// Fetches the line at address to be written, when own (the result of
// fetchesToOwn, passed in so that a loop asks once).
inline void fetchLineToOwn(const void* address, bool own) {
#if defined(__x86_64__)
  if (own) {
    asm volatile("prefetchw %0" : : "m"(*static_cast<const char*>(address)));
    return;
  }
#endif
  (void)own;
  __builtin_prefetch(address, 1);
}

// Fetches the lines of values [from, to) to own them, when own.
inline void fetchRangeToOwn(const double* from, const double* to, bool own) {
  auto line = reinterpret_cast<std::uintptr_t>(from) & ~std::uintptr_t(63);
  const auto end = reinterpret_cast<std::uintptr_t>(to);
  for (; line < end; line += 64) fetchLineToOwn(reinterpret_cast<const void*>(line), own);
}

}  // namespace marv
