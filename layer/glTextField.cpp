// Drawing a text input field in the OpenGL backend: its text inside its clip
// rectangle and, when it has the keyboard, a cursor bar. The fields
// themselves and their editing are shared with the headless backend.
#include <algorithm>
#include <string>

#include "layer/glCore.h"
#include "layer/inputDevices.h"

namespace marv {

using namespace gl;

int drawTextInput(int x, int y, int handle, int showCursor) {
  input::fieldLook look;
  if (!input::lookOfField(handle, look)) return -1;
  int clip[4] = {0, 0, -1, -1};
  if (look.clip) std::copy(look.clip, look.clip + 4, clip);
  const int font = input::fieldFont();
  drawTextRun(x, y, look.text, input::fieldColour(0), font, look.clip ? clip : nullptr);
  if (!showCursor || !look.active) return 0;
  const int cx = x + textWidthOf(font, std::string(look.text, static_cast<std::size_t>(look.cursor)).c_str());
  const int h = std::max(textHeightOf(font), 1);
  batchKey k = key2d(primitive::quads);
  std::copy(clip, clip + 4, k.clip);
  vertex* v = reserve(k, 4);
  if (v == nullptr) return 0;
  const float xs[4] = {0, 2, 2, 0}, ys[4] = {0, 0, 1, 1};
  for (int i = 0; i < 4; ++i) {
    v[i] = vertex{};
    v[i].x = static_cast<float>(cx) + xs[i];
    v[i].y = static_cast<float>(y) + ys[i] * static_cast<float>(h);
    setColour(v[i], input::fieldColour(1));
  }
  return 0;
}

}  // namespace marv
