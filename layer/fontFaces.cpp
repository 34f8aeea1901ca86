// Fonts of the layer, on FreeType, the same in both backends: font handles
// made from the files that the face table (faceTable.cpp) maps the program's
// face names to, and text widths.
//
// Sections: font table | glyphs | public operations
//
// Widths come from FreeType alone, so they are the same with a window,
// off-screen and headless. Strings are UTF-8; a byte that does not decode
// shows as "?". A character missing from a face is taken from the Japanese
// face when one is installed.
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

#include "layer/faceTable.h"
#include "layer/fontFaces.h"
#include "layer/layer.h"

namespace marv {

using namespace fonts;

namespace {

constexpr int maxFontSize = 400;  // largest font size [px]
constexpr int boldThickness = 6;  // thickness from which a font is bold [-]

// ---------------------------------------------------------------- font table

struct fontTable {
  FT_Library library = nullptr;          // made on the first font
  std::vector<fontEntry> fonts;          // by handle; place 0 stays empty
  long serials = 0;                      // fonts made so far
  std::string defaultFace = "Consolas";  // face of the default font
  int defaultSize = 16;                  // [px]
  int defaultThickness = 4;              // [-]
  int defaultFont = -1;                  // font made from the defaults, or -1 until needed
  bool defaultDirty = true;              // defaults changed since it was made
};

fontTable table;

bool ensureLibrary() {
  if (table.library == nullptr && FT_Init_FreeType(&table.library) != 0) table.library = nullptr;
  return table.library != nullptr;
}

FT_Face openFace(const std::string& file, int size) {
  if (file.empty() || !ensureLibrary()) return nullptr;
  FT_Face face = nullptr;
  if (FT_New_Face(table.library, file.c_str(), 0, &face) != 0) return nullptr;
  if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0) {
    FT_Done_Face(face);
    return nullptr;
  }
  return face;
}

void freeFont(fontEntry& f) {
  if (fontGoing) fontGoing(f);
  if (f.face) FT_Done_Face(f.face);
  if (f.fallback) FT_Done_Face(f.fallback);
  f = fontEntry{};
}

int newFont(const char* name, int size, int thickness) {
  fontEntry f;
  f.size = std::clamp(size > 0 ? size : table.defaultSize, 1, maxFontSize);
  const faceFile file = resolveFace(name, thickness >= boldThickness);
  f.synthBold = file.synthBold;
  f.face = openFace(file.path, f.size);
  if (f.face == nullptr) return -1;
  f.ascent = static_cast<int>(f.face->size->metrics.ascender >> 6);
  f.lineHeight = static_cast<int>(f.face->size->metrics.height >> 6);
  f.serial = ++table.serials;
  f.live = true;
  // Handles start at 1, so that a record still holding 0 names no font.
  if (table.fonts.empty()) table.fonts.emplace_back();
  for (std::size_t i = 1; i < table.fonts.size(); ++i)
    if (!table.fonts[i].live) {
      table.fonts[i] = std::move(f);
      return static_cast<int>(i);
    }
  table.fonts.push_back(std::move(f));
  return static_cast<int>(table.fonts.size()) - 1;
}

}  // namespace

namespace fonts {

void (*fontGoing)(const fontEntry& f) = nullptr;

fontEntry* fontOf(int handle) {
  if (handle >= 0 && handle < static_cast<int>(table.fonts.size()) && table.fonts[handle].live)
    return &table.fonts[handle];
  // Any other handle (failed, deleted, never made) means the default font.
  if (table.defaultDirty || table.defaultFont < 0) {
    if (table.defaultFont >= 0) freeFont(table.fonts[table.defaultFont]);
    table.defaultFont = -1;
    table.defaultDirty = false;
    table.defaultFont = newFont(table.defaultFace.c_str(), table.defaultSize, table.defaultThickness);
  }
  return table.defaultFont >= 0 ? &table.fonts[table.defaultFont] : nullptr;
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
  const auto found = f.advances.find(cp);
  if (found != f.advances.end()) return found->second;
  FT_Face face = loadGlyph(f, cp, false);
  const int advance = face ? static_cast<int>((face->glyph->advance.x + 32) >> 6) : 0;
  if (face) f.advances[cp] = advance;
  return advance;
}

int widthOf(int handle, const char* text) {
  fontEntry* f = fontOf(handle);
  if (f == nullptr || text == nullptr) return 0;
  int w = 0;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p;) w += advanceOf(*f, nextCodePoint(p));
  return w;
}

void stopFonts() {
  for (fontEntry& f : table.fonts) freeFont(f);
  if (table.library) FT_Done_FreeType(table.library);
  table = fontTable{};
}

}  // namespace fonts

namespace {

int formattedWidth(int handle, const char* format, va_list args) {
  if (format == nullptr) return 0;
  char buffer[2048];
  const int n = std::vsnprintf(buffer, sizeof buffer, format, args);
  return n <= 0 ? 0 : widthOf(handle, buffer);
}

}  // namespace

// ---------------------------------------------------------------- public operations

int setFontSize(int size) {
  if (size <= 0) return -1;
  table.defaultSize = std::min(size, maxFontSize);
  table.defaultDirty = true;
  return 0;
}

int setFontThickness(int thickness) {
  table.defaultThickness = thickness;
  table.defaultDirty = true;
  return 0;
}

int setFontFace(const char* name, int) {
  if (name == nullptr) return -1;
  table.defaultFace = name;
  table.defaultDirty = true;
  return 0;
}

int makeFont(const char* name, int size, int thickness, int, int, int, int, int) {
  return newFont(name, size, thickness);
}

// True only for the faces of the table whose own stand-in is installed.
int fontExists(const char* name, int) { return faceInstalled(name) ? 1 : 0; }

int deleteFont(int handle) {
  if (handle >= 0 && handle < static_cast<int>(table.fonts.size()) && table.fonts[handle].live &&
      handle != table.defaultFont) {
    freeFont(table.fonts[handle]);
  }
  return 0;
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
