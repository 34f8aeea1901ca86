// imageButton, in the order every frame takes: place, hit-test, behaviour,
// draw, return.
//
// Behaviour rules, beyond "act on a release at the pixel of the press":
// the press pixel is taken when the press starts, so a press, a move of one
// pixel and a release do nothing; leaving the button disarms it and drops a
// press under way, so neither a press that began beside it and moved on,
// nor one that left and came back, clicks it.
#include "widgets/imageButton.h"

#include <cstdlib>

#include "layer/layer.h"

namespace marv {

namespace {

constexpr int veilAmount = 150;  // alpha of the white veil over a disabled button [0..255]

}  // namespace

int updateImageButton(imageButton& b, int x, int y, int state, const buttonInput& in) {
  // Place.
  b.x = b.shadowX = x;
  b.y = b.shadowY = y;
  b.centreX = x + b.width / 2;
  b.centreY = y + b.height / 2;
  b.state = static_cast<std::uint8_t>(state);

  // Hit-test.
  b.down = in.leftDown ? 1 : 0;
  b.hover = std::abs(in.mouseX - b.centreX) <= b.width / 2 && std::abs(in.mouseY - b.centreY) <= b.height / 2;
  if (b.disabled) {
    b.hover = b.armed = b.pressed = 0;
    b.keyArmed = 0;
    return b.state;
  }

  // Behaviour: arm on an idle hover, press on a button-down while armed,
  // click on the release at the press pixel.
  if (!b.hover) b.armed = b.pressed = 0;
  if (b.hover && !b.down) b.armed = 1;
  if (b.hover && b.armed && b.down) {
    if (!b.pressed) {
      b.pressX = in.mouseX;
      b.pressY = in.mouseY;
    }
    b.pressed = 1;
    b.x += b.pressShift;
    b.y += b.pressShift;
    b.shadowX += b.pressShift / 4;
    b.shadowY += b.pressShift / 4;
  }
  if (b.pressed && !b.down) {
    if (b.hover && b.armed && in.mouseX == b.pressX && in.mouseY == b.pressY) {
      b.state = b.state == 0 ? 1 : 0;
      b.armed = 0;
    }
    b.pressed = 0;
  }

  // The shortcut key clicks on its way down, once it was seen up.
  if (b.shortcutKey != 0) {
    if (!in.keyDown) {
      b.keyArmed = 1;
    } else if (b.keyArmed) {
      b.state = b.state == 0 ? 1 : 0;
      b.keyArmed = 0;
    }
  }

  // An on button stays sunk, two pixels less than a pressed one.
  if (b.state == 1 && !b.pressed) {
    b.x += b.pressShift - 2;
    b.y += b.pressShift - 2;
    b.shadowX += b.pressShift / 4 - 1;
    b.shadowY += b.pressShift / 4 - 1;
  }
  return b.state;
}

int runImageButton(imageButton& b, int x, int y, int image, int state, int drawNow) {
  buttonInput in;
  mousePosition(&in.mouseX, &in.mouseY);
  in.leftDown = (mouseButtons() & mouseLeft) != 0;
  in.keyDown = b.shortcutKey > 0 && b.shortcutKey < 256 && keyDown(b.shortcutKey) != 0;
  const int result = updateImageButton(b, x, y, state, in);
  if (drawNow == 1) drawImageButton(b, image);
  return result;
}

void drawImageButton(imageButton& b, int image) {
  const char* label = b.label ? b.label : "";
  if (image <= 0) {
    // No picture: a plain box with its caption centred near the bottom.
    drawBox(b.x, b.y, b.x + b.width, b.y + b.height, b.plainColour, 1);
    b.labelWidth = textWidthInFont(b.plainFont, "%s", label);
    b.labelX = b.x + (b.width - b.labelWidth) / 2;
    b.labelY = b.y + b.height - b.plainFontSize;
    drawText(b.labelX, b.labelY, label, b.plainLabelColour, b.plainFont, 0, 0);
  } else {
    if (b.shadowImage > 0) {
      setBlend(1, 128);
      drawImageStretched(b.shadowX + b.shadowOffset, b.shadowY + b.shadowOffset, b.shadowX + b.shadowOffset + b.width,
                         b.shadowY + b.shadowOffset + b.height, b.shadowImage, 1);
      setBlend(0, 0);
    }
    drawImageStretched(b.x, b.y, b.x + b.width, b.y + b.height, image, 1);
    if (b.state == 1 || b.hover) {
      setBlend(1, b.state == 1 ? 64 : 16);
      drawBox(b.x, b.y, b.x + b.width, b.y + b.height, b.tintColour, 1);
      setBlend(0, 0);
    }
    if (b.hover && label[0] != '\0') {
      b.labelWidth = textWidthInFont(b.imageFont, "%s", label);
      if (b.labelKind == 2) {
        b.labelX = b.x + (b.width - b.labelWidth) / 2;
        b.labelY = b.y + b.height - b.imageFontSize;
      } else {
        b.labelX = b.x;
        b.labelY = b.y + b.height + b.pressShift;
      }
      drawText(b.labelX, b.labelY, label, b.labelColour, b.imageFont, 0, 0);
    }
  }
  if (b.disabled) {
    setBlend(1, veilAmount);
    drawBox(b.x, b.y, b.x + b.width, b.y + b.height, colourWhite, 1);
    setBlend(0, 0);
  }
}

}  // namespace marv
