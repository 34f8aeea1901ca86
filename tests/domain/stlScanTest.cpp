// The STL scan of a sphere (shell, mirrored image points, solid core), far vertices, and an unusable model in a case.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "app/appConfig.h"
#include "domain/bitmapDomain.h"
#include "domain/prepareInputs.h"
#include "domain/stlScan.h"
#include "project/applyParameters.h"
#include "testSupport.h"
#include "tests/domain/sphereModel.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

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
      for (int v = 0; v < 3; ++v)
        for (int a = 0; a < 3; ++a) spread.vertex[v][a] = corners[v][a];
      for (int a = 0; a < 3; ++a) spread.centroid[a] = far;
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

struct stlCase {
  appConfig cfg;
  bcDomain domain;
  int result = 0;
  std::vector<std::string> messages;
};

std::vector<std::string>* log = nullptr;
void keep(appConfig&, const char* text) {
  if (log) log->push_back(text);
}

// A 33^3 unit box with the model in input/bc.stl, built as a run builds it.
void build(stlCase& c, const std::vector<std::pair<const char*, const char*>>& extra) {
  parameterEditor editor;
  resetParameterEditor(editor);
  std::vector<std::pair<const char*, const char*>> values = {
      {"nx", "33"}, {"ny", "33"}, {"nz", "33"}, {"domx", "330"}, {"ibm", "1"}};
  values.insert(values.end(), extra.begin(), extra.end());
  for (const auto& [name, value] : values) {
    parameterEntry e = lookupParameter(name);
    e.value = value;
    editor.entries[editor.count++] = e;
  }
  takeChoiceValues(editor);
  constructAppConfig(c.cfg, false, false);
  log = &c.messages;
  c.cfg.showMessage = keep;
  omp_set_num_threads(1);
  c.result = applyParameters(editor, c.cfg, editor.count);
  constructDomain(c.domain, c.cfg);
  prepareFromInputs(c.domain, c.cfg);
  build3D(c.domain, c.cfg);
  log = nullptr;
}

int countType(const bcDomain& d, int type) {
  int n = 0;
  for (int at = 0; at < d.bcFlag.count(); ++at) n += d.bcFlag[at] == type;
  return n;
}

TEST(StlDomain, UnusableModelIsSaidOnceAndTheCaseRunsWithoutIt) {
  marvtest::inFolder here(marvtest::scratchFolder("stlbad"));
  marvtest::writeText("input/bc.stl", std::string(200, 'z') + "\n");
  stlCase c;
  build(c, {});
  ASSERT_EQ(c.result, 1);
  EXPECT_EQ(c.cfg.stlPresent, 0);
  ASSERT_EQ(c.messages.size(), 1u);
  EXPECT_NE(c.messages[0].find("bc.stl"), std::string::npos) << c.messages[0];
  EXPECT_EQ(countType(c.domain, 7), 0);
}

}  // namespace
}  // namespace marv
