// Picture test helpers: the off-screen layer, a short batch run that saves its image, and the JPEG read back.
#pragma once

#include <gtest/gtest.h>
#include <jpeglib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "batchRun.h"
#include "layer/layer.h"
#include "testSupport.h"

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

class offscreenPicture : public ::testing::Test {
 protected:
  void SetUp() override {
    marv::setGraphicsMode(400, 200, 32, 60);
    ASSERT_EQ(marv::startLayer(), 0);
    ASSERT_EQ(marv::layerDrawsPixels(), 1) << "no OpenGL renderer: install Mesa (scripts/install-deps.sh)";
  }
  void TearDown() override { marv::stopLayer(); }
};

// The example run in a scratch project with the parameters of values set and vizLines appended to viz.txt.
inline std::filesystem::path runExample(const char* example, const std::map<std::string, std::string>& values,
                                        const std::string& vizLines) {
  const std::filesystem::path folder = copyExample(example);
  setParameters(folder, values);
  std::ofstream(folder / "input" / "viz.txt", std::ios::app) << vizLines;
  marv::driverState state;
  EXPECT_EQ(runBatch(folder, state), 0);
  return folder;
}

}  // namespace marvtest
