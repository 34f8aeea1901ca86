// Streamline steps equal, bit for bit, a plain integration through the grid sampler written from its interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "domain/gridSampling.h"
#include "scene/streamlines.h"

namespace {

using namespace marv;

using point = std::array<double, 3>;

// nx x ny x nz nodes (nz = 1: 2D), a swirling flow, a solid block, uneven spacings.
struct swirl {
  appConfig cfg;
  ownedArray3d<double> u, v, w;
  ownedArray3d<int> solid;
  int dims;
  swirl(int nx, int ny, int nz) : u(nx, ny, nz), v(nx, ny, nz), w(nx, ny, nz), solid(nx, ny, nz) {
    dims = nz > 1 ? 3 : 2;
    cfg.nx = nx, cfg.ny = ny, cfg.nz = nz;
    cfg.lx = 0.7, cfg.ly = 0.3, cfg.lz = nz > 1 ? 0.45 : 0.0;
    cfg.dx = cfg.lx / (nx - 1), cfg.dy = cfg.ly / (ny - 1), cfg.dz = nz > 1 ? cfg.lz / (nz - 1) : 1.0;
    for (int i = 0; i < nx; ++i) cfg.xCoord.push_back(0.1 + i * cfg.dx);
    for (int j = 0; j < ny; ++j) cfg.yCoord.push_back(-0.2 + j * cfg.dy);
    for (int k = 0; k < nz; ++k) cfg.zCoord.push_back(k * cfg.dz);
    for (int k = 0; k < nz; ++k)
      for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
          const double x = cfg.xCoord[i], y = cfg.yCoord[j], z = cfg.zCoord[k];
          u(i, j, k) = 1.0 + 0.8 * std::sin(7.0 * y + 3.0 * z);
          v(i, j, k) = 0.6 * std::cos(9.0 * x) - 0.3 * z;
          w(i, j, k) = nz > 1 ? 0.4 * std::sin(5.0 * x + 11.0 * y) : 0.0;
          solid(i, j, k) = (i > nx / 2 && i < nx / 2 + 3 && j > ny / 3 && j < ny / 2) ? 1 : 0;
        }
  }
  flowSample sample() const { return {&u, &v, dims == 3 ? &w : nullptr, &solid}; }
  double stepLength() const {
    return std::sqrt(cfg.dx * cfg.dx + cfg.dy * cfg.dy + (dims == 3 ? cfg.dz * cfg.dz : 0.0)) * 0.4;
  }
};

struct steps {
  std::vector<std::array<point, 2>> taken;
  static void record(void* user, const double p[3], const double q[3]) {
    static_cast<steps*>(user)->taken.push_back({point{p[0], p[1], p[2]}, point{q[0], q[1], q[2]}});
  }
};

// The plain integration: every component through the sampler, the nearest node of the step's end for the solid test.
steps reference(const swirl& s, point seed, double vmax, int maxSteps) {
  const appConfig& cfg = s.cfg;
  const std::vector<double>* coord[3] = {&cfg.xCoord, &cfg.yCoord, &cfg.zCoord};
  const double h[3] = {cfg.dx, cfg.dy, cfg.dz};
  const int n[3] = {cfg.nx, cfg.ny, cfg.nz};
  steps out;
  point p = seed;
  for (int a = 0; a < s.dims; ++a)
    if (!(p[a] >= coord[a]->front() && p[a] <= coord[a]->back())) return out;
  auto read = [&](const point& at, const array3d<double>& f) {
    return s.dims == 3 ? sampleField(cfg, at[0], at[1], at[2], f) : sampleFieldPlane(cfg, at[0], at[1], f);
  };
  const double scale = s.stepLength() / vmax;
  for (int step = 0; step < maxSteps; ++step) {
    const double vel[3] = {read(p, s.u), read(p, s.v), s.dims == 3 ? read(p, s.w) : 0.0};
    const double speed = std::sqrt(vel[0] * vel[0] + vel[1] * vel[1] + vel[2] * vel[2]);
    if (!(speed / vmax >= 0.01)) break;
    point q = p;
    bool inside = true;
    int node[3] = {0, 0, 0};
    for (int a = 0; a < s.dims; ++a) {
      q[a] = p[a] + vel[a] * scale;
      inside = inside && q[a] >= coord[a]->front() && q[a] <= coord[a]->back();
      node[a] = std::clamp(static_cast<int>(std::floor((q[a] - coord[a]->front()) / h[a] + 0.5)), 0, n[a] - 1);
    }
    if (!inside || s.solid(node[0], node[1], node[2]) != 0) break;
    out.taken.push_back({p, q});
    p = q;
  }
  return out;
}

// The tracer's steps against the reference, point for point; the number of steps.
int expectSameSteps(const swirl& s, point seed, double vmax, int maxSteps) {
  steps traced;
  const int count =
      traceStreamline(s.cfg, s.sample(), seed, s.dims, s.stepLength(), vmax, maxSteps, steps::record, &traced);
  const steps expected = reference(s, seed, vmax, maxSteps);
  EXPECT_EQ(count, static_cast<int>(expected.taken.size()));
  EXPECT_EQ(traced.taken, expected.taken);
  return count;
}

TEST(streamlineSteps, LinesFollowTheSamplerToTheLastBitIn3dAnd2d) {
  swirl s(23, 17, 12);
  const appConfig& c = s.cfg;
  // Seeds inside, on faces, on nodes, beside the block; long enough to leave the mesh or reach the block.
  const point seeds[] = {{c.xCoord[0], c.yCoord[3], c.zCoord[2]},
                         {c.xCoord[4] + 0.3 * c.dx, c.yCoord[8] + 0.5 * c.dy, c.zCoord[6] + 0.25 * c.dz},
                         {c.xCoord[22], c.yCoord[16], c.zCoord[11]},
                         {c.xCoord[11], c.yCoord[0], c.zCoord[11]},
                         {c.xCoord[9] + 0.5 * c.dx, c.yCoord[6] + 0.5 * c.dy, c.zCoord[5]}};
  int stepsSeen = 0;
  for (const point& seed : seeds) stepsSeen += expectSameSteps(s, seed, 1.9, 400);
  EXPECT_GT(stepsSeen, 50) << "the lines move";
  // A short limit, and a slow reference speed that stops nothing.
  expectSameSteps(s, seeds[1], 1.9, 7);
  expectSameSteps(s, seeds[1], 0.5, 400);
  swirl f(31, 19, 1);
  const appConfig& d = f.cfg;
  for (const point& seed :
       {point{d.xCoord[0], d.yCoord[9] + 0.5 * d.dy, 0.0}, point{d.xCoord[5] + 0.49 * d.dx, d.yCoord[18], 0.0},
        point{d.xCoord[14] + 0.51 * d.dx, d.yCoord[4] + 0.5 * d.dy, 0.0}})
    expectSameSteps(f, seed, 1.9, 2000);
}

TEST(streamlineSteps, AUniformStreamRunsStraightToTheOutletInStepsOfTheGivenLength) {
  swirl s(21, 21, 1);
  for (int n = 0; n < s.u.count(); ++n) s.u[n] = 2.0, s.v[n] = 0.0, s.solid[n] = 0;
  const double y = s.cfg.yCoord[7], length = s.stepLength(), outlet = s.cfg.xCoord.back();
  steps line;
  const int count =
      traceStreamline(s.cfg, s.sample(), {s.cfg.xCoord[0], y, 0.0}, 2, length, 2.0, 100000, steps::record, &line);
  EXPECT_EQ(count, static_cast<int>((outlet - s.cfg.xCoord[0]) / length));
  ASSERT_FALSE(line.taken.empty());
  for (const auto& step : line.taken) EXPECT_EQ(step[1][1], y);
  EXPECT_GT(line.taken.back()[1][0], outlet - length);
  // A wall across at node 15: the line ends where the wall's nearest nodes begin, half a cell before it.
  for (int j = 0; j < 21; ++j) s.solid(15, j, 0) = 1;
  EXPECT_NEAR(expectSameSteps(s, {s.cfg.xCoord[0], y, 0.0}, 2.0, 100000), 14.5 * s.cfg.dx / length, 1.0);
}

TEST(streamlineSteps, StillWaterBadValuesAndSeedsOffTheMeshStopAtOnce) {
  swirl s(9, 8, 7);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const point mid{s.cfg.xCoord[4], s.cfg.yCoord[4], s.cfg.zCoord[3]};
  EXPECT_EQ(expectSameSteps(s, {s.cfg.xCoord[0] - 1e-9, mid[1], mid[2]}, 1.9, 50), 0) << "off the mesh";
  EXPECT_EQ(expectSameSteps(s, {mid[0], mid[1], nan}, 1.9, 50), 0) << "off the mesh";
  for (int n = 0; n < s.v.count(); ++n) s.v[n] = nan;
  EXPECT_EQ(expectSameSteps(s, mid, 1.9, 50), 0) << "a velocity that is not a number";
  for (auto* f : {&s.u, &s.v, &s.w})
    for (int n = 0; n < f->count(); ++n) (*f)[n] = 0.0;
  EXPECT_EQ(expectSameSteps(s, mid, 1.9, 50), 0) << "water at rest";
}

}  // namespace
