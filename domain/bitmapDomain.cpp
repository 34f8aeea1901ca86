// From slices to labels, masks and the final boundary types.
//
// Index: views and ranges | stretchColors | mirrorColors, invertColors |
// makeTypeMasks, softenCorners | filterMask | classifyMask | build2D, build3D
#include "domain/bitmapDomain.h"
#include "domain/stlScan.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/gradOperator.h"
#include "domain/bitmapColours.h"
#include "domain/gridSampling.h"
#include "domain/nodeLists.h"
#include "domain/progressLine.h"

namespace marv {

namespace {

// Extent of a colour along one axis [m]: a colour on a single row or column
// has the span of one cell, and an absent colour the span 0.
struct range {
  double lo = 0.0;    // lowest coordinate [m]
  double hi = 0.0;    // highest coordinate [m]
  double span = 0.0;  // [m]
  double mid() const { return 0.5 * (lo + hi); }
};

double cellSpan(const std::vector<double>& coord) { return coord.size() >= 2 ? coord[1] - coord[0] : 0.0; }

range rangeOf(int first, int last, const std::vector<double>& coord) {
  range r;
  if (first < 0) return r;
  r.lo = coord[first];
  r.hi = coord[last];
  r.span = last > first ? r.hi - r.lo : cellSpan(coord);
  return r;
}

// One view of a colour: a copy of one slice, across * down, with the
// colour's extent along both axes.
struct colourView {
  bool present = false;      // the colour stands in a slice of this plane
  int across = 0, down = 0;  // nodes
  std::vector<int> cells;    // list indices, row b at b * across
  range alongAcross, alongDown;
  int at(int a, int b) const { return present ? cells[static_cast<std::size_t>(b) * across + a] : 0; }
};

colourView makeView(const appConfig& cfg, int plane, int c) {
  colourView v;
  v.across = planeAcross(cfg, plane);
  v.down = planeDown(cfg, plane);
  const std::vector<std::int32_t>& table =
      plane == planeXY ? cfg.bitmapXY : (plane == planeYZ ? cfg.bitmapYZ : cfg.bitmapZX);
  if (table.size() < sliceIndex(v.across, v.down, maxBitmapSlices, 0, 0)) return v;
  int slice = -1;
  for (int b = 0; b < maxBitmapSlices && slice < 0; ++b)
    if (cfg.colorInBitmap[static_cast<std::size_t>((c * maxBitmapSlices + b) * 3 + plane)] == 1) slice = b;
  if (slice < 0) return v;
  v.present = true;
  v.cells.assign(table.begin() + static_cast<std::ptrdiff_t>(sliceIndex(v.across, v.down, slice, 0, 0)),
                 table.begin() + static_cast<std::ptrdiff_t>(sliceIndex(v.across, v.down, slice + 1, 0, 0)));
  int aLo = -1, aHi = -1, bLo = -1, bHi = -1;
  for (int b = 0; b < v.down; ++b)
    for (int a = 0; a < v.across; ++a)
      if (v.at(a, b) == c) {
        if (aLo < 0 || a < aLo) aLo = a;
        aHi = std::max(aHi, a);
        if (bLo < 0) bLo = b;
        bHi = b;
      }
  const std::vector<double>& h = plane == planeYZ ? cfg.zCoord : cfg.xCoord;
  const std::vector<double>& vv = plane == planeZX ? cfg.zCoord : cfg.yCoord;
  v.alongAcross = rangeOf(aLo, aHi, h);
  v.alongDown = rangeOf(bLo, bHi, vv);
  return v;
}

// Range of colour c on the line of a view through (a0, b0), along the
// horizontal axis (alongAcross) or the vertical one.
range lineRange(const colourView& v, int c, int fixed, bool alongAcross, const std::vector<double>& coord) {
  int first = -1, last = -1;
  const int n = alongAcross ? v.across : v.down;
  for (int s = 0; s < n; ++s) {
    const int value = alongAcross ? v.at(s, fixed) : v.at(fixed, s);
    if (value == c) {
      if (first < 0) first = s;
      last = s;
    }
  }
  return rangeOf(first, last, coord);
}

// Node index of a coordinate rescaled from a line range to a view's range.
int rescaledIndex(double coord, const range& line, const range& section, double origin, double step) {
  return static_cast<int>(((coord - line.mid()) * section.span / line.span + section.mid() - origin) / step + 0.5);
}

}  // namespace

// ---------------------------------------------------------------- stretchColors
void stretchColors(appConfig& cfg, bcDomain& domain) {
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  const std::vector<double>&x = cfg.xCoord, &y = cfg.yCoord, &z = cfg.zCoord;
  const array3d<int>& flag = domain.bcFlag;
  for (int c = 1; c < cfg.iNumBcColor; ++c) {
    // XY: x across, y down; YZ: z across, y down; ZX: x across, z down.
    const colourView xy = makeView(cfg, planeXY, c), yz = makeView(cfg, planeYZ, c), zx = makeView(cfg, planeZX, c);
    showProgress(cfg, 0);
    if (!xy.present && !yz.present && !zx.present) continue;
    const double spanXofXY = xy.alongAcross.span, spanYofXY = xy.alongDown.span;
    const double spanZofYZ = yz.alongAcross.span, spanYofYZ = yz.alongDown.span;
    const double spanXofZX = zx.alongAcross.span, spanZofZX = zx.alongDown.span;
    const int rule = cfg.StretchPlane[c];

    // Line ranges of the guiding views, one per line (the same for every
    // node of the line).
    std::vector<range> lineA, lineB;
    if (rule == 1) {  // YZ section, widening along x: columns i of XY (y) and ZX (z)
      for (int i = 0; i < nx; ++i) {
        lineA.push_back(lineRange(xy, c, i, false, y));
        lineB.push_back(lineRange(zx, c, i, false, z));
      }
    } else if (rule == 2) {  // ZX section, widening along y: rows j of XY (x) and YZ (z)
      for (int j = 0; j < ny; ++j) {
        lineA.push_back(lineRange(xy, c, j, true, x));
        lineB.push_back(lineRange(yz, c, j, true, z));
      }
    } else if (rule == 0) {  // XY section, widening along z: rows k of ZX (x), columns k of YZ (y)
      for (int k = 0; k < nz; ++k) {
        lineA.push_back(lineRange(zx, c, k, true, x));
        lineB.push_back(lineRange(yz, c, k, false, y));
      }
    }

    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
          bool write = false;
          if (rule == 1) {
            int a = xy.at(i, j), b = zx.at(i, k), jj = -1, kk = -1;
            const range &A = lineA[i], &B = lineB[i];
            if (spanZofZX > 0.0 && B.span > 0.0)
              kk = rescaledIndex(z[k], B, yz.alongAcross, z[0], cfg.dz);
            else if (spanZofZX == 0.0)
              kk = k, b = c;
            if (spanYofXY > 0.0 && A.span > 0.0)
              jj = rescaledIndex(y[j], A, yz.alongDown, y[0], cfg.dy);
            else if (spanYofXY != 0.0)
              continue;
            else
              jj = j, a = c;
            if (jj < 0 || jj >= ny || kk < 0 || kk >= nz) continue;
            const int d = spanZofYZ != 0.0 ? yz.at(kk, jj) : c;
            write = a == c && b == c && d == c;
          } else if (rule == 2) {
            int a = xy.at(i, j), b = yz.at(k, j), ii = -1, kk = -1;
            const range &A = lineA[j], &B = lineB[j];
            if (spanZofYZ > 0.0 && B.span > 0.0)
              kk = rescaledIndex(z[k], B, zx.alongDown, z[0], cfg.dz);
            else if (spanZofYZ == 0.0)
              kk = k, b = c;
            if (spanXofXY > 0.0 && A.span > 0.0)
              ii = rescaledIndex(x[i], A, zx.alongAcross, x[0], cfg.dx);
            else if (spanXofXY != 0.0)
              continue;
            else
              ii = i, a = c;
            if (ii < 0 || ii >= nx || kk < 0 || kk >= nz) continue;
            const int d = spanZofZX != 0.0 ? zx.at(ii, kk) : c;
            write = a == c && b == c && d == c;
          } else if (rule == 0) {
            int a = zx.at(i, k), b = yz.at(k, j), ii = -1, jj = -1;
            const range &A = lineA[k], &B = lineB[k];
            if (spanYofYZ > 0.0 && B.span > 0.0)
              jj = rescaledIndex(y[j], B, xy.alongDown, y[0], cfg.dy);
            else if (spanYofYZ == 0.0)
              jj = j, b = c;
            if (spanXofZX > 0.0 && A.span > 0.0)
              ii = rescaledIndex(x[i], A, xy.alongAcross, x[0], cfg.dx);
            else if (spanXofZX != 0.0)
              continue;
            else
              ii = i, a = c;
            if (ii < 0 || ii >= nx || jj < 0 || jj >= ny) continue;
            const int d = spanYofXY != 0.0 ? xy.at(ii, jj) : c;
            write = a == c && b == c && d == c;
          } else {
            // "OFF": the intersection of the views drawn through the domain;
            // a plane without a view does not restrict the body.
            const bool inXY = spanYofXY == 0.0 || xy.at(i, j) == c;
            const bool inYZ = spanZofYZ == 0.0 || yz.at(k, j) == c;
            const bool inZX = spanZofZX == 0.0 || zx.at(i, k) == c;
            write = inXY && inYZ && inZX;
          }
          if (write) flag(i, j, k) = c;
        }
        letWindowRun();
      }
  }
}

// ---------------------------------------------------------------- mirrorColors, invertColors
void mirrorColors(appConfig& cfg, bcDomain& domain) {
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  const array3d<int>& flag = domain.bcFlag;
  for (int c = 1; c < cfg.iNumBcColor; ++c) {
    showProgress(cfg, 0);
    letWindowRun();
    const int plane = cfg.SymmetricPlane[c];
    if (plane < 0 || plane > 2) continue;
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
          if (flag(i, j, k) != c) continue;
          if (plane == 0) flag(i, j, nz - 1 - k) = c;
          if (plane == 1) flag(nx - 1 - i, j, k) = c;
          if (plane == 2) flag(i, ny - 1 - j, k) = c;
        }
  }
}

void invertColors(appConfig& cfg, bcDomain& domain) {
  const array3d<int>& flag = domain.bcFlag;
  const int count = flag.count();
  for (int c = 1; c < cfg.iNumBcColor; ++c) {
    showProgress(cfg, 0);
    letWindowRun();
    if (cfg.InverseFlag[c] != 0) continue;
    for (int n = 0; n < count; ++n) {
      if (flag[n] == 0)
        flag[n] = c;
      else if (flag[n] == c)
        flag[n] = 0;
    }
  }
}

// ---------------------------------------------------------------- makeTypeMasks, softenCorners
void makeTypeMasks(const appConfig& cfg, bcDomain& domain, maskWork& scratch) {
  const array3d<int>& flag = domain.bcFlag;
  const int count = flag.count();
  fill(static_cast<const array3d<std::uint8_t>&>(scratch.active), std::uint8_t{1});
  for (int n = 0; n < count; ++n) {
    const int t = std::min(nonPresetType, flag[n]);
    if (t < 0) continue;
    if (cfg.StretchPlane[t] == 3) scratch.active[n] = 0;
    if (t != 0) domain.typeMasks[t][n] = 1.0f;
  }
  copyFrom(static_cast<const array3d<float>&>(scratch.work),
           static_cast<const array3d<float>&>(domain.typeMasks[nonPresetType]));
}

void softenCorners(appConfig& cfg, bcDomain& domain, maskWork& scratch) {
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  const array3d<float>& mask = domain.typeMasks[nonPresetType];
  const array3d<float>& work = scratch.work;
  const array3d<std::uint8_t>& active = scratch.active;
  // A factor of 0 or below would divide by zero: it leaves the corners as drawn.
  const float factor = cfg.bcFactor > 0.0f ? cfg.bcFactor : 1.0f;

  // Where the four arms of length m hold at least three wall nodes the node
  // sits in a concave corner and grows; two or fewer, a convex one, shrinks.
  auto pass = [&](int di1, int dj1, int dk1, int di2, int dj2, int dk2, int m) {
    for (int k = m; k <= nz - m - 1; ++k) {
      for (int j = m; j <= ny - m - 1; ++j)
        for (int i = m; i <= nx - m - 1; ++i) {
          if (active(i, j, k) == 0) continue;
          const float s = mask(i - m * di1, j - m * dj1, k - m * dk1) + mask(i + m * di1, j + m * dj1, k + m * dk1) +
                          mask(i - m * di2, j - m * dj2, k - m * dk2) + mask(i + m * di2, j + m * dj2, k + m * dk2);
          float& w = work(i, j, k);
          if (w > 0.0f) {
            if (s >= 3.0f)
              w = w / factor;
            else if (s <= 2.0f)
              w = w * factor;
          }
        }
      letWindowRun();
    }
  };
  for (int m = 1; m <= cfg.mLoopMax - 1; ++m) {
    pass(1, 0, 0, 0, 1, 0, m);
    if (nz >= 2) {
      pass(0, 1, 0, 0, 0, 1, m);
      pass(1, 0, 0, 0, 0, 1, m);
    }
    showProgress(cfg, 0);
  }
  const int kLo = nz == 1 ? 0 : 1, kHi = nz == 1 ? 0 : nz - 2;
  for (int k = kLo; k <= kHi; ++k)
    for (int j = 1; j <= ny - 2; ++j)
      for (int i = 1; i <= nx - 2; ++i) mask(i, j, k) = work(i, j, k);
}

// ---------------------------------------------------------------- filterMask
void filterMask(const array3d<float>& f, const array3d<float>& s, double w) {
  const int nx = f.nx, ny = f.ny, nz = f.nz;
  if (f.count() == 0) return;
  const auto wf = static_cast<float>(w);
  // One 1-2-1 pass along a line of n values from `from` into `to`; the end
  // nodes see their one neighbour with weight 1 against 1.5 for themselves.
  auto line = [&](const array3d<float>& from, const array3d<float>& to, int n, auto at) {
    if (n < 2) {
      for (int a = 0; a < n; ++a) to[at(a)] = from[at(a)];
      return;
    }
    for (int a = 1; a <= n - 2; ++a) {
      const double sm = from[at(a - 1)], s0 = from[at(a)], sp = from[at(a + 1)];
      to[at(a)] = static_cast<float>((sm + 2.0 * s0 + sp) * 0.25 * w + (1.0 - w) * s0);
    }
    to[at(0)] = (1.5f * from[at(0)] + from[at(1)]) / 2.5f * wf + (1.0f - wf) * from[at(0)];
    to[at(n - 1)] = (1.5f * from[at(n - 1)] + from[at(n - 2)]) / 2.5f * wf + (1.0f - wf) * from[at(n - 1)];
  };
  copyFrom(s, f);
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j) line(s, f, nx, [&](int i) { return i + nx * j + f.nxy * k; });
  for (int k = 0; k < nz; ++k)
    for (int i = 0; i < nx; ++i) line(f, s, ny, [&](int j) { return i + nx * j + f.nxy * k; });
  if (nz < 2) {
    copyFrom(f, s);
    return;
  }
  for (int j = 0; j < ny; ++j)
    for (int i = 0; i < nx; ++i) line(s, f, nz, [&](int k) { return i + nx * j + f.nxy * k; });
}

void filterTypeMasks(const appConfig& cfg, bcDomain& domain, maskWork& scratch) {
  for (int round = 0; round < 2; ++round) {
    filterMask(domain.typeMasks[blackType], scratch.work, 0.01);
    filterMask(domain.typeMasks[nonPresetType], scratch.work, std::max(0.01, cfg.wfilWallBC));
    for (int t = 2; t <= 6; ++t) filterMask(domain.typeMasks[t], scratch.work, 0.01);
  }
}

// ---------------------------------------------------------------- classifyMask
namespace {

// Mask node k <-> k' = nz-1-k, in place.
void reverseInK(const array3d<float>& m) {
  for (int k = 0; k < m.nz / 2; ++k)
    for (int j = 0; j < m.ny; ++j)
      for (int i = 0; i < m.nx; ++i) std::swap(m(i, j, k), m(i, j, m.nz - 1 - k));
}

}  // namespace

void classifyMask(const appConfig& cfg, bcDomain& domain, int t) {
  const array3d<float>& mask = domain.typeMasks[t];
  const array3d<int>& flag = domain.bcFlag;
  if (mask.count() == 0 || flag.count() != mask.count()) return;
  const int nx = cfg.nx, ny = cfg.ny, nz = cfg.nz;
  const float iso = domain.isoLevel;
  if (nz == 1) {
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i)
        if (mask(i, j, 0) > iso) flag(i, j, 0) = t;
    return;
  }

  reverseInK(mask);
  ownedArray3d<float> gx(nx, ny, nz), gy(nx, ny, nz), gz(nx, ny, nz);
  if (nx >= 2)
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j) {
        for (int i = 1; i <= nx - 2; ++i)
          gx(i, j, k) = static_cast<float>((static_cast<double>(mask(i + 1, j, k)) - mask(i - 1, j, k)) * 0.5 / cfg.dx);
        gx(0, j, k) = static_cast<float>((static_cast<double>(mask(1, j, k)) - mask(0, j, k)) / cfg.dx);
        gx(nx - 1, j, k) = static_cast<float>((static_cast<double>(mask(nx - 1, j, k)) - mask(nx - 2, j, k)) / cfg.dx);
      }
  const gradOperator op = makeGradOperator(cfg.dx, cfg.dy, cfg.dz);
  if (ny >= 2) gradYFloat(op, cfg, mask, gy);
  gradZFloat(op, cfg, mask, gz);

  // Outward unit normal -grad M / |grad M| at every node inside.
  const int count = mask.count();
  for (int n = 0; n < count; ++n) {
    if (mask[n] < iso) continue;
    const float len2 = gx[n] * gx[n] + gy[n] * gy[n] + gz[n] * gz[n];
    if (len2 == 0.0f) {
      gx[n] = gy[n] = gz[n] = 0.0f;
      continue;
    }
    const float len = std::sqrt(len2);
    gx[n] = -gx[n] / len;
    gy[n] = -gy[n] / len;
    gz[n] = -gz[n] / len;
  }

  const auto reach = static_cast<float>(1.1 * std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy + cfg.dz * cfg.dz));
  const float x0 = domain.gridX[0], x1 = domain.gridX[nx - 1];
  const float y0 = domain.gridY[0], y1 = domain.gridY[ny - 1];
  const float z0 = domain.gridZ[0], z1 = domain.gridZ[nz - 1];
  const bool inlet = t >= 2 && t <= 6;
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i) {
        if (!(mask(i, j, k) > iso)) continue;
        const float p[3] = {domain.gridX[i], domain.gridY[j], domain.gridZ[k]};
        const float g[3] = {gx(i, j, k), gy(i, j, k), gz(i, j, k)};
        float off[3] = {0.0f, 0.0f, 0.0f};
        // Walk from one reach outside in towards the node: the first sample
        // below the level brackets the surface, and the image point lies
        // twice as far out as the sample before it.
        for (int s = 0; s <= 10; ++s) {
          const float q[3] = {std::clamp(p[0] + static_cast<float>(10 - s) * (reach * g[0]) / 10.0f, x0, x1),
                              std::clamp(p[1] + static_cast<float>(10 - s) * (reach * g[1]) / 10.0f, y0, y1),
                              std::clamp(p[2] + static_cast<float>(10 - s) * (reach * g[2]) / 10.0f, z0, z1)};
          const float d = iso - sampleFieldFloat(cfg, q[0], q[1], q[2], mask);
          if (s == 0 && d < 0.0f) {
            if (inlet) {
              flag(i, j, k) = inletBodyType;
            } else {
              flag(i, j, k) = solidType;
              domain.imageX(i, j, k) = static_cast<float>(2.0 * cfg.lx);
              domain.imageY(i, j, k) = static_cast<float>(2.0 * cfg.ly);
              domain.imageZ(i, j, k) = static_cast<float>(2.0 * cfg.lz);
            }
            break;
          }
          if (!(d >= 0.0f)) {
            domain.imageX(i, j, k) = std::clamp(static_cast<float>(p[0] + 2.0 * off[0]), x0, x1);
            domain.imageY(i, j, k) = std::clamp(static_cast<float>(p[1] + 2.0 * off[1]), y0, y1);
            domain.imageZ(i, j, k) = std::clamp(static_cast<float>(p[2] + 2.0 * off[2]), z0, z1);
            flag(i, j, k) = t;
            break;
          }
          for (int a = 0; a < 3; ++a) off[a] = q[a] - p[a];
        }
      }
  reverseInK(mask);
}

// ---------------------------------------------------------------- build2D, build3D
namespace {

void finishBuild(bcDomain& domain, appConfig& cfg) {
  buildNodeLists(domain, cfg);
  buildSolidMask(domain, cfg);
  // The masks are not needed after the build; what was drawn from them is
  // already polygonised, so the drawables lose their field pointer.
  for (int t = 1; t < numColourTypes; ++t) {
    domain.typeMasks[t] = ownedArray3d<float>();
    domain.surfaces[t].field = nullptr;
    domain.outlines[t].field = nullptr;
  }
}

}  // namespace

void build2D(bcDomain& domain, appConfig& cfg) {
  fill(static_cast<const array3d<int>&>(domain.bcFlag), 0);
  cfg.progressCount = 0;
  cfg.progressTotal = domain.endType - domain.firstType;
  showProgress(cfg, 1);
  for (int t = 1; t <= nonPresetType; ++t) {
    showProgress(cfg, 1);
    if (t != stlType) classifyMask(cfg, domain, t);
  }
  finishBuild(domain, cfg);
}

void build3D(bcDomain& domain, appConfig& cfg) {
  if (cfg.nz == 1) return;
  fill(static_cast<const array3d<int>&>(domain.nearestTriangle), noTriangle);
  fill(static_cast<const array3d<int>&>(domain.bcFlag), 0);
  fill(static_cast<const array3d<int>&>(domain.solidMask), 0);
  cfg.progressCount = 0;
  cfg.progressTotal = domain.endType - domain.firstType;
  if (cfg.stlPresent == 1) cfg.progressTotal += stlScanRefreshes(domain, cfg);
  showProgress(cfg, 1);
  if (cfg.stlPresent == 1) {
    // The model's shell of 7 over a core of 10, which becomes solid (9).
    scanModel(domain, cfg);
    for (int n = 0; n < domain.bcFlag.count(); ++n)
      if (domain.bcFlag[n] == stlSolidType) domain.bcFlag[n] = solidType;
  }
  cfg.progressCount = 0;
  for (int t = 1; t <= nonPresetType; ++t) {
    showProgress(cfg, 2);
    if (t != stlType) classifyMask(cfg, domain, t);
  }
  finishBuild(domain, cfg);
}

}  // namespace marv
