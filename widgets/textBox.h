// textBox: the message box of every screen, with optional buttons (Next and
// Prev, OK and Cancel, OK alone, Return alone) and an optional single-line
// text input. It is placed in the middle of the window, or beside the mouse,
// or where the caller puts it; it keeps nothing between calls but its
// layout. showTextBox either runs its own small frame loop until an answer
// comes (blocking) or draws one frame and returns (non-blocking).
//
// Texts are UTF-8. A text that starts with a character beyond ASCII counts
// as a double-byte text: its lines are measured in the width of "あ" and it
// breaks at any character; other texts wrap at blanks. Line widths are
// counted in columns, one for an ASCII character and two for any other.
#pragma once

#include <array>
#include <cstdint>

#include "widgets/imageButton.h"

namespace marv {

constexpr int textBoxInputLength = 400;  // longest input text [bytes]

struct textBox {
  std::uint8_t doubleByte = 0;                 // the text starts with a character beyond ASCII
  int charBytes = 1;                           // bytes of the first character
  int maxInput = textBoxInputLength;           // longest input text [bytes]
  std::uint32_t textColour = colourBlack;      // colour of the text
  int hover = 0;                               // the mouse is over the box
  int positionMode = 0;                        // 0 fixed; 1 beside the mouse
  int frameKind = 0;                           // look of the box: 0 pulsing red frame ... 5 bare text
  std::uint8_t hasInput = 0;                   // has a text input
  std::uint8_t entered = 0;                    // Enter finished the input
  std::uint8_t inputActive = 0;                // the input holds the keyboard
  std::uint8_t escArmed = 1;                   // Esc was seen up: Esc may answer; 0 for the Esc that opened the box
  std::uint32_t frameColour = 0;               // look in this frame; 0 none
  std::uint32_t bodyColour = 0;                // text colour in this frame
  std::uint32_t backColour = 0;                // back of the box in this frame; 0 none
  int backAlpha = 0;                           // back drawn at this alpha, 0 for an opaque back with shadow
  int inputHandle = -1;                        // the layer's text input
  int inputWidth = 0, inputHeight = 0;         // [px]
  int inputX = 0, inputY = 0;                  // [px]
  int buttonY = 0;                             // top of the buttons [px]
  int windowWidth = 0, windowHeight = 0;       // size of the window at layout [px]
  int placed = 0;                              // 0: centred vertically when measured; 1: the caller placed it
  int boxWidth = 0, boxHeight = 0;             // [px]
  int boxX = 0, boxY = 0;                      // [px]
  int offsetX = 0, offsetY = 0;                // added to boxX, boxY [px]
  int lineGap = 0, padding = 0;                // [px]
  int fontSize = 0;                            // [px]
  int font = -1;                               // font handle
  int charsPerLine = 0;                        // columns of a line
  int lineCount = 0;                           // lines of the last text
  int backdrop = 0;                            // full-window picture behind a blocking box; 0 none
  int buttonSet = 1;                           // 0 none, 1 Next and Prev, 2 Return, 4 OK and Cancel, 5 OK
  int iconCount = 10, iconSize = 64, gap = 6;  // [-], [px], [px]
  std::array<int, 10> icons{};                 // back, forward, OK, Cancel, ..., button shadow 8, box shadow 9
  imageButton nextButton, prevButton, okButton, cancelButton;
};

// Constructs a box for that font: its text input and its layout.
textBox makeTextBox(int fontSize, int font);

// Lays the box out anew after a change of font, size or window.
void layoutTextBox(textBox& box);

// Buttons: 5 "OK" and "Cancel"; 6 "OK" alone; 8 "Return" alone; any other
// value none.
void setTextBoxButtons(textBox& box, int kind);

// Lines, height and the places of input and buttons for `text`.
void measureTextBox(textBox& box, const char* text);

// Shows `text`. Returns 1 for OK, Next or Enter, -1 for Cancel, Prev, Return
// or Esc (in a box that has such a button), 0 when nonBlocking and nothing
// was pressed. A box without buttons returns -1 after one frame. restoreInput
// is a text input that gets the keyboard back at the end, or 0. Closing the
// window ends the process. A box shown non-blocking keeps its input active
// from frame to frame; a caller that stops showing it before an answer sets
// inputActive to 0, so that the next showing takes the keyboard again.
int showTextBox(textBox& box, const char* text, int nonBlocking, int restoreInput);

// The index of the last byte of the line that starts at `start`, at most
// charsPerLine columns wide; the next line starts one byte further. Past the
// end of the text it returns the index of the text's last byte (-1 for "").
int breakLine(const char* text, int start, int charsPerLine, bool doubleByte);

// Frees the icons and the text input.
void destroyTextBox(textBox& box);

// present, clear, a short wait and the window's messages; a closed window
// ends the process at once. The end of every frame of a screen.
void endScreenFrame();

}  // namespace marv
