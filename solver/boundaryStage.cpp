// The boundary stage: at the end of every time step the lists prepared by
// the domain build overwrite the nodes they own, in the staircase form (ibm
// = 0: walls are solid nodes) or the immersed form (ibm = 1: ghost nodes
// take values through their image points inside the fluid). A list walk is
// never divided among threads: each field's walk runs whole on one thread,
// so the result is that of one ordered pass; the mean removal is
// collective.
#include "domain/gridSampling.h"
#include "solver/solverCommon.h"

namespace marv {

namespace {

// Field value at the image point of node at.
double imageSample(const bcDomain& bc, const array3d<double>& q, int at) {
  return sampleField(*bc.cfg, bc.imageX.data[at], bc.imageY.data[at], bc.imageZ.data[at], q);
}

// q(target) = q(source) for every pair: a zero normal gradient on every
// outer plane. Later pairs win on edges and corners (z over y over x).
void copyEdges(const bcDomain& bc, const array3d<double>& q) {
  double* f = q.data;
  for (const edgePair& e : bc.edgePairs) f[e.at] = f[e.from];
}

// Zero gradient at a solid node: its six neighbours +x, -x, +y, -y, +z, -z,
// each clamped to the grid, in that order; every fluid neighbour overwrites
// q, so the last one decides, and a node with none keeps its value.
void copyFluidNeighbour(const bcDomain& bc, const array3d<double>& q, const cellNode& c) {
  const array3d<int>& flag = bc.bcFlag;
  const int nx = flag.nx, ny = flag.ny, nz = flag.nz, nxy = flag.nxy;
  const int xp = c.i + 1 < nx ? c.i + 1 : nx - 1, xm = c.i > 0 ? c.i - 1 : 0;
  const int yp = c.j + 1 < ny ? c.j + 1 : ny - 1, ym = c.j > 0 ? c.j - 1 : 0;
  const int zp = c.k + 1 < nz ? c.k + 1 : nz - 1, zm = c.k > 0 ? c.k - 1 : 0;
  const int row = nx * c.j + nxy * c.k;
  const int around[6] = {xp + row,
                         xm + row,
                         c.i + nx * yp + nxy * c.k,
                         c.i + nx * ym + nxy * c.k,
                         c.i + nx * c.j + nxy * zp,
                         c.i + nx * c.j + nxy * zm};
  for (int n : around)
    if (flag.data[n] == fluidType) q.data[c.at] = q.data[n];
}

}  // namespace

void applyVelocityComponent(const bcDomain& bc, const array3d<double>& q, int component) {
  const appConfig& cfg = *bc.cfg;
  const auto& value = component == 0 ? cfg.bcU : component == 1 ? cfg.bcV : cfg.bcW;
  const auto& fixed = component == 0 ? cfg.bcFixU : component == 1 ? cfg.bcFixV : cfg.bcFixW;
  copyEdges(bc, q);
  if (cfg.ibm != 1) {
    // Staircase: no slip on walls; inlets impose their fixed components,
    // u = (1 - fixU)*u + fixU*U, so a free component keeps what the copy gave.
    for (const cellNode& c : bc.wallCells) q.data[c.at] = 0.0;
    for (const cellNode& c : bc.inletCells) {
      const int t = c.type;
      q.data[c.at] = (1.0 - fixed[t]) * q.data[c.at] + fixed[t] * value[t];
    }
    return;
  }
  // Immersed: a ghost node gets u = (0 - S(u))*0.5 + 0, half the mirror
  // value; wall nodes on the outer planes are held at 0; an inlet ghost gets
  // B = (2U - S(u))*0.5 + 0.5U in its fixed components.
  for (const cellNode& c : bc.wallCells) q.data[c.at] = (0.0 - imageSample(bc, q, c.at)) * 0.5 + 0.0;
  for (const cellNode& c : bc.faceWallCells) q.data[c.at] = 0.0;
  for (const cellNode& c : bc.inletCells) {
    const int t = c.type;
    const double b = (2.0 * value[t] - imageSample(bc, q, c.at)) * 0.5 + 0.5 * value[t];
    q.data[c.at] = fixed[t] * b + (1.0 - fixed[t]) * q.data[c.at];
  }
}

void applyVelocity(const bcDomain& bc, const array3d<double>& u, const array3d<double>& v, const array3d<double>& w) {
  applyVelocityComponent(bc, u, 0);
  applyVelocityComponent(bc, v, 1);
  applyVelocityComponent(bc, w, 2);
}

void applyScalar(const bcDomain& bc, const array3d<double>& q, const std::array<double, numColourTypes>& values,
                 const cellList& cells) {
  copyEdges(bc, q);
  if (bc.cfg->ibm != 1) {
    for (const cellNode& c : cells) {
      const double value = values[c.type];
      if (value != 0.0)
        q.data[c.at] = value;
      else
        copyFluidNeighbour(bc, q, c);
    }
    return;
  }
  // Immersed: a fixed value V enters as (2V - S(q))*0.5 + 0.5V; V = 0 is
  // adiabatic and mirrors the image value.
  for (const cellNode& c : cells) {
    const double value = values[c.type];
    const double image = imageSample(bc, q, c.at);
    q.data[c.at] = value != 0.0 ? (2.0 * value - image) * 0.5 + 0.5 * value : image;
  }
}

void setScalar(const array3d<double>& q, const std::array<double, numColourTypes>& values, const cellList& cells) {
  for (const cellNode& c : cells) q.data[c.at] = values[c.type];
}

void applyPressure(const bcDomain& bc, const array3d<double>& p) {
  copyEdges(bc, p);
  if (bc.cfg->openPresFlag == 1)
    for (const cellNode& c : bc.openCells) p.data[c.at] = 0.0;
  if (bc.cfg->ibm != 1) {
    for (const cellNode& c : bc.wallCells) copyFluidNeighbour(bc, p, c);
  } else {
    for (const cellNode& c : bc.wallCells) p.data[c.at] = imageSample(bc, p, c.at);
  }
}

// The stage at the end of a step: the walks of velocity, (temperature,)
// mass fraction and pressure, then the mean removal on all threads, then
// the age walks. The variable-density step passes its temperature; it then
// also walks the mass fraction without a test of speciesFlag (without the
// flag the list is empty and only the copy of the outer planes acts).
//
// Each walk reads and writes one field alone, so walks of different fields
// give the same result in any order: the threads take them in turn, every
// walk whole on one thread, and meet when all are done.
void solverCommon::boundaryStage(int t, const array3d<double>* temperature) {
  const appConfig& c = *cfg;
  const bool species = c.speciesFlag || temperature != nullptr;
  int walk = 0;
  auto mine = [&] { return walk++ % teamSize == t % teamSize; };
  if (mine()) applyVelocityComponent(*bc, ufld, 0);
  if (mine()) applyVelocityComponent(*bc, vfld, 1);
  if (mine()) applyVelocityComponent(*bc, wfld, 2);
  if (temperature != nullptr && mine()) applyScalar(*bc, *temperature, c.bcTemp, bc->tempCells);
  if (species && mine()) applyScalar(*bc, yfld, c.bcMassfr, bc->massfrCells);
  if (mine()) applyPressure(*bc, pfld);
  teamBarrier();
  if (c.presAdjustFlag) {
    const double mean = meanPressure(t, c.numThreads);
    removeMean(pfld, mean, t);
  }
  if (c.ageFlag) {
    teamSingle([&] {
      applyScalar(*bc, afld, c.bcAge, bc->ageWallCells);
      setScalar(afld, c.bcAge, bc->ageInletCells);
    });
  }
}

}  // namespace marv
