// Memory estimate of a mesh and the out-of-memory end of the process.
#include "app/meshMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <new>
#include <string>

namespace marv {

namespace {

const char* programName = "marvanesse";

[[noreturn]] void outOfMemory() {
  // No allocation and no destructor from here: write and leave.
  char text[256];
  const int n = std::snprintf(text, sizeof text,
                              "%s: out of memory: the case needs more memory than this machine can give "
                              "(a smaller mesh or fewer threads may fit)\n",
                              programName);
  if (n > 0) {
    const ssize_t ignored = ::write(2, text, static_cast<std::size_t>(n) < sizeof text ? n : sizeof text - 1);
    (void)ignored;
  }
  _exit(1);
}

}  // namespace

std::uint64_t meshMemoryBytes(const appConfig& cfg) {
  const std::uint64_t nodes = static_cast<std::uint64_t>(cfg.nx > 0 ? cfg.nx : 1) *
                              static_cast<std::uint64_t>(cfg.ny > 0 ? cfg.ny : 1) *
                              static_cast<std::uint64_t>(cfg.nz > 0 ? cfg.nz : 1);
  // Solver: velocity, species, their time derivatives, pressure, convection,
  // divergence and six stresses (19 doubles); age adds two, the thermo-fluid
  // mode three.
  std::uint64_t doubles = 19 + (cfg.ageFlag ? 2 : 0) + (cfg.cmode == 1 ? 3 : 0);
  doubles += 1;  // the domain's boundary field
  // Domain: image points (3 floats), nearest triangle, flags, solid mask
  // (3 ints), eight type masks (floats), the preparation's scratch (a float
  // and a byte).
  const std::uint64_t perNode = doubles * 8 + 3 * 4 + 3 * 4 + 8 * 4 + 4 + 1;
  const std::uint64_t nx = cfg.nx > 0 ? cfg.nx : 1, ny = cfg.ny > 0 ? cfg.ny : 1, nz = cfg.nz > 0 ? cfg.nz : 1;
  const std::uint64_t bitmaps = (nx * ny + ny * nz + nx * nz) * maxBitmapSlices * 4;
  return nodes * perNode + bitmaps;
}

std::uint64_t availableMemoryBytes() {
  std::ifstream in("/proc/meminfo");
  std::string key;
  std::uint64_t value = 0, memAvailable = 0, swapFree = 0;
  bool found = false;
  while (in >> key >> value) {
    if (key == "MemAvailable:") {
      memAvailable = value * 1024;
      found = true;
    } else if (key == "SwapFree:") {
      swapFree = value * 1024;
    }
    in.ignore(256, '\n');
  }
  std::uint64_t available = found ? memAvailable + swapFree : 0;
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
    const std::uint64_t bound = static_cast<std::uint64_t>(limit.rlim_cur);
    available = available == 0 || bound < available ? bound : available;
  }
  return available;
}

std::string memoryShortfall(std::uint64_t needed, std::uint64_t available) {
  if (available == 0 || needed <= available) return std::string();
  constexpr double gib = 1024.0 * 1024.0 * 1024.0;
  char text[200];
  std::snprintf(text, sizeof text, "The mesh nx*ny*nz needs about %.1f GiB, this machine has %.1f GiB available.",
                needed / gib, available / gib);
  return text;
}

void endOnAllocationFailure(const char* program) {
  programName = program;
  std::set_new_handler(outOfMemory);
}

}  // namespace marv
