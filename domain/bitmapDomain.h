// From the bitmap stage's slices to the boundary of the case: colour labels
// on the grid (stretch, mirror, invert), one smooth fraction mask per
// boundary type (masks, corner softening, filters), and the final build that
// classifies every node into bcFlag with its image point and makes the node
// lists. Labels and masks use the bitmaps' z (upward); the classification
// turns them to the solver's z.
#pragma once

#include <cstdint>

#include "app/appConfig.h"
#include "domain/bcDomain.h"

namespace marv {

// Working fields of the mask steps, alive during prepareFromInputs.
struct maskWork {
  ownedArray3d<std::uint8_t> active;  // 1 where corner softening may act
  ownedArray3d<float> work;           // scratch mask
};

// Labels (colour-list indices) into bcFlag from the slices by each colour's
// stretch rule; a later colour overwrites an earlier one.
void stretchColors(appConfig& cfg, bcDomain& domain);

// Adds the mirror image of each colour across the plane of its choice.
void mirrorColors(appConfig& cfg, bcDomain& domain);

// Swaps fluid and each colour marked for inversion.
void invertColors(appConfig& cfg, bcDomain& domain);

// typeMasks[t] = 1 at the labels of type t = min(8, label); active = 0 where
// the type's stretch is "OFF"; work = typeMasks[8].
void makeTypeMasks(const appConfig& cfg, bcDomain& domain, maskWork& scratch);

// Rounds corners of the non-preset wall mask with arms of growing length;
// nothing happens in two dimensions.
void softenCorners(appConfig& cfg, bcDomain& domain, maskWork& scratch);

// Smooths mask in place by a 1-2-1 filter of weight w along each axis.
void filterMask(const array3d<float>& mask, const array3d<float>& scratch, double w);

// Twice: Black lightly, non-preset walls by wfilWallBC, inlet colours lightly.
void filterTypeMasks(const appConfig& cfg, bcDomain& domain, maskWork& scratch);

// Nodes of mask t above isoLevel take type t; in three dimensions each gets
// the mirror of itself across the mask's iso-surface as image point, or is
// marked solid (9, or 11 inside an inlet body) when deep inside.
void classifyMask(const appConfig& cfg, bcDomain& domain, int t);

// The final builds: bcFlag from the masks, the node lists, solidMask; the
// masks are released. build3D does nothing in two dimensions.
void build2D(bcDomain& domain, appConfig& cfg);
void build3D(bcDomain& domain, appConfig& cfg);

}  // namespace marv
