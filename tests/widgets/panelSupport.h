// The control panel driven as the run drives it, one frame at a time: input, then the panel over a grey picture.
#pragma once

#include "layer/inputScript.h"
#include "layer/layer.h"
#include "scene/inputState.h"
#include "scene/sceneView.h"
#include "screenScript.h"
#include "widgets/controlPanel.h"

namespace marvtest {

struct panelDriver {
  marv::appConfig cfg;
  marv::inputState input;
  marv::sceneView scene;
  marv::controlPanel panel;
  // A window of 1280 x 720 with 20-pixel text; the panel comes to rest at once.
  void start() {
    cfg.screenWidth = 1280;
    cfg.screenHeight = 720;
    cfg.textHeight = 20;
    cfg.lastKeyMs = marv::nowMs() - cfg.keyDelayMs - 1;
    marv::resetInputState(input);
    panel.scene = &scene;
    marv::constructControlPanel(panel, cfg);
    panel.slideMs = 1;
  }
  void frame(const marv::inputFrame& f) {
    marv::setInputScript({f}, false);
    marv::processMessages();
    marv::handleFrameInput(input, cfg);
    marv::setBackgroundColour(90, 100, 110, 255);
    marv::clearDrawTarget();
    marv::runControlPanel(panel, cfg);
  }
  void click(int x, int y) {
    for (const marv::inputFrame& f : marvtest::click(x, y)) frame(f);
  }
  // Rests in the corner until the panel is open and still.
  void open() {
    for (int i = 0; i < 50 && (cfg.panelBusy == 0 || panel.slideY != 0); ++i) {
      frame(pointer(5, 5));
      marv::waitMs(2);
    }
    ASSERT_EQ(cfg.panelBusy * 10 + panel.slideY, 10) << "open and at rest";
  }
  // The centre of the panel's cell in this column or row.
  int centre(int cell) const { return cfg.mediumSize + cell * (cfg.mediumSize + cfg.buttonSize) + cfg.buttonSize / 2; }
};

}  // namespace marvtest
