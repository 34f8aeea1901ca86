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

// What a rewrite of a param.txt holding text would drop of what its user
// wrote, as a short list ("3 lines past the hundredth, 1 comment line"):
// lines past the hundredth non-empty one, comment and mark lines that the
// writer does not make, notes after "//" other than the parameter's own
// description, and tails of over-long lines. Empty when nothing is lost.
std::string rewriteLosses(const std::string& text);

// Writes ./input/param.txt through a temporary file and a rename. When the
// rewrite drops something of the present file, that file is first kept as
// ./input/param.txt.bak (param.txt.bak2 and on when that holds another
// text), and losses gets the list of what is dropped and, after a '|', the
// backup's name.
// Returns 1 written, 2 written after such a backup, -1 when it cannot be
// written (the previous file then stands).
int writeParameterFile(const parameterEditor& editor, const std::string& version, std::string* losses = nullptr);

// Tells the user about a backup (result 2) or a failure (-1) of
// writeParameterFile; says nothing after a plain write.
void reportParameterWrite(appConfig& cfg, int written, const std::string& losses);

}  // namespace marv
