// Loading pictures for the public operations and packing colours, the same
// in both backends: each backend only turns the pixels into an image of its
// own (see imageMaker in imageFile.h).
#include <algorithm>
#include <cstring>
#include <vector>

#include "layer/imageFile.h"
#include "layer/layer.h"

namespace marv {

namespace {

int pictureKey[3] = {-1, -1, -1};  // colour keyed out of pictures loaded later; -1 for none

bool loadKeyed(const std::string& path, rgbaImage& picture) {
  if (path.empty() || !loadImageFile(path, picture)) return false;
  if (pictureKey[0] >= 0) applyColourKey(picture, pictureKey[0], pictureKey[1], pictureKey[2]);
  return true;
}

}  // namespace

int loadPicture(const char* path, imageMaker make) {
  rgbaImage picture;
  if (path == nullptr || !loadKeyed(path, picture)) return -1;
  return make(picture.width, picture.height, picture.pixels.data());
}

// Cells are copied into images of their own, so that deleting one cell or
// all of them in any order frees exactly what was made.
int loadPictureSet(int id, int count, int columns, int rows, int cellWidth, int cellHeight, int* handles,
                   imageMaker make) {
  if (handles == nullptr || count <= 0) return -1;
  for (int i = 0; i < count; ++i) handles[i] = -1;
  if (columns <= 0 || rows <= 0 || cellWidth <= 0 || cellHeight <= 0 || cellWidth > maxImageSide ||
      cellHeight > maxImageSide)
    return -1;
  rgbaImage sheet;
  if (!loadKeyed(resourcePicturePath(id), sheet)) return -1;
  std::vector<std::uint8_t> cell(static_cast<std::size_t>(cellWidth) * cellHeight * 4);
  int made = 0;
  for (int i = 0; i < count && i < columns * rows; ++i) {
    const int x0 = (i % columns) * cellWidth, y0 = (i / columns) * cellHeight;
    std::fill(cell.begin(), cell.end(), 0);
    const int across = std::clamp(sheet.width - x0, 0, cellWidth);
    for (int y = 0; y < cellHeight && y0 + y < sheet.height && across > 0; ++y) {
      std::memcpy(&cell[static_cast<std::size_t>(y) * cellWidth * 4],
                  &sheet.pixels[(static_cast<std::size_t>(y0 + y) * sheet.width + x0) * 4],
                  static_cast<std::size_t>(across) * 4);
    }
    handles[i] = make(cellWidth, cellHeight, cell.data());
    made += handles[i] >= 0;
  }
  return made == count ? 0 : -1;
}

void resetPictureKey() { pictureKey[0] = pictureKey[1] = pictureKey[2] = -1; }

int setTransparentColour(int r, int g, int b) {
  pictureKey[0] = r & 255;
  pictureKey[1] = g & 255;
  pictureKey[2] = b & 255;
  return 0;
}

std::uint32_t colour(int r, int g, int b) {
  return 0xFF000000u | (static_cast<std::uint32_t>(r & 255) << 16) | (static_cast<std::uint32_t>(g & 255) << 8) |
         static_cast<std::uint32_t>(b & 255);
}

colourRgba makeColourRgba(int r, int g, int b, int a) {
  return {static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b),
          static_cast<std::uint8_t>(a)};
}

}  // namespace marv
