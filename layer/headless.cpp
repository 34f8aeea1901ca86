// The headless backend of the drawing layer: no window, no pixels on screen.
// processMessages returns 0, no key or button is ever down, and drawing does
// nothing. Images, pixel images, fonts and text inputs still get handles and
// sizes (pictures are decoded for their size), so that the logic above
// behaves as it does with a window; the camera converts points as the window
// backend does; the clock is real.
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "layer/camera.h"
#include "layer/imageFile.h"
#include "layer/layer.h"

namespace marv {

namespace {

struct headlessImage {
  int width = 0;   // [px]
  int height = 0;  // [px]
  bool live = false;
};

struct headlessPixels {
  int width = 0;                   // [px]
  int height = 0;                  // [px]
  std::vector<std::uint8_t> rgba;  // width*height*4, zero until captured
  bool live = false;
};

struct headlessInput {
  std::string text;
  int maxLength = 0;  // [bytes]
  bool live = false;
};

struct headlessState {
  std::vector<headlessImage> images;
  std::vector<headlessPixels> pixelImages;
  std::vector<headlessInput> inputs;
  std::vector<int> fontSizes;  // by handle; 0 once deleted
  int defaultFontSize = 16;    // [px]
  int width = 640;             // back buffer [px]
  int height = 480;            // back buffer [px]
  int target = backBuffer;     // current draw target
  cameraState camera;          // current camera
};

headlessState state;

template <class T>
bool liveHandle(const std::vector<T>& table, int handle) {
  return handle >= 0 && handle < static_cast<int>(table.size()) && table[handle].live;
}

int newImage(int width, int height) {
  if (width <= 0 || height <= 0 || width > maxImageSide || height > maxImageSide) return -1;
  if (state.images.empty()) state.images.emplace_back();  // handles start at 1: deleting 0 is harmless
  state.images.push_back({width, height, true});
  return static_cast<int>(state.images.size()) - 1;
}

// Width of a text without a real font: half the font size per byte.
int nominalWidth(int fontSize, const char* format, va_list args) {
  if (format == nullptr) return 0;
  char buffer[1024];
  const int n = std::vsnprintf(buffer, sizeof buffer, format, args);
  if (n <= 0) return 0;
  return n * fontSize / 2;
}

}  // namespace

// ---------------------------------------------------------------- window and process

int startLayer() { return 0; }
int stopLayer() {
  state = headlessState{};
  return 0;
}
int processMessages() { return 0; }
int setLogging(int) { return 0; }
int setTextCodePage(int) { return 0; }
int setWindowedMode(int) { return 0; }
int setWindowIcon(int) { return 0; }
int setGraphicsMode(int width, int height, int, int) {
  if (width <= 0 || height <= 0) return -1;
  state.width = width;
  state.height = height;
  return 0;
}
int setResizable(int, int) { return 0; }
int setRunWhileInactive(int) { return 0; }
int setAllowSecondInstance(int) { return 0; }
int setSystemKeysOff(int, const char*) { return 0; }
int setWindowText(const char*) { return 0; }
int setBackgroundColour(int, int, int, int) { return 0; }
void* windowHandle() { return nullptr; }
int windowPosition(int* x, int* y) {
  if (x) *x = 0;
  if (y) *y = 0;
  return 0;
}
int setWindowPosition(int, int) { return 0; }
int setWindowMenu(int) { return 0; }
int setMenuItemEnabled(int, int) { return 0; }
int windowActive() { return 1; }
int setFileDropEnabled(int) { return 0; }
int droppedFileCount() { return 0; }
int droppedFilePath(char* buffer, int size) {
  if (buffer && size > 0) buffer[0] = '\0';
  return -1;
}
int clearDroppedFiles() { return 0; }

// ---------------------------------------------------------------- frame control

int setDrawTarget(int handle) {
  if (handle != backBuffer && !liveHandle(state.images, handle)) return -1;
  state.target = handle;
  return 0;
}
int clearDrawTarget() { return 0; }
int present() { return 0; }
int setBlend(int, int) { return 0; }

// ---------------------------------------------------------------- images

int makeOffscreenImage(int width, int height, int) { return newImage(width, height); }
int makeImage(int width, int height, int) { return newImage(width, height); }
int captureScreen(int, int, int, int, int image) { return liveHandle(state.images, image) ? 0 : -1; }
int deleteImage(int handle) {
  if (liveHandle(state.images, handle)) state.images[handle].live = false;
  return 0;
}
int loadImage(const char* path, int) {
  rgbaImage picture;
  if (path == nullptr || !loadImageFile(path, picture)) return -1;
  return newImage(picture.width, picture.height);
}
int loadImageResource(int id) {
  const std::string path = resourcePicturePath(id);
  return path.empty() ? -1 : loadImage(path.c_str(), 0);
}
int loadImageSetResource(int id, int count, int columns, int rows, int cellWidth, int cellHeight, int* handles) {
  if (handles == nullptr || count <= 0) return -1;
  for (int i = 0; i < count; ++i) handles[i] = -1;
  if (columns <= 0 || rows <= 0 || loadImageResource(id) < 0) return -1;
  state.images.back().live = false;  // only the cells are kept
  int made = 0;
  for (int i = 0; i < count && i < columns * rows; ++i) {
    handles[i] = newImage(cellWidth, cellHeight);
    made += handles[i] >= 0;
  }
  return made == count ? 0 : -1;
}
int imageSize(int image, int* width, int* height) {
  const bool ok = liveHandle(state.images, image);
  if (width) *width = ok ? state.images[image].width : 0;
  if (height) *height = ok ? state.images[image].height : 0;
  return ok ? 0 : -1;
}
int drawImage(int, int, int, int) { return 0; }
int drawImageStretched(int, int, int, int, int, int) { return 0; }
int drawImageRect(int, int, int, int, int, int, int, int, int, int) { return 0; }
int drawImageRotated(int, int, double, double, int, int, int, int) { return 0; }
int setTransparentColour(int, int, int) { return 0; }
int saveScreenJpeg(int, int, int, int, const char*, int, int) { return -1; }

// ---------------------------------------------------------------- pixel images

int makePixelImage(int width, int height) {
  if (width <= 0 || height <= 0 || width > 65536 || height > 65536) return -1;
  headlessPixels p;
  p.width = width;
  p.height = height;
  p.rgba.assign(static_cast<std::size_t>(width) * height * 4, 0);
  p.live = true;
  if (state.pixelImages.empty()) state.pixelImages.emplace_back();
  state.pixelImages.push_back(std::move(p));
  return static_cast<int>(state.pixelImages.size()) - 1;
}
int captureToPixelImage(int, int, int, int, int handle) { return liveHandle(state.pixelImages, handle) ? 0 : -1; }
int readPixel(int handle, int x, int y, int* r, int* g, int* b, int* a) {
  int px[4] = {0, 0, 0, 0};
  int result = -1;
  if (liveHandle(state.pixelImages, handle)) {
    const headlessPixels& p = state.pixelImages[handle];
    if (x >= 0 && y >= 0 && x < p.width && y < p.height) {
      const std::size_t at = (static_cast<std::size_t>(y) * p.width + x) * 4;
      for (int c = 0; c < 4; ++c) px[c] = p.rgba[at + c];
      result = 0;
    }
  }
  if (r) *r = px[0];
  if (g) *g = px[1];
  if (b) *b = px[2];
  if (a) *a = px[3];
  return result;
}
int deletePixelImage(int handle) {
  if (liveHandle(state.pixelImages, handle)) state.pixelImages[handle] = headlessPixels{};
  return 0;
}

// ---------------------------------------------------------------- 2D primitives

std::uint32_t colour(int r, int g, int b) {
  return 0xFF000000u | (static_cast<std::uint32_t>(r & 255) << 16) | (static_cast<std::uint32_t>(g & 255) << 8) |
         static_cast<std::uint32_t>(b & 255);
}
colourRgba makeColourRgba(int r, int g, int b, int a) {
  return {static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b),
          static_cast<std::uint8_t>(a)};
}
int drawBox(int, int, int, int, std::uint32_t, int) { return 0; }
int drawBoxF(float, float, float, float, std::uint32_t, int, float) { return 0; }
int drawLine(int, int, int, int, std::uint32_t, int) { return 0; }
int drawLineF(float, float, float, float, std::uint32_t, float) { return 0; }
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

int setFontSize(int size) {
  if (size > 0) state.defaultFontSize = size;
  return 0;
}
int setFontThickness(int) { return 0; }
int setFontFace(const char*, int) { return 0; }
int makeFont(const char*, int size, int, int, int, int, int, int) {
  if (state.fontSizes.empty()) state.fontSizes.push_back(0);
  state.fontSizes.push_back(size > 0 ? size : state.defaultFontSize);
  return static_cast<int>(state.fontSizes.size()) - 1;
}
int fontExists(const char*, int) { return 0; }
int deleteFont(int handle) {
  if (handle >= 0 && handle < static_cast<int>(state.fontSizes.size())) state.fontSizes[handle] = 0;
  return 0;
}
int drawText(int, int, const char*, std::uint32_t, int, std::uint32_t, int) { return 0; }
int drawTextFormat(int, int, std::uint32_t, int, const char*, ...) { return 0; }
int textWidth(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int w = nominalWidth(state.defaultFontSize, format, args);
  va_end(args);
  return w;
}
int textWidthInFont(int font, const char* format, ...) {
  const bool known = font >= 0 && font < static_cast<int>(state.fontSizes.size()) && state.fontSizes[font] > 0;
  va_list args;
  va_start(args, format);
  const int w = nominalWidth(known ? state.fontSizes[font] : state.defaultFontSize, format, args);
  va_end(args);
  return w;
}

// ---------------------------------------------------------------- keyboard and mouse

int keyDown(int) { return 0; }
int anyKeyDown(int) { return 0; }
int readKeyboard(std::uint8_t table[256]) {
  if (table) std::memset(table, 0, 256);
  return 0;
}
int mouseButtons() { return 0; }
int mousePosition(int* x, int* y) {
  if (x) *x = 0;
  if (y) *y = 0;
  return 0;
}
int mouseWheel(int) { return 0; }

// ---------------------------------------------------------------- text input fields

int makeTextInput(int maxLength, int, int, int, int, int) {
  if (state.inputs.empty()) state.inputs.emplace_back();
  state.inputs.push_back({std::string(), maxLength > 0 ? maxLength : 0, true});
  return static_cast<int>(state.inputs.size()) - 1;
}
int deleteTextInput(int handle) {
  if (liveHandle(state.inputs, handle)) state.inputs[handle] = headlessInput{};
  return 0;
}
int activateTextInput(int handle) { return liveHandle(state.inputs, handle) ? 0 : -1; }
int setTextInputCursor(int, int handle) { return liveHandle(state.inputs, handle) ? 0 : -1; }
int setTextInputClip(int, int, int, int, int handle) { return liveHandle(state.inputs, handle) ? 0 : -1; }
int drawTextInput(int, int, int, int) { return 0; }
int textInputState(int) { return 0; }
int getTextInput(char* buffer, int size, int handle) {
  if (buffer == nullptr || size <= 0) return -1;
  buffer[0] = '\0';
  if (!liveHandle(state.inputs, handle)) return -1;
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", state.inputs[handle].text.c_str());
  return 0;
}
int setTextInput(const char* text, int handle) {
  if (!liveHandle(state.inputs, handle)) return -1;
  headlessInput& in = state.inputs[handle];
  in.text = text ? text : "";
  if (in.maxLength > 0 && static_cast<int>(in.text.size()) > in.maxLength) in.text.resize(in.maxLength);
  return 0;
}
int setTextInputColours(const int[17]) { return 0; }
int setTextInputFont(int) { return 0; }

// ---------------------------------------------------------------- clock

int nowMs() {
  using namespace std::chrono;
  static const steady_clock::time_point start = steady_clock::now();
  const auto ms = duration_cast<milliseconds>(steady_clock::now() - start).count();
  return static_cast<int>(ms & 0x7FFFFFFF);
}
int waitMs(int ms) {
  if (ms <= 0)
    std::this_thread::yield();
  else
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
  return 0;
}

// ---------------------------------------------------------------- backend facts

int drawCallCount() { return 0; }
int layerDrawsPixels() { return 0; }

}  // namespace marv
