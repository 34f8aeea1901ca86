// Text in the OpenGL backend: a glyph atlas per font, filled on first use
// from the shared FreeType faces (fontTable.cpp), and text runs drawn from
// it. Widths and line heights come from the shared fonts alone, so they are
// the same headless.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "layer/fontFaces.h"
#include "layer/glCore.h"

namespace marv {

using namespace gl;

namespace {

constexpr int atlasSide = 1024;  // glyph atlas of a font [px]

struct glyph {
  int x = 0, y = 0, w = 0, h = 0;  // place in the atlas [px]
  int left = 0, top = 0;           // offset of the bitmap from pen and baseline [px]
  int advance = 0;                 // pen advance [px]
};

struct atlas {
  unsigned texture = 0;                             // GL texture of coverage in red
  unsigned edgeTexture = 0;                         // the same places: coverage of the one-pixel edge
  std::unordered_map<std::uint32_t, glyph> glyphs;  // by code point
  std::array<const glyph*, 128> ascii{};            // the same for code points below 128, null until made
  int penX = 1, penY = 1, rowHeight = 0;            // free place [px]
  unsigned emptied = 0;                             // times the atlas was emptied to make room
};

// A glyph of a run laid out: its quad relative to the run's place and its
// place in the atlas.
struct placedGlyph {
  float x0 = 0.0f, y0 = 0.0f, x1 = 0.0f, y1 = 0.0f;  // [px]
  float u0 = 0.0f, v0 = 0.0f, u1 = 0.0f, v1 = 0.0f;  // [-]
};

// The glyphs of the run being drawn; grows, never shrinks.
std::vector<placedGlyph> placed;

// Atlases by the serial of their font.
std::unordered_map<long, atlas> atlases;

void dropAtlas(const fonts::fontEntry& f) {
  const auto found = atlases.find(f.serial);
  if (found == atlases.end()) return;
  if (found->second.texture != 0 && core().ready) {
    flush();  // the batch may still use it
    glDeleteTextures(1, &found->second.texture);
    glDeleteTextures(1, &found->second.edgeTexture);
  }
  atlases.erase(found);
}

atlas& atlasOf(const fonts::fontEntry& f) {
  fonts::fontGoing = dropAtlas;
  atlas& a = atlases[f.serial];
  if (a.texture == 0) {
    const std::vector<std::uint8_t> zero(static_cast<std::size_t>(atlasSide) * atlasSide, 0);
    for (unsigned* texture : {&a.texture, &a.edgeTexture}) {
      glGenTextures(1, texture);
      glBindTexture(GL_TEXTURE_2D, *texture);
      glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, atlasSide, atlasSide, 0, GL_RED, GL_UNSIGNED_BYTE, zero.data());
      glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
      glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
  }
  return a;
}

// The glyph with its bitmap in the atlas; an empty glyph when it cannot be
// made. A full atlas is emptied and filled again from the next glyph on.
const glyph* remember(atlas& a, std::uint32_t cp, const glyph& g) {
  const glyph* kept = &(a.glyphs[cp] = g);  // map nodes stay where they are until cleared
  if (cp < a.ascii.size()) a.ascii[cp] = kept;
  return kept;
}

// The edge of a glyph of w x h coverage values: the glyph drawn once at
// each of the eight places one pixel around, as one coverage of w + 2 x
// h + 2. Eight copies blended one over the other leave
// 1 - (1 - a1)(1 - a2)...(1 - a8) of their colour.
std::vector<std::uint8_t> edgeOf(const std::vector<std::uint8_t>& rows, int w, int h) {
  std::vector<std::uint8_t> edge(static_cast<std::size_t>(w + 2) * (h + 2));
  for (int y = 0; y < h + 2; ++y)
    for (int x = 0; x < w + 2; ++x) {
      float clear = 1.0f;  // share of the pixel no copy covers
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
          const int sx = x - 1 - dx, sy = y - 1 - dy;
          if ((dx == 0 && dy == 0) || sx < 0 || sy < 0 || sx >= w || sy >= h) continue;
          clear *= 1.0f - static_cast<float>(rows[static_cast<std::size_t>(sy) * w + sx]) / 255.0f;
        }
      edge[static_cast<std::size_t>(y) * (w + 2) + x] = static_cast<std::uint8_t>((1.0f - clear) * 255.0f + 0.5f);
    }
  return edge;
}

const glyph* glyphOf(fonts::fontEntry& f, atlas& a, std::uint32_t cp) {
  if (cp < a.ascii.size() && a.ascii[cp] != nullptr) return a.ascii[cp];
  const auto found = a.glyphs.find(cp);
  if (found != a.glyphs.end()) return &found->second;
  glyph g;
  FT_Face face = fonts::loadGlyph(f, cp, true);
  if (face == nullptr) return remember(a, cp, g);
  const FT_Bitmap& bm = face->glyph->bitmap;
  g.advance = static_cast<int>((face->glyph->advance.x + 32) >> 6);
  g.left = face->glyph->bitmap_left;
  g.top = face->glyph->bitmap_top;
  g.w = static_cast<int>(bm.width);
  g.h = static_cast<int>(bm.rows);
  // Glyphs keep two pixels apart and one from the atlas's border, so that
  // each one's edge, a pixel wider all round, has its own pixels.
  if (g.w > 0 && g.h > 0 && g.w < atlasSide - 2 && g.h < atlasSide - 2) {
    if (a.penX + g.w + 1 > atlasSide) {
      a.penX = 1;
      a.penY += a.rowHeight + 2;
      a.rowHeight = 0;
    }
    if (a.penY + g.h + 1 > atlasSide) {
      flush();  // the batch may use glyphs that are about to go
      a.glyphs.clear();
      a.ascii.fill(nullptr);
      ++a.emptied;
      a.penX = a.penY = 1;
      a.rowHeight = 0;
    }
    g.x = a.penX;
    g.y = a.penY;
    a.penX += g.w + 2;
    a.rowHeight = std::max(a.rowHeight, g.h);
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(g.w) * g.h);
    const int pitch = bm.pitch;
    for (int y = 0; y < g.h; ++y) {
      const unsigned char* src = pitch >= 0 ? bm.buffer + y * pitch : bm.buffer + (g.h - 1 - y) * -pitch;
      if (bm.pixel_mode == FT_PIXEL_MODE_GRAY)
        std::memcpy(&rows[static_cast<std::size_t>(y) * g.w], src, g.w);
      else if (bm.pixel_mode == FT_PIXEL_MODE_MONO)
        for (int x = 0; x < g.w; ++x)
          rows[static_cast<std::size_t>(y) * g.w + x] = (src[x >> 3] >> (7 - (x & 7))) & 1 ? 255 : 0;
    }
    glBindTexture(GL_TEXTURE_2D, a.texture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, g.x, g.y, g.w, g.h, GL_RED, GL_UNSIGNED_BYTE, rows.data());
    const std::vector<std::uint8_t> edge = edgeOf(rows, g.w, g.h);
    glBindTexture(GL_TEXTURE_2D, a.edgeTexture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, g.x - 1, g.y - 1, g.w + 2, g.h + 2, GL_RED, GL_UNSIGNED_BYTE, edge.data());
  } else {
    g.w = g.h = 0;
  }
  return remember(a, cp, g);
}

// Lays the glyphs of text out relative to the pen at (0, 0) into `placed`
// and returns their count.
int layOut(fonts::fontEntry& f, atlas& a, const char* text, bool vertical) {
  int n = 0;
  float penX = 0.0f, baseline = static_cast<float>(f.ascent);
  const float lineHeight = static_cast<float>(f.lineHeight);
  const float s = 1.0f / static_cast<float>(atlasSide);
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p;) {
    const std::uint32_t cp = fonts::nextCodePoint(p);
    if (cp == '\n' || cp == '\r') continue;
    const glyph* g = glyphOf(f, a, cp);
    if (g->w > 0) {
      if (n == static_cast<int>(placed.size())) placed.resize(placed.size() * 2 + 64);
      placedGlyph& q = placed[n++];
      // Vertical text centres each character on the column's middle.
      const float across = vertical ? 0.5f * static_cast<float>(f.size - g->advance) : 0.0f;
      q.x0 = penX + across + static_cast<float>(g->left), q.y0 = baseline - static_cast<float>(g->top);
      q.x1 = q.x0 + static_cast<float>(g->w), q.y1 = q.y0 + static_cast<float>(g->h);
      q.u0 = static_cast<float>(g->x) * s, q.v0 = static_cast<float>(g->y) * s;
      q.u1 = static_cast<float>(g->x + g->w) * s, q.v1 = static_cast<float>(g->y + g->h) * s;
    }
    if (vertical)
      baseline += lineHeight;
    else
      penX += static_cast<float>(g->advance);
  }
  return n;
}

// The laid-out glyphs as glyph records with the pen at (x, y); grown by
// `grow` pixels all round (the edge: 1).
bool emit(const batchKey& k, int n, int x, int y, std::uint32_t colour, int grow = 0) {
  constexpr int chunk = 4096;  // glyphs of one reservation
  const float fx = static_cast<float>(x), fy = static_cast<float>(y);
  const float d = static_cast<float>(grow), du = d / static_cast<float>(atlasSide);
  for (int first = 0; first < n; first += chunk) {
    const int count = std::min(chunk, n - first);
    glyphRecord* r = reserveGlyphs(k, count);
    if (r == nullptr) return false;
    for (int i = 0; i < count; ++i) {
      const placedGlyph& q = placed[first + i];
      r[i] = glyphRecord{fx + q.x0 - d, fy + q.y0 - d, fx + q.x1 + d, fy + q.y1 + d, q.u0 - du,
                         q.v0 - du,     q.u1 + du,     q.v1 + du,     colour};
    }
  }
  return true;
}

}  // namespace

namespace gl {

int drawTextRun(int x, int y, const char* text, std::uint32_t colour, int font, int clip[4], bool vertical) {
  return drawTextRunEdged(x, y, text, colour, nullptr, font, clip, vertical);
}

int drawTextRunEdged(int x, int y, const char* text, std::uint32_t colour, const std::uint32_t* edgeColour, int font,
                     int clip[4], bool vertical) {
  fonts::fontEntry* f = fonts::fontOf(font);
  if (f == nullptr || text == nullptr) return -1;
  if (!core().ready) return 0;
  atlas& a = atlasOf(*f);
  // A run that fills the atlas empties it on the way and loses the glyphs
  // laid out before: the second pass finds the atlas with room.
  const unsigned emptied = a.emptied;
  int n = layOut(*f, a, text, vertical);
  if (a.emptied != emptied) n = layOut(*f, a, text, vertical);
  if (n == 0) return 0;
  batchKey k = key2d(primitive::quads);
  k.texture = a.texture;
  k.glyphs = true;
  if (clip) std::copy(clip, clip + 4, k.clip);
  if (edgeColour != nullptr) {
    batchKey edge = k;
    edge.texture = a.edgeTexture;
    if (!emit(edge, n, x, y, *edgeColour, 1)) return 0;
  }
  emit(k, n, x, y, colour);
  return 0;
}

void stopFonts() {
  fonts::fontGoing = dropAtlas;
  fonts::stopFonts();
  atlases.clear();
}

int textHeightOf(int font) {
  const fonts::fontEntry* f = fonts::fontOf(font);
  return f ? f->lineHeight : 0;
}

int textWidthOf(int font, const char* text) { return fonts::widthOf(font, text); }

}  // namespace gl

int drawText(int x, int y, const char* text, std::uint32_t colour, int font, std::uint32_t edgeColour, int vertical) {
  if (text == nullptr) return -1;
  // An edge of one pixel: the text in the edge colour at the eight places
  // around, drawn as one pass from the edge atlas, then the text.
  return drawTextRunEdged(x, y, text, colour, edgeColour != 0 ? &edgeColour : nullptr, font, nullptr, vertical != 0);
}

int drawTextFormat(int x, int y, std::uint32_t colour, int font, const char* format, ...) {
  if (format == nullptr) return -1;
  char buffer[2048];
  va_list args;
  va_start(args, format);
  const int n = std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  if (n < 0) return -1;
  return drawTextRun(x, y, buffer, colour, font, nullptr);
}

}  // namespace marv
