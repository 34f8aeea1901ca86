// viz.txt: read into the record, then written out as the program writes it.
#include "project/vizFile.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marvfuzz::writeInput("input/viz.txt", data, size);
  marv::appConfig cfg;
  marv::syncViz(cfg, 0);
  marv::formatVizFile(cfg);
  return 0;
}
