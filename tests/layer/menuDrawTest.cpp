// The menu bar drawn by the OpenGL backend: a greyed item looks grey, an open menu covers the picture below.
#include <gtest/gtest.h>

#include "layer/layer.h"
#include "layer/menuDraw.h"

namespace {

using namespace marv;

constexpr int width = 400;
constexpr int height = 240;

// Darkest red channel in a rectangle of the pixel image: text leaves dark
// pixels, a greyed caption only mid-grey ones.
int darkest(int image, const menu::rect& r) {
  int least = 255;
  for (int y = r.y1; y < r.y2; ++y)
    for (int x = r.x1; x < r.x2; ++x) {
      int red = 0, g = 0, b = 0, a = 0;
      readPixel(image, x, y, &red, &g, &b, &a);
      least = red < least ? red : least;
    }
  return least;
}

TEST(menuDrawing, greyedItemsAreDrawnGreyAndTheOpenMenuCoversThePicture) {
  setGraphicsMode(width, height, 32, 60);
  ASSERT_EQ(startLayer(), 0);
  ASSERT_EQ(layerDrawsPixels(), 1) << "no OpenGL renderer: install Mesa (scripts/install-deps.sh)";
  menu::menuModel m = menu::mainMenu();
  m.shown = true;
  m.measure = menu::menuTextWidth;
  m.canvasWidth = width;
  menu::setItemEnabled(m, menu::commandNewProject, false);
  menu::keyPressed(m, 0, 'F', true);

  setDrawTarget(backBuffer);
  setBackgroundColour(0, 0, 0, 255);  // a black picture under the menu
  clearDrawTarget();
  menu::drawMenu(m);
  const int pixels = makePixelImage(width, height);
  captureToPixelImage(0, 0, width, height, pixels);

  const menu::rect list = menu::openListRect(m);
  const menu::rect greyed = menu::itemRect(m, 0, 0, list.x1, list.y1);
  const menu::rect exit = menu::itemRect(m, 0, 3, list.x1, list.y1);
  const int greyInk = darkest(pixels, greyed);
  const int blackInk = darkest(pixels, exit);
  EXPECT_LT(blackInk, 90) << "an enabled caption is dark";
  EXPECT_GT(greyInk, 120) << "a greyed caption is light grey";
  int r = 0, g = 0, b = 0, a = 0;
  readPixel(pixels, (list.x1 + list.x2) / 2, list.y2 - 2, &r, &g, &b, &a);
  EXPECT_GT(r, 200) << "the menu's back hides the black picture";
  readPixel(pixels, list.x2 + 40, list.y2 - 2, &r, &g, &b, &a);
  EXPECT_EQ(r, 0) << "beside the menu the picture shows";
  deletePixelImage(pixels);
  stopLayer();
}

}  // namespace
