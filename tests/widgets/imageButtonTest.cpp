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

TEST_F(imageButtonScript, anOnButtonTogglesOffAndStaysSunkTwoPixelsLessThanAPress) {
  imageButton b = button();
  EXPECT_EQ(play(b, {mouse(cx, cy, false), mouse(cx, cy, true), mouse(cx, cy, false), mouse(cx + 300, cy, false)}, 0),
            (std::vector<int>{0, 0, 1, 1}));
  EXPECT_EQ(std::pair(b.x, b.shadowX), std::pair(bx + 3 - 2, bx - 1)) << "an on button rests sunk";
  EXPECT_EQ(play(b, marvtest::click(cx, cy), 1), (std::vector<int>{1, 1, 0}));
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

}  // namespace
