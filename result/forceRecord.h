// The pressure force on a boundary colour and its record ./dump/force.txt:
// one line per forceRecInterval steps with the record flag and Fx, Fy, Fz of
// each colour 1..8.
#pragma once

#include <array>
#include <string>

#include "app/appConfig.h"
#include "domain/bcDomain.h"
#include "result/recordFiles.h"

namespace marv {

using forceVector = std::array<float, 3>;  // Fx, Fy, Fz [N]

// The force of the pressure field p on an outline (two dimensions), per
// metre of depth: minus the sum over segments of P l n, with P sampled at
// the segment's mid-point and n its normal (-(y2-y1), x2-x1)/l, which points
// to the fluid side of a colour's outline. Fz is 0.
forceVector outlineForce(const appConfig& cfg, const array3d<double>& p, const bcOutline& outline);

// The same over a surface of colour (three dimensions): minus the sum over
// triangles of P A n, with n the normal that points out of the body. The
// model's triangles (colour 7) carry outward normals; the iso-surfaces of
// the colour masks carry normals into the mask, which are turned round.
// Surfaces lie in the world's mirrored z: the pressure is sampled at the
// physical height z[nz-1] - z and Fz is given in the physical z of the mesh,
// like every other z of the records.
forceVector surfaceForce(const appConfig& cfg, const array3d<double>& p, const bcSurface& surface, int colour);

const char* const forceFilePath = "./dump/force.txt";
const recordLayout& forceLayout(const appConfig& cfg);
std::string forceHeadLine(const appConfig& cfg);
std::string forceDataLine(const appConfig& cfg);

// Start of a pass, when viz.txt says that force was shown and recorded: the
// colour flags of the last line of force.txt.
void readForceSetup(appConfig& cfg);

// The force line of step ts; true when one was written.
bool writeForce(appConfig& cfg);

}  // namespace marv
