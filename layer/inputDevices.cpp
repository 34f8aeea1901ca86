// Keyboard, mouse, wheel and dropped files as the layer reports them, the
// same in every backend: the backends feed events in, the program polls.
#include "layer/inputDevices.h"

#include <cstdio>
#include <cstring>
#include <deque>
#include <string>

#include "layer/layer.h"

namespace marv {

namespace {

struct deviceState {
  std::uint8_t keys[256] = {};      // 1 while held, by key code
  int buttons = 0;                  // mouseButtons bits
  int mouseX = 0;                   // [px of the back buffer]
  int mouseY = 0;                   // [px of the back buffer]
  int wheel = 0;                    // notches since the last clearing call
  bool dropEnabled = false;         // dropped files are taken
  std::deque<std::string> dropped;  // paths, oldest first
};

deviceState devices;

}  // namespace

namespace input {

void keyChanged(int code, bool down) {
  if (code <= 0 || code >= 256) return;
  devices.keys[code] = down ? 1 : 0;
  if (down) fieldKey(code);
}

void mouseMoved(int x, int y) {
  devices.mouseX = x;
  devices.mouseY = y;
}

void buttonChanged(int bit, bool down) { devices.buttons = down ? (devices.buttons | bit) : (devices.buttons & ~bit); }

void wheelTurned(int notches) { devices.wheel += notches; }

void fileDropped(const char* path) {
  if (devices.dropEnabled && path != nullptr) devices.dropped.emplace_back(path);
}

void enableDrops(bool on) { devices.dropEnabled = on; }

bool dropsEnabled() { return devices.dropEnabled; }

void releaseAll() {
  std::memset(devices.keys, 0, sizeof devices.keys);
  devices.buttons = 0;
}

void resetInput() {
  devices = deviceState{};
  resetFields();
  resetInputScript();
}

}  // namespace input

int droppedFileCount() { return static_cast<int>(devices.dropped.size()); }

int droppedFilePath(char* buffer, int size) {
  if (buffer && size > 0) buffer[0] = '\0';
  if (devices.dropped.empty()) return -1;
  if (buffer && size > 0) std::snprintf(buffer, static_cast<std::size_t>(size), "%s", devices.dropped.front().c_str());
  devices.dropped.pop_front();
  return 0;
}

int clearDroppedFiles() {
  devices.dropped.clear();
  return 0;
}

int keyDown(int code) { return code >= 0 && code < 256 && devices.keys[code] ? 1 : 0; }

int anyKeyDown(int kinds) {
  int held = 0;
  if (kinds & 1)
    for (const std::uint8_t k : devices.keys) held |= k;
  if ((kinds & 4) && devices.buttons != 0) held = 1;
  return held;
}

int readKeyboard(std::uint8_t table[256]) {
  if (table == nullptr) return -1;
  std::memcpy(table, devices.keys, 256);
  return 0;
}

int mouseButtons() { return devices.buttons; }

int mousePosition(int* x, int* y) {
  if (x) *x = devices.mouseX;
  if (y) *y = devices.mouseY;
  return 0;
}

int mouseWheel(int clear) {
  const int notches = devices.wheel;
  if (clear) devices.wheel = 0;
  return notches;
}

}  // namespace marv
