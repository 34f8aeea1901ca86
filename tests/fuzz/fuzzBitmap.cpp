// Pictures: the decoder that every bitmap and picture file goes through.
#include "layer/imageFile.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marv::rgbaImage image;
  if (marv::decodeImage(data, size, image) &&
      image.pixels.size() != static_cast<std::size_t>(image.width) * image.height * 4)
    __builtin_trap();
  return 0;
}
