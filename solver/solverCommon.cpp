// solverCommon: construction, the field table, tile ranges and the small
// per-tile operations that both time steps share.
#include "solver/solverCommon.h"

#include <algorithm>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

#include "solver/lineFetch.h"

namespace marv {

bool fetchesToOwn() {
#if defined(__x86_64__)
  static const bool has = [] {
    unsigned a = 0, b = 0, c = 0, d = 0;
    return __get_cpuid(0x80000001u, &a, &b, &c, &d) != 0 && (c & (1u << 8)) != 0;
  }();
  return has;
#else
  return false;
#endif
}

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

std::array<int, tileFaces> tileNeighbours(const appConfig& cfg, int t, int threads) {
  std::array<int, tileFaces> beside;
  beside.fill(-1);
  const tileRange a = tileOf(cfg, t);
  if (a.i0 >= a.i1 || a.j0 >= a.j1 || a.k0 >= a.k1) return beside;
  const bool open[tileFaces] = {(a.i0 > 0), (a.i1 < cfg.nx), (a.j0 > 0), (a.j1 < cfg.ny), (a.k0 > 0), (a.k1 < cfg.nz)};
  for (int f = 0; f < tileFaces; ++f) {
    if (!open[f]) continue;
    beside[f] = -2;
    for (int u = 0; u < threads; ++u) {
      const tileRange b = tileOf(cfg, u);
      const bool sameI = b.i0 == a.i0 && b.i1 == a.i1, sameJ = b.j0 == a.j0 && b.j1 == a.j1,
                 sameK = b.k0 == a.k0 && b.k1 == a.k1;
      const bool meets =
          (f == lowIFace && b.i1 == a.i0 && sameJ && sameK) || (f == highIFace && b.i0 == a.i1 && sameJ && sameK) ||
          (f == lowJFace && b.j1 == a.j0 && sameI && sameK) || (f == highJFace && b.j0 == a.j1 && sameI && sameK) ||
          (f == lowKFace && b.k1 == a.k0 && sameI && sameJ) || (f == highKFace && b.k0 == a.k1 && sameI && sameJ);
      if (meets && b.i0 < b.i1 && b.j0 < b.j1 && b.k0 < b.k1) {
        beside[f] = u;
        break;
      }
    }
  }
  return beside;
}

bool tilesMeetFaceToFace(const appConfig& cfg, int threads) {
  for (int t = 0; t < threads; ++t)
    for (int u : tileNeighbours(cfg, t, threads))
      if (u == -2) return false;
  return true;
}

bool tilesSplitAlongSlowestAxis(const appConfig& cfg, int threads) {
  const bool threeD = cfg.nz != 1;
  for (int t = 0; t < threads; ++t) {
    const std::array<int, tileFaces> beside = tileNeighbours(cfg, t, threads);
    for (int f = 0; f < tileFaces; ++f) {
      const bool slowest = threeD ? (f == lowKFace || f == highKFace) : (f == lowJFace || f == highJFace);
      if (beside[f] != -1 && !slowest) return false;
    }
  }
  return true;
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
  threadResidual.assign(2 * threads, 0.0);
  threadSum.assign(threads, 0.0);
  sweepScratch.assign(threads * scratchStride(), 0.0);
  sweepProgress = std::vector<tileProgress>(threads);
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

// q = q + deltat*r over the tile. The frame reads the velocity between
// steps on the main thread, which leaves the other threads' rows shared
// with its core: with more than one thread each row is fetched to be owned
// a row ahead, so that its stores do not wait for the main thread's core.
void solverCommon::integrate(const array3d<double>& q, const array3d<double>& r, int t) const {
  const tileRange g = tileOf(*cfg, t);
  const double dt = cfg->deltat;
  const int nx = q.nx, nxy = q.nxy;
  const bool ahead = cfg->numThreads > 1, own = ahead && fetchesToOwn();
  for (int k = g.k0; k < g.k1; ++k)
    for (int j = g.j0; j < g.j1; ++j) {
      const int row = nx * j + nxy * k;
      if (ahead && j + 1 < g.j1) fetchRangeToOwn(q.data + row + nx + g.i0, q.data + row + nx + g.i1, own);
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
