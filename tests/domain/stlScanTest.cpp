// The STL scan of a sphere (shell, mirrored image points, solid core), far vertices, and an unusable model in a case.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstring>
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
