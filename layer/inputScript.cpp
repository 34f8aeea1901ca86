// The input script's player: turns each frame of a test's script into the
// events a window would have delivered, in the order inputScript.h gives.
#include "layer/inputScript.h"

#include <algorithm>

#include "layer/inputDevices.h"
#include "layer/layer.h"

namespace marv {

namespace {

struct scriptState {
  std::vector<inputFrame> frames;  // the script
  std::size_t next = 0;            // frame the next processMessages delivers
  bool closeAtEnd = false;         // the window closes after the last frame
  bool closed = false;             // a frame or the end closed the window
  bool playing = false;            // a script was handed in and not yet finished
  inputFrame held;                 // what the last frame held
};

scriptState script;

bool contains(const std::vector<int>& codes, int code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

void deliver(const inputFrame& f) {
  input::mouseMoved(f.mouseX, f.mouseY);
  for (const int bit : {mouseLeft, mouseRight})
    if ((f.buttons & bit) != (script.held.buttons & bit)) input::buttonChanged(bit, (f.buttons & bit) != 0);
  for (const int code : script.held.keysHeld)
    if (!contains(f.keysHeld, code)) input::keyChanged(code, false);
  for (const int code : f.keysHeld)
    if (!contains(script.held.keysHeld, code)) input::keyChanged(code, true);
  if (!f.typed.empty()) input::textTyped(f.typed.c_str());
  if (!f.pasted.empty()) input::textPasted(f.pasted.c_str());
  for (const int code : f.keysTapped) {
    input::keyChanged(code, true);
    // A tapped key that the frame also holds stays down.
    if (!contains(f.keysHeld, code)) input::keyChanged(code, false);
  }
  if (f.wheel != 0) input::wheelTurned(f.wheel);
  for (const std::string& path : f.dropped) input::fileDropped(path.c_str());
  script.held.buttons = f.buttons;
  script.held.keysHeld = f.keysHeld;
}

}  // namespace

void setInputScript(std::vector<inputFrame> frames, bool closeAtEnd) {
  inputFrame held = script.held;
  script = scriptState{};
  script.held = std::move(held);  // keys still down stay down until a frame releases them
  script.frames = std::move(frames);
  script.closeAtEnd = closeAtEnd;
  script.playing = true;
}

int inputScriptFramesLeft() { return static_cast<int>(script.frames.size() - script.next); }

namespace input {

int stepInputScript() {
  if (script.closed) return -1;
  if (!script.playing) return 0;
  if (script.next == script.frames.size()) {
    script.playing = false;
    script.held = inputFrame{};
    releaseAll();
    if (script.closeAtEnd) script.closed = true;
    return script.closed ? -1 : 0;
  }
  const inputFrame& f = script.frames[script.next++];
  deliver(f);
  if (f.closeWindow) script.closed = true;
  return script.closed ? -1 : 0;
}

void resetInputScript() { script = scriptState{}; }

}  // namespace input

}  // namespace marv
