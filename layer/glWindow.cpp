// The window side of the OpenGL backend: the SDL2 window and its OpenGL
// context, or an off-screen EGL context without any display; window events
// fed into the layer's shared input state, and present. Off-screen, the
// input script of a test stands in for the events.
//
// Sections: state | contexts | window and process | frame
//
// The picture is always drawn into the back buffer framebuffer of the size
// that setGraphicsMode asks for. present() stretches it over the window, so
// that a resized window scales its content; mouse positions are mapped back
// into back buffer pixels.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <SDL2/SDL.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "layer/glCore.h"
#include "layer/inputDevices.h"
#include "layer/keyTable.h"
#include "layer/menuDraw.h"
#include "layer/windowMenu.h"

namespace marv {

using namespace gl;

namespace {

// ---------------------------------------------------------------- state

struct windowState {
  bool started = false;                    // startLayer succeeded
  bool closed = false;                     // the user closed the window
  SDL_Window* window = nullptr;            // the window, or null off-screen
  SDL_GLContext context = nullptr;         // its OpenGL context
  EGLDisplay eglDisplay = EGL_NO_DISPLAY;  // off-screen display
  EGLContext eglContext = EGL_NO_CONTEXT;  // off-screen context
  std::string title = "Marvanesse+";       // title bar text
  int iconId = -1;                         // picture of the window icon, or -1
  bool resizable = false;                  // the user may resize the window
  bool active = true;                      // the window has the focus
  int menuImage = -1;                      // off-screen canvas of the menu bar and the picture
  int barApplied = 0;                      // menu bar height the window's size allows for [px]
};

windowState win;

// ---------------------------------------------------------------- contexts

// An OpenGL 3.3 core context on Mesa's surfaceless platform (or the first
// EGL device), drawing only into framebuffers.
bool startOffscreenContext() {
  auto getPlatformDisplay =
      reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
  if (getPlatformDisplay == nullptr) return false;
  const EGLenum platforms[] = {EGL_PLATFORM_SURFACELESS_MESA, EGL_PLATFORM_DEVICE_EXT};
  for (const EGLenum platform : platforms) {
    void* native = EGL_DEFAULT_DISPLAY;
    EGLDeviceEXT device = nullptr;
    if (platform == EGL_PLATFORM_DEVICE_EXT) {
      auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
      EGLint count = 0;
      if (queryDevices == nullptr || !queryDevices(1, &device, &count) || count < 1) continue;
      native = device;
    }
    EGLDisplay display = getPlatformDisplay(platform, native, nullptr);
    EGLint major = 0, minor = 0;
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, &major, &minor)) continue;
    const EGLint attributes[] = {
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    EGLContext context = EGL_NO_CONTEXT;
    if (eglBindAPI(EGL_OPENGL_API)) context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
    if (context != EGL_NO_CONTEXT && eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) {
      win.eglDisplay = display;
      win.eglContext = context;
      return true;
    }
    if (context != EGL_NO_CONTEXT) eglDestroyContext(display, context);
    eglTerminate(display);
  }
  return false;
}

void setIcon() {
  if (win.iconId < 0 || win.window == nullptr) return;
  rgbaImage icon;
  const std::string path = resourcePicturePath(win.iconId);
  if (path.empty() || !loadImageFile(path, icon)) return;
  SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormatFrom(icon.pixels.data(), icon.width, icon.height, 32,
                                                            icon.width * 4, SDL_PIXELFORMAT_RGBA32);
  if (surface == nullptr) return;
  SDL_SetWindowIcon(win.window, surface);
  SDL_FreeSurface(surface);
}

bool startWindow() {
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    std::fprintf(stderr, "marvanesse: no window: %s\n", SDL_GetError());
    return false;
  }
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
  Uint32 flags = SDL_WINDOW_OPENGL | SDL_WINDOW_SHOWN;
  if (win.resizable) flags |= SDL_WINDOW_RESIZABLE;
  win.window = SDL_CreateWindow(win.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, core().width,
                                core().height, flags);
  if (win.window != nullptr) win.context = SDL_GL_CreateContext(win.window);
  if (win.context == nullptr) {
    std::fprintf(stderr, "marvanesse: no OpenGL 3.3 window: %s\n", SDL_GetError());
    if (win.window) SDL_DestroyWindow(win.window);
    win.window = nullptr;
    SDL_Quit();
    return false;
  }
  SDL_GL_SetSwapInterval(0);  // the program paces its own frames
  SDL_EventState(SDL_DROPFILE, input::dropsEnabled() ? SDL_ENABLE : SDL_DISABLE);
  setIcon();
  return true;
}

// Window pixels to back buffer pixels. The menu bar lies above the back
// buffer, at negative y; both scale alike when the user resizes the window.
void mapMouse(int wx, int wy) {
  const int canvasHeight = core().height + win.barApplied;
  int ww = core().width, wh = canvasHeight;
  if (win.window) SDL_GetWindowSize(win.window, &ww, &wh);
  const int cx = ww > 0 ? static_cast<int>(static_cast<long long>(wx) * core().width / ww) : wx;
  const int cy = wh > 0 ? static_cast<int>(static_cast<long long>(wy) * canvasHeight / wh) : wy;
  input::mouseMoved(cx, cy - win.barApplied);
}

// The window's size follows the menu bar: the back buffer keeps its size
// below it.
void fitWindowToMenu() {
  const int bar = menu::shownBarHeight();
  if (bar == win.barApplied) return;
  win.barApplied = bar;
  if (win.window) SDL_SetWindowSize(win.window, core().width, core().height + bar);
}

// Key repeats come as further downs and edit the active field again; Ctrl+V
// pastes the clipboard into it.
void handleKey(const SDL_KeyboardEvent& e, bool down) {
  // A key goes up under the code it went down with, even if the layout
  // changed in between.
  static int codeOfScancode[SDL_NUM_SCANCODES] = {};
  const int scancode = e.keysym.scancode;
  if (scancode < 0 || scancode >= SDL_NUM_SCANCODES) return;
  if (down && codeOfScancode[scancode] == 0) codeOfScancode[scancode] = gl::keyCodeOf(scancode, e.keysym.sym);
  const int code = codeOfScancode[scancode];
  if (!down) codeOfScancode[scancode] = 0;
  if (code > 0) input::keyChanged(code, down);
  if (down && code == keyV && (keyDown(keyLeftCtrl) || keyDown(keyRightCtrl)) && SDL_HasClipboardText()) {
    char* text = SDL_GetClipboardText();
    if (text != nullptr) input::textPasted(text);
    SDL_free(text);
  }
}

}  // namespace

namespace gl {

void resizeBackBuffer(int width, int height) {
  coreState& s = core();
  s.width = width;
  s.height = height;
  if (!s.ready) return;
  flush();
  freeImageObjects(s.backImage);
  s.backImage = image{};
  s.backImage.width = width;
  s.backImage.height = height;
  s.backImage.live = true;
  makeImageObjects(s.backImage, nullptr, true);
}

}  // namespace gl

// ---------------------------------------------------------------- window and process

int startLayer() {
  if (win.started) return 0;
  coreState& s = core();
  if (startsOffscreen) {
    if (!startOffscreenContext() || !startRenderer(s.width, s.height)) {
      // The layer goes on without pixels, as the headless backend does.
      std::fprintf(stderr, "marvanesse: no OpenGL for off-screen drawing; pictures are skipped\n");
      s.ready = false;
    }
    win.started = true;
    return 0;
  }
  if (!startWindow()) return -1;
  if (!startRenderer(s.width, s.height)) {
    std::fprintf(stderr, "marvanesse: the OpenGL renderer could not start\n");
    stopLayer();
    return -1;
  }
  win.started = true;
  return 0;
}

int stopLayer() {
  menu::resetWindowMenu();
  menu::forgetMenuFont();
  stopRenderer();
  if (win.context) SDL_GL_DeleteContext(win.context);
  if (win.window) {
    SDL_DestroyWindow(win.window);
    SDL_Quit();
  }
  if (win.eglContext != EGL_NO_CONTEXT) {
    eglMakeCurrent(win.eglDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(win.eglDisplay, win.eglContext);
    eglTerminate(win.eglDisplay);
    eglReleaseThread();
  }
  win = windowState{};
  input::resetInput();
  resetPictureKey();
  resetPixelImages();
  return 0;
}

int processMessages() {
  if (win.closed) return -1;
  if (win.window == nullptr) {
    const int script = input::stepInputScript();
    menu::deliverCommands();
    return script == -1 || menu::closeRequested() ? -1 : 0;
  }
  fitWindowToMenu();
  SDL_Event e;
  while (SDL_PollEvent(&e)) {
    switch (e.type) {
      case SDL_QUIT: win.closed = true; break;
      case SDL_WINDOWEVENT:
        if (e.window.event == SDL_WINDOWEVENT_CLOSE) win.closed = true;
        if (e.window.event == SDL_WINDOWEVENT_FOCUS_GAINED) win.active = true;
        if (e.window.event == SDL_WINDOWEVENT_FOCUS_LOST) {
          win.active = false;
          input::releaseAll();  // releases are not seen without focus
          menu::closeAll(menu::windowMenu());
        }
        break;
      case SDL_KEYDOWN: handleKey(e.key, true); break;
      case SDL_KEYUP: handleKey(e.key, false); break;
      case SDL_TEXTINPUT: input::textTyped(e.text.text); break;
      case SDL_MOUSEMOTION: mapMouse(e.motion.x, e.motion.y); break;
      case SDL_MOUSEBUTTONDOWN:
      case SDL_MOUSEBUTTONUP: {
        const int bit = e.button.button == SDL_BUTTON_LEFT    ? mouseLeft
                        : e.button.button == SDL_BUTTON_RIGHT ? mouseRight
                                                              : 0;
        mapMouse(e.button.x, e.button.y);
        if (bit != 0) input::buttonChanged(bit, e.type == SDL_MOUSEBUTTONDOWN);
        break;
      }
      case SDL_MOUSEWHEEL:
        input::wheelTurned(e.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -e.wheel.y : e.wheel.y);
        break;
      case SDL_DROPFILE:
        if (e.drop.file != nullptr) {
          input::fileDropped(e.drop.file);
          SDL_free(e.drop.file);
        }
        break;
      default: break;
    }
  }
  menu::deliverCommands();
  if (menu::closeRequested()) win.closed = true;
  return win.closed ? -1 : 0;
}

int setLogging(int) { return 0; }       // the layer keeps no log file
int setTextCodePage(int) { return 0; }  // strings are UTF-8 on this desktop
int setWindowedMode(int) { return 0; }  // always a window
int setWindowIcon(int id) {
  win.iconId = id;
  setIcon();
  return 0;
}

int setGraphicsMode(int width, int height, int, int) {
  if (width <= 0 || height <= 0 || width > 16384 || height > 16384) return -1;
  if (win.window) SDL_SetWindowSize(win.window, width, height + win.barApplied);
  resizeBackBuffer(width, height);
  return 0;
}

int setResizable(int enable, int) {
  win.resizable = enable != 0;
  if (win.window) SDL_SetWindowResizable(win.window, win.resizable ? SDL_TRUE : SDL_FALSE);
  return 0;
}

int setRunWhileInactive(int) { return 0; }            // loops always run
int setAllowSecondInstance(int) { return 0; }         // copies never lock each other out
int setSystemKeysOff(int, const char*) { return 0; }  // no system menu keys on this desktop

int setWindowText(const char* text) {
  win.title = text ? text : "";
  if (win.window) SDL_SetWindowTitle(win.window, win.title.c_str());
  return 0;
}

void* windowHandle() { return win.window; }

int windowPosition(int* x, int* y) {
  int wx = 0, wy = 0;
  if (win.window) SDL_GetWindowPosition(win.window, &wx, &wy);
  if (x) *x = wx;
  if (y) *y = wy;
  return 0;
}

int setWindowPosition(int x, int y) {
  if (win.window) SDL_SetWindowPosition(win.window, x, y);
  return 0;
}

// This desktop has no menu bar in the window: the menu is not shown.
int windowActive() { return win.active ? 1 : 0; }

int setFileDropEnabled(int flag) {
  input::enableDrops(flag != 0);
  if (win.window) SDL_EventState(SDL_DROPFILE, flag ? SDL_ENABLE : SDL_DISABLE);
  return 0;
}

// ---------------------------------------------------------------- frame

namespace {

// The window's whole picture on one canvas, the bar's height taller than
// the back buffer: the bar, the back buffer below it, the open menus over
// it. Null without a menu.
// Nothing of the menu reaches below the bar.
bool barOnly(const menu::menuModel& m) { return m.openHead < 0; }

const image* drawMenuCanvas() {
  coreState& s = core();
  if (win.barApplied == 0) return nullptr;
  const int canvasHeight = s.height + win.barApplied;
  int w = 0, h = 0;
  if (win.menuImage < 0 || imageSize(win.menuImage, &w, &h) != 0 || w != s.width || h != canvasHeight) {
    deleteImage(win.menuImage);
    win.menuImage = makeOffscreenImage(s.width, canvasHeight, 0);
  }
  const image* canvas = imageOf(win.menuImage);
  if (canvas == nullptr || canvas->framebuffer == 0) return nullptr;
  menu::menuModel& m = menu::windowMenu();
  m.measure = menu::menuTextWidth;
  m.canvasWidth = s.width;
  const int target = s.target, blendMode = s.blendMode, blendAmount = s.blendAmount;
  setDrawTarget(win.menuImage);
  // With no menu open the bar covers only its own rows: present shows the
  // picture straight from the back buffer, and the copy under the bar is
  // not needed (one full-window pass less for the software renderer).
  if (!barOnly(m)) {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, s.backImage.framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, canvas->framebuffer);
    glDisable(GL_SCISSOR_TEST);
    glBlitFramebuffer(0, 0, s.width, s.height, 0, win.barApplied, s.width, canvasHeight, GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
  }
  bindTarget();
  setBlend(0, 0);
  menu::drawMenu(m);
  setBlend(blendMode, blendAmount);
  setDrawTarget(target);
  flush();
  return canvas;
}

}  // namespace

namespace {
long long framesShown = 0;  // swaps of the window since start
}  // namespace

long long presentedFrames() { return framesShown; }

int present() {
  coreState& s = core();
  // Without a window nobody sees the back buffer: its pending frame stays
  // recorded until it is read back or cleared away.
  if (!s.ready || win.window == nullptr) return 0;
  flush();
  fitWindowToMenu();
  const image* menuCanvas = drawMenuCanvas();
  const int bar = menuCanvas ? win.barApplied : 0;
  const int canvasHeight = s.height + bar;
  int ww = s.width, wh = canvasHeight;
  SDL_GL_GetDrawableSize(win.window, &ww, &wh);
  // Canvas pixels to window pixels; the canvas's rows run top-down, the
  // window's bottom-up.
  auto wx = [&](int x) { return static_cast<GLint>(static_cast<long long>(x) * ww / s.width); };
  auto wy = [&](int y) { return static_cast<GLint>(wh - static_cast<long long>(y) * wh / canvasHeight); };
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
  glDisable(GL_SCISSOR_TEST);
  glViewport(0, 0, ww, wh);
  if (menuCanvas && barOnly(menu::windowMenu()) && ww == s.width && wh == canvasHeight) {
    // Unscaled, with only the bar from the canvas: the bar's rows, then the
    // picture from the back buffer below them, pixel for pixel the same.
    glBindFramebuffer(GL_READ_FRAMEBUFFER, menuCanvas->framebuffer);
    glBlitFramebuffer(0, 0, s.width, bar, wx(0), wy(0), wx(s.width), wy(bar), GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, s.backImage.framebuffer);
    glBlitFramebuffer(0, 0, s.width, s.height, wx(0), wy(bar), wx(s.width), wy(canvasHeight), GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
  } else {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, menuCanvas ? menuCanvas->framebuffer : s.backImage.framebuffer);
    glBlitFramebuffer(0, 0, s.width, canvasHeight, wx(0), wy(0), wx(s.width), wy(canvasHeight), GL_COLOR_BUFFER_BIT,
                      GL_LINEAR);
  }
  SDL_GL_SwapWindow(win.window);
  ++framesShown;
  bindTarget();
  return 0;
}

}  // namespace marv
