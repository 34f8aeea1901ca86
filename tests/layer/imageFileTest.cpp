// Picture files: malformed, truncated, oversized or binary input is refused without a crash, headless loads too.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "layer/imageFile.h"
#include "layer/layer.h"

namespace {

using namespace marv;

std::vector<std::uint8_t> fileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A 24-bit BMP header for a picture of the given size, with no pixels after it.
std::vector<std::uint8_t> bmpHeader(std::int32_t width, std::int32_t height) {
  std::vector<std::uint8_t> b(54, 0);
  const std::pair<int, std::int32_t> fields[] = {{2, 54}, {10, 54}, {14, 40}, {18, width}, {22, height}};
  for (const auto& [at, v] : fields)
    for (int i = 0; i < 4; ++i) b[at + i] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(v) >> (8 * i));
  b[0] = 'B', b[1] = 'M', b[26] = 1, b[28] = 24;  // one plane of 24 bits
  return b;
}

// A damaged PNG whose later chunk claims more bytes than the file holds: the
// decoder would grow its buffer toward the claim (found by fuzzing).
const std::vector<std::uint8_t> longChunkPng = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00,
    0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x03, 0x08, 0x02, 0x00, 0x00, 0x00, 0x3b, 0x96, 0x39, 0x91, 0x00,
    0x00, 0x00, 0x29, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9c, 0x0d, 0xc7, 0x31, 0x01, 0x00, 0x30, 0x0c, 0xc3,
    0x30, 0xc3, 0x29, 0x92, 0xdc, 0xbd, 0x8d, 0xa4, 0x20, 0x02, 0x7a, 0xd3, 0x27, 0xc0, 0xff, 0x3f, 0x43,
    0x88, 0x13, 0x37, 0xff, 0x3f, 0xea, 0xd4, 0xad, 0x57, 0x1f, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49,
    0x48, 0x44, 0x52, 0x00, 0x00, 0x49, 0x44, 0x41, 0x54, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

// A bitmap header that promises pixels the file does not hold is refused at
// every length short of the whole: filling the missing rows with black would draw walls into a boundary bitmap.
TEST(pictureFiles, truncatedHugeAndDamagedPicturesAreRefused) {
  const std::vector<std::uint8_t> png = fileBytes(resourcePicturePath(777));
  ASSERT_GT(png.size(), 100u);
  std::vector<std::uint8_t> bmp = bmpHeader(5, 3);  // rows of 15 bytes, padded to 16
  bmp.resize(54 + 16 * 3, 200);
  std::vector<std::pair<std::string, std::vector<std::uint8_t>>> bad;
  for (std::size_t n = 0; n < png.size(); n += n < 64 ? 1 : 97)
    bad.push_back({"png cut at " + std::to_string(n), {png.begin(), png.begin() + n}});
  for (std::size_t n = 54; n < bmp.size(); ++n)
    bad.push_back({"bmp cut at " + std::to_string(n), {bmp.begin(), bmp.begin() + n}});
  for (const auto& [w, h] : {std::pair{100000, 100000}, std::pair{-5, 10}, std::pair{0, 0}, std::pair{70000, 1},
                             std::pair{0x7FFFFFFF, 0x7FFFFFFF}}) {
    bad.push_back({"bmp of " + std::to_string(w) + " x " + std::to_string(h), bmpHeader(w, h)});
    bad.back().second.resize(54 + 4096, 0x55);
  }
  bad.push_back({"png chunk longer than the file", longChunkPng});
  bad.push_back({"jpeg Huffman counts past the table", {0xff, 0xd8, 0xff, 0xc4, 0x23, 0x00, 0x00}});
  bad.back().second.resize(100, 0xff);
  for (const auto& [what, bytes] : bad) {
    SCOPED_TRACE(what);
    rgbaImage picture;
    EXPECT_FALSE(decodeImage(bytes.data(), bytes.size(), picture));
    EXPECT_TRUE(picture.pixels.empty());
  }
  rgbaImage whole;
  ASSERT_TRUE(decodeImage(bmp.data(), bmp.size(), whole));
  EXPECT_EQ(whole.width * 1000 + whole.pixels[0], 5200) << "the whole bitmap loads";
}

// The same 2 x 3 picture stored bottom-up (positive height) and top-down: red top row, blue bottom row.
TEST(pictureFiles, topDownBmpReadsWithItsFirstRowOnTop) {
  for (const int height : {3, -3}) {
    SCOPED_TRACE(height);
    std::vector<std::uint8_t> bmp = bmpHeader(2, height);
    for (int stored = 0; stored < 3; ++stored) {
      const std::uint8_t row = height > 0 ? 2 - stored : stored, blue = row == 2 ? 255 : 0, red = row == 0 ? 255 : 0;
      bmp.insert(bmp.end(), {blue, 0, red, blue, 0, red, 0, 0});  // two pixels, rows padded to four bytes
    }
    rgbaImage picture;
    ASSERT_TRUE(decodeImage(bmp.data(), bmp.size(), picture));
    EXPECT_EQ((std::vector<int>{picture.width, picture.height, picture.pixels[0], picture.pixels[2],
                                picture.pixels[4 * 2 * 2 + 2]}),
              (std::vector<int>{2, 3, 255, 0, 255}));
    bmp.pop_back();
    EXPECT_FALSE(decodeImage(bmp.data(), bmp.size(), picture)) << "one byte short";
  }
}

TEST(pictureFiles, loadImageOfTheHeadlessBackendKnowsSizesAndRefusesJunk) {
  const std::string dir = ::testing::TempDir(), junk = dir + "marv_junk.bmp";
  std::ofstream(junk, std::ios::binary) << "BM this is not a bitmap";
  for (const char* path : {junk.c_str(), dir.c_str(), "/no/such/file.png", static_cast<const char*>(nullptr)})
    EXPECT_LT(loadImage(path, 0), 0) << (path ? path : "null");
  std::remove(junk.c_str());
  const int tile = loadImageResource(777);
  int w = 0, h = 0;
  EXPECT_EQ(imageSize(tile, &w, &h), 0);
  EXPECT_EQ(w * 1000 + h, 640128) << "640 x 128";
  deleteImage(tile);
}

}  // namespace
