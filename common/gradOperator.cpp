// First derivatives of whole fields: one worker walks every grid line of a
// direction, given as a stride, and the public forms choose the stride.
#include "common/gradOperator.h"

namespace marv {

namespace {

// Along every line of direction block (0 x, 1 y, 2 z), whose nodes lie
// stride apart in both arrays' flat indices:
//   out(m) = T00*q(m+1) + T01*q(m-1)       at interior nodes
//   out(0) = T10*q(0) + T11*q(1),  out(n-1) = T20*q(n-1) + T21*q(n-2)
// The sum is formed in double and rounded to S once, at the store.
template <class S>
void gradAlong(const gradOperator& op, int block, int n, int lines1, int lines2, const array3d<S>& q,
               const array3d<S>& out) {
  if (n < 2) return;  // a one-node line has no difference; out stays as it was
  const double c00 = op.at(block, 0, 0), c01 = op.at(block, 0, 1);
  const double c10 = op.at(block, 1, 0), c11 = op.at(block, 1, 1);
  const double c20 = op.at(block, 2, 0), c21 = op.at(block, 2, 1);
  // The two other directions, in q's and out's own strides.
  const int qs[3] = {1, q.nx, q.nxy}, os[3] = {1, out.nx, out.nxy};
  const int a = block == 0 ? 1 : 0, b = block == 2 ? 1 : 2;
  const int qStride = qs[block], oStride = os[block];
  for (int l2 = 0; l2 < lines2; ++l2) {
    for (int l1 = 0; l1 < lines1; ++l1) {
      const int q0 = l1 * qs[a] + l2 * qs[b];
      const int o0 = l1 * os[a] + l2 * os[b];
      for (int m = 1; m < n - 1; ++m) {
        const double sum = double(q.data[q0 + (m - 1) * qStride]) * c01 + double(q.data[q0 + (m + 1) * qStride]) * c00;
        out.data[o0 + m * oStride] = static_cast<S>(sum);
      }
      const double low = double(q.data[q0 + qStride]) * c11 + double(q.data[q0]) * c10;
      out.data[o0] = static_cast<S>(low);
      const double high = double(q.data[q0 + (n - 1) * qStride]) * c20 + double(q.data[q0 + (n - 2) * qStride]) * c21;
      out.data[o0 + (n - 1) * oStride] = static_cast<S>(high);
    }
  }
}

}  // namespace

gradOperator makeGradOperator(double dx, double dy, double dz) {
  gradOperator op;
  const double h[3] = {dx, dy, dz};
  for (int block = 0; block < 3; ++block) {
    double* t = op.table.data() + block * 50;
    t[0] = 0.5 / h[block];
    t[1] = -0.5 / h[block];
    t[10] = -1.0 / h[block];
    t[11] = 1.0 / h[block];
    t[20] = 1.0 / h[block];
    t[21] = -1.0 / h[block];
  }
  return op;
}

void gradX(const gradOperator& op, const appConfig& grid, const array3d<double>& q, const array3d<double>& out) {
  if (grid.nx == 1) {
    fill(out, 0.0);
    return;
  }
  gradAlong(op, 0, grid.nx, grid.ny, grid.nz, q, out);
}

void gradY(const gradOperator& op, const appConfig& grid, const array3d<double>& q, const array3d<double>& out) {
  gradAlong(op, 1, grid.ny, grid.nx, grid.nz, q, out);
}

void gradZ(const gradOperator& op, const appConfig& grid, const array3d<double>& q, const array3d<double>& out) {
  gradAlong(op, 2, grid.nz, grid.nx, grid.ny, q, out);
}

void gradYFloat(const gradOperator& op, const appConfig& grid, const array3d<float>& q, const array3d<float>& out) {
  gradAlong(op, 1, grid.ny, grid.nx, grid.nz, q, out);
}

void gradZFloat(const gradOperator& op, const appConfig& grid, const array3d<float>& q, const array3d<float>& out) {
  gradAlong(op, 2, grid.nz, grid.nx, grid.ny, q, out);
}

}  // namespace marv
