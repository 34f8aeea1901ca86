// .history in the start directory: the text size, the language choice and the
// path of the last project, the three things needed before a project is open.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "project/parameterTable.h"

namespace marv {

constexpr int numHistoryKeys = 3;

const char* historyKeyName(int number);                    // "NA" beyond 2
parameterEntry lookupHistoryKey(const std::string& name);  // index 3 when unknown
// One line without its end: "%-40s %d" for the numbers, "%-40s %-40s" for the path.
std::string formatHistoryLine(int number, double value, const std::string& text);

// write = 0 reads ./.history (or directory/.history), and writes the defaults
// when it cannot be opened; write = 1 writes the three lines.
void syncHistory(appConfig& cfg, int write, const std::string& directory);

}  // namespace marv
