// Linked into programs without a screen (tests, batch runs): startLayer
// makes an off-screen OpenGL context, or goes on without pixels.
#include "layer/glCore.h"

namespace marv::gl {
extern const bool startsOffscreen = true;
}
