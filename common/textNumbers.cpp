// Number and token reading shared by the text file readers, and the atomic
// file replacement that every writer of a user file goes through.
#include "common/textNumbers.h"

#include <unistd.h>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>

namespace marv {

double parseNumber(const std::string& text) {
  const char* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  const double v = std::strtod(begin, &end);
  if (end == begin || std::isnan(v)) return 0.0;
  return v;
}

int truncToInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483647.0) return INT_MAX;
  if (value <= -2147483648.0) return INT_MIN;
  return static_cast<int>(value);
}

float narrowToFloat(double value) {
  constexpr double largest = 3.4028234663852886e38;
  if (value > largest) return static_cast<float>(largest);
  if (value < -largest) return static_cast<float>(-largest);
  return static_cast<float>(value);
}

bool nextToken(tokenReader& reader, std::string& out) {
  out.clear();
  if (reader.file == nullptr) return false;
  int c = 0;
  do {
    c = std::fgetc(reader.file);
  } while (c != EOF && std::isspace(static_cast<unsigned char>(c)));
  if (c == EOF) return false;
  while (c != EOF && !std::isspace(static_cast<unsigned char>(c))) {
    out.push_back(static_cast<char>(c));
    if (static_cast<int>(out.size()) == textBufferSize - 1) return true;
    c = std::fgetc(reader.file);
  }
  // The blank that ended the token stays in the file, so that a reader that
  // goes on by lines still sees the end of this one.
  if (c != EOF) std::ungetc(c, reader.file);
  return true;
}

bool replaceFileAtomically(const std::string& path, const std::string& text) {
  return replaceFileAtomically(path, text.data(), text.size());
}

bool replaceFileAtomically(const std::string& path, const void* bytes, std::size_t size) {
  const std::string temporary = path + ".tmp";
  std::FILE* f = std::fopen(temporary.c_str(), "wb");
  if (f == nullptr) return false;
  const bool written = size == 0 || std::fwrite(bytes, 1, size, f) == size;
  const bool flushed = std::fflush(f) == 0 && fsync(fileno(f)) == 0;
  const bool closed = std::fclose(f) == 0;
  if (!written || !flushed || !closed || std::rename(temporary.c_str(), path.c_str()) != 0) {
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}

}  // namespace marv
