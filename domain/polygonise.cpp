// Marching squares and marching cubes over a mask. Corners below the level
// set the bits of a cell's index (level > value), so that both polygonisers
// agree on which side is inside; the crossing points are linear between the
// two corners of a cut edge.
#include "domain/polygonise.h"

#include <cmath>

namespace marv {

namespace {

// Segments of each marching-squares case as pairs of edges (edge 0 bottom,
// 1 right, 2 top, 3 left), -1 where there is none.
constexpr int squareSegments[16][4] = {{-1, -1, -1, -1}, {0, 3, -1, -1}, {1, 0, -1, -1}, {1, 3, -1, -1},
                                       {2, 1, -1, -1},   {0, 1, 2, 3},   {2, 0, -1, -1}, {2, 3, -1, -1},
                                       {3, 2, -1, -1},   {0, 2, -1, -1}, {3, 0, 1, 2},   {1, 2, -1, -1},
                                       {3, 1, -1, -1},   {0, 1, -1, -1}, {3, 0, -1, -1}, {-1, -1, -1, -1}};

// Corner offsets of a cube and the corners that each of its 12 edges joins.
constexpr int cornerOffset[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                    {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
constexpr int edgeCorners[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                    {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};

}  // namespace

int polygoniseOutline(bcOutline& outline, double level) {
  if (outline.grid == nullptr || outline.field == nullptr) return -1;
  const bcGrid& g = *outline.grid;
  const array3d<float>& f = *outline.field;
  const int nx = g.gridNx, ny = g.gridNy;
  outline.outlineLevel = level;
  outline.segmentX.clear();
  outline.segmentY.clear();
  if (nx < 2 || ny < 2 || f.nx != nx || f.ny != ny) {
    outline.numSegments = 0;
    return 0;
  }
  const float* x = g.gridX;
  const float* y = g.gridY;
  for (int i = 0; i <= nx - 2; ++i)
    for (int j = 0; j <= ny - 2; ++j) {
      const double a = f(i, j, 0), b = f(i + 1, j, 0), c = f(i + 1, j + 1, 0), d = f(i, j + 1, 0);
      const int index = (level > a ? 1 : 0) | (level > b ? 2 : 0) | (level > c ? 4 : 0) | (level > d ? 8 : 0);
      // An edge in the case's list always has corners on both sides of the
      // level, so its divisor is not zero.
      auto point = [&](int edge, float& px, float& py) {
        switch (edge) {
          case 0:
            px = static_cast<float>(x[i] + (level - a) / (b - a) * (x[i + 1] - x[i]));
            py = y[j];
            break;
          case 1:
            px = x[i + 1];
            py = static_cast<float>(y[j] + (level - b) / (c - b) * (y[j + 1] - y[j]));
            break;
          case 2:
            px = static_cast<float>(x[i + 1] + (level - c) / (d - c) * (x[i] - x[i + 1]));
            py = y[j + 1];
            break;
          default:
            px = x[i];
            py = static_cast<float>(y[j + 1] + (level - d) / (a - d) * (y[j] - y[j + 1]));
            break;
        }
      };
      for (int s = 0; s < 4 && squareSegments[index][s] >= 0; ++s) {
        float px = 0.0f, py = 0.0f;
        point(squareSegments[index][s], px, py);
        outline.segmentX.push_back(px);
        outline.segmentY.push_back(py);
      }
    }
  outline.segmentX.shrink_to_fit();
  outline.segmentY.shrink_to_fit();
  outline.numSegments = static_cast<int>(outline.segmentX.size() / 2);
  return 0;
}

int polygoniseSurface(bcSurface& surface, double level) {
  if (surface.grid == nullptr || surface.field == nullptr) return -1;
  const bcGrid& g = *surface.grid;
  const array3d<float>& f = *surface.field;
  const int nx = g.gridNx, ny = g.gridNy, nz = g.gridNz;
  surface.surfaceLevel = level;
  surface.triangles.clear();
  if (nx < 2 || ny < 2 || nz < 2 || f.nx != nx || f.ny != ny || f.nz != nz) {
    surface.numTriangles = 0;
    return 0;
  }
  for (int i = 0; i <= nx - 2; ++i)
    for (int j = 0; j <= ny - 2; ++j)
      for (int k = 0; k <= nz - 2; ++k) {
        double value[8];
        float corner[8][3];
        int index = 0;
        for (int n = 0; n < 8; ++n) {
          const int ci = i + cornerOffset[n][0], cj = j + cornerOffset[n][1], ck = k + cornerOffset[n][2];
          value[n] = f(ci, cj, ck);
          corner[n][0] = g.gridX[ci];
          corner[n][1] = g.gridY[cj];
          corner[n][2] = g.gridZ[ck];
          if (level > value[n]) index |= 1 << n;
        }
        const int cut = cubeEdgeTable[index];
        if (cut == 0) continue;
        float crossing[12][3] = {};
        for (int e = 0; e < 12; ++e) {
          if ((cut & (1 << e)) == 0) continue;
          const int a = edgeCorners[e][0], b = edgeCorners[e][1];
          const double va = value[a], vb = value[b];
          float* p = crossing[e];
          if (std::fabs(level - va) < 1e-5) {
            for (int c = 0; c < 3; ++c) p[c] = corner[a][c];
          } else if (std::fabs(level - vb) < 1e-5) {
            for (int c = 0; c < 3; ++c) p[c] = corner[b][c];
          } else if (std::fabs(vb - va) < 1e-5) {
            for (int c = 0; c < 3; ++c) p[c] = corner[a][c];
          } else {
            const auto mu = static_cast<float>((level - va) / (vb - va));
            for (int c = 0; c < 3; ++c) p[c] = corner[a][c] + mu * (corner[b][c] - corner[a][c]);
          }
        }
        for (int t = 0; t < 16 && cubeTriangleTable[index][t] >= 0; t += 3) {
          bcTriangle tri;
          for (int v = 0; v < 3; ++v)
            for (int c = 0; c < 3; ++c) tri.vertex[v][c] = crossing[cubeTriangleTable[index][t + v]][c];
          float u[3], w[3];
          for (int c = 0; c < 3; ++c) {
            tri.centroid[c] = (tri.vertex[0][c] + tri.vertex[1][c] + tri.vertex[2][c]) / 3.0f;
            u[c] = tri.vertex[2][c] - tri.vertex[0][c];
            w[c] = tri.vertex[1][c] - tri.vertex[0][c];
          }
          const float n[3] = {u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2], u[0] * w[1] - u[1] * w[0]};
          const float len = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
          for (int c = 0; c < 3; ++c) tri.normal[c] = len > 0.0f ? n[c] / len : 0.0f;
          surface.triangles.push_back(tri);
        }
      }
  surface.triangles.shrink_to_fit();
  surface.numTriangles = static_cast<int>(surface.triangles.size());
  return 0;
}

}  // namespace marv
