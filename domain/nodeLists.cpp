// Builders of the node lists and of solidMask. They run once per case on the
// main thread, so they favour plain scans in the stated order over speed.
#include "domain/nodeLists.h"

#include <algorithm>

namespace marv {

namespace {

// Flowing inlet: an inlet type with some non-zero velocity.
bool flowingInlet(const appConfig& cfg, int t) { return isInletType(t) && cfg.bcNoFlow[t] == 0; }

cellNode nodeAt(const array3d<int>& flag, int i, int j, int k) {
  const int at = i + flag.nx * j + flag.nxy * k;
  return cellNode{i, j, k, flag.data[at], at};
}

// Appends every node, k-j-i, for which keep(type) holds.
template <class Keep>
void scanGrid(const array3d<int>& flag, cellList& out, Keep keep) {
  for (int k = 0; k < flag.nz; ++k)
    for (int j = 0; j < flag.ny; ++j)
      for (int i = 0; i < flag.nx; ++i)
        if (keep(flag(i, j, k))) out.push_back(nodeAt(flag, i, j, k));
}

// Types that count as no-slip walls, in list order.
std::vector<int> wallTypes(const appConfig& cfg) {
  std::vector<int> types;
  for (int t = 1; t <= solidType; ++t) {
    if (t != solidType && cfg.bcTypePresent[t] == 0) continue;
    if (isInletType(t) && cfg.bcNoFlow[t] == 0) continue;
    types.push_back(t);
  }
  return types;
}

edgePair pairOf(const array3d<int>& flag, int i, int j, int k, int si, int sj, int sk) {
  return edgePair{i + flag.nx * j + flag.nxy * k, si + flag.nx * sj + flag.nxy * sk, i, j, k, si, sj, sk};
}

}  // namespace

cellList makeWallCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  for (int t : wallTypes(cfg)) scanGrid(flag, out, [t](int f) { return f == t; });
  return out;
}

cellList makeFaceWallCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  const int nx = flag.nx, ny = flag.ny, nz = flag.nz;
  for (int t : wallTypes(cfg)) {
    auto take = [&](int i, int j, int k) {
      if (flag(i, j, k) == t) out.push_back(nodeAt(flag, i, j, k));
    };
    if (nz != 1)
      for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) take(i, j, 0), take(i, j, nz - 1);
    for (int k = 0; k < nz; ++k)
      for (int i = 0; i < nx; ++i) take(i, 0, k), take(i, ny - 1, k);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j) take(0, j, k), take(nx - 1, j, k);
  }
  return out;
}

cellList makeInletCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  scanGrid(flag, out, [&](int t) { return flowingInlet(cfg, t); });
  return out;
}

pairList makeEdgePairs(const array3d<int>& flag) {
  pairList out;
  const int nx = flag.nx, ny = flag.ny, nz = flag.nz;
  if (flag.data == nullptr) return out;
  out.reserve(2 * static_cast<std::size_t>(ny) * nz + 2 * static_cast<std::size_t>(nx) * nz +
              (nz != 1 ? 2 * static_cast<std::size_t>(nx) * ny : 0));
  const int x1 = std::min(1, nx - 1), x2 = std::max(nx - 2, 0);
  const int y1 = std::min(1, ny - 1), y2 = std::max(ny - 2, 0);
  const int z1 = std::min(1, nz - 1), z2 = std::max(nz - 2, 0);
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j) {
      out.push_back(pairOf(flag, 0, j, k, x1, j, k));
      out.push_back(pairOf(flag, nx - 1, j, k, x2, j, k));
    }
  for (int k = 0; k < nz; ++k)
    for (int i = 0; i < nx; ++i) {
      out.push_back(pairOf(flag, i, 0, k, i, y1, k));
      out.push_back(pairOf(flag, i, ny - 1, k, i, y2, k));
    }
  if (nz != 1)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i) {
        out.push_back(pairOf(flag, i, j, 0, i, j, z1));
        out.push_back(pairOf(flag, i, j, nz - 1, i, j, z2));
      }
  return out;
}

cellList makeOpenCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  const int nx = flag.nx, ny = flag.ny, nz = flag.nz;
  // Fluid, or an inlet type whose component normal to the plane is free.
  auto take = [&](int i, int j, int k, const std::array<double, numColourTypes>& normal) {
    const int t = flag(i, j, k);
    if (t == fluidType || (isInletType(t) && normal[t] == dashValue)) out.push_back(nodeAt(flag, i, j, k));
  };
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j) take(0, j, k, cfg.bcU), take(nx - 1, j, k, cfg.bcU);
  for (int k = 0; k < nz; ++k)
    for (int i = 0; i < nx; ++i) take(i, 0, k, cfg.bcV), take(i, ny - 1, k, cfg.bcV);
  if (nz != 1)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i) take(i, j, 0, cfg.bcW), take(i, j, nz - 1, cfg.bcW);
  return out;
}

cellList makeMassfrCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  scanGrid(flag, out, [&](int t) { return t >= blackType && t <= nonPresetType && cfg.bcFixMassfr[t] == 1; });
  return out;
}

cellList makeTempCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  scanGrid(flag, out, [&](int t) { return t >= blackType && t <= nonPresetType && cfg.bcFixTemp[t] == 1; });
  return out;
}

cellList makeAgeWallCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  scanGrid(flag, out, [&](int t) {
    return t == blackType || t == stlType || t == nonPresetType || (isInletType(t) && cfg.bcNoFlow[t] == 1);
  });
  return out;
}

cellList makeAgeInletCells(const array3d<int>& flag, const appConfig& cfg) {
  cellList out;
  const int nx = flag.nx, ny = flag.ny, nz = flag.nz;
  const bool threeD = nz != 1;
  // Face nodes through which a fully fixed inlet blows into the domain.
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i) {
        const int t = flag(i, j, k);
        if (!flowingInlet(cfg, t) || cfg.bcFixU[t] != 1.0 || cfg.bcFixV[t] != 1.0 || cfg.bcFixW[t] != 1.0) continue;
        const bool blowsIn = (i == 0 && cfg.bcU[t] > 0) || (i == nx - 1 && cfg.bcU[t] < 0) ||
                             (j == 0 && cfg.bcV[t] > 0) || (j == ny - 1 && cfg.bcV[t] < 0) ||
                             (threeD && ((k == 0 && cfg.bcW[t] > 0) || (k == nz - 1 && cfg.bcW[t] < 0)));
        if (blowsIn) out.push_back(nodeAt(flag, i, j, k));
      }
  // Interior nodes of inlet types that leave the velocity free.
  const int k0 = threeD ? 1 : 0, k1 = threeD ? nz - 1 : std::min(nz, 1);
  for (int k = k0; k < k1; ++k)
    for (int j = 1; j < ny - 1; ++j)
      for (int i = 1; i < nx - 1; ++i) {
        const int t = flag(i, j, k);
        if (!isInletType(t) || cfg.bcFixU[t] != 0.0 || cfg.bcFixV[t] != 0.0) continue;
        if (threeD && cfg.bcFixW[t] != 0.0) continue;
        out.push_back(nodeAt(flag, i, j, k));
      }
  return out;
}

void buildNodeLists(bcDomain& d, const appConfig& cfg) {
  const array3d<int>& flag = d.bcFlag;
  d.wallCells = makeWallCells(flag, cfg);
  d.faceWallCells = makeFaceWallCells(flag, cfg);
  d.inletCells = makeInletCells(flag, cfg);
  d.edgePairs = makeEdgePairs(flag);
  d.openCells = makeOpenCells(flag, cfg);
  d.massfrCells = cfg.speciesFlag == 1 ? makeMassfrCells(flag, cfg) : cellList();
  d.tempCells = cfg.cmode == 1 ? makeTempCells(flag, cfg) : cellList();
  d.ageWallCells = cfg.ageFlag ? makeAgeWallCells(flag, cfg) : cellList();
  d.ageInletCells = cfg.ageFlag ? makeAgeInletCells(flag, cfg) : cellList();
}

void buildSolidMask(bcDomain& d, const appConfig& cfg) {
  const int count = std::min(d.bcFlag.count(), d.solidMask.count());
  for (int n = 0; n < count; ++n) {
    const int t = d.bcFlag.data[n];
    const bool flows = isInletType(t) && !(cfg.bcU[t] == 0.0 && cfg.bcV[t] == 0.0 && cfg.bcW[t] == 0.0);
    d.solidMask.data[n] = flows ? 0 : t;
  }
}

}  // namespace marv
