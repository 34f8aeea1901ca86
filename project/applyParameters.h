// applyParameters: the accepted parameter list becomes the fields of
// appConfig and everything derived from them: colour tables, grid, screen
// geometry, first time step, bitmap storage and thread tiles.
#pragma once

#include <vector>

#include "app/appConfig.h"
#include "project/parameterEditor.h"

namespace marv {

// Returns 1, or -1 when the list is refused (a message was shown where one
// helps).
int applyParameters(parameterEditor& editor, appConfig& cfg, int count);

// The per-colour tables from the parameters.
void setColourTables(appConfig& cfg);

// Tile edges along an axis of n nodes in np parts, for each thread by its
// coordinate along that axis.
void splitAxis(int n, int np, const std::vector<int>& coordinates, int threads, std::vector<int>& starts,
               std::vector<int>& ends);

}  // namespace marv
