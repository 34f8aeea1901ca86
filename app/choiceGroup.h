// A row of up to ten numbered options drawn as small circles with labels: the
// unit selector, the bitmap stage's plane selectors and the editor's choices.
#pragma once

#include <array>
#include <string>

namespace marv {

struct choiceGroup {
  int radius = 0;                 // circle radius [px]
  int gap = 0;                    // gap between options [px]
  int count = 0;                  // number of options
  int x = 0;                      // place of the row [px]
  int y = 0;                      // place of the row [px]
  int width = 0;                  // pixel width of the row [px]
  int selected = 0;               // the chosen option
  int hover = -1;                 // option under the mouse, -1 none
  int pressed = -1;               // option pressed during a click, -1 none
  std::array<int, 10> optionX{};  // left edge of each option [px]
  std::array<std::string, 10> labels{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
  int prepared = 0;    // 0 until the pixel places were computed
  int moved = 0;       // 1 when the place is to be taken anew
  int totalWidth = 0;  // width of the whole row [px]
};

// Sets count and the first labels of a group; the rest keep their defaults.
void setChoices(choiceGroup& group, std::initializer_list<const char*> labels, int selected);

}  // namespace marv
