// Picture test helpers: the off-screen layer, a short batch run that saves its image, and the saved JPEG read back.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "batchRun.h"
#include "layer/layer.h"
#include "renderSupport.h"
#include "testSupport.h"

namespace marvtest {

struct picture {
  int width = 0, height = 0;
  std::vector<unsigned char> rgb;
  bool read(const std::string& path) {
    int channels = 0;
    unsigned char* data = stbi_load(path.c_str(), &width, &height, &channels, 3);
    if (data == nullptr) return false;
    rgb.assign(data, data + static_cast<std::size_t>(width) * height * 3);
    stbi_image_free(data);
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
