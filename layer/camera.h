// The camera of the drawing layer as pure functions: view and projection
// matrices of the left-handed world and the two conversions between world
// points and pixels. Both backends and the tests use them; nothing here
// touches a screen.
#pragma once

#include "layer/layer.h"

namespace marv {

// Depth range of the view. The scene's camera never sets them: the radius
// stays at 1 or more and scenes measure a few thousand pixel units, so 1 to
// 100000 holds every scene from every radius with enough depth resolution.
constexpr float cameraNear = 1.0f;      // near plane distance [world units]
constexpr float cameraFar = 100000.0f;  // far plane distance [world units]

struct cameraState {
  vec3 position{0.0f, 0.0f, -1000.0f};  // eye [world units]
  vec3 target{0.0f, 0.0f, 0.0f};        // looked-at point [world units]
  vec3 up{0.0f, 1.0f, 0.0f};            // up direction [-]
  float fov = 1.0471976f;               // vertical angle of view [rad]
  int width = 640;                      // draw target width [px]
  int height = 480;                     // draw target height [px]
};

// World to view coordinates: x right, y up, z forward (left-handed).
matrix4 viewMatrix(const cameraState& camera);

// View to clip coordinates of OpenGL, with the row order of the draw target
// top-down (clip y points down the screen) and depth -1 at the near plane.
matrix4 projectionMatrix(const cameraState& camera);

// product a*b, both acting on column vectors
matrix4 multiply(const matrix4& a, const matrix4& b);

// Pixels and depth (0 near, 1 far) of a world point; depth outside 0..1 (or
// negative for points behind the eye) means the point is not in the view.
vec3 projectPoint(const cameraState& camera, vec3 world);

// World point of pixel (x, y) at depth z (0 near, 1 far); (-1, -1, -1) when
// the view cannot be inverted (eye on the target, up along the view line, a
// zero-sized target or a zero angle of view).
vec3 unprojectPoint(const cameraState& camera, vec3 screen);

}  // namespace marv
