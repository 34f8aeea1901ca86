// buildFonts: the sizes from textHeight, then the fonts in a fixed order:
// the six of the language face, the six fixed-pitch ones, the two of the
// product word. All are anti-aliased (font type 18) with the default
// character set, no edge and no italic.
//
// With Japanese screens and no Japanese face installed the six language
// fonts are not made; their handles become -1, so that their text is drawn in
// the layer's default font (textHeight, Consolas' stand-in, which takes
// missing characters from whatever Japanese face the layer finds). A handle
// kept from before would be a deleted one, which the layer may hand out
// again for another font.
#include "app/fontSet.h"

#include <array>

#include "layer/layer.h"

namespace marv {

namespace {

constexpr int baseThickness = 4;  // fontThickness [-]
constexpr int antiAliased = 18;   // font type of every font
constexpr int defaultCharSet = -1;

int make(const char* face, int size, int thickness) {
  return makeFont(face, size, thickness, antiAliased, defaultCharSet, 0, 0, 0);
}

// Every handle of the record, fixedInput left out: it is fixedHeading.
std::array<int*, 15> fontHandles(appConfig& cfg) {
  return {&cfg.fontBody,   &cfg.fontBold,  &cfg.fontTiny,     &cfg.fontCaption, &cfg.fontHeading,
          &cfg.fontTitle,  &cfg.fixedBold, &cfg.fixedCaption, &cfg.fixedTiny,   &cfg.fixedHeading,
          &cfg.fixedTitle, &cfg.fixedBody, &cfg.fixedSmall,   &cfg.logoFont,    &cfg.logoPlusFont};
}

}  // namespace

const char* languageFace(bool japanese) {
  if (!japanese) return "Consolas";
  for (const char* face : {"Meiryo UI", "Yu Gothic UI", "Meiryo"})
    if (fontExists(face, defaultCharSet)) return face;
  return nullptr;
}

void deleteFonts(appConfig& cfg) {
  for (int* h : fontHandles(cfg)) {
    deleteFont(*h);
    *h = -1;
  }
  cfg.fixedInput = -1;
}

void buildFonts(appConfig& cfg) {
  const int h = cfg.textHeight;
  const int t = cfg.fontThickness = baseThickness;
  setFontSize(h);
  setFontThickness(t);

  // Sizes, each truncated to a whole number of pixels.
  cfg.logoSize = static_cast<int>(2.5 * h);
  cfg.logoPlusSize = static_cast<int>(1.625 * h);
  cfg.smallSize = static_cast<int>(0.75 * h);
  cfg.mediumSize = static_cast<int>(1.2 * h);
  cfg.titleSize = static_cast<int>(2.7 * h);
  cfg.captionSize = static_cast<int>(0.85 * h);
  cfg.tinySize = static_cast<int>(0.7 * h);

  deleteFonts(cfg);

  if (const char* face = languageFace(cfg.uiJapanese != 0)) {
    cfg.fontBody = make(face, h, t);
    cfg.fontBold = make(face, h, t + 2);
    cfg.fontTiny = make(face, cfg.tinySize, t + 1);
    cfg.fontCaption = make(face, cfg.captionSize, t + 1);
    cfg.fontHeading = make(face, cfg.mediumSize, t + 2);
    cfg.fontTitle = make(face, cfg.titleSize, t + 6);
  }
  cfg.fixedBold = make("Consolas", h, t + 2);
  cfg.fixedCaption = make("Consolas", cfg.captionSize, t + 1);
  cfg.fixedTiny = make("Consolas", cfg.tinySize, t + 1);
  cfg.fixedHeading = make("Consolas", cfg.mediumSize, t + 2);
  cfg.fixedTitle = make("Consolas Bold", cfg.titleSize, t + 6);
  cfg.fixedBody = make("Consolas", h, t);
  cfg.fixedSmall = make("Consolas Bold", cfg.smallSize, t);
  cfg.logoFont = make("Times New Roman Bold", cfg.logoSize, t + 12);
  cfg.logoPlusFont = make("Times New Roman Bold", cfg.logoPlusSize, t + 12);
  cfg.fixedInput = cfg.fixedHeading;
}

}  // namespace marv
