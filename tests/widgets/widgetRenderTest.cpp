// Widgets drawn by the OpenGL backend (Japanese glyphs, button tiles, text box, panel); PNGs kept for a look.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "app/catalogue.h"
#include "app/fontSet.h"
#include "app/screenFrame.h"
#include "layer/layer.h"
#include "renderSupport.h"
#include "result/stepResults.h"
#include "testSupport.h"
#include "tests/widgets/panelSupport.h"
#include "widgets/textBox.h"

namespace {

using namespace marv;

constexpr int width = 1080;
constexpr int height = 560;

// Pixels of the rectangle darker than mid grey: the ink of black text on white.
std::vector<bool> ink(int x1, int y1, int x2, int y2) {
  const std::vector<std::uint8_t> p = marvtest::grabPixels(x1, y1, x2, y2);
  std::vector<bool> out(p.size() / 4);
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = p[4 * i] < 128;
  return out;
}
int count(const std::vector<bool>& v) { return static_cast<int>(std::count(v.begin(), v.end(), true)); }

// The ink of a text drawn alone at the top left.
std::vector<bool> glyphInk(int font, const char* text) {
  clearDrawTarget();
  drawText(4, 4, text, colour(0, 0, 0), font, 0, 0);
  return ink(0, 0, 48, 48);
}

class widgetRender : public marvtest::offscreenSuite<width, height> {
 protected:
  void SetUp() override {
    offscreenSuite::SetUp();
    setBackgroundColour(255, 255, 255, 255);
    clearDrawTarget();
  }
};

// The fonts are made and rebuilt by the font set tests; every render below draws with them.
TEST_F(widgetRender, japaneseGlyphsAreRealCharactersNotTheBoxOfAMissingOne) {
  appConfig cfg, english;
  cfg.uiJapanese = 1;
  cfg.textHeight = english.textHeight = 32;
  buildFonts(cfg);
  const char* none = "\xF4\x8F\xBF\xBD";  // U+10FFFD, in no face
  const std::vector<bool> missing = glyphInk(cfg.fontBody, none);
  std::vector<std::vector<bool>> seen;
  for (const char* c :
       {"\xE6\x97\xA5", "\xE6\x9C\xAC", "\xE8\xAA\x9E", "\xE3\x81\x82", "\xE3\x82\xA2"}) {  // 日本語あア
    const std::vector<bool> g = glyphInk(cfg.fontBody, c);
    EXPECT_GT(count(g), 20) << c << " has ink";
    EXPECT_NE(g, missing) << c << " is drawn as the missing-character box";
    for (const std::vector<bool>& other : seen) EXPECT_NE(g, other) << c << " looks like another character";
    seen.push_back(g);
  }
  // The English face takes Japanese it lacks from the Japanese face too.
  buildFonts(english);
  EXPECT_NE(glyphInk(english.fixedBody, "\xE6\x97\xA5"), glyphInk(english.fixedBody, none));
  deleteFonts(english);
  deleteFonts(cfg);
}

// The backdrop, the screen buttons, and a message box with an input, "OK" and "Cancel".
TEST_F(widgetRender, screenshotsOfTheWidgetsInBothLanguages) {
  const std::filesystem::path folder = MARV_SCREENSHOT_DIR;
  std::filesystem::create_directories(folder);
  for (int ja : {0, 1}) {
    appConfig cfg;
    cfg.uiJapanese = ja;
    computeLayout(cfg);
    cfg.cancelX = static_cast<int>(cfg.startWidth - 2.8 * cfg.buttonSize);
    cfg.cancelY = cfg.proceedY = static_cast<int>(cfg.startHeight - 1.8 * cfg.buttonSize);
    cfg.proceedX = cfg.cancelX + cfg.buttonSize + cfg.textGap;
    buildFonts(cfg);
    setUpButtons(cfg);
    setTextInputFont(cfg.fixedInput);
    textBox box = makeTextBox(cfg.textHeight, cfg.fontBody);
    box.hasInput = 1;
    box.frameKind = 2;
    setTextBoxButtons(box, 5);
    clearDrawTarget();
    drawBackdrop(cfg, 0.03);
    runAppButton(cfg, buttonCancel, cfg.cancelX, cfg.cancelY, 0);
    runAppButton(cfg, buttonProceed, cfg.proceedX, cfg.proceedY, 0);
    setTextInput(ja ? "\xE5\x9C\xA7\xE5\x8A\x9B presw" : "presw", box.inputHandle);  // 圧力 presw
    showTextBox(box, catalogueText(47, ja != 0).c_str(), 1, 0);
    // On the Proceed tile, off its arrow: the sky-blue of a button at rest (a click's series is the image button's).
    const std::vector<std::uint8_t> p =
        marvtest::grabPixels(cfg.proceedX + 42, cfg.proceedY + 12, cfg.proceedX + 43, cfg.proceedY + 13);
    EXPECT_GT(std::min(p[2] - 50, int(p[1])), 150) << "the Proceed tile";
    const char* name = ja ? "widgets-japanese.png" : "widgets-english.png";
    marvtest::writePng(folder, name, width, height);
    // The box's text stands in its body: ink between its padding lines.
    const int inked = count(ink(box.boxX + box.padding, box.boxY + box.padding, box.boxX + box.boxWidth - box.padding,
                                box.boxY + box.padding + box.fontSize));
    EXPECT_GT(inked, 50) << "the message shows in " << (ja ? "Japanese" : "English");
    destroyTextBox(box);
    freeButtonTiles(cfg);
    deleteFonts(cfg);
  }
}

// The control panel over a grey picture in a window of 1280 x 720.
class panelRender : public marvtest::offscreenSuite<1280, 720>, protected marvtest::panelDriver {
 protected:
  void SetUp() override {
    offscreenSuite::SetUp();
    buildFonts(cfg);
    start();
  }
  void TearDown() override {
    destroyControlPanel(panel);
    deleteFonts(cfg);
  }
};

TEST_F(panelRender, thePanelAtRestAndItsSnapshot) {
  open();
  cfg.showVectorFlag = 1;
  cfg.dispQuantFlag = 5;
  // Hover the "Outline" button so that its caption shows.
  frame(marvtest::pointer(centre(1), centre(1)));
  const auto sum = [](int px, int py) {
    const std::vector<std::uint8_t> p = marvtest::grabPixels(px, py, px + 1, py + 1);
    return p[0] + p[1] + p[2];
  };
  EXPECT_GT(sum(8, panel.panelHeight - 3), 600) << "the body is white";
  EXPECT_LT(sum(600, panel.panelHeight + 40), 400) << "the picture shows beyond the panel";
  marvtest::writePng(MARV_SCREENSHOT_DIR, "controlPanel.png", width, height);
  // The snapshot button asks, the run loop saves.
  marvtest::inFolder inside(marvtest::scratchFolder("snapshot"));
  std::filesystem::create_directories("figs");
  click(centre(11), centre(2));
  ASSERT_EQ(cfg.snapshotRequested, 1);
  saveSnapshot(cfg);
  int jpegs = 0;
  for (const auto& entry : std::filesystem::directory_iterator("figs"))
    jpegs += entry.path().extension() == ".jpg" && entry.file_size() > 1000 ? 1 : 0;
  EXPECT_EQ(jpegs, 1);
}

}  // namespace
