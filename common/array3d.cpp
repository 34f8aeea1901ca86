// The size check of array3d: the one place where a requested field size is
// compared with what 32-bit index arithmetic can address.
#include "common/array3d.h"

#include <climits>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace marv {

int checkedElementCount(int nx, int ny, int nz) {
  if (nx < 1 || ny < 1 || nz < 1) return 0;
  // nx*ny fits in 64 bits; once it is known to be below 2^31, so does the
  // product with nz.
  const std::int64_t plane = static_cast<std::int64_t>(nx) * ny;
  if (plane > INT_MAX || plane * nz > INT_MAX) {
    throw std::length_error("a field of " + std::to_string(nx) + " x " + std::to_string(ny) + " x " +
                            std::to_string(nz) + " nodes exceeds the " + std::to_string(INT_MAX) +
                            " elements that 32-bit indices can address");
  }
  return static_cast<int>(plane * nz);
}

}  // namespace marv
