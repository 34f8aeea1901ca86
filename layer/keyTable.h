// The window's keys to the layer's key codes, in one place. Letters and
// digits follow the key's symbol where the keyboard layout gives one, so
// that A is the key labelled A on any layout; everything else, and keys
// whose symbol is no ASCII letter or digit (the top row of a French
// keyboard), follow the key's position.
#pragma once

namespace marv::gl {

// SDL scancode and key symbol to a key code of the layer; 0 for a key the
// layer does not know.
int keyCodeOf(int scancode, int symbol);

}  // namespace marv::gl
