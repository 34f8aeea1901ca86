// The 3D view. The world is left-handed and in pixel-like units; physical z
// is mirrored so that the right-handed axes look right on the screen.
#include "scene/camera3d.h"

#include <algorithm>
#include <cmath>

namespace marv {

namespace {

constexpr float twoPi = 6.2831855f;
constexpr float elevationLimit = 1.570639264803546f;
constexpr float dragRadPerPixel = 0.012566371f;
constexpr float dragLimit = 0.62831855f;
constexpr float snapWindow = 0.05f;

double largest(double a, double b, double c) { return std::max(a, std::max(b, c)); }

vec3 along(vec3 a, vec3 b, float t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t}; }

// The camera from the snapped angles about the pivot, given to the layer
// with the light.
void placeCamera(sceneView& scene) {
  const float a = scene.azimuth, e = scene.elevation, r = scene.cameraDistance;
  const vec3& p = scene.cameraPivot;
  scene.cameraPosition = {p.x + r * std::sin(a) * std::cos(e), p.y + r * std::sin(e),
                          p.z - r * std::cos(a) * std::cos(e)};
  setCamera(scene.cameraPosition, scene.cameraTarget, scene.cameraUp);
  setLightPosition(scene.cameraPosition);
}

float wrapAngle(float a) {
  if (a < -twoPi) a += twoPi;
  if (a > twoPi) a -= twoPi;
  return a;
}

void storeCamera(const sceneView& scene, appConfig& cfg) {
  cfg.cameraTheta0 = scene.azimuthRaw;
  cfg.CameraTheta1 = scene.elevationRaw;
  cfg.cameraRadius = scene.cameraDistance;
  cfg.cameraPosX = scene.cameraPosition.x, cfg.cameraPosY = scene.cameraPosition.y;
  cfg.cameraPosZ = scene.cameraPosition.z;
  cfg.cameraTargetX = scene.cameraTarget.x, cfg.cameraTargetY = scene.cameraTarget.y;
  cfg.cameraTargetZ = scene.cameraTarget.z;
}

}  // namespace

vec3 worldPoint(const sceneView& scene, const appConfig& cfg, double x, double y, double z) {
  const double s = scene.sceneScale;
  const double x0 = cfg.xCoord.empty() ? 0.0 : cfg.xCoord.front();
  const double y0 = cfg.yCoord.empty() ? 0.0 : cfg.yCoord.front();
  const double zTop = cfg.zCoord.empty() ? 0.0 : cfg.zCoord.back();
  return {static_cast<float>((x - x0) * s + scene.originX), static_cast<float>((y - y0) * s + scene.originY),
          static_cast<float>(-(z - zTop) * s)};
}

void layOutWorld(sceneView& scene, const appConfig& cfg) {
  const double l = largest(cfg.lx, cfg.ly, cfg.lz);
  const double n = largest(cfg.nx, cfg.ny, cfg.nz);
  const double screen = std::max(cfg.sceneWidth, cfg.sceneHeight);
  scene.sceneScale = l > 0.0 ? screen / l * 0.8 : 1.0;
  scene.cellScale = screen / n * 0.8;
  scene.zoomStep = scene.sceneScale * cfg.lz / 10.0;
  scene.originX = static_cast<int>((cfg.sceneWidth - scene.sceneScale * cfg.lx) * 0.5);
  scene.originY = static_cast<int>((cfg.sceneHeight - scene.sceneScale * cfg.ly) * 0.5);
  auto index = [](double at, const std::vector<double>& c, double spacing) {
    return c.empty() || spacing <= 0.0 ? 0 : static_cast<int>((at - c.front()) / spacing + 0.5);
  };
  scene.planeK = index(cfg.zCrosssectionXY, cfg.zCoord, cfg.dz);
  scene.planeI = index(cfg.xCrosssectionYZ, cfg.xCoord, cfg.dx);
  scene.planeJ = index(cfg.yCrosssectionXZ, cfg.yCoord, cfg.dy);
  const double s = scene.sceneScale;
  const double spanX = cfg.xCoord.size() > 1 ? cfg.xCoord.back() - cfg.xCoord.front() : 0.0;
  const double spanY = cfg.yCoord.size() > 1 ? cfg.yCoord.back() - cfg.yCoord.front() : 0.0;
  const double spanZ = cfg.zCoord.size() > 1 ? cfg.zCoord.back() - cfg.zCoord.front() : 0.0;
  scene.boxX0 = scene.originX;
  scene.boxX1 = spanX * s + scene.originX;
  scene.boxY0 = scene.originY;
  scene.boxY1 = spanY * s + scene.originY;
  scene.boxZ0 = spanZ * s;
  scene.boxZ1 = 0.0;
  const float x0 = float(scene.boxX0), x1 = float(scene.boxX1), y0 = float(scene.boxY0), y1 = float(scene.boxY1);
  const float zs[2] = {float(scene.boxZ0), float(scene.boxZ1)};
  for (int g = 0; g < 2; ++g) {
    scene.boxCorners[4 * g + 0] = {x0, y1, zs[g]};
    scene.boxCorners[4 * g + 1] = {x1, y1, zs[g]};
    scene.boxCorners[4 * g + 2] = {x1, y0, zs[g]};
    scene.boxCorners[4 * g + 3] = {x0, y0, zs[g]};
  }
}

float snapAzimuth(float raw) {
  const float points[] = {0.0f, 1.5707964f, -1.5707964f, 3.1415927f, -3.1415927f};
  for (float p : points)
    if (std::fabs(raw - p) < snapWindow) return p;
  return raw;
}

float snapElevation(float raw) {
  if (std::fabs(raw) < snapWindow) return 0.0f;
  if (std::fabs(raw - 1.5706393f) < snapWindow) return 1.5706393f;
  if (std::fabs(raw + 1.5706393f) < snapWindow) return -1.5706393f;
  return raw;
}

void resetCamera(sceneView& scene, appConfig& cfg) {
  scene.cameraDistance = static_cast<float>((double(0.8f) * cfg.lx + double(0.8f) * cfg.ly + double(0.8f) * cfg.lz) /
                                            double(1.9f) * scene.sceneScale);
  scene.cameraPivot = {cfg.sceneWidth / 2.0f, cfg.sceneHeight / 2.0f,
                       static_cast<float>(scene.sceneScale * cfg.lz / 2)};
  if (scene.placementFlag == 1) scene.cameraDistance *= 1.2f;
  const bool restore = scene.placementFlag == 0 && cfg.cameraRadius != 0.0f && cfg.ts <= cfg.sts && !cfg.analysisMode;
  if (restore) {
    scene.azimuthRaw = scene.azimuth = cfg.cameraTheta0;
    scene.elevationRaw = scene.elevation = cfg.CameraTheta1;
    scene.cameraDistance = cfg.cameraRadius;
    scene.cameraPosition = {cfg.cameraPosX, cfg.cameraPosY, cfg.cameraPosZ};
    scene.cameraTarget = {cfg.cameraTargetX, cfg.cameraTargetY, cfg.cameraTargetZ};
  } else {
    scene.azimuthRaw = scene.elevationRaw = scene.azimuth = scene.elevation = 0.0f;
    scene.cameraTarget = scene.cameraPivot;
    const vec3& p = scene.cameraPivot;
    scene.cameraPosition = {p.x, p.y, p.z - scene.cameraDistance};
  }
  scene.cameraUp = {0.0f, 1.0f, 0.0f};
  setCamera(scene.cameraPosition, scene.cameraTarget, scene.cameraUp);
  setPointLight(scene.cameraPosition, 5.0f * scene.cameraDistance, 0.7f, 0.0006f, 0.0f);
  setPerspective(static_cast<float>(cfg.cameraPerspectiveDeg * 3.14159265358979 / 180.0));
  scene.resetCameraFlag = 0;
}

void cameraInput(sceneView& scene, appConfig& cfg) {
  int mx = 0, my = 0;
  mousePosition(&mx, &my);
  const int dx = mx - scene.lastMouseX, dy = my - scene.lastMouseY;
  scene.lastMouseX = mx, scene.lastMouseY = my;
  const int buttons = mouseButtons();
  const bool leftDrag = (buttons & mouseLeft) != 0, rightDrag = !leftDrag && (buttons & mouseRight) != 0;
  if (leftDrag) {
    const float d0 = std::clamp(dx * dragRadPerPixel, -dragLimit, dragLimit);
    const float d1 = std::clamp(dy * dragRadPerPixel, -dragLimit, dragLimit);
    scene.azimuthRaw = wrapAngle(scene.azimuthRaw - d0);
    scene.elevationRaw = std::clamp(scene.elevationRaw + d1, -elevationLimit, elevationLimit);
  }
  scene.azimuth = snapAzimuth(scene.azimuthRaw);
  scene.elevation = snapElevation(scene.elevationRaw);
  if (rightDrag) {
    scene.cameraTarget.x -= static_cast<float>(dx);
    scene.cameraTarget.y += static_cast<float>(dy);
    scene.cameraPivot = scene.cameraTarget;
  }
  const int notches = scene.plainKeys == 1 ? static_cast<int>(cfg.wheelDelta) : 0;  // the frame's input took the wheel
  if (notches != 0)
    scene.cameraDistance = std::max(1.0f, scene.cameraDistance - static_cast<float>(notches * scene.zoomStep));
  placeCamera(scene);
  storeCamera(scene, cfg);
}

void animateCamera(sceneView& scene, appConfig& cfg) {
  const int f = cfg.animationRotationFlag;
  if (f <= 0) return;
  scene.azimuthRaw = wrapAngle(static_cast<float>(f * 6.2831854820251465 * cfg.ts / 10000.0));
  scene.elevationRaw =
      std::clamp(static_cast<float>(std::sin(f * 3.769911289215088 * cfg.ts / 10000.0) * 0.7853981852531433),
                 -elevationLimit, elevationLimit);
  scene.azimuth = scene.azimuthRaw;
  scene.elevation = scene.elevationRaw;
  placeCamera(scene);
  storeCamera(scene, cfg);
}

void drawOrientationAxes(const sceneView& scene, const appConfig& cfg) {
  const double l = (cfg.lx + cfg.ly + cfg.lz) / 3.0 * 0.25;
  const float s = static_cast<float>(scene.sceneScale);
  const double x0 = cfg.xCoord.empty() ? 0.0 : cfg.xCoord.front();
  const double y0 = cfg.yCoord.empty() ? 0.0 : cfg.yCoord.front();
  const double z0 = cfg.zCoord.empty() ? 0.0 : cfg.zCoord.front();
  const vec3 c = worldPoint(scene, cfg, x0, y0, z0);
  const float len = static_cast<float>(l);
  drawSphere3d(c, s * len / 15.0f, 32, scene.originColour, scene.originColour, 1);
  const vec3 tips[3] = {worldPoint(scene, cfg, x0 + l, y0, z0), worldPoint(scene, cfg, x0, y0 + l, z0),
                        worldPoint(scene, cfg, x0, y0, z0 + l)};
  const std::uint32_t inks[3] = {scene.colours.red, scene.colours.green, scene.colours.navy};
  const char* names[3] = {"X", "Y", "Z"};
  for (int a = 0; a < 3; ++a) {
    drawCone3d(tips[a], along(c, tips[a], 0.75f), s * len / 12.0f, 8, inks[a], inks[a], 1);
    drawCapsule3d(c, along(c, tips[a], 0.875f), s * len / 60.0f, 4, inks[a], inks[a], 1);
  }
  for (int a = 0; a < 3; ++a) {
    const vec3 at = worldToScreen(tips[a]);
    if (at.z >= 0.0f && at.z <= 1.0f)
      drawText(static_cast<int>(at.x), static_cast<int>(at.y), names[a], scene.colours.black, cfg.fixedBold,
               scene.colours.white, 0);
  }
}

void drawOutline(const sceneView& scene) {
  const auto& c = scene.boxCorners;
  for (int g = 0; g < 2; ++g)
    for (int e = 0; e < 4; ++e) drawLine3d(c[4 * g + e], c[4 * g + (e + 1) % 4], scene.outlineColour);
  for (int e = 0; e < 4; ++e) drawLine3d(c[e], c[4 + e], scene.outlineColour);
}

void drawCameraTarget(const sceneView& scene, const appConfig& cfg) {
  const float l = static_cast<float>((cfg.lx + cfg.ly + cfg.lz) / 3.0 * 0.25 / 3.0 * scene.sceneScale);
  const vec3& p = scene.cameraPivot;
  const std::uint32_t sky = scene.colours.sky;
  drawCapsule3d({p.x - l, p.y, p.z}, {p.x + l, p.y, p.z}, l / 5.0f, 32, sky, sky, 1);
  drawCapsule3d({p.x, p.y - l, p.z}, {p.x, p.y + l, p.z}, l / 5.0f, 32, sky, sky, 1);
}

}  // namespace marv
