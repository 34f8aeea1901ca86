// bmp.txt: the saved colour choices.
#include "domain/bmpTxt.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marvfuzz::writeInput("input/bmp.txt", data, size);
  marv::appConfig cfg;
  marv::readBmpTxt(cfg);
  if (cfg.numRemovedColors < 0 || cfg.numRemovedColors > marv::maxColourSlots) __builtin_trap();
  return 0;
}
