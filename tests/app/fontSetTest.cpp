// The screens' fonts without a screen: old fonts deleted on a rebuild, the language face with and without Japanese.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "app/fontSet.h"
#include "layer/faceTable.h"
#include "layer/layer.h"
#include "testSupport.h"

namespace {

using namespace marv;

std::set<int> languageHandles(const appConfig& c) {
  return {c.fontBody, c.fontBold, c.fontTiny, c.fontCaption, c.fontHeading, c.fontTitle};
}

std::set<int> allHandles(const appConfig& c) {
  std::set<int> all = languageHandles(c);
  for (int h : {c.fixedBold, c.fixedCaption, c.fixedTiny, c.fixedHeading, c.fixedTitle, c.fixedBody, c.fixedSmall,
                c.logoFont, c.logoPlusFont})
    all.insert(h);
  return all;
}

TEST(buildFonts, rebuildsReplaceTheFontsWithoutPilingThemUpAndDeleteFontsForgetsThem) {
  appConfig cfg;
  int highest = 0;
  for (int i = 0; i < 40; ++i) {
    cfg.textHeight = i % 2 ? 30 : 20;
    buildFonts(cfg);
    for (int h : allHandles(cfg)) highest = std::max(highest, h);
  }
  EXPECT_LT(highest, 40) << "forty rebuilds left the old fonts alive";
  deleteFonts(cfg);
  for (int h : {cfg.fontBody, cfg.fixedHeading, cfg.fixedInput, cfg.logoPlusFont}) EXPECT_EQ(h, -1);
}

TEST(buildFonts, japaneseScreensTakeTheFirstInstalledJapaneseFaceOrLeaveTheLanguageFontsUnmade) {
  ASSERT_TRUE(fontExists("Meiryo UI", -1))
      << "no Japanese face: install fonts-ipafont-gothic (scripts/install-deps.sh)";
  EXPECT_TRUE(fontExists("meiryo  ", -1)) << "case and trailing blanks do not matter";
  EXPECT_FALSE(fontExists("No Such Face", -1));
  EXPECT_STREQ(languageFace(true), "Meiryo UI");

  appConfig cfg;
  cfg.uiJapanese = 1;
  // No font at all: the language fonts are not made, the fixed ones still asked for, nothing breaks.
  const auto empty = marvtest::scratchFolder("nofonts");
  setFontRoot(empty.c_str());
  EXPECT_FALSE(fontExists("Meiryo UI", -1) || fontExists("Consolas", -1));
  EXPECT_EQ(languageFace(true), nullptr);
  EXPECT_STREQ(languageFace(false), "Consolas") << "English never asks whether its face exists";
  buildFonts(cfg);
  for (int h : languageHandles(cfg)) EXPECT_EQ(h, -1);
  EXPECT_EQ(cfg.fixedInput, cfg.fixedHeading);
  EXPECT_EQ(textWidthInFont(cfg.fontBody, "ab"), 0) << "without any face, text has no width";
  setFontRoot("");
  std::filesystem::remove_all(empty);
  deleteFonts(cfg);
}

}  // namespace
