// Reader and writer of .history. A path that holds a blank is cut at the
// blank on reading, since every value is one token.
#include "project/historyFile.h"

#include <cstdio>

#include "common/textNumbers.h"

namespace marv {

namespace {

const char* const historyKeys[numHistoryKeys] = {"fontSize", "langFlag", "absProjPath"};

std::string historyPath(const std::string& directory) {
  return directory.empty() ? std::string("./.history") : directory + "/.history";
}

}  // namespace

const char* historyKeyName(int number) { return number >= 0 && number < numHistoryKeys ? historyKeys[number] : "NA"; }

parameterEntry lookupHistoryKey(const std::string& name) {
  parameterEntry e;
  e.name = name;
  e.index = findName(name, historyKeys, numHistoryKeys, [](const char* key) { return key; });
  e.valueType = 0;
  return e;
}

std::string formatHistoryLine(int number, double value, const std::string& text) {
  char line[900];
  if (number == 2)
    std::snprintf(line, sizeof line, "%-40s %-40s", historyKeyName(number), text.c_str());
  else
    std::snprintf(line, sizeof line, "%-40s %d", historyKeyName(number), truncToInt(value));
  return line;
}

void syncHistory(appConfig& cfg, int write, const std::string& directory) {
  const std::string path = historyPath(directory);
  if (write == 0) {
    if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
      tokenReader reader{f};
      std::string key, value;
      for (int n = 0; n < 100 && nextToken(reader, key); ++n) {
        if (!nextToken(reader, value)) value.clear();
        const int index = lookupHistoryKey(key).index;
        if (index == 0) cfg.textHeight = truncToInt(parseNumber(value));
        if (index == 1) cfg.langFlag = truncToInt(parseNumber(value));
        if (index == 2) cfg.absProjPath = value;
      }
      std::fclose(f);
      return;
    }
  }
  std::string text;
  text += formatHistoryLine(0, cfg.textHeight, "") + "\n";
  text += formatHistoryLine(1, cfg.langFlag, "") + "\n";
  text += formatHistoryLine(2, 0.0, cfg.absProjPath) + "\n";
  replaceFileAtomically(path, text);
}

}  // namespace marv
