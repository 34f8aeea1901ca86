// STL models, ASCII and binary, with both normal conventions.
#include "domain/stlReader.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marvfuzz::writeInput("input/bc.stl", data, size);
  for (int inward : {0, 1}) {
    marv::bcSurface surface;
    marv::readStlFile(surface, "input/bc.stl", inward);
  }
  return 0;
}
