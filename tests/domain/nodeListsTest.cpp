// Node lists and solidMask from hand-made bcFlag fields: which nodes enter each list, in which order, how often.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "domain/bcDomain.h"
#include "domain/nodeLists.h"
#include "tests/testGrid.h"

namespace marv {
namespace {

using ijk = std::tuple<int, int, int>;

std::vector<ijk> indicesOf(const cellList& list) {
  std::vector<ijk> out;
  for (const cellNode& c : list) out.emplace_back(c.i, c.j, c.k);
  return out;
}

// A domain of the given size, all fluid, with presets: Black and Non-Preset
// present; Blue flows along +x with everything fixed; Red has all velocities
// zero (a wall); Green leaves u free and fixes v = 1.
struct listCase {
  appConfig cfg;
  bcDomain domain;
  explicit listCase(int nx, int ny, int nz) {
    testing::setGrid(cfg, nx, ny, nz);
    constructDomain(domain, cfg);
    cfg.bcTypePresent = {1, 1, 1, 1, 1, 0, 0, 0, 1, 0};
    for (int t = 2; t <= 6; ++t) cfg.bcFixU[t] = cfg.bcFixV[t] = cfg.bcFixW[t] = 1.0;
    cfg.bcU[2] = 1.0;
    cfg.bcNoFlow[3] = cfg.bcNoFlow[5] = cfg.bcNoFlow[6] = 1;
    cfg.bcU[4] = dashValue, cfg.bcFixU[4] = 0.0, cfg.bcV[4] = 1.0;
    cfg.bcFixMassfr = {0, 1, 1, 0, 1, 0, 0, 1, 1};
    cfg.bcFixTemp = {0, 1, 0, 1, 0, 0, 0, 1, 1};
  }
  void set(int i, int j, int k, int t) { domain.bcFlag(i, j, k) = t; }
};

TEST(NodeLists, WallCellsRunByTypeThenKJIAndHonourPresenceNoFlowAndTypeNine) {
  listCase c(3, 3, 1);
  c.set(2, 2, 0, 8);   // Non-Preset, later in the grid but type 8
  c.set(0, 1, 0, 1);   // Black
  c.set(1, 0, 0, 3);   // Red: inlet colour with no flow, a wall
  c.set(2, 0, 0, 2);   // Blue flows: not a wall
  c.set(1, 1, 0, 9);   // solid: always, though bcTypePresent[9] is 0
  c.set(0, 0, 0, 10);  // build-only types enter no list
  c.set(0, 2, 0, 11);
  c.set(1, 2, 0, 5);  // Yellow not present
  const cellList walls = makeWallCells(c.domain.bcFlag, c.cfg);
  const std::vector<ijk> expected{{0, 1, 0}, {1, 0, 0}, {2, 2, 0}, {1, 1, 0}};
  EXPECT_EQ(indicesOf(walls), expected);

  const cellList inlets = makeInletCells(c.domain.bcFlag, c.cfg);
  ASSERT_EQ(inlets.size(), 1u);
  EXPECT_EQ(inlets[0].type, 2);

  buildSolidMask(c.domain, c.cfg);
  EXPECT_EQ(c.domain.solidMask(1, 0, 0), 3) << "a no-flow inlet stays solid";
  EXPECT_EQ(c.domain.solidMask(2, 0, 0), 0) << "a flowing inlet is open";
  EXPECT_EQ(c.domain.solidMask(1, 2, 0), 5) << "an inlet colour with all velocities zero is solid";
}

TEST(NodeLists, OpenCellsTakeFluidAndFreeInletComponentsPerGroup) {
  listCase c(3, 2, 1);
  // Row j = 0: Green (u free), Black, Blue. Row j = 1: fluid.
  c.set(0, 0, 0, 4);
  c.set(1, 0, 0, 1);
  c.set(2, 0, 0, 2);
  const cellList open = makeOpenCells(c.domain.bcFlag, c.cfg);
  // X group (k, j; i = 0 then 2): Green at (0,0) by its free u, Blue closed,
  // fluid (0,1), (2,1). Y group (k, i; j = 0 then 1): only fluid of j = 1
  // (Green's v is fixed).
  const std::vector<ijk> expected{{0, 0, 0}, {0, 1, 0}, {2, 1, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}};
  EXPECT_EQ(indicesOf(open), expected);
  // An all-fluid cube: each corner stands once in each of the three groups.
  listCase cube(2, 2, 2);
  const cellList all = makeOpenCells(cube.domain.bcFlag, cube.cfg);
  EXPECT_EQ(all.size(), 24u);
}

TEST(NodeLists, ScalarAndAgeListsFollowTheirTablesAndFlags) {
  listCase c(4, 4, 1);
  c.set(0, 1, 0, 2);   // Blue at the low x face, blowing in: age reset
  c.set(3, 1, 0, 2);   // Blue at the high x face, blowing out: no reset
  c.set(2, 2, 0, 3);   // Red: no-flow inlet, an age wall
  c.set(1, 2, 0, 7);   // STL
  c.set(3, 3, 0, 11);  // inside an inlet body: no list
  // Cyan inside with every component free: an interior reset.
  c.cfg.bcFixU[6] = c.cfg.bcFixV[6] = 0.0, c.cfg.bcU[6] = c.cfg.bcV[6] = dashValue, c.cfg.bcNoFlow[6] = 0;
  c.set(2, 3, 0, 6);  // on the face j = ny-1: not interior

  const auto lists = [&] {
    buildNodeLists(c.domain, c.cfg);
    return std::vector{indicesOf(c.domain.massfrCells), indicesOf(c.domain.tempCells), indicesOf(c.domain.ageWallCells),
                       indicesOf(c.domain.ageInletCells)};
  };
  EXPECT_EQ(lists(), std::vector<std::vector<ijk>>(4)) << "no species, cmode 0, no age";

  c.cfg.speciesFlag = 1, c.cfg.cmode = 1, c.cfg.ageFlag = 1;
  c.set(1, 1, 0, 6);  // Cyan inside, free: a reset node
  c.set(2, 1, 0, 4);  // Green inside: u free but v fixed, so no reset
  // massfr: types 2, 4, 2, 7; temperature: 7, 3; age walls; age resets, faces first, then interior.
  EXPECT_EQ(lists(), (std::vector<std::vector<ijk>>{{{0, 1, 0}, {2, 1, 0}, {3, 1, 0}, {1, 2, 0}},
                                                    {{1, 2, 0}, {2, 2, 0}},
                                                    {{1, 2, 0}, {2, 2, 0}},
                                                    {{0, 1, 0}, {1, 1, 0}}}));
  EXPECT_EQ(c.domain.ageInletCells[1].type, 6);
}

}  // namespace
}  // namespace marv
