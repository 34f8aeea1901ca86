// controlPanel: the sliding panel of the run. Until it is built it keeps
// panelBusy clear, so that it never holds the run.
#pragma once

#include "app/appConfig.h"

namespace marv {

struct controlPanel {
  appConfig* cfg = nullptr;  // not owned
};

void constructControlPanel(controlPanel& panel, appConfig& cfg);
void runControlPanel(controlPanel& panel, appConfig& cfg);  // once per frame
void destroyControlPanel(controlPanel& panel);

}  // namespace marv
