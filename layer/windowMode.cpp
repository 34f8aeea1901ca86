// Linked into the window program: startLayer opens an SDL window.
#include "layer/glCore.h"

namespace marv::gl {
extern const bool startsOffscreen = false;
}
