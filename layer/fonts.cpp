// Fonts and text of the OpenGL backend, on FreeType: font handles made from
// the files that the face table (fontFaces.cpp) maps names to, text widths
// and text drawing from a glyph atlas per font.
//
// Sections: font table | glyphs | public operations
//
// Widths come from FreeType alone, so they are true even without a
// renderer. Strings are UTF-8; a byte that does not decode shows as "?". A
// character missing from a face is taken from the Japanese face when one is
// installed.
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "layer/fontFaces.h"
#include "layer/glCore.h"

namespace marv {

using namespace gl;

namespace {

constexpr int atlasSide = 1024;   // glyph atlas of a font [px]
constexpr int maxFontSize = 400;  // largest font size [px]
constexpr int boldThickness = 6;  // thickness from which a font is bold [-]

// ---------------------------------------------------------------- font table

struct glyph {
  int x = 0, y = 0, w = 0, h = 0;  // place in the atlas [px]
  int left = 0, top = 0;           // offset of the bitmap from pen and baseline [px]
  int advance = 0;                 // pen advance [px]
  bool fromFallback = false;       // taken from the Japanese face
};

struct fontEntry {
  FT_Face face = nullptr;                           // the mapped face
  FT_Face fallback = nullptr;                       // the Japanese face for missing characters, opened on need
  bool fallbackTried = false;                       // the fallback was looked for
  int size = 16;                                    // [px]
  bool synthBold = false;                           // thicken outlines
  int ascent = 12;                                  // baseline below the top [px]
  std::unordered_map<std::uint32_t, glyph> glyphs;  // by code point
  unsigned atlas = 0;                               // GL texture, made on the first drawing
  int penX = 0, penY = 0, rowHeight = 0;            // free place in the atlas [px]
  bool live = false;                                // the handle is in use
};

struct fontState {
  FT_Library library = nullptr;          // made on the first font
  std::vector<fontEntry> fonts;          // by handle
  std::string defaultFace = "Consolas";  // face of the default font
  int defaultSize = 16;                  // [px]
  int defaultThickness = 4;              // [-]
  int defaultFont = -1;                  // font made from the defaults, or -1 until needed
  bool defaultDirty = true;              // defaults changed since it was made
};

fontState fonts;

bool ensureLibrary() {
  if (fonts.library == nullptr && FT_Init_FreeType(&fonts.library) != 0) fonts.library = nullptr;
  return fonts.library != nullptr;
}

FT_Face openFace(const std::string& file, int size) {
  if (file.empty() || !ensureLibrary()) return nullptr;
  FT_Face face = nullptr;
  if (FT_New_Face(fonts.library, file.c_str(), 0, &face) != 0) return nullptr;
  if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0) {
    FT_Done_Face(face);
    return nullptr;
  }
  return face;
}

void freeFont(fontEntry& f) {
  if (f.atlas != 0 && core().ready) glDeleteTextures(1, &f.atlas);
  if (f.face) FT_Done_Face(f.face);
  if (f.fallback) FT_Done_Face(f.fallback);
  f = fontEntry{};
}

int newFont(const char* name, int size, int thickness) {
  fontEntry f;
  f.size = std::clamp(size > 0 ? size : fonts.defaultSize, 1, maxFontSize);
  const faceFile file = resolveFace(name, thickness >= boldThickness);
  f.synthBold = file.synthBold;
  f.face = openFace(file.path, f.size);
  if (f.face == nullptr) return -1;
  f.ascent = static_cast<int>(f.face->size->metrics.ascender >> 6);
  return addToTable(fonts.fonts, std::move(f));
}

fontEntry* fontOf(int handle) {
  if (handle >= 0 && handle < static_cast<int>(fonts.fonts.size()) && fonts.fonts[handle].live)
    return &fonts.fonts[handle];
  // Any other handle (failed, deleted, never made) means the default font.
  if (fonts.defaultDirty || fonts.defaultFont < 0) {
    if (fonts.defaultFont >= 0) freeFont(fonts.fonts[fonts.defaultFont]);
    fonts.defaultFont = -1;
    fonts.defaultDirty = false;
    fonts.defaultFont = newFont(fonts.defaultFace.c_str(), fonts.defaultSize, fonts.defaultThickness);
  }
  return fonts.defaultFont >= 0 ? &fonts.fonts[fonts.defaultFont] : nullptr;
}

// Next code point of UTF-8 text at p; advances p. Bad bytes give '?'.
std::uint32_t nextCodePoint(const unsigned char*& p) {
  const unsigned c = *p++;
  if (c < 0x80) return c;
  int extra = 0;
  std::uint32_t cp = 0;
  if ((c & 0xE0) == 0xC0) {
    extra = 1;
    cp = c & 0x1F;
  } else if ((c & 0xF0) == 0xE0) {
    extra = 2;
    cp = c & 0x0F;
  } else if ((c & 0xF8) == 0xF0) {
    extra = 3;
    cp = c & 0x07;
  } else {
    return '?';
  }
  for (int i = 0; i < extra; ++i) {
    if ((*p & 0xC0) != 0x80) return '?';
    cp = (cp << 6) | (*p++ & 0x3F);
  }
  return cp > 0x10FFFF ? '?' : cp;
}

// ---------------------------------------------------------------- glyphs

// Loads a glyph's metrics (and with `render` its bitmap into the slot).
FT_Face loadGlyph(fontEntry& f, std::uint32_t cp, bool render) {
  FT_Face face = f.face;
  if (FT_Get_Char_Index(face, cp) == 0 && cp >= 0x80) {
    if (!f.fallbackTried) {
      f.fallbackTried = true;
      f.fallback = openFace(japaneseFallbackFace(), f.size);
    }
    if (f.fallback && FT_Get_Char_Index(f.fallback, cp) != 0) face = f.fallback;
  }
  if (FT_Load_Char(face, cp, FT_LOAD_DEFAULT) != 0) return nullptr;
  if (f.synthBold) FT_GlyphSlot_Embolden(face->glyph);
  if (render && FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) != 0) return nullptr;
  return face;
}

int advanceOf(fontEntry& f, std::uint32_t cp) {
  const auto found = f.glyphs.find(cp);
  if (found != f.glyphs.end()) return found->second.advance;
  FT_Face face = loadGlyph(f, cp, false);
  return face ? static_cast<int>((face->glyph->advance.x + 32) >> 6) : 0;
}

// The glyph with its bitmap in the atlas; an empty glyph when it cannot be
// made. A full atlas is emptied and filled again from the next glyph on.
const glyph* glyphOf(fontEntry& f, std::uint32_t cp) {
  const auto found = f.glyphs.find(cp);
  if (found != f.glyphs.end()) return &found->second;
  if (f.atlas == 0) {
    glGenTextures(1, &f.atlas);
    glBindTexture(GL_TEXTURE_2D, f.atlas);
    std::vector<std::uint8_t> zero(static_cast<std::size_t>(atlasSide) * atlasSide, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, atlasSide, atlasSide, 0, GL_RED, GL_UNSIGNED_BYTE, zero.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  }
  glyph g;
  FT_Face face = loadGlyph(f, cp, true);
  if (face == nullptr) return &(f.glyphs[cp] = g);
  const FT_Bitmap& bm = face->glyph->bitmap;
  g.advance = static_cast<int>((face->glyph->advance.x + 32) >> 6);
  g.left = face->glyph->bitmap_left;
  g.top = face->glyph->bitmap_top;
  g.w = static_cast<int>(bm.width);
  g.h = static_cast<int>(bm.rows);
  if (g.w > 0 && g.h > 0 && g.w < atlasSide && g.h < atlasSide) {
    if (f.penX + g.w + 1 > atlasSide) {
      f.penX = 0;
      f.penY += f.rowHeight + 1;
      f.rowHeight = 0;
    }
    if (f.penY + g.h + 1 > atlasSide) {
      flush();  // the batch may use glyphs that are about to go
      f.glyphs.clear();
      f.penX = f.penY = f.rowHeight = 0;
    }
    g.x = f.penX;
    g.y = f.penY;
    f.penX += g.w + 1;
    f.rowHeight = std::max(f.rowHeight, g.h);
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
    glBindTexture(GL_TEXTURE_2D, f.atlas);
    glTexSubImage2D(GL_TEXTURE_2D, 0, g.x, g.y, g.w, g.h, GL_RED, GL_UNSIGNED_BYTE, rows.data());
  } else {
    g.w = g.h = 0;
  }
  return &(f.glyphs[cp] = g);
}

int widthOf(int handle, const char* text) {
  fontEntry* f = fontOf(handle);
  if (f == nullptr || text == nullptr) return 0;
  int w = 0;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p;) w += advanceOf(*f, nextCodePoint(p));
  return w;
}

int formattedWidth(int handle, const char* format, va_list args) {
  if (format == nullptr) return 0;
  char buffer[2048];
  const int n = std::vsnprintf(buffer, sizeof buffer, format, args);
  return n <= 0 ? 0 : widthOf(handle, buffer);
}

}  // namespace

namespace gl {

int drawTextRun(int x, int y, const char* text, std::uint32_t colour, int font, int clip[4], bool vertical) {
  fontEntry* f = fontOf(font);
  if (f == nullptr || text == nullptr) return -1;
  if (!core().ready) return 0;
  float penX = static_cast<float>(x);
  float baseline = static_cast<float>(y + f->ascent);
  const float lineHeight = static_cast<float>(f->face->size->metrics.height >> 6);
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p;) {
    const std::uint32_t cp = nextCodePoint(p);
    if (cp == '\n' || cp == '\r') continue;
    const glyph* g = glyphOf(*f, cp);
    if (g->w > 0) {
      batchKey k = key2d(primitive::quads);
      k.texture = f->atlas;
      k.glyphs = true;
      if (clip) std::copy(clip, clip + 4, k.clip);
      vertex* v = reserve(k, 4);
      if (v == nullptr) return 0;
      // Vertical text centres each character on the column's middle.
      const float across = vertical ? 0.5f * static_cast<float>(f->size - g->advance) : 0.0f;
      const float x0 = penX + across + static_cast<float>(g->left), y0 = baseline - static_cast<float>(g->top);
      const float x1 = x0 + static_cast<float>(g->w), y1 = y0 + static_cast<float>(g->h);
      const float s = 1.0f / static_cast<float>(atlasSide);
      const float u0 = static_cast<float>(g->x) * s, v0 = static_cast<float>(g->y) * s;
      const float u1 = static_cast<float>(g->x + g->w) * s, v1 = static_cast<float>(g->y + g->h) * s;
      const float xs[4] = {x0, x1, x1, x0}, ys[4] = {y0, y0, y1, y1};
      const float us[4] = {u0, u1, u1, u0}, vs[4] = {v0, v0, v1, v1};
      for (int i = 0; i < 4; ++i) {
        v[i] = vertex{};
        v[i].x = xs[i];
        v[i].y = ys[i];
        v[i].u = us[i];
        v[i].v = vs[i];
        setColour(v[i], colour);
      }
    }
    if (vertical)
      baseline += lineHeight;
    else
      penX += static_cast<float>(g->advance);
  }
  return 0;
}

void stopFonts() {
  for (fontEntry& f : fonts.fonts) freeFont(f);
  if (fonts.library) FT_Done_FreeType(fonts.library);
  fonts = fontState{};
}

int textHeightOf(int font) {
  fontEntry* f = fontOf(font);
  return f ? static_cast<int>(f->face->size->metrics.height >> 6) : 0;
}

int textWidthOf(int font, const char* text) { return widthOf(font, text); }

}  // namespace gl

// ---------------------------------------------------------------- public operations

int setFontSize(int size) {
  if (size <= 0) return -1;
  fonts.defaultSize = std::min(size, maxFontSize);
  fonts.defaultDirty = true;
  return 0;
}

int setFontThickness(int thickness) {
  fonts.defaultThickness = thickness;
  fonts.defaultDirty = true;
  return 0;
}

int setFontFace(const char* name, int) {
  if (name == nullptr) return -1;
  fonts.defaultFace = name;
  fonts.defaultDirty = true;
  return 0;
}

int makeFont(const char* name, int size, int thickness, int, int, int, int, int) {
  return newFont(name, size, thickness);
}

// True only for the faces of the table whose own stand-in is installed.
int fontExists(const char* name, int) { return faceInstalled(name) ? 1 : 0; }

int deleteFont(int handle) {
  if (handle >= 0 && handle < static_cast<int>(fonts.fonts.size()) && fonts.fonts[handle].live &&
      handle != fonts.defaultFont) {
    flush();  // the batch may still use its atlas
    freeFont(fonts.fonts[handle]);
  }
  return 0;
}

int drawText(int x, int y, const char* text, std::uint32_t colour, int font, std::uint32_t edgeColour, int vertical) {
  if (text == nullptr) return -1;
  if (edgeColour != 0) {
    // An edge of one pixel: the text in the edge colour around the place.
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx)
        if (dx != 0 || dy != 0) drawTextRun(x + dx, y + dy, text, edgeColour, font, nullptr, vertical != 0);
  }
  return drawTextRun(x, y, text, colour, font, nullptr, vertical != 0);
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

int textWidth(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int w = formattedWidth(-1, format, args);
  va_end(args);
  return w;
}

int textWidthInFont(int font, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int w = formattedWidth(font, format, args);
  va_end(args);
  return w;
}

}  // namespace marv
