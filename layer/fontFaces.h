// Fonts as both backends know them, on FreeType: the font handles, made
// from the files the face table (faceTable.h) names, and text widths. The headless backend measures text with the very
// faces the window draws, so that layouts agree; the OpenGL backend adds glyph pictures on top (glText.cpp). Never seen
// above the layer.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <unordered_map>

namespace marv::fonts {

struct fontEntry {
  FT_Face face = nullptr;                           // the mapped face
  FT_Face fallback = nullptr;                       // the Japanese face for missing characters, opened on need
  bool fallbackTried = false;                       // the fallback was looked for
  int size = 16;                                    // [px]
  bool synthBold = false;                           // thicken outlines
  int ascent = 12;                                  // baseline below the top [px]
  int lineHeight = 16;                              // [px]
  long serial = 0;                                  // unique per font made, so that a reused handle is told apart
  std::unordered_map<std::uint32_t, int> advances;  // pen advance by code point [px]
  bool live = false;                                // the handle is in use
};

// The live font of a handle; any other handle (failed, deleted, never made)
// stands for the default font. Null when no font file can be opened.
fontEntry* fontOf(int handle);

// Loads a character's outline into the slot of the face that has it (the
// Japanese face for characters the font lacks), bold-thickened when the font
// asks, and with `render` its coverage bitmap. Null when it cannot.
FT_Face loadGlyph(fontEntry& f, std::uint32_t cp, bool render);

int advanceOf(fontEntry& f, std::uint32_t cp);  // [px]
int widthOf(int handle, const char* text);      // UTF-8 text [px]

// Next code point of UTF-8 text at p; advances p. Bad bytes give '?'.
std::uint32_t nextCodePoint(const unsigned char*& p);

// Called before a font's faces go (deleted, or the default font remade), so
// that a backend can drop what it made for the font.
extern void (*fontGoing)(const fontEntry& f);

void stopFonts();  // every font and the library go

}  // namespace marv::fonts
