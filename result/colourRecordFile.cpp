// Lines and setup shared by force.txt and heatLoss.txt.
#include "result/colourRecordFile.h"

namespace marv {

recordLayout colourRecordLayout(const appConfig& cfg, std::initializer_list<const char*> valueNames) {
  recordLayout made;
  made.headWords = {"ts", "time(s)"};
  for (int c = firstRecordedColour; c <= lastRecordedColour; ++c)
    made.headWords.push_back(formatText("%s_flag", cfg.bcTypeNames[c]));
  for (int c = firstRecordedColour; c <= lastRecordedColour; ++c)
    for (const char* name : valueNames) made.headWords.push_back(formatText("%s_%s", cfg.bcTypeNames[c], name));
  made.columns = static_cast<int>(made.headWords.size());
  return made;
}

std::string colourHeadLine(const appConfig& cfg, std::initializer_list<const char*> valueNames) {
  std::string line = formatText("%12s %12s ", "ts", "time(s)");
  for (int c = firstRecordedColour; c <= lastRecordedColour; ++c) line += formatText("%12s_flag ", cfg.bcTypeNames[c]);
  for (int c = firstRecordedColour; c <= lastRecordedColour; ++c)
    for (const char* name : valueNames) line += formatText("%12s_%s ", cfg.bcTypeNames[c], name);
  return line + "\n";
}

std::string colourDataLine(const appConfig& cfg, const std::array<std::uint8_t, numColourTypes>& on,
                           const double* values, int perColour) {
  std::string line = formatText("%12d %12.5e ", cfg.ts, cfg.time);
  for (int c = firstRecordedColour; c <= lastRecordedColour; ++c) line += formatText("%17d ", on[c]);
  const int count = (lastRecordedColour - firstRecordedColour + 1) * perColour;
  for (int n = 0; n < count; ++n) line += formatText("%18.5e ", values[n]);
  return line + "\n";
}

void readColourSetup(appConfig& cfg, const char* path, const recordLayout& layout, int shown,
                     std::array<std::uint8_t, numColourTypes>& on, int& count, int& headerDone, std::uint8_t& refused) {
  headerDone = 0;
  refused = 0;
  if (count == 0 || shown == 0) return;
  readColourFlags(cfg, path, layout, on, count, refused);
}

bool colourRecordStep(const appConfig& cfg, int interval, int shown, int count) {
  if (cfg.sts >= 1 && cfg.ts == cfg.sts) return false;
  if (interval <= 0 || cfg.ts % interval != 0) return false;
  return shown != 0 && count != 0;
}

}  // namespace marv
