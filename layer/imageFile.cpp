// Image files: stb_image for decoding (libjpeg-turbo for JPEG), libjpeg(-turbo) for writing, and the
// search for the program's picture folder. See imageFile.h.
#include "layer/imageFile.h"

#include <jpeglib.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_BMP
#define STBI_ONLY_GIF
#define STBI_ONLY_PNM
#define STBI_NO_STDIO
#define STBI_MAX_DIMENSIONS 16384
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#ifndef MARV_RESOURCE_DIR
#define MARV_RESOURCE_DIR ""
#endif

namespace marv {

namespace {

// Files larger than this are not pictures the program can use [bytes].
constexpr std::size_t maxImageFileBytes = 256u << 20;

// libjpeg reports fatal errors through error_exit, which must not return:
// it jumps back to the reader or the writer, which then fails cleanly.
void jpegErrorExit(j_common_ptr info);
void jpegSilence(j_common_ptr, int) {}

// libjpeg's error manager for one image: an error jumps back to the setjmp
// on jump in the caller, warnings stay unsaid. ok is set once the work is
// done; it is volatile so that it survives the jump.
struct jpegErrorTrap {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  volatile bool ok = false;
  jpegErrorTrap() {
    jpeg_std_error(&base);
    base.error_exit = jpegErrorExit;
    base.emit_message = jpegSilence;
  }
};

void jpegErrorExit(j_common_ptr info) {
  jpegErrorTrap* trap = reinterpret_cast<jpegErrorTrap*>(info->err);
  std::longjmp(trap->jump, 1);
}

std::string executableDirectory() {
  char buffer[4096];
  const ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n <= 0) return std::string();
  buffer[n] = '\0';
  char* slash = std::strrchr(buffer, '/');
  if (slash == nullptr) return std::string();
  *slash = '\0';
  return buffer;
}

bool fileExists(const std::string& path) { return !path.empty() && ::access(path.c_str(), R_OK) == 0; }

// The part of writeJpegFile between setjmp and the end: only trivially
// destructible locals, so that a longjmp out of libjpeg skips no destructor.
bool compressRows(jpeg_compress_struct* info, const std::uint8_t* rgba, int width, int height, std::uint8_t* row) {
  while (info->next_scanline < static_cast<JDIMENSION>(height)) {
    const std::uint8_t* src = rgba + static_cast<std::size_t>(info->next_scanline) * width * 4;
    for (int x = 0; x < width; ++x) {
      row[3 * x] = src[4 * x];
      row[3 * x + 1] = src[4 * x + 1];
      row[3 * x + 2] = src[4 * x + 2];
    }
    JSAMPROW rows[1] = {row};
    jpeg_write_scanlines(info, rows, 1);
  }
  return true;
}

// stb_image fills the missing rows of a cut-off BMP with black; a boundary
// bitmap read that way would gain walls nobody drew. An uncompressed BMP is
// complete when its pixel rows, padded to four bytes, fit in the file.
bool bmpIsComplete(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || data[0] != 'B' || data[1] != 'M') return true;  // not a BMP: stb decides
  if (size < 34) return false;
  auto u32 = [&](std::size_t at) {
    return static_cast<std::uint32_t>(data[at]) | static_cast<std::uint32_t>(data[at + 1]) << 8 |
           static_cast<std::uint32_t>(data[at + 2]) << 16 | static_cast<std::uint32_t>(data[at + 3]) << 24;
  };
  const std::uint32_t offset = u32(10), headerSize = u32(14);
  if (headerSize < 40) return true;  // old OS/2 headers: left to stb
  const auto width = static_cast<std::int32_t>(u32(18)), height = static_cast<std::int32_t>(u32(22));
  const int bits = data[28] | data[29] << 8;
  const std::uint32_t compression = u32(30);
  if (compression != 0 || width <= 0 || height == 0 || height == INT32_MIN) return true;
  const std::uint64_t rowBytes = (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(bits) + 31) / 32 * 4;
  const std::uint64_t rows = static_cast<std::uint64_t>(height < 0 ? -static_cast<std::int64_t>(height) : height);
  return static_cast<std::uint64_t>(offset) + rowBytes * rows <= size;
}

// A PNG whose chunks do not fit in the file is damaged. The decoder would
// take a stated chunk length at its word and grow its buffer toward it, so
// that a few damaged bytes could ask for gigabytes; such a file is refused
// before it is decoded. Files that are no PNG pass.
bool pngChunksFit(const std::uint8_t* data, std::size_t size) {
  static constexpr std::uint8_t signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  if (size < 8 || std::memcmp(data, signature, 8) != 0) return true;
  std::size_t pos = 8;
  while (pos + 12 <= size) {
    const std::uint64_t length =
        static_cast<std::uint64_t>(data[pos]) << 24 | data[pos + 1] << 16 | data[pos + 2] << 8 | data[pos + 3];
    if (length > size - pos - 12) return false;
    const bool end = std::memcmp(data + pos + 4, "IEND", 4) == 0;
    pos += 12 + static_cast<std::size_t>(length);
    if (end) return true;
  }
  return false;  // no IEND: cut off
}

// A binary PNM (P5, P6) is decoded only with a head of three numbers of at
// most nine digits each (the decoder's number reader overflows on longer
// ones), eight-bit samples (its 16-bit path reads past short files) and all
// the pixel bytes that the head promises.
bool pnmHeadFits(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || data[0] != 'P' || (data[1] != '5' && data[1] != '6')) return true;
  std::size_t at = 2;
  long long value[3] = {0, 0, 0};
  for (long long& number : value) {
    while (at < size && (std::isspace(data[at]) || data[at] == '#')) {
      if (data[at] == '#')
        while (at < size && data[at] != '\n' && data[at] != '\r') ++at;
      else
        ++at;
    }
    std::size_t digits = 0;
    for (; at < size && std::isdigit(data[at]); ++at, ++digits)
      if (digits < 9) number = number * 10 + (data[at] - '0');
    if (digits == 0 || digits > 9) return false;
  }
  if (value[0] <= 0 || value[1] <= 0 || value[2] <= 0 || value[2] > 255 || at >= size) return false;
  const long long samples = value[0] * value[1] * (data[1] == '5' ? 1 : 3);
  return static_cast<long long>(size - at - 1) >= samples;
}

}  // namespace

// JPEG goes through libjpeg-turbo, the library the program writes its
// images with: it stands damaged files, where stb's JPEG path reads past
// its Huffman tables on some. Only locals without destructors live between
// setjmp and the end, and the pixels go to a vector made before.
static bool decodeJpeg(const std::uint8_t* data, std::size_t size, rgbaImage& image) {
  jpeg_decompress_struct info;
  jpegErrorTrap trap;
  info.err = &trap.base;
  jpeg_create_decompress(&info);
  if (setjmp(trap.jump) == 0) {
    jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
    if (jpeg_read_header(&info, TRUE) == JPEG_HEADER_OK && info.image_width > 0 && info.image_height > 0 &&
        info.image_width <= static_cast<JDIMENSION>(maxImageSide) &&
        info.image_height <= static_cast<JDIMENSION>(maxImageSide)) {
      info.out_color_space = JCS_EXT_RGBA;
      jpeg_start_decompress(&info);
      const std::size_t stride = static_cast<std::size_t>(info.output_width) * 4;
      image.pixels.assign(stride * info.output_height, 0);
      while (info.output_scanline < info.output_height) {
        JSAMPROW row = image.pixels.data() + stride * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
      }
      jpeg_finish_decompress(&info);
      image.width = static_cast<int>(info.output_width);
      image.height = static_cast<int>(info.output_height);
      trap.ok = true;
    }
  }
  jpeg_destroy_decompress(&info);
  if (!trap.ok) image = rgbaImage{};
  return trap.ok;
}

bool decodeImage(const std::uint8_t* data, std::size_t size, rgbaImage& image) {
  image = rgbaImage{};
  if (data == nullptr || size == 0 || size > maxImageFileBytes) return false;
  if (size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF) return decodeJpeg(data, size, image);
  if (!pnmHeadFits(data, size)) return false;
  int w = 0, h = 0, channels = 0;
  if (!stbi_info_from_memory(data, static_cast<int>(size), &w, &h, &channels)) return false;
  // A BMP whose rows run top-down states a negative height; the size
  // query hands it on as it stands, the decoder reads such files fine.
  if (h < 0 && h != INT_MIN) h = -h;
  if (w <= 0 || h <= 0 || w > maxImageSide || h > maxImageSide) return false;
  if (!bmpIsComplete(data, size) || !pngChunksFit(data, size)) return false;
  stbi_uc* pixels = stbi_load_from_memory(data, static_cast<int>(size), &w, &h, &channels, 4);
  if (pixels == nullptr) return false;
  image.width = w;
  image.height = h;
  image.pixels.assign(pixels, pixels + static_cast<std::size_t>(w) * h * 4);
  stbi_image_free(pixels);
  return true;
}

bool loadImageFile(const std::string& path, rgbaImage& image) {
  image = rgbaImage{};
  std::ifstream in(path, std::ios::binary | std::ios::ate);
  if (!in) return false;
  const std::streamoff size = in.tellg();
  if (size <= 0 || static_cast<std::size_t>(size) > maxImageFileBytes) return false;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  in.seekg(0);
  if (!in.read(reinterpret_cast<char*>(bytes.data()), size)) return false;
  return decodeImage(bytes.data(), bytes.size(), image);
}

void applyColourKey(rgbaImage& image, int r, int g, int b) {
  const std::size_t n = image.pixels.size() / 4;
  for (std::size_t i = 0; i < n; ++i) {
    std::uint8_t* p = &image.pixels[4 * i];
    if (p[0] == r && p[1] == g && p[2] == b) p[3] = 0;
  }
}

bool writeJpegFile(const std::string& path, const std::uint8_t* rgba, int width, int height, int quality,
                   int sampling2x1) {
  if (rgba == nullptr || width <= 0 || height <= 0 || width > 65500 || height > 65500) return false;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * 3);
  jpeg_compress_struct info;
  jpegErrorTrap trap;
  info.err = &trap.base;
  jpeg_create_compress(&info);
  if (setjmp(trap.jump) == 0) {
    jpeg_stdio_dest(&info, file);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality < 1 ? 1 : (quality > 100 ? 100 : quality), TRUE);
    // Luma at full resolution; with 2x1 chroma, one chroma sample per two
    // pixels of a row.
    info.comp_info[0].h_samp_factor = sampling2x1 ? 2 : 1;
    info.comp_info[0].v_samp_factor = 1;
    info.comp_info[1].h_samp_factor = info.comp_info[1].v_samp_factor = 1;
    info.comp_info[2].h_samp_factor = info.comp_info[2].v_samp_factor = 1;
    jpeg_start_compress(&info, TRUE);
    compressRows(&info, rgba, width, height, row.data());
    jpeg_finish_compress(&info);
    trap.ok = true;
  }
  jpeg_destroy_compress(&info);
  const bool written = std::fclose(file) == 0 && trap.ok;
  if (!written) std::remove(path.c_str());
  return written;
}

std::string resourcePicturePath(int id) {
  if (id < 0 || id > 99999) return std::string();
  const std::string name = "picture" + std::to_string(id) + ".png";
  const std::string exeDir = executableDirectory();
  // Beside the executable, the install tree (bin/../share), the build tree
  // (which stages the same layout one or two folders above its programs and
  // tests), then the source tree the program was built from.
  const std::string candidates[] = {exeDir + "/resources/" + name, exeDir + "/../share/marvanesse/" + name,
                                    exeDir + "/../../share/marvanesse/" + name,
                                    std::string(MARV_RESOURCE_DIR) + "/" + name};
  for (const std::string& c : candidates)
    if (c.size() > name.size() + 1 && fileExists(c)) return c;
  return std::string();
}

}  // namespace marv
