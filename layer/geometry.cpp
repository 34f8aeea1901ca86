// Pure vector helpers of the drawing layer: segment-triangle hits, segment
// distances, lengths and rotation matrices. Shared by every backend.
#include <algorithm>
#include <cmath>

#include "layer/layer.h"

namespace marv {

namespace {

vec3 sub(vec3 a, vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
vec3 add(vec3 a, vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
vec3 scale(vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
float dot(vec3 a, vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
vec3 cross(vec3 a, vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }

}  // namespace

// Möller-Trumbore with the ray parameter limited to the segment [0, 1].
hitResult lineTriangleHit(vec3 a, vec3 b, vec3 p1, vec3 p2, vec3 p3) {
  hitResult result;
  const vec3 dir = sub(b, a);
  const vec3 e1 = sub(p2, p1);
  const vec3 e2 = sub(p3, p1);
  const vec3 pv = cross(dir, e2);
  const float det = dot(e1, pv);
  if (std::fabs(det) < 1e-12f) return result;
  const float inv = 1.0f / det;
  const vec3 tv = sub(a, p1);
  const float u = dot(tv, pv) * inv;
  if (u < 0.0f || u > 1.0f) return result;
  const vec3 qv = cross(tv, e1);
  const float v = dot(dir, qv) * inv;
  if (v < 0.0f || u + v > 1.0f) return result;
  const float t = dot(e2, qv) * inv;
  if (t < 0.0f || t > 1.0f) return result;
  result.hit = 1;
  result.point = add(a, scale(dir, t));
  return result;
}

// Closest points of two segments by clamped parameters (Ericson, Real-Time
// Collision Detection, 5.1.9); degenerate segments count as points.
float segmentDistance(vec3 a1, vec3 a2, vec3 b1, vec3 b2) {
  const vec3 d1 = sub(a2, a1);
  const vec3 d2 = sub(b2, b1);
  const vec3 r = sub(a1, b1);
  const float a = dot(d1, d1);
  const float e = dot(d2, d2);
  const float f = dot(d2, r);
  constexpr float tiny = 1e-12f;
  float s = 0.0f;
  float t = 0.0f;
  if (a <= tiny && e <= tiny) {
    s = t = 0.0f;
  } else if (a <= tiny) {
    t = std::clamp(f / e, 0.0f, 1.0f);
  } else {
    const float c = dot(d1, r);
    if (e <= tiny) {
      s = std::clamp(-c / a, 0.0f, 1.0f);
    } else {
      const float b = dot(d1, d2);
      const float denom = a * e - b * b;
      s = denom > tiny ? std::clamp((b * f - c * e) / denom, 0.0f, 1.0f) : 0.0f;
      t = (b * s + f) / e;
      if (t < 0.0f) {
        t = 0.0f;
        s = std::clamp(-c / a, 0.0f, 1.0f);
      } else if (t > 1.0f) {
        t = 1.0f;
        s = std::clamp((b - c) / a, 0.0f, 1.0f);
      }
    }
  }
  const vec3 pa = add(a1, scale(d1, s));
  const vec3 pb = add(b1, scale(d2, t));
  const vec3 d = sub(pa, pb);
  return std::sqrt(dot(d, d));
}

float vecLength(vec3 v) {
  const float sum = dot(v, v);
  return sum < 1e-7f ? 0.0f : std::sqrt(sum);
}

matrix4 rotationMatrixX(float angle) {
  matrix4 r;
  const float c = std::cos(angle), s = std::sin(angle);
  r.m[1][1] = c;
  r.m[1][2] = -s;
  r.m[2][1] = s;
  r.m[2][2] = c;
  return r;
}

matrix4 rotationMatrixY(float angle) {
  matrix4 r;
  const float c = std::cos(angle), s = std::sin(angle);
  r.m[0][0] = c;
  r.m[0][2] = s;
  r.m[2][0] = -s;
  r.m[2][2] = c;
  return r;
}

matrix4 rotationMatrixZ(float angle) {
  matrix4 r;
  const float c = std::cos(angle), s = std::sin(angle);
  r.m[0][0] = c;
  r.m[0][1] = -s;
  r.m[1][0] = s;
  r.m[1][1] = c;
  return r;
}

}  // namespace marv
