// Reading and writing ./input/param.txt: the eleven-line head, one line per
// entry, "#End of file". The reader keeps file order and text lines, drops
// comment and mark lines, and reads at most 100 non-empty lines.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "project/parameterEditor.h"

namespace marv {

// Reads path into the editor's list. Returns the number of entries, or -1
// when the file cannot be opened.
int readParameterFile(parameterEditor& editor, appConfig& cfg, const std::string& path);

// The file text that writeParameterFile would write.
std::string formatParameterFile(const parameterEditor& editor, const std::string& version);

// Writes ./input/param.txt through a temporary file and a rename. Returns 1,
// or -1 when it cannot be written; the previous file then stands.
int writeParameterFile(const parameterEditor& editor, const std::string& version);

}  // namespace marv
