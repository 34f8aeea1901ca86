// The widgets played frame by frame: imageButton (what is a click, the disabled button, the shortcut
// key) and textBox (line breaking, measure, typing, buttons, keys, a blocking box).
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "screenScript.h"
#include "widgets/imageButton.h"
#include "widgets/textBox.h"

namespace {

using namespace marv;

constexpr int bx = 100, by = 50, cx = bx + 32, cy = by + 32;  // a 64-pixel button and its centre

inputFrame mouse(int x, int y, bool down) { return marvtest::pointer(x, y, down); }
inputFrame key(int code) { return marvtest::holding(code); }

// Plays the frames; the answers. A one-shot button by default; an on/off
// button from the given state on, asked each frame in the state it answered.
std::vector<int> play(imageButton& b, const std::vector<inputFrame>& frames, int onOff = -1) {
  setInputScript(frames, false);
  std::vector<int> results;
  int state = onOff < 0 ? 0 : onOff;
  while (inputScriptFramesLeft() > 0) {
    processMessages();
    results.push_back(runImageButton(b, bx, by, 0, state, onOff < 0 ? 1 : 0));
    if (onOff >= 0) state = results.back();
  }
  return results;
}

imageButton button() {
  imageButton b;
  b.pressShift = 64 / 20;
  b.label = "Proceed";
  return b;
}

class imageButtonScript : public ::testing::Test {
 protected:
  void TearDown() override { stopLayer(); }
};

TEST_F(imageButtonScript, aReleaseAtThePixelOfThePressClicksOnceAndSinksTheButtonWhileHeld) {
  imageButton b = button();
  EXPECT_EQ(play(b, {mouse(cx, cy, false), mouse(cx, cy, true)}), (std::vector<int>{0, 0}));
  EXPECT_EQ(std::pair(b.x, b.y), std::pair(bx + 3, by + 3)) << "held down it sinks";
  EXPECT_EQ(play(b, {mouse(cx, cy, false), mouse(cx, cy, false)}), (std::vector<int>{1, 0}))
      << "the click shows in the frame of the release only";
  EXPECT_EQ(b.x, bx) << "a hovered button does not sink";
  // The corners of the button count; one pixel beyond does not.
  EXPECT_EQ(play(b, {mouse(bx, by + 64, false), mouse(bx, by + 64, true), mouse(bx, by + 64, false)}).back(), 1);
  EXPECT_EQ(play(b, {mouse(bx + 65, by, false), mouse(bx + 65, by, true), mouse(bx + 65, by, false)}).back(), 0);
  // Drags: a press that leaves, moves or starts elsewhere never clicks.
  const std::vector<inputFrame> drags[] = {
      {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx + 200, cy, true), mouse(cx + 200, cy, false),
       mouse(cx, cy, false)},
      {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx + 1, cy, true), mouse(cx + 1, cy, false)},
      {mouse(bx - 20, cy, false), mouse(bx - 20, cy, true), mouse(cx, cy, true), mouse(cx, cy, false)},
      {mouse(cx, cy, false), mouse(cx + 200, cy, false), mouse(cx + 200, cy, true), mouse(cx, cy, true),
       mouse(cx, cy, false)},
  };
  for (const auto& frames : drags) {
    imageButton fresh = button();
    EXPECT_EQ(play(fresh, frames), std::vector<int>(frames.size(), 0)) << "drag of " << frames.size() << " frames";
    EXPECT_EQ(fresh.pressed, 0);
  }
}

TEST_F(imageButtonScript, aDisabledButtonIgnoresMouseAndKeyAndAShortcutClicksOncePerStroke) {
  imageButton b = button();
  b.disabled = 1;
  b.shortcutKey = keyEnter;
  EXPECT_EQ(
      play(b, {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx, cy, false), key(keyEnter), mouse(cx, cy, false)}),
      (std::vector<int>{0, 0, 0, 0, 0}));
  EXPECT_EQ(b.hover, 0);
  b.disabled = 0;
  EXPECT_EQ(play(b, {mouse(cx, cy, true), mouse(cx, cy, false)}), (std::vector<int>{0, 0}))
      << "enabled again, it must first see the mouse over it with the button up";
  b = button();
  b.shortcutKey = keyRight;
  EXPECT_EQ(play(b, {key(keyRight), key(keyRight), mouse(0, 0, false), key(keyRight), key(keyRight), mouse(0, 0, false),
                     key(keyRight), key(keyEnter)}),
            (std::vector<int>{0, 0, 0, 1, 0, 0, 1, 0}))
      << "a key held from before does not click; each new stroke clicks once; other keys do nothing";
}

// The lines breakLine cuts a text into.
std::vector<std::string> lines(const std::string& text, int charsPerLine, bool doubleByte) {
  std::vector<std::string> out;
  for (int start = 0;;) {
    const int end = breakLine(text.c_str(), start, charsPerLine, doubleByte);
    out.push_back(text.substr(start, end - start + 1));
    if (end >= static_cast<int>(text.size()) - 1) break;
    start = end + 1;
  }
  return out;
}

TEST(breakLine, wrapsAtBlanksAndMarksCutsLongWordsAndNeverSplitsACharacter) {
  using v = std::vector<std::string>;
  const std::string kana = "\xE3\x81\x82\xE3\x81\x84\xE3\x81\x86\xE3\x81\x88\xE3\x81\x8A";     // あいうえお
  const std::string heading = "\xE3\x80\x90\xE6\xB3\xA8\xE6\x84\x8F\xE3\x80\x91\xE6\x9C\xAC";  // 【注意】本
  const std::tuple<std::string, int, bool, v> cases[] = {
      {"abc defg", 5, false, {"abc ", "defg"}},
      {"abcdefghijkl", 5, false, {"abcde", "fghij", "kl"}},
      {"", 5, false, {""}},
      {"not valid. [filepath] x", 40, false, {"not valid. ", "[filepath] x"}},
      {"see **Heading** then", 40, false, {"see ", "**Heading**", " then"}},
      {"one\ntwo", 40, false, {"one\n", "two"}},
      {"abc", 0, false, {"a", "b", "c"}},                    // too narrow for one character: a character a line
      {kana, 6, true, {kana.substr(0, 9), kana.substr(9)}},  // two columns a character
      {kana, 5, true, {kana.substr(0, 6), kana.substr(6, 6), kana.substr(12)}},
      {heading, 40, true, {heading.substr(0, 12), heading.substr(12)}},
  };
  for (const auto& [text, width, doubleByte, expected] : cases)
    EXPECT_EQ(lines(text, width, doubleByte), expected) << text;
  // A plain text with Japanese in it never splits a character.
  for (const std::string& line : lines("ENTER\xE3\x82\xAD\xE3\x83\xBC\xE3\x81\xA7", 6, false))
    EXPECT_NE(static_cast<unsigned char>(line[0]) & 0xC0, 0x80u) << "a line starts inside a character";
}

class shownBox : public ::testing::Test {
 protected:
  void SetUp() override {
    setGraphicsMode(1080, 560, 32, 60);
    font = makeFont("Consolas", 20, 4, 18, -1, 0, 0, 0);
    box = makeTextBox(20, font);
  }
  void TearDown() override {
    destroyTextBox(box);
    deleteFont(font);
    stopLayer();
  }
  // Plays the frames with the box shown non-blocking in each; the answers.
  std::vector<int> play(const std::vector<inputFrame>& frames, const char* text = "Enter a name.") {
    setInputScript(frames, false);
    std::vector<int> answers;
    while (inputScriptFramesLeft() > 0 && processMessages() == 0) answers.push_back(showTextBox(box, text, 1, 0));
    return answers;
  }
  std::string input() {
    char text[textBoxInputLength + 8];
    getTextInput(text, sizeof text, box.inputHandle);
    return text;
  }
  int font = -1;
  textBox box;
};

using marvtest::typing;

// A box beside the mouse stands below it, and above it near the foot of the window.
TEST_F(shownBox, aBoxBesideTheMouseFlipsAboveItNearTheFootOfTheWindow) {
  box.placed = 1;
  box.positionMode = 1;
  setInputScript({marvtest::pointer(300, 100), marvtest::pointer(300, 540)}, false);
  processMessages();
  measureTextBox(box, "short");
  EXPECT_EQ(box.boxY + box.offsetY, 105) << "5 pixels below the mouse";
  processMessages();
  measureTextBox(box, "short");
  EXPECT_LE(box.boxY + box.offsetY + box.boxHeight, 545) << "above the mouse";
}

TEST_F(shownBox, buttonsAndEscGiveTheAnswersOfTheirSet) {
  setTextBoxButtons(box, 5);
  ASSERT_EQ(play({{}}, "Remove?"), std::vector<int>{0});
  EXPECT_EQ(play(marvtest::click(box.okButton.centreX, box.okButton.centreY), "Remove?"), (std::vector<int>{0, 0, 1}));
  EXPECT_EQ(play(marvtest::click(box.cancelButton.centreX, box.cancelButton.centreY), "Remove?").back(), -1);
  const inputFrame esc = marvtest::holding(keyEsc);
  EXPECT_EQ(play({esc}, "Remove?"), (std::vector<int>{-1}));
  setTextBoxButtons(box, 6);
  EXPECT_EQ(play({esc}, "Done."), (std::vector<int>{0})) << "a box with OK alone has nothing for Esc to answer";
  EXPECT_EQ(play({marvtest::holding(keyEnter)}, "Done."), (std::vector<int>{1}));
  setTextBoxButtons(box, 8);
  play({{}}, "Back.");
  EXPECT_EQ(play(marvtest::click(box.prevButton.centreX, box.prevButton.centreY), "Back.").back(), -1);
  setTextBoxButtons(box, 0);
  EXPECT_EQ(play({{}}, "Note."), std::vector<int>{-1}) << "a box without buttons answers at once";
}

// The field's editing keys are the layer's and tested there. A text far wider than the input is taken whole.
TEST_F(shownBox, aBlockingBoxRunsItsOwnFramesUntilAnsweredAndHandsTheKeyboardBack) {
  const int editorField = makeTextInput(40, 0, 0, 0, 0, 0);
  activateTextInput(editorField);
  box.hasInput = 1;
  setTextBoxButtons(box, 5);
  setTextInput("", box.inputHandle);
  const std::string wide(300, 'w');
  setInputScript({typing("x"), typing(wide), typing("", {keyEnter}), typing("z")}, true);
  EXPECT_EQ(showTextBox(box, "Enter a parameter name you want to add below.", 0, editorField), 1) << "Enter: yes";
  EXPECT_EQ(inputScriptFramesLeft(), 1) << "the box stopped at the frame of the answer";
  EXPECT_EQ(input(), "x" + wide);
  EXPECT_GT(textWidthInFont(font, "%s", wide.c_str()), box.inputWidth) << "the test needs a text wider than the input";
  processMessages();
  char text[64];
  getTextInput(text, sizeof text, editorField);
  EXPECT_STREQ(text, "z") << "the keyboard went back to the editor's field";
  deleteTextInput(editorField);
}

}  // namespace
