// marvanesse: the window program. It takes no arguments.
#include <cstdio>

#include "layer/layer.h"

int main() {
  std::fprintf(stderr, "marvanesse: this build has no window backend; use marvanesse-batch PROJECT_DIR\n");
  return 1;
}
