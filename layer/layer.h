// The drawing and input layer: every window, screen, keyboard, mouse and clock
// operation of the program, as free functions over integer handles.
//
// Nothing above this header touches SDL, OpenGL or the operating system. Two
// backends implement it: a headless one, against which the whole logic runs
// without a screen (layer/headless*.cpp), and the window backend. All calls
// come from the main thread. Unless a comment says otherwise an operation
// returns 0 on success and -1 on failure; a failed handle (negative) passed
// on to later calls makes them do nothing.
#pragma once

#include <cstdint>

namespace marv {

// ---------------------------------------------------------------- types

constexpr int backBuffer = -2;  // draw target: the window's back buffer
constexpr int noTexture = -5;   // image handle for untextured polygons

struct vec3 {
  float x = 0.0f;
  float y = 0.0f;
  float z = 0.0f;
};

struct colourRgba {
  std::uint8_t r = 255;
  std::uint8_t g = 255;
  std::uint8_t b = 255;
  std::uint8_t a = 255;
};

// One polygon vertex, 48 bytes when packed in arrays.
struct vertex3d {
  vec3 position;
  vec3 normal;
  colourRgba diffuse;
  colourRgba specular;
  float u = 0.0f;
  float v = 0.0f;
  float su = 0.0f;
  float sv = 0.0f;
};
static_assert(sizeof(vertex3d) == 48, "vertex3d is handed over packed");

struct hitResult {
  std::int32_t hit = 0;  // 1 when the segment meets the triangle
  vec3 point;            // where it meets it
};

// Row-major 4 by 4 matrix; rows act on column vectors (x, y, z, 1).
struct matrix4 {
  float m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

// Key codes: indices of the 256-entry key table and arguments of keyDown.
// Keys that edit text fields (Backspace, Delete, Home, End) have codes too.
enum keyCode : int {
  keyEsc = 1,
  key1 = 2,
  key2 = 3,
  key3 = 4,
  key4 = 5,
  key5 = 6,
  key6 = 7,
  key7 = 8,
  key8 = 9,
  key9 = 10,
  key0 = 11,
  keyBackspace = 14,
  keyTab = 15,
  keyQ = 16,
  keyW = 17,
  keyE = 18,
  keyR = 19,
  keyT = 20,
  keyY = 21,
  keyU = 22,
  keyI = 23,
  keyO = 24,
  keyP = 25,
  keyEnter = 28,
  keyLeftCtrl = 29,
  keyA = 30,
  keyS = 31,
  keyD = 32,
  keyF = 33,
  keyG = 34,
  keyH = 35,
  keyJ = 36,
  keyK = 37,
  keyL = 38,
  keyLeftShift = 42,
  keyZ = 44,
  keyX = 45,
  keyC = 46,
  keyV = 47,
  keyB = 48,
  keyN = 49,
  keyM = 50,
  keyRightShift = 54,
  keyLeftAlt = 56,
  keySpace = 57,
  keyPad7 = 71,
  keyPad8 = 72,
  keyPad9 = 73,
  keyPad4 = 75,
  keyPad5 = 76,
  keyPad6 = 77,
  keyPad1 = 79,
  keyPad2 = 80,
  keyPad3 = 81,
  keyPad0 = 82,
  keyPadEnter = 156,
  keyRightCtrl = 157,
  keyRightAlt = 184,
  keyHome = 199,
  keyArrowUp = 200,
  keyPageUp = 201,
  keyLeft = 203,
  keyRight = 205,
  keyEnd = 207,
  keyArrowDown = 208,
  keyPageDown = 209,
  keyDelete = 211,
};

constexpr int mouseLeft = 1;   // bit of mouseButtons
constexpr int mouseRight = 2;  // bit of mouseButtons

// ---------------------------------------------------------------- window and process

int startLayer();                                                   // opens the window; -1 if it cannot
int stopLayer();                                                    // closes everything
int processMessages();                                              // handles events; -1 once the window is closed
int setLogging(int flag);                                           // the layer's own log file on or off
int setTextCodePage(int page);                                      // code page of strings handed in (UTF-8 here)
int setWindowedMode(int flag);                                      // 1: a window, not full screen
int setWindowIcon(int id);                                          // icon from the program's pictures
int setGraphicsMode(int width, int height, int bits, int refresh);  // back buffer and client size
int setResizable(int enable, int scaleContent);                     // user may resize; content scales
int setRunWhileInactive(int flag);                                  // keep running without focus
int setAllowSecondInstance(int flag);                               // a second copy may run
int setSystemKeysOff(int flag, const char* path);                   // system-menu keys do not reach the window
int setWindowText(const char* text);                                // title bar text
int setBackgroundColour(int r, int g, int b, int a);                // colour that clearDrawTarget uses
void* windowHandle();                                               // platform window handle, or null
int windowPosition(int* x, int* y);                                 // position of the window
int setWindowPosition(int x, int y);                                // move the window
int setWindowMenu(int id);                                          // shows the menu bar of that id
int setMenuItemEnabled(int id, int enable);                         // greys a menu item (0)
int setMenuItemText(int id, const char* text);                      // caption of the item of a command id
int setMenuHeadText(int head, int item, const char* text);  // caption by position: a bar menu (item -1) or its item
int menuBarHeight();                                        // [px] the bar takes above the back buffer; 0 without
int closeWindow();                                          // as the close button: processMessages gives -1 from now
// Where chosen menu commands go: called inside processMessages, on the main
// thread, once per command, as the window procedure of a desktop with native
// menus would get them.
using menuCommandReceiver = void (*)(int commandId, void* context);
int setMenuCommandReceiver(menuCommandReceiver receiver, void* context);
int windowActive();                           // 1 while the window has the focus
int setFileDropEnabled(int flag);             // accept files dropped on the window
int droppedFileCount();                       // dropped paths waiting
int droppedFilePath(char* buffer, int size);  // takes the oldest path; -1 if none
int clearDroppedFiles();                      // forgets waiting paths

// ---------------------------------------------------------------- frame control

int setDrawTarget(int handle);       // backBuffer or an off-screen image
int clearDrawTarget();               // background colour, depth cleared
int present();                       // shows the back buffer
long long presentedFrames();         // frames shown in the window since start
int setBlend(int mode, int amount);  // 0 none, 1 alpha with amount 0..255

// ---------------------------------------------------------------- images

int makeOffscreenImage(int width, int height, int useAlpha);   // image usable as draw target
int makeImage(int width, int height, int notFor3d);            // image that can take a screen copy
int captureScreen(int x1, int y1, int x2, int y2, int image);  // copy a rectangle of the target
int deleteImage(int handle);                                   // harmless for handles never made
int loadImage(const char* path, int notFor3d);                 // from a file (BMP, PNG, ...)
int loadImageResource(int id);                                 // from the program's pictures
int loadImageSetResource(int id, int count, int columns, int rows, int cellWidth, int cellHeight,
                         int* handles);                                              // cut a picture into cells
int imageSize(int image, int* width, int* height);                                   // size; also of backBuffer
int drawImage(int x, int y, int image, int transparent);                             // at its own size
int drawImageStretched(int x1, int y1, int x2, int y2, int image, int transparent);  // to a rectangle
int drawImageRect(int x, int y, int srcX, int srcY, int width, int height, int image, int transparent, int flipX,
                  int flipY);  // part of an image
int drawImageRotated(int x, int y, double scale, double angle, int image, int transparent, int flipX,
                     int flipY);                // centred at (x, y)
int setTransparentColour(int r, int g, int b);  // not drawn in images loaded later
int saveScreenJpeg(int x1, int y1, int x2, int y2, const char* path, int quality,
                   int sampling2x1);  // rectangle of the target as JPEG

// ---------------------------------------------------------------- pixel images

int makePixelImage(int width, int height);                                // in memory, read by pixel
int captureToPixelImage(int x1, int y1, int x2, int y2, int handle);      // copy from the target
int readPixel(int handle, int x, int y, int* r, int* g, int* b, int* a);  // channels 0..255
int deletePixelImage(int handle);                                         // harmless for bad handles

// ---------------------------------------------------------------- 2D primitives

std::uint32_t colour(int r, int g, int b);                                    // packed colour
colourRgba makeColourRgba(int r, int g, int b, int a);                        // four-byte vertex colour
int drawBox(int x1, int y1, int x2, int y2, std::uint32_t colour, int fill);  // covers x1..x2-1
// A row of n filled boxes from y1 to y2, box i from x1[i] to x2[i] in
// colours[i], drawn in order: the same pixels as n calls of drawBox with
// fill on. Neighbours of one colour that touch or overlap may be recorded
// as one box.
int drawBoxRow(const int* x1, const int* x2, int y1, int y2, const std::uint32_t* colours, int n);
// A drawing made only when its pixels are needed: draw(context) runs when
// the frame is rasterised (presented, saved or read back), in its place
// among the primitives recorded before and after this call, in the drawing
// state of this call (target, blending, depth, light, camera); a clear of
// the target before then drops it unmade. The `size` bytes at context (at
// most drawLaterContextSize) are copied; what they point to must stay until
// then. The drawing may use shapes, 2D and 3D, not text or images. A
// backend without pixels draws at once.
constexpr int drawLaterContextSize = 64;
int drawLater(void (*draw)(const void* context), const void* context, int size);
// Makes every drawing left by drawLater now, in its place, without
// rasterising: for the moment before what their contexts point to goes.
int finishLaterDrawings();
int drawBoxF(float x1, float y1, float x2, float y2, std::uint32_t colour, int fill, float thickness);
int drawLine(int x1, int y1, int x2, int y2, std::uint32_t colour, int thickness);
int drawLineF(float x1, float y1, float x2, float y2, std::uint32_t colour, float thickness);
// n segments from (xy[4m], xy[4m+1]) to (xy[4m+2], xy[4m+3]): the same as n
// calls of drawLineF, recorded in one go.
int drawLinesF(const float* xy, int n, std::uint32_t colour, float thickness);
int drawCircle(int x, int y, int radius, std::uint32_t colour, int fill, int thickness);
int drawCircleF(float x, float y, float radius, int segments, std::uint32_t colour, int fill, float thickness);
int drawTriangle(int x1, int y1, int x2, int y2, int x3, int y3, std::uint32_t colour, int fill);
int drawRoundedBoxF(float x1, float y1, float x2, float y2, float radiusX, float radiusY, int segments,
                    std::uint32_t colour, int fill, float thickness);

// ---------------------------------------------------------------- 3D set-up

int setZBuffer(int flag);                                                     // depth test
int setZWrite(int flag);                                                      // depth write
int setLighting(int flag);                                                    // one point light
int setCamera(vec3 position, vec3 target, vec3 up);                           // left-handed world
int setPerspective(float fov);                                                // vertical angle of view [rad]
int setPointLight(vec3 position, float range, float a0, float a1, float a2);  // attenuation a0+a1 d+a2 d^2
int setLightPosition(vec3 position);                                          // moves the light
vec3 worldToScreen(vec3 position);                                            // pixels, z = depth 0..1 inside the view
vec3 screenToWorld(vec3 position);  // depth 0 near, 1 far; (-1,-1,-1) if singular

// ---------------------------------------------------------------- 3D primitives

int drawLine3d(vec3 p1, vec3 p2, std::uint32_t colour);
int drawTriangle3d(vec3 p1, vec3 p2, vec3 p3, std::uint32_t colour, int fill);
int drawCube3d(vec3 p1, vec3 p2, std::uint32_t diffuse, std::uint32_t specular, int fill);
int drawSphere3d(vec3 centre, float radius, int divisions, std::uint32_t diffuse, std::uint32_t specular, int fill);
int drawCapsule3d(vec3 p1, vec3 p2, float radius, int divisions, std::uint32_t diffuse, std::uint32_t specular,
                  int fill);
int drawCone3d(vec3 tip, vec3 base, float radius, int divisions, std::uint32_t diffuse, std::uint32_t specular,
               int fill);
int drawPolygons3d(const vertex3d* vertices, int triangleCount, int image, int transparent);  // 3 per triangle
int drawIndexedPolygons3d(const vertex3d* vertices, int vertexCount, const std::uint16_t* indices, int triangleCount,
                          int image, int transparent);

// ---------------------------------------------------------------- geometry helpers (pure)

hitResult lineTriangleHit(vec3 a, vec3 b, vec3 p1, vec3 p2, vec3 p3);  // segment a-b against a triangle
float segmentDistance(vec3 a1, vec3 a2, vec3 b1, vec3 b2);             // least distance of two segments
float vecLength(vec3 v);                                               // 0 if the square sum is below 1e-7
matrix4 rotationMatrixX(float angle);                                  // about x [rad]
matrix4 rotationMatrixY(float angle);                                  // about y [rad]
matrix4 rotationMatrixZ(float angle);                                  // about z [rad]

// ---------------------------------------------------------------- text

int setFontSize(int size);                       // default font size
int setFontThickness(int thickness);             // default font weight
int setFontFace(const char* name, int charSet);  // default font face
int makeFont(const char* name, int size, int thickness, int type, int charSet, int edgeSize, int italic,
             int reserved);                     // font handle; type 18 anti-aliased
int fontExists(const char* name, int charSet);  // nonzero when that face is available
int deleteFont(int handle);                     // harmless for bad handles
int drawText(int x, int y, const char* text, std::uint32_t colour, int font, std::uint32_t edgeColour,
             int vertical);  // (x, y) top left
int drawTextFormat(int x, int y, std::uint32_t colour, int font, const char* format, ...)
    __attribute__((format(printf, 5, 6)));                                     // printf-style text
int textWidth(const char* format, ...) __attribute__((format(printf, 1, 2)));  // default font [px]
int textWidthInFont(int font, const char* format, ...)
    __attribute__((format(printf, 2, 3)));  // width in a font [px]; 0 for ""

// ---------------------------------------------------------------- keyboard and mouse

int keyDown(int code);                      // 1 while held
int anyKeyDown(int kinds);                  // bits: 1 keyboard, 2 pad, 4 mouse
int readKeyboard(std::uint8_t table[256]);  // 1 per held key code
int mouseButtons();                         // bit 0 left, bit 1 right
int mousePosition(int* x, int* y);          // client pixels
int mouseWheel(int clear);                  // notches since the last clearing call

// ---------------------------------------------------------------- text input fields

int makeTextInput(int maxLength, int cancelValid, int singleByteOnly, int numbersOnly, int doubleOnly,
                  int enableNewLine);                              // returns a handle
int deleteTextInput(int handle);                                   // harmless for bad handles
int activateTextInput(int handle);                                 // keyboard goes to this field
int setTextInputCursor(int position, int handle);                  // cursor position in characters
int setTextInputClip(int x1, int y1, int x2, int y2, int handle);  // visible rectangle
int drawTextInput(int x, int y, int handle, int showCursor);       // draws the field
int textInputState(int handle);                                    // 0 editing, 1 Enter, 2 cancelled
int textInputActive();                                             // 1 while a field takes the keyboard
int getTextInput(char* buffer, int size, int handle);              // copies the text out
int setTextInput(const char* text, int handle);                    // replaces the text
int setTextInputColours(const int colours[17]);                    // -1 keeps a colour
int setTextInputFont(int font);                                    // font of all fields

// ---------------------------------------------------------------- clock

int nowMs();         // milliseconds since an arbitrary start, 31 bits
int waitMs(int ms);  // sleeps; 0 yields

// ---------------------------------------------------------------- backend facts (tests, batch runs)

int drawCallCount();     // draw calls the backend has issued since it started
int layerDrawsPixels();  // 1 when drawing reaches pixels (a renderer runs), else 0

}  // namespace marv
