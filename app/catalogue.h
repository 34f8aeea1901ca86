// The numbered text catalogue: every sentence the user reads on the screens
// and in the menus, in English and in Japanese. Texts are UTF-8, as every
// string inside the program; a text may hold an "&" before the access letter
// of a menu command, a "%s" placeholder or a line break.
#pragma once

#include <string>

namespace marv {

constexpr int catalogueSize = 53;  // numbers 0..52; some are unused

// The text of `number` in English (japanese false) or Japanese (true), as a
// new string. A number the catalogue does not hold (9, 14, 20, 23, anything
// negative or above 52) gives an empty string, so a caller's mistake shows
// as a blank rather than as a crash.
std::string catalogueText(int number, bool japanese);

// True when the catalogue holds a text of that number.
bool catalogueHas(int number);

}  // namespace marv
