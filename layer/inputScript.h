// Scripted input: what a user does, frame by frame, handed in by a test so
// that screens and the driver run with real input and no window.
//
// The backends without a window (headless, and the off-screen OpenGL
// context) take one frame of the script per processMessages call: the first
// call after setInputScript delivers frame 0, the next frame 1, and so on.
// Held state (pointer, buttons, keys) is what the frame says, so a key or
// button missing from the next frame is released there; events (typed text,
// taps, wheel, drops) happen once, in the frame that carries them.
//
// Within one frame the events arrive in this order: the pointer moves,
// buttons change, keys that are no longer held go up, keys newly held go
// down in list order, the typed text arrives, then the pasted text, then
// each tapped key goes down and up, the wheel turns, files drop. A key that
// goes down edits the active text field, so "type abc, then Enter" is
// {typed = "abc", keysTapped = {keyEnter}} in one frame.
#pragma once

#include <string>
#include <vector>

namespace marv {

struct inputFrame {
  int mouseX = 0;                    // pointer position [px of the back buffer]
  int mouseY = 0;                    // pointer position [px of the back buffer]
  int buttons = 0;                   // mouseLeft | mouseRight bits held through the frame
  std::vector<int> keysHeld;         // key codes held through the frame
  std::vector<int> keysTapped;       // key codes pressed and released within the frame, in order
  std::string typed;                 // UTF-8 text typed, as the keyboard delivers it
  std::string pasted;                // UTF-8 text pasted from the clipboard (Ctrl+V)
  int wheel = 0;                     // notches turned, signed
  std::vector<std::string> dropped;  // paths dropped on the window, in order
  bool closeWindow = false;          // the user closes the window in this frame
};

// Replaces any earlier script and opens a closed window again. When the last
// frame has been delivered, the next processMessages returns -1 if
// closeAtEnd is set, so that a driver run under the script ends there;
// otherwise everything is released and processMessages returns 0 from then on.
void setInputScript(std::vector<inputFrame> frames, bool closeAtEnd = true);

// Frames not yet delivered.
int inputScriptFramesLeft();

}  // namespace marv
