// array3d: a contiguous field of nx*ny*nz elements, i fastest, flat index
// i + nx*j + nxy*k, with no padding and no ghost layers.
//
// Ownership. array3d<T> is a plain header {data, nx, ny, nz, nxy}: copying it
// gives a view that aliases the same storage and never frees it. The one
// owner of a block is an ownedArray3d<T>, which is an array3d<T> that also
// allocates (zeroed) and frees. Because it derives from the header, an owner
// is passed wherever a header is expected, and `array3d<double> v = owner;`
// makes a view. A view must not be used after its owner is gone.
//
// Index arithmetic and the element count are 32-bit signed: a size whose
// count does not fit is refused with std::length_error before anything is
// allocated. No access is bounds-checked; loops compute flat indices from the
// array's own nx and nxy.
#pragma once

#include <memory>
#include <utility>

namespace marv {

template <class T>
struct array3d {
  T* data = nullptr;  // nx*ny*nz elements, null when empty; not owned by a view
  int nx = 0;         // nodes along x
  int ny = 0;         // nodes along y
  int nz = 0;         // nodes along z
  int nxy = 0;        // nx*ny, the stride of one step in k

  T& operator()(int i, int j, int k) const { return data[i + nx * j + nxy * k]; }
  T& operator[](int n) const { return data[n]; }
  int count() const { return nxy * nz; }  // elements, 0 when empty
};

// nx*ny*nz when all three are at least 1, 0 when any is below 1. Throws
// std::length_error, naming the sizes, when the count exceeds 2^31 - 1.
int checkedElementCount(int nx, int ny, int nz);

// The owner of one block. Move-only; the block is freed with the owner.
template <class T>
class ownedArray3d : public array3d<T> {
 public:
  ownedArray3d() = default;
  ownedArray3d(int nx, int ny, int nz) { allocate(nx, ny, nz); }
  ownedArray3d(const ownedArray3d&) = delete;
  ownedArray3d& operator=(const ownedArray3d&) = delete;
  ownedArray3d(ownedArray3d&& other) noexcept { swap(other); }
  ownedArray3d& operator=(ownedArray3d&& other) noexcept {
    ownedArray3d gone(std::move(other));
    swap(gone);
    return *this;
  }

  // Same sizes (all at least 1): nothing changes. Other sizes: a new zeroed
  // block. Any size below 1: the array becomes empty.
  void resize(int nx, int ny, int nz) {
    if (nx >= 1 && ny >= 1 && nz >= 1 && nx == this->nx && ny == this->ny && nz == this->nz) return;
    allocate(nx, ny, nz);
  }

 private:
  void allocate(int nx, int ny, int nz) {
    const int count = checkedElementCount(nx, ny, nz);  // throws before anything changes
    std::unique_ptr<T[]> block = count > 0 ? std::make_unique<T[]>(count) : nullptr;
    storage_ = std::move(block);
    this->data = storage_.get();
    this->nx = count > 0 ? nx : 0;
    this->ny = count > 0 ? ny : 0;
    this->nz = count > 0 ? nz : 0;
    this->nxy = this->nx * this->ny;
  }
  void swap(ownedArray3d& other) noexcept {
    std::swap(static_cast<array3d<T>&>(*this), static_cast<array3d<T>&>(other));
    std::swap(storage_, other.storage_);
  }

  std::unique_ptr<T[]> storage_;  // the block that data points at
};

// Bulk operations. Each takes its element count from a, as nx*ny*nz, and
// walks flat indices from 0 upward; on an empty a they do nothing. The other
// operands are indexed with the same flat index and their sizes are not
// looked at.

// a[n] = value.
template <class T>
void fill(const array3d<T>& a, T value) {
  const int count = a.count();
  for (int n = 0; n < count; ++n) a.data[n] = value;
}

// a[n] = source[n].
template <class T>
void copyFrom(const array3d<T>& a, const array3d<T>& source) {
  const int count = a.count();
  for (int n = 0; n < count; ++n) a.data[n] = source.data[n];
}

// a[n] = x[n]*y[n].
inline void setProduct(const array3d<double>& a, const array3d<double>& x, const array3d<double>& y) {
  const int count = a.count();
  for (int n = 0; n < count; ++n) a.data[n] = x.data[n] * y.data[n];
}

// a[n] += b[n].
inline void add(const array3d<double>& a, const array3d<double>& b) {
  const int count = a.count();
  for (int n = 0; n < count; ++n) a.data[n] += b.data[n];
}

}  // namespace marv
