// Reading the boundary bitmaps at mesh resolution through the drawing layer,
// and the bitmap stage without a screen: every bitmap of the project is
// loaded, drawn stretched (nearest pixel) over the domain's rectangle in an
// off-screen image, captured into a pixel image, and read at one pixel per
// mesh node. The screen of the stage reads its bitmaps the same way.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/appConfig.h"

namespace marv {

// Where the nodes of a bitmap plane lie in pixels of the bitmap area.
struct planeGeometry {
  int across = 0;       // nodes along the horizontal axis
  int down = 0;         // nodes along the vertical axis
  int pixWidth = 0;     // drawn width of the plane [px]
  int pixHeight = 0;    // drawn height of the plane [px]
  std::vector<int> px;  // screen x of each node across [px]
  std::vector<int> py;  // screen y of each node down, node 0 at the bottom [px]
  int ox = 0;           // left of the rectangle in the bitmap area [px]
  int oy = 0;           // top of the rectangle [px]
};

planeGeometry makePlaneGeometry(const appConfig& cfg, int plane);

// File name of a slice: "./input/bcXY3.bmp" and its sisters.
std::string bitmapPath(int plane, int slice);

// Reads a loaded image at the mesh of a plane: codes gets across * down
// colour codes, row b (b = 0 at the bottom of the picture) at b * across.
// Returns 0, or -1 when the layer could not make the images it needs.
int readImageAtMesh(const appConfig& cfg, int plane, int image, std::vector<std::uint32_t>& codes);

// The bitmap stage without a screen: set-up of the presets, each bitmap read,
// counted, purged and written to its slice with the saved choices of bmp.txt
// applied, then the slices converted to list indices. A missing bitmap is
// skipped silently; one that exists but does not load is skipped with a
// message through say. Returns 1.
int readBoundaryBitmaps(appConfig& cfg, const std::function<void(const std::string&)>& say);

}  // namespace marv
