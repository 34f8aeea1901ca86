// The one table from the face names the program asks for ("Consolas",
// "Times New Roman Bold", "Meiryo UI", ...) to font files installed on this
// machine, shared by both drawing backends so that a face counts as present
// or missing the same way with and without a screen.
#pragma once

#include <string>

namespace marv {

// What a face name stands for here.
struct faceFile {
  std::string path;        // font file; "" when no face at all is installed
  bool synthBold = false;  // bold was asked for and no bold file exists: thicken the outlines
};

// The file that stands for `name` (case and trailing blanks do not matter);
// `bold` asks for the bold cut. A missing stand-in and an unknown name fall
// back to a plain sans face, so that text always shows if any face exists.
faceFile resolveFace(const char* name, bool bold);

// True when `name` is a face of the table and one of its own stand-ins is
// installed; a face that would only be drawn by the sans fallback is not.
bool faceInstalled(const char* name);

// The Japanese face that supplies characters another face lacks, or "".
std::string japaneseFallbackFace();

// Looks for the font files below another root folder ("" is the system's
// own): a bundled font tree, or an empty folder where a test needs a machine
// without fonts. Fonts made before keep their files.
void setFontRoot(const char* root);

}  // namespace marv
