// The node lists of bcDomain, built once by the final domain build from the
// boundary type field bcFlag and the per-type tables of appConfig, and
// solidMask. The boundary stage of the solver walks the lists in the order
// built here, so the orders are part of each builder's contract: unless said
// otherwise, k outermost, then j, then i.
#pragma once

#include "app/appConfig.h"
#include "domain/bcDomain.h"

namespace marv {

// No-slip nodes: for t = 1..9, every node of type t, k-j-i order within t. A
// type is skipped when bcTypePresent[t] is 0 (type 9 is always present) and
// an inlet type 2..6 when it flows (bcNoFlow[t] = 0).
cellList makeWallCells(const array3d<int>& flag, const appConfig& cfg);

// Wall nodes of the outer planes, per type as in makeWallCells: the z planes
// (three dimensions only; for j, i: k = 0 then k = nz-1), the y planes (for
// k, i: j = 0 then ny-1), the x planes (for k, j: i = 0 then nx-1). A node on
// an edge or corner stands once per face it touches.
cellList makeFaceWallCells(const array3d<int>& flag, const appConfig& cfg);

// Nodes of a flowing inlet type (2..6 with bcNoFlow[t] = 0), with their type.
cellList makeInletCells(const array3d<int>& flag, const appConfig& cfg);

// Every outer-plane node with its neighbour one layer in: x planes (for k, j),
// y planes (for k, i), z planes in three dimensions (for j, i), low side
// first. 2 ny nz + 2 nx nz (+ 2 nx ny) pairs.
pairList makeEdgePairs(const array3d<int>& flag);

// Outer-plane nodes where flow may leave: fluid, or an inlet type whose
// velocity component normal to that plane is free. X, Y, then (three
// dimensions) Z group; a node may stand in several groups.
cellList makeOpenCells(const array3d<int>& flag, const appConfig& cfg);

// Nodes of types 1..8 with a fixed mass fraction (bcFixMassfr[t] = 1).
cellList makeMassfrCells(const array3d<int>& flag, const appConfig& cfg);

// Nodes of types 1..8 with a fixed temperature (bcFixTemp[t] = 1).
cellList makeTempCells(const array3d<int>& flag, const appConfig& cfg);

// Walls for the age: types 1, 7, 8 and non-flowing inlet types.
cellList makeAgeWallCells(const array3d<int>& flag, const appConfig& cfg);

// Where the age is reset: first the outer-plane nodes through which a fully
// fixed inlet blows in, then the interior nodes of inlet types whose
// velocity is free in every direction of the case.
cellList makeAgeInletCells(const array3d<int>& flag, const appConfig& cfg);

// All lists of domain from its bcFlag: the five always, massfrCells when
// speciesFlag = 1, tempCells when cmode = 1, the two age lists when ageFlag.
void buildNodeLists(bcDomain& domain, const appConfig& cfg);

// solidMask = bcFlag, except 0 at nodes of an inlet type 2..6 whose three
// velocities are not all exactly 0.0.
void buildSolidMask(bcDomain& domain, const appConfig& cfg);

}  // namespace marv
