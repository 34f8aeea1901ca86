// The layer's clock, the same for every backend: milliseconds from the
// first call, and sleeping.
#include <chrono>
#include <thread>

#include "layer/layer.h"

namespace marv {

int nowMs() {
  using namespace std::chrono;
  static const steady_clock::time_point start = steady_clock::now();
  const auto ms = duration_cast<milliseconds>(steady_clock::now() - start).count();
  return static_cast<int>(ms & 0x7FFFFFFF);
}

int waitMs(int ms) {
  if (ms <= 0)
    std::this_thread::yield();
  else
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
  return 0;
}

}  // namespace marv
