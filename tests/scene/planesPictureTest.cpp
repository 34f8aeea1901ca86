// The 3D picture of the bundled duct on the off-screen OpenGL backend, with
// its three cross-section planes and streamlines: a short batch run, then
// its saved image read back, checked for the colours of the scale on the
// planes and for the streamlines' plain colour, and kept as PNG under the
// build folder for a look.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "app/batchStages.h"
#include "app/driver.h"
#include "layer/layer.h"
#include "scene/savedPicture.h"
#include "testSupport.h"

namespace {

using namespace marv;

using marvtest::picture;

std::uint32_t crc32(const std::string& bytes) {
  std::uint32_t c = 0xffffffffu;
  for (unsigned char b : bytes) {
    c ^= b;
    for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xedb88320u & (0u - (c & 1u)));
  }
  return ~c;
}

void putBig(std::string& out, std::uint32_t v) {
  for (int s = 24; s >= 0; s -= 8) out.push_back(static_cast<char>((v >> s) & 0xff));
}

// A PNG with uncompressed deflate blocks: no library needed to look at it.
void writePng(const std::filesystem::path& path, const picture& p) {
  std::string raw;
  for (int y = 0; y < p.height; ++y) {
    raw.push_back('\0');
    raw.append(reinterpret_cast<const char*>(&p.rgb[static_cast<std::size_t>(y) * p.width * 3]), p.width * 3);
  }
  std::string z = "\x78\x01";
  std::uint32_t a = 1, b = 0;
  for (unsigned char c : raw) a = (a + c) % 65521, b = (b + a) % 65521;
  for (std::size_t at = 0; at < raw.size(); at += 65535) {
    const std::size_t n = std::min<std::size_t>(65535, raw.size() - at);
    z.push_back(at + n == raw.size() ? 1 : 0);
    z.push_back(static_cast<char>(n & 0xff)), z.push_back(static_cast<char>(n >> 8));
    z.push_back(static_cast<char>(~n & 0xff)), z.push_back(static_cast<char>((~n >> 8) & 0xff));
    z.append(raw, at, n);
  }
  putBig(z, (b << 16) | a);
  auto chunk = [](std::string& out, const char* type, const std::string& data) {
    putBig(out, static_cast<std::uint32_t>(data.size()));
    const std::string body = std::string(type) + data;
    out += body;
    putBig(out, crc32(body));
  };
  std::string header;
  putBig(header, p.width), putBig(header, p.height);
  header += std::string("\x08\x02\x00\x00\x00", 5);
  std::string png = "\x89PNG\r\n\x1a\n";
  chunk(png, "IHDR", header);
  chunk(png, "IDAT", z);
  chunk(png, "IEND", "");
  std::ofstream(path, std::ios::binary) << png;
}

class planesPicture : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(400, 200, 32, 60);
    ASSERT_EQ(startLayer(), 0);
    ASSERT_EQ(layerDrawsPixels(), 1) << "no OpenGL renderer: install Mesa (scripts/install-deps.sh)";
  }
  void TearDown() override { stopLayer(); }
};

TEST_F(planesPicture, DuctShowsItsPlanesInScaleColoursAndItsStreamlines) {
  const auto folder = marvtest::scratchFolder("planes");
  std::filesystem::copy(std::filesystem::path(MARV_EXAMPLES_DIR) / "duct3d" / "input", folder / "input");
  std::filesystem::create_directories(folder / "figs");
  std::filesystem::create_directories(folder / "dump");
  const int last = 20;
  std::istringstream lines(marvtest::readText(folder / "input" / "param.txt"));
  std::string param, line;
  while (std::getline(lines, line)) {
    for (const char* key : {"014:latts", "022:nfig", "023:nfile"})
      if (line.rfind(key, 0) == 0) line = std::string(key) + " " + std::to_string(last);
    param += line + "\n";
  }
  marvtest::writeText(folder / "input" / "param.txt", param);
  // Later keys of viz.txt win: the walls hidden, all three planes and the
  // streamlines from the inlet shown.
  std::ofstream(folder / "input" / "viz.txt", std::ios::app)
      << "showBoundaryFlagUser 0\nshowCrosssectionXYFlag 1\nshowCrosssectionYZFlag 1\nshowCrosssectionXZFlag 1\n"
         "showStreamlineFlag 1\nshowCrosssectionVectorFlag 0\n";
  batchOptions options;
  options.projectDir = folder.string();
  options.quiet = true;
  driverState state;
  ASSERT_EQ(runDriver(batchStages(options), state), 0);

  picture shot;
  char name[64];
  std::snprintf(name, sizeof name, "%08d.jpg", last);
  ASSERT_TRUE(shot.read((folder / "figs" / name).string()));
  writePng(std::filesystem::path(MARV_BUILD_DIR) / "duct3d-planes.png", shot);

  // Scale colours are saturated (one channel near 255, another near 0);
  // the streamlines' plain colour is (15, 200, 230). Both away from the
  // status band at the bottom.
  int scale = 0, lineInk = 0;
  for (int y = 0; y < shot.height * 2 / 3; ++y)
    for (int x = 0; x < shot.width; ++x) {
      const unsigned char* c = &shot.rgb[(static_cast<std::size_t>(y) * shot.width + x) * 3];
      const int hi = std::max({c[0], c[1], c[2]}), lo = std::min({c[0], c[1], c[2]});
      scale += hi > 230 && lo < 40;
      lineInk += std::abs(c[0] - 15) < 40 && std::abs(c[1] - 200) < 40 && std::abs(c[2] - 230) < 40;
    }
  EXPECT_GT(scale, shot.width * shot.height / 10) << "the planes cover much of the picture";
  EXPECT_GT(lineInk, 100) << "streamlines drawn";
}

}  // namespace
