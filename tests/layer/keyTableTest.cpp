// Keys to layer codes on US and French layouts: letters follow the key's label, digits and keypad its place.
#include <gtest/gtest.h>

#include <SDL2/SDL.h>

#include "layer/keyTable.h"
#include "layer/layer.h"

namespace {

using namespace marv;

TEST(keyTable, lettersByTheirSymbolTheRestByTheirPlace) {
  struct press {
    SDL_Scancode place;
    SDL_Keycode symbol;
    int code;
  };
  const press presses[] = {
      {SDL_SCANCODE_A, SDLK_a, keyA},  // US
      {SDL_SCANCODE_Q, SDLK_a, keyA},  // French: A where US has Q
      {SDL_SCANCODE_A, SDLK_q, keyQ},
      {SDL_SCANCODE_W, SDLK_z, keyZ},
      {SDL_SCANCODE_Z, SDLK_w, keyW},
      {SDL_SCANCODE_1, SDLK_1, key1},
      {SDL_SCANCODE_1, SDLK_AMPERSAND, key1},  // French top row: & over 1
      {SDL_SCANCODE_0, 0xE0, key0},            // French à over 0
      {SDL_SCANCODE_KP_1, SDLK_KP_1, keyPad1},
      {SDL_SCANCODE_KP_1, SDLK_1, keyPad1},  // the keypad keeps its codes
      {SDL_SCANCODE_ESCAPE, SDLK_ESCAPE, keyEsc},
      {SDL_SCANCODE_RETURN, SDLK_RETURN, keyEnter},
      {SDL_SCANCODE_SPACE, SDLK_SPACE, keySpace},
      {SDL_SCANCODE_LSHIFT, SDLK_LSHIFT, keyLeftShift},
      {SDL_SCANCODE_RCTRL, SDLK_RCTRL, keyRightCtrl},
      {SDL_SCANCODE_LEFT, SDLK_LEFT, keyLeft},
      {SDL_SCANCODE_RIGHT, SDLK_RIGHT, keyRight},
      {SDL_SCANCODE_F1, SDLK_F1, 0},           // not one of the layer's keys
      {SDL_SCANCODE_SEMICOLON, SDLK_m, keyM},  // French M beside L
  };
  for (const press& p : presses)
    EXPECT_EQ(gl::keyCodeOf(p.place, p.symbol), p.code) << SDL_GetScancodeName(p.place) << " " << p.symbol;
}

}  // namespace
