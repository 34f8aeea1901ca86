// The menu bar's model and behaviour: what opens on a click, a hover, a key.
// No drawing here; see menuBar.h.
#include "layer/menuBar.h"

#include <cctype>

#include "layer/layer.h"

namespace marv::menu {

namespace {

// Key codes of the layer's table that only the menu uses.
constexpr int codeUp = 200;
constexpr int codeDown = 208;
constexpr int codeKeypadEnter = 156;

constexpr int padX = 10;  // space left and right of a caption [px]
constexpr int minListWidth = 160;
constexpr int arrowSpace = 24;  // room for the submenu arrow [px]

int measured(const menuModel& m, const std::string& caption) {
  const std::string visible = visibleCaption(caption, nullptr);
  if (m.measure) return m.measure(visible.c_str());
  return static_cast<int>(visible.size()) * 8;  // no font: a plain estimate
}

bool selectable(const menuItem& item) { return !item.separator; }

const menuList* listAt(const menuModel& m, int list) {
  return list >= 0 && list < static_cast<int>(m.lists.size()) ? &m.lists[list] : nullptr;
}

int openList(const menuModel& m) {
  return m.openHead >= 0 && m.openHead < static_cast<int>(m.bar.size()) ? m.bar[m.openHead].list : -1;
}

int subList(const menuModel& m) {
  const menuList* l = listAt(m, openList(m));
  if (l == nullptr || m.openSub < 0 || m.openSub >= static_cast<int>(l->items.size())) return -1;
  return l->items[m.openSub].submenu;
}

// The item of `list` (placed at x, y) under the point, or -1.
int itemAt(const menuModel& m, int list, int x, int y, int px, int py) {
  const menuList* l = listAt(m, list);
  if (l == nullptr) return -1;
  for (int i = 0; i < static_cast<int>(l->items.size()); ++i)
    if (itemRect(m, list, i, x, y).contains(px, py)) return i;
  return -1;
}

int headAt(const menuModel& m, int x, int y) {
  for (int h = 0; h < static_cast<int>(m.bar.size()); ++h)
    if (headRect(m, h).contains(x, y)) return h;
  return -1;
}

void openHead(menuModel& m, int head, bool highlightFirst) {
  m.openHead = head;
  m.openSub = -1;
  m.hotSubItem = -1;
  m.hotItem = -1;
  if (!highlightFirst) return;
  const menuList* l = listAt(m, openList(m));
  if (l == nullptr) return;
  for (int i = 0; i < static_cast<int>(l->items.size()); ++i)
    if (selectable(l->items[i])) {
      m.hotItem = i;
      break;
    }
}

void openSubmenu(menuModel& m, int item, bool highlightFirst) {
  m.openSub = item;
  m.hotSubItem = -1;
  if (!highlightFirst) return;
  const menuList* l = listAt(m, subList(m));
  if (l == nullptr) return;
  for (int i = 0; i < static_cast<int>(l->items.size()); ++i)
    if (selectable(l->items[i])) {
      m.hotSubItem = i;
      break;
    }
}

// Acts on an item: a command is chosen and everything closes; a submenu
// head opens its submenu. Greyed items and separators do nothing.
void activate(menuModel& m, const menuItem& item, int index, bool inSub, bool fromKeyboard) {
  if (item.separator || !item.enabled) return;
  if (item.submenu >= 0 && !inSub) {
    openSubmenu(m, index, fromKeyboard);
    return;
  }
  if (item.id == 0) return;
  m.chosen.push_back(item.id);
  closeAll(m);
}

// Moves the highlight by one selectable item, wrapping.
int stepHighlight(const menuList& l, int from, int step) {
  const int n = static_cast<int>(l.items.size());
  if (n == 0) return -1;
  int i = from;
  for (int tries = 0; tries < n; ++tries) {
    i = i < 0 ? (step > 0 ? 0 : n - 1) : (i + step + n) % n;
    if (selectable(l.items[i])) return i;
  }
  return from;
}

int itemWithLetter(const menuList& l, char letter) {
  for (int i = 0; i < static_cast<int>(l.items.size()); ++i)
    if (!l.items[i].separator && accessLetter(l.items[i].caption) == letter) return i;
  return -1;
}

}  // namespace

menuModel mainMenu() {
  menuModel m;
  m.lists.resize(3);
  // 0: File, 1: its "Load" submenu, 2: Help.
  m.lists[0].items = {
      {commandNewProject, "Create New Project (&N)", true, false, -1},
      {0, "Load Existing Project (&L)", true, false, 1},
      {0, "", true, true, -1},
      {commandExit, "Exit (&X)", true, false, -1},
  };
  m.lists[1].items = {
      {commandOpenSimulation, "In Simulation Mode (&S)", true, false, -1},
      {commandOpenAnalysis, "In Analysis Mode (&A)", true, false, -1},
  };
  m.lists[2].items = {
      {commandHelpParameters, "Parameters (&P)", true, false, -1},
      {commandHelpInterface, "User Interface (&I)", true, false, -1},
      {commandHelpExamples, "Examples (&E)", true, false, -1},
      {0, "", true, true, -1},
      {commandHelpUpdates, "Updates (&U)", true, false, -1},
  };
  m.bar = {{"File (&F)", 0}, {"Help (&H)", 2}};
  return m;
}

// ---------------------------------------------------------------- geometry

rect barRect(const menuModel& m) { return rect{0, 0, m.canvasWidth, m.barHeight}; }

rect headRect(const menuModel& m, int head) {
  int x = 4;
  for (int h = 0; h < static_cast<int>(m.bar.size()); ++h) {
    const int w = measured(m, m.bar[h].caption) + 2 * padX;
    if (h == head) return rect{x, 0, x + w, m.barHeight};
    x += w;
  }
  return rect{};
}

rect listRect(const menuModel& m, int list, int x, int y) {
  const menuList* l = listAt(m, list);
  if (l == nullptr) return rect{};
  int width = minListWidth, height = 4;
  for (const menuItem& item : l->items) {
    if (!item.separator) {
      const int w = measured(m, item.caption) + 2 * padX + arrowSpace;
      width = w > width ? w : width;
    }
    height += item.separator ? m.separatorHeight : m.itemHeight;
  }
  return rect{x, y, x + width, y + height};
}

rect itemRect(const menuModel& m, int list, int item, int x, int y) {
  const menuList* l = listAt(m, list);
  if (l == nullptr || item < 0 || item >= static_cast<int>(l->items.size())) return rect{};
  const rect whole = listRect(m, list, x, y);
  int top = y + 2;
  for (int i = 0; i < item; ++i) top += l->items[i].separator ? m.separatorHeight : m.itemHeight;
  const int h = l->items[item].separator ? m.separatorHeight : m.itemHeight;
  return rect{whole.x1 + 2, top, whole.x2 - 2, top + h};
}

rect openListRect(const menuModel& m) {
  if (m.openHead < 0) return rect{};
  const rect head = headRect(m, m.openHead);
  return listRect(m, openList(m), head.x1, m.barHeight);
}

rect openSubRect(const menuModel& m) {
  const int sub = subList(m);
  if (sub < 0) return rect{};
  const rect parent = openListRect(m);
  const rect item = itemRect(m, openList(m), m.openSub, parent.x1, parent.y1);
  return listRect(m, sub, parent.x2 - 2, item.y1 - 2);
}

// ---------------------------------------------------------------- captions

bool setItemCaption(menuModel& m, int id, const std::string& caption) {
  if (id == 0) return false;
  for (menuList& l : m.lists)
    for (menuItem& item : l.items)
      if (item.id == id) {
        item.caption = caption;
        return true;
      }
  return false;
}

bool setHeadCaption(menuModel& m, int head, int item, const std::string& caption) {
  if (head < 0 || head >= static_cast<int>(m.bar.size())) return false;
  if (item < 0) {
    m.bar[head].caption = caption;
    return true;
  }
  menuList* l = m.bar[head].list >= 0 && m.bar[head].list < static_cast<int>(m.lists.size())
                    ? &m.lists[m.bar[head].list]
                    : nullptr;
  if (l == nullptr || item >= static_cast<int>(l->items.size()) || l->items[item].separator) return false;
  l->items[item].caption = caption;
  return true;
}

bool setItemEnabled(menuModel& m, int id, bool enabled) {
  bool found = false;
  for (menuList& l : m.lists)
    for (menuItem& item : l.items)
      if (id != 0 && item.id == id) {
        item.enabled = enabled;
        found = true;
      }
  return found;
}

const menuItem* findItem(const menuModel& m, int id) {
  for (const menuList& l : m.lists)
    for (const menuItem& item : l.items)
      if (id != 0 && item.id == id) return &item;
  return nullptr;
}

char accessLetter(const std::string& caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] == '&') {
      ++i;  // "&&" is a plain ampersand
      continue;
    }
    const unsigned char c = static_cast<unsigned char>(caption[i + 1]);
    return c < 128 && std::isalnum(c) ? static_cast<char>(std::toupper(c)) : 0;
  }
  return 0;
}

std::string visibleCaption(const std::string& caption, int* underline) {
  std::string out;
  out.reserve(caption.size());
  if (underline) *underline = -1;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&' && i + 1 < caption.size()) {
      if (caption[i + 1] != '&' && underline && *underline < 0) *underline = static_cast<int>(out.size());
      ++i;
    }
    out += caption[i];
  }
  return out;
}

// ---------------------------------------------------------------- events

bool isOpen(const menuModel& m) { return m.openHead >= 0; }

void closeAll(menuModel& m) {
  m.openHead = m.hotItem = m.openSub = m.hotSubItem = -1;
  m.pressedInMenu = false;
}

bool pointerMoved(menuModel& m, int x, int y) {
  if (!m.shown) return false;
  if (!isOpen(m)) return barRect(m).contains(x, y);
  // Hover moves between the bar's menus while one is open.
  const int head = headAt(m, x, y);
  if (head >= 0 && head != m.openHead) openHead(m, head, false);
  const rect sub = openSubRect(m);
  if (sub.contains(x, y)) {
    m.hotSubItem = itemAt(m, subList(m), sub.x1, sub.y1, x, y);
    return true;
  }
  const rect list = openListRect(m);
  if (list.contains(x, y)) {
    const int item = itemAt(m, openList(m), list.x1, list.y1, x, y);
    m.hotItem = item;
    const menuList* l = listAt(m, openList(m));
    if (item >= 0 && l->items[item].submenu >= 0 && l->items[item].enabled) {
      if (m.openSub != item) openSubmenu(m, item, false);
    } else if (item >= 0) {
      m.openSub = -1;  // another item of the menu: its submenu closes
      m.hotSubItem = -1;
    }
    return true;
  }
  if (m.openSub >= 0) m.hotSubItem = -1;
  return true;  // the pointer belongs to the menu while one is open
}

bool leftButton(menuModel& m, int x, int y, bool down) {
  if (!m.shown) return false;
  const int head = headAt(m, x, y);
  if (down) {
    if (head >= 0) {
      if (m.openHead == head)
        closeAll(m);
      else
        openHead(m, head, false);
      m.pressedInMenu = true;
      return true;
    }
    if (!isOpen(m)) return barRect(m).contains(x, y);
    if (openSubRect(m).contains(x, y) || openListRect(m).contains(x, y)) {
      m.pressedInMenu = true;
      pointerMoved(m, x, y);
      return true;
    }
    closeAll(m);  // a click outside closes the menu and goes no further
    m.pressedInMenu = true;
    return true;
  }
  // Release: chooses the item under the pointer, as a press on the bar and
  // a drag into the menu does.
  const bool ours = m.pressedInMenu;
  m.pressedInMenu = false;
  if (!isOpen(m)) return ours || barRect(m).contains(x, y);
  const rect sub = openSubRect(m);
  if (sub.contains(x, y)) {
    const int item = itemAt(m, subList(m), sub.x1, sub.y1, x, y);
    if (item >= 0) activate(m, m.lists[subList(m)].items[item], item, true, false);
    return true;
  }
  const rect list = openListRect(m);
  if (list.contains(x, y)) {
    const int item = itemAt(m, openList(m), list.x1, list.y1, x, y);
    if (item >= 0) activate(m, m.lists[openList(m)].items[item], item, false, false);
    return true;
  }
  return true;
}

bool keyPressed(menuModel& m, int code, char letter, bool altHeld) {
  if (!m.shown) return false;
  const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  if (!isOpen(m)) {
    if (!altHeld || upper == 0) return false;
    for (int h = 0; h < static_cast<int>(m.bar.size()); ++h)
      if (accessLetter(m.bar[h].caption) == upper) {
        openHead(m, h, true);
        return true;
      }
    return false;
  }
  const int list = openList(m);
  const int sub = subList(m);
  const bool inSub = sub >= 0 && m.hotSubItem >= 0;
  if (code == keyEsc) {
    if (m.openSub >= 0)
      m.openSub = m.hotSubItem = -1;
    else
      closeAll(m);
    return true;
  }
  if (code == codeUp || code == codeDown) {
    const int step = code == codeDown ? 1 : -1;
    if (inSub)
      m.hotSubItem = stepHighlight(m.lists[sub], m.hotSubItem, step);
    else if (list >= 0)
      m.hotItem = stepHighlight(m.lists[list], m.hotItem, step);
    return true;
  }
  if (code == keyLeft || code == keyRight) {
    if (inSub && code == keyLeft) {
      m.openSub = m.hotSubItem = -1;
      return true;
    }
    const menuItem* hot = list >= 0 && m.hotItem >= 0 ? &m.lists[list].items[m.hotItem] : nullptr;
    if (!inSub && code == keyRight && hot && hot->submenu >= 0 && hot->enabled) {
      openSubmenu(m, m.hotItem, true);
      return true;
    }
    const int n = static_cast<int>(m.bar.size());
    openHead(m, (m.openHead + (code == keyRight ? 1 : n - 1)) % n, true);
    return true;
  }
  if (code == keyEnter || code == codeKeypadEnter || code == keySpace) {
    if (inSub)
      activate(m, m.lists[sub].items[m.hotSubItem], m.hotSubItem, true, true);
    else if (list >= 0 && m.hotItem >= 0)
      activate(m, m.lists[list].items[m.hotItem], m.hotItem, false, true);
    return true;
  }
  if (upper != 0) {
    if (altHeld) {
      for (int h = 0; h < static_cast<int>(m.bar.size()); ++h)
        if (accessLetter(m.bar[h].caption) == upper) {
          openHead(m, h, true);
          return true;
        }
    }
    // The submenu's letters first, then those of the menu it hangs from.
    const int inSubmenu = sub >= 0 ? itemWithLetter(m.lists[sub], upper) : -1;
    if (inSubmenu >= 0) {
      m.hotSubItem = inSubmenu;
      activate(m, m.lists[sub].items[inSubmenu], inSubmenu, true, true);
    } else if (list >= 0) {
      const int item = itemWithLetter(m.lists[list], upper);
      if (item >= 0) {
        if (item != m.openSub) m.openSub = m.hotSubItem = -1;
        m.hotItem = item;
        activate(m, m.lists[list].items[item], item, false, true);
      }
    }
  }
  return true;  // nothing reaches the screens while a menu is open
}

int takeCommand(menuModel& m) {
  if (m.chosen.empty()) return 0;
  const int id = m.chosen.front();
  m.chosen.erase(m.chosen.begin());
  return id;
}

}  // namespace marv::menu
