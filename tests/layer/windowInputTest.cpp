// The window's input through the headless backend: scripted frames (held state, events, text editing, the
// script's end closing) and the menu bar (how it opens, moves, chooses and closes, by pointer and by key).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "layer/menuBar.h"
#include "screenScript.h"

namespace {

using namespace marv;
using marvtest::typing;

class scriptedInput : public ::testing::Test {
 protected:
  void TearDown() override { stopLayer(); }
};

std::string fieldText(int field) {
  char text[64];
  getTextInput(text, sizeof text, field);
  return text;
}

TEST_F(scriptedInput, heldStateFollowsEachFrameAndEventsHappenOnce) {
  inputFrame press = marvtest::frameAt(40, 30, mouseLeft, {keyLeftShift, keyX});
  inputFrame move = marvtest::frameAt(41, 30, mouseLeft | mouseRight, {keyX}, {keyEsc});
  press.wheel = -2, move.wheel = 3;
  setInputScript({press, move, marvtest::pointer(41, 30)}, true);
  EXPECT_EQ(mouseButtons(), 0) << "nothing arrives before the first processMessages";
  ASSERT_EQ(processMessages(), 0);
  int x = 0, y = 0;
  mousePosition(&x, &y);
  EXPECT_EQ((std::vector<int>{x, y, mouseButtons(), keyDown(keyLeftShift), keyDown(keyX), anyKeyDown(1)}),
            (std::vector<int>{40, 30, mouseLeft, 1, 1, 1}));
  ASSERT_EQ(processMessages(), 0);
  EXPECT_EQ(mouseButtons(), mouseLeft | mouseRight);
  std::uint8_t table[256];
  readKeyboard(table);
  int held = 0;
  for (const std::uint8_t k : table) held += k;
  EXPECT_EQ(held * 10 + table[keyX], 11) << "X alone is held: a missing key is released, a tapped one not held";
  // Notches add up until a clearing call (braced lists run in order).
  EXPECT_EQ((std::vector<int>{mouseWheel(0), mouseWheel(1), mouseWheel(1)}), (std::vector<int>{1, 1, 0}));
  ASSERT_EQ(processMessages(), 0);
  EXPECT_EQ(anyKeyDown(7) + inputScriptFramesLeft(), 0);
  EXPECT_EQ((std::vector<int>{processMessages(), processMessages()}), (std::vector<int>{-1, -1}))
      << "the script closes the window after its last frame, for good";
  inputFrame close;
  close.closeWindow = true;
  setInputScript({inputFrame{}, close, inputFrame{}}, false);
  EXPECT_EQ((std::vector<int>{processMessages(), processMessages(), processMessages()}), (std::vector<int>{0, -1, -1}))
      << "a new script opens the window again; a frame can close it";
}

// Plays the frames through a field made with the given rules; its text.
std::string edit(std::vector<inputFrame> frames, int maxLength = 0, int singleByte = 0, int doubleOnly = 0) {
  const int field = makeTextInput(maxLength, 1, singleByte, 0, doubleOnly, 0);
  activateTextInput(field);
  setInputScript(std::move(frames), false);
  while (inputScriptFramesLeft() > 0) processMessages();
  const std::string text = fieldText(field);
  deleteTextInput(field);
  return text;
}

TEST_F(scriptedInput, editingKeysWorkOnWholeCharactersAndFieldRulesRefuseTypedTextWhole) {
  // Home, Right, Delete removes "b"; End, Backspace removes "e".
  EXPECT_EQ(edit({typing("abcde"), typing("", {keyHome, keyRight, keyDelete}), typing("X", {keyEnd, keyBackspace})}),
            "aXcd");
  const char* nihongo = "\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e";  // three characters of three bytes
  EXPECT_EQ(edit({typing(nihongo, {keyLeft, keyBackspace}), typing("x", {keyRight, keyBackspace})}), "\xe6\x97\xa5x");
  EXPECT_EQ(edit({typing("", {keyBackspace, keyDelete, keyLeft}), typing("ok", {keyRight, keyRight, keyDelete})}), "ok")
      << "edits at either end of the text do nothing";
  EXPECT_EQ(edit({typing("ab"), typing("\xc3\xa9"), typing("cde"), typing("fg")}, 6, 1), "abcde")
      << "a non-ASCII character and a piece beyond 6 bytes are refused whole";
  EXPECT_EQ(edit({typing("1"), typing("."), typing("5x"), typing("e-3"), typing(" ")}, 0, 0, 1), "1.e-3");
  inputFrame paste;
  paste.pasted = "12a.5\n99";
  EXPECT_EQ(edit({paste}, 0, 0, 1), "12.5") << "refused characters are left out; a line break ends the paste";
  paste.pasted = "x\xe6\x97\xa5yz";
  EXPECT_EQ(edit({paste}, 5), "x\xe6\x97\xa5y") << "a paste stops where the field is full";
}

TEST_F(scriptedInput, enterFinishesEscCancelsOnlyWhereAllowed) {
  const int strict = makeTextInput(0, 0, 1, 0, 0, 0);
  const int lenient = makeTextInput(0, 1, 1, 0, 0, 0);
  activateTextInput(strict);
  setInputScript({typing("ab", {keyEsc}), typing("c", {keyEnter}), typing("z")}, false);
  std::vector<int> states;
  for (int f = 0; f < 3; ++f) {
    processMessages();
    states.push_back(textInputState(strict));
  }
  EXPECT_EQ(states, (std::vector<int>{0, 1, 1})) << "Esc does not cancel a field that does not allow it";
  EXPECT_EQ(fieldText(strict), "abc") << "a finished field takes no more keys";
  activateTextInput(lenient);
  setInputScript({marvtest::holding(keyEsc), marvtest::holding(keyEsc)}, false);
  processMessages();
  processMessages();
  EXPECT_EQ(textInputState(lenient), 2) << "a held key edits once, when it goes down";
  EXPECT_EQ(keyDown(keyEsc), 1) << "and still shows in the key table";
  activateTextInput(strict);
  EXPECT_EQ(textInputState(strict), 0) << "activating a field starts editing again";
  char cut[3];
  getTextInput(cut, sizeof cut, strict);
  EXPECT_STREQ(cut, "ab");
  setTextInput("\xe6\x97\xa5", strict);
  getTextInput(cut, sizeof cut, strict);
  EXPECT_STREQ(cut, "") << "a copy never ends inside a character";
  deleteTextInput(strict);
  EXPECT_EQ((std::vector<int>{textInputState(strict), activateTextInput(strict) != 0, drawTextInput(0, 0, lenient, 1),
                              drawTextInput(0, 0, strict, 1)}),
            (std::vector<int>{-1, 1, 0, -1}));
}

namespace menuBar {

using namespace marv::menu;

constexpr int codeDownArrow = 208;

struct point {
  int x, y;
};

point centre(const rect& r) { return {(r.x1 + r.x2) / 2, (r.y1 + r.y2) / 2}; }

class menuBarTest : public ::testing::Test {
 protected:
  menuModel m = mainMenu();
  void SetUp() override { m.shown = true; }
  void clickHead(int head) {
    const point p = centre(headRect(m, head));
    leftButton(m, p.x, p.y, true);
    leftButton(m, p.x, p.y, false);
  }
  std::vector<int> taken() {
    std::vector<int> ids;
    for (int id = takeCommand(m); id != 0; id = takeCommand(m)) ids.push_back(id);
    return ids;
  }
};

// Clicks, hovering between heads and Esc through the window are played by
// the menu script tests; these are the paths they leave.
TEST_F(menuBarTest, hoveringOpensNothingASecondClickClosesAndAPressDraggedOntoAnItemChooses) {
  const point file = centre(headRect(m, 0));
  pointerMoved(m, file.x, file.y);
  EXPECT_FALSE(isOpen(m));
  clickHead(0);
  EXPECT_EQ(m.openHead, 0);
  clickHead(0);
  EXPECT_FALSE(isOpen(m));
  EXPECT_TRUE(taken().empty());
  // Through the submenu head into the submenu, button held all the way.
  EXPECT_TRUE(leftButton(m, file.x, file.y, true));
  const rect list = openListRect(m);
  const point load = centre(itemRect(m, 0, 1, list.x1, list.y1));
  pointerMoved(m, load.x, load.y);
  const rect sub = openSubRect(m);
  const int subList = m.lists[0].items[1].submenu;
  int analysis = 0;
  while (m.lists[subList].items[analysis].id != commandOpenAnalysis) ++analysis;
  const point target = centre(itemRect(m, subList, analysis, sub.x1, sub.y1));
  pointerMoved(m, target.x, target.y);
  EXPECT_TRUE(leftButton(m, target.x, target.y, false));
  EXPECT_EQ(taken(), std::vector<int>{commandOpenAnalysis});
  EXPECT_FALSE(isOpen(m));
}

TEST_F(menuBarTest, arrowsMoveBetweenHeadsAndAClickOutsideClosesWithoutPassingOn) {
  keyPressed(m, 0, 'F', true);
  EXPECT_EQ(m.openHead * 10 + m.hotItem, 0) << "the keyboard opens with the first item highlighted";
  keyPressed(m, marv::keyRight, 0, false);  // the first item has no submenu: on to Help
  EXPECT_EQ(m.openHead, 1);
  keyPressed(m, marv::keyLeft, 0, false);
  keyPressed(m, codeDownArrow, 0, false);
  keyPressed(m, marv::keyRight, 0, false);
  EXPECT_EQ(m.openHead, 0);
  EXPECT_GE(m.openSub, 0) << "Right on an item with a submenu opens it";
  const point outside{700, 400};
  EXPECT_TRUE(leftButton(m, outside.x, outside.y, true)) << "the closing click is the menu's";
  EXPECT_FALSE(isOpen(m));
  EXPECT_TRUE(leftButton(m, outside.x, outside.y, false));
  // The next click there is the screens'.
  EXPECT_FALSE(leftButton(m, outside.x, outside.y, true) || leftButton(m, outside.x, outside.y, false) ||
               pointerMoved(m, outside.x, outside.y));
  EXPECT_FALSE(keyPressed(m, 0, 'Q', true)) << "Alt with a letter of no menu";
  EXPECT_TRUE(taken().empty());
}

TEST_F(menuBarTest, keyboardWalksOverSeparatorsAndChoosesByLetterOrEnter) {
  keyPressed(m, 0, 'H', true);
  ASSERT_EQ(m.openHead, 1);
  for (int i = 0; i < 3; ++i) keyPressed(m, codeDownArrow, 0, false);
  EXPECT_EQ(m.lists[2].items[m.hotItem].id, commandHelpUpdates) << "the separator is skipped";
  keyPressed(m, codeDownArrow, 0, false);
  EXPECT_EQ(m.hotItem, 0) << "wraps to the top";
  keyPressed(m, marv::keyEnter, 0, false);
  keyPressed(m, 0, 'F', true);
  keyPressed(m, 0, 'L', false);  // opens the submenu
  keyPressed(m, 0, 's', false);  // lower case works as well
  EXPECT_EQ(taken(), (std::vector<int>{commandHelpParameters, commandOpenSimulation}));
}

// Access letter, visible caption and underline offset (in bytes of UTF-8) of each caption.
TEST(menuCaptions, accessLettersAndUnderlinesOfCaptions) {
  std::string seen;
  for (const char* caption : {"Exit (&X)", "in (&s)", "Fish && Chips", "A && B (&C)", "ファイル (&F)", "trailing &"}) {
    int underline = 0;
    const std::string visible = visibleCaption(caption, &underline);
    seen += std::string(1, accessLetter(caption) ? accessLetter(caption) : '-') + " " + visible + " " +
            std::to_string(underline) + "|";
  }
  EXPECT_EQ(seen, "X Exit (X) 6|S in (s) 4|- Fish & Chips -1|C A & B (C) 7|F ファイル (F) 14|- trailing & -1|");
}

}  // namespace menuBar

}  // namespace
