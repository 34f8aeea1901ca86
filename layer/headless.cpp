// The headless backend of the drawing layer: no window, no screen.
// processMessages returns 0, and no key or button is down unless a test hands
// in an input script (layer/inputScript.h), which it plays frame by frame
// into the shared input state as a window's events would. Images and pixel
// images get handles and sizes, so that the logic above behaves as
// it does with a window; fonts and text widths are the window's own
// (fontTable.cpp), so layouts agree; the camera converts points as the
// window backend does; the clock is real.
//
// A small CPU pixel path stands in for the pictures the logic reads back:
// pictures load (PNG, BMP), clearing, filled boxes and pictures drawn at any
// size (nearest pixel, alpha over the target when transparent) land in the
// pixels of the draw target, and screen copies and pixel images read them.
// Every other shape, text and 3D drawing does nothing here.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "layer/camera.h"
#include "layer/fontFaces.h"
#include "layer/imageFile.h"
#include "layer/inputDevices.h"
#include "layer/layer.h"
#include "layer/windowMenu.h"

namespace marv {

namespace {

struct headlessImage {
  int width = 0;                   // [px]
  int height = 0;                  // [px]
  std::vector<std::uint8_t> rgba;  // width*height*4, rows top-down
  bool live = false;               // the handle is in use
};

struct headlessState {
  std::vector<headlessImage> images;
  int width = 640;                              // back buffer [px]
  int height = 480;                             // back buffer [px]
  int target = backBuffer;                      // current draw target
  cameraState camera;                           // current camera
  std::vector<std::uint8_t> backPixels;         // the back buffer, made on first use
  std::uint8_t background[4] = {0, 0, 0, 255};  // colour of clearDrawTarget
};

headlessState state;

template <class T>
bool liveHandle(const std::vector<T>& table, int handle) {
  return handle >= 0 && handle < static_cast<int>(table.size()) && table[handle].live;
}

int newImage(int width, int height, const std::uint8_t* rgba = nullptr) {
  if (width <= 0 || height <= 0 || width > maxImageSide || height > maxImageSide) return -1;
  if (state.images.empty()) state.images.emplace_back();  // handles start at 1: deleting 0 is harmless
  headlessImage img;
  img.width = width;
  img.height = height;
  const std::size_t bytes = static_cast<std::size_t>(width) * height * 4;
  if (rgba != nullptr) {
    img.rgba.assign(rgba, rgba + bytes);
  } else {
    img.rgba.assign(bytes, 0);
    for (std::size_t i = 3; i < bytes; i += 4) img.rgba[i] = 255;
  }
  img.live = true;
  state.images.push_back(std::move(img));
  return static_cast<int>(state.images.size()) - 1;
}

int imageOfPixels(int width, int height, const std::uint8_t* rgba) { return newImage(width, height, rgba); }

// The pixels of the current draw target and their size.
std::uint8_t* targetPixels(int& w, int& h) {
  if (state.target != backBuffer && liveHandle(state.images, state.target)) {
    headlessImage& img = state.images[state.target];
    w = img.width;
    h = img.height;
    return img.rgba.data();
  }
  w = state.width;
  h = state.height;
  const std::size_t bytes = static_cast<std::size_t>(w) * h * 4;
  if (state.backPixels.size() != bytes) {
    state.backPixels.assign(bytes, 0);
    for (std::size_t i = 3; i < bytes; i += 4) state.backPixels[i] = 255;
  }
  return state.backPixels.data();
}

// Copies the rectangle (x1, y1)-(x2, y2) of the target to the top left of
// rows of the given size; parts outside the target are left as they are.
void copyFromTarget(int x1, int y1, int x2, int y2, std::uint8_t* to, int toWidth, int toHeight) {
  int w = 0, h = 0;
  const std::uint8_t* from = targetPixels(w, h);
  for (long long y = std::max(0, y1); y < std::min(y2, h); ++y) {
    const long long ty = y - y1;
    if (ty >= toHeight) break;
    for (long long x = std::max(0, x1); x < std::min(x2, w); ++x) {
      const long long tx = x - x1;
      if (tx >= toWidth) break;
      std::memcpy(to + (ty * toWidth + tx) * 4, from + (y * w + x) * 4, 4);
    }
  }
}

// A picture into the target rectangle [x1, x2) x [y1, y2), nearest pixel:
// target pixel centre (x + 0.5) samples source column floor(u * width) with
// u its place across the rectangle, as the OpenGL backend samples.
void stretchPixels(const headlessImage& img, double x1, double y1, double x2, double y2, double u0, double v0,
                   double u1, double v1, bool transparent) {
  // Corners given right to left or bottom to top mirror the picture.
  if (x2 < x1) {
    std::swap(x1, x2);
    std::swap(u0, u1);
  }
  if (y2 < y1) {
    std::swap(y1, y2);
    std::swap(v0, v1);
  }
  if (!(x2 > x1) || !(y2 > y1)) return;
  int w = 0, h = 0;
  std::uint8_t* to = targetPixels(w, h);
  const long long px0 = std::max(0LL, static_cast<long long>(std::ceil(x1 - 0.5)));
  const long long px1 = std::min(static_cast<long long>(w), static_cast<long long>(std::ceil(x2 - 0.5)));
  const long long py0 = std::max(0LL, static_cast<long long>(std::ceil(y1 - 0.5)));
  const long long py1 = std::min(static_cast<long long>(h), static_cast<long long>(std::ceil(y2 - 0.5)));
  for (long long y = py0; y < py1; ++y) {
    const double v = v0 + (v1 - v0) * ((y + 0.5) - y1) / (y2 - y1);
    const int sy = std::clamp(static_cast<int>(std::floor(v * img.height)), 0, img.height - 1);
    for (long long x = px0; x < px1; ++x) {
      const double u = u0 + (u1 - u0) * ((x + 0.5) - x1) / (x2 - x1);
      const int sx = std::clamp(static_cast<int>(std::floor(u * img.width)), 0, img.width - 1);
      const std::uint8_t* s = &img.rgba[(static_cast<std::size_t>(sy) * img.width + sx) * 4];
      std::uint8_t* d = to + (y * w + x) * 4;
      const int a = transparent ? s[3] : 255;
      for (int c = 0; c < 3; ++c) d[c] = static_cast<std::uint8_t>((s[c] * a + d[c] * (255 - a) + 127) / 255);
    }
  }
}

void fillPixels(long long x1, long long y1, long long x2, long long y2, std::uint32_t c) {
  int w = 0, h = 0;
  std::uint8_t* to = targetPixels(w, h);
  const std::uint8_t rgba[4] = {static_cast<std::uint8_t>(c >> 16), static_cast<std::uint8_t>(c >> 8),
                                static_cast<std::uint8_t>(c), 255};
  for (long long y = std::max(0LL, y1); y < std::min<long long>(y2, h); ++y)
    for (long long x = std::max(0LL, x1); x < std::min<long long>(x2, w); ++x)
      std::memcpy(to + (y * w + x) * 4, rgba, 4);
}

}  // namespace

// ---------------------------------------------------------------- window and process

int startLayer() { return 0; }
int stopLayer() {
  state = headlessState{};
  input::resetInput();
  fonts::stopFonts();
  resetPictureKey();
  resetPixelImages();
  menu::resetWindowMenu();
  return 0;
}
// Menu commands chosen in this frame reach their receiver here, as they
// would inside a window's message handling.
int processMessages() {
  const int script = input::stepInputScript();
  menu::deliverCommands();
  return script == -1 || menu::closeRequested() ? -1 : 0;
}
int setLogging(int) { return 0; }
int setTextCodePage(int) { return 0; }
int setWindowedMode(int) { return 0; }
int setWindowIcon(int) { return 0; }
int setGraphicsMode(int width, int height, int, int) {
  if (width <= 0 || height <= 0 || width > maxImageSide || height > maxImageSide) return -1;
  state.width = width;
  state.height = height;
  return 0;
}
int setResizable(int, int) { return 0; }
int setRunWhileInactive(int) { return 0; }
int setAllowSecondInstance(int) { return 0; }
int setSystemKeysOff(int, const char*) { return 0; }
int setWindowText(const char*) { return 0; }
int setBackgroundColour(int r, int g, int b, int) {
  state.background[0] = static_cast<std::uint8_t>(r);
  state.background[1] = static_cast<std::uint8_t>(g);
  state.background[2] = static_cast<std::uint8_t>(b);
  return 0;
}
void* windowHandle() { return nullptr; }
int windowPosition(int* x, int* y) {
  if (x) *x = 0;
  if (y) *y = 0;
  return 0;
}
int setWindowPosition(int, int) { return 0; }
int windowActive() { return 1; }
int setFileDropEnabled(int flag) {
  input::enableDrops(flag != 0);
  return 0;
}

// ---------------------------------------------------------------- frame control

int setDrawTarget(int handle) {
  if (handle != backBuffer && !liveHandle(state.images, handle)) return -1;
  state.target = handle;
  return 0;
}
int clearDrawTarget() {
  int w = 0, h = 0;
  std::uint8_t* to = targetPixels(w, h);
  for (std::size_t i = 0; i < static_cast<std::size_t>(w) * h; ++i) std::memcpy(to + 4 * i, state.background, 4);
  return 0;
}
int present() { return 0; }
long long presentedFrames() { return 0; }
int setBlend(int, int) { return 0; }

// ---------------------------------------------------------------- images

int makeOffscreenImage(int width, int height, int) { return newImage(width, height); }
int makeImage(int width, int height, int) { return newImage(width, height); }
int captureScreen(int x1, int y1, int x2, int y2, int image) {
  if (!liveHandle(state.images, image) || image == state.target) return -1;
  headlessImage& img = state.images[image];
  copyFromTarget(x1, y1, x2, y2, img.rgba.data(), img.width, img.height);
  return 0;
}
int deleteImage(int handle) {
  if (!liveHandle(state.images, handle)) return 0;
  state.images[handle] = headlessImage{};
  if (state.target == handle) state.target = backBuffer;
  return 0;
}
int loadImage(const char* path, int) { return loadPicture(path, imageOfPixels); }
int loadImageResource(int id) {
  const std::string path = resourcePicturePath(id);
  return path.empty() ? -1 : loadImage(path.c_str(), 0);
}
int loadImageSetResource(int id, int count, int columns, int rows, int cellWidth, int cellHeight, int* handles) {
  return loadPictureSet(id, count, columns, rows, cellWidth, cellHeight, handles, imageOfPixels);
}
int imageSize(int image, int* width, int* height) {
  if (image == backBuffer) {
    if (width) *width = state.width;
    if (height) *height = state.height;
    return 0;
  }
  const bool ok = liveHandle(state.images, image);
  if (width) *width = ok ? state.images[image].width : 0;
  if (height) *height = ok ? state.images[image].height : 0;
  return ok ? 0 : -1;
}
int drawImage(int x, int y, int image, int transparent) {
  if (!liveHandle(state.images, image)) return -1;
  const headlessImage& img = state.images[image];
  stretchPixels(img, x, y, double(x) + img.width, double(y) + img.height, 0, 0, 1, 1, transparent != 0);
  return 0;
}
int drawImageStretched(int x1, int y1, int x2, int y2, int image, int transparent) {
  if (!liveHandle(state.images, image)) return -1;
  stretchPixels(state.images[image], x1, y1, x2, y2, 0, 0, 1, 1, transparent != 0);
  return 0;
}
int drawImageRect(int x, int y, int srcX, int srcY, int width, int height, int image, int transparent, int flipX,
                  int flipY) {
  if (!liveHandle(state.images, image)) return -1;
  const headlessImage& img = state.images[image];
  double u0 = double(srcX) / img.width, u1 = (double(srcX) + width) / img.width;
  double v0 = double(srcY) / img.height, v1 = (double(srcY) + height) / img.height;
  if (flipX) std::swap(u0, u1);
  if (flipY) std::swap(v0, v1);
  stretchPixels(img, x, y, double(x) + width, double(y) + height, u0, v0, u1, v1, transparent != 0);
  return 0;
}
int drawImageRotated(int, int, double, double, int image, int, int, int) {
  return liveHandle(state.images, image) ? 0 : -1;
}
int saveScreenJpeg(int, int, int, int, const char*, int, int) { return -1; }

// ---------------------------------------------------------------- pixel images

int captureToPixelImage(int x1, int y1, int x2, int y2, int handle) {
  int pw = 0, ph = 0;
  std::uint8_t* rows = rowsOfPixelImage(handle, pw, ph);
  if (rows == nullptr) return -1;
  copyFromTarget(x1, y1, x2, y2, rows, pw, ph);
  return 0;
}

// ---------------------------------------------------------------- 2D primitives

int drawBox(int x1, int y1, int x2, int y2, std::uint32_t c, int fill) {
  const long long l = std::min(x1, x2), r = std::max(x1, x2), t = std::min(y1, y2), b = std::max(y1, y2);
  if (l == r || t == b) return 0;
  if (fill) {
    fillPixels(l, t, r, b, c);
  } else {
    fillPixels(l, t, r, t + 1, c);
    fillPixels(l, b - 1, r, b, c);
    fillPixels(l, t, l + 1, b, c);
    fillPixels(r - 1, t, r, b, c);
  }
  return 0;
}
int drawBoxRow(const int* x1, const int* x2, int y1, int y2, const std::uint32_t* colours, int n) {
  for (int i = 0; i < n; ++i) drawBox(x1[i], y1, x2[i], y2, colours[i], 1);
  return 0;
}
int drawLater(void (*draw)(const void*), const void* context, int size) {
  if (draw == nullptr || size < 0 || size > drawLaterContextSize) return -1;
  draw(context);
  return 0;
}
int finishLaterDrawings() { return 0; }
int drawBoxF(float, float, float, float, std::uint32_t, int, float) { return 0; }
int drawLine(int, int, int, int, std::uint32_t, int) { return 0; }
int drawLineF(float, float, float, float, std::uint32_t, float) { return 0; }
int drawLinesF(const float*, int, std::uint32_t, float) { return 0; }
int drawCircle(int, int, int, std::uint32_t, int, int) { return 0; }
int drawCircleF(float, float, float, int, std::uint32_t, int, float) { return 0; }
int drawTriangle(int, int, int, int, int, int, std::uint32_t, int) { return 0; }
int drawRoundedBoxF(float, float, float, float, float, float, int, std::uint32_t, int, float) { return 0; }

// ---------------------------------------------------------------- 3D

int setZBuffer(int) { return 0; }
int setZWrite(int) { return 0; }
int setLighting(int) { return 0; }
int setCamera(vec3 position, vec3 target, vec3 up) {
  state.camera.position = position;
  state.camera.target = target;
  state.camera.up = up;
  return 0;
}
int setPerspective(float fov) {
  if (!(fov > 0.0f) || !(fov < 3.14159265f)) return -1;
  state.camera.fov = fov;
  return 0;
}
int setPointLight(vec3, float, float, float, float) { return 0; }
int setLightPosition(vec3) { return 0; }
static cameraState cameraForTarget() {
  cameraState c = state.camera;
  const bool image = liveHandle(state.images, state.target);
  c.width = image ? state.images[state.target].width : state.width;
  c.height = image ? state.images[state.target].height : state.height;
  return c;
}
vec3 worldToScreen(vec3 position) { return projectPoint(cameraForTarget(), position); }
vec3 screenToWorld(vec3 position) { return unprojectPoint(cameraForTarget(), position); }
int drawLine3d(vec3, vec3, std::uint32_t) { return 0; }
int drawTriangle3d(vec3, vec3, vec3, std::uint32_t, int) { return 0; }
int drawCube3d(vec3, vec3, std::uint32_t, std::uint32_t, int) { return 0; }
int drawSphere3d(vec3, float, int, std::uint32_t, std::uint32_t, int) { return 0; }
int drawCapsule3d(vec3, vec3, float, int, std::uint32_t, std::uint32_t, int) { return 0; }
int drawCone3d(vec3, vec3, float, int, std::uint32_t, std::uint32_t, int) { return 0; }
int drawPolygons3d(const vertex3d*, int, int, int) { return 0; }
int drawIndexedPolygons3d(const vertex3d*, int, const std::uint16_t*, int, int, int) { return 0; }

// ---------------------------------------------------------------- text

int drawText(int, int, const char*, std::uint32_t, int, std::uint32_t, int) { return 0; }
int drawTextFormat(int, int, std::uint32_t, int, const char*, ...) { return 0; }

// ---------------------------------------------------------------- text input fields

// The fields live in the shared part of the layer; here they are not drawn.
int drawTextInput(int, int, int handle, int) {
  input::fieldLook look;
  return input::lookOfField(handle, look) ? 0 : -1;
}

// ---------------------------------------------------------------- backend facts

int drawCallCount() { return 0; }
int layerDrawsPixels() { return 0; }

}  // namespace marv
