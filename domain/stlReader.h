// ./input/bc.stl: a solid model, binary or ASCII, told apart by the file's
// size, read into a surface as triangles in the file's own coordinates.
#pragma once

#include <string>

#include "domain/bcDomain.h"

namespace marv {

// Why a present file gave no model.
enum class stlProblem { none, missing, tooShort, notSolid, tooManyFacets, notFinite };

struct stlResult {
  int stored = 0;  // 1 when a model was stored
  stlProblem problem = stlProblem::none;
};

// Reads path into surface. Normals are negated when normVecDirSTL = 1. On
// failure the surface keeps what it had.
stlResult readStlFile(bcSurface& surface, const std::string& path, int normVecDirSTL);

// readStlFile of "./input/bc.stl": 1 when a model was stored, else 0.
int readStl(bcSurface& surface, int normVecDirSTL);

// One line for a user: why the model of path was not used; empty for none
// and for a missing file, which is no error.
std::string stlProblemText(stlProblem problem, const std::string& path);

}  // namespace marv
