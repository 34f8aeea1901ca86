// Internal interface of the OpenGL backend, shared by its files and never
// seen above the layer: the vertex batch, draw targets and textures, and the
// state of the current frame (blend, depth, camera, light, clip).
//
// Every shape function appends vertices to one batch. The batch is drawn in
// one call when the next shape needs another texture, blend, primitive kind,
// space (2D or 3D), lighting, depth or clip state, when the buffer is full,
// and before anything reads or changes the draw target.
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

struct lightState {
  vec3 position{0.0f, 0.0f, 0.0f};  // [world units]
  float range = 1e30f;              // no light beyond [world units]
  float a0 = 1.0f;                  // constant attenuation [-]
  float a1 = 0.0f;                  // linear attenuation [1/unit]
  float a2 = 0.0f;                  // quadratic attenuation [1/unit^2]
};

// The state of the backend. One instance; main thread only.
struct coreState {
  bool ready = false;                               // a GL context is current and the renderer is built
  int width = 1080;                                 // back buffer [px]
  int height = 560;                                 // back buffer [px]
  int target = backBuffer;                          // current draw target
  image backImage;                                  // the back buffer as an off-screen target
  std::vector<image> images;                        // by handle
  float background[4] = {0.0f, 0.0f, 0.0f, 1.0f};   // clear colour [0..1]
  int blendMode = 0;                                // 0 none, 1 alpha
  int blendAmount = 255;                            // [0..255]
  bool zBuffer = false;                             // depth test of 3D shapes
  bool zWrite = false;                              // depth write of 3D shapes
  bool lighting = false;                            // point light on 3D shapes
  cameraState camera;                               // current camera; size follows the draw target
  lightState light;                                 // the point light
  long long drawCalls = 0;                          // draw calls issued since start
  std::vector<vertex> vertices;                     // the batch buffer, allocated once
  int vertexCount = 0;                              // vertices in the batch
  batchKey key;                                     // how the batch is drawn
  unsigned program = 0, vao = 0, vbo = 0, ebo = 0;  // GL objects of the renderer
  int uniforms[16] = {};                            // uniform locations, see glBatch.cpp
};

coreState& core();

// Renderer life: after a context is current / before it goes.
bool startRenderer(int width, int height);
void stopRenderer();

// Makes room for n vertices drawn with key k, flushing first when the key
// differs or the buffer is full, and returns where to write them. Null when
// there is no renderer: the caller draws nothing.
vertex* reserve(const batchKey& k, int n);

// The key for a 2D shape in the current blend state.
batchKey key2d(primitive kind = primitive::triangles);
// The key for a 3D shape in the current depth, light and blend state.
batchKey key3d(primitive kind, bool lit);

// Draws what the batch holds.
void flush();

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

// Colour helpers.
inline void setColour(vertex& v, std::uint32_t c) {
  v.r = static_cast<std::uint8_t>(c >> 16);
  v.g = static_cast<std::uint8_t>(c >> 8);
  v.b = static_cast<std::uint8_t>(c);
  v.a = 255;
}

}  // namespace marv::gl
