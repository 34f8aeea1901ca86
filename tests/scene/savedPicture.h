// A saved JPEG image read back with libjpeg, for the picture tests of the
// scene: its size and its RGB pixels, rows top-down.
#pragma once

#include <jpeglib.h>

#include <cstdio>
#include <string>
#include <vector>

namespace marvtest {

struct picture {
  int width = 0, height = 0;
  std::vector<unsigned char> rgb;
  bool read(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_stdio_src(&info, file);
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_RGB;
    jpeg_start_decompress(&info);
    width = static_cast<int>(info.output_width), height = static_cast<int>(info.output_height);
    rgb.resize(static_cast<std::size_t>(width) * height * 3);
    while (info.output_scanline < info.output_height) {
      JSAMPROW row = rgb.data() + static_cast<std::size_t>(info.output_scanline) * width * 3;
      jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    std::fclose(file);
    return true;
  }
  const unsigned char* at(int x, int y) const { return &rgb[(static_cast<std::size_t>(y) * width + x) * 3]; }
};

}  // namespace marvtest
