// The named colours the widgets draw with, packed as the layer's colour(r,
// g, b) packs them (opaque alpha over 8-bit red, green, blue), so that they
// can stand in record defaults before any layer call.
#pragma once

#include <cstdint>

namespace marv {

constexpr std::uint32_t packedColour(int r, int g, int b) {
  return 0xFF000000u | (static_cast<std::uint32_t>(r & 255) << 16) | (static_cast<std::uint32_t>(g & 255) << 8) |
         static_cast<std::uint32_t>(b & 255);
}

constexpr std::uint32_t colourBlack = packedColour(0, 0, 0);
constexpr std::uint32_t colourWhite = packedColour(255, 255, 255);
constexpr std::uint32_t colourGrey = packedColour(160, 160, 160);
constexpr std::uint32_t colourCharcoal = packedColour(50, 50, 50);
constexpr std::uint32_t colourSky = packedColour(0, 180, 255);

}  // namespace marv
