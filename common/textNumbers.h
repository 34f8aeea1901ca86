// Numbers and tokens in the program's plain text files (param.txt, viz.txt,
// .history). Values are read as doubles and truncated into whole-number
// fields; every conversion here is defined for any input text.
#pragma once

#include <cstdio>
#include <string>

namespace marv {

constexpr int textBufferSize = 400;  // longest token or line kept, less one for the end

// The longest numeric prefix of text as a double (as strtod reads it); 0 when
// there is none. NaN reads as 0; overflow gives an infinity.
double parseNumber(const std::string& text);

// Truncation toward zero into 32 bits: NaN gives 0, values beyond the range
// saturate at its ends.
int truncToInt(double value);

// Narrowing into single precision, saturating at the largest finite float
// instead of leaving the range (NaN stays NaN).
float narrowToFloat(double value);

// Blank-separated tokens of a file, each at most textBufferSize - 1 bytes: a
// longer run of non-blank bytes continues as the next token.
struct tokenReader {
  std::FILE* file = nullptr;
};

// Next token into out; false at the end of the file.
bool nextToken(tokenReader& reader, std::string& out);

// Reads the whole file at path into text; false when it cannot be read.
bool readWholeFile(const std::string& path, std::string& text);

// Writes text to path through a temporary file in the same folder and a
// rename, so that a reader never sees a half-written file. A path that is a
// symbolic link is written through: the file it points to is replaced and
// the link stays. False (errno tells why) when the temporary file could not
// be written or renamed; the old file then stands.
bool replaceFileAtomically(const std::string& path, const std::string& text);

// The same for a block of bytes.
bool replaceFileAtomically(const std::string& path, const void* bytes, std::size_t size);

}  // namespace marv
