// info.txt of a dump, and the completeness check that restart and the dump
// search make of its folder.
#include "result/dumpFiles.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marvfuzz::writeInput("dump/00000001/info.txt", data, size);
  marv::dumpInfo info;
  if (marv::readDumpInfo("dump/00000001/info.txt", info)) marv::missingDumpFile("dump/00000001", info);
  marv::dumpIsWhole(1);
  return 0;
}
