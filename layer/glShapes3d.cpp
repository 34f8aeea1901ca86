// 3D part of the OpenGL backend: camera, perspective and point light, the
// conversions between world and screen, and the 3D shapes (lines,
// triangles, boxes, spheres, capsules, cones, polygon lists), all appended
// to the batch. Filled shapes carry normals for the light; outlines are
// unlit lines.
//
// The light: ambient share 0.3 of the diffuse colour everywhere, the rest
// scaled by cos(angle to the lamp) and the attenuation 1/(a0 + a1 d + a2 d^2)
// (at most 1, and 0 beyond the range), plus a white-ish highlight from the
// specular colour. See glBatch.cpp for the shader.
#include <algorithm>
#include <cmath>

#include "layer/glCore.h"

namespace marv {

using namespace gl;

namespace {

constexpr float pi = 3.14159265358979f;

vec3 sub(vec3 a, vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
vec3 add(vec3 a, vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
vec3 scale(vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
float dot(vec3 a, vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
vec3 cross(vec3 a, vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
vec3 unit(vec3 a) {
  const float l = std::sqrt(dot(a, a));
  return l > 1e-20f ? scale(a, 1.0f / l) : vec3{0.0f, 0.0f, 0.0f};
}

// Two unit vectors perpendicular to the unit axis a and to each other.
void perpendiculars(vec3 a, vec3& u, vec3& w) {
  const vec3 helper = std::fabs(a.x) < 0.9f ? vec3{1.0f, 0.0f, 0.0f} : vec3{0.0f, 1.0f, 0.0f};
  u = unit(cross(a, helper));
  w = cross(a, u);
}

cameraState cameraForTarget() {
  cameraState cam = core().camera;
  const image* target = imageOf(core().target);
  cam.width = target ? target->width : core().width;
  cam.height = target ? target->height : core().height;
  return cam;
}

void put(vertex& v, vec3 p, vec3 n, std::uint32_t diffuse, std::uint32_t specular) {
  v = vertex{};
  v.x = p.x;
  v.y = p.y;
  v.z = p.z;
  v.nx = n.x;
  v.ny = n.y;
  v.nz = n.z;
  setColour(v, diffuse);
  v.sr = static_cast<std::uint8_t>(specular >> 16);
  v.sg = static_cast<std::uint8_t>(specular >> 8);
  v.sb = static_cast<std::uint8_t>(specular);
  v.sa = 255;
}

void line3d(vec3 a, vec3 b, std::uint32_t c) {
  vertex* v = reserve(key3d(primitive::lines, false), 2);
  if (v == nullptr) return;
  put(v[0], a, {}, c, 0);
  put(v[1], b, {}, c, 0);
}

// One triangle of a shape: filled and lit with the given vertex normals, or
// its three edges as lines.
struct meshPen {
  std::uint32_t diffuse = 0;   // packed colour
  std::uint32_t specular = 0;  // packed colour
  bool fill = true;            // triangles, or their edges as lines
  void triangle(vec3 a, vec3 b, vec3 c, vec3 na, vec3 nb, vec3 nc) const {
    if (!fill) {
      line3d(a, b, diffuse);
      line3d(b, c, diffuse);
      line3d(c, a, diffuse);
      return;
    }
    vertex* v = reserve(key3d(primitive::triangles, true), 3);
    if (v == nullptr) return;
    put(v[0], a, na, diffuse, specular);
    put(v[1], b, nb, diffuse, specular);
    put(v[2], c, nc, diffuse, specular);
  }
  void quad(vec3 a, vec3 b, vec3 c, vec3 d, vec3 na, vec3 nb, vec3 nc, vec3 nd) const {
    triangle(a, b, c, na, nb, nc);
    triangle(a, c, d, na, nc, nd);
  }
};

int clampDivisions(int divisions) { return std::clamp(divisions, 3, 256); }

// Part of a sphere about centre c with axis a (unit) and side vectors u, w:
// polar angles from theta0 to theta1 (0 at +a), all the way round.
void sphereBand(const meshPen& pen, vec3 c, float r, vec3 a, vec3 u, vec3 w, float theta0, float theta1, int slices,
                int stacks) {
  auto at = [&](float theta, float phi) {
    const float st = std::sin(theta);
    return add(add(scale(a, std::cos(theta)), scale(u, st * std::cos(phi))), scale(w, st * std::sin(phi)));
  };
  for (int i = 0; i < stacks; ++i) {
    const float t0 = theta0 + (theta1 - theta0) * float(i) / float(stacks);
    const float t1 = theta0 + (theta1 - theta0) * float(i + 1) / float(stacks);
    for (int j = 0; j < slices; ++j) {
      const float p0 = 2.0f * pi * float(j) / float(slices), p1 = 2.0f * pi * float(j + 1) / float(slices);
      const vec3 n00 = at(t0, p0), n01 = at(t0, p1), n10 = at(t1, p0), n11 = at(t1, p1);
      pen.quad(add(c, scale(n00, r)), add(c, scale(n10, r)), add(c, scale(n11, r)), add(c, scale(n01, r)), n00, n10,
               n11, n01);
    }
  }
}

}  // namespace

// ---------------------------------------------------------------- set-up

int setLighting(int flag) {
  core().lighting = flag != 0;
  stateChanged();
  return 0;
}

int setCamera(vec3 position, vec3 target, vec3 up) {
  stateChanged();  // primitives recorded from now on take the new camera
  cameraState& cam = core().camera;
  cam.position = position;
  cam.target = target;
  cam.up = up;
  return 0;
}

int setPerspective(float fov) {
  if (!(fov > 0.0f) || !(fov < pi)) return -1;
  stateChanged();
  core().camera.fov = fov;
  return 0;
}

int setPointLight(vec3 position, float range, float a0, float a1, float a2) {
  stateChanged();
  lightState& l = core().light;
  l.position = position;
  l.range = range > 0.0f ? range : 0.0f;
  l.a0 = a0;
  l.a1 = a1;
  l.a2 = a2;
  return 0;
}

int setLightPosition(vec3 position) {
  stateChanged();
  core().light.position = position;
  return 0;
}

vec3 worldToScreen(vec3 position) { return projectPoint(cameraForTarget(), position); }

vec3 screenToWorld(vec3 position) { return unprojectPoint(cameraForTarget(), position); }

// ---------------------------------------------------------------- shapes

int drawLine3d(vec3 p1, vec3 p2, std::uint32_t c) {
  line3d(p1, p2, c);
  return 0;
}

int drawTriangle3d(vec3 p1, vec3 p2, vec3 p3, std::uint32_t c, int fill) {
  const vec3 n = unit(cross(sub(p2, p1), sub(p3, p1)));
  meshPen pen{c, 0, fill != 0};
  pen.triangle(p1, p2, p3, n, n, n);
  return 0;
}

int drawCube3d(vec3 p1, vec3 p2, std::uint32_t diffuse, std::uint32_t specular, int fill) {
  const meshPen pen{diffuse, specular, fill != 0};
  const float x[2] = {std::min(p1.x, p2.x), std::max(p1.x, p2.x)};
  const float y[2] = {std::min(p1.y, p2.y), std::max(p1.y, p2.y)};
  const float z[2] = {std::min(p1.z, p2.z), std::max(p1.z, p2.z)};
  auto corner = [&](int i, int j, int k) { return vec3{x[i], y[j], z[k]}; };
  if (!fill) {
    // Twelve edges, not the diagonals of the faces.
    for (int a = 0; a < 2; ++a)
      for (int b = 0; b < 2; ++b) {
        line3d(corner(0, a, b), corner(1, a, b), diffuse);
        line3d(corner(a, 0, b), corner(a, 1, b), diffuse);
        line3d(corner(a, b, 0), corner(a, b, 1), diffuse);
      }
    return 0;
  }
  for (int s = 0; s < 2; ++s) {
    const float sign = s == 0 ? -1.0f : 1.0f;
    const vec3 nx{sign, 0, 0}, ny{0, sign, 0}, nz{0, 0, sign};
    pen.quad(corner(s, 0, 0), corner(s, 1, 0), corner(s, 1, 1), corner(s, 0, 1), nx, nx, nx, nx);
    pen.quad(corner(0, s, 0), corner(1, s, 0), corner(1, s, 1), corner(0, s, 1), ny, ny, ny, ny);
    pen.quad(corner(0, 0, s), corner(1, 0, s), corner(1, 1, s), corner(0, 1, s), nz, nz, nz, nz);
  }
  return 0;
}

int drawSphere3d(vec3 centre, float radius, int divisions, std::uint32_t diffuse, std::uint32_t specular, int fill) {
  if (!(radius > 0.0f)) return 0;
  const int n = clampDivisions(divisions);
  const meshPen pen{diffuse, specular, fill != 0};
  sphereBand(pen, centre, radius, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, 0.0f, pi, n, std::max(2, n / 2));
  return 0;
}

int drawCapsule3d(vec3 p1, vec3 p2, float radius, int divisions, std::uint32_t diffuse, std::uint32_t specular,
                  int fill) {
  if (!(radius > 0.0f)) return 0;
  const vec3 axis = sub(p2, p1);
  const float length = std::sqrt(dot(axis, axis));
  if (!(length > 1e-6f)) return drawSphere3d(p1, radius, divisions, diffuse, specular, fill);
  const int n = clampDivisions(divisions);
  const meshPen pen{diffuse, specular, fill != 0};
  const vec3 a = scale(axis, 1.0f / length);
  vec3 u, w;
  perpendiculars(a, u, w);
  const int caps = std::max(1, n / 4);
  sphereBand(pen, p2, radius, a, u, w, 0.0f, 0.5f * pi, n, caps);
  sphereBand(pen, p1, radius, a, u, w, 0.5f * pi, pi, n, caps);
  for (int j = 0; j < n; ++j) {
    const float f0 = 2.0f * pi * float(j) / float(n), f1 = 2.0f * pi * float(j + 1) / float(n);
    const vec3 n0 = add(scale(u, std::cos(f0)), scale(w, std::sin(f0)));
    const vec3 n1 = add(scale(u, std::cos(f1)), scale(w, std::sin(f1)));
    pen.quad(add(p2, scale(n0, radius)), add(p1, scale(n0, radius)), add(p1, scale(n1, radius)),
             add(p2, scale(n1, radius)), n0, n0, n1, n1);
  }
  return 0;
}

int drawCone3d(vec3 tip, vec3 base, float radius, int divisions, std::uint32_t diffuse, std::uint32_t specular,
               int fill) {
  const vec3 axis = sub(tip, base);
  const float h = std::sqrt(dot(axis, axis));
  if (!(h > 1e-6f) || !(radius > 0.0f)) return 0;
  const int n = clampDivisions(divisions);
  const meshPen pen{diffuse, specular, fill != 0};
  const vec3 a = scale(axis, 1.0f / h);
  vec3 u, w;
  perpendiculars(a, u, w);
  const vec3 down = scale(a, -1.0f);
  for (int j = 0; j < n; ++j) {
    const float f0 = 2.0f * pi * float(j) / float(n), f1 = 2.0f * pi * float(j + 1) / float(n);
    const float fm = 0.5f * (f0 + f1);
    const vec3 r0 = add(scale(u, std::cos(f0)), scale(w, std::sin(f0)));
    const vec3 r1 = add(scale(u, std::cos(f1)), scale(w, std::sin(f1)));
    const vec3 rm = add(scale(u, std::cos(fm)), scale(w, std::sin(fm)));
    // The side's normal leans toward the tip by the cone's half-angle.
    auto sideNormal = [&](vec3 radial) { return unit(add(scale(radial, h), scale(a, radius))); };
    const vec3 b0 = add(base, scale(r0, radius)), b1 = add(base, scale(r1, radius));
    pen.triangle(tip, b0, b1, sideNormal(rm), sideNormal(r0), sideNormal(r1));
    pen.triangle(base, b1, b0, down, down, down);
  }
  return 0;
}

int drawPolygons3d(const vertex3d* vertices, int triangleCount, int handle, int transparent) {
  if (vertices == nullptr || triangleCount <= 0) return 0;
  return drawIndexedPolygons3d(vertices, triangleCount * 3, nullptr, triangleCount, handle, transparent);
}

// With indices null the vertices are taken three by three. A triangle with an
// index outside the vertex list is skipped.
int drawIndexedPolygons3d(const vertex3d* vertices, int vertexCount, const std::uint16_t* indices, int triangleCount,
                          int handle, int transparent) {
  if (vertices == nullptr || triangleCount <= 0 || vertexCount <= 0) return 0;
  batchKey k = key3d(primitive::triangles, true);
  if (handle != noTexture) {
    const image* img = imageOf(handle);
    if (img == nullptr || handle == backBuffer) return -1;
    k.texture = img->texture;
    k.textureAlpha = transparent != 0;
  }
  auto corner = [&](int t, int c) { return indices ? static_cast<int>(indices[3 * t + c]) : 3 * t + c; };
  auto valid = [&](int t) {
    return corner(t, 0) < vertexCount && corner(t, 1) < vertexCount && corner(t, 2) < vertexCount;
  };
  // The triangles go in blocks, one reservation each: a surface is drawn
  // every frame and holds thousands of them.
  constexpr int block = 16384;  // triangles looked at per reservation
  for (int first = 0; first < triangleCount; first += block) {
    const int last = std::min(triangleCount, first + block);
    int kept = 0;
    for (int t = first; t < last; ++t) kept += valid(t);
    if (kept == 0) continue;
    vertex* v = reserve(k, 3 * kept);
    if (v == nullptr) return 0;
    for (int t = first; t < last; ++t) {
      if (!valid(t)) continue;
      for (int c = 0; c < 3; ++c, ++v) {
        const vertex3d& s = vertices[corner(t, c)];
        vertex& d = *v;
        d.x = s.position.x;
        d.y = s.position.y;
        d.z = s.position.z;
        d.nx = s.normal.x;
        d.ny = s.normal.y;
        d.nz = s.normal.z;
        d.r = s.diffuse.r;
        d.g = s.diffuse.g;
        d.b = s.diffuse.b;
        d.a = s.diffuse.a;
        d.sr = s.specular.r;
        d.sg = s.specular.g;
        d.sb = s.specular.b;
        d.sa = s.specular.a;
        d.u = s.u;
        d.v = s.v;
      }
    }
  }
  return 0;
}

}  // namespace marv
