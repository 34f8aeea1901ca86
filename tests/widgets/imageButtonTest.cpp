// imageButton played frame by frame: what is a click, the on state, the disabled button, the shortcut key.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "screenScript.h"
#include "widgets/imageButton.h"

namespace {

using namespace marv;

constexpr int bx = 100, by = 50;  // where the 64-pixel button stands

inputFrame mouse(int x, int y, bool down) { return marvtest::pointer(x, y, down); }
inputFrame key(int code) { return marvtest::holding(code); }

// Plays the frames; each frame the caller asks for a one-shot (state 0) and
// the results are collected.
std::vector<int> play(imageButton& b, const std::vector<inputFrame>& frames) {
  setInputScript(frames, false);
  std::vector<int> results;
  while (inputScriptFramesLeft() > 0) {
    processMessages();
    results.push_back(runImageButton(b, bx, by, 0, 0, 1));
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
  const int cx = bx + 32, cy = by + 32;
  setInputScript({mouse(cx, cy, false), mouse(cx, cy, true)}, false);
  processMessages();
  EXPECT_EQ(runImageButton(b, bx, by, 0, 0, 1), 0);
  EXPECT_EQ(b.hover, 1);
  EXPECT_EQ(b.x, bx) << "a hovered button does not sink";
  processMessages();
  EXPECT_EQ(runImageButton(b, bx, by, 0, 0, 1), 0) << "nothing happens on the way down";
  EXPECT_EQ(b.x, bx + 3);
  EXPECT_EQ(b.y, by + 3);

  EXPECT_EQ(play(b, {mouse(cx, cy, false), mouse(cx, cy, false)}), (std::vector<int>{1, 0}))
      << "the click shows in the frame of the release only";
  // The corners of the button count; one pixel beyond does not.
  EXPECT_EQ(play(b, {mouse(bx, by + 64, false), mouse(bx, by + 64, true), mouse(bx, by + 64, false)}),
            (std::vector<int>{0, 0, 1}));
  EXPECT_EQ(play(b, {mouse(bx + 65, by, false), mouse(bx + 65, by, true), mouse(bx + 65, by, false)}),
            (std::vector<int>{0, 0, 0}));
}

TEST_F(imageButtonScript, dragsThatLeaveStartElsewhereOrMoveDoNotClick) {
  const int cx = bx + 32, cy = by + 32;
  const std::pair<const char*, std::vector<inputFrame>> drags[] = {
      {"press inside, release outside, then back over the press pixel",
       {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx + 200, cy, true), mouse(cx + 200, cy, false),
        mouse(cx, cy, false)}},
      {"press, a move of one pixel, release",
       {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx + 1, cy, true), mouse(cx + 1, cy, false)}},
      {"press beside the button, move onto it, release",
       {mouse(bx - 20, cy, false), mouse(bx - 20, cy, true), mouse(cx, cy, true), mouse(cx, cy, false)}},
      {"hovered once, pressed elsewhere, dragged back on",
       {mouse(cx, cy, false), mouse(cx + 200, cy, false), mouse(cx + 200, cy, true), mouse(cx, cy, true),
        mouse(cx, cy, false)}},
  };
  for (const auto& [what, frames] : drags) {
    imageButton b = button();
    EXPECT_EQ(play(b, frames), std::vector<int>(frames.size(), 0)) << what;
    EXPECT_EQ(b.pressed, 0) << what;
  }
}

TEST_F(imageButtonScript, anOnButtonTogglesOffAndStaysSunkTwoPixelsLessThanAPress) {
  imageButton b = button();
  const int cx = bx + 32, cy = by + 32;
  setInputScript({mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx, cy, false), mouse(cx + 300, cy, false),
                  mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx, cy, false)},
                 false);
  int state = 0;
  std::vector<int> states;
  while (inputScriptFramesLeft() > 0) {
    processMessages();
    state = runImageButton(b, bx, by, 0, state, 0);
    states.push_back(state);
    if (states.size() == 4) {
      EXPECT_EQ(b.x, bx + 3 - 2) << "an on button rests sunk";
      EXPECT_EQ(b.shadowX, bx + 0 - 1);
    }
  }
  EXPECT_EQ(states, (std::vector<int>{0, 0, 1, 1, 1, 1, 0}));
}

TEST_F(imageButtonScript, aDisabledButtonNeitherHoversNorClicksNorTakesItsKey) {
  imageButton b = button();
  b.disabled = 1;
  b.shortcutKey = keyEnter;
  const int cx = bx + 32, cy = by + 32;
  EXPECT_EQ(
      play(b, {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx, cy, false), key(keyEnter), mouse(cx, cy, false)}),
      (std::vector<int>{0, 0, 0, 0, 0}));
  EXPECT_EQ(b.hover, 0);
  b.disabled = 0;
  EXPECT_EQ(play(b, {mouse(cx, cy, true), mouse(cx, cy, false)}), (std::vector<int>{0, 0}))
      << "enabled again, it must first see the mouse over it with the button up";
}

TEST_F(imageButtonScript, theShortcutKeyClicksOnItsWayDownOnceItWasSeenUp) {
  imageButton b = button();
  b.shortcutKey = keyRight;
  EXPECT_EQ(play(b, {key(keyRight), key(keyRight), mouse(0, 0, false), key(keyRight), key(keyRight), mouse(0, 0, false),
                     key(keyRight)}),
            (std::vector<int>{0, 0, 0, 1, 0, 0, 1}))
      << "a key held from before does not click; each new stroke clicks once";
  EXPECT_EQ(play(b, {key(keyEnter), mouse(0, 0, false)}), (std::vector<int>{0, 0})) << "other keys do nothing";
}

}  // namespace
