// Pure geometry of the layer, against hand geometry or brute-force sampling, never the formulas under test.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

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
  // Hits whatever the segment's direction and the triangle's winding; misses ending before the plane, beyond the
  // hypotenuse, left of the triangle, in its plane, for a point and for a degenerate triangle.
  EXPECT_EQ((std::vector{lineTriangleHit({20, 30, 20}, {20, 30, -10}, p1, p2, p3).hit,
                         lineTriangleHit({20, 30, -10}, {20, 30, 20}, p1, p3, p2).hit,
                         lineTriangleHit({20, 30, -10}, {20, 30, 4.9f}, p1, p2, p3).hit,
                         lineTriangleHit({80, 80, -10}, {80, 80, 20}, p1, p2, p3).hit,
                         lineTriangleHit({-1, 10, -10}, {-1, 10, 20}, p1, p2, p3).hit,
                         lineTriangleHit({10, 10, 5}, {50, 20, 5}, p1, p2, p3).hit,
                         lineTriangleHit({10, 10, 0}, {10, 10, 0}, p1, p2, p3).hit,
                         lineTriangleHit({10, 10, -1}, {10, 10, 9}, p1, p1, p3).hit}),
            (std::vector{1, 1, 0, 0, 0, 0, 0, 0}));
  // A mouse ray through a cell of a scene some thousand pixels wide.
  const vec3 q1{3000.0f, 2000.0f, 1500.0f}, q2{3000.5f, 2000.0f, 1500.0f}, q3{3000.0f, 2000.5f, 1500.0f};
  const hitResult far = lineTriangleHit({3000.1f, 2000.1f, -50000.0f}, {3000.1f, 2000.1f, 50000.0f}, q1, q2, q3);
  ASSERT_EQ(far.hit, 1);
  EXPECT_NEAR(far.point.z, 1500.0f, 0.05f);
}

// Random segments miss these: points, and ends that touch.
TEST(segmentDistance, pointsAndTouchingEnds) {
  EXPECT_NEAR(segmentDistance({0, 0, 0}, {0, 0, 0}, {3, 4, 0}, {3, 4, 0}), 5.0f, 1e-5f) << "two points";
  EXPECT_NEAR(segmentDistance({1, 1, 0}, {1, 1, 0}, {0, 0, 0}, {10, 0, 0}), 1.0f, 1e-5f) << "point and segment";
  EXPECT_NEAR(segmentDistance({0, 0, 0}, {10, 0, 0}, {13, 0, 0}, {20, 0, 0}), 3.0f, 1e-5f) << "collinear with a gap";
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
  EXPECT_TRUE(std::fabs(centre.x - 540.0f) < 1e-3f && std::fabs(centre.y - 280.0f) < 1e-3f)
      << centre.x << "," << centre.y;
  EXPECT_TRUE(centre.z > 0.0f && centre.z < 1.0f) << centre.z;
  EXPECT_GT(projectPoint(c, {600, 280, 200}).x, centre.x) << "x to the right";
  EXPECT_LT(projectPoint(c, {540, 350, 200}).y, centre.y) << "y up, so smaller pixel y";
  EXPECT_GT(projectPoint(c, {540, 280, 900}).z, centre.z) << "farther is deeper";
  // A 60 degree view: a point at the top edge of the view lies at pixel row 0.
  const float half = 1100.0f * std::tan(0.5f * c.fov);
  EXPECT_NEAR(projectPoint(c, {540, 280 + half, 200}).y, 0.0f, 0.05f);
}

// Mouse rays through screenToWorld are driven end to end by the force picture tests.
TEST(camera, singularViewsGiveMinusOnes) {
  cameraState onTheTarget = sceneCamera(), upAlongTheView = sceneCamera(), noWidth = sceneCamera();
  onTheTarget.target = onTheTarget.position;
  upAlongTheView.up = {0, 0, 1};
  noWidth.width = 0;
  const vec3 r = unprojectPoint(onTheTarget, {10, 10, 0.5f});
  EXPECT_EQ((std::vector{r.x, r.y, r.z, unprojectPoint(upAlongTheView, {10, 10, 0.5f}).z,
                         unprojectPoint(noWidth, {10, 10, 0.5f}).z, projectPoint(noWidth, {0, 0, 0}).z}),
            std::vector(6, -1.0f));
}

}  // namespace
