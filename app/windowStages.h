// The stage table of the window program: the project screens, the parameter
// editor, the bitmap stage with its preview, and the model placement.
#pragma once

#include "app/driver.h"

namespace marv {

passStages windowStages();

}  // namespace marv
