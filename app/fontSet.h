// The fifteen fonts of the screens: their sizes follow textHeight, their
// faces the language of the screens (uiJapanese).
#pragma once

#include "app/appConfig.h"

namespace marv {

// Computes the seven sizes, deletes every font of the record and makes the
// fifteen anew; fixedInput becomes the same handle as fixedHeading.
void buildFonts(appConfig& cfg);

// Deletes the fonts of the record and marks them not made (-1).
void deleteFonts(appConfig& cfg);

// The face of the sentences: "Consolas" for English; for Japanese the first
// installed of "Meiryo UI", "Yu Gothic UI", "Meiryo", or null when none is.
const char* languageFace(bool japanese);

}  // namespace marv
