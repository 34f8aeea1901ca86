// The constant-density time step. Sub-steps, in the order a step runs them,
// each over the thread's own range and separated by barriers:
//   1 interiorTerms    convection, divergence, stresses, momentum and scalar right sides
//   2 faceTerms        the same quantities on the outer planes, one-sided across them
//   3 stressDivergence (3D with the sub-grid model)
//   4 pressureRhs      source of the pressure equation
//   5-8                the pressure iteration (solvePressure)
//   9 pressureGradient the only place where the pressure reaches the velocity
//  10 integrate        forward Euler of every field
//  11 boundaryStage
//
// Settings that switch terms on and off (sub-grid model, species, age) are
// template parameters of the loop bodies, so the loops themselves carry no
// test of them.
#include "solver/incompSolver.h"

#include <cmath>

#include "solver/flowTerms.h"

namespace marv {

namespace {

// Grid factors of a step, formed once before any loop.
struct stepFactors {
  int nx = 0, nxy = 0;               // strides
  double hx = 0, hy = 0, hz = 0;     // 0.5/dx, 0.5/dy, 0.5/dz [1/m]
  double ix = 0, iy = 0, iz = 0;     // 1/dx, 1/dy, 1/dz [1/m]
  double nux = 0, nuy = 0, nuz = 0;  // mu/(rhow dx^2) ... [1/s]
  double ix2 = 0, iy2 = 0, iz2 = 0;  // 1/dx^2 ... [1/m^2]
  double invSc = 1.0;                // 1/sc
  double smag = 0.0;                 // C = -2 sqrt(2) cs^2 (dx^2 + dy^2 + dz^2) [m^2]
  double scalarSgs = 0.0;            // 0.5/sct
  bool sgs = false;                  // stresses: cs set and 3D
  bool sgsScalar = false;            // sub-grid scalar diffusion: cs and sct set and 3D
};

stepFactors factorsOf(const appConfig& c, int nx, int nxy) {
  stepFactors f;
  f.nx = nx;
  f.nxy = nxy;
  f.hx = 0.5 / c.dx, f.hy = 0.5 / c.dy, f.hz = 0.5 / c.dz;
  f.ix = 1.0 / c.dx, f.iy = 1.0 / c.dy, f.iz = 1.0 / c.dz;
  f.nux = c.mu / (c.rhow * c.dx * c.dx);
  f.nuy = c.mu / (c.rhow * c.dy * c.dy);
  f.nuz = c.mu / (c.rhow * c.dz * c.dz);
  f.ix2 = 1.0 / (c.dx * c.dx), f.iy2 = 1.0 / (c.dy * c.dy), f.iz2 = 1.0 / (c.dz * c.dz);
  f.invSc = 1.0 / c.sc;
  const bool csSet = c.cs != dashValue;
  const bool sctSet = c.sct != dashValue;
  f.sgs = csSet && c.nz > 1;
  f.sgsScalar = f.sgs && sctSet;
  f.smag = -2.0 * std::sqrt(2.0) * c.cs * c.cs * (c.dx * c.dx + c.dy * c.dy + c.dz * c.dz);
  f.scalarSgs = sctSet ? 0.5 / c.sct : 0.0;
  return f;
}

// Right side of a transported scalar at an interior node:
//   (nux d2x(q) + nuy d2y(q) + nuz d2z(q))/sc - cx(q) - cy(q) - cz(q) - G(q)
// with G(q) = (C S 0.5/sct)(d2x(q)/dx^2 + d2y(q)/dy^2 + d2z(q)/dz^2) in 3D.
template <bool threeD, bool sgsScalar>
inline double scalarRhs(const double* q, int c, double u, double v, double w, double S, const stepFactors& f) {
  double r =
      (f.nux * d2(q, c, 1) + f.nuy * d2(q, c, f.nx)) * f.invSc - upwind(q, c, 1, u, f.hx) - upwind(q, c, f.nx, v, f.hy);
  if constexpr (threeD) {
    r += f.nuz * d2(q, c, f.nxy) * f.invSc - upwind(q, c, f.nxy, w, f.hz);
    if constexpr (sgsScalar)
      r -= (f.smag * S * f.scalarSgs) * (d2(q, c, 1) * f.ix2 + d2(q, c, f.nx) * f.iy2 + d2(q, c, f.nxy) * f.iz2);
  }
  return r;
}

// Sub-step 1 over the interior range r:
//   conv = -cx(.) - cy(.) - cz(.) of each velocity component
//   divU = gx(u) + gy(v) + gz(w)
//   tau  = C S a  (with sgs)
//   uRhs = nux d2x(u) + nuy d2y(u) + nuz d2z(u) + convX, likewise v, w
template <bool threeD, bool sgs, bool sgsScalar, bool species, bool age>
void interiorLoop(incompSolver& s, const tileRange& r, const stepFactors& f) {
  const double* u = s.ufld.data;
  const double* v = s.vfld.data;
  const double* w = s.wfld.data;
  const double* y = s.yfld.data;
  const double* a = s.afld.data;
  const int nx = f.nx, nxy = f.nxy;
  for (int k = r.k0; k < r.k1; ++k) {
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = r.i0; i < r.i1; ++i) {
        const int c = row + i;
        const double uc = u[c], vc = v[c];
        const double wc = threeD ? w[c] : 0.0;
        double ax = -upwind(u, c, 1, uc, f.hx) - upwind(u, c, nx, vc, f.hy);
        double ay = -upwind(v, c, 1, uc, f.hx) - upwind(v, c, nx, vc, f.hy);
        double div = central(u, c, 1, f.hx) + central(v, c, nx, f.hy);
        double S = 0.0;
        if constexpr (threeD) {
          ax -= upwind(u, c, nxy, wc, f.hz);
          ay -= upwind(v, c, nxy, wc, f.hz);
          const double az = -upwind(w, c, 1, uc, f.hx) - upwind(w, c, nx, vc, f.hy) - upwind(w, c, nxy, wc, f.hz);
          div += central(w, c, nxy, f.hz);
          s.convZ.data[c] = az;
          if constexpr (sgs) {
            const double g[3][3] = {
                {central(u, c, 1, f.hx), central(u, c, nx, f.hy), central(u, c, nxy, f.hz)},
                {central(v, c, 1, f.hx), central(v, c, nx, f.hy), central(v, c, nxy, f.hz)},
                {central(w, c, 1, f.hx), central(w, c, nx, f.hy), central(w, c, nxy, f.hz)},
            };
            const strainEntries e = strainOf(g);
            S = e.S;
            const double E = f.smag * S;
            s.tau11.data[c] = E * e.a11;
            s.tau12.data[c] = E * e.a12;
            s.tau13.data[c] = E * e.a13;
            s.tau22.data[c] = E * e.a22;
            s.tau23.data[c] = E * e.a23;
            s.tau33.data[c] = E * e.a33;
          }
          s.wRhs.data[c] = f.nux * d2(w, c, 1) + f.nuy * d2(w, c, nx) + f.nuz * d2(w, c, nxy) + az;
          s.uRhs.data[c] = f.nux * d2(u, c, 1) + f.nuy * d2(u, c, nx) + f.nuz * d2(u, c, nxy) + ax;
          s.vRhs.data[c] = f.nux * d2(v, c, 1) + f.nuy * d2(v, c, nx) + f.nuz * d2(v, c, nxy) + ay;
        } else {
          s.wRhs.data[c] = 0.0;
          s.uRhs.data[c] = f.nux * d2(u, c, 1) + f.nuy * d2(u, c, nx) + ax;
          s.vRhs.data[c] = f.nux * d2(v, c, 1) + f.nuy * d2(v, c, nx) + ay;
        }
        s.convX.data[c] = ax;
        s.convY.data[c] = ay;
        s.divU.data[c] = div;
        if constexpr (species) s.yRhs.data[c] = scalarRhs<threeD, sgsScalar>(y, c, uc, vc, wc, S, f);
        if constexpr (age) s.aRhs.data[c] = scalarRhs<threeD, sgsScalar>(a, c, uc, vc, wc, S, f) + 1.0;
      }
    }
  }
}

template <bool threeD, bool sgs, bool sgsScalar>
void interiorBySpecies(incompSolver& s, const tileRange& r, const stepFactors& f, bool species, bool age) {
  if (species && age)
    interiorLoop<threeD, sgs, sgsScalar, true, true>(s, r, f);
  else if (species)
    interiorLoop<threeD, sgs, sgsScalar, true, false>(s, r, f);
  else if (age)
    interiorLoop<threeD, sgs, sgsScalar, false, true>(s, r, f);
  else
    interiorLoop<threeD, sgs, sgsScalar, false, false>(s, r, f);
}

// One outer plane, normal to axis (0 x, 1 y, 2 z), on side 0 (index 0) or
// 1 (last index), over the nodes in r. Across the plane derivatives are
// one-sided and the normal convection is not upwinded:
//   conv = -a_n dn(.) - (upwind terms along the plane)
//   divU = dn(normal component) + central derivatives along the plane
// Stresses use dn in place of the central derivative across the plane.
void planeLoop(incompSolver& s, const tileRange& r, const stepFactors& f, int axis, int side, bool threeD) {
  const int dirs = threeD ? 3 : 2;
  const int stride[3] = {1, f.nx, f.nxy};
  const double half[3] = {f.hx, f.hy, f.hz};
  const double inv[3] = {f.ix, f.iy, f.iz};
  const double* vel[3] = {s.ufld.data, s.vfld.data, s.wfld.data};
  double* conv[3] = {s.convX.data, s.convY.data, s.convZ.data};
  for (int k = r.k0; k < r.k1; ++k) {
    for (int j = r.j0; j < r.j1; ++j) {
      for (int i = r.i0; i < r.i1; ++i) {
        const int c = i + f.nx * j + f.nxy * k;
        double a[3] = {vel[0][c], vel[1][c], threeD ? vel[2][c] : 0.0};
        double g[3][3] = {};
        double div = 0.0;
        for (int q = 0; q < dirs; ++q) {
          double acc = 0.0;
          for (int d = 0; d < dirs; ++d) {
            const bool normal = d == axis;
            g[q][d] = normal ? oneSided(vel[q], c, stride[d], side, inv[d]) : central(vel[q], c, stride[d], half[d]);
            acc -= normal ? a[d] * g[q][d] : upwind(vel[q], c, stride[d], a[d], half[d]);
          }
          conv[q][c] = acc;
          div += g[q][q];
        }
        s.divU.data[c] = div;
        if (f.sgs) {
          const strainEntries e = strainOf(g);
          const double E = f.smag * e.S;
          s.tau11.data[c] = E * e.a11;
          s.tau12.data[c] = E * e.a12;
          s.tau13.data[c] = E * e.a13;
          s.tau22.data[c] = E * e.a22;
          s.tau23.data[c] = E * e.a23;
          s.tau33.data[c] = E * e.a33;
        }
      }
    }
  }
}

}  // namespace

incompSolver::incompSolver(appConfig& config, bcDomain& domain) : solverCommon(config, domain) {}

void incompSolver::step() {
  const appConfig& c = *cfg;
  const bool stresses = c.cs != dashValue && c.nz > 1;
  runStep([&](int t) {
    interiorTerms(t);
    teamBarrier();
    faceTerms(t);
    teamBarrier();
    if (stresses) {
      stressDivergence(t);
      teamBarrier();
    }
    pressureRhs(t);
    teamBarrier();
    solvePressure(t);
    pressureGradient(t);
    teamBarrier();
    integrate(ufld, uRhs, t);
    integrate(vfld, vRhs, t);
    integrate(wfld, wRhs, t);
    integrate(yfld, yRhs, t);
    if (c.ageFlag) integrate(afld, aRhs, t);
    teamBarrier();
    boundaryStage(t);
  });
}

void incompSolver::interiorTerms(int t) {
  const appConfig& c = *cfg;
  const tileRange r = interiorOf(c, t);
  const stepFactors f = factorsOf(c, ufld.nx, ufld.nxy);
  const bool species = c.speciesFlag != 0, age = c.ageFlag != 0;
  if (c.nz == 1)
    interiorBySpecies<false, false, false>(*this, r, f, species, age);
  else if (f.sgsScalar)
    interiorBySpecies<true, true, true>(*this, r, f, species, age);
  else if (f.sgs)
    interiorBySpecies<true, true, false>(*this, r, f, species, age);
  else
    interiorBySpecies<true, false, false>(*this, r, f, species, age);
}

void incompSolver::faceTerms(int t) {
  const appConfig& c = *cfg;
  const tileRange tile = tileOf(c, t);
  const tileRange inner = interiorOf(c, t);
  const stepFactors f = factorsOf(c, ufld.nx, ufld.nxy);
  const bool threeD = c.nz > 1;
  // A thread treats a plane only where its tile touches it; along the plane
  // it covers its interior range, so edges and corners are left out.
  if (tile.i0 == 0 && tile.i1 > 0) planeLoop(*this, {0, 1, inner.j0, inner.j1, inner.k0, inner.k1}, f, 0, 0, threeD);
  if (tile.i1 == c.nx && tile.i0 < c.nx)
    planeLoop(*this, {c.nx - 1, c.nx, inner.j0, inner.j1, inner.k0, inner.k1}, f, 0, 1, threeD);
  if (tile.j0 == 0 && tile.j1 > 0) planeLoop(*this, {inner.i0, inner.i1, 0, 1, inner.k0, inner.k1}, f, 1, 0, threeD);
  if (tile.j1 == c.ny && tile.j0 < c.ny)
    planeLoop(*this, {inner.i0, inner.i1, c.ny - 1, c.ny, inner.k0, inner.k1}, f, 1, 1, threeD);
  if (!threeD) return;
  if (tile.k0 == 0 && tile.k1 > 0) planeLoop(*this, {inner.i0, inner.i1, inner.j0, inner.j1, 0, 1}, f, 2, 0, true);
  if (tile.k1 == c.nz && tile.k0 < c.nz)
    planeLoop(*this, {inner.i0, inner.i1, inner.j0, inner.j1, c.nz - 1, c.nz}, f, 2, 1, true);
}

// uRhs -= gx(tau11) + gy(tau12) + gz(tau13)
// vRhs -= gx(tau12) + gy(tau22) + gz(tau23)
// wRhs -= gx(tau13) + gy(tau23) + gz(tau33)
void incompSolver::stressDivergence(int t) {
  const tileRange r = interiorOf(*cfg, t);
  const stepFactors f = factorsOf(*cfg, ufld.nx, ufld.nxy);
  const int nx = f.nx, nxy = f.nxy;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = r.i0; i < r.i1; ++i) {
        const int c = row + i;
        uRhs.data[c] -=
            central(tau11.data, c, 1, f.hx) + central(tau12.data, c, nx, f.hy) + central(tau13.data, c, nxy, f.hz);
        vRhs.data[c] -=
            central(tau12.data, c, 1, f.hx) + central(tau22.data, c, nx, f.hy) + central(tau23.data, c, nxy, f.hz);
        wRhs.data[c] -=
            central(tau13.data, c, 1, f.hx) + central(tau23.data, c, nx, f.hy) + central(tau33.data, c, nxy, f.hz);
      }
    }
}

// ppeRhs = rhow (gx(convX) + gy(convY) + gz(convZ)) + (rhow/deltat) divU
//        + (2 mu/dx^2) d2x(divU) + (2 mu/dy^2) d2y(divU) + (2 mu/dz^2) d2z(divU)
// ppeRhs shares its storage with tau11, which sub-step 3 has finished with.
void incompSolver::pressureRhs(int t) {
  const appConfig& c = *cfg;
  const tileRange r = interiorOf(c, t);
  const stepFactors f = factorsOf(c, ufld.nx, ufld.nxy);
  const int nx = f.nx, nxy = f.nxy;
  const double rho = c.rhow, rhoDt = c.rhow / c.deltat;
  const double mx = 2.0 * c.mu * f.ix2, my = 2.0 * c.mu * f.iy2, mz = 2.0 * c.mu * f.iz2;
  const bool threeD = c.nz > 1;
  double* ppe = tau11.data;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = r.i0; i < r.i1; ++i) {
        const int n = row + i;
        double value = rho * (central(convX.data, n, 1, f.hx) + central(convY.data, n, nx, f.hy)) +
                       rhoDt * divU.data[n] + mx * d2(divU.data, n, 1) + my * d2(divU.data, n, nx);
        if (threeD) value += rho * central(convZ.data, n, nxy, f.hz) + mz * d2(divU.data, n, nxy);
        ppe[n] = value;
      }
    }
}

// uRhs -= (p+x - p-x) 0.5/(rhow dx), likewise v with dy and (3D) w with dz.
void incompSolver::pressureGradient(int t) {
  const appConfig& c = *cfg;
  const tileRange r = interiorOf(c, t);
  const int nx = pfld.nx, nxy = pfld.nxy;
  const double gx = 0.5 / (c.rhow * c.dx), gy = 0.5 / (c.rhow * c.dy), gz = 0.5 / (c.rhow * c.dz);
  const bool threeD = c.nz > 1;
  const double* p = pfld.data;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = r.i0; i < r.i1; ++i) {
        const int n = row + i;
        uRhs.data[n] -= (p[n + 1] - p[n - 1]) * gx;
        vRhs.data[n] -= (p[n + nx] - p[n - nx]) * gy;
        if (threeD) wRhs.data[n] -= (p[n + nxy] - p[n - nxy]) * gz;
      }
    }
}

void setInitialFields(incompSolver& s) {
  const appConfig& c = *s.cfg;
  fill<double>(s.uRhs, 0.0);
  fill<double>(s.vRhs, 0.0);
  fill<double>(s.wRhs, 0.0);
  fill<double>(s.pfld, 0.0);
  fill<double>(s.ufld, c.uinw);
  fill<double>(s.vfld, c.vinw);
  fill<double>(s.wfld, c.winw);
  if (c.speciesFlag) fill<double>(s.yfld, c.massfrw);
  if (c.ageFlag) fill<double>(s.afld, 0.0);
  applyVelocity(*s.bc, s.ufld, s.vfld, s.wfld);
  if (c.speciesFlag) applyScalar(*s.bc, s.yfld, c.bcMassfr, s.bc->massfrCells);
  applyPressure(*s.bc, s.pfld);
}

}  // namespace marv
