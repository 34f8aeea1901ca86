// A solver whose step is the pressure iteration alone, for the iteration and row kernel tests.
#pragma once

#include "solver/solverCommon.h"

namespace marv::testing {

class pressureOnly : public solverCommon {
 public:
  using solverCommon::solverCommon;
  void step() override {
    runStep([&](int t) { solvePressure(t); });
  }
  // One collective mean removal on all threads; returns the mean found.
  double removeMeanOnTeam() {
    double found = 0.0;
    runStep([&](int t) {
      const double mean = meanPressure(t, cfg->numThreads);
      removeMean(pfld, mean, t);
      if (t == 0) found = mean;
    });
    return found;
  }
};

}  // namespace marv::testing
