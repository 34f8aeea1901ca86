// A model in a real case: input/bc.stl read by prepareFromInputs, placed by
// the parameters, and scanned by build3D into a shell of surface nodes (7)
// over a solid core (9), counted against the sphere's surface and volume.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "app/appConfig.h"
#include "domain/bitmapDomain.h"
#include "domain/prepareInputs.h"
#include "project/applyParameters.h"
#include "testSupport.h"

namespace marv {
namespace {

constexpr double pi = 3.14159265358979323846;

void writeSphereStl(const std::string& path, double cx, double cy, double cz, double r, int rings, int segments) {
  std::string bytes(84, '\0');
  int count = 0;
  auto at = [&](int ring, int seg, float out[3]) {
    const double theta = pi * ring / rings, phi = 2.0 * pi * seg / segments;
    out[0] = static_cast<float>(cx + r * std::sin(theta) * std::cos(phi));
    out[1] = static_cast<float>(cy + r * std::sin(theta) * std::sin(phi));
    out[2] = static_cast<float>(cz + r * std::cos(theta));
  };
  auto add = [&](int r0, int s0, int r1, int s1, int r2, int s2) {
    float v[3][3];
    at(r0, s0, v[0]), at(r1, s1, v[1]), at(r2, s2, v[2]);
    float n[3];
    double len = 0.0;
    for (int a = 0; a < 3; ++a) {
      n[a] = (v[0][a] + v[1][a] + v[2][a]) / 3.0f - static_cast<float>(a == 0 ? cx : a == 1 ? cy : cz);
      len += n[a] * n[a];
    }
    for (float& x : n) x = static_cast<float>(x / std::sqrt(len));
    bytes.append(reinterpret_cast<const char*>(n), sizeof n);
    bytes.append(reinterpret_cast<const char*>(v), sizeof v);
    bytes.append(2, '\0');
    ++count;
  };
  for (int ring = 0; ring < rings; ++ring)
    for (int seg = 0; seg < segments; ++seg) {
      if (ring > 0) add(ring, seg, ring + 1, seg, ring, seg + 1);
      if (ring < rings - 1) add(ring + 1, seg, ring + 1, seg + 1, ring, seg + 1);
    }
  for (int b = 0; b < 4; ++b) bytes[80 + b] = static_cast<char>((count >> (8 * b)) & 255);
  marvtest::writeText(path, bytes);
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

TEST(StlDomain, SphereBecomesAShellOverASolidCore) {
  auto folder = marvtest::scratchFolder("stldomain");
  marvtest::inFolder here(folder);
  // The file's sphere sits at the origin in centimetres, in left-handed
  // coordinates (no mirror); the parameters place it at the centre of the
  // box (the model's z offset counts downward).
  writeSphereStl("input/bc.stl", 0.0, 0.0, 0.0, 30.0, 40, 80);
  stlCase c;
  build(c, {{"unitSTL", "1"}, {"coordSTL", "1"}, {"xoffstSTL", "0.5"}, {"yoffstSTL", "0.5"}, {"zoffstSTL", "-0.5"}});
  ASSERT_EQ(c.result, 1);
  ASSERT_EQ(c.cfg.stlPresent, 1);
  EXPECT_EQ(c.cfg.bcTypePresent[7], 1);
  EXPECT_TRUE(c.messages.empty());
  const double h = c.cfg.dx, R = 0.3, diag = std::sqrt(3.0) * h;
  const int shell = countType(c.domain, 7), core = countType(c.domain, 9);
  const double shellNodes = 4.0 * pi * R * R * diag / (h * h * h);
  const double sphereNodes = 4.0 / 3.0 * pi * R * R * R / (h * h * h);
  EXPECT_GT(shell, 0.3 * shellNodes) << "shell " << shell << " against " << shellNodes;
  EXPECT_LT(shell, 1.5 * shellNodes) << "shell " << shell << " against " << shellNodes;
  EXPECT_LT(shell + core, sphereNodes * 1.05) << "nothing marked outside the sphere";
  // Solid to the depth that the scan reaches: w = 5 cells from a centroid.
  const double reach = R - 5.0 * h;
  const double reachedNodes = 4.0 / 3.0 * pi * (R * R * R - reach * reach * reach) / (h * h * h);
  EXPECT_GT(shell + core, 0.8 * reachedNodes) << (shell + core) << " against " << reachedNodes;
  EXPECT_FALSE(c.domain.wallCells.empty());
}

TEST(StlDomain, UnusableModelIsSaidOnceAndTheCaseRunsWithoutIt) {
  auto folder = marvtest::scratchFolder("stlbad");
  marvtest::inFolder here(folder);
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
