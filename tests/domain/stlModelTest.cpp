// The STL model: the reader on valid and damaged files of both forms, placement on load, the scan of a sphere
// (shell, mirrored image points, solid core), far vertices, and an unusable model in a case.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/appConfig.h"
#include "domain/bitmapDomain.h"
#include "domain/modelPlacement.h"
#include "domain/prepareInputs.h"
#include "domain/stlReader.h"
#include "domain/stlScan.h"
#include "project/applyParameters.h"
#include "testSupport.h"
#include "tests/domain/sphereModel.h"
#include "tests/testGrid.h"

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

constexpr double pi = 3.14159265358979323846;

// Builds an n^3 unit-box domain and scans the model into it.
void scanInto(appConfig& cfg, bcDomain& domain, int n, bcSurface model) {
  testing::setGrid(cfg, n, n, n);
  cfg.stlPresent = 1;
  constructDomain(domain, cfg);
  domain.surfaces[stlType] = std::move(model);
  fill<int>(domain.nearestTriangle, noTriangle);
  scanModel(domain, cfg);
}

// Model heights run opposite to the solver's: the sphere, centred at model
// height 0.375 (node 12 of 33), lies about solver height 0.625 (node 20).
TEST(StlScan, SphereGivesAShellWithMirroredImagePointsOverASolidCore) {
  appConfig cfg;
  bcDomain domain;
  const double c = 0.5, R = 0.3, cz = 1.0 - 0.375;
  scanInto(cfg, domain, 33, sphereModel(c, c, 0.375, R, 40, 80));
  EXPECT_NE(domain.bcFlag(24, 16, 20), fluidType) << "inside, 0.25 from the centre in the solver's heights";
  EXPECT_EQ(domain.bcFlag(16, 16, 4), fluidType) << "inside in the model's own heights";

  const double diag = std::sqrt(3.0) * cfg.dx;
  int shell = 0, core = 0;
  for (int k = 0; k < 33; ++k)
    for (int j = 0; j < 33; ++j)
      for (int i = 0; i < 33; ++i) {
        const double x = cfg.xCoord[i] - c, y = cfg.yCoord[j] - c, z = cfg.zCoord[k] - cz;
        const double r = std::sqrt(x * x + y * y + z * z);
        const int flag = domain.bcFlag(i, j, k);
        if (r > R + 1e-3) {
          ASSERT_EQ(flag, 0) << "outside the sphere at i=" << i << " j=" << j << " k=" << k;
        }
        if (flag == 7) {
          ++shell;
          EXPECT_LT(R - r, diag + 1e-3) << "a shell node within a cell of the surface at i=" << i << " j=" << j;
          const double ix = domain.imageX(i, j, k) - c, iy = domain.imageY(i, j, k) - c,
                       iz = domain.imageZ(i, j, k) - cz;
          const double ri = std::sqrt(ix * ix + iy * iy + iz * iz);
          EXPECT_NEAR(ri, 2.0 * R - r, 2e-3) << "the image mirrors the node at i=" << i << " j=" << j << " k=" << k;
        }
        if (flag == 10) {
          ++core;
          EXPECT_LT(r, R) << "solid inside at i=" << i << " j=" << j << " k=" << k;
        }
      }
  // The shell is about one cell diagonal thick over the sphere's surface.
  const double shellVolume = 4.0 * pi * R * R * diag;
  const double nodeVolume = cfg.dx * cfg.dy * cfg.dz;
  EXPECT_GT(shell, 0.3 * shellVolume / nodeVolume);
  EXPECT_LT(shell, 1.5 * shellVolume / nodeVolume);
  EXPECT_GT(core, 0);
}

// Node indices of points this far away saturate; the scan box around them
// and every index sum must stay defined (the sanitizer build checks it).
TEST(StlScan, VerticesFarOutsideAndAHugeScanWidthMarkNothing) {
  for (const float far : {1e30f, -1e30f, 3e38f, -3e38f}) {
    for (const int width : {5, 2147483647}) {
      appConfig cfg;
      testing::setGrid(cfg, 9, 9, 9);
      cfg.stlPresent = 1;
      cfg.scanningPixelWidthIBM = width;
      bcDomain domain;
      constructDomain(domain, cfg);
      domain.surfaces[7] = sphereModel(far, -far, far, 0.5, 4, 8);
      bcTriangle spread;  // one vertex each in a different far corner
      const float corners[3][3] = {{far, 0.5f, 0.5f}, {0.5f, -far, 0.5f}, {0.5f, 0.5f, far}};
      std::memcpy(spread.vertex, corners, sizeof corners);
      spread.centroid[0] = spread.centroid[1] = spread.centroid[2] = far;
      spread.normal[0] = 1.0f;
      domain.surfaces[7].triangles.push_back(spread);
      domain.surfaces[7].numTriangles = static_cast<int>(domain.surfaces[7].triangles.size());
      fill<int>(domain.nearestTriangle, noTriangle);
      scanModel(domain, cfg);
      int marked = 0;
      for (int n = 0; n < domain.bcFlag.count(); ++n) marked += domain.bcFlag[n] != 0;
      EXPECT_EQ(marked, 0) << "far " << far << ", width " << width;
    }
  }
}

std::vector<std::string> said;
void keep(appConfig&, const char* text) { said.push_back(text); }

// A 33^3 unit box with an unreadable input/bc.stl, built as a run builds it.
TEST(StlDomain, UnusableModelIsSaidOnceAndTheCaseRunsWithoutIt) {
  marvtest::inFolder here(marvtest::scratchFolder("stlbad"));
  marvtest::writeText("input/bc.stl", std::string(200, 'z') + "\n");
  parameterEditor editor;
  resetParameterEditor(editor);
  for (const auto& [name, value] : {std::pair{"nx", "33"}, {"ny", "33"}, {"nz", "33"}, {"domx", "330"}, {"ibm", "1"}}) {
    parameterEntry e = lookupParameter(name);
    e.value = value;
    editor.entries[editor.count++] = e;
  }
  takeChoiceValues(editor);
  appConfig cfg;
  constructAppConfig(cfg, false, false);
  cfg.showMessage = keep;
  omp_set_num_threads(1);
  ASSERT_EQ(applyParameters(editor, cfg, editor.count), 1);
  bcDomain domain;
  constructDomain(domain, cfg);
  prepareFromInputs(domain, cfg);
  build3D(domain, cfg);
  EXPECT_EQ(cfg.stlPresent, 0);
  ASSERT_EQ(said.size(), 1u);
  EXPECT_NE(said[0].find("bc.stl"), std::string::npos) << said[0];
  int model = 0;
  for (int at = 0; at < domain.bcFlag.count(); ++at) model += domain.bcFlag[at] == stlType;
  EXPECT_EQ(model, 0);
}

}  // namespace
}  // namespace marv
