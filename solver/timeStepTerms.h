// The sub-steps that both time steps share, as loop bodies over a thread's
// range, with the constant-density and the variable-density form chosen by a
// template parameter. Settings that switch terms on and off (sub-grid model,
// species, age) are template parameters as well, so the loops carry no test
// of them. Used by incompSolver.cpp and incompSolverThermo.cpp only.
//
// Symbols (q+x is q at i+1, and so on):
//   cx(q) = (u (q+x - q-x) - |u| d2x(q)) 0.5/dx     upwind convection, u at the node
//   gx(q) = (q+x - q-x) 0.5/dx                       central derivative
//   dn(q) = one-sided derivative across an outer plane
// Constant density: nux = mu/(rhow dx^2). Variable density: rho is rfld at
// the node (of the previous step), ir = 1/rho, mux = mu/dx^2 and
// lapMu(q) = mux d2x(q) + muy d2y(q) + muz d2z(q).
#pragma once

#include <cmath>

#include "solver/flowTerms.h"
#include "solver/solverCommon.h"

namespace marv::stepTerms {

// Grid factors and switches of a step, formed once before any loop.
struct factors {
  int nx = 0, nxy = 0;               // strides
  double hx = 0, hy = 0, hz = 0;     // 0.5/dx ... [1/m]
  double ix = 0, iy = 0, iz = 0;     // 1/dx ... [1/m]
  double ix2 = 0, iy2 = 0, iz2 = 0;  // 1/dx^2 ... [1/m^2]
  double vx = 0, vy = 0, vz = 0;     // nux (constant density) or mux (variable density)
  double invSc = 1.0;                // 1/sc
  double invPr = 1.0;                // 1/pr
  double smag = 0.0;                 // C = -2 sqrt(2) cs^2 (dx^2 + dy^2 + dz^2) [m^2]
  double scalarSgs = 0.0;            // 0.5/sct
  double rhow = 1.0;                 // reference density [kg/m^3]
  double gfx = 0.0, gfy = 0.0;       // body force [m/s^2]
  bool threeD = false;
  bool sgs = false;        // stresses: cs set and 3D
  bool sgsScalar = false;  // sub-grid scalar diffusion: cs and sct set and 3D
};

factors factorsOf(const appConfig& c, int nx, int nxy, bool thermo);

// Pointers to the fields of a step.
struct fields {
  const double *u = nullptr, *v = nullptr, *w = nullptr, *y = nullptr, *a = nullptr;
  const double *T = nullptr, *rho = nullptr;  // variable density only
  double *convX = nullptr, *convY = nullptr, *convZ = nullptr, *divU = nullptr;
  double *tau11 = nullptr, *tau12 = nullptr, *tau13 = nullptr, *tau22 = nullptr, *tau23 = nullptr, *tau33 = nullptr;
  double *uRhs = nullptr, *vRhs = nullptr, *wRhs = nullptr, *yRhs = nullptr, *aRhs = nullptr, *tRhs = nullptr;
};

fields fieldsOf(solverCommon& s, const array3d<double>* T, const array3d<double>* rho, array3d<double>* tRhs);

// Sub-step 1 over the interior range r.
void interiorTerms(const fields& f, const tileRange& r, const factors& k, bool thermo, bool species, bool age);
// Sub-step 2: the outer planes that thread t's tile touches.
void faceTerms(const fields& f, const appConfig& c, int t, const factors& k, bool thermo);
// Sub-step 3: the divergence of the stresses, times ir in variable density.
void stressDivergence(const fields& f, const tileRange& r, const factors& k, bool thermo);
// Sub-step 4: the source of the pressure equation into ppe.
void pressureRhs(const fields& f, double* ppe, const tileRange& r, const factors& k, const appConfig& c, bool thermo);
// Sub-step 9: the pressure gradient into the momentum right sides.
void pressureGradient(const fields& f, const double* p, const tileRange& r, const factors& k, bool thermo);

}  // namespace marv::stepTerms
