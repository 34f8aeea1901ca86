// The menu bar played through the input script: the screens never see what it takes; commands reach a whole pass.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/driver.h"
#include "app/menuCommands.h"
#include "layer/inputScript.h"
#include "layer/layer.h"
#include "layer/windowMenu.h"
#include "screenScript.h"
#include "testSupport.h"

namespace {

using marv::inputFrame;
namespace menu = marv::menu;

constexpr int altKey = 56;
constexpr int letterF = 33, letterL = 38, letterN = 49, letterS = 31, letterX = 45;

// Centre of a menu rectangle in back buffer pixels, as the script gives them: the bar lies above.
inputFrame at(const menu::rect& r, int buttons = 0) {
  return marvtest::frameAt((r.x1 + r.x2) / 2, (r.y1 + r.y2) / 2 - marv::menuBarHeight(), buttons);
}

menu::rect itemOf(int list, int index) {
  const menu::menuModel& m = menu::windowMenu();
  const menu::rect r = list == 1 ? menu::openSubRect(m) : menu::openListRect(m);
  return menu::itemRect(m, list, index, r.x1, r.y1);
}

std::vector<int> received;
void record(int id, void*) { received.push_back(id); }

class menuScriptTest : public ::testing::Test {
 protected:
  void SetUp() override {
    marv::stopLayer();
    received.clear();
    marv::setWindowMenu(101);
    marv::setMenuCommandReceiver(record, nullptr);
  }
  void TearDown() override { marv::stopLayer(); }
  // Plays one frame; what the screens saw of the left button in it.
  int play(const inputFrame& f) {
    marv::setInputScript({f}, false);
    EXPECT_EQ(marv::processMessages(), 0);
    return marv::mouseButtons() & marv::mouseLeft;
  }
};

TEST_F(menuScriptTest, theMenuKeepsItsClicksAndKeysFromTheScreensAndRefusesGreyedItems) {
  marv::setMenuItemEnabled(menu::commandNewProject, 0);
  marv::setMenuItemEnabled(menu::commandOpenSimulation, 0);
  const menu::menuModel& m = menu::windowMenu();
  int seen = 0;
  seen |= play(at(menu::headRect(m, 0), marv::mouseLeft));
  seen |= play(at(menu::headRect(m, 0)));
  seen |= play(at(itemOf(0, 0), marv::mouseLeft));
  seen |= play(at(itemOf(0, 0)));
  EXPECT_TRUE(menu::isOpen(m)) << "a greyed item is not chosen";
  // By keys: N refused; L opens the submenu, S refused there; Esc closes it unseen by the screens.
  inputFrame keys = at(itemOf(0, 0));
  keys.keysTapped = {letterN, letterL, letterS};
  play(keys);
  EXPECT_GE(m.openSub, 0);
  inputFrame esc = at(itemOf(0, 0));
  esc.keysHeld = {marv::keyEsc};
  play(esc);
  EXPECT_EQ(marv::keyDown(marv::keyEsc), 0);
  EXPECT_EQ(m.openSub, -1);
  EXPECT_TRUE(menu::isOpen(m));
  // Hover to Help, then a click on its third item.
  seen |= play(at(menu::headRect(m, 1)));
  EXPECT_EQ(m.openHead, 1);
  seen |= play(at(itemOf(2, 2), marv::mouseLeft));
  seen |= play(at(itemOf(2, 2)));
  EXPECT_EQ(seen, 0) << "no click on the menu reaches the screens";
  EXPECT_FALSE(menu::isOpen(m));
  EXPECT_EQ(received, std::vector<int>{menu::commandHelpExamples});
  // With the menu closed, clicks and Esc are the screens' again.
  EXPECT_EQ(play(marvtest::pointer(300, 200, true)), marv::mouseLeft);
  play(esc);
  EXPECT_EQ(marv::keyDown(marv::keyEsc), 1);
}

// A driver pass whose start screen waits, as the window's does, for a path from the menu or the close.
bool windowClosed = false;
int greyedDuringThePass = 0;

int waitingStartScreen(marv::driverState& state, marv::appConfig&) {
  for (int frame = 0; frame < 200; ++frame) {
    if (marv::processMessages() == -1) {
      windowClosed = true;  // the window program ends here, without teardown
      return -1;
    }
    if (!state.chosenFilePath.empty()) return 0;  // go on with what the menu chose
  }
  return -1;
}

// After the project choice: how many of the project commands are greyed?
int refuseSource(marv::driverState&, marv::appConfig&) {
  for (int id : {40006, 40009, 40010}) greyedDuringThePass += !menu::findItem(menu::windowMenu(), id)->enabled;
  return -1;
}

int answerDialog(const marv::fileDialogRequest&, std::string& path) {
  path = "/projects/duct/input/param.txt";
  return 0;
}

std::vector<inputFrame> fileMenuKeys(std::vector<int> letters) {
  return {marvtest::frameAt(0, 0, 0, {altKey}, {letterF}), marvtest::frameAt(0, 0, 0, {}, letters)};
}

TEST_F(menuScriptTest, theMenuDrivesAPassOfTheDriver) {
  const std::filesystem::path start = marvtest::scratchFolder("menu-pass");
  marvtest::inFolder inside(start);
  marv::driverState state;
  marv::menuHook hook;
  hook.state = &state;
  hook.dialog = answerDialog;
  marv::installMenuHook(hook);
  marv::passStages stages;
  stages.startScreen = waitingStartScreen;
  stages.sourceScreen = refuseSource;
  stages.onePass = true;
  stages.writeHistory = false;
  stages.splash = false;
  // File, Load, In Simulation Mode: the pass goes on with the path, the project commands greyed.
  state.analysisRequest = 1;
  marv::setInputScript(fileMenuKeys({letterL, letterS}), false);
  marv::runDriver(stages, state);
  EXPECT_EQ(state.chosenFilePath + std::to_string(state.newProjectRequest) + std::to_string(state.analysisRequest),
            "/projects/duct/input/param.txt00");
  EXPECT_EQ(std::filesystem::current_path(), start);
  EXPECT_FALSE(windowClosed);
  EXPECT_EQ(greyedDuringThePass, 3) << "the project commands are greyed";
  // File, Exit ends the process's loop at the next message handling.
  marv::setWindowMenu(101);
  marv::installMenuHook(hook);
  state.chosenFilePath.clear();
  marv::setInputScript(fileMenuKeys({letterX}), false);
  marv::runDriver(stages, state);
  EXPECT_TRUE(windowClosed);
  EXPECT_EQ(state.runsCompleted, 0);
  EXPECT_EQ(state.chosenFilePath, "");
}

TEST_F(menuScriptTest, aHelpPageThatCannotOpenIsToldInAMessageBoxUntilOk) {
  marv::driverState state;
  marv::menuHook hook;
  hook.state = &state;
  hook.message = marv::menuMessageBox;
  hook.pageOpener = "/nonexistent/opener";
  marv::installMenuHook(hook);
  // Alt H, P: the parameter page; the box polls Enter for its OK.
  const inputFrame alt = marvtest::frameAt(0, 0, 0, {altKey}, {35}), choose = marvtest::frameAt(0, 0, 0, {}, {25});
  const inputFrame wait, ok = marvtest::holding(marv::keyEnter);
  marv::setInputScript({alt, choose, wait, wait, ok, wait, wait}, false);
  EXPECT_EQ(marv::processMessages(), 0);
  EXPECT_EQ(marv::processMessages(), 0);  // the box runs its frames in here, until OK
  EXPECT_LE(marv::inputScriptFramesLeft(), 2) << "the message waited for its OK";
  EXPECT_EQ(marv::processMessages(), 0);
}

}  // namespace
