// The fonts of the screens without a screen: sizes at the smallest, the
// usual and the largest text heights, one handle per font, old fonts deleted
// on a rebuild, and the language face with and without Japanese faces.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "app/fontSet.h"
#include "layer/faceTable.h"
#include "layer/layer.h"
#include "testSupport.h"

namespace {

using namespace marv;

struct sizes {
  int h, logo, logoPlus, small, medium, title, caption, tiny;
};

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

TEST(buildFonts, sizesFollowTheTextHeightTruncatedAtOneTwentyAndNinetySix) {
  // 2.5 h, 1.625 h, 0.75 h, 1.2 h, 2.7 h, 0.85 h, 0.7 h, each cut to a whole pixel.
  const sizes expected[] = {
      {1, 2, 1, 0, 1, 2, 0, 0}, {20, 50, 32, 15, 24, 54, 17, 14}, {96, 240, 156, 72, 115, 259, 81, 67}};
  for (const sizes& e : expected) {
    appConfig cfg;
    cfg.textHeight = e.h;
    buildFonts(cfg);
    EXPECT_EQ(cfg.logoSize, e.logo) << "h=" << e.h;
    EXPECT_EQ(cfg.logoPlusSize, e.logoPlus) << "h=" << e.h;
    EXPECT_EQ(cfg.smallSize, e.small) << "h=" << e.h;
    EXPECT_EQ(cfg.mediumSize, e.medium) << "h=" << e.h;
    EXPECT_EQ(cfg.titleSize, e.title) << "h=" << e.h;
    EXPECT_EQ(cfg.captionSize, e.caption) << "h=" << e.h;
    EXPECT_EQ(cfg.tinySize, e.tiny) << "h=" << e.h;
    EXPECT_EQ(cfg.fontThickness, 4);
    const std::set<int> all = allHandles(cfg);
    EXPECT_EQ(all.size(), 15u) << "fifteen distinct fonts at h=" << e.h;
    EXPECT_GE(*all.begin(), 0) << "every font is made at h=" << e.h;
    EXPECT_EQ(cfg.fixedInput, cfg.fixedHeading);
    if (e.h == 1) {
      // Size 0 of a truncated fraction falls to the default size, h.
      EXPECT_EQ(textWidthInFont(cfg.fontTiny, "ab"), textWidthInFont(cfg.fontBody, "ab"));
    } else {
      EXPECT_LT(textWidthInFont(cfg.fontTiny, "ab"), textWidthInFont(cfg.fontBody, "ab")) << "h=" << e.h;
      EXPECT_LT(textWidthInFont(cfg.fontBody, "ab"), textWidthInFont(cfg.fontTitle, "ab")) << "h=" << e.h;
    }
    deleteFonts(cfg);
  }
}

TEST(buildFonts, rebuildsReplaceTheFontsWithoutPilingThemUpAndDeleteFontsForgetsThem) {
  appConfig cfg;
  buildFonts(cfg);
  const int titleAt20 = textWidthInFont(cfg.fontTitle, "Marvanesse");
  int highest = 0;
  for (int i = 0; i < 40; ++i) {
    cfg.textHeight = i % 2 ? 30 : 20;  // ends on 30
    buildFonts(cfg);
    for (int h : allHandles(cfg)) highest = std::max(highest, h);
  }
  EXPECT_LT(highest, 40) << "forty rebuilds left the old fonts alive";
  EXPECT_EQ(cfg.titleSize, 81);
  const int titleAt30 = textWidthInFont(cfg.fontTitle, "Marvanesse");
  EXPECT_NEAR(titleAt30, 1.5 * titleAt20, 0.1 * titleAt20) << "the title grows with the text height";
  deleteFonts(cfg);
  for (int h : {cfg.fontBody, cfg.fixedHeading, cfg.fixedInput, cfg.logoPlusFont}) EXPECT_EQ(h, -1);
}

TEST(buildFonts, theProductWordKeepsTheWidthOfItsOriginalFace) {
  // "Marvanesse" in a Times-metric bold face is 5110 thousandths of an em:
  // about 255 pixels at the 50-pixel logo size of text height 20. A face
  // of other metrics (DejaVu Serif Bold) would be over 300.
  appConfig cfg;
  buildFonts(cfg);
  const int width = textWidthInFont(cfg.logoFont, "Marvanesse");
  EXPECT_GE(width, 245);
  EXPECT_LE(width, 266);
  deleteFonts(cfg);
}

TEST(buildFonts, japaneseScreensTakeTheFirstInstalledJapaneseFaceOrLeaveTheLanguageFontsUnmade) {
  ASSERT_TRUE(fontExists("Meiryo UI", -1))
      << "no Japanese face: install fonts-ipafont-gothic (scripts/install-deps.sh)";
  EXPECT_TRUE(fontExists("meiryo  ", -1)) << "case and trailing blanks do not matter";
  EXPECT_TRUE(fontExists("Consolas", -1));
  EXPECT_TRUE(fontExists("Times New Roman Bold", -1));
  EXPECT_FALSE(fontExists("No Such Face", -1));
  EXPECT_STREQ(languageFace(false), "Consolas");
  EXPECT_STREQ(languageFace(true), "Meiryo UI");

  appConfig cfg;
  cfg.uiJapanese = 1;
  buildFonts(cfg);
  EXPECT_EQ(allHandles(cfg).size(), 15u);

  // A machine without any font: nothing is installed, the language fonts are
  // not made, the fixed ones are still asked for, and nothing breaks.
  const auto empty = marvtest::scratchFolder("nofonts");
  setFontRoot(empty.c_str());
  EXPECT_FALSE(fontExists("Meiryo UI", -1));
  EXPECT_FALSE(fontExists("Consolas", -1));
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
