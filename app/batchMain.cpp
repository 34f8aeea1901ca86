// marvanesse-batch [--analysis] PROJECT_DIR: one pass of the driver on a
// project, without a screen. Exit 0 when the run ended; 1 with a message on
// stderr when the project could not be opened or a stage refused.
#include <cstdio>
#include <cstring>

#include "app/batchStages.h"
#include "app/meshMemory.h"
#include "layer/layer.h"

int main(int argc, char** argv) {
  marv::endOnAllocationFailure("marvanesse-batch");
  marv::batchOptions options;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--analysis") == 0) {
      options.analysis = true;
    } else if (std::strcmp(argv[i], "--quiet") == 0) {
      options.quiet = true;
    } else if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
      std::printf("usage: marvanesse-batch [--analysis] [--quiet] PROJECT_DIR\n");
      return 0;
    } else if (options.projectDir.empty() && argv[i][0] != '-') {
      options.projectDir = argv[i];
    } else {
      std::fprintf(stderr, "marvanesse-batch: unexpected argument \"%s\"\n", argv[i]);
      return 2;
    }
  }
  if (options.projectDir.empty()) {
    std::fprintf(stderr, "usage: marvanesse-batch [--analysis] [--quiet] PROJECT_DIR\n");
    return 2;
  }
  if (marv::startLayer() != 0) {
    std::fprintf(stderr, "marvanesse-batch: the drawing layer could not start\n");
    return 1;
  }
  marv::driverState state;
  const int status = marv::runDriver(marv::batchStages(options), state);
  if (status != 0 && marv::batchMessageCount() == 0)
    std::fprintf(stderr,
                 options.analysis ? "marvanesse-batch: no dump to show in %s/dump\n"
                                  : "marvanesse-batch: the run could not start: no dump of step sts in %s/dump\n",
                 options.projectDir.c_str());
  return status;
}
