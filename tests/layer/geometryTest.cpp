// Pure geometry of the layer, against hand geometry or brute-force sampling, never the formulas under test.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "layer/camera.h"
#include "layer/layer.h"

namespace {

using namespace marv;

float distance(vec3 a, vec3 b) {
  return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z));
}

vec3 lerp(vec3 a, vec3 b, float t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t}; }

TEST(lineTriangleHit, segmentsThroughTheInsideHitAtThePlaneAndOthersMiss) {
  const vec3 p1{0, 0, 5}, p2{100, 0, 5}, p3{0, 100, 5};
  const hitResult h = lineTriangleHit({20, 30, -10}, {20, 30, 20}, p1, p2, p3);
  ASSERT_EQ(h.hit, 1);
  EXPECT_LT(distance(h.point, {20, 30, 5}), 1e-4f);
  // Direction of the segment and winding of the triangle do not matter.
  EXPECT_EQ(lineTriangleHit({20, 30, 20}, {20, 30, -10}, p1, p2, p3).hit, 1);
  EXPECT_EQ(lineTriangleHit({20, 30, -10}, {20, 30, 20}, p1, p3, p2).hit, 1);
  EXPECT_EQ(lineTriangleHit({20, 30, -10}, {20, 30, 4.9f}, p1, p2, p3).hit, 0) << "ends before the plane";
  EXPECT_EQ(lineTriangleHit({80, 80, -10}, {80, 80, 20}, p1, p2, p3).hit, 0) << "beyond the hypotenuse";
  EXPECT_EQ(lineTriangleHit({-1, 10, -10}, {-1, 10, 20}, p1, p2, p3).hit, 0) << "left of the triangle";
  EXPECT_EQ(lineTriangleHit({10, 10, 5}, {50, 20, 5}, p1, p2, p3).hit, 0) << "in the plane";
  EXPECT_EQ(lineTriangleHit({10, 10, 0}, {10, 10, 0}, p1, p2, p3).hit, 0) << "a point, not a segment";
  EXPECT_EQ(lineTriangleHit({10, 10, -1}, {10, 10, 9}, p1, p1, p3).hit, 0) << "a degenerate triangle";

  // A mouse ray through a cell of a scene some thousand pixels wide.
  const vec3 q1{3000.0f, 2000.0f, 1500.0f}, q2{3000.5f, 2000.0f, 1500.0f}, q3{3000.0f, 2000.5f, 1500.0f};
  const hitResult far = lineTriangleHit({3000.1f, 2000.1f, -50000.0f}, {3000.1f, 2000.1f, 50000.0f}, q1, q2, q3);
  ASSERT_EQ(far.hit, 1);
  EXPECT_NEAR(far.point.z, 1500.0f, 0.05f);
}

TEST(segmentDistance, handCases) {
  EXPECT_NEAR(segmentDistance({-5, 0, 0}, {5, 0, 0}, {0, -5, 3}, {0, 5, 3}), 3.0f, 1e-5f) << "crossing, offset in z";
  EXPECT_NEAR(segmentDistance({0, 0, 0}, {10, 0, 0}, {2, 4, 0}, {8, 4, 0}), 4.0f, 1e-5f) << "parallel, overlapping";
  EXPECT_NEAR(segmentDistance({0, 0, 0}, {10, 0, 0}, {13, 0, 0}, {20, 0, 0}), 3.0f, 1e-5f) << "collinear with a gap";
  EXPECT_NEAR(segmentDistance({0, 0, 0}, {0, 0, 0}, {3, 4, 0}, {3, 4, 0}), 5.0f, 1e-5f) << "two points";
  EXPECT_NEAR(segmentDistance({1, 1, 0}, {1, 1, 0}, {0, 0, 0}, {10, 0, 0}), 1.0f, 1e-5f) << "point and segment";
  EXPECT_NEAR(segmentDistance({0, 0, 0}, {1, 1, 1}, {0, 0, 0}, {-1, 2, 0}), 0.0f, 1e-6f) << "touching ends";
}

TEST(segmentDistance, agreesWithSampledMinimumAndIsSymmetric) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> coordinate(-50.0f, 50.0f);
  for (int trial = 0; trial < 60; ++trial) {
    vec3 p[4];
    for (vec3& q : p) q = {coordinate(random), coordinate(random), coordinate(random)};
    if (trial % 5 == 0)
      p[3] = lerp(p[2], {p[2].x + p[1].x - p[0].x, p[2].y + p[1].y - p[0].y, p[2].z + p[1].z - p[0].z}, 0.7f);
    float sampled = 1e30f;
    constexpr int n = 400;
    for (int i = 0; i <= n; ++i)
      for (int j = 0; j <= n; ++j)
        sampled = std::min(sampled, distance(lerp(p[0], p[1], float(i) / n), lerp(p[2], p[3], float(j) / n)));
    const float d = segmentDistance(p[0], p[1], p[2], p[3]);
    EXPECT_LE(d, sampled + 1e-3f) << "trial " << trial;
    EXPECT_GE(d, sampled - 0.3f) << "trial " << trial << " (sampling step about 0.25)";
    EXPECT_NEAR(d, segmentDistance(p[2], p[3], p[0], p[1]), 1e-3f) << "trial " << trial;
    EXPECT_NEAR(d, segmentDistance(p[1], p[0], p[3], p[2]), 1e-3f) << "trial " << trial;
  }
}

TEST(rotationMatrix, quarterTurnsMoveAxesRightHanded) {
  auto apply = [](const matrix4& m, vec3 v) {
    return vec3{m.m[0][0] * v.x + m.m[0][1] * v.y + m.m[0][2] * v.z,
                m.m[1][0] * v.x + m.m[1][1] * v.y + m.m[1][2] * v.z,
                m.m[2][0] * v.x + m.m[2][1] * v.y + m.m[2][2] * v.z};
  };
  const float q = 1.5707963f;
  const vec3 zx = apply(rotationMatrixZ(q), {1, 0, 0});
  EXPECT_NEAR(zx.y, 1.0f, 1e-6f) << "x turns into y about z";
  const vec3 xy = apply(rotationMatrixX(q), {0, 1, 0});
  EXPECT_NEAR(xy.z, 1.0f, 1e-6f) << "y turns into z about x";
  const vec3 yz = apply(rotationMatrixY(q), {0, 0, 1});
  EXPECT_NEAR(yz.x, 1.0f, 1e-6f) << "z turns into x about y";
}

cameraState sceneCamera() {
  cameraState c;
  c.position = {540, 280, -900};
  c.target = {540, 280, 200};
  c.up = {0, 1, 0};
  c.fov = 1.0471976f;
  c.width = 1080;
  c.height = 560;
  return c;
}

TEST(camera, leftHandedAxesOnTheScreen) {
  const cameraState c = sceneCamera();
  const vec3 centre = projectPoint(c, c.target);
  EXPECT_NEAR(centre.x, 540.0f, 1e-3f);
  EXPECT_NEAR(centre.y, 280.0f, 1e-3f);
  EXPECT_GT(centre.z, 0.0f);
  EXPECT_LT(centre.z, 1.0f);
  EXPECT_GT(projectPoint(c, {600, 280, 200}).x, centre.x) << "x to the right";
  EXPECT_LT(projectPoint(c, {540, 350, 200}).y, centre.y) << "y up, so smaller pixel y";
  EXPECT_GT(projectPoint(c, {540, 280, 900}).z, centre.z) << "farther is deeper";
  // A 60 degree view: a point at the top edge of the view lies at pixel row 0.
  const float half = 1100.0f * std::tan(0.5f * c.fov);
  EXPECT_NEAR(projectPoint(c, {540, 280 + half, 200}).y, 0.0f, 0.05f);
}

TEST(camera, screenToWorldInvertsWorldToScreen) {
  cameraState c = sceneCamera();
  c.position = {100, 900, -400};  // looking down at a slant
  const vec3 points[] = {{540, 280, 200}, {0, 0, 0}, {1080, 560, 700}, {300, 100, 5000}};
  for (const vec3& p : points) {
    const vec3 s = projectPoint(c, p);
    const vec3 back = unprojectPoint(c, s);
    EXPECT_LT(distance(back, p), 1e-3f * distance(p, c.position)) << "at " << p.x << "," << p.y << "," << p.z;
  }
}

TEST(camera, singularViewsGiveMinusOnes) {
  cameraState c = sceneCamera();
  c.target = c.position;
  const vec3 r = unprojectPoint(c, {10, 10, 0.5f});
  EXPECT_TRUE(r.x == -1.0f && r.y == -1.0f && r.z == -1.0f);
  c = sceneCamera();
  c.up = {0, 0, 1};  // along the view line
  EXPECT_EQ(unprojectPoint(c, {10, 10, 0.5f}).z, -1.0f);
  c = sceneCamera();
  c.width = 0;
  EXPECT_EQ(unprojectPoint(c, {10, 10, 0.5f}).z, -1.0f);
  EXPECT_EQ(projectPoint(c, {0, 0, 0}).z, -1.0f);
}

TEST(camera, renderingMatricesAgreeWithWorldToScreen) {
  cameraState c = sceneCamera();
  c.position = {200, 800, -600};
  const matrix4 m = multiply(projectionMatrix(c), viewMatrix(c));
  for (const vec3 p : {vec3{540, 280, 200}, vec3{0, 560, 0}, vec3{900, 10, 1200}}) {
    float clip[4];
    for (int r = 0; r < 4; ++r) clip[r] = m.m[r][0] * p.x + m.m[r][1] * p.y + m.m[r][2] * p.z + m.m[r][3];
    // Rows of the draw target run top-down: clip y -1 is pixel row 0.
    const float px = (clip[0] / clip[3] + 1.0f) * 0.5f * c.width;
    const float py = (clip[1] / clip[3] + 1.0f) * 0.5f * c.height;
    const float depth = (clip[2] / clip[3] + 1.0f) * 0.5f;
    const vec3 s = projectPoint(c, p);
    EXPECT_NEAR(px, s.x, 0.01f);
    EXPECT_NEAR(py, s.y, 0.01f);
    EXPECT_NEAR(depth, s.z, 1e-4f);
  }
}

}  // namespace
