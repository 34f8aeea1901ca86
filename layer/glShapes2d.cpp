// 2D shapes of the OpenGL backend: boxes, lines, circles, triangles and
// rounded boxes in pixels of the draw target, each appended to the batch as
// triangles. Coordinates outside the target are clipped by the GPU, never
// refused.
//
// Pixel convention: integer coordinates name pixel corners, so a filled box
// from x1 to x2 covers the pixels x1..x2-1; an integer line or circle runs
// through pixel centres (x + 0.5). The float variants are smoothed: their
// edges fade out over one pixel (vertex alpha), so that the covered area is
// the same and a box on whole pixels keeps hard edges.
#include <algorithm>
#include <array>
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

// A segment as a quad of the given width centred on it. Smoothed, the solid
// core is one pixel narrower and a one-pixel fringe on each side fades to
// transparent, so that the covered area stays the same.
bool segmentDrawn(point a, point b, float width) {
  const float dx = b.x - a.x, dy = b.y - a.y;
  return std::sqrt(dx * dx + dy * dy) > 1e-6f && width > 0.0f;
}

// The quads of a segment that segmentDrawn accepts: 4 vertices, 12 smoothed.
void writeSegment(vertex* v, point a, point b, float width, std::uint32_t c, bool smooth) {
  const float dx = b.x - a.x, dy = b.y - a.y;
  const float length = std::sqrt(dx * dx + dy * dy);
  const float ux = -dy / length, uy = dx / length;  // unit normal
  const float core = smooth ? std::max(0.5f * width - 0.5f, 0.0f) : 0.5f * width;
  auto band = [&](vertex* q, float from, float to, std::uint8_t alphaFrom, std::uint8_t alphaTo) {
    put(q[0], a.x + ux * from, a.y + uy * from, c);
    put(q[1], b.x + ux * from, b.y + uy * from, c);
    put(q[2], b.x + ux * to, b.y + uy * to, c);
    put(q[3], a.x + ux * to, a.y + uy * to, c);
    q[0].a = q[1].a = alphaFrom;
    q[2].a = q[3].a = alphaTo;
  };
  band(v, core, -core, 255, 255);
  if (smooth) {
    band(v + 4, core, core + 1.0f, 255, 0);
    band(v + 8, -core, -core - 1.0f, 255, 0);
  }
}

}  // namespace

namespace gl {
void writeLineRecord(vertex* v, const lineRecord& r) {
  writeSegment(v, {r.x1, r.y1}, {r.x2, r.y2}, r.width, r.colour, true);
}
}  // namespace gl

namespace {

void thickSegment(point a, point b, float width, std::uint32_t c, bool smooth = false) {
  if (!segmentDrawn(a, b, width)) return;
  vertex* v = reserve(key2d(primitive::quads), smooth ? 12 : 4);
  if (v != nullptr) writeSegment(v, a, b, width, c, smooth);
}

// The outline of a convex polygon (either winding) moved outward by d along
// the mitred edge normals; d < 0 moves it inward. Repeated points are dropped
// first, so that corners of radius 0 do no harm.
std::vector<point> offsetOutline(const std::vector<point>& raw, float d) {
  std::vector<point> pts;
  for (const point& p : raw)
    if (pts.empty() || std::fabs(p.x - pts.back().x) + std::fabs(p.y - pts.back().y) > 1e-4f) pts.push_back(p);
  while (pts.size() > 1 && std::fabs(pts.front().x - pts.back().x) + std::fabs(pts.front().y - pts.back().y) <= 1e-4f)
    pts.pop_back();
  const std::size_t n = pts.size();
  if (n < 3) return pts;
  float area = 0.0f;
  for (std::size_t i = 0; i < n; ++i) area += pts[i].x * pts[(i + 1) % n].y - pts[(i + 1) % n].x * pts[i].y;
  const float side = area >= 0.0f ? 1.0f : -1.0f;
  auto normal = [&](point from, point to) {
    const float ex = to.x - from.x, ey = to.y - from.y, l = std::sqrt(ex * ex + ey * ey);
    return point{side * ey / l, -side * ex / l};
  };
  std::vector<point> out(n);
  for (std::size_t i = 0; i < n; ++i) {
    const point n1 = normal(pts[(i + n - 1) % n], pts[i]), n2 = normal(pts[i], pts[(i + 1) % n]);
    point m{n1.x + n2.x, n1.y + n2.y};
    const float ml = std::sqrt(m.x * m.x + m.y * m.y);
    m = ml > 1e-6f ? point{m.x / ml, m.y / ml} : n1;
    const float reach = d / std::max(m.x * n1.x + m.y * n1.y, 0.25f);  // mitre, limited to 4x
    out[i] = {pts[i].x + m.x * reach, pts[i].y + m.y * reach};
  }
  return out;
}

// Quads between two closed outlines of the same length, with an alpha on each.
void ring(const std::vector<point>& a, std::uint8_t alphaA, const std::vector<point>& b, std::uint8_t alphaB,
          std::uint32_t c) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    vertex* v = reserve(key2d(primitive::quads), 4);
    if (v == nullptr) return;
    const std::size_t j = (i + 1) % n;
    put(v[0], a[i].x, a[i].y, c);
    put(v[1], a[j].x, a[j].y, c);
    put(v[2], b[j].x, b[j].y, c);
    put(v[3], b[i].x, b[i].y, c);
    v[0].a = v[1].a = alphaA;
    v[2].a = v[3].a = alphaB;
  }
}

// A closed convex outline: filled as a fan, or stroked as a band of the given
// width centred on the outline; smoothed with one-pixel fringes that fade out.
void polygon(const std::vector<point>& pts, std::uint32_t c, bool fill, float width, bool smooth) {
  if (pts.size() < 3) return;
  if (fill) {
    const std::vector<point> core = offsetOutline(pts, smooth ? -0.5f : 0.0f);
    if (core.size() < 3) return;
    for (std::size_t i = 1; i + 1 < core.size(); ++i) triangle(core[0], core[i], core[i + 1], c);
    if (smooth) ring(core, 255, offsetOutline(pts, 0.5f), 0, c);
    return;
  }
  const float half = 0.5f * width;
  const float core = smooth ? std::max(half - 0.5f, 0.0f) : half;
  const std::vector<point> outer = offsetOutline(pts, core), inner = offsetOutline(pts, -core);
  ring(outer, 255, inner, 255, c);
  if (smooth) {
    ring(outer, 255, offsetOutline(pts, core + 1.0f), 0, c);
    ring(inner, 255, offsetOutline(pts, -core - 1.0f), 0, c);
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

void circle(float x, float y, float radius, int segments, std::uint32_t c, bool fill, float thickness, bool smooth) {
  if (!(radius > 0.0f)) return;
  const int n = segmentsFor(radius, segments);
  std::vector<point> pts;
  pts.reserve(n + 1);
  ellipsePoints(pts, x, y, radius, radius, 0.0f, 2.0f * pi, n);
  pts.pop_back();  // the last point repeats the first
  polygon(pts, c, fill, std::max(thickness, 1.0f), smooth);
}

// A box's whole-pixel corner as the rasteriser takes it. Corners far beyond
// any target (up to the ends of int's range) lose their last digits as
// floats and overflow the rasteriser's fixed point; held within a margin
// larger than the largest target, the box covers the same target pixels.
float boxEdge(int v) {
  constexpr int limit = 1 << 15;
  return static_cast<float>(std::clamp(v, -limit, limit));
}

}  // namespace

int drawBox(int x1, int y1, int x2, int y2, std::uint32_t c, int fill) {
  if (x2 < x1) std::swap(x1, x2);
  if (y2 < y1) std::swap(y1, y2);
  if (x1 == x2 || y1 == y2) return 0;
  const float l = boxEdge(x1), t = boxEdge(y1), r = boxEdge(x2), b = boxEdge(y2);
  if (fill) {
    recordBox(l, t, r, b, c);  // the common primitive of a frame, kept compact until rasterised
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

int drawBoxRow(const int* x1, const int* x2, int y1, int y2, const std::uint32_t* colours, int n) {
  if (y2 < y1) std::swap(y1, y2);
  if (y1 == y2 || n <= 0) return 0;
  // Without blending a run of one colour over pixels that follow on covers
  // exactly what its boxes cover one by one: it is recorded as one box. With
  // blending the overlaps would be blended twice, so every box stays.
  const bool merge = core().blendMode != 1;
  const float t = boxEdge(y1), b = boxEdge(y2);
  int i = 0;
  while (i < n) {
    int l = x1[i], r = x2[i];
    const std::uint32_t c = colours[i];
    ++i;
    if (r < l) std::swap(l, r);
    if (l == r) continue;
    while (merge && i < n && colours[i] == c && x1[i] >= l && x1[i] <= r && x2[i] >= r) r = x2[i++];
    recordBox(boxEdge(l), t, boxEdge(r), b, c);
  }
  return 0;
}

int drawLater(void (*draw)(const void*), const void* context, int size) {
  return recordLaterDrawing(draw, context, size);
}

int finishLaterDrawings() {
  makeLaterDrawings();
  return 0;
}

int drawBoxF(float x1, float y1, float x2, float y2, std::uint32_t c, int fill, float thickness) {
  if (x2 < x1) std::swap(x1, x2);
  if (y2 < y1) std::swap(y1, y2);
  if (!(x2 > x1) || !(y2 > y1)) return 0;
  const std::vector<point> corners{{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}};
  polygon(corners, c, fill != 0, std::max(thickness, 1.0f), true);
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
  return drawLinesF(std::array<float, 4>{x1, y1, x2, y2}.data(), 1, c, thickness);
}

int drawLinesF(const float* xy, int n, std::uint32_t c, float thickness) {
  if (xy == nullptr) return -1;
  // Smoothed segments are recorded as line records, 24 bytes each, and only
  // become their twelve vertices when the frame is rasterised.
  const float w = std::max(thickness, 1.0f);
  const batchKey k = key2d(primitive::quads);
  constexpr int chunk = 8192;  // segments of one reservation
  for (int first = 0; first < n; first += chunk) {
    const int last = std::min(n, first + chunk);
    int drawn = 0;
    for (int m = first; m < last; ++m)
      drawn += segmentDrawn({xy[4 * m], xy[4 * m + 1]}, {xy[4 * m + 2], xy[4 * m + 3]}, w);
    if (drawn == 0) continue;
    lineRecord* r = reserveLines(k, drawn);
    if (r == nullptr) return 0;
    for (int m = first; m < last; ++m) {
      const float* e = xy + 4 * m;
      if (segmentDrawn({e[0], e[1]}, {e[2], e[3]}, w)) *r++ = lineRecord{e[0], e[1], e[2], e[3], w, c};
    }
  }
  return 0;
}

int drawCircle(int x, int y, int radius, std::uint32_t c, int fill, int thickness) {
  circle(x + 0.5f, y + 0.5f, static_cast<float>(radius), 0, c, fill != 0, static_cast<float>(thickness), false);
  return 0;
}

int drawCircleF(float x, float y, float radius, int segments, std::uint32_t c, int fill, float thickness) {
  circle(x, y, radius, segments, c, fill != 0, thickness, true);
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
  polygon(pts, c, fill != 0, std::max(thickness, 1.0f), true);
  return 0;
}

}  // namespace marv
