// Single-line text input fields of the OpenGL backend: the fields the layer
// holds, the editing keys and typed text that the window feeds into the
// active one, and drawing a field with its cursor inside its clip rectangle.
//
// Editing works on UTF-8 bytes with the cursor always on a character
// boundary; maxLength counts bytes, as the program's buffers do.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "layer/glCore.h"

namespace marv {

using namespace gl;

namespace {

struct textField {
  std::string text;              // UTF-8
  int cursor = 0;                // [bytes], on a character boundary
  int maxLength = 0;             // [bytes]; 0 for no limit
  bool cancelValid = false;      // Esc cancels
  bool singleByteOnly = false;   // ASCII only
  bool numbersOnly = false;      // digits only
  bool doubleOnly = false;       // characters of a decimal number only
  int state = 0;                 // 0 editing, 1 Enter, 2 cancelled
  int clip[4] = {0, 0, -1, -1};  // visible rectangle [px]; x2 < x1 for none
  bool live = false;             // the handle is in use
};

struct inputState {
  std::vector<textField> fields;  // by handle
  int active = -1;                // field that gets the keyboard
  int font = -1;                  // font of all fields
  // Colours: 0 text, 1 cursor; the others are kept for callers that set them.
  std::uint32_t colours[17] = {0xFF000000u, 0xFF000000u};  // packed colours
};

inputState inputs;

textField* fieldOf(int handle) {
  if (handle < 0 || handle >= static_cast<int>(inputs.fields.size()) || !inputs.fields[handle].live) return nullptr;
  return &inputs.fields[handle];
}

bool continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

bool accepts(const textField& f, const std::string& piece) {
  for (char ch : piece) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (c < 0x20) return false;
    if (f.singleByteOnly && c >= 0x80) return false;
    if (f.numbersOnly && !(c >= '0' && c <= '9')) return false;
    if (f.doubleOnly && !((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E'))
      return false;
  }
  return true;
}

}  // namespace

namespace gl {

void textInputTyped(const char* utf8) {
  textField* f = fieldOf(inputs.active);
  if (f == nullptr || utf8 == nullptr || f->state != 0) return;
  const std::string piece(utf8);
  if (!accepts(*f, piece)) return;
  if (f->maxLength > 0 && f->text.size() + piece.size() > static_cast<std::size_t>(f->maxLength)) return;
  f->text.insert(static_cast<std::size_t>(f->cursor), piece);
  f->cursor += static_cast<int>(piece.size());
}

void textInputKey(editKey key) {
  textField* f = fieldOf(inputs.active);
  if (f == nullptr || f->state != 0) return;
  std::string& t = f->text;
  int& c = f->cursor;
  auto back = [&](int at) {
    do --at;
    while (at > 0 && continuation(t[at]));
    return std::max(at, 0);
  };
  auto forward = [&](int at) {
    do ++at;
    while (at < static_cast<int>(t.size()) && continuation(t[at]));
    return std::min(at, static_cast<int>(t.size()));
  };
  switch (key) {
    case editKey::backspace:
      if (c > 0) {
        const int from = back(c);
        t.erase(from, c - from);
        c = from;
      }
      break;
    case editKey::erase:
      if (c < static_cast<int>(t.size())) t.erase(c, forward(c) - c);
      break;
    case editKey::left: c = c > 0 ? back(c) : 0; break;
    case editKey::right: c = c < static_cast<int>(t.size()) ? forward(c) : c; break;
    case editKey::home: c = 0; break;
    case editKey::end: c = static_cast<int>(t.size()); break;
    case editKey::enter:
      f->state = 1;
      inputs.active = -1;
      break;
    case editKey::escape:
      if (f->cancelValid) {
        f->state = 2;
        inputs.active = -1;
      }
      break;
  }
}

bool textInputActive() { return fieldOf(inputs.active) != nullptr; }

void stopTextInputs() { inputs = inputState{}; }

}  // namespace gl

int makeTextInput(int maxLength, int cancelValid, int singleByteOnly, int numbersOnly, int doubleOnly, int) {
  textField f;
  f.maxLength = std::max(maxLength, 0);
  f.cancelValid = cancelValid != 0;
  f.singleByteOnly = singleByteOnly != 0;
  f.numbersOnly = numbersOnly != 0;
  f.doubleOnly = doubleOnly != 0;
  return addToTable(inputs.fields, f);
}

int deleteTextInput(int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return 0;
  *f = textField{};
  if (inputs.active == handle) inputs.active = -1;
  return 0;
}

int activateTextInput(int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  f->state = 0;
  inputs.active = handle;
  return 0;
}

int setTextInputCursor(int position, int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  // Position in characters to a byte offset.
  int at = 0;
  for (int n = 0; n < position && at < static_cast<int>(f->text.size()); ++n) {
    ++at;
    while (at < static_cast<int>(f->text.size()) && continuation(f->text[at])) ++at;
  }
  f->cursor = at;
  return 0;
}

int setTextInputClip(int x1, int y1, int x2, int y2, int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  f->clip[0] = std::min(x1, x2);
  f->clip[1] = std::min(y1, y2);
  f->clip[2] = std::max(x1, x2);
  f->clip[3] = std::max(y1, y2);
  return 0;
}

int drawTextInput(int x, int y, int handle, int showCursor) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  int* clip = f->clip[2] >= f->clip[0] ? f->clip : nullptr;
  drawTextRun(x, y, f->text.c_str(), inputs.colours[0], inputs.font, clip);
  if (showCursor && inputs.active == handle) {
    const int cx = x + textWidthOf(inputs.font, f->text.substr(0, f->cursor).c_str());
    const int h = std::max(textHeightOf(inputs.font), 1);
    batchKey k = key2d(primitive::quads);
    if (clip) std::copy(clip, clip + 4, k.clip);
    vertex* v = reserve(k, 4);
    if (v != nullptr) {
      const float xs[4] = {0, 2, 2, 0}, ys[4] = {0, 0, 1, 1};
      for (int i = 0; i < 4; ++i) {
        v[i] = vertex{};
        v[i].x = static_cast<float>(cx) + xs[i];
        v[i].y = static_cast<float>(y) + ys[i] * static_cast<float>(h);
        setColour(v[i], inputs.colours[1]);
      }
    }
  }
  return 0;
}

int textInputState(int handle) {
  const textField* f = fieldOf(handle);
  return f ? f->state : -1;
}

int getTextInput(char* buffer, int size, int handle) {
  if (buffer == nullptr || size <= 0) return -1;
  buffer[0] = '\0';
  const textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", f->text.c_str());
  return 0;
}

int setTextInput(const char* text, int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  f->text = text ? text : "";
  if (f->maxLength > 0 && static_cast<int>(f->text.size()) > f->maxLength) {
    // Cut on a character boundary.
    int at = f->maxLength;
    while (at > 0 && continuation(f->text[at])) --at;
    f->text.resize(at);
  }
  f->cursor = static_cast<int>(f->text.size());
  return 0;
}

int setTextInputColours(const int colours[17]) {
  if (colours == nullptr) return -1;
  for (int i = 0; i < 17; ++i)
    if (colours[i] != -1) inputs.colours[i] = static_cast<std::uint32_t>(colours[i]);
  return 0;
}

int setTextInputFont(int font) {
  inputs.font = font;
  return 0;
}

}  // namespace marv
