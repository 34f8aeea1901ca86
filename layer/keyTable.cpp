// The window's keys to the layer's key codes: letters and digits by the
// symbol the layout gives, the rest by position.
#include "layer/keyTable.h"

#include <SDL2/SDL.h>

#include "layer/layer.h"

namespace marv::gl {

namespace {

// The key's place on the keyboard, as on a US layout.
int byPosition(SDL_Scancode s) {
  switch (s) {
    case SDL_SCANCODE_ESCAPE: return keyEsc;
    case SDL_SCANCODE_1: return key1;
    case SDL_SCANCODE_2: return key2;
    case SDL_SCANCODE_3: return key3;
    case SDL_SCANCODE_4: return key4;
    case SDL_SCANCODE_5: return key5;
    case SDL_SCANCODE_6: return key6;
    case SDL_SCANCODE_7: return key7;
    case SDL_SCANCODE_8: return key8;
    case SDL_SCANCODE_9: return key9;
    case SDL_SCANCODE_0: return key0;
    case SDL_SCANCODE_BACKSPACE: return keyBackspace;
    case SDL_SCANCODE_TAB: return keyTab;
    case SDL_SCANCODE_Q: return keyQ;
    case SDL_SCANCODE_W: return keyW;
    case SDL_SCANCODE_E: return keyE;
    case SDL_SCANCODE_R: return keyR;
    case SDL_SCANCODE_T: return keyT;
    case SDL_SCANCODE_Y: return keyY;
    case SDL_SCANCODE_U: return keyU;
    case SDL_SCANCODE_I: return keyI;
    case SDL_SCANCODE_O: return keyO;
    case SDL_SCANCODE_P: return keyP;
    case SDL_SCANCODE_RETURN: return keyEnter;
    case SDL_SCANCODE_KP_ENTER: return keyPadEnter;
    case SDL_SCANCODE_LCTRL: return keyLeftCtrl;
    case SDL_SCANCODE_A: return keyA;
    case SDL_SCANCODE_S: return keyS;
    case SDL_SCANCODE_D: return keyD;
    case SDL_SCANCODE_F: return keyF;
    case SDL_SCANCODE_G: return keyG;
    case SDL_SCANCODE_H: return keyH;
    case SDL_SCANCODE_J: return keyJ;
    case SDL_SCANCODE_K: return keyK;
    case SDL_SCANCODE_L: return keyL;
    case SDL_SCANCODE_LSHIFT: return keyLeftShift;
    case SDL_SCANCODE_Z: return keyZ;
    case SDL_SCANCODE_X: return keyX;
    case SDL_SCANCODE_C: return keyC;
    case SDL_SCANCODE_V: return keyV;
    case SDL_SCANCODE_B: return keyB;
    case SDL_SCANCODE_N: return keyN;
    case SDL_SCANCODE_M: return keyM;
    case SDL_SCANCODE_RSHIFT: return keyRightShift;
    case SDL_SCANCODE_SPACE: return keySpace;
    case SDL_SCANCODE_KP_7: return keyPad7;
    case SDL_SCANCODE_KP_8: return keyPad8;
    case SDL_SCANCODE_KP_9: return keyPad9;
    case SDL_SCANCODE_KP_4: return keyPad4;
    case SDL_SCANCODE_KP_5: return keyPad5;
    case SDL_SCANCODE_KP_6: return keyPad6;
    case SDL_SCANCODE_KP_1: return keyPad1;
    case SDL_SCANCODE_KP_2: return keyPad2;
    case SDL_SCANCODE_KP_3: return keyPad3;
    case SDL_SCANCODE_KP_0: return keyPad0;
    case SDL_SCANCODE_RCTRL: return keyRightCtrl;
    case SDL_SCANCODE_UP: return keyArrowUp;
    case SDL_SCANCODE_LEFT: return keyLeft;
    case SDL_SCANCODE_RIGHT: return keyRight;
    case SDL_SCANCODE_DOWN: return keyArrowDown;
    case SDL_SCANCODE_PAGEUP: return keyPageUp;
    case SDL_SCANCODE_PAGEDOWN: return keyPageDown;
    case SDL_SCANCODE_LALT: return keyLeftAlt;
    case SDL_SCANCODE_RALT: return keyRightAlt;
    case SDL_SCANCODE_HOME: return keyHome;
    case SDL_SCANCODE_END: return keyEnd;
    case SDL_SCANCODE_DELETE: return keyDelete;
    default: return 0;
  }
}

// The key's symbol: the same codes as the US places of those letters and
// digits; 0 for a symbol that is no ASCII letter or digit.
int bySymbol(int symbol) {
  static constexpr int letters[26] = {keyA, keyB, keyC, keyD, keyE, keyF, keyG, keyH, keyI, keyJ, keyK, keyL, keyM,
                                      keyN, keyO, keyP, keyQ, keyR, keyS, keyT, keyU, keyV, keyW, keyX, keyY, keyZ};
  static constexpr int digits[10] = {key0, key1, key2, key3, key4, key5, key6, key7, key8, key9};
  if (symbol >= SDLK_a && symbol <= SDLK_z) return letters[symbol - SDLK_a];
  if (symbol >= SDLK_0 && symbol <= SDLK_9) return digits[symbol - SDLK_0];
  return 0;
}

}  // namespace

int keyCodeOf(int scancode, int symbol) {
  const SDL_Scancode s = static_cast<SDL_Scancode>(scancode);
  // The keypad keeps its own codes whatever its symbols say.
  const bool keypad = s >= SDL_SCANCODE_KP_DIVIDE && s <= SDL_SCANCODE_KP_PERIOD;
  const int symbolic = keypad ? 0 : bySymbol(symbol);
  return symbolic != 0 ? symbolic : byPosition(s);
}

}  // namespace marv::gl
