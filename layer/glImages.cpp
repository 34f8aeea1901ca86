// Images of the OpenGL backend: off-screen targets, screen copies, pictures
// from files and from the program's own picture folder, image drawing,
// pixel images read on the CPU and JPEG output of the draw target.
//
// Sections: handles | making and deleting | pictures | drawing | pixel images | JPEG
//
// Without a renderer (no OpenGL available) images still get handles and
// sizes, so that the logic above them runs unchanged; drawing them does
// nothing and reading pixels gives zeros.
#include <algorithm>
#include <cmath>

#include "layer/glCore.h"

namespace marv {

using namespace gl;

namespace {

constexpr int maxTargetSide = 16384;  // largest image the layer makes [px]

int addImage(image img) { return addToTable(core().images, img); }

int newImage(int width, int height, const std::uint8_t* rgba, bool drawTarget) {
  if (width <= 0 || height <= 0 || width > maxTargetSide || height > maxTargetSide) return -1;
  image img;
  img.width = width;
  img.height = height;
  std::vector<std::uint8_t> blank;
  if (rgba == nullptr) {
    blank.assign(static_cast<std::size_t>(width) * height * 4, 0);
    for (std::size_t i = 3; i < blank.size(); i += 4) blank[i] = 255;
    rgba = blank.data();
  }
  if (!makeImageObjects(img, rgba, drawTarget)) return -1;
  return addImage(img);
}

int pictureImage(int width, int height, const std::uint8_t* rgba) { return newImage(width, height, rgba, false); }

// Appends one textured quad: corners in pixels (clockwise from top left)
// with their texture coordinates.
int texturedQuad(const image& img, const float xs[4], const float ys[4], const float us[4], const float vs[4],
                 int transparent) {
  if (img.texture == 0) return 0;
  batchKey k = key2d(primitive::quads);
  k.texture = img.texture;
  k.textureAlpha = transparent != 0;
  vertex* v = reserve(k, 4);
  if (v == nullptr) return 0;
  writeQuad(v, xs, ys, us, vs);
  return 0;
}

int stretchedQuad(const image& img, float x1, float y1, float x2, float y2, int transparent) {
  const float xs[4] = {x1, x2, x2, x1};
  const float ys[4] = {y1, y1, y2, y2};
  const float us[4] = {0.0f, 1.0f, 1.0f, 0.0f};
  const float vs[4] = {0.0f, 0.0f, 1.0f, 1.0f};
  return texturedQuad(img, xs, ys, us, vs, transparent);
}

}  // namespace

// ---------------------------------------------------------------- making and deleting

int makeOffscreenImage(int width, int height, int) { return newImage(width, height, nullptr, true); }

int makeImage(int width, int height, int) { return newImage(width, height, nullptr, false); }

int captureScreen(int x1, int y1, int x2, int y2, int handle) {
  image* img = imageOf(handle);
  if (img == nullptr || handle == backBuffer || handle == core().target) return -1;
  coreState& s = core();
  if (!s.ready) return 0;
  const image* target = imageOf(s.target);
  if (target == nullptr) return -1;
  flush();
  // Clip the source to the target; the rectangle's corner lands at the
  // image's top left. 64-bit sums: corners may lie anywhere in int's range.
  const long long sx = std::max(x1, 0), sy = std::max(y1, 0);
  const long long dx = sx - x1, dy = sy - y1;
  const long long w = std::min(x2, target->width) - sx, h = std::min(y2, target->height) - sy;
  const long long cw = std::min(w, img->width - dx), ch = std::min(h, img->height - dy);
  if (cw <= 0 || ch <= 0) return 0;
  bindTarget();
  glBindTexture(GL_TEXTURE_2D, img->texture);
  glCopyTexSubImage2D(GL_TEXTURE_2D, 0, GLint(dx), GLint(dy), GLint(sx), GLint(sy), GLsizei(cw), GLsizei(ch));
  return 0;
}

int deleteImage(int handle) {
  if (handle == backBuffer) return 0;
  image* img = imageOf(handle);
  if (img == nullptr) return 0;
  // Pending drawing into it or from it is rasterised first; a frame that
  // does not touch it stays pending.
  for (const command& c : core().commands)
    if (c.live && (c.target == handle || (img->texture != 0 && c.key.texture == img->texture))) {
      flush();
      break;
    }
  if (core().target == handle) core().target = backBuffer;
  freeImageObjects(*img);
  *img = image{};
  return 0;
}

int imageSize(int handle, int* width, int* height) {
  if (handle == backBuffer) {
    if (width) *width = core().width;
    if (height) *height = core().height;
    return 0;
  }
  const image* img = imageOf(handle);
  if (width) *width = img ? img->width : 0;
  if (height) *height = img ? img->height : 0;
  return img ? 0 : -1;
}

// ---------------------------------------------------------------- pictures

int loadImage(const char* path, int) { return loadPicture(path, pictureImage); }

int loadImageResource(int id) {
  const std::string path = resourcePicturePath(id);
  return path.empty() ? -1 : loadImage(path.c_str(), 0);
}

int loadImageSetResource(int id, int count, int columns, int rows, int cellWidth, int cellHeight, int* handles) {
  return loadPictureSet(id, count, columns, rows, cellWidth, cellHeight, handles, pictureImage);
}

// ---------------------------------------------------------------- drawing

int drawImage(int x, int y, int handle, int transparent) {
  const image* img = imageOf(handle);
  if (img == nullptr || handle == backBuffer) return -1;
  return stretchedQuad(*img, float(x), float(y), float(x) + float(img->width), float(y) + float(img->height),
                       transparent);
}

int drawImageStretched(int x1, int y1, int x2, int y2, int handle, int transparent) {
  const image* img = imageOf(handle);
  if (img == nullptr || handle == backBuffer) return -1;
  return stretchedQuad(*img, float(x1), float(y1), float(x2), float(y2), transparent);
}

int drawImageRect(int x, int y, int srcX, int srcY, int width, int height, int handle, int transparent, int flipX,
                  int flipY) {
  const image* img = imageOf(handle);
  if (img == nullptr || handle == backBuffer) return -1;
  if (width <= 0 || height <= 0) return 0;
  const float iw = static_cast<float>(img->width), ih = static_cast<float>(img->height);
  const float fw = float(width), fh = float(height);
  float u0 = float(srcX) / iw, u1 = (float(srcX) + fw) / iw;
  float v0 = float(srcY) / ih, v1 = (float(srcY) + fh) / ih;
  if (flipX) std::swap(u0, u1);
  if (flipY) std::swap(v0, v1);
  const float xs[4] = {float(x), float(x) + fw, float(x) + fw, float(x)};
  const float ys[4] = {float(y), float(y), float(y) + fh, float(y) + fh};
  const float us[4] = {u0, u1, u1, u0};
  const float vs[4] = {v0, v0, v1, v1};
  return texturedQuad(*img, xs, ys, us, vs, transparent);
}

int drawImageRotated(int x, int y, double scale, double angle, int handle, int transparent, int flipX, int flipY) {
  const image* img = imageOf(handle);
  if (img == nullptr || handle == backBuffer) return -1;
  const double hw = 0.5 * img->width * scale, hh = 0.5 * img->height * scale;
  const double c = std::cos(angle), s = std::sin(angle);
  const double cx[4] = {-hw, hw, hw, -hw}, cy[4] = {-hh, -hh, hh, hh};
  float xs[4], ys[4];
  for (int i = 0; i < 4; ++i) {
    // Clockwise on the screen for a positive angle, as y runs downward.
    xs[i] = static_cast<float>(x + c * cx[i] - s * cy[i]);
    ys[i] = static_cast<float>(y + s * cx[i] + c * cy[i]);
  }
  const float u0 = flipX ? 1.0f : 0.0f, u1 = 1.0f - u0, v0 = flipY ? 1.0f : 0.0f, v1 = 1.0f - v0;
  const float us[4] = {u0, u1, u1, u0};
  const float vs[4] = {v0, v0, v1, v1};
  return texturedQuad(*img, xs, ys, us, vs, transparent);
}

// ---------------------------------------------------------------- pixel images

int captureToPixelImage(int x1, int y1, int x2, int y2, int handle) {
  int pw = 0, ph = 0;
  std::uint8_t* rows = rowsOfPixelImage(handle, pw, ph);
  if (rows == nullptr) return -1;
  if (!core().ready) return 0;
  std::vector<std::uint8_t> rgba;
  int w = 0, h = 0;
  if (!readTarget(x1, y1, x2, y2, rgba, w, h)) return 0;
  // The read started at the clipped corner; place it where it lies in the
  // requested rectangle.
  const long long dx = std::max(0LL, -static_cast<long long>(x1)), dy = std::max(0LL, -static_cast<long long>(y1));
  for (int y = 0; y < h && dy + y < ph; ++y)
    for (int x = 0; x < w && dx + x < pw; ++x)
      for (int c = 0; c < 4; ++c)
        rows[(static_cast<std::size_t>(dy + y) * pw + dx + x) * 4 + c] =
            rgba[(static_cast<std::size_t>(y) * w + x) * 4 + c];
  return 0;
}

// ---------------------------------------------------------------- JPEG

int saveScreenJpeg(int x1, int y1, int x2, int y2, const char* path, int quality, int sampling2x1) {
  if (path == nullptr || !core().ready) return -1;
  std::vector<std::uint8_t> rgba;
  int w = 0, h = 0;
  if (!readTarget(x1, y1, x2, y2, rgba, w, h)) return -1;
  return writeJpegFile(path, rgba.data(), w, h, quality, sampling2x1) ? 0 : -1;
}

}  // namespace marv
