// The control panel's per-frame step.
#include "widgets/controlPanel.h"

namespace marv {

void constructControlPanel(controlPanel& panel, appConfig& cfg) { panel.cfg = &cfg; }
void runControlPanel(controlPanel&, appConfig& cfg) { cfg.panelBusy = 0; }
void destroyControlPanel(controlPanel& panel) { panel = controlPanel{}; }

}  // namespace marv
