// The bitmap colour stage's screen. The colour logic (counting, purging,
// slices, bmp.txt columns) lives in bitmapColours; this file shows each
// bitmap, takes the user's choices and clicks, and walks the bitmaps.
#include "domain/bitmapStageScreen.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>

#include "domain/bitmapColours.h"
#include "domain/bitmapReading.h"
#include "layer/layer.h"

namespace marv {

namespace {

bitmapStageState stage;
int listScroll = 0;  // first pixel row of the colour list that is shown

int rowHeight(const appConfig& cfg) { return static_cast<int>(5.0 * cfg.textHeight); }

// Rows 1 to 50 are shown, without 7 (the STL slot); white (0) has no row.
int rowPosition(int c) { return c < 7 ? c - 1 : c - 2; }
int listHeight(const appConfig& cfg) { return (rowHeight(cfg) + cfg.textGap) * (maxColourSlots - 2); }

int rowTop(const appConfig& cfg, int c, int scroll = -1) {
  return cfg.marginTop + rowPosition(c) * (rowHeight(cfg) + cfg.textGap) - (scroll < 0 ? listScroll : scroll);
}

int lineHeight(const appConfig& cfg) { return cfg.textHeight + cfg.textGap / 2; }

// Left edge of option o of a selector, relative to the row's left edge.
int optionLeft(const appConfig& cfg, int option) {
  const int labelWidth = textWidthInFont(cfg.fixedCaption, "Strtch") + cfg.textGap;
  const int room = cfg.colourBarX - cfg.textGap - cfg.listGap - labelWidth - cfg.textGap;
  return cfg.textGap + labelWidth + option * std::max(1, room / 4);
}

choiceGroup& selectorOf(appConfig& cfg, int c, int which) {
  return which == selectStretch ? cfg.stretchSelectors[c]
                                : (which == selectSymmetry ? cfg.symmetrySelectors[c] : cfg.inverseSelectors[c]);
}

bool fileExists(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

void drawColourList(bitmapStageState& st, appConfig& cfg, const screenInput& in) {
  const int left = cfg.bitmapScreenWidth;
  const int width = cfg.colourBarX - cfg.textGap - cfg.listGap;
  const int h = cfg.textHeight;
  const int top = cfg.marginTop, bottom = cfg.bitmapScreenHeight;
  drawBox(left, 0, left + cfg.colourBarX, bottom, colour(245, 247, 250), 1);
  for (int c = 1; c < maxColourSlots; ++c) {
    if (c == 7) continue;
    const int y = rowTop(cfg, c);
    if (y + rowHeight(cfg) < top || y > bottom) continue;
    drawBox(left, y, left + width, y + rowHeight(cfg), colour(255, 255, 255), 1);
    const int swatch = 2 * h;
    const std::uint32_t fill = c < cfg.iNumBcColor ? colour(cfg.R[c], cfg.G[c], cfg.B[c]) : colour(235, 235, 235);
    drawBox(left + cfg.textGap, y + cfg.textGap / 2, left + cfg.textGap + swatch, y + cfg.textGap / 2 + lineHeight(cfg),
            fill, 1);
    drawBoxF(static_cast<float>(left + cfg.textGap), static_cast<float>(y + cfg.textGap / 2),
             static_cast<float>(left + cfg.textGap + swatch), static_cast<float>(y + cfg.textGap / 2 + lineHeight(cfg)),
             colour(120, 120, 120), 0, 1.0f);
    drawTextFormat(left + cfg.textGap + 2, y + cfg.textGap / 2, colour(128, 128, 128), cfg.fixedCaption, "%d", c);
    const int textX = left + 2 * cfg.textGap + swatch;
    if (c < cfg.iNumBcColor)
      drawTextFormat(textX, y + cfg.textGap / 2, colour(0, 0, 0), cfg.fixedCaption, "%.3d.%.3d.%.3d %dpts |", cfg.R[c],
                     cfg.G[c], cfg.B[c], cfg.colorPoints[c]);
    else
      drawText(textX, y + cfg.textGap / 2, "---.---.---", colour(150, 150, 150), cfg.fixedCaption, 0, 0);
    colourRow& row = cfg.colorRows[c];
    row.x = left + cfg.textGap;
    row.y = y + cfg.textGap / 2;
    row.width = swatch;
    row.height = lineHeight(cfg);
    if (c >= cfg.iNumBcColor) continue;

    // The swatch toggles the removal mark, once per press.
    const bool onSwatch =
        in.mouseX >= row.x && in.mouseX < row.x + row.width && in.mouseY >= row.y && in.mouseY < row.y + row.height;
    row.hover = onSwatch && !in.left ? 1 : 0;
    if (!onSwatch) {
      st.swatchArmed[c] = false;
    } else if (!in.left) {
      st.swatchArmed[c] = true;
    } else if (st.swatchArmed[c]) {
      st.swatchArmed[c] = false;
      row.keep = row.keep ? 0 : 1;
    }

    const char* labels[3] = {"Strtch", "Symmtr", "Invers"};
    for (int which = 0; which < 3; ++which) {
      choiceGroup& group = selectorOf(cfg, c, which);
      const int ly = y + cfg.textGap / 2 + (which + 1) * lineHeight(cfg);
      drawText(left + cfg.textGap, ly, labels[which], colour(90, 90, 90), cfg.fixedCaption, 0, 0);
      for (int o = 0; o < group.count; ++o) {
        int cx = 0, cy = 0;
        colourOptionCentre(cfg, c, which, o, cx, cy);
        const int radius = h / 3;
        const bool under = std::abs(in.mouseX - cx) <= radius + 2 && std::abs(in.mouseY - cy) <= radius + 2;
        int& armed = st.optionArmed[c][which];
        if (under && !in.left) armed = o + 1;
        if (under && in.left && armed == o + 1) {
          group.selected = o;
          armed = 0;
        }
        drawCircle(cx, cy, radius, colour(0, 120, 200), group.selected == o ? 1 : 0, 2);
        drawText(cx + radius + 2, ly, group.labels[o].c_str(), colour(0, 0, 0), cfg.fixedCaption, 0, 0);
      }
    }
    if (c >= 8 && row.keep == 0) {
      setBlend(1, 190);
      drawBox(left, y, left + width, y + rowHeight(cfg), colour(255, 255, 255), 1);
      setBlend(0, 0);
      drawText(left + cfg.textGap, y + rowHeight(cfg) / 3, "This color will be removed.", colour(200, 0, 0),
               cfg.fixedCaption, 0, 0);
      drawText(left + cfg.textGap, y + rowHeight(cfg) / 3 + lineHeight(cfg), "Click again to cancel.",
               colour(200, 0, 0), cfg.fixedCaption, 0, 0);
    }
  }
  // The scroll bar: the visible share of the list.
  const int track = bottom - top;
  const int total = std::max(track, listHeight(cfg));
  const int thumb = std::max(cfg.textGap, track * track / total);
  const int range = std::max(1, listHeight(cfg) - track);
  const int thumbY = top + (track - thumb) * std::clamp(listScroll, 0, range) / range;
  drawBox(left + width + 1, thumbY, left + cfg.colourBarX, thumbY + thumb, colour(0, 150, 220), 1);
}

// Loads the bitmap of (plane, slice) and reads it at the mesh; false when
// it is missing or cannot be read.
bool loadBitmap(bitmapStageState& st, const appConfig& cfg) {
  const std::string path = bitmapPath(st.plane, st.slice);
  if (!fileExists(path)) return false;
  st.image = loadImage(path.c_str(), 1);
  if (st.image < 0) return false;
  if (readImageAtMesh(cfg, st.plane, st.image, st.codes) != 0) {
    deleteImage(st.image);
    st.image = -1;
    return false;
  }
  return true;
}

void setStageWindow(const appConfig& cfg, int width, int height) {
  int x = 0, y = 0, oldW = 0, oldH = 0;
  windowPosition(&x, &y);
  imageSize(backBuffer, &oldW, &oldH);
  setGraphicsMode(width, height, 32, 60);
  if (oldW > 0 && oldH > 0) setWindowPosition(x + oldW / 2 - width / 2, y + oldH / 2 - height / 2);
  (void)cfg;
  setDrawTarget(backBuffer);
}

}  // namespace

void layoutColourList(appConfig& cfg) {
  const int widest = textWidthInFont(cfg.fixedCaption, "AAAXYYZZXOFF");
  cfg.colourBarX = static_cast<int>((2.5 * cfg.textGap + cfg.textHeight) * 4.0 + widest + 2 * cfg.textGap +
                                    cfg.textGap + cfg.listGap);
}

int colourListNotch(const appConfig& cfg) { return static_cast<int>(1.2 * cfg.textHeight); }

bool colourOptionCentre(const appConfig& cfg, int row, int selector, int option, int& x, int& y, int scroll) {
  const int top = rowTop(cfg, row, scroll);
  x = cfg.bitmapScreenWidth + optionLeft(cfg, option) + cfg.textHeight / 3;
  y = top + cfg.textGap / 2 + (selector + 1) * lineHeight(cfg) + cfg.textHeight / 2;
  return y >= cfg.marginTop && y < cfg.bitmapScreenHeight;
}

bool colourSwatchCentre(const appConfig& cfg, int row, int& x, int& y, int scroll) {
  x = cfg.bitmapScreenWidth + cfg.textGap + cfg.textHeight;
  y = rowTop(cfg, row, scroll) + cfg.textGap / 2 + lineHeight(cfg) / 2;
  return y >= cfg.marginTop && y < cfg.bitmapScreenHeight;
}

void prepareRowChoices(appConfig& cfg) {
  for (int c = 0; c < cfg.iNumBcColor; ++c) {
    choiceGroup& st = cfg.stretchSelectors[c];
    if (!st.prepared) {
      for (int s = 0; s < maxColourSlots; ++s) {
        if (cfg.savedColorsCodes[s] == 0 || cfg.savedColorsCodes[s] != cfg.ColorsCodes[c]) continue;
        st.selected = std::clamp(cfg.savedStretchPlane[s], 0, 3);
        cfg.symmetrySelectors[c].selected = std::clamp(cfg.savedSymmetricPlane[s], 0, 3);
        cfg.inverseSelectors[c].selected = std::clamp(cfg.savedInverseFlag[s], 0, 1);
      }
      st.prepared = cfg.symmetrySelectors[c].prepared = cfg.inverseSelectors[c].prepared = 1;
    }
    cfg.StretchPlane[c] = st.selected;
    cfg.SymmetricPlane[c] = cfg.symmetrySelectors[c].selected;
    cfg.InverseFlag[c] = cfg.inverseSelectors[c].selected;
  }
}

int bitmapStageFrame(bitmapStageState& st, appConfig& cfg, const screenInput& in) {
  const planeGeometry g = makePlaneGeometry(cfg, st.plane);
  listScroll -= colourListNotch(cfg) * in.wheel;
  listScroll = std::clamp(listScroll, 0, std::max(0, listHeight(cfg) - cfg.bitmapScreenHeight));

  drawBox(0, 0, cfg.bitmapScreenWidth, cfg.bitmapScreenHeight, colour(255, 255, 255), 1);
  if (st.image >= 0 && g.across > 0)
    drawImageStretched(g.ox - 1, g.oy - 1, g.ox + g.pixWidth + 2, g.oy + g.pixHeight + 2, st.image, 0);
  if (g.across > 0) {
    const int x1 = g.px.front() - cfg.marginLeft + g.ox, x2 = g.px.back() - cfg.marginLeft + g.ox;
    const int yTop = g.py.back() - cfg.marginTop + g.oy, yBottom = g.py.front() - cfg.marginTop + g.oy;
    setBlend(1, 90);
    for (int a = 0; a < g.across; ++a) {
      const int x = g.px[a] + g.ox - cfg.marginLeft;
      drawLine(x, yTop, x, yBottom, colour(90, 90, 90), 1);
    }
    for (int b = 0; b < g.down; ++b) {
      const int y = g.py[b] + g.oy - cfg.marginTop;
      drawLine(x1, y, x2, y, colour(90, 90, 90), 1);
    }
    setBlend(0, 0);
  }
  prepareRowChoices(cfg);
  drawColourList(st, cfg, in);
  prepareRowChoices(cfg);

  // The status line.
  const std::string name = bitmapPath(st.plane, st.slice).substr(8);
  const std::string format = screenText(cfg, cfg.nz > 1 ? 49 : 50);
  char status[600];
  std::snprintf(status, sizeof status, format.c_str(), name.c_str());
  const int statusY = cfg.bitmapScreenHeight - cfg.marginBottom;
  drawBox(0, statusY, cfg.bitmapScreenWidth + cfg.colourBarX, cfg.bitmapScreenHeight, colour(41, 57, 85), 1);
  drawText(cfg.marginLeft, statusY + 1, status, colour(255, 255, 255), cfg.fontTiny, 0, 0);

  const int x0 = static_cast<int>(cfg.bitmapScreenWidth - 2.8 * cfg.buttonSize);
  const int y0 = static_cast<int>(cfg.bitmapScreenHeight - 1.8 * cfg.buttonSize);
  const bool cancel = clickButton(st.cancel, x0, y0, cfg.buttonSize, in);
  const bool proceed = clickButton(st.proceed, x0 + cfg.buttonSize + cfg.textGap, y0, cfg.buttonSize, in);
  drawScreenButton(st.cancel, st.tiles, tileCancel, "Cancel", cfg.fontCaption);
  drawScreenButton(st.proceed, st.tiles, tileProceed, "Proceed", cfg.fontCaption);

  if (cancel || in.esc) return -1;
  if (proceed) return 1;
  // A press into the picture shows the case in 3D while the button is held.
  const bool onButtons = st.cancel.hover || st.proceed.hover;
  if (cfg.nz > 1 && in.left && in.mouseX <= cfg.bitmapScreenWidth - rowHeight(cfg) && !onButtons) return 2;
  if (enterAfterDebounce(cfg, in)) return 1;
  return 0;
}

int runBitmapStage(appConfig& cfg) {
  bitmapStageState& st = stage;
  ensureScreenFonts(cfg);
  const bool twoD = cfg.nz == 1;
  int firstPlane = 0, firstSlice = 0;
  const bool resuming = cfg.stageInterrupted == 1;
  if (!resuming) {
    st = bitmapStageState{};
    listScroll = 0;
    layoutColourList(cfg);
    setPresetColours(cfg);
    for (int c = 0; c < maxColourSlots; ++c) {
      cfg.stretchSelectors[c].selected = 3;
      cfg.symmetrySelectors[c].selected = 3;
      cfg.inverseSelectors[c].selected = 1;
      cfg.stretchSelectors[c].prepared = cfg.symmetrySelectors[c].prepared = cfg.inverseSelectors[c].prepared = 0;
      cfg.colorRows[c].keep = 1;
    }
    // A case without bitmaps ends here with the presets alone.
    bool any = false;
    for (int p = 0; p < 3 && !any; ++p)
      for (int s = 0; s < maxBitmapSlices && !any; ++s) any = fileExists(bitmapPath(p, s));
    if (!any) {
      convertSlices(cfg);
      setStageWindow(cfg, cfg.screenWidth, cfg.screenHeight);
      return 1;
    }
    setStageWindow(cfg, cfg.colourBarX + cfg.bitmapScreenWidth, cfg.bitmapScreenHeight);
  } else {
    firstPlane = cfg.stagePlane;
    firstSlice = cfg.stageSlice;
  }
  loadButtonTiles(st.tiles);
  st.cancel = st.proceed = screenButton{};

  for (int plane = firstPlane; plane < 3; ++plane) {
    for (int slice = plane == firstPlane ? firstSlice : 0; slice < maxBitmapSlices; ++slice) {
      st.plane = plane;
      st.slice = slice;
      if (cfg.stageInterrupted == 1) {
        cfg.stageInterrupted = 0;  // the bitmap in hand is still loaded
      } else {
        if (!loadBitmap(st, cfg)) continue;
        countColours(cfg, st.codes, planeAcross(cfg, plane), planeDown(cfg, plane));
      }
      int result = 0;
      // A press that began before this bitmap was shown does not count.
      bool released = false;
      while (result == 0) {
        setDrawTarget(backBuffer);
        const screenInput in = readScreenInput();
        if (!in.left) released = true;
        result = bitmapStageFrame(st, cfg, in);
        if (result == 2 && !released) result = 0;
        endScreenFrame();
      }
      if (result == -1) {
        deleteImage(st.image);
        st.image = -1;
        freeButtonTiles(st.tiles);
        return -1;
      }
      if (result == 2) {
        cfg.stagePlane = plane;
        cfg.stageSlice = slice;
        cfg.stageInterrupted = 1;
        freeButtonTiles(st.tiles);
        return 0;
      }
      cfg.lastKeyMs = nowMs();
      purgeColors(cfg, 0);
      writeSlice(cfg, plane, slice, st.codes);
      setTypePresence(cfg);
      deleteImage(st.image);
      st.image = -1;
      if (twoD) break;
    }
    if (twoD) break;
  }
  convertSlices(cfg);
  prepareRowChoices(cfg);
  freeButtonTiles(st.tiles);
  // The run's window, about the same centre.
  setStageWindow(cfg, cfg.screenWidth, cfg.screenHeight);
  return 1;
}

void runBitmapPreview(appConfig& cfg, sceneView& scene, inputState& input, fieldViews& views) {
  const int image = makeOffscreenImage(cfg.bitmapScreenWidth, cfg.bitmapScreenHeight, 0);
  handleFrameInput(input, cfg);
  do {
    cfg.solveStartMs = cfg.solveEndMs = nowMs();
    handleFrameInput(input, cfg);
    if (image >= 0) {
      setDrawTarget(image);
      clearDrawTarget();
    }
    drawFrame(scene, cfg, views, -1);
    setDrawTarget(backBuffer);
    if (image >= 0) drawImageRect(0, 0, 0, 0, cfg.bitmapScreenWidth, cfg.bitmapScreenHeight, image, 0, 0, 0);
    drawStageInset(cfg);
    endScreenFrame();
  } while ((mouseButtons() & mouseLeft) != 0);
  deleteImage(image);
}

void drawStageInset(const appConfig& cfg) {
  // Which plane the picture belongs to: two axis arrows in the corner.
  const char* names[3][2] = {{"x", "y"}, {"z", "y"}, {"x", "z"}};
  const int plane = std::clamp(stage.plane, 0, 2);
  const int x = cfg.marginLeft + 2 * cfg.textHeight, y = cfg.bitmapScreenHeight - 3 * cfg.textHeight;
  const int len = 2 * cfg.textHeight;
  drawLine(x, y, x + len, y, colour(220, 0, 0), 2);
  drawLine(x, y, x, y - len, colour(0, 160, 0), 2);
  drawText(x + len + 2, y - cfg.textHeight / 2, names[plane][0], colour(220, 0, 0), cfg.fixedCaption, 0, 0);
  drawText(x - cfg.textHeight / 3, y - len - cfg.textHeight, names[plane][1], colour(0, 160, 0), cfg.fixedCaption, 0,
           0);
}

}  // namespace marv
