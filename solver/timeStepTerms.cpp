// Loop bodies of the time steps. Each public function picks the template
// instance for its switches once, outside the loops.
#include "solver/timeStepTerms.h"

namespace marv::stepTerms {

namespace {

// tau_ij = E a_ij at node c.
inline void storeStresses(const fields& f, int c, double E, const strainEntries& e) {
  f.tau11[c] = E * e.a11;
  f.tau12[c] = E * e.a12;
  f.tau13[c] = E * e.a13;
  f.tau22[c] = E * e.a22;
  f.tau23[c] = E * e.a23;
  f.tau33[c] = E * e.a33;
}

// Sub-grid scalar diffusion of q at node c, to be subtracted from its right
// side. Constant density: G(q) = (C S 0.5/sct)(d2x(q)/dx^2 + d2y(q)/dy^2 +
// d2z(q)/dz^2). Variable density: H(q) = K (fx(q)/dx^2 + fy(q)/dy^2 +
// fz(q)/dz^2) with K = -(ir C (C S) 0.5/sct) and
// fx(q) = d2x(q) rho + (q+x - q) rho+x - (q - q-x) rho-x.
template <bool thermo>
inline double subGridScalar(const double* q, const double* rho, int c, double S, double ir, const factors& k) {
  if constexpr (thermo) {
    auto flux = [&](int s) {
      return d2(q, c, s) * rho[c] + (q[c + s] - q[c]) * rho[c + s] - (q[c] - q[c - s]) * rho[c - s];
    };
    const double K = -(ir * k.smag * (k.smag * S) * k.scalarSgs);
    return K * (flux(1) * k.ix2 + flux(k.nx) * k.iy2 + flux(k.nxy) * k.iz2);
  } else {
    return (k.smag * S * k.scalarSgs) * (d2(q, c, 1) * k.ix2 + d2(q, c, k.nx) * k.iy2 + d2(q, c, k.nxy) * k.iz2);
  }
}

// Right side of a transported scalar at an interior node:
//   constant density: (nux d2x(q) + nuy d2y(q) + nuz d2z(q)) diff - cx(q) - cy(q) - cz(q) - G(q)
//   variable density: lapMu(q) ir diff - cx(q) - cy(q) - cz(q) - H(q)
// with diff = 1/sc or 1/pr.
template <bool threeD, bool sgsScalar, bool thermo>
inline double scalarRhs(const double* q, const double* rho, int c, double u, double v, double w, double S, double ir,
                        double diff, const factors& k) {
  double lap = k.vx * d2(q, c, 1) + k.vy * d2(q, c, k.nx);
  double conv = upwind(q, c, 1, u, k.hx) + upwind(q, c, k.nx, v, k.hy);
  if constexpr (threeD) {
    lap += k.vz * d2(q, c, k.nxy);
    conv += upwind(q, c, k.nxy, w, k.hz);
  }
  double r = (thermo ? lap * ir : lap) * diff - conv;
  if constexpr (threeD && sgsScalar) r -= subGridScalar<thermo>(q, rho, c, S, ir, k);
  return r;
}

// Sub-step 1, at each interior node:
//   a = -cx(.) - cy(.) - cz(.) of each velocity component
//   conv = a (constant density) or rho a (variable density)
//   divU = gx(u) + gy(v) + gz(w)
//   tau = E a_ij with E = C S, or rho C S
//   uRhs = nux d2x(u) + nuy d2y(u) + nuz d2z(u) + au                  constant density
//   uRhs = (lapMu(u) - rhow gfx) ir + au + gfx, likewise v with gfy,
//   wRhs = lapMu(w) ir + aw, tRhs = lapMu(T) ir/pr - cx(T) - ... - H(T)  variable density
template <bool threeD, bool sgs, bool sgsScalar, bool species, bool age, bool thermo>
void interiorLoop(const fields& f, const tileRange& r, const factors& k) {
  const int nx = k.nx, nxy = k.nxy;
  for (int kk = r.k0; kk < r.k1; ++kk) {
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * kk;
      for (int i = r.i0; i < r.i1; ++i) {
        const int c = row + i;
        const double uc = f.u[c], vc = f.v[c];
        const double wc = threeD ? f.w[c] : 0.0;
        const double rho = thermo ? f.rho[c] : 1.0;
        const double ir = thermo ? 1.0 / rho : 1.0;
        double au = -upwind(f.u, c, 1, uc, k.hx) - upwind(f.u, c, nx, vc, k.hy);
        double av = -upwind(f.v, c, 1, uc, k.hx) - upwind(f.v, c, nx, vc, k.hy);
        double div = central(f.u, c, 1, k.hx) + central(f.v, c, nx, k.hy);
        double lu = k.vx * d2(f.u, c, 1) + k.vy * d2(f.u, c, nx);
        double lv = k.vx * d2(f.v, c, 1) + k.vy * d2(f.v, c, nx);
        double S = 0.0;
        if constexpr (threeD) {
          au -= upwind(f.u, c, nxy, wc, k.hz);
          av -= upwind(f.v, c, nxy, wc, k.hz);
          const double aw = -upwind(f.w, c, 1, uc, k.hx) - upwind(f.w, c, nx, vc, k.hy) - upwind(f.w, c, nxy, wc, k.hz);
          div += central(f.w, c, nxy, k.hz);
          lu += k.vz * d2(f.u, c, nxy);
          lv += k.vz * d2(f.v, c, nxy);
          const double lw = k.vx * d2(f.w, c, 1) + k.vy * d2(f.w, c, nx) + k.vz * d2(f.w, c, nxy);
          f.convZ[c] = thermo ? rho * aw : aw;
          f.wRhs[c] = thermo ? lw * ir + aw : lw + aw;
          if constexpr (sgs) {
            const double g[3][3] = {
                {central(f.u, c, 1, k.hx), central(f.u, c, nx, k.hy), central(f.u, c, nxy, k.hz)},
                {central(f.v, c, 1, k.hx), central(f.v, c, nx, k.hy), central(f.v, c, nxy, k.hz)},
                {central(f.w, c, 1, k.hx), central(f.w, c, nx, k.hy), central(f.w, c, nxy, k.hz)},
            };
            const strainEntries e = strainOf(g);
            S = e.S;
            const double E = thermo ? rho * k.smag * S : k.smag * S;
            storeStresses(f, c, E, e);
          }
        } else {
          f.wRhs[c] = 0.0;
        }
        f.convX[c] = thermo ? rho * au : au;
        f.convY[c] = thermo ? rho * av : av;
        f.divU[c] = div;
        if constexpr (thermo) {
          f.uRhs[c] = (lu - k.rhow * k.gfx) * ir + au + k.gfx;
          f.vRhs[c] = (lv - k.rhow * k.gfy) * ir + av + k.gfy;
          f.tRhs[c] = scalarRhs<threeD, sgsScalar, true>(f.T, f.rho, c, uc, vc, wc, S, ir, k.invPr, k);
        } else {
          f.uRhs[c] = lu + au;
          f.vRhs[c] = lv + av;
        }
        if constexpr (species)
          f.yRhs[c] = scalarRhs<threeD, sgsScalar, thermo>(f.y, f.rho, c, uc, vc, wc, S, ir, k.invSc, k);
        if constexpr (age)
          f.aRhs[c] = scalarRhs<threeD, sgsScalar, thermo>(f.a, f.rho, c, uc, vc, wc, S, ir, k.invSc, k) + 1.0;
      }
    }
  }
}

template <bool threeD, bool sgs, bool sgsScalar, bool thermo>
void interiorByScalars(const fields& f, const tileRange& r, const factors& k, bool species, bool age) {
  if (species && age)
    interiorLoop<threeD, sgs, sgsScalar, true, true, thermo>(f, r, k);
  else if (species)
    interiorLoop<threeD, sgs, sgsScalar, true, false, thermo>(f, r, k);
  else if (age)
    interiorLoop<threeD, sgs, sgsScalar, false, true, thermo>(f, r, k);
  else
    interiorLoop<threeD, sgs, sgsScalar, false, false, thermo>(f, r, k);
}

template <bool thermo>
void interiorByModel(const fields& f, const tileRange& r, const factors& k, bool species, bool age) {
  if (!k.threeD)
    interiorByScalars<false, false, false, thermo>(f, r, k, species, age);
  else if (k.sgsScalar)
    interiorByScalars<true, true, true, thermo>(f, r, k, species, age);
  else if (k.sgs)
    interiorByScalars<true, true, false, thermo>(f, r, k, species, age);
  else
    interiorByScalars<true, false, false, thermo>(f, r, k, species, age);
}

// One outer plane, normal to axis (0 x, 1 y, 2 z), side 0 (first index) or
// 1 (last), over the nodes in r. Across the plane the derivative is dn and
// the normal convection is not upwinded:
//   conv = -(a_n dn(.) + upwind terms along the plane), times rho in variable density
//   divU = dn(normal component) + central derivatives along the plane
// The stresses use dn in place of the central derivative across the plane.
void planeLoop(const fields& f, const tileRange& r, const factors& k, int axis, int side, bool thermo) {
  const int dirs = k.threeD ? 3 : 2;
  const int stride[3] = {1, k.nx, k.nxy};
  const double half[3] = {k.hx, k.hy, k.hz};
  const double inv[3] = {k.ix, k.iy, k.iz};
  const double* vel[3] = {f.u, f.v, f.w};
  double* conv[3] = {f.convX, f.convY, f.convZ};
  for (int kk = r.k0; kk < r.k1; ++kk) {
    for (int j = r.j0; j < r.j1; ++j) {
      for (int i = r.i0; i < r.i1; ++i) {
        const int c = i + k.nx * j + k.nxy * kk;
        const double rho = thermo ? f.rho[c] : 1.0;
        const double a[3] = {vel[0][c], vel[1][c], k.threeD ? vel[2][c] : 0.0};
        double g[3][3] = {};
        double div = 0.0;
        for (int q = 0; q < dirs; ++q) {
          double acc = 0.0;
          for (int d = 0; d < dirs; ++d) {
            const bool normal = d == axis;
            g[q][d] = normal ? oneSided(vel[q], c, stride[d], side, inv[d]) : central(vel[q], c, stride[d], half[d]);
            acc -= normal ? a[d] * g[q][d] : upwind(vel[q], c, stride[d], a[d], half[d]);
          }
          conv[q][c] = rho * acc;
          div += g[q][q];
        }
        f.divU[c] = div;
        if (k.sgs) {
          const strainEntries e = strainOf(g);
          const double E = rho * k.smag * e.S;
          storeStresses(f, c, E, e);
        }
      }
    }
  }
}

}  // namespace

factors factorsOf(const appConfig& c, int nx, int nxy, bool thermo) {
  factors k;
  k.nx = nx;
  k.nxy = nxy;
  k.hx = 0.5 / c.dx, k.hy = 0.5 / c.dy, k.hz = 0.5 / c.dz;
  k.ix = 1.0 / c.dx, k.iy = 1.0 / c.dy, k.iz = 1.0 / c.dz;
  k.ix2 = k.ix * k.ix, k.iy2 = k.iy * k.iy, k.iz2 = k.iz * k.iz;
  const double kinematic = thermo ? c.mu : c.mu / c.rhow;
  k.vx = kinematic / (c.dx * c.dx);
  k.vy = kinematic / (c.dy * c.dy);
  k.vz = kinematic / (c.dz * c.dz);
  k.invSc = 1.0 / c.sc;
  k.invPr = 1.0 / c.pr;
  k.rhow = c.rhow;
  k.gfx = c.gfx;
  k.gfy = c.gfy;
  k.threeD = c.nz > 1;
  const bool csSet = c.cs != dashValue;
  const bool sctSet = c.sct != dashValue;
  k.sgs = csSet && k.threeD;
  k.sgsScalar = k.sgs && sctSet;
  k.smag = -2.0 * std::sqrt(2.0) * c.cs * c.cs * (c.dx * c.dx + c.dy * c.dy + c.dz * c.dz);
  k.scalarSgs = sctSet ? 0.5 / c.sct : 0.0;
  return k;
}

fields fieldsOf(solverCommon& s, const array3d<double>* T, const array3d<double>* rho, array3d<double>* tRhs) {
  fields f;
  f.u = s.ufld.data, f.v = s.vfld.data, f.w = s.wfld.data, f.y = s.yfld.data, f.a = s.afld.data;
  f.T = T ? T->data : nullptr;
  f.rho = rho ? rho->data : nullptr;
  f.convX = s.convX.data, f.convY = s.convY.data, f.convZ = s.convZ.data, f.divU = s.divU.data;
  f.tau11 = s.tau11.data, f.tau12 = s.tau12.data, f.tau13 = s.tau13.data;
  f.tau22 = s.tau22.data, f.tau23 = s.tau23.data, f.tau33 = s.tau33.data;
  f.uRhs = s.uRhs.data, f.vRhs = s.vRhs.data, f.wRhs = s.wRhs.data, f.yRhs = s.yRhs.data, f.aRhs = s.aRhs.data;
  f.tRhs = tRhs ? tRhs->data : nullptr;
  return f;
}

void interiorTerms(const fields& f, const tileRange& r, const factors& k, bool thermo, bool species, bool age) {
  if (thermo)
    interiorByModel<true>(f, r, k, species, age);
  else
    interiorByModel<false>(f, r, k, species, age);
}

void faceTerms(const fields& f, const appConfig& c, int t, const factors& k, bool thermo) {
  const tileRange tile = tileOf(c, t);
  const tileRange in = interiorOf(c, t);
  // A thread treats a plane only where its tile touches it; along the plane
  // it covers its interior range, so edges and corners are left out.
  if (tile.i0 == 0 && tile.i1 > 0) planeLoop(f, {0, 1, in.j0, in.j1, in.k0, in.k1}, k, 0, 0, thermo);
  if (tile.i1 == c.nx && tile.i0 < c.nx) planeLoop(f, {c.nx - 1, c.nx, in.j0, in.j1, in.k0, in.k1}, k, 0, 1, thermo);
  if (tile.j0 == 0 && tile.j1 > 0) planeLoop(f, {in.i0, in.i1, 0, 1, in.k0, in.k1}, k, 1, 0, thermo);
  if (tile.j1 == c.ny && tile.j0 < c.ny) planeLoop(f, {in.i0, in.i1, c.ny - 1, c.ny, in.k0, in.k1}, k, 1, 1, thermo);
  if (!k.threeD) return;
  if (tile.k0 == 0 && tile.k1 > 0) planeLoop(f, {in.i0, in.i1, in.j0, in.j1, 0, 1}, k, 2, 0, thermo);
  if (tile.k1 == c.nz && tile.k0 < c.nz) planeLoop(f, {in.i0, in.i1, in.j0, in.j1, c.nz - 1, c.nz}, k, 2, 1, thermo);
}

// uRhs -= s (gx(tau11) + gy(tau12) + gz(tau13))
// vRhs -= s (gx(tau12) + gy(tau22) + gz(tau23))
// wRhs -= s (gx(tau13) + gy(tau23) + gz(tau33))
// with s = 1 (constant density) or ir (variable density).
template <bool thermo>
void stressDivergenceLoop(const fields& f, const tileRange& r, const factors& k) {
  const int nx = k.nx, nxy = k.nxy;
  for (int kk = r.k0; kk < r.k1; ++kk)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * kk;
      for (int i = r.i0; i < r.i1; ++i) {
        const int c = row + i;
        double s = 1.0;
        if constexpr (thermo) s = 1.0 / f.rho[c];
        f.uRhs[c] -=
            s * (central(f.tau11, c, 1, k.hx) + central(f.tau12, c, nx, k.hy) + central(f.tau13, c, nxy, k.hz));
        f.vRhs[c] -=
            s * (central(f.tau12, c, 1, k.hx) + central(f.tau22, c, nx, k.hy) + central(f.tau23, c, nxy, k.hz));
        f.wRhs[c] -=
            s * (central(f.tau13, c, 1, k.hx) + central(f.tau23, c, nx, k.hy) + central(f.tau33, c, nxy, k.hz));
      }
    }
}

// Constant density:
//   ppe = rhow (gx(convX) + gy(convY) + gz(convZ)) + (rhow/deltat) divU + L
// Variable density:
//   ppe = (1/deltat)(gx(rho u) + gy(rho v) + gz(rho w)) + gx(convX) + gy(convY) + gz(convZ) + L
// with L = (2 mu/dx^2) d2x(divU) + (2 mu/dy^2) d2y(divU) + (2 mu/dz^2) d2z(divU).
template <bool thermo>
void pressureRhsLoop(const fields& f, double* ppe, const tileRange& r, const factors& k, const appConfig& c) {
  const int nx = k.nx, nxy = k.nxy;
  const double convFactor = thermo ? 1.0 : c.rhow;
  const double invDt = 1.0 / c.deltat, rhoDt = c.rhow / c.deltat;
  const double mx = 2.0 * c.mu * k.ix2, my = 2.0 * c.mu * k.iy2, mz = 2.0 * c.mu * k.iz2;
  const bool threeD = k.threeD;
  // gx(rho q) = (rho+x q+x - rho-x q-x) 0.5/dx
  auto massFlux = [&](const double* q, int n, int s, double half) {
    return (f.rho[n + s] * q[n + s] - f.rho[n - s] * q[n - s]) * half;
  };
  for (int kk = r.k0; kk < r.k1; ++kk)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * kk;
      for (int i = r.i0; i < r.i1; ++i) {
        const int n = row + i;
        double value = convFactor * (central(f.convX, n, 1, k.hx) + central(f.convY, n, nx, k.hy)) +
                       mx * d2(f.divU, n, 1) + my * d2(f.divU, n, nx);
        if (threeD) value += convFactor * central(f.convZ, n, nxy, k.hz) + mz * d2(f.divU, n, nxy);
        if constexpr (thermo) {
          double flux = massFlux(f.u, n, 1, k.hx) + massFlux(f.v, n, nx, k.hy);
          if (threeD) flux += massFlux(f.w, n, nxy, k.hz);
          value += invDt * flux;
        } else {
          value += rhoDt * f.divU[n];
        }
        ppe[n] = value;
      }
    }
}

// uRhs -= gx(p) s, vRhs -= gy(p) s, and in 3D wRhs -= gz(p) s, with s = 1/rhow
// (constant density) or ir (variable density).
template <bool thermo>
void pressureGradientLoop(const fields& f, const double* p, const tileRange& r, const factors& k) {
  const int nx = k.nx, nxy = k.nxy;
  const double fixed = 1.0 / k.rhow;
  for (int kk = r.k0; kk < r.k1; ++kk)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * kk;
      for (int i = r.i0; i < r.i1; ++i) {
        const int n = row + i;
        double s = fixed;
        if constexpr (thermo) s = 1.0 / f.rho[n];
        f.uRhs[n] -= central(p, n, 1, k.hx) * s;
        f.vRhs[n] -= central(p, n, nx, k.hy) * s;
        if (k.threeD) f.wRhs[n] -= central(p, n, nxy, k.hz) * s;
      }
    }
}

void stressDivergence(const fields& f, const tileRange& r, const factors& k, bool thermo) {
  if (thermo)
    stressDivergenceLoop<true>(f, r, k);
  else
    stressDivergenceLoop<false>(f, r, k);
}

void pressureRhs(const fields& f, double* ppe, const tileRange& r, const factors& k, const appConfig& c, bool thermo) {
  if (thermo)
    pressureRhsLoop<true>(f, ppe, r, k, c);
  else
    pressureRhsLoop<false>(f, ppe, r, k, c);
}

void pressureGradient(const fields& f, const double* p, const tileRange& r, const factors& k, bool thermo) {
  if (thermo)
    pressureGradientLoop<true>(f, p, r, k);
  else
    pressureGradientLoop<false>(f, p, r, k);
}

}  // namespace marv::stepTerms
