// The colour list of the bitmap stage: colour codes, counting the colours
// found at the mesh nodes of a bitmap, purging rare and removed colours, the
// saved choices of bmp.txt, and the slice tables that keep, per bitmap, the
// colour of every mesh node. Pure logic on appConfig; no drawing.
#pragma once

#include <cstdint>
#include <vector>

#include "app/appConfig.h"

namespace marv {

constexpr int planeXY = 0;  // bitmap planes: x across, y up
constexpr int planeYZ = 1;  // z across, y up
constexpr int planeZX = 2;  // x across, z up

// 0xFF000000 + 65536 r + 256 g + b.
std::uint32_t colorCode(int r, int g, int b);

// List index of code among the entries in use, or -1.
int findColour(const appConfig& cfg, std::uint32_t code);

// The list back to its eight presets (white, black, blue, red, green,
// yellow, cyan, and the STL slot that no pixel matches); counts, marks,
// choices (stretch and mirror off, no inversion) and colorInBitmap cleared.
void setPresetColours(appConfig& cfg);

// Removes entries 8 and up that are marked (keep = 0), remembering their
// codes in RemovedColorCodes, then entries 8 and up with fewer mesh points
// than max(10, inumColorsThresMax * trunc(total / 10000)).
void purgeColors(appConfig& cfg, int total);

// Counts the colours of one bitmap read at the mesh (codes, across * down,
// row b at b * across), appending new ones while the list has room, then
// marks colours removed in an earlier pass and purges with the bitmap's
// node count.
void countColours(appConfig& cfg, const std::vector<std::uint32_t>& codes, int across, int down);

// Sets each row's three choices from the saved columns of bmp.txt where the
// row's code stands there (the last matching row wins), and copies the
// selected options into StretchPlane, SymmetricPlane and InverseFlag.
void applySavedChoices(appConfig& cfg);

// Writes one bitmap's codes into the plane's slice table: a code still in
// the list stays, any other becomes 0.
void writeSlice(appConfig& cfg, int plane, int slice, const std::vector<std::uint32_t>& codes);

// Replaces the codes of every slice of every plane by list indices (0 for
// empty, removed and unknown codes) and fills colorInBitmap.
void convertSlices(appConfig& cfg);

// bcTypePresent from the counts: types 0..7 when counted, 8 when counted or
// when the list holds any colour beyond the presets.
void setTypePresence(appConfig& cfg);

// Nodes across and down of a plane, and its slice table.
int planeAcross(const appConfig& cfg, int plane);
int planeDown(const appConfig& cfg, int plane);
std::vector<std::int32_t>& sliceTable(appConfig& cfg, int plane);

// Slice entry of node (a across, b down) of a plane.
inline std::size_t sliceIndex(int across, int down, int slice, int a, int b) {
  return (static_cast<std::size_t>(slice) * down + b) * across + a;
}

// colorInBitmap entry of list index c, slice b, plane p.
inline int& inBitmap(appConfig& cfg, int c, int b, int p) {
  return cfg.colorInBitmap[static_cast<std::size_t>((c * maxBitmapSlices + b) * 3 + p)];
}

}  // namespace marv
