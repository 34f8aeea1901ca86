// bcDomain: the boundary description of one case, built once per pass by the
// main thread and read-only during the run.
#pragma once

#include "app/appConfig.h"

namespace marv {

struct bcDomain {
  appConfig* cfg = nullptr;  // the pass's record, not owned
};

}  // namespace marv
