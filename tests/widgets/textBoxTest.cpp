// textBox: line breaking, measure, and the box played frame by frame (typing, buttons, keys, a blocking box).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "screenScript.h"
#include "widgets/textBox.h"

namespace {

using namespace marv;

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

TEST(breakLine, plainTextWrapsAtBlanksCutsLongWordsAndHonoursItsMarks) {
  EXPECT_EQ(breakLine("abc defg", 0, 5, false), 3) << "the first line ends on the blank";
  EXPECT_EQ(lines("abc defg", 5, false), (std::vector<std::string>{"abc ", "defg"}));
  EXPECT_EQ(lines("abcdefghijkl", 5, false), (std::vector<std::string>{"abcde", "fghij", "kl"}));
  EXPECT_EQ(breakLine("", 0, 5, false), -1) << "an empty text is one empty line";
  EXPECT_EQ(lines("", 5, false).size(), 1u);
  EXPECT_EQ(lines("not valid. [filepath] x", 40, false), (std::vector<std::string>{"not valid. ", "[filepath] x"}));
  EXPECT_EQ(lines("see **Heading** then", 40, false), (std::vector<std::string>{"see ", "**Heading**", " then"}));
  EXPECT_EQ(lines("one\ntwo", 40, false), (std::vector<std::string>{"one\n", "two"}));
  // Even a line too narrow for one character moves on by a character.
  EXPECT_EQ(lines("abc", 0, false), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(breakLine, japaneseTextBreaksBetweenCharactersCountingTwoColumnsEach) {
  const std::string kana = "\xE3\x81\x82\xE3\x81\x84\xE3\x81\x86\xE3\x81\x88\xE3\x81\x8A";  // あいうえお
  EXPECT_EQ(lines(kana, 6, true), (std::vector<std::string>{kana.substr(0, 9), kana.substr(9)}))
      << "three full-width characters fill six columns";
  EXPECT_EQ(lines(kana, 5, true)[0], kana.substr(0, 6));
  const std::string heading =
      "\xE3\x80\x90\xE6\xB3\xA8\xE6\x84\x8F\xE3\x80\x91\xE6\x9C\xAC\xE6\x96\x87";  // 【注意】本文
  EXPECT_EQ(lines(heading, 40, true), (std::vector<std::string>{heading.substr(0, 12), heading.substr(12)}));
  // A plain text with Japanese in it never splits a character.
  const std::string mixed = "ENTER\xE3\x82\xAD\xE3\x83\xBC\xE3\x81\xA7";  // ENTERキーで
  for (const std::string& line : lines(mixed, 6, false))
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

  // One frame: input, then the box; its answer.
  int frame(const char* text) {
    processMessages();
    return showTextBox(box, text, 1, 0);
  }

  // Plays the frames with the box shown non-blocking in each; the answers.
  std::vector<int> play(const std::vector<inputFrame>& frames, const char* text = "Enter a name.") {
    setInputScript(frames, false);
    std::vector<int> answers;
    while (inputScriptFramesLeft() > 0) answers.push_back(frame(text));
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

TEST_F(shownBox, theMeasureGrowsWithTheTextAndMakesRoomForInputAndButtons) {
  measureTextBox(box, "short");
  EXPECT_EQ(box.lineCount, 1);
  const int oneLine = box.boxHeight;
  EXPECT_NEAR(box.boxY + box.boxHeight / 2, 560 / 2, 1) << "an unplaced box stands in the middle";
  const std::string longText(300, 'x');
  measureTextBox(box, longText.c_str());
  EXPECT_GT(box.lineCount, 1);
  EXPECT_GT(box.boxHeight, oneLine);
  box.hasInput = 1;
  measureTextBox(box, "short");
  EXPECT_GT(box.boxHeight, oneLine);
  EXPECT_GE(box.buttonY, box.inputY + box.inputHeight) << "buttons stand below the input";
  EXPECT_LE(box.buttonY + box.iconSize, box.boxY + box.boxHeight) << "and inside the box";
  EXPECT_GE(box.inputX, box.boxX);
  EXPECT_LE(box.inputX + box.inputWidth, box.boxX + box.boxWidth);

  // Beside the mouse, near the foot of the window the box flips above it.
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

// The field's editing keys are the layer's and tested there.
TEST_F(shownBox, theInputTakesTheKeyboardTakesLongTextWholeAndEnterAnswersYes) {
  box.hasInput = 1;
  setTextBoxButtons(box, 5);
  setTextInput("", box.inputHandle);
  EXPECT_EQ(play({typing("lost"), typing("abc"), typing("", {keyBackspace})}), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(input(), "ab");

  // 50 bytes a frame: far wider than the box, and the ninth piece would pass
  // the 400-byte limit, so it is refused whole.
  setTextInput("", box.inputHandle);
  std::vector<inputFrame> pieces{inputFrame{}};
  for (int i = 0; i < 9; ++i) pieces.push_back(typing(std::string(50, static_cast<char>('a' + i))));
  play(pieces);
  const std::string text = input();
  EXPECT_EQ(text.size(), 400u);
  EXPECT_EQ(text.substr(350), std::string(50, 'h'));
  EXPECT_GT(textWidthInFont(font, "%s", text.c_str()), box.inputWidth) << "the test needs a text wider than the input";
  EXPECT_EQ(play({typing("", {keyEnter})}), (std::vector<int>{1})) << "Enter finishes the input: yes";
  EXPECT_EQ(input(), text);
}

TEST_F(shownBox, buttonsAndEscGiveTheAnswersOfTheirSet) {
  setTextBoxButtons(box, 5);
  ASSERT_EQ(frame("Remove?"), 0);
  const int okX = box.okButton.centreX, okY = box.okButton.centreY;
  const int noX = box.cancelButton.centreX, noY = box.cancelButton.centreY;
  EXPECT_NE(okX, noX);
  EXPECT_EQ(play(marvtest::click(okX, okY), "Remove?"), (std::vector<int>{0, 0, 1}));
  EXPECT_EQ(play(marvtest::click(noX, noY), "Remove?"), (std::vector<int>{0, 0, -1}));
  const inputFrame esc = marvtest::holding(keyEsc);
  EXPECT_EQ(play({esc}, "Remove?"), (std::vector<int>{-1}));

  setTextBoxButtons(box, 6);
  EXPECT_EQ(play({esc}, "Done."), (std::vector<int>{0})) << "a box with OK alone has nothing for Esc to answer";
  EXPECT_EQ(play({marvtest::holding(keyEnter)}, "Done."), (std::vector<int>{1}));

  setTextBoxButtons(box, 8);
  ASSERT_EQ(frame("Back."), 0);
  const int backX = box.prevButton.centreX, backY = box.prevButton.centreY;
  EXPECT_EQ(play(marvtest::click(backX, backY), "Back."), (std::vector<int>{0, 0, -1}));

  setTextBoxButtons(box, 0);
  EXPECT_EQ(frame("Note."), -1) << "a box without buttons answers at once";
}

TEST_F(shownBox, aBlockingBoxRunsItsOwnFramesUntilAnsweredAndHandsTheKeyboardBack) {
  const int editorField = makeTextInput(40, 0, 0, 0, 0, 0);
  activateTextInput(editorField);
  box.hasInput = 1;
  setTextBoxButtons(box, 5);
  setTextInput("", box.inputHandle);
  setInputScript({typing("x"), typing("y"), typing("", {keyEnter}), typing("z")}, true);
  EXPECT_EQ(showTextBox(box, "Enter a parameter name you want to add below.", 0, editorField), 1);
  EXPECT_EQ(inputScriptFramesLeft(), 1) << "the box stopped at the frame of the answer";
  EXPECT_EQ(input(), "xy");
  processMessages();
  char text[64];
  getTextInput(text, sizeof text, editorField);
  EXPECT_STREQ(text, "z") << "the keyboard went back to the editor's field";
  deleteTextInput(editorField);
}

}  // namespace
