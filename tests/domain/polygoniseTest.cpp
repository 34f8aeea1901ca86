// Marching cubes and squares: every case closed and consistently turned, a sphere on its radius, linear crossings.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <tuple>

#include "domain/polygonise.h"
#include "testGrid.h"

namespace {

using namespace marv;
using point = std::tuple<long, long, long>;

struct gridBlock {
  std::vector<float> x, y, z;
  bcGrid grid;
  ownedArray3d<float> field;
  gridBlock(int nx, int ny, int nz, double h) : field(nx, ny, nz) {
    for (int i = 0; i < nx; ++i) x.push_back(static_cast<float>(i * h));
    for (int j = 0; j < ny; ++j) y.push_back(static_cast<float>(j * h));
    for (int k = 0; k < nz; ++k) z.push_back(static_cast<float>(k * h));
    grid = bcGrid{x.data(), y.data(), z.data(), nx, ny, nz};
  }
  template <class shape>  // bcSurface or bcOutline over the block's field
  shape over() {
    shape s;
    s.grid = &grid, s.field = &field;
    return s;
  }
};

// Edges not met once in each direction, as a closed, consistently turned surface meets them. Two cells work out a
// shared crossing from opposite ends, so points agree to rounding only: they are compared on a grid of 1e-5.
point snap(const float* v) { return {std::lround(v[0] * 1e5), std::lround(v[1] * 1e5), std::lround(v[2] * 1e5)}; }

int openEdges(const bcSurface& s) {
  std::map<std::pair<point, point>, int> directed;
  for (const bcTriangle& t : s.triangles)
    for (int e = 0; e < 3; ++e) {
      const float* a = t.vertex[e];
      const float* b = t.vertex[(e + 1) % 3];
      directed[{snap(a), snap(b)}] += 1;
    }
  int bad = 0;
  for (const auto& [edge, count] : directed) {
    const auto back = directed.find({edge.second, edge.first});
    if (count != 1 || back == directed.end() || back->second != 1) ++bad;
  }
  return bad;
}

// A wrong entry of either table leaves a crossing uncomputed or a triangle
// turned the wrong way: the block's surface then does not close.
TEST(marchingCubes, everyCaseClosesInABlock) {
  constexpr int corner[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
  for (int c = 0; c < 256; ++c) {
    // The case's corners in the middle cell of a 4 x 4 x 4 block; all
    // other nodes on the other side of the level, in both polarities.
    for (float outside : {1.0f, 0.0f}) {
      gridBlock b(4, 4, 4, 0.5);
      fill(static_cast<const array3d<float>&>(b.field), outside);
      for (int k = 0; k < 8; ++k)
        if ((c >> k) & 1) b.field(1 + corner[k][0], 1 + corner[k][1], 1 + corner[k][2]) = 1.0f - outside;
      bcSurface s = b.over<bcSurface>();
      ASSERT_EQ(polygoniseSurface(s, 0.5), 0);
      EXPECT_EQ(s.numTriangles, static_cast<int>(s.triangles.size()));
      EXPECT_EQ(s.numTriangles > 0, c != 0) << "case " << c;
      EXPECT_EQ(openEdges(s), 0) << "case " << c << " outside " << outside;
    }
  }
}

TEST(marchingCubes, sphereIsClosedOnItsRadiusAndTurnedOneWay) {
  for (int n : {7, 16, 17}) {
    gridBlock b(n, n, n, 1.0 / (n - 1));
    const double c = 0.5, r = 0.31;
    for (int k = 0; k < n; ++k)
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
          b.field(i, j, k) = static_cast<float>(1.0 - std::hypot(b.x[i] - c, b.y[j] - c, b.z[k] - c) / r);
    bcSurface s = b.over<bcSurface>();
    polygoniseSurface(s, 0.0);
    ASSERT_GT(s.numTriangles, 20) << "n=" << n;
    EXPECT_EQ(openEdges(s), 0) << "n=" << n;
    int outward = 0;
    for (const bcTriangle& t : s.triangles) {
      for (const auto& v : t.vertex) EXPECT_NEAR(std::hypot(v[0] - c, v[1] - c, v[2] - c), r, 0.02) << "n=" << n;
      const double d =
          t.normal[0] * (t.centroid[0] - c) + t.normal[1] * (t.centroid[1] - c) + t.normal[2] * (t.centroid[2] - c);
      outward += d > 0.0;
      EXPECT_NEAR(std::hypot(t.normal[0], t.normal[1], t.normal[2]), 1.0, 1e-5) << "n=" << n;
    }
    EXPECT_TRUE(outward == 0 || outward == s.numTriangles) << "n=" << n << ": " << outward << " of " << s.numTriangles;
  }
  bcSurface none;
  EXPECT_EQ(polygoniseSurface(none, 0.5), -1);
}

TEST(marchingSquares, circleClosesAndCrossingsAreLinear) {
  gridBlock b(21, 17, 1, 0.05);
  for (int j = 0; j < 17; ++j)
    for (int i = 0; i < 21; ++i) b.field(i, j, 0) = static_cast<float>(0.3 - std::hypot(b.x[i] - 0.5, b.y[j] - 0.4));
  bcOutline o = b.over<bcOutline>();
  ASSERT_EQ(polygoniseOutline(o, 0.0), 0);
  ASSERT_GT(o.numSegments, 10);
  std::map<std::pair<float, float>, int> ends;
  for (int s = 0; s < 2 * o.numSegments; ++s) {
    ends[{o.segmentX[s], o.segmentY[s]}] += s % 2 == 0 ? 1 : -1;
    EXPECT_NEAR(std::hypot(o.segmentX[s] - 0.5, o.segmentY[s] - 0.4), 0.3, 0.005) << "end " << s;
  }
  for (const auto& [p, balance] : ends) EXPECT_EQ(balance, 0) << "every end starts one segment and ends another";

  // A ramp along x crosses 0.25 a quarter of the way into the cell.
  gridBlock r(2, 2, 1, 1.0);
  r.field(0, 0, 0) = r.field(0, 1, 0) = 0.0f;
  r.field(1, 0, 0) = r.field(1, 1, 0) = 1.0f;
  bcOutline line = r.over<bcOutline>();
  polygoniseOutline(line, 0.25);
  ASSERT_EQ(line.numSegments, 1);
  EXPECT_FLOAT_EQ(line.segmentX[0], 0.25f);
  EXPECT_FLOAT_EQ(line.segmentX[1], 0.25f);
  bcOutline empty;
  EXPECT_EQ(polygoniseOutline(empty, 0.5), -1);
}

}  // namespace
