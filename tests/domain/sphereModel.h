// A UV sphere as an STL model, for the scan's test and benchmark.
#pragma once

#include <cmath>

#include "domain/bcDomain.h"

namespace marv {

// A UV sphere of radius r about c with outward normals, in model
// coordinates (z is mirrored into the solver's by the scan).
inline bcSurface sphereModel(double cx, double cy, double cz, double r, int rings, int segments) {
  bcSurface s;
  auto at = [&](int ring, int segment, float out[3]) {
    constexpr double pi = 3.14159265358979323846;
    const double theta = pi * ring / rings, phi = 2.0 * pi * segment / segments;
    out[0] = static_cast<float>(cx + r * std::sin(theta) * std::cos(phi));
    out[1] = static_cast<float>(cy + r * std::sin(theta) * std::sin(phi));
    out[2] = static_cast<float>(cz + r * std::cos(theta));
  };
  auto add = [&](int r0, int s0, int r1, int s1, int r2, int s2) {
    bcTriangle t;
    at(r0, s0, t.vertex[0]);
    at(r1, s1, t.vertex[1]);
    at(r2, s2, t.vertex[2]);
    double n[3], len = 0.0;
    for (int a = 0; a < 3; ++a) {
      t.centroid[a] = static_cast<float>((t.vertex[0][a] + t.vertex[1][a] + t.vertex[2][a]) / 3.0);
      n[a] = t.centroid[a] - (a == 0 ? cx : a == 1 ? cy : cz);
      len += n[a] * n[a];
    }
    for (int a = 0; a < 3; ++a) t.normal[a] = static_cast<float>(n[a] / std::sqrt(len));
    s.triangles.push_back(t);
  };
  for (int ring = 0; ring < rings; ++ring)
    for (int seg = 0; seg < segments; ++seg) {
      if (ring > 0) add(ring, seg, ring + 1, seg, ring, seg + 1);
      if (ring < rings - 1) add(ring + 1, seg, ring + 1, seg + 1, ring, seg + 1);
    }
  s.numTriangles = static_cast<int>(s.triangles.size());
  return s;
}

}  // namespace marv
