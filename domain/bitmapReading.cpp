// Reading boundary bitmaps at the mesh, and the bitmap stage without a
// screen. A bitmap is never read at its own resolution: it is stretched over
// the domain's rectangle and one pixel is taken per node, so a picture of any
// size fills the whole domain and its aspect ratio is ignored. The stretch
// keeps the nearest pixel, so the drawn colours survive unchanged.
#include "domain/bitmapReading.h"

#include <sys/stat.h>
#include <algorithm>
#include <cstdio>

#include "common/textNumbers.h"
#include "domain/bitmapColours.h"
#include "layer/layer.h"

namespace marv {

namespace {

const char* const planeNames[3] = {"XY", "YZ", "ZX"};

// A pixel position from float, saturating at +-2^26 (NaN gives 0).
int toPixel(float v) {
  constexpr float limit = 67108864.0f;
  if (!(v == v)) return 0;
  return static_cast<int>(std::clamp(v, -limit, limit));
}

bool fileExists(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

// Whether pictures drawn off-screen can be read back here: a backend without
// a renderer hands out pixel images that read as black, which would turn a
// whole bitmap into a wall.
bool pixelsReadBack() {
  const int target = makeOffscreenImage(2, 2, 0);
  const int pixels = makePixelImage(2, 2);
  int r = -1, g = -1, b = -1;
  if (target >= 0 && pixels >= 0) {
    setDrawTarget(target);
    setBackgroundColour(12, 34, 56, 0);
    clearDrawTarget();
    captureToPixelImage(0, 0, 2, 2, pixels);
    readPixel(pixels, 1, 1, &r, &g, &b, nullptr);
    setDrawTarget(backBuffer);
  }
  deletePixelImage(pixels);
  deleteImage(target);
  return r == 12 && g == 34 && b == 56;
}

}  // namespace

planeGeometry makePlaneGeometry(const appConfig& cfg, int plane) {
  planeGeometry g;
  const std::vector<double>& h = plane == planeYZ ? cfg.zCoord : cfg.xCoord;
  const std::vector<double>& v = plane == planeZX ? cfg.zCoord : cfg.yCoord;
  const double length = plane == planeZX ? cfg.lz : cfg.ly;
  g.across = planeAcross(cfg, plane);
  g.down = planeDown(cfg, plane);
  g.pixWidth = plane == planeYZ ? cfg.domPixZ : cfg.domPixX;
  g.pixHeight = plane == planeZX ? cfg.domPixZ : cfg.domPixY;
  if (g.across < 1 || g.down < 1 || static_cast<int>(h.size()) < g.across || static_cast<int>(v.size()) < g.down) {
    g.across = g.down = 0;
    return g;
  }
  // Float arithmetic, so that the node pixels match those the mesh lines of
  // the stage's screen are drawn at.
  // An extreme domain (lx 1e300) puts pixels far beyond any screen: they
  // saturate at 2^26, where every sum below still fits 32 bits and the layer
  // refuses images that large.
  const auto s = narrowToFloat(cfg.pixPerMetre);
  g.px.resize(g.across);
  g.py.resize(g.down);
  for (int a = 0; a < g.across; ++a)
    g.px[a] = toPixel((narrowToFloat(h[a]) - narrowToFloat(h[0])) * s + static_cast<float>(cfg.marginLeft) + 0.5f);
  for (int b = 0; b < g.down; ++b)
    g.py[b] = toPixel(s * narrowToFloat(length) - (narrowToFloat(v[b]) - narrowToFloat(v[0])) * s +
                      static_cast<float>(cfg.marginTop) + 0.5f);
  const long long pxFirst = g.px[0], pxLast = g.px[g.across - 1];
  const long long pyFirst = g.py[0], pyLast = g.py[g.down - 1];
  g.pixWidth = toPixel(static_cast<float>(g.pixWidth));
  g.pixHeight = toPixel(static_cast<float>(g.pixHeight));
  g.ox = toPixel(static_cast<float>(
      cfg.marginLeft +
      (pxFirst - cfg.marginRight - cfg.marginLeft - pxLast - 1 + static_cast<long long>(cfg.bitmapScreenWidth)) / 2));
  g.oy = toPixel(static_cast<float>(cfg.marginTop + (pyLast - 1 + static_cast<long long>(cfg.bitmapScreenHeight) -
                                                     cfg.bitmapGap - cfg.marginBottom - pyFirst - cfg.marginTop) /
                                                        2));
  return g;
}

std::string bitmapPath(int plane, int slice) {
  char name[64];
  std::snprintf(name, sizeof name, "./input/bc%s%1d.bmp", planeNames[std::clamp(plane, 0, 2)], slice);
  return name;
}

int readImageAtMesh(const appConfig& cfg, int plane, int image, std::vector<std::uint32_t>& codes) {
  const planeGeometry g = makePlaneGeometry(cfg, plane);
  if (g.across < 1 || g.down < 1) return -1;
  codes.assign(static_cast<std::size_t>(g.across) * g.down, colorCode(255, 255, 255));

  // The capture rectangle: from the top-left node to one past the
  // bottom-right node, in pixels of the bitmap area.
  const int x1 = g.px[0] - cfg.marginLeft + g.ox, y1 = g.py[g.down - 1] - cfg.marginTop + g.oy;
  const int x2 = g.px[g.across - 1] - cfg.marginLeft + 1 + g.ox, y2 = g.py[0] - cfg.marginTop + 1 + g.oy;
  const int areaWidth = std::max({cfg.bitmapScreenWidth, x2, g.ox + g.pixWidth + 2, 1});
  const int areaHeight = std::max({cfg.bitmapScreenHeight, y2, g.oy + g.pixHeight + 2, 1});
  const int target = makeOffscreenImage(areaWidth, areaHeight, 0);
  if (target < 0) return -1;
  const int pixels = makePixelImage(std::max(1, x2 - x1), std::max(1, y2 - y1));
  if (pixels < 0) {
    deleteImage(target);
    return -1;
  }
  setDrawTarget(target);
  setBackgroundColour(255, 255, 255, 0);
  clearDrawTarget();
  drawImageStretched(g.ox - 1, g.oy - 1, g.ox + g.pixWidth + 2, g.oy + g.pixHeight + 2, image, 0);
  int result = captureToPixelImage(x1, y1, x2, y2, pixels) == 0 ? 0 : -1;
  if (result == 0)
    for (int b = 0; b < g.down; ++b)
      for (int a = 0; a < g.across; ++a) {
        int r = 255, gr = 255, bl = 255;
        const int x = std::clamp(g.px[a] - cfg.marginLeft, 0, x2 - x1 - 1);
        const int y = std::clamp(g.py[b] - cfg.marginTop, 0, y2 - y1 - 1);
        if (readPixel(pixels, x, y, &r, &gr, &bl, nullptr) != 0) result = -1;
        codes[static_cast<std::size_t>(b) * g.across + a] = colorCode(r, gr, bl);
      }
  setDrawTarget(backBuffer);
  deletePixelImage(pixels);
  deleteImage(target);
  return result;
}

int readBoundaryBitmaps(appConfig& cfg, const std::function<void(const std::string&)>& say) {
  setPresetColours(cfg);
  for (int c = 0; c < maxColourSlots; ++c) {
    cfg.stretchSelectors[c].selected = 3;
    cfg.symmetrySelectors[c].selected = 3;
    cfg.inverseSelectors[c].selected = 1;
  }
  const bool twoD = cfg.nz == 1;
  int pixelsWork = -1;  // probed at the first bitmap that exists
  std::vector<std::uint32_t> codes;
  for (int plane = 0; plane < 3; ++plane) {
    if (twoD && plane > 0) break;
    for (int slice = 0; slice < maxBitmapSlices; ++slice) {
      const std::string path = bitmapPath(plane, slice);
      if (!fileExists(path)) continue;
      if (pixelsWork < 0) {
        pixelsWork = pixelsReadBack() ? 1 : 0;
        if (pixelsWork == 0)
          say("[ERROR] No renderer draws pixels here, so the boundary bitmaps cannot be read; the domain stays "
              "free of walls.");
      }
      if (pixelsWork == 0) continue;
      const int image = loadImage(path.c_str(), 1);
      if (image < 0) {
        say("[ERROR] " + path +
            " cannot be read as an image (damaged, of an unknown format, or too large); "
            "it is skipped.");
        continue;
      }
      const int read = readImageAtMesh(cfg, plane, image, codes);
      deleteImage(image);
      if (read != 0) {
        say("[ERROR] " + path + " could not be read at the mesh; it is skipped.");
        continue;
      }
      const int across = planeAcross(cfg, plane), down = planeDown(cfg, plane);
      countColours(cfg, codes, across, down);
      applySavedChoices(cfg);
      purgeColors(cfg, 0);
      writeSlice(cfg, plane, slice, codes);
      setTypePresence(cfg);
      if (twoD) break;
    }
  }
  convertSlices(cfg);
  applySavedChoices(cfg);
  return 1;
}

}  // namespace marv
