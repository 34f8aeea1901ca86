// Keys to layer codes on US and French layouts: letters follow the key's label, digits and keypad its place.
#include <gtest/gtest.h>

#include <SDL2/SDL.h>

#include <tuple>

#include "layer/keyTable.h"
#include "layer/layer.h"

namespace {

using namespace marv;

TEST(keyTable, lettersByTheirSymbolTheRestByTheirPlace) {
  // US, then French (A where US has Q, & over 1, M beside L); the keypad keeps its codes; F1 is not one
  // of the layer's keys.
  const std::tuple<SDL_Scancode, SDL_Keycode, int> presses[] = {{SDL_SCANCODE_A, SDLK_a, keyA},
                                                                {SDL_SCANCODE_Q, SDLK_a, keyA},
                                                                {SDL_SCANCODE_1, SDLK_1, key1},
                                                                {SDL_SCANCODE_1, SDLK_AMPERSAND, key1},
                                                                {SDL_SCANCODE_SEMICOLON, SDLK_m, keyM},
                                                                {SDL_SCANCODE_KP_1, SDLK_KP_1, keyPad1},
                                                                {SDL_SCANCODE_KP_1, SDLK_1, keyPad1},
                                                                {SDL_SCANCODE_ESCAPE, SDLK_ESCAPE, keyEsc},
                                                                {SDL_SCANCODE_LSHIFT, SDLK_LSHIFT, keyLeftShift},
                                                                {SDL_SCANCODE_F1, SDLK_F1, 0}};
  for (const auto& [place, symbol, code] : presses)
    EXPECT_EQ(gl::keyCodeOf(place, symbol), code) << SDL_GetScancodeName(place) << " " << symbol;
}

}  // namespace
