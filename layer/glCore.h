// Internal interface of the OpenGL backend, shared by its files and never
// seen above the layer: the recorded frame, draw targets and textures, and
// the state of the current frame (blend, depth, camera, light, clip).
//
// Drawing is lazy. Every shape function records its vertices (filled boxes
// as compact box records) into the pending frame, a list of commands, each a
// run of primitives with one key, target and camera, or a clear. Nothing
// reaches OpenGL until somebody needs pixels: the window's present, a screen
// copy, a pixel read, a JPEG, a font atlas or image that is about to go.
// Then the whole list is rasterised in order (flush). A clear makes the
// pending commands of its target that nobody has read since dead, so a
// frame that is cleared without being looked at costs only its recording.
#pragma once

#define GL_GLEXT_PROTOTYPES
#include <GL/glcorearb.h>

#include <cstdint>
#include <string>
#include <vector>

#include "layer/camera.h"
#include "layer/imageFile.h"
#include "layer/layer.h"

namespace marv::gl {

// One vertex as the shaders read it, 40 bytes.
struct vertex {
  float x = 0.0f, y = 0.0f, z = 0.0f;               // position [px in 2D, world units in 3D]
  float nx = 0.0f, ny = 0.0f, nz = 0.0f;            // normal [-]; zero for unlit shapes
  std::uint8_t r = 255, g = 255, b = 255, a = 255;  // diffuse colour [0..255]
  std::uint8_t sr = 0, sg = 0, sb = 0, sa = 0;      // specular colour [0..255]
  float u = 0.0f, v = 0.0f;                         // texture coordinates [-]
};

// Quads are four corners in order round the shape, drawn as two triangles
// through a fixed index list: a third fewer vertices than triangles.
enum class primitive : int { triangles = 0, lines = 1, quads = 2 };

// Everything that decides how a run of vertices is drawn; vertices with the
// same key share a draw call.
struct batchKey {
  primitive kind = primitive::triangles;  // triangles or lines
  unsigned texture = 0;                   // GL texture name, 0 for plain colour
  bool textureAlpha = false;              // texture alpha counts (transparent drawing)
  bool glyphs = false;                    // texture holds glyph coverage in its red channel
  bool is3d = false;                      // world coordinates through the camera
  bool lit = false;                       // point light applies
  bool depthTest = false;                 // compare against the depth buffer
  bool depthWrite = false;                // write the depth buffer
  int alphaAmount = 255;                  // blend amount of mode 1 [0..255]
  int clip[4] = {0, 0, -1, -1};           // x1 y1 x2 y2 clip rectangle [px]; x2 < x1 for none
};

bool operator==(const batchKey& a, const batchKey& b);

// An image: a texture, and for draw targets a framebuffer with depth.
struct image {
  int width = 0;             // [px]
  int height = 0;            // [px]
  unsigned texture = 0;      // GL texture name; 0 with no renderer
  unsigned framebuffer = 0;  // GL framebuffer name; 0 unless a draw target
  unsigned depth = 0;        // GL renderbuffer name of the depth buffer
  bool live = false;         // the handle is in use
};

// A filled axis-aligned box as recorded: corners [px] and packed colour.
struct boxRecord {
  float x1 = 0.0f, y1 = 0.0f, x2 = 0.0f, y2 = 0.0f;
  std::uint32_t colour = 0;
};

struct lightState {
  vec3 position{0.0f, 0.0f, 0.0f};  // [world units]
  float range = 1e30f;              // no light beyond [world units]
  float a0 = 1.0f;                  // constant attenuation [-]
  float a1 = 0.0f;                  // linear attenuation [1/unit]
  float a2 = 0.0f;                  // quadratic attenuation [1/unit^2]
};

// What a run of primitives is drawn with, fixed when the run is recorded.
struct drawUniforms {
  matrix4 matrix;    // world or pixels to clip coordinates
  lightState light;  // the point light
  vec3 eye;          // camera position, for the highlight
};

// A textured axis-aligned quad as recorded, a glyph of a text: corners
// [px], texture corners [-] and packed colour.
struct glyphRecord {
  float x1 = 0.0f, y1 = 0.0f, x2 = 0.0f, y2 = 0.0f;
  float u1 = 0.0f, v1 = 0.0f, u2 = 0.0f, v2 = 0.0f;
  std::uint32_t colour = 0;
};

// A smoothed segment as recorded: ends [px], width [px] and packed colour;
// three quads (core and two fading fringes) when rasterised.
struct lineRecord {
  float x1 = 0.0f, y1 = 0.0f, x2 = 0.0f, y2 = 0.0f;
  float width = 1.0f;
  std::uint32_t colour = 0;
};

constexpr int lineRecordVertices = 12;  // vertices of a rasterised line record

enum class commandKind : int { clear = 0, vertices = 1, boxes = 2, glyphs = 3, lines = 4, later = 5 };

// A drawing left for the moment the frame is rasterised (drawLater).
struct laterDrawing {
  void (*draw)(const void* context) = nullptr;
  alignas(16) unsigned char context[drawLaterContextSize] = {};
  // The drawing state when it was recorded, which its primitives are made in.
  int blendMode = 0, blendAmount = 255;
  bool zBuffer = false, zWrite = false, lighting = false;
  cameraState camera;
  lightState light;
};

constexpr int maxBoxesPerCommand = 49152;  // boxes of one draw call: 196608 vertices

// One command of the pending frame.
struct command {
  commandKind kind = commandKind::vertices;
  int target = backBuffer;   // draw target handle
  batchKey key;              // how its primitives are drawn
  int first = 0;             // first vertex or box record
  int count = 0;             // vertices or box records
  unsigned serial = 0;       // state serial when recorded; a change starts a new command
  bool live = true;          // false once a later clear of its target made it pointless
  float background[4] = {};  // colour of a clear
  drawUniforms uniforms;     // of a draw
  int uploadFirst = 0;       // first vertex in the upload, set while rasterising
  bool opaque = false;       // every vertex fully opaque, set while rasterising
  // A run of many boxes is painted into the box sheet (a texture) and drawn
  // as one picture: set while rasterising.
  bool asPicture = false;
  int pictureRect[4] = {};  // x1 y1 x2 y2 of the painted pixels in the target [px]
  int sheetRow = 0;         // first row of its pixels in the box sheet
  int laterIndex = -1;      // its drawing in coreState::later, for a later command
};

// The state of the backend. One instance; main thread only.
struct coreState {
  bool ready = false;                                    // a GL context is current and the renderer is built
  int width = 1080;                                      // back buffer [px]
  int height = 560;                                      // back buffer [px]
  int target = backBuffer;                               // current draw target
  image backImage;                                       // the back buffer as an off-screen target
  std::vector<image> images;                             // by handle
  float background[4] = {0.0f, 0.0f, 0.0f, 1.0f};        // clear colour [0..1]
  int blendMode = 0;                                     // 0 none, 1 alpha
  int blendAmount = 255;                                 // [0..255]
  bool zBuffer = false;                                  // depth test of 3D shapes
  bool zWrite = false;                                   // depth write of 3D shapes
  bool lighting = false;                                 // point light on 3D shapes
  cameraState camera;                                    // current camera; size follows the draw target
  lightState light;                                      // the point light
  long long drawCalls = 0;                               // draw calls issued since start
  std::vector<command> commands;                         // the pending frame, in order
  std::vector<vertex> vertices;                          // pending vertices; grows, never shrinks
  int vertexCount = 0;                                   // of them in use
  std::vector<boxRecord> boxes;                          // pending box records; grows, never shrinks
  int boxCount = 0;                                      // of them in use
  std::vector<glyphRecord> glyphs;                       // pending glyph records; grows, never shrinks
  int glyphCount = 0;                                    // of them in use
  std::vector<lineRecord> lines;                         // pending line records; grows, never shrinks
  int lineCount = 0;                                     // of them in use
  std::vector<vertex> upload;                            // vertices of one rasterisation
  int bufferCapacity = 0;                                // vertices the GL buffer holds
  unsigned serial = 1;                                   // bumped by every change of drawing state
  unsigned programs[4] = {}, vao = 0, vbo = 0, ebo = 0;  // GL objects of the renderer
  int uniforms[4][16] = {};                              // uniform locations of each program, see glBatch.cpp
  unsigned boxSheet = 0;                                 // texture of the painted box runs
  int boxSheetWidth = 0, boxSheetHeight = 0;             // its size [px]
  std::vector<std::uint32_t> boxPixels;                  // its pixels while they are painted
  int boxSheetRowLength = 0;                             // pixels a row of boxPixels
  std::vector<laterDrawing> later;                       // drawings of the pending frame left for its rasterisation
  bool expandingLater = false;                           // they are being made: nothing is rasterised meanwhile
  int currentShader = -1;                                // the program in use
};

// Inline: the recording of a box or a glyph asks for it every time.
extern coreState coreInstance;
inline coreState& core() { return coreInstance; }

// Renderer life: after a context is current / before it goes.
bool startRenderer(int width, int height);
void stopRenderer();

// Makes room for n vertices drawn with key k in the pending frame and
// returns where to write them (valid until the next reserve). Null when there
// is no renderer: the caller draws nothing.
vertex* reserve(const batchKey& k, int n);
// Makes room for n glyph records drawn with key k (a quads key) and returns
// where to write them (valid until the next reserve); null as reserve.
glyphRecord* reserveGlyphs(const batchKey& k, int n);
// The same for line records.
lineRecord* reserveLines(const batchKey& k, int n);
// The lineRecordVertices vertices of a line record (glShapes2d.cpp).
void writeLineRecord(vertex* v, const lineRecord& r);
// Records one filled box in the current 2D state (inline below: a frame
// records one per mesh cell).
inline void recordBox(float x1, float y1, float x2, float y2, std::uint32_t colour);
// The same when a new command or more room is needed.
void recordBoxSlow(float x1, float y1, float x2, float y2, std::uint32_t colour);
// Something that decides how later primitives are drawn has changed.
inline void stateChanged();

// The key for a 2D shape in the current blend state.
batchKey key2d(primitive kind = primitive::triangles);
// The key for a 3D shape in the current depth, light and blend state.
batchKey key3d(primitive kind, bool lit);

// Rasterises the pending frame and empties it.
void flush();
// drawLater and finishLaterDrawings of the OpenGL backend.
int recordLaterDrawing(void (*draw)(const void*), const void* context, int size);
void makeLaterDrawings();
// Forgets the pending commands of the current target that nobody reads, and
// records a clear of it.
void recordClear();

// Binds the framebuffer of the current target and sets the viewport.
void bindTarget();
// Image of a live handle (or the back buffer for backBuffer); null otherwise.
image* imageOf(int handle);
// Reads a rectangle of the current target into rows top-down RGBA; the
// rectangle is clipped to the target and may come back smaller.
bool readTarget(int x1, int y1, int x2, int y2, std::vector<std::uint8_t>& rgba, int& w, int& h);

// GL objects of an image: texture (and framebuffer with depth when asked).
bool makeImageObjects(image& img, const std::uint8_t* rgba, bool drawTarget);
void freeImageObjects(image& img);

// Text parts (glText.cpp) over the renderer. A font handle that is not live
// stands for the default font. Vertical text stands upright, one character
// below the other, each a line height lower.
int drawTextRun(int x, int y, const char* text, std::uint32_t colour, int font, int clip[4], bool vertical = false);
// The same, first in edgeColour (when not null) one pixel off in each of the
// eight directions, the glyphs laid out once for all copies.
int drawTextRunEdged(int x, int y, const char* text, std::uint32_t colour, const std::uint32_t* edgeColour, int font,
                     int clip[4], bool vertical);
int textWidthOf(int font, const char* text);  // [px]
int textHeightOf(int font);                   // line height [px]
void stopFonts();

// Set by the small file an executable links: true for the off-screen
// context without a window (tests, batch runs), false for the window.
extern const bool startsOffscreen;

// Window side (window.cpp): the back buffer size changed.
void resizeBackBuffer(int width, int height);

// Puts a new object into the first free place of its table and returns the
// handle. Handles start at 1: a record whose handle field still holds 0
// never names a live object, so deleting 0 is always harmless.
template <class T>
int addToTable(std::vector<T>& table, T item) {
  if (table.empty()) table.emplace_back();  // place 0 stays empty
  item.live = true;
  for (std::size_t i = 1; i < table.size(); ++i)
    if (!table[i].live) {
      table[i] = std::move(item);
      return static_cast<int>(i);
    }
  table.push_back(std::move(item));
  return static_cast<int>(table.size()) - 1;
}

inline void stateChanged() { ++core().serial; }

// The four corners of a textured quad, in order round it, white.
inline void writeQuad(vertex* v, const float* xs, const float* ys, const float* us, const float* vs) {
  for (int corner = 0; corner < 4; ++corner) {
    v[corner] = vertex{};
    v[corner].x = xs[corner];
    v[corner].y = ys[corner];
    v[corner].u = us[corner];
    v[corner].v = vs[corner];
  }
}

inline void recordBox(float x1, float y1, float x2, float y2, std::uint32_t colour) {
  coreState& s = core();
  // The usual case: box after box in the same state, with room to spare.
  if (!s.commands.empty()) {
    command& last = s.commands.back();
    if (last.kind == commandKind::boxes && last.serial == s.serial && last.live &&
        s.boxCount < static_cast<int>(s.boxes.size()) && last.count < maxBoxesPerCommand) {
      s.boxes[s.boxCount++] = boxRecord{x1, y1, x2, y2, colour};
      ++last.count;
      return;
    }
  }
  recordBoxSlow(x1, y1, x2, y2, colour);
}

// Colour helpers.
inline void setColour(vertex& v, std::uint32_t c) {
  v.r = static_cast<std::uint8_t>(c >> 16);
  v.g = static_cast<std::uint8_t>(c >> 8);
  v.b = static_cast<std::uint8_t>(c);
  v.a = 255;
}

}  // namespace marv::gl
