// Screen test helpers: input frames for pointing, clicking and keys, and a guard that fails a screen out of script.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"

namespace marvtest {

inline marv::inputFrame pointer(int x, int y, bool down = false) {
  marv::inputFrame f;
  f.mouseX = x;
  f.mouseY = y;
  f.buttons = down ? marv::mouseLeft : 0;
  return f;
}

// A frame at (x, y) with buttons and keys held through it and keys tapped within it.
inline marv::inputFrame frameAt(int x, int y, int buttons = 0, std::vector<int> held = {},
                                std::vector<int> tapped = {}) {
  marv::inputFrame f = pointer(x, y);
  f.buttons = buttons;
  f.keysHeld = std::move(held);
  f.keysTapped = std::move(tapped);
  return f;
}

// Rest on (x, y), press, release: one click as a person makes it.
inline std::vector<marv::inputFrame> click(int x, int y) { return {pointer(x, y), pointer(x, y, true), pointer(x, y)}; }

inline marv::inputFrame holding(int key, int x = 0, int y = 0) {
  marv::inputFrame f = pointer(x, y);
  f.keysHeld = {key};
  return f;
}

// A key held over two frames, then released.
inline std::vector<marv::inputFrame> press(int key) { return {holding(key), holding(key), pointer(0, 0)}; }

inline void append(std::vector<marv::inputFrame>& to, const std::vector<marv::inputFrame>& more) {
  to.insert(to.end(), more.begin(), more.end());
}

// The pieces of a script one after another.
inline std::vector<marv::inputFrame> join(std::initializer_list<std::vector<marv::inputFrame>> parts) {
  std::vector<marv::inputFrame> all;
  for (const auto& part : parts) append(all, part);
  return all;
}

inline marv::inputFrame typing(const std::string& text, std::vector<int> taps = {}) {
  marv::inputFrame f;
  f.typed = text;
  f.keysTapped = std::move(taps);
  return f;
}

// Idle frames, so that the screen's debounce of Enter passes (the clock is the real one).
inline std::vector<marv::inputFrame> idle(int count, int x = 0, int y = 0) {
  return std::vector<marv::inputFrame>(count, pointer(x, y));
}

// A screen out of script ends the program at once: while a scriptedRun lives, with a failing status.
inline bool& runActive() {
  static bool active = false;
  return active;
}

struct scriptedRun {
  explicit scriptedRun(std::vector<marv::inputFrame> frames) {
    [[maybe_unused]] static const int installed = std::atexit([] {
      if (runActive()) {
        std::fprintf(stderr, "the screen did not decide before its script ended\n");
        _exit(1);
      }
    });
    runActive() = true;
    // Two quiet frames at the end: a screen's last decision needs one frame more.
    const marv::inputFrame rest =
        frames.empty() ? marv::inputFrame{} : pointer(frames.back().mouseX, frames.back().mouseY);
    frames.insert(frames.end(), 2, rest);
    // A quiet frame first, so that nothing held by an earlier script reaches the screen.
    frames.insert(frames.begin(), rest);
    marv::setInputScript(std::move(frames), true);
    marv::processMessages();
  }
  ~scriptedRun() {
    runActive() = false;
    marv::setInputScript({}, false);
  }
  scriptedRun(const scriptedRun&) = delete;
  scriptedRun& operator=(const scriptedRun&) = delete;
};

}  // namespace marvtest
