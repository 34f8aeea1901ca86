// The text catalogue: both languages agree on access letters, placeholders and line breaks; UTF-8 is well-formed.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "app/catalogue.h"

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

TEST(catalogue, theProceedHintTheDropWordAndTheFileMenuByteForByte) {
  EXPECT_EQ(catalogueText(34, false), "Enter/right-arrow button : Proceed");
  EXPECT_EQ(catalogueText(35, false), "ESC/return button: Cancel");
  // "ここにドロップする": hiragana ko is U+3053, E3 81 93 in UTF-8 (not Shift-JIS 82 B1).
  const std::string drop = catalogueText(37, true);
  EXPECT_EQ(drop.substr(0, 6), "\xE3\x81\x93\xE3\x81\x93");
  EXPECT_EQ(utf8Length(drop), 9);
  EXPECT_EQ(catalogueText(5, true), "\xE3\x83\x95\xE3\x82\xA1\xE3\x82\xA4\xE3\x83\xAB (&F)");  // ファイル (&F)
}

}  // namespace
