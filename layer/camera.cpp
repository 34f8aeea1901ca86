// The camera as pure functions: see camera.h. The world is left-handed: with
// the eye on the negative z side looking toward +z and up (0, 1, 0), x runs
// to the right of the screen and y up.
#include "layer/camera.h"

#include <cmath>

namespace marv {

namespace {

struct viewBasis {
  vec3 x, y, z;                // right, up and forward unit vectors [-]
  float xs = 1.0f, ys = 1.0f;  // focal factors (viewOf only) [-]
  bool valid = false;          // false when the view is singular
};

vec3 sub(vec3 a, vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
float dot(vec3 a, vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
vec3 cross(vec3 a, vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }

bool normalise(vec3& v) {
  const float length = std::sqrt(dot(v, v));
  if (!(length > 1e-12f)) return false;
  v = {v.x / length, v.y / length, v.z / length};
  return true;
}

viewBasis basisOf(const cameraState& camera) {
  viewBasis b;
  b.z = sub(camera.target, camera.position);
  if (!normalise(b.z)) return b;
  b.x = cross(camera.up, b.z);
  if (!normalise(b.x)) return b;
  b.y = cross(b.z, b.x);
  b.valid = true;
  return b;
}

// Focal factors: ys = cot(fov/2) and xs = ys/aspect; false when degenerate.
bool focalFactors(const cameraState& camera, float& xs, float& ys) {
  if (camera.width <= 0 || camera.height <= 0) return false;
  const float half = 0.5f * camera.fov;
  const float t = std::tan(half);
  if (!(std::fabs(t) > 1e-9f) || !std::isfinite(t)) return false;
  ys = 1.0f / t;
  xs = ys * static_cast<float>(camera.height) / static_cast<float>(camera.width);
  return true;
}

// The basis and the focal factors together: what a point needs to go to the
// screen and back; not valid when either is degenerate.
viewBasis viewOf(const cameraState& camera) {
  viewBasis b = basisOf(camera);
  b.valid = b.valid && focalFactors(camera, b.xs, b.ys);
  return b;
}

const vec3 failedPoint{-1.0f, -1.0f, -1.0f};

}  // namespace

matrix4 viewMatrix(const cameraState& camera) {
  matrix4 m;
  const viewBasis b = basisOf(camera);
  if (!b.valid) return m;
  const vec3 axes[3] = {b.x, b.y, b.z};
  for (int r = 0; r < 3; ++r) {
    m.m[r][0] = axes[r].x;
    m.m[r][1] = axes[r].y;
    m.m[r][2] = axes[r].z;
    m.m[r][3] = -dot(axes[r], camera.position);
  }
  return m;
}

matrix4 projectionMatrix(const cameraState& camera) {
  matrix4 m;
  float xs = 1.0f, ys = 1.0f;
  if (!focalFactors(camera, xs, ys)) return m;
  const float n = cameraNear, f = cameraFar;
  m.m[0][0] = xs;
  m.m[1][1] = -ys;  // rows of the draw target run top-down
  m.m[2][2] = (f + n) / (f - n);
  m.m[2][3] = -2.0f * f * n / (f - n);
  m.m[3][2] = 1.0f;
  m.m[3][3] = 0.0f;
  return m;
}

matrix4 multiply(const matrix4& a, const matrix4& b) {
  matrix4 r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      float s = 0.0f;
      for (int k = 0; k < 4; ++k) s += a.m[i][k] * b.m[k][j];
      r.m[i][j] = s;
    }
  return r;
}

// Depth d = f/(f-n) (1 - n/zv): 0 on the near plane, 1 on the far plane.
vec3 projectPoint(const cameraState& camera, vec3 world) {
  const viewBasis b = viewOf(camera);
  if (!b.valid) return failedPoint;
  const vec3 d = sub(world, camera.position);
  const float xv = dot(d, b.x), yv = dot(d, b.y), zv = dot(d, b.z);
  if (zv == 0.0f) return failedPoint;
  const float n = cameraNear, f = cameraFar;
  vec3 s;
  s.x = (1.0f + xv * b.xs / zv) * 0.5f * static_cast<float>(camera.width);
  s.y = (1.0f - yv * b.ys / zv) * 0.5f * static_cast<float>(camera.height);
  s.z = f / (f - n) * (1.0f - n / zv);
  return s;
}

// The inverse of projectPoint: zv = n / (1 - d (f-n)/f), then the pixel
// offsets from the centre scale with zv.
vec3 unprojectPoint(const cameraState& camera, vec3 screen) {
  const viewBasis b = viewOf(camera);
  if (!b.valid) return failedPoint;
  const float n = cameraNear, f = cameraFar;
  const float denom = 1.0f - screen.z * (f - n) / f;
  if (!(std::fabs(denom) > 1e-12f)) return failedPoint;
  const float zv = n / denom;
  const float ndcX = 2.0f * screen.x / static_cast<float>(camera.width) - 1.0f;
  const float ndcY = 1.0f - 2.0f * screen.y / static_cast<float>(camera.height);
  const float xv = ndcX * zv / b.xs, yv = ndcY * zv / b.ys;
  const vec3 p = camera.position;
  return {p.x + xv * b.x.x + yv * b.y.x + zv * b.z.x, p.y + xv * b.x.y + yv * b.y.y + zv * b.z.y,
          p.z + xv * b.x.z + yv * b.y.z + zv * b.z.z};
}

}  // namespace marv
