// .history: text size, language and the last project.
#include "project/historyFile.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marvfuzz::writeInput(".history", data, size);
  marv::appConfig cfg;
  marv::syncHistory(cfg, 0, marvfuzz::workFolder());
  return 0;
}
