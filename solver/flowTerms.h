// Stencils shared by the two time steps: upwind convection, central and
// one-sided derivatives, and the Smagorinsky strain measure of a node. All
// take a field's data and a flat index; the strides are those of the field.
//
//   d2(q)  = q+ - 2q + q-                       second difference
//   g(q)   = (q+ - q-) * 0.5/h                  central first derivative
//   c(q)   = (a (q+ - q-) - |a| d2(q)) * 0.5/h  upwind form of a dq/dx, a at the node
//   dn(q)  = (q(1) - q(0))/h or (q(n-1) - q(n-2))/h on an outer plane
#pragma once

#include <cmath>

namespace marv {

inline double d2(const double* q, int c, int s) { return q[c + s] - q[c] - q[c] + q[c - s]; }
inline double central(const double* q, int c, int s, double half) { return (q[c + s] - q[c - s]) * half; }
inline double upwind(const double* q, int c, int s, double a, double half) {
  return (a * (q[c + s] - q[c - s]) - std::fabs(a) * d2(q, c, s)) * half;
}
// One-sided derivative at an outer node c: side 0 looks inward with +s, side
// 1 with -s; inv is 1/h.
inline double oneSided(const double* q, int c, int s, int side, double inv) {
  return side == 0 ? (q[c + s] - q[c]) * inv : (q[c] - q[c - s]) * inv;
}

// The six entries a_ij (twice the strain rate) of a node and its measure
// S = sqrt(a11^2 + a22^2 + a33^2 + 2 a12^2 + 2 a13^2 + 2 a23^2), from the nine
// velocity derivatives g[component][direction].
struct strainEntries {
  double a11 = 0.0, a22 = 0.0, a33 = 0.0, a12 = 0.0, a13 = 0.0, a23 = 0.0;
  double S = 0.0;  // strain measure [1/s]
};

inline strainEntries strainOf(const double g[3][3]) {
  strainEntries e;
  e.a11 = 2.0 * g[0][0];
  e.a22 = 2.0 * g[1][1];
  e.a33 = 2.0 * g[2][2];
  e.a12 = g[0][1] + g[1][0];
  e.a13 = g[0][2] + g[2][0];
  e.a23 = g[1][2] + g[2][1];
  e.S = std::sqrt(e.a11 * e.a11 + e.a22 * e.a22 + e.a33 * e.a33 + 2.0 * e.a12 * e.a12 + 2.0 * e.a13 * e.a13 +
                  2.0 * e.a23 * e.a23);
  return e;
}

}  // namespace marv
