// param.txt reader and writer. The reader runs two passes over the lines: the
// first classifies each non-empty line by its first non-blank character
// (digit: parameter, '/': comment, '#': mark, other: text), the second turns
// parameter and text lines into entries.
#include "project/parameterFile.h"

#include <cctype>
#include <cstdio>
#include <vector>

#include "common/textNumbers.h"
#include "layer/layer.h"

namespace marv {

namespace {

enum class lineKind { parameter, comment, mark, text };

struct fileLine {
  lineKind kind = lineKind::text;
  std::string text;  // from the first non-blank character, line end kept
};

// Reads the next non-empty line: blanks and empty lines before its first
// non-blank character are skipped, then up to textBufferSize - 1 bytes of the
// line are kept with its line end. The rest of an over-long line is dropped.
bool readLine(std::FILE* f, std::string& out) {
  out.clear();
  int c = 0;
  do {
    c = std::fgetc(f);
  } while (c != EOF && std::isspace(static_cast<unsigned char>(c)));
  if (c == EOF) return false;
  while (c != EOF) {
    if (c == '\n') {
      if (!out.empty() && out.back() == '\r') out.pop_back();
      out.push_back('\n');
      break;
    }
    if (static_cast<int>(out.size()) < textBufferSize - 1) out.push_back(static_cast<char>(c));
    c = std::fgetc(f);
  }
  return true;
}

lineKind classify(char first) {
  if (std::isdigit(static_cast<unsigned char>(first))) return lineKind::parameter;
  if (first == '/') return lineKind::comment;
  if (first == '#') return lineKind::mark;
  return lineKind::text;
}

// First two blank-separated tokens of a line.
void splitTokens(const std::string& line, std::string& first, std::string& second) {
  first.clear();
  second.clear();
  std::size_t p = 0;
  std::string* targets[2] = {&first, &second};
  for (std::string* t : targets) {
    while (p < line.size() && std::isspace(static_cast<unsigned char>(line[p]))) ++p;
    while (p < line.size() && !std::isspace(static_cast<unsigned char>(line[p]))) t->push_back(line[p++]);
  }
}

// Keeps only the characters that can make a number: + - . E e and digits.
std::string numberCharacters(const std::string& token) {
  std::string out;
  for (char c : token) {
    if (std::isdigit(static_cast<unsigned char>(c)) || c == '+' || c == '-' || c == '.' || c == 'E' || c == 'e')
      out.push_back(c);
  }
  return out;
}

}  // namespace

int readParameterFile(parameterEditor& editor, appConfig&, const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return -1;

  // Pass 1: classify up to 100 non-empty lines.
  std::vector<fileLine> lines;
  std::string text;
  while (static_cast<int>(lines.size()) < maxParameterEntries && readLine(f, text)) {
    lines.push_back({classify(text[0]), text});
  }
  std::fclose(f);

  // Pass 2: parameter and text lines become entries, in file order.
  editor.count = 0;
  for (const fileLine& line : lines) {
    if (line.kind == lineKind::comment || line.kind == lineKind::mark) continue;
    parameterEntry entry;
    if (line.kind == lineKind::text) {
      entry.isTextLine = 1;
      entry.description = line.text;
      entry.index = unknownParameter;
    } else {
      std::string first, second;
      splitTokens(line.text, first, second);
      const std::size_t colon = first.find(':');
      entry = lookupParameter(colon == std::string::npos ? std::string() : first.substr(colon + 1));
      entry.value = numberCharacters(second);
      entry.description = parameterDescription(entry.index);
    }
    editor.entries[editor.count++] = entry;
  }
  return editor.count;
}

std::string formatParameterFile(const parameterEditor& editor, const std::string& version) {
  std::string out;
  char line[1400];
  out += "//==========================================================================//\n";
  std::snprintf(line, sizeof line, "//   Marvanesse+ parameter file...              -- %s --                //\n",
                version.c_str());
  out += line;
  out +=
      "//--------------------------------------------------------------------------//\n"
      "//   You may directly edit this file, but follow below rules. Each          //\n"
      "//   parameter entry consists of three blocks divided by [SPACE] or         //\n"
      "//   double-slash(//). The order of these entries can be arbitorary.        //\n"
      "//   Example:                                                               //\n"
      "//   003:name     0.00123456789   // some explanation of the parameter      //\n"
      "//   ^^^^^^^^^    ^^^^^^^^^^^^^     ^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^     //\n"
      "//   1st block      2nd block          3rd block starts after (//).         //\n"
      "//==========================================================================//\n";
  for (int i = 0; i < editor.count; ++i) {
    const parameterEntry& e = editor.entries[i];
    if (e.isTextLine) {
      out += e.description;
      out += '\n';
    } else {
      std::snprintf(line, sizeof line, "%03d:%-20s %20s  // ", i + 1, e.name.c_str(), e.value.c_str());
      out += line;
      out += e.description;
      out += '\n';
    }
  }
  out += "#End of file";
  return out;
}

int writeParameterFile(const parameterEditor& editor, const std::string& version) {
  if (!replaceFileAtomically("./input/param.txt", formatParameterFile(editor, version))) return -1;
  waitMs(100);
  return 1;
}

}  // namespace marv
