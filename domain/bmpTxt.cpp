// Reading and writing bmp.txt. The reader takes lines into 400-byte buffers
// and words of at most 399 bytes, so a huge or binary file costs at most a
// bounded read and never overruns anything.
#include "domain/bmpTxt.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

#include "common/textNumbers.h"

namespace marv {

namespace {

const char* const colourHeader =
    "iNumBcColor  ColorsCodes[]  StretchPlane[]  SymmetricPlane[]  InverseFlag  R[]   G[]   B[]";
const char* const removedHeader = "iNumBcColor  RemovedColorCodes";
const char* const closingLine = "/*-----------------------------------------------------*/";

// Reads and drops the rest of one line, at most 399 bytes of it.
void dropLine(std::FILE* f) {
  char line[textBufferSize];
  if (std::fgets(line, sizeof line, f) == nullptr) line[0] = '\0';
}

// Truncation into a colour code: NaN gives 0, values outside 0..2^32-1
// saturate at the ends.
std::uint32_t truncToCode(double value) {
  if (std::isnan(value) || value <= 0.0) return 0;
  if (value >= 4294967295.0) return 4294967295u;
  return static_cast<std::uint32_t>(value);
}

// One blank-separated word of at most textBufferSize - 1 bytes. The blank
// that ends it stays in the file, so that the line-dropping steps of the
// format see the end of the row.
bool readWord(std::FILE* f, std::string& out) {
  out.clear();
  int c = 0;
  do {
    c = std::fgetc(f);
  } while (c != EOF && std::isspace(c));
  while (c != EOF && !std::isspace(c)) {
    out.push_back(static_cast<char>(c));
    if (static_cast<int>(out.size()) == textBufferSize - 1) return true;
    c = std::fgetc(f);
  }
  if (c != EOF) std::ungetc(c, f);
  return !out.empty();
}

// Reads n words into words; false when the file ends first.
bool readWords(std::FILE* f, std::string* words, int n) {
  for (int w = 0; w < n; ++w)
    if (!readWord(f, words[w])) return false;
  return true;
}

}  // namespace

void readBmpTxt(appConfig& cfg, const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return;
  std::string words[8];
  dropLine(f);
  bool whole = true;
  for (int c = 0; c < maxColourSlots && whole; ++c) {
    whole = readWords(f, words, 8);
    if (!whole) break;
    cfg.savedColorsCodes[c] = truncToCode(parseNumber(words[1]));
    cfg.savedStretchPlane[c] = truncToInt(parseNumber(words[2]));
    cfg.savedSymmetricPlane[c] = truncToInt(parseNumber(words[3]));
    cfg.savedInverseFlag[c] = truncToInt(parseNumber(words[4]));
  }
  if (whole) {
    dropLine(f);
    dropLine(f);
  }
  for (int c = 0; c < maxColourSlots && whole; ++c) {
    whole = readWords(f, words, 2);
    if (!whole) break;
    cfg.RemovedColorCodes[c] = truncToCode(parseNumber(words[1]));
    if (cfg.RemovedColorCodes[c] != 0) cfg.numRemovedColors = std::min(c + 1, maxColourSlots - 1);
  }
  std::fclose(f);
}

bool writeBmpTxt(const appConfig& cfg, const std::string& path) {
  std::string text;
  char row[160];
  text += colourHeader;
  text += '\n';
  for (int c = 0; c < maxColourSlots; ++c) {
    std::snprintf(row, sizeof row,
                  "%2d      %15lu     %1d               %1d                 %1d            %3d   %3d   %3d\n", c,
                  static_cast<unsigned long>(cfg.ColorsCodes[c]), cfg.StretchPlane[c], cfg.SymmetricPlane[c],
                  cfg.InverseFlag[c], cfg.R[c], cfg.G[c], cfg.B[c]);
    text += row;
  }
  text += removedHeader;
  text += '\n';
  for (int c = 0; c < maxColourSlots; ++c) {
    std::snprintf(row, sizeof row, "%2d   %15lu\n", c, static_cast<unsigned long>(cfg.RemovedColorCodes[c]));
    text += row;
  }
  text += closingLine;
  text += '\n';
  return replaceFileAtomically(path, text);
}

}  // namespace marv
