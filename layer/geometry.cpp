// Pure vector helpers of the drawing layer: segment-triangle hits, segment
// distances, lengths and rotation matrices. Shared by every backend.
#include <algorithm>
#include <cmath>

#include "layer/layer.h"

namespace marv {

namespace {

float dot(vec3 a, vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

struct dvec {
  double x = 0.0, y = 0.0, z = 0.0;  // same units as the vec3 it came from
};
dvec dsub(vec3 a, vec3 b) { return {double(a.x) - b.x, double(a.y) - b.y, double(a.z) - b.z}; }
double ddot(dvec a, dvec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
dvec dcross(dvec a, dvec b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double dnorm(dvec a) { return std::sqrt(ddot(a, a)); }

}  // namespace

// Möller-Trumbore with the ray parameter limited to the segment [0, 1],
// in double precision: scene coordinates are pixel-like (hundreds to
// thousands), where single precision loses the edges of small triangles.
// Points on an edge or a corner count as hits.
hitResult lineTriangleHit(vec3 a, vec3 b, vec3 p1, vec3 p2, vec3 p3) {
  hitResult result;
  const dvec dir = dsub(b, a);
  const dvec e1 = dsub(p2, p1);
  const dvec e2 = dsub(p3, p1);
  const dvec pv = dcross(dir, e2);
  const double det = ddot(e1, pv);
  // Parallel to the plane (or a degenerate segment or triangle), relative to
  // the sizes involved.
  const double scale = dnorm(dir) * dnorm(e1) * dnorm(e2);
  if (!(std::fabs(det) > 1e-12 * scale) || scale == 0.0) return result;
  const double inv = 1.0 / det;
  const dvec tv = dsub(a, p1);
  const double u = ddot(tv, pv) * inv;
  if (u < 0.0 || u > 1.0) return result;
  const dvec qv = dcross(tv, e1);
  const double v = ddot(dir, qv) * inv;
  if (v < 0.0 || u + v > 1.0) return result;
  const double t = ddot(e2, qv) * inv;
  if (t < 0.0 || t > 1.0) return result;
  result.hit = 1;
  result.point = {static_cast<float>(a.x + dir.x * t), static_cast<float>(a.y + dir.y * t),
                  static_cast<float>(a.z + dir.z * t)};
  return result;
}

// Closest points of two segments by clamped parameters (Ericson, Real-Time
// Collision Detection, 5.1.9), in double precision so that nearly parallel
// segments keep a meaningful denominator; degenerate segments count as
// points.
float segmentDistance(vec3 a1, vec3 a2, vec3 b1, vec3 b2) {
  const dvec d1 = dsub(a2, a1);
  const dvec d2 = dsub(b2, b1);
  const dvec r = dsub(a1, b1);
  const double a = ddot(d1, d1);
  const double e = ddot(d2, d2);
  const double f = ddot(d2, r);
  constexpr double tiny = 1e-20;
  double s = 0.0;
  double t = 0.0;
  if (a <= tiny && e <= tiny) {
    s = t = 0.0;
  } else if (a <= tiny) {
    t = std::clamp(f / e, 0.0, 1.0);
  } else {
    const double c = ddot(d1, r);
    if (e <= tiny) {
      s = std::clamp(-c / a, 0.0, 1.0);
    } else {
      const double b = ddot(d1, d2);
      const double denom = a * e - b * b;
      s = denom > 1e-12 * a * e ? std::clamp((b * f - c * e) / denom, 0.0, 1.0) : 0.0;
      t = (b * s + f) / e;
      if (t < 0.0) {
        t = 0.0;
        s = std::clamp(-c / a, 0.0, 1.0);
      } else if (t > 1.0) {
        t = 1.0;
        s = std::clamp((b - c) / a, 0.0, 1.0);
      }
    }
  }
  const dvec d{r.x + d1.x * s - d2.x * t, r.y + d1.y * s - d2.y * t, r.z + d1.z * s - d2.z * t};
  return static_cast<float>(std::sqrt(ddot(d, d)));
}

float vecLength(vec3 v) {
  const float sum = dot(v, v);
  return sum < 1e-7f ? 0.0f : std::sqrt(sum);
}

// A turn by angle in the plane of axes a and b, from a toward b.
static matrix4 planeRotation(float angle, int a, int b) {
  matrix4 r;
  const float c = std::cos(angle), s = std::sin(angle);
  r.m[a][a] = r.m[b][b] = c;
  r.m[a][b] = -s;
  r.m[b][a] = s;
  return r;
}

matrix4 rotationMatrixX(float angle) { return planeRotation(angle, 1, 2); }
matrix4 rotationMatrixY(float angle) { return planeRotation(angle, 2, 0); }
matrix4 rotationMatrixZ(float angle) { return planeRotation(angle, 0, 1); }

}  // namespace marv
