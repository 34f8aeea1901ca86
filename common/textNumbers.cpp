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

bool readWholeFile(const std::string& path, std::string& text) {
  text.clear();
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return false;
  char buffer[65536];
  std::size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) text.append(buffer, n);
  const bool ok = std::ferror(f) == 0;
  std::fclose(f);
  return ok;
}

namespace {

// The file that a write to path lands in: path itself, or for a symbolic
// link the file at the end of its chain (which need not exist yet).
std::string writeTarget(const std::string& path) {
  std::string target = path;
  for (int hops = 0; hops < 40; ++hops) {
    char link[4096];
    const ssize_t n = ::readlink(target.c_str(), link, sizeof link - 1);
    if (n <= 0) break;
    link[n] = '\0';
    if (link[0] == '/') {
      target = link;
    } else {
      const std::size_t slash = target.find_last_of('/');
      target = (slash == std::string::npos ? std::string() : target.substr(0, slash + 1)) + link;
    }
  }
  return target;
}

}  // namespace

bool replaceFileAtomically(const std::string& given, const void* bytes, std::size_t size) {
  const std::string path = writeTarget(given);
  const std::string temporary = path + ".tmp";
  std::FILE* f = std::fopen(temporary.c_str(), "wb");
  if (f == nullptr) return false;
  const bool written = size == 0 || std::fwrite(bytes, 1, size, f) == size;
  const bool flushed = std::fflush(f) == 0 && fsync(fileno(f)) == 0;
  const bool closed = std::fclose(f) == 0;
  if (!written || !flushed || !closed || std::rename(temporary.c_str(), path.c_str()) != 0) {
    const int error = errno;  // the reason stays for the caller's message
    std::remove(temporary.c_str());
    errno = error;
    return false;
  }
  return true;
}

}  // namespace marv
