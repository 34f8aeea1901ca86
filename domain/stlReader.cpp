// The STL reader. The binary form is recognised by its size, 84 + 50 n bytes
// for the n triangles its header announces; everything else is read as ASCII,
// twice: once to count the lines, which sizes the array, once to read the
// facets into it.
#include "domain/stlReader.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <vector>

#include "common/textNumbers.h"

namespace marv {

namespace {

constexpr int lineLimit = 399;  // bytes of a line that are looked at

// Next line without its end, at most lineLimit bytes kept; false at the end.
bool readLine(std::FILE* f, std::string& line) {
  line.clear();
  int c = std::fgetc(f);
  if (c == EOF) return false;
  while (c != EOF && c != '\n') {
    if (static_cast<int>(line.size()) < lineLimit) line.push_back(static_cast<char>(c));
    c = std::fgetc(f);
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

bool holds(const std::string& line, const char* word) { return line.find(word) != std::string::npos; }

float littleFloat(const unsigned char* p) {
  const std::uint32_t bits = static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
                             static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
  float value = 0.0f;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// A number of the file as float: beyond the float range it saturates, and
// a value that is no finite number stays one, so that the model is refused.
float stlFloat(const std::string& text) {
  const double value = parseNumber(text);
  return std::isfinite(value) ? narrowToFloat(value) : std::nanf("");
}

// Three numbers of a line.
void parseNumbers(const std::string& line, float out[3]) {
  std::istringstream in(line);
  std::string token;
  for (int i = 0; i < 3; ++i) {
    token.clear();
    in >> token;
    out[i] = stlFloat(token);
  }
}

bool finiteTriangle(const bcTriangle& t) {
  for (int v = 0; v < 3; ++v)
    for (int a = 0; a < 3; ++a)
      if (!std::isfinite(t.vertex[v][a])) return false;
  for (int a = 0; a < 3; ++a)
    if (!std::isfinite(t.normal[a])) return false;
  return true;
}

stlResult readBinary(std::FILE* f, std::uint32_t n, bcSurface& surface, int normVecDirSTL) {
  std::vector<bcTriangle> triangles(n);
  unsigned char record[50];
  const float sign = normVecDirSTL == 1 ? -1.0f : 1.0f;
  for (std::uint32_t t = 0; t < n; ++t) {
    if (std::fread(record, 1, sizeof record, f) != sizeof record) return {0, stlProblem::tooShort};
    bcTriangle& tri = triangles[t];
    for (int a = 0; a < 3; ++a) tri.normal[a] = littleFloat(record + 4 * a) * sign;
    for (int v = 0; v < 3; ++v)
      for (int a = 0; a < 3; ++a) tri.vertex[v][a] = littleFloat(record + 12 + 12 * v + 4 * a);
    if (!finiteTriangle(tri)) return {0, stlProblem::notFinite};
  }
  surface.triangles = std::move(triangles);
  surface.numTriangles = static_cast<int>(n);
  return {1, stlProblem::none};
}

stlResult readAscii(const std::string& path, bcSurface& surface, int normVecDirSTL) {
  std::FILE* f = std::fopen(path.c_str(), "r");
  if (f == nullptr) return {0, stlProblem::missing};
  std::string line;
  if (!readLine(f, line) || line.size() < 5 || !holds(line, "solid")) {
    std::fclose(f);
    return {0, stlProblem::notSolid};
  }
  long long lines = 1;
  while (readLine(f, line)) ++lines;
  const long long counted = (lines - 2) / 7;
  if (counted > 2147483647LL) {
    std::fclose(f);
    return {0, stlProblem::tooManyFacets};
  }
  const int T = counted > 0 ? static_cast<int>(counted) : 0;
  std::vector<bcTriangle> triangles(static_cast<std::size_t>(T));
  std::rewind(f);
  const float sign = normVecDirSTL == 1 ? -1.0f : 1.0f;
  int c = 0;
  stlResult result{1, stlProblem::none};
  while (readLine(f, line)) {
    if (line.size() >= 8 && holds(line, "endsolid")) break;
    if (c >= T) {
      result = {0, stlProblem::tooManyFacets};
      break;
    }
    if (line.size() < 12 || !holds(line, "facet normal")) continue;
    bcTriangle& tri = triangles[c];
    parseNumbers(line.substr(line.find("facet normal") + 12), tri.normal);
    for (float& n : tri.normal) n *= sign;
    if (!readLine(f, line) || line.size() < 10 || !holds(line, "outer loop")) continue;
    // The vertices are read as tokens, a word and three numbers each,
    // wherever the line breaks fall.
    tokenReader tokens{f};
    for (int v = 0; v < 3; ++v) {
      std::string word, number;
      nextToken(tokens, word);
      for (int a = 0; a < 3; ++a) {
        if (!nextToken(tokens, number)) number.clear();
        tri.vertex[v][a] = stlFloat(number);
      }
    }
    for (int a = 0; a < 3; ++a)
      tri.centroid[a] = static_cast<float>((tri.vertex[0][a] + tri.vertex[1][a] + tri.vertex[2][a]) / 3.0);
    if (!finiteTriangle(tri)) {
      result = {0, stlProblem::notFinite};
      break;
    }
    ++c;
    readLine(f, line);  // the rest of the last vertex line
    readLine(f, line);  // endloop
    readLine(f, line);  // endfacet
  }
  std::fclose(f);
  if (result.stored == 1) {
    surface.triangles = std::move(triangles);
    surface.numTriangles = T;
  }
  return result;
}

}  // namespace

stlResult readStlFile(bcSurface& surface, const std::string& path, int normVecDirSTL) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) return {0, stlProblem::missing};
  unsigned char head[84];
  if (std::fread(head, 1, sizeof head, f) != sizeof head) {
    std::fclose(f);
    return {0, stlProblem::tooShort};
  }
  const std::uint32_t n = static_cast<std::uint32_t>(head[80]) | static_cast<std::uint32_t>(head[81]) << 8 |
                          static_cast<std::uint32_t>(head[82]) << 16 | static_cast<std::uint32_t>(head[83]) << 24;
  long long size = -1;
  if (std::fseek(f, 0, SEEK_END) == 0) size = std::ftell(f);
  std::fseek(f, 84, SEEK_SET);
  // A count that does not fit numTriangles cannot be a model of ours.
  if (50LL * n + 84 == size && n <= 2147483647u) {
    const stlResult r = readBinary(f, n, surface, normVecDirSTL);
    std::fclose(f);
    return r;
  }
  std::fclose(f);
  return readAscii(path, surface, normVecDirSTL);
}

int readStl(bcSurface& surface, int normVecDirSTL) {
  return readStlFile(surface, "./input/bc.stl", normVecDirSTL).stored;
}

std::string stlProblemText(stlProblem problem, const std::string& path) {
  switch (problem) {
    case stlProblem::none:
    case stlProblem::missing: return std::string();
    case stlProblem::tooShort: return path + " is too short to be an STL model; the case runs without a model.";
    case stlProblem::notSolid:
      return path +
             " is neither a binary STL file (its size does not match its triangle count) nor an ASCII one "
             "(its first line holds no \"solid\"); the case runs without a model.";
    case stlProblem::tooManyFacets:
      return path + " holds more facets than its lines allow (seven lines a facet); the case runs without a model.";
    case stlProblem::notFinite:
      return path + " holds a coordinate or normal that is not a finite number; the case runs without a model.";
  }
  return std::string();
}

}  // namespace marv
