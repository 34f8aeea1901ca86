// array3d: a contiguous field of nx*ny*nz elements, i fastest, flat index
// i + nx*j + nxy*k. The owner allocates and frees; header copies (views)
// alias the same storage and never free it.
#pragma once

#include <cstdint>

namespace marv {

template <class T>
struct array3d {
  T* data = nullptr;  // storage, owned by exactly one holder
  int nx = 0;         // nodes along x
  int ny = 0;         // nodes along y
  int nz = 0;         // nodes along z
  int nxy = 0;        // nx*ny
};

}  // namespace marv
