// The STL reader on valid and damaged files of both forms, and the placement operations on a small model.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>

#include "domain/modelPlacement.h"
#include "domain/stlReader.h"
#include "testSupport.h"

namespace marv {
namespace {

std::string binaryStl(std::uint32_t count, int records, const char* header = "binary") {
  std::string bytes(84, '\0');
  std::memcpy(bytes.data(), header, std::strlen(header));
  for (int b = 0; b < 4; ++b) bytes[80 + b] = static_cast<char>((count >> (8 * b)) & 255);
  for (int r = 0; r < records; ++r) {
    float values[12] = {0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0};
    values[3] = static_cast<float>(r);  // vertex 0 x tells the records apart
    bytes.append(reinterpret_cast<const char*>(values), sizeof values);
    bytes.append(2, '\0');
  }
  return bytes;
}

std::string facet(float x) {
  const std::string n = std::to_string(x);
  return "  facet normal 0 0 1\n    outer loop\n      vertex " + n +
         " 0 0\n      vertex 1 0 0\n"
         "      vertex 0 1 0\n    endloop\n  endfacet\n";
}

struct stlFile {
  std::filesystem::path folder = marvtest::scratchFolder("stl");
  std::string path = (folder / "bc.stl").string();
  ~stlFile() { std::filesystem::remove_all(folder); }
  stlResult read(const std::string& bytes, bcSurface& s, int inward = 0) {
    marvtest::writeText(path, bytes);
    return readStlFile(s, path, inward);
  }
};

bcSurface triangleModel() {
  bcSurface s;
  bcTriangle t;
  const float v[3][3] = {{1, 2, 3}, {4, 2, 3}, {1, 6, 5}};
  std::memcpy(t.vertex, v, sizeof v);
  t.normal[2] = 1.0f;
  s.triangles = {t};
  s.numTriangles = 1;
  return s;
}

TEST(StlReader, BothFormsAndTheirLayouts) {
  stlFile file;
  bcSurface s;
  EXPECT_EQ(file.read(binaryStl(0, 0), s).stored, 1) << "84 bytes with count 0: a model of no triangles";
  EXPECT_EQ(s.numTriangles, 0);
  ASSERT_EQ(file.read(binaryStl(3, 3, "solid made by a CAD program"), s, 1).stored, 1) << "solid header, binary size";
  ASSERT_EQ(s.numTriangles, 3);
  EXPECT_EQ(s.triangles[2].vertex[0][0], 2.0f);
  EXPECT_EQ(s.triangles[1].normal[2], -1.0f) << "inward normals are negated";

  ASSERT_EQ(file.read("solid part\n" + facet(0) + facet(5) + "endsolid part\n", s, 1).stored, 1);
  ASSERT_EQ(s.numTriangles, 2);
  EXPECT_EQ(s.triangles[0].normal[2], -1.0f);
  EXPECT_FLOAT_EQ(s.triangles[1].centroid[0], 2.0f);
  // Several solids: reading stops at the first endsolid; the facets counted
  // from the later lines stay as zero triangles.
  ASSERT_EQ(
      file.read("solid a\n" + facet(1) + "endsolid a\nsolid b\n" + facet(2) + facet(3) + "endsolid b\n", s).stored, 1);
  EXPECT_EQ(std::tuple(s.numTriangles, s.triangles[0].vertex[0][0], s.triangles[1].vertex[0][0]),
            std::tuple(3, 1.0f, 0.0f));
  // Blank lines make the count too large (zero surplus).
  EXPECT_EQ(file.read("solid a\n\n\n\n\n\n\n\n" + facet(1) + "endsolid\n", s).stored, 1);
  EXPECT_EQ(s.numTriangles, 2);
  EXPECT_EQ(file.read("solid " + std::string(100000, 'y') + "\n" + facet(1) + "endsolid\n", s).stored, 1)
      << "a long line is cut, not a fault";
}

TEST(StlReader, BadFilesAreRefusedAndKeepTheModel) {
  stlFile file;
  std::string nan = binaryStl(1, 1), infinite = facet(1), shortFacets = "solid a\n";
  const float bad = std::nanf("");
  std::memcpy(nan.data() + 84 + 12, &bad, 4);
  infinite.replace(infinite.find("0 0 1"), 5, "0 0 inf");
  // Short facets make the count too small, and the facet beyond it refuses the file.
  for (int f = 0; f < 12; ++f)
    shortFacets += "facet normal 0 0 1\nouter loop\nvertex 0 0 0 vertex 1 0 0 vertex 0 1 0\nendloop\nendfacet\n";
  const std::pair<std::string, stlProblem> badFiles[] = {
      {binaryStl(4000000000u, 2), stlProblem::notSolid},  // a count the size does not carry
      {"solid x\nendsolid\n", stlProblem::tooShort},
      {nan, stlProblem::notFinite},
      {shortFacets + "endsolid\n", stlProblem::tooManyFacets},
      {std::string(200, 'x') + "\n", stlProblem::notSolid},
      {"solid a\n" + infinite + "endsolid\n", stlProblem::notFinite}};
  for (const auto& [bytes, problem] : badFiles) {
    SCOPED_TRACE(bytes.substr(0, 20));
    bcSurface s = triangleModel();
    const stlResult got = file.read(bytes, s);
    EXPECT_EQ(std::pair(got.stored, got.problem), std::pair(0, problem));
    EXPECT_EQ(s.numTriangles, 1) << "the model is kept";
    EXPECT_FALSE(stlProblemText(problem, "x").empty());
  }
  bcSurface s;
  EXPECT_EQ(readStlFile(s, (file.folder / "none.stl").string(), 0).problem, stlProblem::missing);
  EXPECT_TRUE(stlProblemText(stlProblem::missing, "x").empty()) << "no model is no fault";
}

TEST(ModelPlacement, LoadOrderMirrorsScalesTurnsThenMoves) {
  appConfig cfg;
  cfg.coordSTL = 0;
  cfg.unitSTL = 1;  // cm
  cfg.zRotSTL = 90.0;
  cfg.xoffstSTL = 1.0;
  bcSurface m = triangleModel();
  placeModelAtLoad(m, cfg);
  // mirror: z (3, 3, 5) -> (4, 4, 2); cm: x 0.01, 0.04, 0.01; y 0.02, 0.02, 0.06;
  // z-turn: x' = -y, y' = x, z' = -z; then x += 1.
  EXPECT_NEAR(m.triangles[0].vertex[0][0], 1.0f - 0.02f, 1e-6);
  EXPECT_NEAR(m.triangles[0].vertex[0][1], 0.01f, 1e-6);
  EXPECT_NEAR(m.triangles[0].vertex[0][2], -0.04f, 1e-6);
}

}  // namespace
}  // namespace marv
