// Bitmap test helpers: a 24-bit BMP writer (bottom-up, padded rows) and an appConfig with a hand-set grid and layout.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "app/appConfig.h"
#include "testGrid.h"

namespace marvtest {

struct rgb {
  int r = 255, g = 255, b = 255;
};

// pixel(x, y) with y = 0 at the top of the picture.
inline void writeBmp(const std::filesystem::path& path, int width, int height,
                     const std::function<rgb(int, int)>& pixel) {
  const int rowBytes = (width * 3 + 3) / 4 * 4;
  const int size = 54 + rowBytes * height;
  std::vector<unsigned char> b(size, 0);
  auto put32 = [&](int at, int v) {
    for (int i = 0; i < 4; ++i) b[at + i] = static_cast<unsigned char>(v >> (8 * i));
  };
  b[0] = 'B';
  b[1] = 'M';
  put32(2, size);
  put32(10, 54);
  put32(14, 40);
  put32(18, width);
  put32(22, height);
  b[26] = 1;
  b[28] = 24;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const rgb p = pixel(x, y);
      unsigned char* at = &b[54 + (height - 1 - y) * rowBytes + 3 * x];
      at[0] = static_cast<unsigned char>(p.b);
      at[1] = static_cast<unsigned char>(p.g);
      at[2] = static_cast<unsigned char>(p.r);
    }
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), size);
}

// A grid with pixPerCell pixels between nodes, the layout of the bitmap area
// and fresh slice tables.
inline void setBitmapCase(marv::appConfig& cfg, int nx, int ny, int nz, double lx = 1.0, double ly = 1.0,
                          double lz = 1.0, int pixPerCell = 4) {
  marv::testing::setGrid(cfg, nx, ny, nz, lx, ly, lz);
  cfg.pixPerCell = pixPerCell;
  cfg.pixPerMetre = pixPerCell / cfg.dx;
  cfg.domPixX = static_cast<int>(cfg.pixPerMetre * cfg.lx);
  cfg.domPixY = static_cast<int>(cfg.pixPerMetre * cfg.ly);
  cfg.domPixZ = static_cast<int>(cfg.pixPerMetre * cfg.lz);
  cfg.bitmapScreenWidth = std::max(cfg.domPixX, cfg.domPixZ) + cfg.marginLeft + cfg.marginRight;
  cfg.bitmapScreenHeight = std::max(cfg.domPixY, cfg.domPixZ) + cfg.bitmapGap + cfg.marginTop + cfg.marginBottom;
  const std::size_t slices = marv::maxBitmapSlices;
  cfg.bitmapXY.assign(static_cast<std::size_t>(nx) * ny * slices, 0);
  cfg.bitmapYZ.assign(static_cast<std::size_t>(ny) * nz * slices, 0);
  cfg.bitmapZX.assign(static_cast<std::size_t>(nx) * nz * slices, 0);
}

}  // namespace marvtest
