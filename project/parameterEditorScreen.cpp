// The parameter editor's screen. The list operations are plain functions on
// the editor's entries; the frame function reads the input, applies at most
// one operation, and draws the visible rows straight onto the back buffer.
#include "project/parameterEditorScreen.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "common/textNumbers.h"
#include "layer/layer.h"
#include "project/applyParameters.h"
#include "project/parameterFile.h"

namespace marv {

namespace {

constexpr int hintDelayMs = 500;
constexpr int firstInflowParameter = 32;  // uinb
constexpr int lastInflowParameter = 56;   // massfrc
constexpr int noOption = -1;              // a new choice row before the user picks

// Parameter numbers that the greying rules read and set.
enum : int {
  pCmode = 0,
  pIbm = 1,
  pParallel = 3,
  pNprocs = 4,
  pNpx = 5,
  pNpy = 6,
  pNpz = 7,
  pNz = 10,
  pLz = 13,
  pDeltat = 14,
  pCfl = 17,
  pNfil = 18,
  pWfil = 19,
  pNpfil = 20,
  pWpfil = 21,
  pWinw = 28,
  pRhow = 29,
  pTempw = 30,
  pWinb = 34,
  pTempb = 35,
  pWinr = 39,
  pTempr = 40,
  pWing = 44,
  pTempg = 45,
  pWiny = 49,
  pTempy = 50,
  pWinc = 54,
  pTempc = 55,
  pTempwallk = 57,
  pTempwall = 58,
  pTempwallSTL = 59,
  pPr = 70,
};

std::uint32_t textColour() { return colour(0, 0, 0); }
std::uint32_t disabledColour() { return colour(170, 170, 170); }

// The text of a row as the user sees it: the live field for the selected row.
std::string rowText(const editorScreen& s, int row) {
  return row == s.selected ? s.liveText : s.editor->entries[row].value;
}

void selectRow(editorScreen& s, int row) {
  parameterEditor& ed = *s.editor;
  if (ed.count == 0) {
    s.selected = 0;
    s.liveText.clear();
    return;
  }
  s.selected = std::clamp(row, 0, ed.count - 1);
  s.previousSelected = s.selected;
  s.liveText = ed.entries[s.selected].value;
  if (s.inputHandle >= 0) {
    setTextInput(s.liveText.c_str(), s.inputHandle);
    activateTextInput(s.inputHandle);
  }
  s.scrollToSelection = true;
}

// The live field back into its row; false when it was refused.
bool commitSelected(editorScreen& s) {
  if (s.editor->count == 0 || s.selected >= s.editor->count) return true;
  const parameterEntry& e = s.editor->entries[s.selected];
  if (e.isTextLine || e.isChoice) return true;
  if (s.liveText == e.value) return true;
  const bool ok = commitRow(s, s.selected, s.liveText);
  s.liveText = s.editor->entries[s.selected].value;
  if (s.inputHandle >= 0) setTextInput(s.liveText.c_str(), s.inputHandle);
  return ok;
}

// The repeat rule of held keys and buttons: the first action at once, the
// second after keyDelayMs, the rest every keyDelayMs / 35.
bool repeatAllows(editorScreen& s, const appConfig& cfg, int now, bool fast) {
  if (!s.keyHeld) {
    s.keyHeld = 1;
    s.keyStamp = now;
    s.repeatDivisor = 1;
    return true;
  }
  if (now - s.keyStamp < cfg.keyDelayMs / s.repeatDivisor) return false;
  s.keyStamp = now;
  if (fast) s.repeatDivisor = 35;
  return true;
}

void drawChoiceOptions(editorScreen& s, appConfig& cfg, const screenInput& in, int row, int x, int y, bool clickable) {
  parameterEntry& e = s.editor->entries[row];
  const int h = cfg.textHeight;
  const int radius = h / 3;
  const int step = h + 2 * cfg.textGap;
  for (int option = 0; option < e.choiceCount; ++option) {
    const int cx = x + option * step + radius;
    const int cy = y + h / 2;
    const bool on = option == e.choiceValue;
    drawCircle(cx, cy, radius, colour(0, 120, 200), on ? 1 : 0, 2);
    drawTextFormat(cx + radius + 2, y, textColour(), cfg.fixedCaption, "%d", option);
    const bool under = std::abs(in.mouseX - cx) <= radius + 2 && std::abs(in.mouseY - cy) <= radius + 2;
    if (clickable && under && in.left && !s.mouseOnButtons && in.now - s.lastActionMs > cfg.keyDelayMs) {
      e.choiceValue = option;
      s.lastActionMs = in.now;
    }
  }
}

void drawRows(editorScreen& s, appConfig& cfg, const screenInput& in) {
  parameterEditor& ed = *s.editor;
  const int h = cfg.textHeight, g = cfg.textGap;
  const int pitch = h + g;
  const int first = std::clamp((s.scrollY - g) / pitch, 0, std::max(0, ed.count - 1));
  const int last = std::clamp(first + s.visibleRows + 1, 0, ed.count - 1);
  const int left = g / 2;
  for (int i = first; i <= last && ed.count > 0; ++i) {
    parameterEntry& e = ed.entries[i];
    e.rowY = pitch * i + g;
    const int y = s.listTop + e.rowY - s.scrollY;
    if (y + h < s.listTop || y > s.listTop + s.listHeight) continue;
    if (i == s.selected)
      drawBox(0, y - g / 2, s.listWidth, y + h + g / 2, colour(215, 235, 255), 1);
    else if (i == s.hovered)
      drawBox(0, y - g / 2, s.listWidth, y + h + g / 2, colour(240, 245, 255), 1);
    if (e.isTextLine) {
      std::string line = e.description;
      while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
      drawText(left, y, line.c_str(), colour(0, 180, 255), cfg.fixedBold, 0, 0);
      continue;
    }
    const bool unknown = e.index == unknownParameter;
    const std::uint32_t marker = unknown ? colour(230, 0, 0) : (e.enabled ? colour(0, 120, 200) : disabledColour());
    drawBox(left, y, left + g, y + h, marker, 1);
    const std::uint32_t ink = e.enabled ? textColour() : disabledColour();
    if (e.listNumber > 0)
      drawTextFormat(left + g + 2, y, ink, cfg.fixedBold, "%4d. %s", e.listNumber, e.name.c_str());
    else
      drawTextFormat(left + g + 2, y, ink, cfg.fixedBold, "%4s. %s", "--", e.name.c_str());
    const int valueX = left + 14 * h;
    if (e.isChoice) {
      drawChoiceOptions(s, cfg, in, i, valueX, y, true);
    } else if (i == s.selected && s.inputHandle >= 0) {
      setTextInputClip(valueX, y, valueX + 14 * h - g, y + h, s.inputHandle);
      drawTextInput(valueX, y, s.inputHandle, 1);
      drawLine(valueX, y + h, valueX + 13 * h, y + h, colour(0, 120, 200), 1);
    } else {
      drawText(valueX, y, rowText(s, i).c_str(), ink, cfg.fixedBold, 0, 0);
    }
    // The description, cut with ">>>" when it does not fit.
    const int descX = left + 28 * h;
    const int room = s.listWidth - descX;
    std::string desc = e.description;
    const int charWidth = std::max(1, textWidthInFont(cfg.fixedCaption, "a"));
    const int fits = room / charWidth;
    if (static_cast<int>(desc.size()) > fits)
      desc = desc.substr(0, static_cast<std::size_t>(std::max(0, fits - 5))) + ">>>";
    drawText(descX, y, desc.c_str(), colour(140, 140, 140), cfg.fixedCaption, 0, 0);
  }
}

// The modal questions of the window program.
bool askRemoveInWindow(editorScreen&, appConfig& cfg);
std::string askNameInWindow(editorScreen&, appConfig& cfg);

}  // namespace

bool filterValue(const parameterEntry& entry, const std::string& text, std::string& out) {
  std::string kept;
  for (char c : text)
    if (!std::isspace(static_cast<unsigned char>(c)) && c != ',') kept.push_back(c);
  if (kept == "-") {
    if (entry.index < firstInflowParameter || entry.index > lastInflowParameter) return false;
    out = kept;
    return true;
  }
  if (kept.empty()) return false;
  char* end = nullptr;
  const double v = std::strtod(kept.c_str(), &end);
  if (end == kept.c_str() || *end != '\0' || !std::isfinite(v)) return false;
  // Hexadecimal and infinity spellings parse but are no numbers of the file.
  for (char c : kept)
    if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E'))
      return false;
  out = kept;
  return true;
}

bool commitRow(editorScreen& s, int row, const std::string& text) {
  parameterEntry& e = s.editor->entries[row];
  std::string value;
  if (!filterValue(e, text, value)) {
    s.message = "\"" + text + "\" is not a number; " + e.name + " keeps its value " +
                (e.value.empty() ? std::string("(none)") : e.value) + ".";
    s.messageStamp = nowMs();
    return false;
  }
  e.value = value;
  return true;
}

void swapEntries(parameterEditor& ed, int a, int b) {
  if (a == b || a < 0 || b < 0 || a >= ed.count || b >= ed.count) return;
  parameterEntry& ea = ed.entries[a];
  parameterEntry& eb = ed.entries[b];
  std::swap(ea, eb);
  std::swap(ea.rowY, eb.rowY);  // positions stay with the places
  std::swap(ea.inputHandle, eb.inputHandle);
}

bool moveSelection(editorScreen& s, int delta) {
  const int count = s.editor->count;
  if (count == 0) return false;
  const int target = std::clamp(s.selected + delta, 0, count - 1);
  commitSelected(s);
  if (target == s.selected) return false;
  selectRow(s, target);
  return true;
}

bool swapWithAbove(editorScreen& s) {
  if (s.selected <= 0 || s.selected >= s.editor->count) return false;
  // Text typed into the row but not yet committed goes with the old value.
  swapEntries(*s.editor, s.selected, s.selected - 1);
  selectRow(s, s.selected - 1);
  return true;
}

bool swapWithBelow(editorScreen& s) {
  if (s.selected >= s.editor->count - 1) return false;
  commitSelected(s);
  swapEntries(*s.editor, s.selected, s.selected + 1);
  selectRow(s, s.selected + 1);
  return true;
}

bool removeSelected(editorScreen& s) {
  parameterEditor& ed = *s.editor;
  if (ed.count < 2) return false;
  for (int i = s.selected; i < ed.count - 1; ++i) ed.entries[i] = ed.entries[i + 1];
  ed.entries[ed.count - 1] = parameterEntry{};
  --ed.count;
  selectRow(s, std::min(s.selected, ed.count - 1));
  return true;
}

bool addAtSelected(editorScreen& s, const std::string& name) {
  parameterEditor& ed = *s.editor;
  if (ed.count > maxParameterEntries - 2 || name.empty()) return false;
  parameterEntry entry;
  if (name[0] == '-') {
    entry.isTextLine = 1;
    entry.description = name;
    entry.index = unknownParameter;
  } else {
    std::string compact;
    for (char c : name)
      if (!std::isspace(static_cast<unsigned char>(c))) compact.push_back(c);
    if (compact.empty()) return false;
    entry = lookupParameter(compact);
    entry.description = parameterDescription(entry.index);
    entry.value.assign(1, '0');  // (assigning the literal trips a false overlap warning of GCC 12)
    if (entry.isChoice) entry.choiceValue = noOption;
  }
  const int at = ed.count == 0 ? 0 : std::clamp(s.selected, 0, ed.count);
  for (int i = ed.count; i > at; --i) ed.entries[i] = ed.entries[i - 1];
  ed.entries[at] = entry;
  ++ed.count;
  selectRow(s, at);
  return true;
}

void updateEnabledStates(parameterEditor& ed) {
  std::array<int, maxParameterEntries>& on = ed.enabledByNumber;
  for (int n : {1, 3, 4, 13, 17, 19, 21, 28, 29, 30, 34, 35, 39, 40, 44, 45, 49, 50, 54, 55, 57, 58, 59, 70}) on[n] = 1;
  for (int i = 0; i < ed.count; ++i) {
    const parameterEntry& e = ed.entries[i];
    if (e.isTextLine) continue;
    const double v = e.isChoice ? e.choiceValue : parseNumber(e.value);
    switch (e.index) {
      case pNz:
        if (v < 2)
          for (int n : {pIbm, pLz, pWinw, pWinb, pWinr, pWing, pWiny, pWinc}) on[n] = 0;
        break;
      case pNfil:
        if (v < 1) on[pWfil] = 0;
        break;
      case pNpfil:
        if (v < 1) on[pWpfil] = 0;
        break;
      case pCmode:
        if (e.choiceValue == 0)
          for (int n : {pTempw, pTempb, pTempr, pTempg, pTempy, pTempc, pTempwallk, pTempwall, pTempwallSTL, pPr})
            on[n] = 0;
        if (e.choiceValue == 1) on[pRhow] = 0;
        break;
      case pNpx:
      case pNpy:
      case pNpz:
        on[pParallel] = 0;
        on[pNprocs] = 0;
        break;
      case pNprocs: on[pParallel] = 0; break;
      case pDeltat: on[pCfl] = 0; break;
      default: break;
    }
  }
  ed.numberedRows = 0;
  for (int i = 0; i < ed.count; ++i) {
    parameterEntry& e = ed.entries[i];
    e.enabled = e.index < maxParameterEntries ? on[e.index] : 1;
    if (e.enabled == 1 && e.index != unknownParameter && !e.isTextLine)
      e.listNumber = ++ed.numberedRows;
    else
      e.listNumber = -1;
  }
}

void limitScroll(editorScreen& s, const appConfig& cfg) {
  const int pitch = cfg.textHeight + cfg.textGap;
  const int total = std::max(s.listHeight, pitch * (s.editor->count + 2));
  s.scrollY = std::clamp(s.scrollY, 0, std::max(0, total - s.listHeight));
}

int startEditorScreen(editorScreen& s, parameterEditor& ed, appConfig& cfg) {
  const int handle = s.inputHandle;
  const auto remove = s.confirmRemove;
  const auto ask = s.askNewName;
  s = editorScreen{};
  s.inputHandle = handle;
  s.confirmRemove = remove ? remove : askRemoveInWindow;
  s.askNewName = ask ? ask : askNameInWindow;
  s.editor = &ed;
  if (readParameterFile(ed, cfg, "./input/param.txt") < 0) {
    waitMs(cfg.keyDelayMs);
    if (cfg.showMessage) cfg.showMessage(cfg, screenText(cfg, 45).c_str());
    return -1;
  }
  takeChoiceValues(ed);
  const int h = cfg.textHeight, g = cfg.textGap;
  s.listTop = 0;
  s.listWidth = cfg.startWidth - cfg.listGap - 1;
  s.listHeight = cfg.startHeight - cfg.marginBottom - h;
  s.visibleRows = std::max(1, s.listHeight / (h + g));
  if (s.inputHandle < 0) s.inputHandle = makeTextInput(399, 0, 1, 0, 0, 0);
  selectRow(s, ed.count > 1 ? 1 : 0);
  s.scrollToSelection = false;
  updateEnabledStates(ed);
  return 1;
}

int acceptEditor(editorScreen& s, appConfig& cfg) {
  parameterEditor& ed = *s.editor;
  if (!commitSelected(s)) {
    if (cfg.showMessage) cfg.showMessage(cfg, s.message.c_str());
    return 0;
  }
  for (int i = 0; i < ed.count; ++i) {
    const parameterEntry& e = ed.entries[i];
    if (e.isChoice && !e.isTextLine && (e.choiceValue < 0 || e.choiceValue >= e.choiceCount)) {
      s.message = "Pick one of the options of " + e.name + " before proceeding.";
      if (cfg.showMessage) cfg.showMessage(cfg, s.message.c_str());
      return 0;
    }
  }
  if (cfg.analysisMode == 0) {
    storeChoiceValues(ed);
    if (writeParameterFile(ed, cfg.version) != 1) {
      s.message = "param.txt could not be written; the file on disk is unchanged.";
      if (cfg.showMessage) cfg.showMessage(cfg, s.message.c_str());
      return -1;
    }
  }
  if (applyParameters(ed, cfg, ed.count) != 1) return -1;
  waitMs(1);
  return 1;
}

int editorFrame(editorScreen& s, appConfig& cfg, const screenInput& in) {
  parameterEditor& ed = *s.editor;
  const int h = cfg.textHeight, g = cfg.textGap;
  const int pitch = h + g;
  const int bs = cfg.buttonSize + g / 2;

  // The live text of the selected row, as the layer's field holds it.
  if (s.inputHandle >= 0 && ed.count > 0 && !ed.entries[s.selected].isChoice && !ed.entries[s.selected].isTextLine) {
    char buffer[400] = {};
    if (getTextInput(buffer, sizeof buffer, s.inputHandle) >= 0) s.liveText = buffer;
  }

  s.scrollY -= static_cast<int>(2.5 * h) * in.wheel;
  if (s.scrollY < 0) s.scrollY = 0;
  if (s.scrollToSelection && ed.count > 0) {
    const int rowY = pitch * s.selected + g;
    if (rowY < s.scrollY) s.scrollY = rowY - g;
    if (rowY + h + g > s.scrollY + s.listHeight) s.scrollY = rowY + h + g - s.listHeight;
    s.scrollToSelection = false;
  }
  limitScroll(s, cfg);

  // The row under the mouse.
  const int hovered = in.mouseY >= s.listTop && in.mouseY < s.listTop + s.listHeight
                          ? (in.mouseY - s.listTop + s.scrollY - g / 2) / pitch
                          : -1;
  if (hovered != s.hovered) {
    s.hovered = hovered;
    s.hoverStamp = in.now;
  }

  drawBox(0, 0, cfg.startWidth, cfg.startHeight, colour(255, 255, 255), 1);
  updateEnabledStates(ed);
  drawRows(s, cfg, in);

  // The buttons.
  const int x0 = cfg.cancelX, x1 = cfg.proceedX, y0 = cfg.cancelY;
  const int yAdd = y0 - bs - 2 * g, yDown = y0 - 2 * (2 * g + bs), yUp = y0 - 4 * g - 3 * bs;
  const bool cancel = clickButton(s.cancel, x0, y0, cfg.buttonSize, in);
  const bool proceed = clickButton(s.proceed, x1, y0, cfg.buttonSize, in);
  // The list buttons act while held, with the keys' repeat.
  auto held = [&](screenButton& b, int x, int y) {
    clickButton(b, x, y, cfg.buttonSize, in);
    return b.hover && in.left && b.pressed;
  };
  const bool addHeld = held(s.add, x0, yAdd);
  const bool removeHeld = held(s.remove, x1, yAdd);
  const bool downHeld = held(s.down, x0, yDown);
  const bool swapDownHeld = held(s.swapDown, x1, yDown);
  const bool upHeld = held(s.up, x0, yUp);
  const bool swapUpHeld = held(s.swapUp, x1, yUp);
  s.mouseOnButtons = in.mouseX >= x0 && in.mouseX < x1 + bs && in.mouseY >= yUp && in.mouseY < y0 + bs;

  // The foot bar.
  const int barY = cfg.startHeight - cfg.marginBottom - h + g;
  drawBox(0, barY, cfg.startWidth, cfg.startHeight, colour(41, 57, 85), 1);
  const std::string foot = screenText(cfg, 48);
  drawText((cfg.startWidth - textWidthInFont(cfg.fontBody, "%s", foot.c_str())) / 2, barY + g / 2, foot.c_str(),
           colour(255, 255, 255), cfg.fontBody, 0, 0);
  if (!s.message.empty()) drawText(g, barY + g / 2, s.message.c_str(), colour(255, 120, 120), cfg.fontCaption, 0, 0);
  // The scroll thumb.
  const int track = s.listHeight;
  const int total = std::max(track, pitch * (ed.count + 2));
  const int thumb = std::max(g, track * track / std::max(1, total));
  const int thumbY = total > track ? (track - thumb) * s.scrollY / (total - track) + s.listTop : s.listTop;
  drawBox(cfg.startWidth - g, thumbY, cfg.startWidth, thumbY + thumb, colour(0, 150, 220), 1);

  drawScreenButton(s.up, s.tiles, tileUp, "Up", cfg.fontCaption);
  drawScreenButton(s.swapUp, s.tiles, tileSwapUp, "Swap", cfg.fontCaption);
  drawScreenButton(s.down, s.tiles, tileDown, "Down", cfg.fontCaption);
  drawScreenButton(s.swapDown, s.tiles, tileSwapDown, "Swap", cfg.fontCaption);
  drawScreenButton(s.add, s.tiles, tileAdd, "Add", cfg.fontCaption);
  drawScreenButton(s.remove, s.tiles, tileRemove, "Remove", cfg.fontCaption);
  drawScreenButton(s.cancel, s.tiles, tileCancel, "Cancel", cfg.fontCaption);
  drawScreenButton(s.proceed, s.tiles, tileProceed, "Proceed", cfg.fontCaption);

  // The hint of the row under the mouse.
  if (s.hovered >= 0 && s.hovered < ed.count && !s.mouseOnButtons && in.now - s.hoverStamp > hintDelayMs &&
      !ed.entries[s.hovered].isTextLine) {
    const parameterEntry& e = ed.entries[s.hovered];
    const std::string hint = e.name + ": " + e.description;
    const int hx = std::min(in.mouseX + 12, cfg.startWidth / 3);
    const int hy = std::min(in.mouseY + 12, barY - 3 * h);
    const int width = std::min(cfg.startWidth - hx - g, textWidthInFont(cfg.fontCaption, "%s", hint.c_str()) + 2 * g);
    drawBox(hx, hy, hx + width, hy + h + g, colour(255, 255, 225), 1);
    drawText(hx + g, hy + g / 2, hint.c_str(), colour(40, 40, 40), cfg.fontCaption, 0, 0);
  }

  // Input, the first that applies decides.
  const int now = in.now;
  const bool quiet = now - s.lastActionMs > cfg.keyDelayMs;
  auto acted = [&]() { s.lastActionMs = now; };
  const bool onChoice = ed.count > 0 && ed.entries[s.selected].isChoice;
  if (swapUpHeld) {
    if (repeatAllows(s, cfg, now, true)) swapWithAbove(s), acted();
  } else if (swapDownHeld) {
    if (repeatAllows(s, cfg, now, true)) swapWithBelow(s), acted();
  } else if (removeHeld) {
    if (repeatAllows(s, cfg, now, false) && ed.count >= 2) {
      commitSelected(s);
      s.remove.pressed = false;
      if (s.confirmRemove(s, cfg)) removeSelected(s);
      acted();
    }
  } else if (addHeld) {
    if (repeatAllows(s, cfg, now, false) && ed.count <= maxParameterEntries - 2) {
      commitSelected(s);
      s.add.pressed = false;
      const std::string name = s.askNewName(s, cfg);
      if (!name.empty()) addAtSelected(s, name);
      acted();
    }
  } else if (in.down || downHeld) {
    if (repeatAllows(s, cfg, now, true)) moveSelection(s, 1), acted();
  } else if (in.up || upHeld) {
    if (repeatAllows(s, cfg, now, true)) moveSelection(s, -1), acted();
  } else if (in.arrowRight && onChoice) {
    if (repeatAllows(s, cfg, now, false)) {
      parameterEntry& e = ed.entries[s.selected];
      e.choiceValue = std::min(e.choiceValue + 1, e.choiceCount - 1);
      acted();
    }
  } else if (in.arrowLeft && onChoice) {
    if (repeatAllows(s, cfg, now, false)) {
      parameterEntry& e = ed.entries[s.selected];
      e.choiceValue = std::max(e.choiceValue - 1, 0);
      acted();
    }
  } else if (in.pageUp) {
    if (repeatAllows(s, cfg, now, false)) moveSelection(s, 1 - s.visibleRows), acted();
  } else if (in.pageDown) {
    if (repeatAllows(s, cfg, now, false)) moveSelection(s, s.visibleRows - 1), acted();
  } else if (in.home) {
    if (quiet) moveSelection(s, -ed.count), acted();
  } else if (in.end) {
    if (quiet) moveSelection(s, ed.count), acted();
  } else if (in.left && !s.mouseOnButtons && s.hovered >= 0 && s.hovered < ed.count && s.hovered != s.selected) {
    if (quiet) {
      commitSelected(s);
      selectRow(s, s.hovered);
      acted();
    }
  } else if ((in.enter && quiet && now - cfg.lastKeyMs > cfg.keyDelayMs) || proceed) {
    acted();
    const int accepted = acceptEditor(s, cfg);
    if (accepted != 0) return accepted;
  } else if (in.esc || cancel) {
    return -1;
  } else {
    s.repeatDivisor = 1;
    s.keyHeld = 0;
  }
  return 0;
}

int runParameterEditor(parameterEditor& ed, appConfig& cfg) {
  static editorScreen screen;
  return runEditorScreen(screen, ed, cfg);
}

int runEditorScreen(editorScreen& screen, parameterEditor& ed, appConfig& cfg) {
  ensureScreenFonts(cfg);
  if (startEditorScreen(screen, ed, cfg) != 1) return -1;
  loadButtonTiles(screen.tiles);
  setTextInputFont(cfg.fixedBold);
  int result = 0;
  while (result == 0) {
    setDrawTarget(backBuffer);
    const screenInput in = readScreenInput();
    result = editorFrame(screen, cfg, in);
    endScreenFrame();
  }
  cfg.lastKeyMs = nowMs();
  setTextInputFont(cfg.fixedInput);
  destroyEditorScreen(screen);
  return result;
}

void destroyEditorScreen(editorScreen& s) {
  freeButtonTiles(s.tiles);
  deleteTextInput(s.inputHandle);
  s.inputHandle = -1;
}

namespace {

// A box over the list with a question and OK / Cancel, or a name field.
int questionBox(editorScreen& s, appConfig& cfg, const std::string& question, std::string* answer) {
  const int width = cfg.startWidth, height = cfg.startHeight;
  const int backdrop = makeImage(width, height, 1);
  captureScreen(0, 0, width, height, backdrop);
  const int field = answer ? makeTextInput(399, 0, 1, 0, 0, 0) : -1;
  if (field >= 0) activateTextInput(field);
  screenButton ok, cancel;
  const int boxW = width / 2, boxX = (width - boxW) / 2;
  const int boxH = 4 * cfg.textHeight + cfg.buttonSize + (answer ? 2 * cfg.textHeight : 0);
  const int boxY = (height - boxH) / 2;
  const int start = nowMs();
  int result = 0;
  while (result == 0) {
    const screenInput in = readScreenInput();
    if (backdrop >= 0) drawImage(0, 0, backdrop, 0);
    drawBox(boxX, boxY, boxX + boxW, boxY + boxH, colour(255, 255, 255), 1);
    drawBoxF(static_cast<float>(boxX), static_cast<float>(boxY), static_cast<float>(boxX + boxW),
             static_cast<float>(boxY + boxH), colour(0, 180, 255), 0, 6.0f);
    drawText(boxX + cfg.textHeight, boxY + cfg.textHeight, question.c_str(), colour(0, 0, 0), cfg.fontBody, 0, 0);
    int by = boxY + 3 * cfg.textHeight;
    if (field >= 0) {
      setTextInputClip(boxX + cfg.textHeight, by, boxX + boxW - cfg.textHeight, by + cfg.textHeight, field);
      drawTextInput(boxX + cfg.textHeight, by, field, 1);
      drawLine(boxX + cfg.textHeight, by + cfg.textHeight + 2, boxX + boxW - cfg.textHeight, by + cfg.textHeight + 2,
               colour(160, 160, 160), 1);
      by += 2 * cfg.textHeight;
    }
    const int bx = boxX + boxW / 2 - cfg.buttonSize - cfg.textGap;
    if (clickButton(ok, bx, by, cfg.buttonSize, in)) result = 1;
    if (clickButton(cancel, bx + cfg.buttonSize + 2 * cfg.textGap, by, cfg.buttonSize, in)) result = -1;
    drawScreenButton(ok, s.tiles, tileProceed, "OK", cfg.fontCaption);
    drawScreenButton(cancel, s.tiles, tileCancel, "Cancel", cfg.fontCaption);
    const bool settled = in.now - start > cfg.keyDelayMs;
    if (field >= 0 && textInputState(field) == 1) result = 1;
    if (settled && in.enter) result = 1;
    if (settled && in.esc) result = -1;
    endScreenFrame();
  }
  if (field >= 0) {
    char buffer[400] = {};
    getTextInput(buffer, sizeof buffer, field);
    *answer = result == 1 ? std::string(buffer) : std::string();
    deleteTextInput(field);
  }
  if (s.inputHandle >= 0) activateTextInput(s.inputHandle);
  deleteImage(backdrop);
  s.lastActionMs = nowMs();
  cfg.lastKeyMs = nowMs();
  return result;
}

bool askRemoveInWindow(editorScreen& s, appConfig& cfg) {
  return questionBox(s, cfg, screenText(cfg, 46), nullptr) == 1;
}

std::string askNameInWindow(editorScreen& s, appConfig& cfg) {
  std::string name;
  questionBox(s, cfg, screenText(cfg, 47), &name);
  return name;
}

}  // namespace

}  // namespace marv
