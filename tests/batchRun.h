// One pass of the batch runner on a project folder, quiet, as marvanesse-batch makes it.
#pragma once

#include <filesystem>

#include "app/batchStages.h"
#include "app/driver.h"

namespace marvtest {

inline int runBatch(const std::filesystem::path& folder, marv::driverState& state, bool analysis = false) {
  marv::batchOptions options;
  options.projectDir = folder.string();
  options.quiet = true;
  options.analysis = analysis;
  return marv::runDriver(marv::batchStages(options), state);
}

}  // namespace marvtest
