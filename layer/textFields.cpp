// Single-line text input fields, the same in every backend: the fields the
// layer holds, the editing keys and typed or pasted text that go to the
// active one, and what the drawing backend needs to show a field.
//
// Editing works on UTF-8 bytes with the cursor always on a character
// boundary; maxLength counts bytes, as the program's buffers do.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "layer/inputDevices.h"
#include "layer/layer.h"
#include "layer/windowMenu.h"

namespace marv {

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

struct fieldTable {
  std::vector<textField> fields;  // by handle; place 0 stays empty
  int active = -1;                // field that gets the keyboard
  int font = -1;                  // font of all fields
  // Colours: 0 text, 1 cursor; the others are kept for callers that set them.
  std::uint32_t colours[17] = {0xFF000000u, 0xFF000000u};  // packed colours
};

fieldTable table;

textField* fieldOf(int handle) {
  if (handle < 0 || handle >= static_cast<int>(table.fields.size()) || !table.fields[handle].live) return nullptr;
  return &table.fields[handle];
}

textField* activeField() {
  textField* f = fieldOf(table.active);
  return f != nullptr && f->state == 0 ? f : nullptr;
}

bool continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Byte length of the character that starts at text[at].
int characterLength(const std::string& text, int at) {
  int end = at + 1;
  while (end < static_cast<int>(text.size()) && continuation(text[end])) ++end;
  return end - at;
}

bool accepts(const textField& f, const std::string& piece) {
  for (char ch : piece) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (c < 0x20 || c == 0x7F) return false;
    if (f.singleByteOnly && c >= 0x80) return false;
    if (f.numbersOnly && !(c >= '0' && c <= '9')) return false;
    if (f.doubleOnly && !((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E'))
      return false;
  }
  return true;
}

bool fits(const textField& f, std::size_t extra) {
  return f.maxLength <= 0 || f.text.size() + extra <= static_cast<std::size_t>(f.maxLength);
}

void insertAtCursor(textField& f, const std::string& piece) {
  f.text.insert(static_cast<std::size_t>(f.cursor), piece);
  f.cursor += static_cast<int>(piece.size());
}

}  // namespace

namespace input {

void textTyped(const char* utf8) {
  textField* f = activeField();
  if (f == nullptr || utf8 == nullptr || menu::takesText()) return;  // typed at the menu bar
  const std::string piece(utf8);
  if (!accepts(*f, piece) || !fits(*f, piece.size())) return;
  insertAtCursor(*f, piece);
}

// A paste is taken character by character: what the field refuses is left
// out, and it stops at the first line break or where the field is full.
void textPasted(const char* utf8) {
  textField* f = activeField();
  if (f == nullptr || utf8 == nullptr) return;
  const std::string text(utf8);
  std::string taken;
  for (int at = 0; at < static_cast<int>(text.size());) {
    if (text[at] == '\n' || text[at] == '\r') break;
    const int n = characterLength(text, at);
    const std::string character = text.substr(at, n);
    at += n;
    if (!accepts(*f, character)) continue;
    if (!fits(*f, taken.size() + character.size())) break;
    taken += character;
  }
  insertAtCursor(*f, taken);
}

void fieldKey(int code) {
  textField* f = activeField();
  if (f == nullptr) return;
  std::string& t = f->text;
  int& c = f->cursor;
  const int size = static_cast<int>(t.size());
  auto back = [&](int at) {
    do --at;
    while (at > 0 && continuation(t[at]));
    return std::max(at, 0);
  };
  switch (code) {
    case keyBackspace:
      if (c > 0) {
        const int from = back(c);
        t.erase(from, c - from);
        c = from;
      }
      break;
    case keyDelete:
      if (c < size) t.erase(c, characterLength(t, c));
      break;
    case keyLeft: c = c > 0 ? back(c) : 0; break;
    case keyRight: c = c < size ? c + characterLength(t, c) : c; break;
    case keyHome: c = 0; break;
    case keyEnd: c = size; break;
    case keyEnter:
    case keyPadEnter:
      f->state = 1;
      table.active = -1;
      break;
    case keyEsc:
      if (f->cancelValid) {
        f->state = 2;
        table.active = -1;
      }
      break;
    default: break;
  }
}

void resetFields() { table = fieldTable{}; }

bool lookOfField(int handle, fieldLook& look) {
  const textField* f = fieldOf(handle);
  if (f == nullptr) return false;
  look.text = f->text.c_str();
  look.cursor = f->cursor;
  look.clip = f->clip[2] >= f->clip[0] ? f->clip : nullptr;
  look.active = table.active == handle;
  return true;
}

std::uint32_t fieldColour(int part) { return part >= 0 && part < 17 ? table.colours[part] : 0u; }

int fieldFont() { return table.font; }

}  // namespace input

int makeTextInput(int maxLength, int cancelValid, int singleByteOnly, int numbersOnly, int doubleOnly, int) {
  textField f;
  f.maxLength = std::max(maxLength, 0);
  f.cancelValid = cancelValid != 0;
  f.singleByteOnly = singleByteOnly != 0;
  f.numbersOnly = numbersOnly != 0;
  f.doubleOnly = doubleOnly != 0;
  f.live = true;
  // Handles start at 1, so that a record still holding 0 names no field.
  if (table.fields.empty()) table.fields.emplace_back();
  for (std::size_t i = 1; i < table.fields.size(); ++i)
    if (!table.fields[i].live) {
      table.fields[i] = f;
      return static_cast<int>(i);
    }
  table.fields.push_back(f);
  return static_cast<int>(table.fields.size()) - 1;
}

int deleteTextInput(int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return 0;
  *f = textField{};
  if (table.active == handle) table.active = -1;
  return 0;
}

int activateTextInput(int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  f->state = 0;
  table.active = handle;
  return 0;
}

int setTextInputCursor(int position, int handle) {
  textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  // Position in characters to a byte offset.
  int at = 0;
  for (int n = 0; n < position && at < static_cast<int>(f->text.size()); ++n) at += characterLength(f->text, at);
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

int textInputState(int handle) {
  const textField* f = fieldOf(handle);
  return f ? f->state : -1;
}

int textInputActive() { return activeField() != nullptr ? 1 : 0; }

int getTextInput(char* buffer, int size, int handle) {
  if (buffer == nullptr || size <= 0) return -1;
  buffer[0] = '\0';
  const textField* f = fieldOf(handle);
  if (f == nullptr) return -1;
  // Cut on a character boundary, so that the copy stays valid UTF-8.
  int n = std::min(static_cast<int>(f->text.size()), size - 1);
  while (n > 0 && n < static_cast<int>(f->text.size()) && continuation(f->text[n])) --n;
  std::memcpy(buffer, f->text.data(), static_cast<std::size_t>(n));
  buffer[n] = '\0';
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
    if (colours[i] != -1) table.colours[i] = static_cast<std::uint32_t>(colours[i]);
  return 0;
}

int setTextInputFont(int font) {
  table.font = font;
  return 0;
}

}  // namespace marv
