// The stage table of marvanesse-batch: every screen accepts at once, the
// project comes from the command line, and messages go to stderr.
#pragma once

#include <string>

#include "app/driver.h"

namespace marv {

struct batchOptions {
  std::string projectDir;  // the project folder
  bool analysis = false;   // open in Analysis mode
  bool quiet = false;      // no progress line
};

passStages batchStages(const batchOptions& options);

// Messages shown through the batch stages since the start.
int batchMessageCount();

}  // namespace marv
