// The face table: the names the program asks for, the kind of face each
// stands for, and the installed files of each kind, first present wins.
//
// "Consolas" has no free twin; DejaVu Sans Mono keeps its columns and its
// clear zero. "Times New Roman" maps to Liberation Serif, whose advance widths
// are the same, so the product word keeps its length; DejaVu Serif stands in
// where Liberation is missing. The Japanese screen faces ("Meiryo UI",
// "Yu Gothic UI", "Meiryo") map to IPA Gothic or Noto Sans CJK.
#include "layer/faceTable.h"

#include <unistd.h>

#include <cctype>

namespace marv {

namespace {

enum class faceKind { sans, mono, serif, japanese, japaneseProportional };

struct faceName {
  const char* name;  // lower case, as asked for
  faceKind kind;     // which stand-in
  bool bold;         // the name itself asks for bold
};

const faceName knownFaces[] = {
    {"consolas", faceKind::mono, false},
    {"consolas bold", faceKind::mono, true},
    {"courier new", faceKind::mono, false},
    {"dejavu sans mono", faceKind::mono, false},
    {"monospace", faceKind::mono, false},
    {"times new roman", faceKind::serif, false},
    {"times new roman bold", faceKind::serif, true},
    {"liberation serif", faceKind::serif, false},
    {"dejavu serif", faceKind::serif, false},
    {"serif", faceKind::serif, false},
    {"arial", faceKind::sans, false},
    {"segoe ui", faceKind::sans, false},
    {"dejavu sans", faceKind::sans, false},
    {"sans", faceKind::sans, false},
    {"meiryo ui", faceKind::japaneseProportional, false},
    {"meiryo", faceKind::japanese, false},
    {"yu gothic ui", faceKind::japaneseProportional, false},
    {"yu gothic", faceKind::japanese, false},
    {"ms gothic", faceKind::japanese, false},
    {"ms ui gothic", faceKind::japaneseProportional, false},
    {"ipagothic", faceKind::japanese, false},
    {"ipapgothic", faceKind::japaneseProportional, false},
    {"noto sans cjk jp", faceKind::japaneseProportional, false},
};

// Installed files of each kind, Debian paths first, then those of other
// distributions. Lists end with a null.
const char* const sansFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                 "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf",
                                 "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
                                 "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
                                 "/usr/share/fonts/TTF/DejaVuSans.ttf",
                                 nullptr};
const char* const sansBoldFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
                                     "/usr/share/fonts/truetype/liberation2/LiberationSans-Bold.ttf",
                                     "/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf",
                                     "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans-Bold.ttf",
                                     "/usr/share/fonts/TTF/DejaVuSans-Bold.ttf",
                                     nullptr};
const char* const monoFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf",
                                 "/usr/share/fonts/dejavu-sans-mono-fonts/DejaVuSansMono.ttf",
                                 "/usr/share/fonts/TTF/DejaVuSansMono.ttf",
                                 "/usr/share/fonts/truetype/liberation2/LiberationMono-Regular.ttf",
                                 "/usr/share/fonts/truetype/liberation/LiberationMono-Regular.ttf",
                                 nullptr};
const char* const monoBoldFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf",
                                     "/usr/share/fonts/dejavu-sans-mono-fonts/DejaVuSansMono-Bold.ttf",
                                     "/usr/share/fonts/TTF/DejaVuSansMono-Bold.ttf",
                                     "/usr/share/fonts/truetype/liberation2/LiberationMono-Bold.ttf",
                                     "/usr/share/fonts/truetype/liberation/LiberationMono-Bold.ttf",
                                     nullptr};
const char* const serifFiles[] = {"/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf",
                                  "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf",
                                  "/usr/share/fonts/liberation-serif/LiberationSerif-Regular.ttf",
                                  "/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf",
                                  "/usr/share/fonts/TTF/DejaVuSerif.ttf",
                                  nullptr};
const char* const serifBoldFiles[] = {"/usr/share/fonts/truetype/liberation2/LiberationSerif-Bold.ttf",
                                      "/usr/share/fonts/truetype/liberation/LiberationSerif-Bold.ttf",
                                      "/usr/share/fonts/liberation-serif/LiberationSerif-Bold.ttf",
                                      "/usr/share/fonts/truetype/dejavu/DejaVuSerif-Bold.ttf",
                                      "/usr/share/fonts/TTF/DejaVuSerif-Bold.ttf",
                                      nullptr};
const char* const japaneseFiles[] = {"/usr/share/fonts/opentype/ipafont-gothic/ipag.ttf",
                                     "/usr/share/fonts/truetype/fonts-japanese-gothic.ttf",
                                     "/usr/share/fonts/opentype/ipaexfont-gothic/ipaexg.ttf",
                                     "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
                                     "/usr/share/fonts/google-noto-cjk/NotoSansCJK-Regular.ttc",
                                     nullptr};
const char* const japanesePropFiles[] = {"/usr/share/fonts/opentype/ipafont-gothic/ipagp.ttf",
                                         "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
                                         "/usr/share/fonts/google-noto-cjk/NotoSansCJK-Regular.ttc",
                                         "/usr/share/fonts/opentype/ipafont-gothic/ipag.ttf",
                                         "/usr/share/fonts/truetype/fonts-japanese-gothic.ttf",
                                         nullptr};

std::string fontRoot;  // prefix of every path of the lists; "" for the system's

std::string firstPresent(const char* const* files) {
  for (; *files != nullptr; ++files) {
    const std::string path = fontRoot + *files;
    if (::access(path.c_str(), R_OK) == 0) return path;
  }
  return std::string();
}

const faceName* lookupFace(const char* name) {
  std::string key = name ? name : "";
  for (char& ch : key) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  while (!key.empty() && key.back() == ' ') key.pop_back();
  for (const faceName& f : knownFaces)
    if (key == f.name) return &f;
  return nullptr;
}

// The kind's own file, without falling back to another kind. The Japanese
// faces have no bold cut installed anywhere common: bold is thickened.
std::string ownFile(faceKind kind, bool bold) {
  switch (kind) {
    case faceKind::mono: return firstPresent(bold ? monoBoldFiles : monoFiles);
    case faceKind::serif: return firstPresent(bold ? serifBoldFiles : serifFiles);
    case faceKind::japanese: return bold ? std::string() : firstPresent(japaneseFiles);
    case faceKind::japaneseProportional: return bold ? std::string() : firstPresent(japanesePropFiles);
    case faceKind::sans: return firstPresent(bold ? sansBoldFiles : sansFiles);
  }
  return std::string();
}

}  // namespace

faceFile resolveFace(const char* name, bool bold) {
  const faceName* known = lookupFace(name);
  const faceKind kind = known ? known->kind : faceKind::sans;
  bold = bold || (known && known->bold);
  faceFile f;
  f.path = ownFile(kind, bold);
  if (f.path.empty() && bold) {
    // A bold cut that is missing: the regular one, thickened.
    f.path = ownFile(kind, false);
    f.synthBold = !f.path.empty();
  }
  if (f.path.empty() && kind != faceKind::sans) {
    f.path = ownFile(faceKind::sans, bold);
    if (f.path.empty() && bold) {
      f.path = ownFile(faceKind::sans, false);
      f.synthBold = !f.path.empty();
    }
  }
  return f;
}

bool faceInstalled(const char* name) {
  const faceName* known = lookupFace(name);
  return known != nullptr && !ownFile(known->kind, false).empty();
}

std::string japaneseFallbackFace() { return firstPresent(japaneseFiles); }

void setFontRoot(const char* root) { fontRoot = root ? root : ""; }

}  // namespace marv
