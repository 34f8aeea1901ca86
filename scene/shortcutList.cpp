// The shortcut list's image: 33 entries in the fixed bold face, white on
// black, laid out twice with the same positions, once to measure the width
// and once to draw.
#include "scene/shortcutList.h"

#include <algorithm>

#include "layer/layer.h"
#include "widgets/widgetColours.h"

namespace marv {

namespace {

struct helpEntry {
  const char* first;
  const char* second;  // null for a one-line entry
};

constexpr helpEntry entries[] = {
    {"- LIST OF MOUSE OPERATIONS & KEYBOARD SHORTCUTS  -", nullptr},
    {"*PRESS [H] TO CLOSE THIS LIST", nullptr},
    {"[Mouse drag (L)]  To adjust the camera angle (3D)", nullptr},
    {"[Mouse drag (R)]  To adjust the camera target position (3D)", nullptr},
    {"        [Scroll]  To adjust iso-value of iso-surface of the selected ", "                  quantity (3D)"},
    {"[SHIFT + Scroll]  To adjust the out-of-plane distance of XY/YZ/XZ ",
     "                  cross-sectional planes, when they are selected "},
    {" [CTRL + Scroll]  To zoom in/out the computational domain (3D) ", nullptr},
    {"             [A]  On/off orientation axes (3D) ", nullptr},
    {"             [B]  On/off physical boundaries (2D/3D) for non-preset colors ", nullptr},
    {"             [C]  To colour physical boundary with local values based on  ",
     "                  the selected quantity (3D)"},
    {"     [SHIFT + C]  To colour tracer particles/streamlines/velocity vectors/particle",
     "                  contours based on local values of the selected quantity (3D)"},
    {"             [I]  On/off iso-surfaces of a selected quantity (3D)", nullptr},
    {"             [L]  On/off streamlines fed from inflow BC, coloured",
     "                  by a selected quantity (3D)"},
    {"     [SHIFT + L]  On/off streamlines fed from mesh points (3D)", nullptr},
    {"             [O]  On/off computational domain outline (3D)", nullptr},
    {"             [P]  On/off tracer particles coloured based on the selected", "                  quantity (3D)"},
    {"     [SHITF + P]  On/off particle contours for the selected quantity. The size of",
     "                  the particles are propotional to the local values. (3D)"},
    {"             [V]  On/off velocity vector (2D/3D), coloured by a selected", "                  quantity (3D)"},
    {"     [SHIFT + V]  On/off velocity vector overlaid on the shown cross-sectional ",
     "                  planes (3D)"},
    {"         [X + Y]  On/off cross-sectional x-y plane, coloured by a selected ", "                  quantity (3D)"},
    {"         [Y + Z]  On/off cross-sectional y-z plane, coloured by a selected ", "                  quantity (3D)"},
    {"         [Z + X]  On/off cross-sectional z-x plane, coloured by a selected ", "                  quantity (3D)"},
    {"         [SHIFT]  To activate mouse cursor selection of a cross-section.",
     "                  Selected cross-section will be highlighted by magenta. (3D) "},
    {"                  + [Mouse click (L)]  To set a probe at the mouse location",
     "                                       on the selected cross-section (3D) "},
    {"                  + [Mouse click (R)]  To remove the newest probe (3D) ", nullptr},
    {"         [SPACE]  To reset camera position (3D)", nullptr},
    {"             [1]  To select RHO (incompThermo)", nullptr},
    {"             [2]  To select U", nullptr},
    {"             [3]  To select V", nullptr},
    {"             [4]  To select W", nullptr},
    {"             [5]  To select |U|", nullptr},
    {"             [6]  To select T (incompThermo)", nullptr},
    {"             [7]  To select P - presW", nullptr},
};
static_assert(sizeof entries / sizeof entries[0] == 33);

// One pass over the entries. With draw false it only measures; returns the
// widest line, and leaves in `end` the y below the last entry.
int layOut(const appConfig& cfg, bool draw, int imageWidth, float& end) {
  const float g = 2.0f * cfg.textGap, G = 4.0f * cfg.textGap;
  const int font = cfg.fixedBold;
  float y = static_cast<float>(static_cast<int>(cfg.marginTop + g));
  int widest = 0;
  for (int i = 0; i < 33; ++i) {
    const helpEntry& e = entries[i];
    for (int line = 0; line < 2; ++line) {
      const char* text = line == 0 ? e.first : e.second;
      if (text == nullptr) continue;
      const int w = textWidthInFont(font, "%s", text);
      widest = std::max(widest, w);
      const int x = i < 2 ? (imageWidth - w) / 2 : static_cast<int>(g);
      if (draw) drawText(x, static_cast<int>(y) + line * cfg.textHeight, text, colourWhite, font, 0, 0);
    }
    // A two-line entry takes its second line's height too, so that the
    // next entry does not cover it.
    if (e.second != nullptr) y += static_cast<float>(cfg.textHeight);
    y = static_cast<float>(static_cast<int>(y + cfg.textHeight + (i < 2 ? G : g)));
  }
  end = y;
  return widest;
}

}  // namespace

void preRenderHelpList(sceneView& scene, const appConfig& cfg) {
  const float g = 2.0f * cfg.textGap, G = 4.0f * cfg.textGap;
  const int y0 = static_cast<int>(cfg.marginTop + g);
  float end = 0.0f;
  const int width = static_cast<int>(static_cast<float>(layOut(cfg, false, 0, end)) + G);
  scene.helpListHeight = static_cast<int>(end + cfg.textHeight + g);

  deleteImage(scene.helpImage);
  scene.helpImage = makeOffscreenImage(width, scene.helpListHeight + y0, 0);
  if (scene.helpImage >= 0 && setDrawTarget(scene.helpImage) == 0) {
    drawBox(0, 0, width, scene.helpListHeight + y0, colourBlack, 1);
    layOut(cfg, true, width, end);
  }
  setDrawTarget(backBuffer);

  scene.helpLeft = cfg.marginLeft;
  scene.helpTop = cfg.marginTop;
  scene.helpWidth = width;
  scene.helpViewHeight = std::min(cfg.domPixH, scene.helpListHeight + y0);
}

}  // namespace marv
