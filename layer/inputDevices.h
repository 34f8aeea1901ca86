// Input state that both backends share, never seen above the layer: the key
// table, pointer, buttons, wheel, dropped paths and the text fields. The
// backends only feed it, the window from its events and the backends
// without a window from the input script, so that keyboard, mouse and text
// editing behave alike in both.
#pragma once

#include <cstdint>

namespace marv::input {

// ---------------------------------------------------------------- feeding

void keyChanged(int code, bool down);  // a key of the layer's table went down or up
void textTyped(const char* utf8);      // keyboard text for the active field, all of it or nothing
void textPasted(const char* utf8);     // clipboard text: what the field accepts, up to a line break
void mouseMoved(int x, int y);         // [px of the back buffer]
void buttonChanged(int bit, bool down);
void wheelTurned(int notches);
void fileDropped(const char* path);  // queued only while drops are enabled
void enableDrops(bool on);
bool dropsEnabled();
void releaseAll();  // focus lost: no release events will come
void resetInput();  // the layer stops: keys, pointer, paths and fields are forgotten

// Advances the input script by one frame (inputScript.cpp). Returns -1 once
// the script has closed the window, else 0; 0 without a script.
int stepInputScript();
void resetInputScript();

// ---------------------------------------------------------------- text fields

// A text field as the drawing backend needs it.
struct fieldLook {
  const char* text = "";      // UTF-8
  int cursor = 0;             // [bytes]
  const int* clip = nullptr;  // x1 y1 x2 y2 [px], or null for none
  bool active = false;        // the keyboard goes to it
};

bool lookOfField(int handle, fieldLook& look);  // false for a handle not in use
std::uint32_t fieldColour(int part);            // 0 text, 1 cursor
int fieldFont();

// A key went down while a field is active (textFields.cpp).
void fieldKey(int code);
void resetFields();

}  // namespace marv::input
