// Record files: reading their tails, telling them from other files, and
// opening them for a step's line.
#include "result/recordFiles.h"

#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace marv {

namespace {

// No line that the program writes comes near this; a longer one marks a
// file of another kind, and the limit keeps a binary file from filling the
// memory with one "line".
constexpr std::size_t longestLine = 4096;

std::vector<std::string> splitWords(const std::string& line) {
  std::vector<std::string> words;
  std::size_t at = 0;
  while (at < line.size()) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
    const std::size_t start = at;
    while (at < line.size() && line[at] != ' ' && line[at] != '\t' && line[at] != '\r') ++at;
    if (at > start) words.push_back(line.substr(start, at - start));
  }
  return words;
}

// A data line: the layout's count of numbers; the first, the step, is taken
// whole.
bool dataLine(const std::vector<std::string>& words, const recordLayout& layout, double& step) {
  if (static_cast<int>(words.size()) != layout.columns) return false;
  for (const std::string& w : words) {
    double value = 0.0;
    if (!recordNumber(w, value)) return false;
  }
  recordNumber(words[0], step);
  step = std::trunc(step);
  return std::isfinite(step);
}

// Copies the bytes from offset on into the companion file, appended.
bool saveTail(const std::string& path, std::uintmax_t offset) {
  std::FILE* in = std::fopen(path.c_str(), "rb");
  if (in == nullptr) return false;
  std::FILE* out = std::fopen((path + ".cut").c_str(), "ab");
  bool ok = out != nullptr && std::fseek(in, static_cast<long>(offset), SEEK_SET) == 0;
  char buffer[65536];
  while (ok) {
    const std::size_t got = std::fread(buffer, 1, sizeof buffer, in);
    if (got == 0) break;
    ok = std::fwrite(buffer, 1, got, out) == got;
  }
  if (out != nullptr && std::fclose(out) != 0) ok = false;
  std::fclose(in);
  return ok;
}

std::string refusalText(const std::string& path, const std::string& problem) {
  return path + " is not a record file of this program (" + problem +
         "). It is left as it is, and this run records nothing into it; move it away to record again.";
}

}  // namespace

std::string formatText(const char* format, ...) {
  char small[512];
  std::va_list args;
  va_start(args, format);
  const int needed = std::vsnprintf(small, sizeof small, format, args);
  va_end(args);
  if (needed < 0) return std::string();
  if (static_cast<std::size_t>(needed) < sizeof small) return std::string(small, static_cast<std::size_t>(needed));
  std::string text(static_cast<std::size_t>(needed) + 1, '\0');
  va_start(args, format);
  std::vsnprintf(text.data(), text.size(), format, args);
  va_end(args);
  text.resize(static_cast<std::size_t>(needed));
  return text;
}

bool recordNumber(const std::string& word, double& value) {
  if (word.empty()) return false;
  char* end = nullptr;
  value = std::strtod(word.c_str(), &end);
  return end != nullptr && *end == '\0' && end != word.c_str();
}

void showRecordMessage(appConfig& cfg, const std::string& text) {
  if (cfg.showMessage != nullptr)
    cfg.showMessage(cfg, text.c_str());
  else
    std::fprintf(stderr, "marvanesse: %s\n", text.c_str());
}

recordScan scanRecordFile(const std::string& path, const recordLayout& layout, int keepUpTo) {
  recordScan scan;
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return scan;
  scan.exists = true;
  std::string line;
  std::uintmax_t offset = 0;  // where the current line begins
  bool dataSeen = false;
  long lineNumber = 0;
  auto fail = [&](const std::string& problem) {
    scan.garbage = true;
    scan.problem = problem;
  };
  for (;;) {
    const int c = std::fgetc(f);
    if (c == EOF) break;
    if (c == '\0') {
      fail("it holds binary data");
      break;
    }
    if (c != '\n') {
      if (line.size() >= longestLine) {
        fail("line " + std::to_string(lineNumber + 1) + " is too long");
        break;
      }
      line.push_back(static_cast<char>(c));
      continue;
    }
    // A whole line.
    ++lineNumber;
    const std::uintmax_t end = offset + line.size() + 1;
    const std::vector<std::string> words = splitWords(line);
    double step = 0.0;
    if (words.empty()) {
      // Blank lines are harmless: a spreadsheet may leave one.
    } else if (words == layout.headWords) {
      if (!dataSeen && !scan.headKept) {
        scan.keepEnd = end;
        scan.headKept = true;
      }
    } else if (dataLine(words, layout, step)) {
      dataSeen = true;
      scan.lastData = words;
      if (step <= keepUpTo) scan.keepEnd = end;
    } else {
      fail("line " + std::to_string(lineNumber) + " is neither its head line nor a line of " +
           std::to_string(layout.columns) + " numbers");
      break;
    }
    offset = end;
    line.clear();
  }
  // Count the whole file, also what lies behind a refusal or a half line.
  std::fseek(f, 0, SEEK_END);
  const long size = std::ftell(f);
  scan.size = size > 0 ? static_cast<std::uintmax_t>(size) : 0;
  std::fclose(f);
  if (scan.garbage) {
    scan.lastData.clear();
    scan.keepEnd = 0;
    scan.headKept = false;
  }
  return scan;
}

int readRecordTail(appConfig& cfg, const std::string& path, const recordLayout& layout, std::vector<std::string>& words,
                   std::uint8_t& refused) {
  words.clear();
  const recordScan scan = scanRecordFile(path, layout, 0);
  if (!scan.exists) return 0;
  if (scan.garbage) {
    if (!refused) showRecordMessage(cfg, refusalText(path, scan.problem));
    refused = 1;
    return -1;
  }
  words = scan.lastData;
  return 1;
}

std::FILE* openRecordForLine(appConfig& cfg, const std::string& path, const recordLayout& layout,
                             const std::string& headLine, int& headerDone, std::uint8_t& refused) {
  if (refused) return nullptr;
  if (headerDone != 0) return std::fopen(path.c_str(), "ab");

  // First line of this pass: look at what the file holds before touching it.
  const recordScan scan = scanRecordFile(path, layout, cfg.sts);
  if (scan.garbage) {
    showRecordMessage(cfg, refusalText(path, scan.problem));
    refused = 1;
    return nullptr;
  }
  const bool anew = cfg.ts == 0 || cfg.sts <= 0;
  bool needHead = true;
  if (!anew && scan.exists) {
    if (scan.keepEnd < scan.size) {
      // Lines after the restart step belong to the run that is now redone;
      // they are kept beside the record, and a half line goes with them.
      if (!saveTail(path, scan.keepEnd)) return nullptr;
      std::error_code failed;
      std::filesystem::resize_file(path, scan.keepEnd, failed);
      if (failed) return nullptr;
    }
    needHead = !scan.headKept;
  }
  std::FILE* f = std::fopen(path.c_str(), anew ? "wb" : "ab");
  if (f == nullptr) return nullptr;
  headerDone = 1;
  if (needHead) std::fwrite(headLine.data(), 1, headLine.size(), f);
  return f;
}

void finishRecordLine(std::FILE* file, const std::string& text) {
  if (file == nullptr) return;
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
}

void readColourFlags(appConfig& cfg, const std::string& path, const recordLayout& layout,
                     std::array<std::uint8_t, numColourTypes>& on, int& count, std::uint8_t& refused) {
  std::vector<std::string> words;
  const int read = readRecordTail(cfg, path, layout, words, refused);
  count = 0;
  if (read != 1) return;
  // Colour 0, the free fluid, is never recorded; colours 1 to 8 follow ts.
  for (int c = 1; c < numColourTypes; ++c) {
    double value = 0.0;
    const bool flag = !words.empty() && recordNumber(words[1 + c], value) && std::trunc(value) != 0.0;
    on[c] = flag ? 1 : 0;
    count += flag ? 1 : 0;
  }
}

}  // namespace marv
