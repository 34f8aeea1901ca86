// 2D shapes of the OpenGL backend: boxes, lines, circles, triangles and
// rounded boxes in pixels of the draw target, each appended to the batch as
// triangles. Coordinates outside the target are clipped by the GPU, never
// refused.
//
// Pixel convention: integer coordinates name pixel corners, so a filled box
// from x1 to x2 covers the pixels x1..x2-1; an integer line or circle runs
// through pixel centres (x + 0.5).
#include <algorithm>
#include <cmath>

#include "layer/glCore.h"

namespace marv {

using namespace gl;

namespace {

constexpr float pi = 3.14159265358979f;
constexpr int maxSegments = 1024;  // most edges of a circle or a rounded corner [-]

struct point {
  float x = 0.0f;  // [px]
  float y = 0.0f;  // [px]
};

void put(vertex& v, float x, float y, std::uint32_t c) {
  v = vertex{};
  v.x = x;
  v.y = y;
  setColour(v, c);
}

void quad(float x1, float y1, float x2, float y2, std::uint32_t c) {
  vertex* v = reserve(key2d(primitive::quads), 4);
  if (v == nullptr) return;
  put(v[0], x1, y1, c);
  put(v[1], x2, y1, c);
  put(v[2], x2, y2, c);
  put(v[3], x1, y2, c);
}

void triangle(point a, point b, point p, std::uint32_t c) {
  vertex* v = reserve(key2d(), 3);
  if (v == nullptr) return;
  put(v[0], a.x, a.y, c);
  put(v[1], b.x, b.y, c);
  put(v[2], p.x, p.y, c);
}

// A segment as a quad of the given width centred on it.
void thickSegment(point a, point b, float width, std::uint32_t c) {
  const float dx = b.x - a.x, dy = b.y - a.y;
  const float length = std::sqrt(dx * dx + dy * dy);
  if (!(length > 1e-6f) || !(width > 0.0f)) return;
  const float nx = -dy / length * 0.5f * width, ny = dx / length * 0.5f * width;
  vertex* v = reserve(key2d(primitive::quads), 4);
  if (v == nullptr) return;
  put(v[0], a.x + nx, a.y + ny, c);
  put(v[1], b.x + nx, b.y + ny, c);
  put(v[2], b.x - nx, b.y - ny, c);
  put(v[3], a.x - nx, a.y - ny, c);
}

// A closed convex outline: filled as a fan from its centre, or stroked as a
// band of the given width centred on the outline.
void polygon(const std::vector<point>& pts, point centre, std::uint32_t c, bool fill, float width) {
  const std::size_t n = pts.size();
  if (n < 3) return;
  for (std::size_t i = 0; i < n; ++i) {
    const point a = pts[i], b = pts[(i + 1) % n];
    if (fill) {
      triangle(centre, a, b, c);
      continue;
    }
    // Each edge of the band is a quad between the inner and outer outline.
    auto offset = [&](point p, float d) {
      const float ox = p.x - centre.x, oy = p.y - centre.y;
      const float r = std::sqrt(ox * ox + oy * oy);
      return r > 1e-6f ? point{p.x + ox / r * d, p.y + oy / r * d} : p;
    };
    const point ao = offset(a, 0.5f * width), bo = offset(b, 0.5f * width);
    const point ai = offset(a, -0.5f * width), bi = offset(b, -0.5f * width);
    triangle(ao, bo, bi, c);
    triangle(ao, bi, ai, c);
  }
}

int segmentsFor(float radius, int asked) {
  if (asked >= 3) return std::min(asked, maxSegments);
  const int n = static_cast<int>(std::fabs(radius) * 0.75f) + 12;
  return std::clamp(n, 12, 256);
}

void ellipsePoints(std::vector<point>& pts, float cx, float cy, float rx, float ry, float a0, float a1, int n) {
  for (int i = 0; i <= n; ++i) {
    const float a = a0 + (a1 - a0) * static_cast<float>(i) / static_cast<float>(n);
    pts.push_back({cx + rx * std::cos(a), cy + ry * std::sin(a)});
  }
}

}  // namespace

std::uint32_t colour(int r, int g, int b) {
  return 0xFF000000u | (static_cast<std::uint32_t>(r & 255) << 16) | (static_cast<std::uint32_t>(g & 255) << 8) |
         static_cast<std::uint32_t>(b & 255);
}

colourRgba makeColourRgba(int r, int g, int b, int a) {
  return {static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b),
          static_cast<std::uint8_t>(a)};
}

int drawBox(int x1, int y1, int x2, int y2, std::uint32_t c, int fill) {
  if (x2 < x1) std::swap(x1, x2);
  if (y2 < y1) std::swap(y1, y2);
  if (x1 == x2 || y1 == y2) return 0;
  const float l = float(x1), t = float(y1), r = float(x2), b = float(y2);
  if (fill) {
    quad(l, t, r, b, c);
    return 0;
  }
  // One-pixel frame on the outermost pixels of the filled box.
  quad(l, t, r, t + 1.0f, c);
  if (b - t > 1.0f) quad(l, b - 1.0f, r, b, c);
  if (b - t > 2.0f) {
    quad(l, t + 1.0f, l + 1.0f, b - 1.0f, c);
    if (r - l > 1.0f) quad(r - 1.0f, t + 1.0f, r, b - 1.0f, c);
  }
  return 0;
}

int drawBoxF(float x1, float y1, float x2, float y2, std::uint32_t c, int fill, float thickness) {
  if (x2 < x1) std::swap(x1, x2);
  if (y2 < y1) std::swap(y1, y2);
  if (fill) {
    quad(x1, y1, x2, y2, c);
    return 0;
  }
  // A frame of the given width centred on the edges of the box.
  const float h = 0.5f * std::max(thickness, 1.0f);
  quad(x1 - h, y1 - h, x2 + h, y1 + h, c);
  quad(x1 - h, y2 - h, x2 + h, y2 + h, c);
  quad(x1 - h, y1 + h, x1 + h, y2 - h, c);
  quad(x2 - h, y1 + h, x2 + h, y2 - h, c);
  return 0;
}

int drawLine(int x1, int y1, int x2, int y2, std::uint32_t c, int thickness) {
  const float w = static_cast<float>(std::max(thickness, 1));
  if (x1 == x2 || y1 == y2) {
    // Axis-aligned lines cover whole pixels: x1..x2-1 (or y1..y2-1) across
    // the thickness, as boxes do.
    const float half = std::floor(0.5f * w);
    if (y1 == y2)
      quad(float(std::min(x1, x2)), float(y1) - half, float(std::max(x1, x2)), float(y1) - half + w, c);
    else
      quad(float(x1) - half, float(std::min(y1, y2)), float(x1) - half + w, float(std::max(y1, y2)), c);
    return 0;
  }
  thickSegment({x1 + 0.5f, y1 + 0.5f}, {x2 + 0.5f, y2 + 0.5f}, w, c);
  return 0;
}

int drawLineF(float x1, float y1, float x2, float y2, std::uint32_t c, float thickness) {
  thickSegment({x1, y1}, {x2, y2}, std::max(thickness, 1.0f), c);
  return 0;
}

int drawCircle(int x, int y, int radius, std::uint32_t c, int fill, int thickness) {
  return drawCircleF(x + 0.5f, y + 0.5f, static_cast<float>(radius), 0, c, fill, static_cast<float>(thickness));
}

int drawCircleF(float x, float y, float radius, int segments, std::uint32_t c, int fill, float thickness) {
  if (!(radius > 0.0f)) return 0;
  const int n = segmentsFor(radius, segments);
  std::vector<point> pts;
  pts.reserve(n + 1);
  ellipsePoints(pts, x, y, radius, radius, 0.0f, 2.0f * pi, n);
  pts.pop_back();  // the last point repeats the first
  polygon(pts, {x, y}, c, fill != 0, std::max(thickness, 1.0f));
  return 0;
}

int drawTriangle(int x1, int y1, int x2, int y2, int x3, int y3, std::uint32_t c, int fill) {
  const point a{float(x1), float(y1)}, b{float(x2), float(y2)}, p{float(x3), float(y3)};
  if (fill) {
    triangle(a, b, p, c);
    return 0;
  }
  const point o{0.5f, 0.5f};
  thickSegment({a.x + o.x, a.y + o.y}, {b.x + o.x, b.y + o.y}, 1.0f, c);
  thickSegment({b.x + o.x, b.y + o.y}, {p.x + o.x, p.y + o.y}, 1.0f, c);
  thickSegment({p.x + o.x, p.y + o.y}, {a.x + o.x, a.y + o.y}, 1.0f, c);
  return 0;
}

int drawRoundedBoxF(float x1, float y1, float x2, float y2, float radiusX, float radiusY, int segments, std::uint32_t c,
                    int fill, float thickness) {
  if (x2 < x1) std::swap(x1, x2);
  if (y2 < y1) std::swap(y1, y2);
  const float rx = std::clamp(radiusX, 0.0f, 0.5f * (x2 - x1));
  const float ry = std::clamp(radiusY, 0.0f, 0.5f * (y2 - y1));
  const int n = std::clamp(segments, 1, maxSegments / 4);
  std::vector<point> pts;
  pts.reserve(4 * (n + 1));
  // Corners clockwise on the screen from the top right, y running down.
  ellipsePoints(pts, x2 - rx, y1 + ry, rx, ry, -0.5f * pi, 0.0f, n);
  ellipsePoints(pts, x2 - rx, y2 - ry, rx, ry, 0.0f, 0.5f * pi, n);
  ellipsePoints(pts, x1 + rx, y2 - ry, rx, ry, 0.5f * pi, pi, n);
  ellipsePoints(pts, x1 + rx, y1 + ry, rx, ry, pi, 1.5f * pi, n);
  if (fill) {
    polygon(pts, {0.5f * (x1 + x2), 0.5f * (y1 + y2)}, c, true, 0.0f);
    return 0;
  }
  const float w = std::max(thickness, 1.0f);
  for (std::size_t i = 0; i < pts.size(); ++i) thickSegment(pts[i], pts[(i + 1) % pts.size()], w, c);
  return 0;
}

}  // namespace marv
