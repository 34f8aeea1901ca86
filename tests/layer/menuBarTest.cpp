// The window's menu bar: how it opens, moves, chooses and closes, by pointer and by key.
#include "layer/menuBar.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "layer/layer.h"
#include "layer/windowMenu.h"

namespace {

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

// The window's own menu through the layer. Commands reaching the receiver, greyed items and Exit closing the
// window are played through the window by the menu script tests.
TEST(windowMenu, aMenuIsSetByIdAndComesBackAsMadeAndAStopForgetsTheClose) {
  marv::stopLayer();
  EXPECT_EQ(marv::menuBarHeight(), 0) << "no bar until a menu is set";
  EXPECT_EQ(marv::setWindowMenu(7), -1);
  ASSERT_EQ(marv::setWindowMenu(mainMenuId), 0);
  EXPECT_GT(marv::menuBarHeight(), 0);
  EXPECT_EQ((std::vector{marv::setMenuItemEnabled(commandNewProject, 0), marv::setMenuItemEnabled(99999, 0),
                         marv::setMenuItemText(commandExit, "Quit (&Q)"), marv::setMenuHeadText(0, 2, "separator")}),
            (std::vector{0, -1, 0, -1}));
  marv::setWindowMenu(mainMenuId);
  EXPECT_TRUE(findItem(windowMenu(), commandNewProject)->enabled);
  EXPECT_EQ(findItem(windowMenu(), commandExit)->caption, "Exit (&X)");
  marv::closeWindow();
  EXPECT_EQ(marv::processMessages(), -1);
  marv::stopLayer();
  EXPECT_EQ(marv::processMessages(), 0) << "a new start forgets the close";
}

}  // namespace
