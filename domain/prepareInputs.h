// prepareFromInputs: from the bitmap stage's slices and choices to labels,
// type masks, drawable outlines or surfaces and the boundary field, before
// the final build. The STL model is not handled here.
#pragma once

#include "app/appConfig.h"
#include "domain/bcDomain.h"

namespace marv {

// Does nothing while the bitmap stage is away for a preview
// (stageInterrupted = 1).
void prepareFromInputs(bcDomain& domain, appConfig& cfg);

}  // namespace marv
