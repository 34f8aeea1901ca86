// The renderer of the OpenGL backend: one shader program for every shape,
// the pending frame and its rasterisation, draw targets as framebuffers, and
// the frame state operations (draw target, clear, blend, depth).
//
// Sections: shaders | renderer life | recording | rasterising | targets and images | frame control
//
// Everything is drawn into framebuffers whose rows run top-down, as the
// pixels of the layer do: row 0 is the top of the picture. Reading back and
// copying between images then needs no flipping; only present() flips when
// it copies the back buffer to the window.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "layer/glCore.h"

namespace marv::gl {

namespace {

// Vertices of one draw call: 49152 boxes, 65536 triangles [-].
constexpr int batchCapacity = 196608;
// Pending vertices (and box records) beyond which the frame is rasterised
// before it grows further: 160 MB of vertices, 40 MB of boxes.
constexpr int pendingVertexLimit = 1 << 22;
constexpr int pendingBoxLimit = 1 << 21;
constexpr float ambientShare = 0.3f;  // light every lit surface gets without the lamp [-]

enum uniformSlot { uMatrix, uLit, uLightPos, uAtten, uEye, uTextured, uTexAlpha, uGlyphs, uAlphaScale, uTex };

const char* vertexSource = R"(#version 330 core
layout(location = 0) in vec3 aPos;
layout(location = 1) in vec3 aNormal;
layout(location = 2) in vec4 aColour;
layout(location = 3) in vec4 aSpecular;
layout(location = 4) in vec2 aUv;
uniform mat4 uMatrix;
uniform int uLit;
uniform vec3 uLightPos;
uniform vec4 uAtten;  // a0, a1, a2, range
uniform vec3 uEye;
uniform float uAmbient;
out vec4 vColour;
out vec2 vUv;
void main() {
  gl_Position = uMatrix * vec4(aPos, 1.0);
  vUv = aUv;
  vColour = aColour;
  float nl = length(aNormal);
  if (uLit != 0 && nl > 0.0) {
    // Two-sided: the normal is turned toward the eye, so planes drawn in
    // either winding are lit on the side that is seen.
    vec3 n = aNormal / nl;
    vec3 toEye = uEye - aPos;
    if (dot(n, toEye) < 0.0) n = -n;
    vec3 toLight = uLightPos - aPos;
    float d = length(toLight);
    vec3 l = d > 0.0 ? toLight / d : n;
    float att = d > uAtten.w ? 0.0 : min(1.0, 1.0 / max(uAtten.x + uAtten.y * d + uAtten.z * d * d, 1e-6));
    float diffuse = max(dot(n, l), 0.0);
    float eyeLength = length(toEye);
    vec3 e = eyeLength > 0.0 ? toEye / eyeLength : n;
    float specular = diffuse > 0.0 ? pow(max(dot(n, normalize(l + e)), 0.0), 16.0) : 0.0;
    vColour.rgb = aColour.rgb * (uAmbient + (1.0 - uAmbient) * diffuse * att) + aSpecular.rgb * (0.4 * specular * att);
  }
}
)";

const char* fragmentSource = R"(#version 330 core
in vec4 vColour;
in vec2 vUv;
uniform int uTextured;
uniform int uTexAlpha;
uniform int uGlyphs;
uniform float uAlphaScale;
uniform sampler2D uTex;
out vec4 fragColour;
void main() {
  vec4 c = vColour;
  if (uTextured != 0) {
    vec4 t = texture(uTex, vUv);
    if (uGlyphs != 0) t = vec4(1.0, 1.0, 1.0, t.r);
    else if (uTexAlpha == 0) t.a = 1.0;
    c *= t;
  }
  c.a *= uAlphaScale;
  if (c.a <= 0.0) discard;
  fragColour = c;
}
)";

// The two shapes that fill most of a 2D picture's pixels, each without the
// branches and the discard of the general shader: the software rasteriser
// then shades a pixel in a fraction of the time. A discarded fragment and a
// blended fragment of alpha 0 leave the same pixel when no depth is
// written, which is when these are used.
const char* flatFragmentSource = R"(#version 330 core
in vec4 vColour;
out vec4 fragColour;
void main() { fragColour = vColour; }
)";

const char* glyphFragmentSource = R"(#version 330 core
in vec4 vColour;
in vec2 vUv;
uniform sampler2D uTex;
out vec4 fragColour;
void main() { fragColour = vec4(vColour.rgb, vColour.a * texture(uTex, vUv).r); }
)";

// Runs of many boxes (the contour) are painted on the processor into a
// sheet and drawn as one picture with this shader: the rasteriser then fills
// the picture's pixels at the speed of a copy, where thousands of thin boxes
// would cost it a triangle set-up each.
const char* pictureFragmentSource = R"(#version 330 core
in vec2 vUv;
uniform sampler2D uTex;
out vec4 fragColour;
void main() { fragColour = texture(uTex, vUv); }
)";

enum shaderKind { generalShader, flatShader, glyphShader, pictureShader };

// Box runs of fewer boxes than this are drawn as triangles.
constexpr int pictureMinBoxes = 16;
// Largest box sheet [px]: runs beyond it are drawn as triangles.
constexpr int boxSheetLimit = 8192;

coreState& state = coreInstance;

unsigned compileShader(GLenum kind, const char* source) {
  const GLuint s = glCreateShader(kind);
  glShaderSource(s, 1, &source, nullptr);
  glCompileShader(s);
  GLint ok = 0;
  glGetShaderiv(s, GL_COMPILE_STATUS, &ok);
  if (!ok) {
    char log[1024] = {};
    glGetShaderInfoLog(s, sizeof log, nullptr, log);
    std::fprintf(stderr, "marvanesse: shader does not compile: %s\n", log);
    glDeleteShader(s);
    return 0;
  }
  return s;
}

// Pixels to clip coordinates, rows top-down: x 0..w to -1..1, y 0..h to -1..1.
matrix4 pixelMatrix(int width, int height) {
  matrix4 m;
  m.m[0][0] = 2.0f / static_cast<float>(width);
  m.m[0][3] = -1.0f;
  m.m[1][1] = 2.0f / static_cast<float>(height);
  m.m[1][3] = -1.0f;
  return m;
}

// The uniforms a run of primitives recorded now is drawn with: the camera
// (3D) or the pixel grid (2D) of the current target, and the light.
drawUniforms uniformsNow(const batchKey& k) {
  drawUniforms u;
  const image* target = imageOf(state.target);
  const int w = target ? target->width : state.width;
  const int h = target ? target->height : state.height;
  if (k.is3d) {
    cameraState cam = state.camera;
    cam.width = w;
    cam.height = h;
    u.matrix = multiply(projectionMatrix(cam), viewMatrix(cam));
  } else {
    u.matrix = pixelMatrix(w, h);
  }
  u.light = state.light;
  u.eye = state.camera.position;
  return u;
}

// The shader a command is drawn with: a shape untextured, unlit and at full
// strength goes to the flat one, a glyph run to the glyph one, unless it
// writes depth and could hold transparent pixels (those must be discarded).
shaderKind shaderFor(const command& c) {
  if (c.asPicture) return pictureShader;
  const batchKey& k = c.key;
  const bool plain = !k.lit && k.alphaAmount == 255 && (!k.depthWrite || c.opaque);
  if (plain && k.texture == 0) return flatShader;
  if (plain && k.glyphs && !k.depthWrite) return glyphShader;
  return generalShader;
}

void applyCommand(const command& c, shaderKind shader) {
  const batchKey& k = c.key;
  const int* uniforms = state.uniforms[shader];
  if (state.currentShader != shader) {
    glUseProgram(state.programs[shader]);
    state.currentShader = shader;
  }
  // Blending an opaque pixel gives the pixel itself; without it the
  // rasteriser writes the colour straight away.
  if (c.opaque && (shader == flatShader || shader == pictureShader)) {
    glDisable(GL_BLEND);
  } else {
    glEnable(GL_BLEND);
  }
  glUniformMatrix4fv(uniforms[uMatrix], 1, GL_TRUE, &c.uniforms.matrix.m[0][0]);
  if (shader == generalShader) {
    glUniform1i(uniforms[uLit], k.lit ? 1 : 0);
    if (k.lit) {
      const lightState& l = c.uniforms.light;
      glUniform3f(uniforms[uLightPos], l.position.x, l.position.y, l.position.z);
      glUniform4f(uniforms[uAtten], l.a0, l.a1, l.a2, l.range);
      const vec3 e = c.uniforms.eye;
      glUniform3f(uniforms[uEye], e.x, e.y, e.z);
    }
    glUniform1i(uniforms[uTextured], k.texture != 0 ? 1 : 0);
    glUniform1i(uniforms[uTexAlpha], k.textureAlpha ? 1 : 0);
    glUniform1i(uniforms[uGlyphs], k.glyphs ? 1 : 0);
    glUniform1f(uniforms[uAlphaScale], static_cast<float>(k.alphaAmount) / 255.0f);
  }
  glBindTexture(GL_TEXTURE_2D, c.asPicture ? state.boxSheet : k.texture);
  if (k.depthTest) {
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
  } else {
    glDisable(GL_DEPTH_TEST);
  }
  glDepthMask(k.depthWrite ? GL_TRUE : GL_FALSE);
  if (k.clip[2] >= k.clip[0]) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(k.clip[0], k.clip[1], k.clip[2] - k.clip[0], k.clip[3] - k.clip[1]);
  } else {
    glDisable(GL_SCISSOR_TEST);
  }
}

// Binds the framebuffer of a target handle; false when it is gone.
bool bindHandle(int handle) {
  image* target = imageOf(handle);
  if (target == nullptr || target->framebuffer == 0) return false;
  glBindFramebuffer(GL_FRAMEBUFFER, target->framebuffer);
  glViewport(0, 0, target->width, target->height);
  return true;
}

// Starts a new command at the end of the pending frame.
command& startCommand(commandKind kind, const batchKey& k, int first) {
  command c;
  c.kind = kind;
  c.target = state.target;
  c.key = k;
  c.first = first;
  c.serial = state.serial;
  if (kind != commandKind::clear) c.uniforms = uniformsNow(k);
  state.commands.push_back(c);
  return state.commands.back();
}

template <class T>
void growTo(std::vector<T>& v, std::size_t n) {
  if (v.size() < n) v.resize(std::max(n, 2 * v.size()));
}

}  // namespace

coreState coreInstance;

bool operator==(const batchKey& a, const batchKey& b) {
  return a.kind == b.kind && a.texture == b.texture && a.textureAlpha == b.textureAlpha && a.glyphs == b.glyphs &&
         a.is3d == b.is3d && a.lit == b.lit && a.depthTest == b.depthTest && a.depthWrite == b.depthWrite &&
         a.alphaAmount == b.alphaAmount && a.clip[0] == b.clip[0] && a.clip[1] == b.clip[1] && a.clip[2] == b.clip[2] &&
         a.clip[3] == b.clip[3];
}

// ---------------------------------------------------------------- renderer life

// Links the shared vertex shader with one fragment shader and finds the
// uniforms (a location of -1 where that shader has none; GL ignores those).
bool linkShader(shaderKind kind, const char* fragment) {
  const GLuint vs = compileShader(GL_VERTEX_SHADER, vertexSource);
  const GLuint fs = compileShader(GL_FRAGMENT_SHADER, fragment);
  if (vs == 0 || fs == 0) {
    glDeleteShader(vs);
    glDeleteShader(fs);
    return false;
  }
  const GLuint program = glCreateProgram();
  state.programs[kind] = program;
  glAttachShader(program, vs);
  glAttachShader(program, fs);
  glLinkProgram(program);
  glDeleteShader(vs);
  glDeleteShader(fs);
  GLint linked = 0;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  if (!linked) return false;
  glUseProgram(program);
  const char* names[] = {"uMatrix",   "uLit",      "uLightPos", "uAtten",      "uEye",
                         "uTextured", "uTexAlpha", "uGlyphs",   "uAlphaScale", "uTex"};
  for (int i = 0; i <= uTex; ++i) state.uniforms[kind][i] = glGetUniformLocation(program, names[i]);
  glUniform1i(state.uniforms[kind][uTex], 0);
  glUniform1f(glGetUniformLocation(program, "uAmbient"), ambientShare);
  state.currentShader = kind;
  return true;
}

bool startRenderer(int width, int height) {
  if (!linkShader(flatShader, flatFragmentSource) || !linkShader(glyphShader, glyphFragmentSource) ||
      !linkShader(pictureShader, pictureFragmentSource) || !linkShader(generalShader, fragmentSource))
    return false;

  glGenVertexArrays(1, &state.vao);
  glBindVertexArray(state.vao);
  glGenBuffers(1, &state.vbo);
  glBindBuffer(GL_ARRAY_BUFFER, state.vbo);
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(batchCapacity * sizeof(vertex)), nullptr, GL_STREAM_DRAW);
  state.bufferCapacity = batchCapacity;
  const GLsizei stride = sizeof(vertex);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(offsetof(vertex, x)));
  glEnableVertexAttribArray(1);
  glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(offsetof(vertex, nx)));
  glEnableVertexAttribArray(2);
  glVertexAttribPointer(2, 4, GL_UNSIGNED_BYTE, GL_TRUE, stride, reinterpret_cast<void*>(offsetof(vertex, r)));
  glEnableVertexAttribArray(3);
  glVertexAttribPointer(3, 4, GL_UNSIGNED_BYTE, GL_TRUE, stride, reinterpret_cast<void*>(offsetof(vertex, sr)));
  glEnableVertexAttribArray(4);
  glVertexAttribPointer(4, 2, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(offsetof(vertex, u)));

  // Indices of the quads: corners 0 1 2 and 0 2 3 of every four vertices.
  std::vector<GLuint> indices(static_cast<std::size_t>(batchCapacity / 4) * 6);
  for (GLuint q = 0; q < static_cast<GLuint>(batchCapacity / 4); ++q) {
    const GLuint corner[6] = {0, 1, 2, 0, 2, 3};
    for (int i = 0; i < 6; ++i) indices[q * 6 + i] = 4 * q + corner[i];
  }
  glGenBuffers(1, &state.ebo);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, state.ebo);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(GLuint)), indices.data(),
               GL_STATIC_DRAW);

  glEnable(GL_BLEND);
  glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  state.vertices.assign(batchCapacity, vertex{});
  state.vertexCount = 0;
  state.boxCount = 0;
  state.glyphCount = 0;
  state.lineCount = 0;
  state.commands.clear();
  state.ready = true;
  resizeBackBuffer(width, height);
  return state.backImage.framebuffer != 0;
}

void stopRenderer() {
  // Nobody will see the pending frame: drawings left for it are dropped
  // unmade (what they point to may be gone already).
  state.later.clear();
  stopFonts();
  if (state.ready) {
    for (image& img : state.images) freeImageObjects(img);
    freeImageObjects(state.backImage);
    glDeleteBuffers(1, &state.vbo);
    glDeleteBuffers(1, &state.ebo);
    glDeleteVertexArrays(1, &state.vao);
    for (unsigned program : state.programs) glDeleteProgram(program);
    if (state.boxSheet != 0) glDeleteTextures(1, &state.boxSheet);
  }
  state = coreState{};
}

// ---------------------------------------------------------------- batch

batchKey key2d(primitive kind) {
  batchKey k;
  k.kind = kind;
  k.alphaAmount = state.blendMode == 1 ? state.blendAmount : 255;
  return k;
}

batchKey key3d(primitive kind, bool lit) {
  batchKey k = key2d(kind);
  k.is3d = true;
  k.lit = lit && state.lighting;
  k.depthTest = state.zBuffer;
  k.depthWrite = state.zBuffer && state.zWrite;
  return k;
}

vertex* reserve(const batchKey& k, int n) {
  if (!state.ready || n <= 0 || n > batchCapacity) return nullptr;
  if (state.vertexCount + n > pendingVertexLimit) flush();
  command* last = state.commands.empty() ? nullptr : &state.commands.back();
  const bool joins = last != nullptr && last->kind == commandKind::vertices && last->live &&
                     last->serial == state.serial && last->count + n <= batchCapacity && last->key == k;
  if (!joins) last = &startCommand(commandKind::vertices, k, state.vertexCount);
  growTo(state.vertices, static_cast<std::size_t>(state.vertexCount) + n);
  vertex* at = state.vertices.data() + state.vertexCount;
  state.vertexCount += n;
  last->count += n;
  return at;
}

namespace {

// Room for n records of one kind in their own list, joined to the last
// command when it is of that kind, key and state.
template <class T>
T* reserveRecords(commandKind kind, std::vector<T>& list, int& used, const batchKey& k, int n, int perCommand) {
  if (!state.ready || n <= 0 || n > perCommand) return nullptr;
  if (used + n > pendingBoxLimit) flush();
  command* last = state.commands.empty() ? nullptr : &state.commands.back();
  const bool joins = last != nullptr && last->kind == kind && last->live && last->serial == state.serial &&
                     last->count + n <= perCommand && last->key == k;
  if (!joins) last = &startCommand(kind, k, used);
  growTo(list, static_cast<std::size_t>(used) + n);
  T* at = list.data() + used;
  used += n;
  last->count += n;
  return at;
}

}  // namespace

glyphRecord* reserveGlyphs(const batchKey& k, int n) {
  return reserveRecords(commandKind::glyphs, state.glyphs, state.glyphCount, k, n, maxBoxesPerCommand);
}

lineRecord* reserveLines(const batchKey& k, int n) {
  return reserveRecords(commandKind::lines, state.lines, state.lineCount, k, n, batchCapacity / lineRecordVertices);
}

void recordBoxSlow(float x1, float y1, float x2, float y2, std::uint32_t colour) {
  if (!state.ready) return;
  if (state.boxCount >= pendingBoxLimit) flush();
  command* last = state.commands.empty() ? nullptr : &state.commands.back();
  if (last == nullptr || last->kind != commandKind::boxes || !last->live || last->serial != state.serial ||
      last->count >= maxBoxesPerCommand)
    last = &startCommand(commandKind::boxes, key2d(primitive::quads), state.boxCount);
  growTo(state.boxes, static_cast<std::size_t>(state.boxCount) + 1);
  state.boxes[state.boxCount++] = boxRecord{x1, y1, x2, y2, colour};
  ++last->count;
}

namespace {

// The state a later drawing's primitives are made in, kept and put back.
void keepDrawState(laterDrawing& d) {
  d.blendMode = state.blendMode, d.blendAmount = state.blendAmount;
  d.zBuffer = state.zBuffer, d.zWrite = state.zWrite, d.lighting = state.lighting;
  d.camera = state.camera, d.light = state.light;
}
void putDrawState(const laterDrawing& d) {
  state.blendMode = d.blendMode, state.blendAmount = d.blendAmount;
  state.zBuffer = d.zBuffer, state.zWrite = d.zWrite, state.lighting = d.lighting;
  state.camera = d.camera, state.light = d.light;
}

}  // namespace

// Makes the drawings left for now, each in its place: its primitives are
// recorded into an empty command list with the target and blending it was
// recorded with, then take its place. Meanwhile nothing is rasterised (the
// record limits are let go).
void makeLaterDrawings() {
  // Commands of drawings dropped unmade (the renderer stopping) go too.
  if (std::none_of(state.commands.begin(), state.commands.end(),
                   [](const command& c) { return c.kind == commandKind::later; }))
    return;
  std::vector<command> pending, made;
  pending.swap(state.commands);
  made.reserve(pending.size());
  // The drawing state now, restored afterwards: the target and the rest as a
  // later drawing records them.
  const int target = state.target;
  laterDrawing now;
  keepDrawState(now);
  state.expandingLater = true;
  for (const command& c : pending) {
    if (c.kind != commandKind::later) {
      made.push_back(c);
      continue;
    }
    if (!c.live || c.laterIndex < 0 || c.laterIndex >= static_cast<int>(state.later.size())) continue;
    const laterDrawing d = state.later[c.laterIndex];
    state.target = c.target;
    putDrawState(d);
    stateChanged();
    d.draw(d.context);
    made.insert(made.end(), state.commands.begin(), state.commands.end());
    state.commands.clear();
  }
  state.expandingLater = false;
  state.target = target;
  putDrawState(now);
  stateChanged();
  state.commands.swap(made);
  state.later.clear();
}

int recordLaterDrawing(void (*draw)(const void*), const void* context, int size) {
  if (draw == nullptr || size < 0 || size > drawLaterContextSize) return -1;
  // Without a renderer nothing would be drawn; while the drawings left for
  // the rasterisation are made, one more is made at once.
  if (!state.ready || state.expandingLater) {
    draw(context);
    return 0;
  }
  laterDrawing d;
  d.draw = draw;
  if (size > 0) std::memcpy(d.context, context, static_cast<std::size_t>(size));
  keepDrawState(d);
  command& c = startCommand(commandKind::later, batchKey{}, 0);
  c.laterIndex = static_cast<int>(state.later.size());
  state.later.push_back(d);
  stateChanged();  // what follows starts a command of its own
  return 0;
}

void recordClear() {
  if (!state.ready) return;
  const image* target = imageOf(state.target);
  const unsigned texture = target != nullptr && state.target != backBuffer ? target->texture : 0;
  // Commands after the last one that samples this target's picture draw
  // into pixels that the clear overwrites before anyone sees them.
  int lastRead = -1;
  if (texture != 0)
    for (int i = static_cast<int>(state.commands.size()) - 1; i >= 0; --i)
      if (state.commands[i].live && state.commands[i].key.texture == texture) {
        lastRead = i;
        break;
      }
  bool anyLive = false;
  for (int i = 0; i < static_cast<int>(state.commands.size()); ++i) {
    command& c = state.commands[i];
    if (i > lastRead && c.target == state.target) c.live = false;
    anyLive = anyLive || c.live;
  }
  if (!anyLive) {
    state.commands.clear();
    state.later.clear();
    state.vertexCount = 0;
    state.boxCount = 0;
    state.glyphCount = 0;
    state.lineCount = 0;
  }
  command& c = startCommand(commandKind::clear, batchKey{}, 0);
  std::copy(state.background, state.background + 4, c.background);
  stateChanged();
}

// ---------------------------------------------------------------- rasterising

namespace {

// Vertices a command draws once its records are expanded.
int verticesOf(const command& c) {
  if (c.asPicture) return 4;
  switch (c.kind) {
    case commandKind::vertices: return c.count;
    case commandKind::lines: return lineRecordVertices * c.count;
    case commandKind::clear:
    case commandKind::later: return 0;
    default: return 4 * c.count;
  }
}

// A box corner as a pixel column or row from 0 to limit (the target's
// side): whole pixels, as drawBox and drawBoxRow record them.
int pixelWithin(float v, int limit) { return static_cast<int>(std::clamp(v, 0.0f, static_cast<float>(limit))); }

// Chooses the box runs drawn as pictures, paints them into the box sheet
// and uploads it. A run qualifies with many boxes at full strength (blended
// boxes would blend where they overlap). Each takes the rows of its
// bounding rectangle, clipped to its target; pixels no box covers stay
// transparent, and a run that covers all of its rectangle is opaque.
void paintBoxSheet() {
  int width = 0, height = 0;
  for (command& c : state.commands) {
    c.asPicture = false;
    if (!c.live || c.kind != commandKind::boxes || c.count < pictureMinBoxes || c.key.alphaAmount != 255) continue;
    const image* target = imageOf(c.target);
    if (target == nullptr) continue;
    float x1 = 1e30f, y1 = 1e30f, x2 = -1e30f, y2 = -1e30f;
    for (int b = 0; b < c.count; ++b) {
      const boxRecord& r = state.boxes[c.first + b];
      x1 = std::min(x1, r.x1), y1 = std::min(y1, r.y1), x2 = std::max(x2, r.x2), y2 = std::max(y2, r.y2);
    }
    const int rect[4] = {pixelWithin(x1, target->width), pixelWithin(y1, target->height),
                         pixelWithin(x2, target->width), pixelWithin(y2, target->height)};
    const int w = rect[2] - rect[0], h = rect[3] - rect[1];
    if (w <= 0 || h <= 0 || w > boxSheetLimit || height + h > boxSheetLimit) continue;
    c.asPicture = true;
    std::copy(rect, rect + 4, c.pictureRect);
    c.sheetRow = height;
    height += h;
    width = std::max(width, w);
  }
  if (height == 0) return;
  growTo(state.boxPixels, static_cast<std::size_t>(width) * height);
  std::uint32_t* sheet = state.boxPixels.data();
  std::fill(sheet, sheet + static_cast<std::size_t>(width) * height, 0u);
  bool needSheet = false;
  for (command& c : state.commands) {
    if (!c.asPicture) continue;
    const int* rect = c.pictureRect;
    // Boxes have whole-pixel corners (drawBox, drawBoxRow): a box covers the
    // pixels from x1 to x2 - 1, the same as the rasteriser fills.
    for (int b = 0; b < c.count; ++b) {
      const boxRecord& r = state.boxes[c.first + b];
      const int bx1 = std::max(pixelWithin(r.x1, rect[2]), rect[0]), bx2 = pixelWithin(r.x2, rect[2]);
      const int by1 = std::max(pixelWithin(r.y1, rect[3]), rect[1]), by2 = pixelWithin(r.y2, rect[3]);
      if (bx2 <= bx1) continue;
      const std::uint32_t rgba =
          ((r.colour >> 16) & 255u) | (r.colour & 0xFF00u) | ((r.colour & 255u) << 16) | 0xFF000000u;
      for (int y = by1; y < by2; ++y) {
        std::uint32_t* row = sheet + static_cast<std::size_t>(c.sheetRow + y - rect[1]) * width - rect[0];
        std::fill(row + bx1, row + bx2, rgba);
      }
    }
    bool covered = true;
    for (int y = 0; y < rect[3] - rect[1] && covered; ++y) {
      const std::uint32_t* row = sheet + static_cast<std::size_t>(c.sheetRow + y) * width;
      covered = std::find(row, row + (rect[2] - rect[0]), 0u) == row + (rect[2] - rect[0]);
    }
    c.opaque = covered;
    const image* target = imageOf(c.target);
    needSheet |= !covered || target == nullptr || target->texture == 0;
  }
  state.boxSheetRowLength = width;
  // Opaque pictures go straight into their targets' pixels (flush); the
  // sheet texture is needed only for pictures with holes, or for a target
  // without pixels of its own to write to.
  if (!needSheet) return;
  if (state.boxSheet == 0) glGenTextures(1, &state.boxSheet);
  glBindTexture(GL_TEXTURE_2D, state.boxSheet);
  if (width > state.boxSheetWidth || height > state.boxSheetHeight) {
    state.boxSheetWidth = std::max(width, state.boxSheetWidth);
    state.boxSheetHeight = std::max(height, state.boxSheetHeight);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, state.boxSheetWidth, state.boxSheetHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  }
  glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, sheet);
}

// An opaque picture replaces the pixels of its rectangle: they are written
// into the target's texture, in order with the draws before and after it.
// False when the target has no texture of its own.
bool writePicture(const command& c) {
  const image* target = imageOf(c.target);
  if (target == nullptr || target->texture == 0) return false;
  const int* rect = c.pictureRect;
  glBindTexture(GL_TEXTURE_2D, target->texture);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, state.boxSheetRowLength);
  glTexSubImage2D(GL_TEXTURE_2D, 0, rect[0], rect[1], rect[2] - rect[0], rect[3] - rect[1], GL_RGBA, GL_UNSIGNED_BYTE,
                  state.boxPixels.data() + static_cast<std::size_t>(c.sheetRow) * state.boxSheetRowLength);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  return true;
}

// The vertices of the live commands, records expanded, in one upload.
int buildUpload() {
  paintBoxSheet();
  int total = 0;
  for (const command& c : state.commands)
    if (c.live && c.kind != commandKind::clear) total += verticesOf(c);
  growTo(state.upload, static_cast<std::size_t>(total));
  int at = 0;
  for (command& c : state.commands) {
    if (!c.live || c.kind == commandKind::clear) continue;
    c.uploadFirst = at;
    vertex* v = state.upload.data() + at;
    if (c.asPicture) {  // one quad whose texel centres fall on pixel centres
      const int* rect = c.pictureRect;
      const float sw = static_cast<float>(state.boxSheetWidth), sh = static_cast<float>(state.boxSheetHeight);
      const float xs[4] = {float(rect[0]), float(rect[2]), float(rect[2]), float(rect[0])};
      const float ys[4] = {float(rect[1]), float(rect[1]), float(rect[3]), float(rect[3])};
      const float us[4] = {0.0f, float(rect[2] - rect[0]) / sw, float(rect[2] - rect[0]) / sw, 0.0f};
      const float top = float(c.sheetRow) / sh, bottom = float(c.sheetRow + rect[3] - rect[1]) / sh;
      const float vs[4] = {top, top, bottom, bottom};
      writeQuad(v, xs, ys, us, vs);
      at += 4;
      continue;
    }
    if (c.kind == commandKind::vertices) {
      const vertex* from = state.vertices.data() + c.first;
      std::copy(from, from + c.count, v);
      bool opaque = true;
      for (int i = 0; i < c.count; ++i) opaque &= from[i].a == 255;
      c.opaque = opaque;
      at += c.count;
      continue;
    }
    if (c.kind == commandKind::lines) {
      for (int l = 0; l < c.count; ++l, v += lineRecordVertices) writeLineRecord(v, state.lines[c.first + l]);
      at += lineRecordVertices * c.count;
      continue;
    }
    if (c.kind == commandKind::glyphs) {
      for (int g = 0; g < c.count; ++g, v += 4) {
        const glyphRecord& r = state.glyphs[c.first + g];
        const float xs[4] = {r.x1, r.x2, r.x2, r.x1}, ys[4] = {r.y1, r.y1, r.y2, r.y2};
        const float us[4] = {r.u1, r.u2, r.u2, r.u1}, vs[4] = {r.v1, r.v1, r.v2, r.v2};
        writeQuad(v, xs, ys, us, vs);
        for (int corner = 0; corner < 4; ++corner) setColour(v[corner], r.colour);
      }
      at += 4 * c.count;
      continue;
    }
    c.opaque = true;  // a box's colour has no alpha
    for (int b = 0; b < c.count; ++b, v += 4) {
      const boxRecord& r = state.boxes[c.first + b];
      const float xs[4] = {r.x1, r.x2, r.x2, r.x1}, ys[4] = {r.y1, r.y1, r.y2, r.y2};
      for (int corner = 0; corner < 4; ++corner) {
        v[corner] = vertex{};
        v[corner].x = xs[corner];
        v[corner].y = ys[corner];
        setColour(v[corner], r.colour);
      }
    }
    at += 4 * c.count;
  }
  return total;
}

}  // namespace

void flush() {
  if (!state.ready || state.commands.empty() || state.expandingLater) return;
  makeLaterDrawings();
  const int total = buildUpload();
  glBindVertexArray(state.vao);
  glBindBuffer(GL_ARRAY_BUFFER, state.vbo);
  if (total > state.bufferCapacity) {
    state.bufferCapacity = std::max(total, batchCapacity);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(state.bufferCapacity * sizeof(vertex)), nullptr,
                 GL_STREAM_DRAW);
  }
  if (total > 0)
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(total * sizeof(vertex)), state.upload.data());
  for (const command& c : state.commands) {
    if (!c.live || !bindHandle(c.target)) continue;
    if (c.kind == commandKind::clear) {
      glClearColor(c.background[0], c.background[1], c.background[2], c.background[3]);
      glClearDepth(1.0);
      glDepthMask(GL_TRUE);
      glDisable(GL_SCISSOR_TEST);
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      continue;
    }
    if (c.asPicture && c.opaque && writePicture(c)) continue;
    applyCommand(c, shaderFor(c));
    if (c.key.kind == primitive::quads || c.kind != commandKind::vertices) {
      const int quads = verticesOf(c) / 4;
      glDrawElementsBaseVertex(GL_TRIANGLES, quads * 6, GL_UNSIGNED_INT, nullptr, c.uploadFirst);
    } else {
      glDrawArrays(c.key.kind == primitive::lines ? GL_LINES : GL_TRIANGLES, c.uploadFirst, c.count);
    }
    ++state.drawCalls;
  }
  state.commands.clear();
  state.vertexCount = 0;
  state.boxCount = 0;
  state.glyphCount = 0;
  state.lineCount = 0;
  stateChanged();
  bindTarget();
}

// ---------------------------------------------------------------- targets and images

image* imageOf(int handle) {
  if (handle == backBuffer) return state.backImage.framebuffer != 0 || !state.ready ? &state.backImage : nullptr;
  if (handle < 0 || handle >= static_cast<int>(state.images.size()) || !state.images[handle].live) return nullptr;
  return &state.images[handle];
}

void bindTarget() {
  image* target = imageOf(state.target);
  if (target == nullptr) {
    state.target = backBuffer;
    target = &state.backImage;
  }
  glBindFramebuffer(GL_FRAMEBUFFER, target->framebuffer);
  glViewport(0, 0, target->width, target->height);
}

bool makeImageObjects(image& img, const std::uint8_t* rgba, bool drawTarget) {
  if (!state.ready) return true;
  glGenTextures(1, &img.texture);
  glBindTexture(GL_TEXTURE_2D, img.texture);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, img.width, img.height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
  // Nearest pixel: pictures and cut cells keep hard edges when stretched,
  // and neighbouring cells of a sheet never bleed into each other.
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  if (glGetError() != GL_NO_ERROR) {
    freeImageObjects(img);
    return false;
  }
  if (!drawTarget) return true;
  glGenRenderbuffers(1, &img.depth);
  glBindRenderbuffer(GL_RENDERBUFFER, img.depth);
  glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, img.width, img.height);
  glGenFramebuffers(1, &img.framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, img.framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, img.texture, 0);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, img.depth);
  const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  if (complete) {
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClearDepth(1.0);
    glDepthMask(GL_TRUE);
    glDisable(GL_SCISSOR_TEST);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  }
  bindTarget();
  if (!complete) freeImageObjects(img);
  return complete;
}

void freeImageObjects(image& img) {
  if (state.ready) {
    if (img.framebuffer) glDeleteFramebuffers(1, &img.framebuffer);
    if (img.depth) glDeleteRenderbuffers(1, &img.depth);
    if (img.texture) glDeleteTextures(1, &img.texture);
  }
  img.framebuffer = img.depth = img.texture = 0;
}

bool readTarget(int x1, int y1, int x2, int y2, std::vector<std::uint8_t>& rgba, int& w, int& h) {
  w = h = 0;
  image* target = imageOf(state.target);
  if (!state.ready || target == nullptr) return false;
  flush();
  x1 = std::max(x1, 0);
  y1 = std::max(y1, 0);
  x2 = std::min(x2, target->width);
  y2 = std::min(y2, target->height);
  if (x2 <= x1 || y2 <= y1) return false;
  w = x2 - x1;
  h = y2 - y1;
  rgba.resize(static_cast<std::size_t>(w) * h * 4);
  bindTarget();
  glReadPixels(x1, y1, w, h, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
  return true;
}

}  // namespace marv::gl

namespace marv {

using namespace gl;

// ---------------------------------------------------------------- frame control

int setDrawTarget(int handle) {
  coreState& s = core();
  // Only off-screen images have a framebuffer; without a renderer every
  // live image may stand as a target, as in the headless backend.
  const image* img = imageOf(handle);
  const bool valid = handle == backBuffer || (img != nullptr && (img->framebuffer != 0 || !s.ready));
  if (!valid) return -1;
  if (handle != s.target) stateChanged();
  s.target = handle;
  return 0;
}

int clearDrawTarget() {
  if (!core().ready) return 0;
  if (imageOf(core().target) == nullptr) core().target = backBuffer;
  recordClear();
  return 0;
}

int setBlend(int mode, int amount) {
  coreState& s = core();
  if (mode != 0 && mode != 1) return -1;
  s.blendMode = mode;
  s.blendAmount = amount < 0 ? 0 : (amount > 255 ? 255 : amount);
  stateChanged();
  return 0;
}

int setZBuffer(int flag) {
  core().zBuffer = flag != 0;
  stateChanged();
  return 0;
}

int setZWrite(int flag) {
  core().zWrite = flag != 0;
  stateChanged();
  return 0;
}

int setBackgroundColour(int r, int g, int b, int) {
  // The back buffer is opaque: the fourth value is not a transparency.
  coreState& s = core();
  s.background[0] = static_cast<float>(r & 255) / 255.0f;
  s.background[1] = static_cast<float>(g & 255) / 255.0f;
  s.background[2] = static_cast<float>(b & 255) / 255.0f;
  s.background[3] = 1.0f;
  return 0;
}

int drawCallCount() { return static_cast<int>(core().drawCalls & 0x7FFFFFFF); }

int layerDrawsPixels() { return core().ready ? 1 : 0; }

}  // namespace marv
