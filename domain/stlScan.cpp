// The STL scan. The model's z runs opposite to the solver's: a model height
// z lies at solver height lz - z (written zf below). Lengths are taken in
// float and count as 0 below a squared length of 1e-7, as the drawing layer
// measures them.
#include "domain/stlScan.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/textNumbers.h"
#include "domain/progressLine.h"

namespace marv {

namespace {

struct point {
  float x = 0.0f, y = 0.0f, z = 0.0f;
};

point minus(point a, point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
float dot(point a, point b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
float length(point a) {
  const float sum = dot(a, a);
  return sum < 1e-7f ? 0.0f : std::sqrt(sum);
}

float zf(const appConfig& cfg, float z) { return static_cast<float>(cfg.lz - static_cast<double>(z)); }

// Nearest node index along an axis; saturating for points far away, at
// 2^30 so that a box of any width around it stays inside 32 bits.
int nodeIndex(double x, double first, double h) {
  constexpr int far = 1 << 30;
  return std::clamp(truncToInt((x - first) / h + 0.5), -far, far);
}

point nodePosition(const appConfig& cfg, int i, int j, int k) {
  return {static_cast<float>(cfg.xCoord[i]), static_cast<float>(cfg.yCoord[j]), static_cast<float>(cfg.zCoord[k])};
}

}  // namespace

void scanTriangles(bcDomain& domain, appConfig& cfg, const bcSurface& model, stlScanWork& work) {
  work.distance = ownedArray3d<float>(cfg.nx, cfg.ny, cfg.nz);
  fill<float>(work.distance, 1e10f);
  const int w = std::clamp(cfg.scanningPixelWidthIBM, 1, 1 << 29);  // wider than any grid reaches
  const int count = static_cast<int>(model.triangles.size());
  for (int n = 0; n < count; ++n) {
    if (n % domain.scanStepTriangles == 0) showProgress(cfg, 1);
    const bcTriangle& t = model.triangles[n];
    const point c{t.centroid[0], t.centroid[1], zf(cfg, t.centroid[2])};
    const int ic = nodeIndex(c.x, cfg.xCoord[0], cfg.dx);
    const int jc = nodeIndex(c.y, cfg.yCoord[0], cfg.dy);
    const int kc = nodeIndex(c.z, cfg.zCoord[0], cfg.dz);
    // The box runs w below the centre and w - 1 above it, cut at the grid.
    const int k0 = std::max(0, kc - w), k1 = std::min(cfg.nz, kc + w);
    const int j0 = std::max(0, jc - w), j1 = std::min(cfg.ny, jc + w);
    const int i0 = std::max(0, ic - w), i1 = std::min(cfg.nx, ic + w);
    for (int k = k0; k < k1; ++k)
      for (int j = j0; j < j1; ++j)
        for (int i = i0; i < i1; ++i) {
          const float r = length(minus(c, nodePosition(cfg, i, j, k)));
          if (work.distance(i, j, k) > r) {
            work.distance(i, j, k) = r;
            domain.nearestTriangle(i, j, k) = n;
            domain.bcFlag(i, j, k) = 7;
          }
        }
  }
}

void classifyNearNodes(bcDomain& domain, appConfig& cfg, const bcSurface& model) {
  const int count = static_cast<int>(model.triangles.size());
  std::vector<float> radius(count, 0.0f);
  for (int n = 0; n < count; ++n) {
    const bcTriangle& t = model.triangles[n];
    const point c{t.centroid[0], t.centroid[1], t.centroid[2]};
    for (const auto& v : t.vertex) radius[n] = std::max(radius[n], length(minus(point{v[0], v[1], v[2]}, c)));
  }
  const float diag = static_cast<float>(std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy + cfg.dz * cfg.dz));
  for (int k = 0; k < cfg.nz; ++k) {
    if (k % domain.scanStepPlanes == 0) showProgress(cfg, 1);
    for (int j = 0; j < cfg.ny; ++j)
      for (int i = 0; i < cfg.nx; ++i) {
        const int n = domain.nearestTriangle(i, j, k);
        if (n < 0 || n >= count || domain.bcFlag(i, j, k) != 7) continue;
        const bcTriangle& t = model.triangles[n];
        const point normal{t.normal[0], t.normal[1], -t.normal[2]};
        const float normalLength = length(normal);
        // A triangle without a normal cannot tell inside from outside: it
        // decides nothing, and the node goes back to the fluid.
        if (normalLength == 0.0f) {
          domain.bcFlag(i, j, k) = 0;
          continue;
        }
        const point u{normal.x / normalLength, normal.y / normalLength, normal.z / normalLength};
        const point P = nodePosition(cfg, i, j, k);
        const point V{t.vertex[0][0], t.vertex[0][1], zf(cfg, t.vertex[0][2])};
        const point C{t.centroid[0], t.centroid[1], zf(cfg, t.centroid[2])};
        const point a = minus(C, P), b = minus(V, P);
        const float lengthA = length(a);
        const float near = std::min(lengthA, length(b));
        const float cosine = lengthA > 0.0f ? dot(a, u) / length(u) / lengthA : 0.0f;
        if (cosine <= -4.371139e-8f) {
          domain.bcFlag(i, j, k) = 0;  // the fluid side of the triangle
          continue;
        }
        const float limit = std::max(0.5f * radius[n], diag);
        const float dist = std::fabs(dot(minus(P, V), u)) / length(u);
        if (near > limit || dist > diag) {
          domain.nearestTriangle(i, j, k) = behindTriangle;
          domain.bcFlag(i, j, k) = 10;
          continue;
        }
        // A surface node: its image point is the mirror across the plane.
        domain.imageX(i, j, k) = static_cast<float>(2.0 * u.x * dist + cfg.xCoord[i]);
        domain.imageY(i, j, k) = static_cast<float>(2.0 * u.y * dist + cfg.yCoord[j]);
        domain.imageZ(i, j, k) = static_cast<float>(2.0 * u.z * dist + cfg.zCoord[k]);
      }
  }
}

void clipToExtents(bcDomain& domain, appConfig& cfg, const bcSurface& model) {
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  const float x0 = static_cast<float>(cfg.xCoord[0]), xN = static_cast<float>(cfg.xCoord[nx - 1]);
  const float y0 = static_cast<float>(cfg.yCoord[0]), yN = static_cast<float>(cfg.yCoord[ny - 1]);
  const float z0 = static_cast<float>(cfg.zCoord[0]), zN = static_cast<float>(cfg.zCoord[nz - 1]);
  std::vector<float> xLow(static_cast<std::size_t>(ny) * nz, xN), xHigh(static_cast<std::size_t>(ny) * nz, x0);
  std::vector<float> yLow(static_cast<std::size_t>(nx) * nz, yN), yHigh(static_cast<std::size_t>(nx) * nz, y0);
  std::vector<float> zLow(static_cast<std::size_t>(nx) * ny, zN), zHigh(static_cast<std::size_t>(nx) * ny, z0);

  // Node range [lo, hi] of a coordinate range, clipped to n nodes; false
  // when it lies beyond the grid's far end.
  auto range = [](float lo, float hi, double first, double h, int n, int& from, int& to) {
    from = std::max(0, nodeIndex(lo, first, h));
    to = std::min(n - 1, nodeIndex(hi, first, h));
    return from <= n - 1;
  };
  // Widens the extent along one axis over the lines (outer, middle) across
  // it that a triangle covers.
  auto widen = [](std::vector<float>& low, std::vector<float>& high, float from, float to, int o0, int o1, int m0,
                  int m1, int middle) {
    for (int o = o0; o <= o1; ++o)
      for (int m = m0; m <= m1; ++m) {
        const std::size_t at = static_cast<std::size_t>(o) * middle + m;
        low[at] = std::min(low[at], from);
        high[at] = std::max(high[at], to);
      }
  };
  for (std::size_t n = 0; n < model.triangles.size(); ++n) {
    if (static_cast<int>(n % static_cast<std::size_t>(domain.scanStepExtents)) == 0) showProgress(cfg, 1);
    const bcTriangle& t = model.triangles[n];
    float lo[3], hi[3];
    for (int a = 0; a < 3; ++a) {
      lo[a] = 1e30f, hi[a] = -1e30f;
      for (const auto& v : t.vertex) {
        const float value = a == 2 ? zf(cfg, v[2]) : v[a];
        lo[a] = std::min(lo[a], value);
        hi[a] = std::max(hi[a], value);
      }
    }
    int i0, i1, j0, j1, k0, k1;
    const bool xs = range(lo[0], hi[0], cfg.xCoord[0], cfg.dx, nx, i0, i1);
    const bool ys = range(lo[1], hi[1], cfg.yCoord[0], cfg.dy, ny, j0, j1);
    const bool zs = range(lo[2], hi[2], cfg.zCoord[0], cfg.dz, nz, k0, k1);
    if (ys && zs) widen(xLow, xHigh, lo[0], hi[0], k0, k1, j0, j1, ny);
    if (xs && zs) widen(yLow, yHigh, lo[1], hi[1], k0, k1, i0, i1, nx);
    if (xs && ys) widen(zLow, zHigh, lo[2], hi[2], j0, j1, i0, i1, nx);
  }
  auto clear = [&](int i, int j, int k) {
    int& flag = domain.bcFlag(i, j, k);
    if (flag == stlType || flag == stlSolidType) flag = fluidType;
  };
  // Nodes below the low end or from the high end on are beyond the model:
  // along each axis in turn, lines numbered (outer, middle) across it.
  auto clipAlong = [&](int outer, int middle, int along, const auto& low, const auto& high, double first, double h,
                       auto node) {
    for (int o = 0; o < outer; ++o) {
      showProgress(cfg, 1);
      for (int m = 0; m < middle; ++m) {
        const std::size_t at = static_cast<std::size_t>(o) * middle + m;
        const int lo = nodeIndex(low[at], first, h), hi = nodeIndex(high[at], first, h);
        for (int a = 0; a < along; ++a)
          if (a < lo || a >= hi) node(o, m, a);
      }
    }
  };
  clipAlong(nz, ny, nx, xLow, xHigh, cfg.xCoord[0], cfg.dx, [&](int k, int j, int i) { clear(i, j, k); });
  clipAlong(nz, nx, ny, yLow, yHigh, cfg.yCoord[0], cfg.dy, [&](int k, int i, int j) { clear(i, j, k); });
  clipAlong(ny, nx, nz, zLow, zHigh, cfg.zCoord[0], cfg.dz, [&](int j, int i, int k) { clear(i, j, k); });
}

int stlScanRefreshes(bcDomain& domain, const appConfig& cfg) {
  const long long triangles = static_cast<long long>(domain.surfaces[stlType].triangles.size());
  const int step = static_cast<int>(std::max(1LL, (cfg.nz + 4 * triangles) / 100));
  domain.scanStepTriangles = domain.scanStepPlanes = domain.scanStepExtents = step;
  const long long refreshes = 3 * triangles / step + cfg.nz / step + triangles / step + cfg.ny + 2LL * cfg.nz;
  return static_cast<int>(std::min<long long>(refreshes, 2147483647LL));
}

void scanModel(bcDomain& domain, appConfig& cfg) {
  if (cfg.stlPresent != 1 || cfg.nz < 2) return;
  const bcSurface& model = domain.surfaces[stlType];
  stlScanWork work;
  scanTriangles(domain, cfg, model, work);
  classifyNearNodes(domain, cfg, model);
  clipToExtents(domain, cfg, model);
}

}  // namespace marv
