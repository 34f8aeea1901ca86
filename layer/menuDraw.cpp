// The menu bar as a desktop draws one: a light bar with the menus' captions,
// the open one highlighted, its menu dropped below with a frame and a shadow,
// greyed items in grey, access letters underlined, submenus marked by an
// arrow. Only the layer's public primitives are used.
#include "layer/menuDraw.h"

#include "layer/layer.h"

namespace marv::menu {

namespace {

constexpr int fontSize = 15;   // [px]
constexpr int textInset = 10;  // caption's left edge in its item [px]

std::uint32_t barColour() { return colour(240, 240, 240); }
std::uint32_t lineColour() { return colour(204, 204, 204); }
std::uint32_t textColour() { return colour(20, 20, 20); }
std::uint32_t greyText() { return colour(160, 160, 160); }
std::uint32_t hotColour() { return colour(204, 228, 247); }
std::uint32_t hotFrame() { return colour(153, 201, 239); }
std::uint32_t listColour() { return colour(249, 249, 249); }
std::uint32_t shadowColour() { return colour(170, 170, 170); }

void caption(const std::string& text, int x, int y, int height, std::uint32_t c) {
  int underline = -1;
  const std::string visible = visibleCaption(text, &underline);
  const int font = menuFont();
  const int top = y + (height - fontSize) / 2 - 1;
  drawText(x, top, visible.c_str(), c, font, 0, 0);
  if (underline < 0) return;
  const std::string before = visible.substr(0, static_cast<std::size_t>(underline));
  std::size_t len = 1;  // the underlined letter, one UTF-8 character
  while (underline + len < visible.size() && (visible[underline + len] & 0xC0) == 0x80) ++len;
  const std::string letter = visible.substr(static_cast<std::size_t>(underline), len);
  const int x1 = x + textWidthInFont(font, "%s", before.c_str());
  const int x2 = x1 + textWidthInFont(font, "%s", letter.c_str());
  drawBox(x1, top + fontSize + 2, x2, top + fontSize + 3, c, 1);
}

void drawList(const menuModel& m, int list, const rect& r, int hot, int openSub) {
  drawBox(r.x1 + 3, r.y1 + 3, r.x2 + 3, r.y2 + 3, shadowColour(), 1);
  drawBox(r.x1, r.y1, r.x2, r.y2, listColour(), 1);
  drawBox(r.x1, r.y1, r.x2, r.y2, lineColour(), 0);
  const menuList& l = m.lists[list];
  for (int i = 0; i < static_cast<int>(l.items.size()); ++i) {
    const menuItem& item = l.items[i];
    const rect ir = itemRect(m, list, i, r.x1, r.y1);
    if (item.separator) {
      const int y = (ir.y1 + ir.y2) / 2;
      drawBox(ir.x1 + 4, y, ir.x2 - 4, y + 1, lineColour(), 1);
      continue;
    }
    if (i == hot || i == openSub) {
      drawBox(ir.x1, ir.y1, ir.x2, ir.y2, hotColour(), 1);
      drawBox(ir.x1, ir.y1, ir.x2, ir.y2, hotFrame(), 0);
    }
    const std::uint32_t c = item.enabled ? textColour() : greyText();
    caption(item.caption, ir.x1 + textInset, ir.y1, ir.y2 - ir.y1, c);
    if (item.submenu >= 0) {
      const int cx = ir.x2 - 12, cy = (ir.y1 + ir.y2) / 2;
      drawTriangle(cx - 3, cy - 4, cx - 3, cy + 4, cx + 2, cy, c, 1);
    }
  }
}

int font = -1;  // made on first use, forgotten when the layer stops

}  // namespace

int menuFont() {
  if (font < 0) font = makeFont("Segoe UI", fontSize, 4, 18, -1, 0, 0, 0);
  return font;
}

void forgetMenuFont() { font = -1; }

int menuTextWidth(const char* utf8) { return textWidthInFont(menuFont(), "%s", utf8 ? utf8 : ""); }

void drawMenu(const menuModel& m) {
  const rect bar = barRect(m);
  drawBox(bar.x1, bar.y1, bar.x2, bar.y2, barColour(), 1);
  drawBox(bar.x1, bar.y2 - 1, bar.x2, bar.y2, lineColour(), 1);
  for (int h = 0; h < static_cast<int>(m.bar.size()); ++h) {
    const rect r = headRect(m, h);
    if (h == m.openHead) {
      drawBox(r.x1, r.y1 + 1, r.x2, r.y2 - 1, hotColour(), 1);
      drawBox(r.x1, r.y1 + 1, r.x2, r.y2 - 1, hotFrame(), 0);
    }
    caption(m.bar[h].caption, r.x1 + textInset, r.y1, r.y2 - r.y1, textColour());
  }
  if (m.openHead < 0) return;
  const int list = m.bar[m.openHead].list;
  if (list < 0 || list >= static_cast<int>(m.lists.size())) return;
  drawList(m, list, openListRect(m), m.hotItem, m.openSub);
  const rect sub = openSubRect(m);
  if (sub.x2 > sub.x1) {
    const int subList = m.lists[list].items[m.openSub].submenu;
    drawList(m, subList, sub, m.hotSubItem, -1);
  }
}

}  // namespace marv::menu
