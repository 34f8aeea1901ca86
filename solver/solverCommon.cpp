// solverCommon: construction, the field table, tile ranges and the small
// per-tile operations that both time steps share.
#include "solver/solverCommon.h"

#include <algorithm>

namespace marv {

tileRange tileOf(const appConfig& cfg, int t) {
  const std::size_t n = static_cast<std::size_t>(t);
  if (t < 0 || n >= cfg.tileI0.size() || n >= cfg.tileI1.size() || n >= cfg.tileJ0.size() || n >= cfg.tileJ1.size() ||
      n >= cfg.tileK0.size() || n >= cfg.tileK1.size())
    return tileRange{};
  return tileRange{cfg.tileI0[n], cfg.tileI1[n], cfg.tileJ0[n], cfg.tileJ1[n], cfg.tileK0[n], cfg.tileK1[n]};
}

tileRange interiorOf(const appConfig& cfg, int t) {
  tileRange r = tileOf(cfg, t);
  auto inner = [](int& lo, int& hi, int n) {
    if (lo == 0) lo = 1;
    if (hi == n) hi = n - 1;
  };
  inner(r.i0, r.i1, cfg.nx);
  inner(r.j0, r.j1, cfg.ny);
  if (cfg.nz != 1) inner(r.k0, r.k1, cfg.nz);
  return r;
}

solverCommon::solverCommon(appConfig& config, bcDomain& domain) : cfg(&config), bc(&domain) {
  const int nx = config.nx, ny = config.ny, nz = config.nz;
  checkedElementCount(nx, ny, nz);  // refuse an impossible grid before the first block
  for (ownedArray3d<double>* f : {&ufld, &vfld, &wfld, &yfld, &uRhs, &vRhs, &wRhs, &yRhs, &pfld, &convX, &convY, &convZ,
                                  &divU, &tau11, &tau12, &tau13, &tau22, &tau23, &tau33})
    *f = ownedArray3d<double>(nx, ny, nz);
  if (config.ageFlag) {
    afld = ownedArray3d<double>(nx, ny, nz);
    aRhs = ownedArray3d<double>(nx, ny, nz);
  }
  const std::size_t threads = static_cast<std::size_t>(std::max(config.numThreads, 1));
  threadResidual.assign(threads, 0.0);
  threadSum.assign(threads, 0.0);
  sweepScratch.assign(threads * scratchStride(), 0.0);
  fieldTable = {nullptr, &ufld,  &vfld, &wfld,  &pfld,  nullptr, &yfld,  &afld,  &convX,
                &convY,  &convZ, &divU, &tau11, &tau12, &tau13,  &tau22, &tau23, &tau33};
}

array3d<double>* solverCommon::field(int index) {
  if (index < 0 || index >= numSolverFields) return nullptr;
  return fieldTable[index];
}

// destination(i,j,k) = source(i,j,k) over the tile.
void solverCommon::copyTile(const array3d<double>& source, const array3d<double>& destination, int t) const {
  const tileRange r = tileOf(*cfg, t);
  const int nx = source.nx, nxy = source.nxy;
  for (int k = r.k0; k < r.k1; ++k)
    for (int j = r.j0; j < r.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = r.i0; i < r.i1; ++i) destination.data[row + i] = source.data[row + i];
    }
}

// q = q + deltat*r over the tile.
void solverCommon::integrate(const array3d<double>& q, const array3d<double>& r, int t) const {
  const tileRange g = tileOf(*cfg, t);
  const double dt = cfg->deltat;
  const int nx = q.nx, nxy = q.nxy;
  for (int k = g.k0; k < g.k1; ++k)
    for (int j = g.j0; j < g.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = g.i0; i < g.i1; ++i) q.data[row + i] += dt * r.data[row + i];
    }
}

void solverCommon::integrateTransported(int t) const {
  integrate(ufld, uRhs, t);
  integrate(vfld, vRhs, t);
  integrate(wfld, wRhs, t);
  integrate(yfld, yRhs, t);
  if (cfg->ageFlag) integrate(afld, aRhs, t);
}

// rho = (presw*molarMass/gasConstant)/T over the tile; the factor first, the
// division by T last.
void solverCommon::densityFromTemperature(const array3d<double>& rho, const array3d<double>& T, int t) const {
  const tileRange g = tileOf(*cfg, t);
  const double factor = cfg->presw * cfg->molarMass / cfg->gasConstant;
  const int nx = rho.nx, nxy = rho.nxy;
  for (int k = g.k0; k < g.k1; ++k)
    for (int j = g.j0; j < g.j1; ++j) {
      const int row = nx * j + nxy * k;
      for (int i = g.i0; i < g.i1; ++i) rho.data[row + i] = factor / T.data[row + i];
    }
}

void solverCommon::densityFromTemperatureAll(const array3d<double>& rho, const array3d<double>& T) const {
  const double factor = cfg->presw * cfg->molarMass / cfg->gasConstant;
  const int count = rho.count();
  for (int n = 0; n < count; ++n) rho.data[n] = factor / T.data[n];
}

}  // namespace marv
