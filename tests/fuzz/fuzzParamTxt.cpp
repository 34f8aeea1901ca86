// param.txt: the reader, the check of what a rewrite would drop, and the
// writer's text read back again.
#include "app/appConfig.h"
#include "project/parameterFile.h"
#include "tests/fuzz/fuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  marvfuzz::writeInput("input/param.txt", data, size);
  marv::parameterEditor editor;
  marv::resetParameterEditor(editor);
  marv::appConfig cfg;
  const int count = marv::readParameterFile(editor, cfg, "input/param.txt");
  if (count < 0 || count > marv::maxParameterEntries) __builtin_trap();
  marv::rewriteLosses(std::string(reinterpret_cast<const char*>(data), size));
  const std::string text = marv::formatParameterFile(editor, cfg.version);
  marvfuzz::writeInput("input/again.txt", reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  marv::parameterEditor again;
  marv::resetParameterEditor(again);
  if (marv::readParameterFile(again, cfg, "input/again.txt") < 0) __builtin_trap();
  return 0;
}
