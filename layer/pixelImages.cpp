// Pixel images, the same in both backends: pictures in memory that the
// bitmap stage reads by the pixel. Only the copy from the draw target is the
// backend's own (captureToPixelImage); it writes through rowsOfPixelImage.
#include <cstring>
#include <vector>

#include "layer/imageFile.h"
#include "layer/layer.h"

namespace marv {

namespace {

struct pixelImage {
  int width = 0;                   // [px]
  int height = 0;                  // [px]
  std::vector<std::uint8_t> rgba;  // width*height*4, rows top-down, zero until captured
  bool live = false;               // the handle is in use
};

std::vector<pixelImage> pixelImages;  // by handle; place 0 stays empty

pixelImage* pixelImageOf(int handle) {
  if (handle < 0 || handle >= static_cast<int>(pixelImages.size()) || !pixelImages[handle].live) return nullptr;
  return &pixelImages[handle];
}

}  // namespace

std::uint8_t* rowsOfPixelImage(int handle, int& width, int& height) {
  pixelImage* p = pixelImageOf(handle);
  width = p ? p->width : 0;
  height = p ? p->height : 0;
  return p ? p->rgba.data() : nullptr;
}

void resetPixelImages() { pixelImages.clear(); }

int makePixelImage(int width, int height) {
  if (width <= 0 || height <= 0 || width > maxImageSide || height > maxImageSide) return -1;
  pixelImage p;
  p.width = width;
  p.height = height;
  p.rgba.assign(static_cast<std::size_t>(width) * height * 4, 0);
  p.live = true;
  if (pixelImages.empty()) pixelImages.emplace_back();
  for (std::size_t i = 1; i < pixelImages.size(); ++i)
    if (!pixelImages[i].live) {
      pixelImages[i] = std::move(p);
      return static_cast<int>(i);
    }
  pixelImages.push_back(std::move(p));
  return static_cast<int>(pixelImages.size()) - 1;
}

int readPixel(int handle, int x, int y, int* r, int* g, int* b, int* a) {
  int px[4] = {0, 0, 0, 0};
  int result = -1;
  const pixelImage* p = pixelImageOf(handle);
  if (p != nullptr && x >= 0 && y >= 0 && x < p->width && y < p->height) {
    const std::size_t at = (static_cast<std::size_t>(y) * p->width + x) * 4;
    for (int c = 0; c < 4; ++c) px[c] = p->rgba[at + c];
    result = 0;
  }
  if (r) *r = px[0];
  if (g) *g = px[1];
  if (b) *b = px[2];
  if (a) *a = px[3];
  return result;
}

int deletePixelImage(int handle) {
  pixelImage* p = pixelImageOf(handle);
  if (p != nullptr) *p = pixelImage{};
  return 0;
}

}  // namespace marv
