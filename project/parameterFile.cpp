// param.txt reader and writer. The reader runs two passes over the lines: the
// first classifies each non-empty line by its first non-blank character
// (digit: parameter, '/': comment, '#': mark, other: text), the second turns
// parameter and text lines into entries.
#include "project/parameterFile.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
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
bool readLine(std::FILE* f, std::string& out, bool* cut = nullptr) {
  out.clear();
  if (cut) *cut = false;
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
    if (static_cast<int>(out.size()) < textBufferSize - 1)
      out.push_back(static_cast<char>(c));
    else if (cut)
      *cut = true;
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

std::string trimmed(const std::string& text) {
  std::size_t b = 0, e = text.size();
  while (b < e && std::isspace(static_cast<unsigned char>(text[b]))) ++b;
  while (e > b && std::isspace(static_cast<unsigned char>(text[e - 1]))) --e;
  return text.substr(b, e - b);
}

// The comment lines at the head of the file as the writer makes them; the
// line with the version is known by its start.
bool ownHeadLine(const std::string& line) {
  static const std::string head = [] {
    parameterEditor none;
    return formatParameterFile(none, "");
  }();
  const std::string text = trimmed(line);
  if (text.rfind("//   Marvanesse+ parameter file...", 0) == 0) return true;
  std::size_t at = 0;
  while (at < head.size()) {
    const std::size_t end = head.find('\n', at);
    if (end == std::string::npos) break;
    if (head.compare(at, end - at, text) == 0) return true;
    at = end + 1;
  }
  return false;
}

// True when a parameter line carries a note after "//" other than the
// description that the writer puts there.
bool ownNoteReplaced(const std::string& line) {
  const std::size_t slashes = line.find("//");
  if (slashes == std::string::npos) return false;
  const std::string note = trimmed(line.substr(slashes + 2));
  if (note.empty()) return false;
  std::string first, second;
  splitTokens(line, first, second);
  const std::size_t colon = first.find(':');
  const parameterEntry entry = lookupParameter(colon == std::string::npos ? std::string() : first.substr(colon + 1));
  return note != trimmed(parameterDescription(entry.index));
}

}  // namespace

std::string rewriteLosses(const std::string& text) {
  if (text.empty()) return std::string();
  std::FILE* f = fmemopen(const_cast<char*>(text.data()), text.size(), "rb");
  if (f == nullptr) return std::string();
  int lines = 0, beyond = 0, comments = 0, notes = 0, cut = 0;
  std::string line;
  bool lineCut = false;
  while (readLine(f, line, &lineCut)) {
    if (++lines > maxParameterEntries) {
      // The end mark comes back with every write.
      if (trimmed(line) != "#End of file") ++beyond;
      continue;
    }
    cut += lineCut ? 1 : 0;
    const lineKind kind = classify(line[0]);
    if (kind == lineKind::comment && !ownHeadLine(line)) ++comments;
    if (kind == lineKind::mark && trimmed(line) != "#End of file") ++comments;
    if (kind == lineKind::parameter && ownNoteReplaced(line)) ++notes;
  }
  std::fclose(f);
  std::string losses;
  auto add = [&losses](int count, const char* one, const char* many) {
    if (count == 0) return;
    if (!losses.empty()) losses += ", ";
    losses += count == 1 ? std::string("1 ") + one : std::to_string(count) + " " + many;
  };
  add(beyond, "line past the hundredth", "lines past the hundredth");
  add(comments, "comment line", "comment lines");
  add(notes, "note of your own after //", "notes of your own after //");
  add(cut, "line longer than 399 characters", "lines longer than 399 characters");
  return losses;
}

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

int writeParameterFile(const parameterEditor& editor, const std::string& version, std::string* losses) {
  const char* path = "./input/param.txt";
  // What the user wrote and the rewrite would drop is kept, byte for byte,
  // before the file is replaced.
  std::string original;
  bool backedUp = false;
  if (readWholeFile(path, original)) {
    const std::string lost = rewriteLosses(original);
    if (!lost.empty()) {
      // An earlier backup is never written over: it may hold what an
      // earlier rewrite dropped. The same text is not kept twice.
      std::string name, existing;
      for (int n = 1; n <= 99; ++n) {
        name = n == 1 ? "input/param.txt.bak" : "input/param.txt.bak" + std::to_string(n);
        if (!readWholeFile("./" + name, existing) || existing == original) break;
      }
      if (existing != original && !replaceFileAtomically("./" + name, original)) return -1;
      backedUp = true;
      if (losses) *losses = lost + "|" + name;
    }
  }
  if (!replaceFileAtomically(path, formatParameterFile(editor, version))) return -1;
  waitMs(100);
  return backedUp ? 2 : 1;
}

void reportParameterWrite(appConfig& cfg, int written, const std::string& losses) {
  std::string text;
  const std::size_t bar = losses.rfind('|');
  if (written == 2)
    text = "[NOTE] input/param.txt held " + losses.substr(0, bar) +
           ", which the program does not keep when it writes the file. The original is kept as " +
           (bar == std::string::npos ? std::string("input/param.txt.bak") : losses.substr(bar + 1)) + ".";
  else if (written < 0)
    text = "[ERROR] input/param.txt could not be written (" + std::string(std::strerror(errno)) +
           "); the previous file stands.";
  if (text.empty()) return;
  if (cfg.showMessage)
    cfg.showMessage(cfg, text.c_str());
  else
    std::fprintf(stderr, "%s\n", text.c_str());
}

}  // namespace marv
