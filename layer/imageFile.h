// Image files of the drawing layer: decoding pictures (PNG, BMP) into RGBA
// pixels, writing JPEG files, and finding the program's own pictures. Pure
// CPU work shared by both backends; no GL, no window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace marv {

// Largest picture side the layer accepts from a file [px]; larger files are
// refused before any pixel memory is taken.
constexpr int maxImageSide = 16384;

struct rgbaImage {
  int width = 0;                     // [px]
  int height = 0;                    // [px]
  std::vector<std::uint8_t> pixels;  // width*height*4 bytes, rows top-down, r g b a
};

// Decodes a PNG or BMP file; false (and an empty image) for a missing,
// truncated, malformed, oversized or unsupported file.
bool loadImageFile(const std::string& path, rgbaImage& image);

// Same from bytes in memory.
bool decodeImage(const std::uint8_t* data, std::size_t size, rgbaImage& image);

// Makes every pixel of colour (r, g, b) fully transparent.
void applyColourKey(rgbaImage& image, int r, int g, int b);

// Writes rows top-down of RGBA pixels (stride width*4) as a baseline JPEG.
// quality 1..100; sampling2x1 1 halves the chroma horizontally (4:2:2),
// 0 keeps it full (4:4:4). False when the file cannot be written.
bool writeJpegFile(const std::string& path, const std::uint8_t* rgba, int width, int height, int quality,
                   int sampling2x1);

// Path of picture resource `id` (picture550.png, ...), or "" when the
// program's picture folder holds none.
std::string resourcePicturePath(int id);

// ---------------------------------------------------------------- pictures of the operations (pictures.cpp)

// Makes a backend image of rows top-down RGBA; returns its handle or -1.
using imageMaker = int (*)(int width, int height, const std::uint8_t* rgba);

// loadImage, loadImageResource and loadImageSetResource of both backends:
// the picture decoded, the transparent colour of setTransparentColour keyed
// out, and each picture or cell handed to `make`. Cells run left to right,
// top to bottom; a cell beyond the sheet's edge is transparent black there.
int loadPicture(const char* path, imageMaker make);
int loadPictureSet(int id, int count, int columns, int rows, int cellWidth, int cellHeight, int* handles,
                   imageMaker make);
void resetPictureKey();  // the layer stops: no colour is keyed out

}  // namespace marv
