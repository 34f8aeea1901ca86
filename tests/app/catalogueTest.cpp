// Both languages: the catalogue's texts agree in access letters, placeholders and line breaks and are well-formed
// UTF-8; the screens' fonts are rebuilt without piling up, with or without an installed face.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <set>
#include <string>

#include "app/catalogue.h"
#include "app/fontSet.h"
#include "layer/faceTable.h"
#include "layer/layer.h"
#include "testSupport.h"

namespace {

using marv::catalogueText;

// Code points of well-formed UTF-8 text; -1 for a broken, overlong or lone continuation byte.
int utf8Length(const std::string& s) {
  int count = 0;
  for (std::size_t i = 0; i < s.size(); ++count) {
    const unsigned char c = static_cast<unsigned char>(s[i]);
    int extra = c < 0x80 ? 0 : (c & 0xE0) == 0xC0 ? 1 : (c & 0xF0) == 0xE0 ? 2 : (c & 0xF8) == 0xF0 ? 3 : -1;
    if (extra < 0 || (extra == 1 && c < 0xC2) || i + extra >= s.size()) return -1;
    for (int k = 1; k <= extra; ++k)
      if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return -1;
    i += extra + 1;
  }
  return count;
}

int occurrences(const std::string& text, const std::string& piece) {
  int n = 0;
  for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + piece.size())) ++n;
  return n;
}

// The "(&X)" access mark of a menu text, or "" when it has none.
std::string accessMark(const std::string& text) {
  const std::size_t at = text.find("(&");
  return at == std::string::npos ? std::string() : text.substr(at, 4);
}

TEST(catalogue, everyUsedNumberHasTwoTextsThatAgreeInAccessLettersPlaceholdersAndLineBreaks) {
  for (int n = -3; n <= 60; ++n) {
    SCOPED_TRACE(n);
    // The numbers the program asks for; 9, 14, 20 and 23 are gaps in the table.
    const bool used = n >= 0 && n <= 52 && n != 9 && n != 14 && n != 20 && n != 23;
    const std::string en = catalogueText(n, false), ja = catalogueText(n, true);
    EXPECT_EQ(marv::catalogueHas(n), used);
    if (!used) {
      EXPECT_EQ(en + ja, "");
      continue;
    }
    EXPECT_NE(en, ja) << "not translated";
    EXPECT_EQ(accessMark(en), accessMark(ja));
    EXPECT_EQ(accessMark(en) != "", n <= 11) << "the menu texts 0 to 11 carry an access letter";
    EXPECT_EQ(occurrences(en, "%s"), occurrences(ja, "%s"));
    EXPECT_EQ(occurrences(en, "%") + occurrences(ja, "%"), 2 * occurrences(en, "%s")) << "a stray format sign";
    EXPECT_EQ(occurrences(en, "\n"), occurrences(ja, "\n"));
    EXPECT_EQ(utf8Length(en), static_cast<int>(en.size())) << "English is plain ASCII";
    const int chars = utf8Length(ja);
    EXPECT_GT(chars, 0) << "Japanese is not well-formed UTF-8";
    EXPECT_LT(chars, static_cast<int>(ja.size())) << "Japanese holds no Japanese character";
  }
  EXPECT_EQ(catalogueText(INT_MIN, false) + catalogueText(INT_MAX, true), "");
}

std::set<int> languageHandles(const marv::appConfig& c) {
  return {c.fontBody, c.fontBold, c.fontTiny, c.fontCaption, c.fontHeading, c.fontTitle};
}

std::set<int> allHandles(const marv::appConfig& c) {
  std::set<int> all = languageHandles(c);
  for (int h : {c.fixedBold, c.fixedCaption, c.fixedTiny, c.fixedHeading, c.fixedTitle, c.fixedBody, c.fixedSmall,
                c.logoFont, c.logoPlusFont})
    all.insert(h);
  return all;
}

TEST(fontSet, rebuildsReplaceTheFontsWithoutPilingThemUpAndDeleteFontsForgetsThem) {
  marv::appConfig cfg;
  int highest = 0;
  for (int i = 0; i < 40; ++i) {
    cfg.textHeight = i % 2 ? 30 : 20;
    marv::buildFonts(cfg);
    for (int h : allHandles(cfg)) highest = std::max(highest, h);
  }
  EXPECT_LT(highest, 40) << "forty rebuilds left the old fonts alive";
  marv::deleteFonts(cfg);
  for (int h : {cfg.fontBody, cfg.fixedHeading, cfg.fixedInput, cfg.logoPlusFont}) EXPECT_EQ(h, -1);
}

TEST(fontSet, japaneseScreensTakeTheFirstInstalledJapaneseFaceOrLeaveTheLanguageFontsUnmade) {
  ASSERT_TRUE(marv::fontExists("Meiryo UI", -1))
      << "no Japanese face: install fonts-ipafont-gothic (scripts/install-deps.sh)";
  EXPECT_TRUE(marv::fontExists("meiryo  ", -1)) << "case and trailing blanks do not matter";
  EXPECT_FALSE(marv::fontExists("No Such Face", -1));
  EXPECT_STREQ(marv::languageFace(true), "Meiryo UI");
  marv::appConfig cfg;
  cfg.uiJapanese = 1;
  // No font at all: the language fonts are not made, the fixed ones still asked for, nothing breaks.
  const auto empty = marvtest::scratchFolder("nofonts");
  marv::setFontRoot(empty.c_str());
  EXPECT_FALSE(marv::fontExists("Meiryo UI", -1) || marv::fontExists("Consolas", -1));
  EXPECT_EQ(marv::languageFace(true), nullptr);
  EXPECT_STREQ(marv::languageFace(false), "Consolas") << "English never asks whether its face exists";
  marv::buildFonts(cfg);
  for (int h : languageHandles(cfg)) EXPECT_EQ(h, -1);
  EXPECT_EQ(cfg.fixedInput, cfg.fixedHeading);
  EXPECT_EQ(marv::textWidthInFont(cfg.fontBody, "ab"), 0) << "without any face, text has no width";
  marv::setFontRoot("");
  std::filesystem::remove_all(empty);
  marv::deleteFonts(cfg);
}

}  // namespace
