// The list of mouse operations and keyboard shortcuts that the key H shows:
// drawn once per set-up into an image that the help overlay scrolls.
#pragma once

#include "app/appConfig.h"
#include "scene/sceneView.h"

namespace marv {

// Makes scene.helpImage and the help overlay's measures (helpLeft, helpTop,
// helpWidth, helpListHeight, helpViewHeight). Replaces an earlier image.
void preRenderHelpList(sceneView& scene, const appConfig& cfg);

}  // namespace marv
