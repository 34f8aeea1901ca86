// gradOperator: first derivatives of whole fields along one grid direction,
// for the display and the domain build. Central differences at interior
// nodes, one-sided at the two ends of every line, boundary nodes included.
// The solver's own stencils do not use it.
#pragma once

#include <array>

#include "app/appConfig.h"
#include "common/array3d.h"

namespace marv {

// Coefficients: three blocks (x, y, z) of five rows of ten columns. Row 0 is
// the central difference, row 1 the forward one at the low end of a line,
// row 2 the backward one at the high end; only columns 0 and 1 of rows 0..2
// are used, the rest is 0.
struct gradOperator {
  std::array<double, 150> table{};  // [1/m]

  double at(int block, int row, int column) const { return table[block * 50 + row * 10 + column]; }
};

// The table for spacings dx, dy, dz [m].
gradOperator makeGradOperator(double dx, double dy, double dz);

// out = dq/dx over the nx, ny, nz of grid. With nx = 1 out is all zero. q and
// out are distinct and each indexed with its own nx and nxy.
void gradX(const gradOperator& op, const appConfig& grid, const array3d<double>& q, const array3d<double>& out);
// out = dq/dy. Lines of one node are never asked for; out is then left as it was.
void gradY(const gradOperator& op, const appConfig& grid, const array3d<double>& q, const array3d<double>& out);
// out = dq/dz. A two-dimensional caller fills zeros itself instead; with
// nz = 1 out is left as it was.
void gradZ(const gradOperator& op, const appConfig& grid, const array3d<double>& q, const array3d<double>& out);
// Float forms: each term widened to double, one rounding at the store.
void gradYFloat(const gradOperator& op, const appConfig& grid, const array3d<float>& q, const array3d<float>& out);
void gradZFloat(const gradOperator& op, const appConfig& grid, const array3d<float>& q, const array3d<float>& out);

}  // namespace marv
