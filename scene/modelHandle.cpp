// The model's move handle. A bar stays in use while Shift and the left
// button are held, even when the pointer slides off it during the drag.
#include "scene/modelHandle.h"

#include <cmath>

namespace marv {

namespace {

constexpr char dragHint[] = "SHIFT + LEFT DRAG to move the STL model position along this axis.";

vec3 offset(vec3 p, float x, float y, float z) { return {p.x + x, p.y + y, p.z + z}; }

}  // namespace

double handleMove(double mx, double my, vec3 a, vec3 b, double spacing) {
  const double m = std::sqrt(mx * mx + my * my);
  if (m * m < 1e-7) return 0.0;
  const double along = mx * (b.x - a.x) + my * (b.y - a.y);
  return (along < 0.0 ? -m : m) * spacing * 0.125;
}

void drawStlHandle(sceneView& scene, appConfig& cfg) {
  const float s = static_cast<float>(scene.sceneScale);
  const float r = static_cast<float>((cfg.lx + cfg.ly + cfg.lz) * s / 200.0);
  const float half[3] = {static_cast<float>(0.4 * s * cfg.lx), static_cast<float>(0.4 * s * cfg.ly),
                         static_cast<float>(0.4 * s * cfg.lz)};
  const vec3 pivot = scene.cameraPivot;
  // Each bar from its low end to its high end in model coordinates; world z
  // runs against the model's z.
  const vec3 ends[3][2] = {{offset(pivot, -half[0], 0, 0), offset(pivot, half[0], 0, 0)},
                           {offset(pivot, 0, -half[1], 0), offset(pivot, 0, half[1], 0)},
                           {offset(pivot, 0, 0, half[2]), offset(pivot, 0, 0, -half[2])}};
  const vec3 nearEnd = screenToWorld({static_cast<float>(cfg.mouseX), static_cast<float>(cfg.mouseY), 0.0f});
  const vec3 farEnd = screenToWorld({static_cast<float>(cfg.mouseX), static_cast<float>(cfg.mouseY), 1.0f});
  const bool dragging = cfg.shiftDown == 1 && cfg.mouseLeft == 1;
  if (!dragging) scene.dragAxis = 0;
  if (scene.dragAxis == 0)
    for (int a = 0; a < 3 && scene.dragAxis == 0; ++a)
      if (r > segmentDistance(nearEnd, farEnd, ends[a][0], ends[a][1])) scene.dragAxis = a + 1;
  const std::uint32_t own[3] = {scene.colours.softRed, scene.colours.green, scene.colours.navy};
  for (int a = 0; a < 3; ++a) {
    const bool chosen = scene.dragAxis == a + 1;
    const std::uint32_t c = chosen ? scene.colours.magenta : own[a];
    const int fill = chosen ? 0 : 1;
    drawCapsule3d(ends[a][0], ends[a][1], r, 6, c, c, fill);
    for (int e = 0; e < 2; ++e) {
      const vec3 end = ends[a][e], other = ends[a][1 - e];
      const float dx = end.x - other.x, dy = end.y - other.y, dz = end.z - other.z;
      const float length = std::sqrt(dx * dx + dy * dy + dz * dz);
      if (length <= 0.0f) continue;
      const float k = 6.0f * r / length;
      drawCone3d(offset(end, dx * k, dy * k, dz * k), end, 2.0f * r, 12, c, c, fill);
    }
  }
  if (scene.dragAxis != 0)
    drawText(cfg.marginLeft, cfg.marginTop, dragHint, scene.colours.white, cfg.fontBody, scene.colours.black, 0);
  cfg.stlDeltaX = cfg.stlDeltaY = cfg.stlDeltaZ = 0.0;
  if (!dragging || scene.dragAxis == 0) return;
  const int a = scene.dragAxis - 1;
  const vec3 sa = worldToScreen(ends[a][0]), sb = worldToScreen(ends[a][1]);
  if (!(sa.z >= 0.0f && sa.z <= 1.0f && sb.z >= 0.0f && sb.z <= 1.0f)) return;
  const double spacing[3] = {cfg.dx, cfg.dy, cfg.dz};
  const double move = handleMove(cfg.mouseX - cfg.mouseXPrev, cfg.mouseY - cfg.mouseYPrev, sa, sb, spacing[a]);
  (a == 0 ? cfg.stlDeltaX : (a == 1 ? cfg.stlDeltaY : cfg.stlDeltaZ)) = move;
}

}  // namespace marv
