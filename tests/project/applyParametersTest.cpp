// applyParameters: derived values, colour tables, refusals and warnings, thread counts and tile layouts.
#include <gtest/gtest.h>
#include <omp.h>

#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "project/applyParameters.h"
#include "testSupport.h"

namespace {

using marv::appConfig;
using marv::dashValue;

struct applied {
  appConfig cfg;
  int result = 0;
  std::vector<std::string> messages;
};

std::vector<std::string>* messageLog = nullptr;
void logMessage(appConfig&, const char* text) {
  if (messageLog) messageLog->push_back(text);
}

// Applies "name=value name=value ..." in a scratch project without files, with the runtime offering maxThreads threads.
applied take(const std::string& values, int maxThreads = 2) {
  marvtest::inFolder here(marvtest::scratchFolder("apply"));
  applied a;
  messageLog = &a.messages;
  a.cfg.showMessage = logMessage;
  marv::parameterEditor editor;
  marv::resetParameterEditor(editor);
  std::istringstream words(values);
  for (std::string word; words >> word;) {
    const std::size_t equals = word.find('=');
    marv::parameterEntry e = marv::lookupParameter(word.substr(0, equals));
    e.value = word.substr(equals + 1);
    editor.entries[editor.count++] = e;
  }
  marv::takeChoiceValues(editor);
  omp_set_num_threads(maxThreads);
  a.result = marv::applyParameters(editor, a.cfg, editor.count);
  messageLog = nullptr;
  return a;
}

TEST(ApplyParameters, TwoDimensionalAdaptiveCase) {
  const applied a = take("nx=65 ny=33 lx=2 ly=1 domx=512 mu=0.01 uinb=1.0 vinb=-");
  ASSERT_EQ(a.result, 1);
  const appConfig& c = a.cfg;
  // deltat: half the convective limit 0.25 (1/32) / U, U = 1 from the Blue inflow, below the viscous
  // 0.125 (1/32)^2 / 0.01; a dashed component is free and its colour no wall.
  EXPECT_EQ((std::vector<double>{double(c.nz), c.dz, double(c.ibm), c.dx, c.dy, c.deltat, double(c.fixedDeltat),
                                 c.bcV[2], c.bcFixU[2], c.bcFixV[2], double(c.bcNoFlow[2])}),
            (std::vector<double>{1, 1.0, 0, 2.0 / 64, 1.0 / 32, 0.00390625, 0, dashValue, 1.0, 0.0, 0}));
  EXPECT_EQ(c.bcNoFlow[3], 1) << "Red with all velocities zero is a wall";
}

TEST(ApplyParameters, ThreeDimensionalFixedStepThermo) {
  const applied a = take("cmode=1 nx=17 ny=9 nz=5 lx=2 lz=0.5 deltat=1e-4 cfl=0 rhow=5 tempw=350 ndiv=0");
  ASSERT_EQ(a.result, 1) << "a given deltat does not look at cfl";
  const appConfig& c = a.cfg;
  EXPECT_EQ((std::vector<double>{double(c.fixedDeltat), c.deltat, c.dz, double(c.ibm)}),
            (std::vector<double>{1, 1e-4, 0.5 / 4, 1}));
  EXPECT_NEAR(c.rhow, 0.99551, 1e-5) << "thermo mode derives the density from presw and tempw";
  EXPECT_EQ(c.ndiv + c.ndivY + c.ndivZ, 3);
  EXPECT_GE(c.domPixH, c.domPixX / 2) << "3D raises the drawn height";
  EXPECT_DOUBLE_EQ(c.zCrosssectionXY, 0.25 - 0.125);
  ASSERT_EQ(c.zCoord.size(), 5u);
  EXPECT_DOUBLE_EQ(c.zCoord[4], 0.5);
}

TEST(ApplyParameters, SpecialValuesAndFlags) {
  const applied a = take(
      "nx=3 ny=3 presRelax=-1 wfilWallBC=2 cs=0 sct=0 openPresFlag=1 presAdjustFlag=1 ageFlag=7 massfrb=- deltat=0");
  ASSERT_EQ(a.result, 1);
  const appConfig& c = a.cfg;
  // A dashed mass fraction counts as a species; deltat 0 is adaptive with U never below 1: 0.5 * 0.25 * 0.5.
  EXPECT_EQ((std::vector<double>{c.presRelax, c.wfilWallBC, c.cs, c.sct, double(c.presAdjustFlag), double(c.ageFlag),
                                 double(c.speciesFlag), double(c.fixedDeltat), c.deltat, double(c.bcFixTemp[1]),
                                 double(c.bcFixMassfr[8]), c.bcTemp[7]}),
            (std::vector<double>{0.0, 1.0, dashValue, dashValue, 0, 1, 1, 0, 0.0625, 1, 1, 300.0}));
}

// Refusals (-1) and values taken with a warning that names them: no message
// (null), or exactly one that holds the text ("" for any text). Products and
// sums that leave 64 or 32 bits are refused, never wrapped (the sanitizer build checks that no arithmetic overflows).
TEST(ApplyParameters, RefusalsAndWarnings) {
  const std::tuple<const char*, int, const char*> cases[] = {
      {"nx=1 ny=5", -1, nullptr},
      {"ny=5", -1, nullptr},
      {"nx=0 ny=5", -1, ""},
      {"nx=5 ny=-3", -1, ""},
      {"nx=5 ny=5 cfl=0", -1, ""},
      {"nx=5 ny=5 cmode=2", -1, ""},
      {"nx=2000 ny=5 domx=1024", -1, ""},
      {"nx=5 ny=5 nz=5 npz=2", -1, ""},
      {"nx=5 ny=5 npx=2 npy=2", -1, ""},
      {"nx=5 ny=5 lx=1e999", -1, ""},
      {"nx=50000 ny=50000 nz=50 domx=60000", -1, ""},
      {"nx=2 ny=1e9 nz=4294967295", -1, "is too large"},
      {"nx=65536 ny=65536 nz=2", -1, "is too large"},
      {"nx=9 ny=9 mu=0", 1, "\"mu\" is 0"},
      {"nx=9 ny=9 mu=-1e-5", 1, "\"mu\" is -1e-05"},
      {"nx=9 ny=9 rhow=-2", 1, "\"rhow\" is -2"},
      {"nx=9 ny=9 rhow=0 cmode=1", 1, nullptr},  // the density then follows from presw and tempw
      {"nx=9 ny=9 cfl=1.5", 1, "\"cfl\" is 1.5"},
      {"nx=9 ny=9 cfl=1", 1, nullptr},
      {"nx=9 ny=9 cfl=-1 deltat=0.01", 1, nullptr},  // a fixed step does not use cfl
      {"nx=9 ny=9 sts=50 latts=10", 1, "\"latts\" (10) is below \"sts\" (50)"},
      {"nx=9 ny=9 sts=10 latts=10", 1, nullptr},
      {"nx=9 ny=9 nz=0", 1, "\"nz\" is 0"},
      {"nx=9 ny=9 nz=1", 1, nullptr},
      {"nx=9 ny=9 mu=0 cfl=2", 1, "\"cfl\" is 2"},  // one warning names them all
      {"nx=9 ny=9 mu=0 cfl=2", 1, "\"mu\" is 0"},
  };
  for (const auto& [values, result, says] : cases) {
    SCOPED_TRACE(values);
    const applied a = take(values);
    EXPECT_EQ(a.result, result);
    if (says == nullptr) {
      EXPECT_TRUE(a.messages.empty()) << (a.messages.empty() ? "" : a.messages[0]);
      continue;
    }
    ASSERT_EQ(a.messages.size(), 1u);
    EXPECT_NE(a.messages[0].find(says), std::string::npos) << a.messages[0];
    EXPECT_EQ(result == 1 ? a.messages[0].rfind("[WARNING] ", 0) : 0u, 0u) << "a warning says so first";
  }
  // A domain of extreme aspect: the screen sizes stay within 32 bits.
  for (const char* aspect : {"lx=1e-300 ly=1e308", "lx=1e308 ly=1e-300", "lx=1e300 ly=1 nz=3 lz=1e-300"}) {
    const applied a = take(std::string("nx=9 ny=9 ") + aspect);
    if (a.result != 1) continue;  // refused with a message is as good
    for (int size : {a.cfg.sceneWidth, a.cfg.sceneHeight, a.cfg.screenWidth, a.cfg.screenHeight,
                     a.cfg.bitmapScreenWidth, a.cfg.bitmapScreenHeight})
      EXPECT_GE(size, 0) << "a size wrapped around: " << aspect;
  }
}

TEST(ApplyParameters, ThreadCountsAndTileLayoutsByPrimeFactors) {
  // Values, threads the machine offers, then threads and layout (0 0 0: not looked at).
  const std::tuple<const char*, int, int, int, int, int> cases[] = {
      {"", 8, 1, 0, 0, 0},
      {"parallel=1", 8, 2, 0, 0, 0},
      {"parallel=2", 4, 2, 0, 0, 0},
      {"parallel=3", 16, 8, 0, 0, 0},
      {"parallel=4", 6, 6, 0, 0, 0},
      {"nprocs=64", 4, 4, 0, 0, 0},  // limited to the machine
      {"nz=9 nprocs=6", 64, 6, 1, 1, 6},
      {"nz=9 nprocs=12", 64, 12, 1, 2, 6},
      {"nz=1 nprocs=8", 64, 8, 2, 4, 1},
      {"nz=9 nprocs=59", 64, 59, 1, 1, 59},
      {"nz=1 nprocs=59", 64, 59, 1, 59, 1},
  };
  for (const auto& [values, machine, threads, npx, npy, npz] : cases) {
    const applied a = take(std::string("nx=9 ny=9 ") + values, machine);
    const bool layout = npx > 0;
    EXPECT_EQ((std::vector{a.result, a.cfg.numThreads, layout ? a.cfg.npx : 0, layout ? a.cfg.npy : 0,
                           layout ? a.cfg.npz : 0}),
              (std::vector{1, threads, npx, npy, npz}))
        << values;
  }
  EXPECT_EQ(take("nx=9 ny=9 nprocs=64", 4).cfg.nprocs, 4);
}

// A given layout stands (npz 1 in two dimensions); every node belongs to exactly one tile.
TEST(ApplyParameters, GivenLayoutStandsAndTilesCoverTheGrid) {
  for (const char* layout :
       {"nx=9 ny=7 nz=1 npx=2 npy=3 npz=4", "nx=17 ny=5 nz=1 npx=4 npy=2", "nx=7 ny=7 nz=1 npx=5 npy=1"}) {
    SCOPED_TRACE(layout);
    const applied a = take(layout, 8);
    ASSERT_EQ(a.result, 1);
    const appConfig& c = a.cfg;
    EXPECT_EQ(c.npz, 1);
    ASSERT_EQ(c.numThreads, c.npx * c.npy);
    std::vector<int> owner(c.nx * c.ny, 0);
    for (int t = 0; t < c.numThreads; ++t) {
      EXPECT_EQ(c.tileK1[t] - c.tileK0[t], 1);
      for (int j = c.tileJ0[t]; j < c.tileJ1[t]; ++j)
        for (int i = c.tileI0[t]; i < c.tileI1[t]; ++i) ++owner[i + c.nx * j];
    }
    EXPECT_EQ(owner, std::vector<int>(c.nx * c.ny, 1));
  }
}

// The last tile takes what is left over, even nothing.
TEST(SplitAxis, WidthsAndTheLastTile) {
  auto split = [](int n, int np) {
    std::vector<int> coords(np), s, e;
    for (int c = 0; c < np; ++c) coords[c] = c;
    marv::splitAxis(n, np, coords, np, s, e);
    std::vector<std::pair<int, int>> r;
    for (int c = 0; c < np; ++c) r.push_back({s[c], e[c]});
    return r;
  };
  using ranges = std::vector<std::pair<int, int>>;
  EXPECT_EQ(split(9, 4), (ranges{{0, 3}, {3, 6}, {6, 9}, {9, 9}}));
  EXPECT_EQ(split(7, 5), (ranges{{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 7}}));
}

}  // namespace
