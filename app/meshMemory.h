// What a mesh costs in memory before anything is allocated, what the machine
// can give, and the end of the process when an allocation fails anyway.
#pragma once

#include <cstdint>
#include <string>

#include "app/appConfig.h"

namespace marv {

// Bytes that the fields of a case of cfg's mesh and mode take: the solver's
// fields, the domain's per-node arrays, the bitmap slices. An estimate from
// the counts alone, never below what is allocated.
std::uint64_t meshMemoryBytes(const appConfig& cfg);

// Bytes the process can still use: the memory and swap the system reports as
// available (/proc/meminfo), bounded by the address-space limit. 0 when
// unknown.
std::uint64_t availableMemoryBytes();

// The refusal or warning text when needed exceeds available ("... needs X GiB,
// this machine has Y GiB ..."); empty when it fits or available is unknown.
std::string memoryShortfall(std::uint64_t needed, std::uint64_t available);

// From here on a failed allocation ends the process with one line on stderr
// ("PROGRAM: out of memory ...") and exit status 1, instead of an abort.
void endOnAllocationFailure(const char* program);

}  // namespace marv
